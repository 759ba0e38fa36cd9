// The analysis in the window: the engine's JSON object read into channels per width and emitters
// (hostile text ignored), the channel table's rows and drawn bars, the emitter list's ended rows
// and tooltips, and each active emitter's bracket over the columns its frequencies map to.
#include <QAction>
#include <QtTest>

#include "analysismodel.h"
#include "channeltable.h"
#include "colormap.h"
#include "desktoptestsupport.h"
#include "emitterlist.h"

using namespace desktoptest;

namespace
{

const QByteArray kKnown = R"({"type":"analysis","seconds":60.5,"sweeps":1200,"noise_floor_dbm":-96.5,
 "channels":[
  {"type":"channel","band":"2g4","channel":11,"width_mhz":20,"center_mhz":2462.0,"occupancy":0.75,"mean_dbm":-70.0,"max_dbm":-41.0},
  {"type":"channel","band":"2g4","channel":1,"width_mhz":20,"center_mhz":2412.0,"occupancy":0.25,"mean_dbm":-80.0,"max_dbm":-50.0},
  {"type":"channel","band":"2g4","channel":6,"width_mhz":20,"center_mhz":2437.0,"occupancy":0.05,"mean_dbm":null,"max_dbm":-60.0},
  {"type":"channel","band":"2g4","channel":3,"width_mhz":40,"center_mhz":2422.0,"occupancy":0.5,"mean_dbm":-75.0,"max_dbm":-45.0}],
 "emitters":[
  {"type":"emitter","id":3,"kind":"microwave-oven","center_mhz":2455.0,"width_mhz":30.0,"channel":null,"first_s":1.0,"last_s":9.0,"duty":0.5,"peak_dbm":-40.0,"confidence":0.8,"active":false,"features":{"period_ms":16.7}},
  {"type":"emitter","id":7,"kind":"wifi-ofdm","center_mhz":2437.0,"width_mhz":20.0,"channel":6,"first_s":2.0,"last_s":60.0,"duty":0.31,"peak_dbm":-52.0,"confidence":0.91,"active":true,"features":{"flatness":0.92,"edges_db":18.5}}]})";

} // namespace

class TestDesktopAnalysis : public QObject
{
    Q_OBJECT
private slots:
    void knownObjectIsReadWhole()
    {
        AnalysisModel m;
        QSignalSpy changed(&m, &AnalysisModel::changed);
        QVERIFY(m.takeJson(kKnown));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(QList<double>({double(m.sweeps()), m.noiseFloorDbm()}),
                 QList<double>({1200, -96.5}));
        QCOMPARE(m.widths(), QVector<int>({20, 40}));
        const QVector<ChannelRow> c20 = m.channels(20);
        QCOMPARE(c20.size(), 3);
        QCOMPARE(QList<int>({c20[0].channel, c20[1].channel, c20[2].channel}),
                 QList<int>({1, 6, 11}));
        QVERIFY(std::isnan(c20[1].meanDbm));
        QCOMPARE(QList<int>({m.freestChannel(20), m.freestChannel(80)}), QList<int>({1, -1}));
        QCOMPARE(m.channels(40)[0].centerMHz, 2422.0);
        QVERIFY(m.channels(80).isEmpty());
        QCOMPARE(m.emitters().size(), 2);
        const EmitterRow& wifi = m.emitters()[1];
        QCOMPARE(QList<qint64>(
                     {wifi.id, wifi.channel, m.emitters()[0].channel, int(wifi.features.size())}),
                 QList<qint64>({7, 6, 0, 2}));
        QVERIFY(wifi.active && !m.emitters()[0].active);
        m.clear();
        QVERIFY(m.isEmpty());
    }

    void hostileTextIsIgnored_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("taken");
        QTest::addColumn<int>("channels"); // of 20 MHz
        QTest::addColumn<int>("emitters");
        QTest::newRow("garbage") << QByteArray("\x01\xff{{not json") << false << 3 << 2;
        QTest::newRow("empty") << QByteArray() << false << 3 << 2;
        QTest::newRow("array") << QByteArray("[1,2]") << false << 3 << 2;
        QTest::newRow("other type") << QByteArray(R"({"type":"summary"})") << false << 3 << 2;
        QTest::newRow("cut off") << kKnown.left(kKnown.size() / 2) << false << 3 << 2;
        QTest::newRow("nothing in it") << QByteArray(R"({"type":"analysis"})") << true << 0 << 0;
        QTest::newRow("wrong containers")
            << QByteArray(R"({"type":"analysis","channels":{"a":1},"emitters":"x","sweeps":"9"})")
            << true << 0 << 0;
        QTest::newRow("wrong entries")
            << QByteArray(R"({"type":"analysis","channels":[1,"x",null,[],
                {"channel":"6","width_mhz":20,"center_mhz":2437,"occupancy":0.1},
                {"channel":6,"width_mhz":20,"center_mhz":2437,"occupancy":7},
                {"channel":6.5,"width_mhz":20,"center_mhz":2437,"occupancy":0.1},
                {"channel":-6,"width_mhz":20,"center_mhz":2437,"occupancy":0.1},
                {"channel":6,"width_mhz":20,"center_mhz":2437,"occupancy":0.1,"mean_dbm":"x"}],
              "emitters":[{"kind":7,"center_mhz":2437,"width_mhz":20},{"center_mhz":1},
                {"kind":"bluetooth","center_mhz":"2441","width_mhz":79},
                {"kind":"bluetooth","center_mhz":2441,"width_mhz":79,"duty":5,"features":[1]}]})")
            << true << 1 << 1;
        QByteArray many = R"({"type":"analysis","emitters":[)";
        for (int i = 0; i < AnalysisModel::kMaxEmitters + 50; ++i)
            many += QByteArray(i ? "," : "") + R"({"kind":"x","center_mhz":2400,"width_mhz":1})";
        QTest::newRow("too many") << many + "]}" << true << 0 << int(AnalysisModel::kMaxEmitters);
    }

    void hostileTextIsIgnored()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, taken);
        QFETCH(int, channels);
        QFETCH(int, emitters);
        AnalysisModel m;
        QVERIFY(m.takeJson(kKnown));
        QSignalSpy changed(&m, &AnalysisModel::changed);
        QCOMPARE(m.takeJson(json), taken);
        QCOMPARE(changed.count(), taken ? 1 : 0);
        QCOMPARE(m.channels(20).size(), channels);
        QCOMPARE(m.emitters().size(), emitters);
        for (const ChannelRow& c : m.channels(20))
            QVERIFY(c.occupancy >= 0 && c.occupancy <= 1);
        if (channels == 1) // the one whole entry, whose mean is no number
            QVERIFY(std::isnan(m.channels(20)[0].meanDbm));
        for (const EmitterRow& e : m.emitters())
            QVERIFY(!e.kind.isEmpty() && (std::isnan(e.duty) || e.duty <= 1));
    }

    void channelTableShowsRowsAndBars()
    {
        AnalysisModel m;
        m.takeJson(kKnown);
        ChannelTable table(&m);
        ChannelTableModel* model = table.tableModel();
        QCOMPARE(model->rowCount(), 3);
        auto text = [&](int row, int col) { return model->index(row, col).data().toString(); };
        QCOMPARE(QStringList({text(0, 0), text(0, 1), text(0, 2), text(0, 3), text(0, 4)}),
                 QStringList({"1", "2412.0", "25 %", "-80.0", "-50.0"}));
        QCOMPARE(text(1, ChannelTableModel::Mean), QStringLiteral("\u2013"));
        for (int row = 0; row < 3; ++row)
            QCOMPARE(model->index(row, 0).data(ChannelTableModel::FreestRole).toBool(), row == 1);

        // Each bar is as long as its share of the occupancy cell.
        table.resize(600, 300);
        const QImage image = render(table, QSize(600, 300), 1);
        const QRgb bar = rgb(OccupancyDelegate::barColor().rgb());
        for (int row = 0; row < 3; ++row) {
            const QRect cell = table.visualRect(model->index(row, ChannelTableModel::Occupancy))
                                   .translated(table.viewport()->pos());
            int painted = 0;
            for (int x = cell.left(); x <= cell.right(); ++x)
                painted += rgbAt(image, x, cell.center().y() - 3) == bar;
            const double share = model->rows()[row].occupancy;
            QVERIFY2(std::abs(painted - share * (cell.width() - 4)) <= 2,
                     qPrintable(QStringLiteral("%1 of %2").arg(painted).arg(cell.width())));
        }

        // A later analysis of the same channels updates the rows in place.
        QSignalSpy reset(model, &QAbstractItemModel::modelReset);
        QByteArray busier = kKnown;
        m.takeJson(busier.replace(R"("occupancy":0.25)", R"("occupancy":0.95)"));
        QCOMPARE(reset.count(), 0);
        QCOMPARE(text(0, ChannelTableModel::Occupancy), QStringLiteral("95 %"));
        QCOMPARE(model->freestRow(), 1);

        table.setWidth(40);
        QCOMPARE(model->rowCount(), 1);
        QCOMPARE(text(0, 0), QStringLiteral("3"));
        m.clear();
        QCOMPARE(model->rowCount(), 0);
    }

    void emitterListDistinguishesEndedOnes()
    {
        AnalysisModel m;
        m.takeJson(kKnown);
        EmitterList list(&m);
        EmitterTableModel* model = list.tableModel();
        QCOMPARE(model->rowCount(), 2);
        const QModelIndex ended = model->index(0, EmitterTableModel::Kind);
        const QModelIndex active = model->index(1, EmitterTableModel::Kind);
        QVERIFY(ended.data().toString().contains("Microwave oven"));
        QVERIFY(ended.data(Qt::ForegroundRole).isValid() && ended.data(Qt::FontRole).isValid());
        QVERIFY(!active.data(Qt::ForegroundRole).isValid());
        auto text = [&](int row, int col) { return model->index(row, col).data().toString(); };
        QCOMPARE(
            QStringList({text(1, EmitterTableModel::Channel), text(0, EmitterTableModel::Channel),
                         text(1, EmitterTableModel::Duty)}),
            QStringList({"6", "\u2013", "31 %"}));
        const QString tip = active.data(Qt::ToolTipRole).toString();
        QVERIFY2(tip.contains("flatness = 0.92") && tip.contains("edges_db = 18.5"),
                 qPrintable(tip));
    }

    // The window marks active emitters only; each bracket spans the columns of its edges.
    void emitterMarksSpanTheirFrequencies()
    {
        Window t(wsa::BandId::Ghz24);
        InstrumentWindow& w = t.w;
        w.analysis()->takeJson(kKnown);
        const auto& marks = w.spectrum()->emitterMarks();
        QCOMPARE(int(marks.size()), 1);
        QCOMPARE(QList<double>({marks[0].lowHz, marks[0].highHz}), QList<double>({2427e6, 2447e6}));

        Views v(t.feed.shown().band());
        v.spectrum.setEmitterMarks(marks);
        const QRgb color = rgb(colors::emitter().rgb());
        for (const QSize& size : {QSize(520, 260), QSize(1400, 500)}) {
            const QImage image = render(v.spectrum, size, 1);
            const QRectF plot = v.spectrum.plotLayout().plot;
            int left = -1, right = -1;
            for (int y = int(plot.top()); y < int(plot.top()) + 6; ++y) {
                for (int x = int(plot.left()); x < int(plot.right()); ++x) {
                    if (rgbAt(image, x, y) == color) {
                        left = left < 0 ? x : std::min(left, x);
                        right = std::max(right, x);
                    }
                }
            }
            QVERIFY(std::abs(left - v.spectrum.axis().columnOfHz(2427e6)) <= 1);
            QVERIFY(std::abs(right - v.spectrum.axis().columnOfHz(2447e6)) <= 1);
        }
        // The View menu shows and hides the docks.
        w.show();
        for (QWidget* table :
             {static_cast<QWidget*>(w.channelTable()), static_cast<QWidget*>(w.emitterList())}) {
            QAction* toggle = childWithText<QAction>(&w, table->parentWidget()->windowTitle());
            QVERIFY(toggle && toggle->isChecked());
            toggle->trigger();
            QVERIFY(!table->parentWidget()->isVisibleTo(&w));
        }
        // A band change drops what the analysis said.
        t.feed.configure(band(wsa::BandId::Ghz5));
        QVERIFY(w.analysis()->isEmpty());
        QVERIFY(w.spectrum()->emitterMarks().empty());
    }
};

QTEST_MAIN(TestDesktopAnalysis)
#include "tst_desktop_analysis.moc"
