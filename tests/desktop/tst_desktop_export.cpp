// What the window writes and keeps: the traces as CSV with frequencies in Hz, pictures, the HTML
// report, refusals with a message naming the file, and settings that survive a restart and bad
// values in the file.
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "desktoptestsupport.h"
#include "analysismodel.h"
#include "instrumentwindow.h"
#include "markers.h"
#include "report.h"
#include "spectrumview.h"
#include "sweepfeed.h"
#include "traceexport.h"

using namespace wsa::desktop;

class TestDesktopExport : public QObject
{
    Q_OBJECT
private:
    const wsa::Band& m_b6 = *wsa::findBand(wsa::BandId::Ghz6);

private slots:
    void tracesCsvHasOneRowPerCellInHz()
    {
        SweepStore store(m_b6);
        QCOMPARE(tracesCsv(store).count('\n'), m_b6.grid.shown + 1);
        auto a = desktoptest::sweepWithSignal(m_b6, 6000e6, -40.25f, -90);
        auto b = desktoptest::sweepWithSignal(m_b6, 6000e6, -60.75f, -90);
        store.addSweep(a.data(), int(a.size()), 0);
        store.addSweep(b.data(), int(b.size()), 1);
        store.setAveragingLength(10);

        const QList<QByteArray> lines = tracesCsv(store).split('\n');
        QCOMPARE(lines.first(), QByteArray("frequency_hz,current_dbm,average_dbm,maximum_dbm,"
                                           "minimum_dbm"));
        QCOMPARE(lines.size(), m_b6.grid.shown + 2); // and the empty piece after the last \n
        const int cell = desktoptest::cellOf(m_b6, 6000e6);
        const QList<QByteArray> row = lines[cell + 1].split(',');
        QCOMPARE(row.size(), 5);
        QCOMPARE(row[0].toLongLong(), qint64(std::llround(m_b6.grid.binHz(cell))));
        QCOMPARE(row[1].toDouble(), -60.75);
        QCOMPARE(row[2].toDouble(), -50.5);
        QCOMPARE(row[3].toDouble(), -40.25);
        QCOMPARE(row[4].toDouble(), -60.75);
        QCOMPARE(lines[1].split(',')[0].toLongLong(), qint64(std::llround(m_b6.grid.startHz)));

        store.resetHolds();
        const QList<QByteArray> held = tracesCsv(store).split('\n')[1].split(',');
        QCOMPARE(held.size(), 5);
        QVERIFY(!held[1].isEmpty());
        QVERIFY(held[2].isEmpty() && held[3].isEmpty() && held[4].isEmpty());
    }

    void unwritableFilesAreRefusedWithTheirName()
    {
        SweepStore store(m_b6);
        QTemporaryDir dir;
        const QString missing = dir.filePath(QStringLiteral("no/such/dir/traces.csv"));
        QString error;
        QVERIFY(!saveTracesCsv(store, missing, &error));
        QVERIFY2(error.contains(missing), qPrintable(error));
        QVERIFY(!QFile::exists(missing));

        error.clear();
        QVERIFY(!savePicture(QImage(), dir.filePath(QStringLiteral("a.png")), &error));
        QVERIFY(error.contains(QStringLiteral("a.png")));
        QVERIFY(!QFile::exists(dir.filePath(QStringLiteral("a.png"))));
        QVERIFY(!savePicture(QImage(4, 4, QImage::Format_RGB32), dir.path(), &error));

        const QString ok = dir.filePath(QStringLiteral("traces.csv"));
        QVERIFY(saveTracesCsv(store, ok, nullptr));
        QFile file(ok);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), tracesCsv(store));
    }

    void windowExportsWhatItShows()
    {
        SweepFeed feed(m_b6);
        InstrumentWindow w(&feed);
        w.resize(1000, 700);
        auto s = desktoptest::sweepWithSignal(m_b6, 6500e6, -50, -90);
        feed.addSweep(s.data(), int(s.size()), 0);
        QTemporaryDir dir;
        QString error;
        const QString png = dir.filePath(QStringLiteral("views.png"));
        QVERIFY2(w.exportPicture(png, &error), qPrintable(error));
        const QImage image(png);
        QVERIFY(!image.isNull());
        QVERIFY(image.width() >= w.spectrum()->width());
        // While paused the export holds the frozen traces, as the picture does.
        w.setPaused(true);
        auto later = desktoptest::sweepWithSignal(m_b6, 6500e6, -20, -90);
        feed.addSweep(later.data(), int(later.size()), 1);
        const QString csv = dir.filePath(QStringLiteral("traces.csv"));
        QVERIFY(w.exportTraces(csv, &error));
        QFile file(csv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const int cell = desktoptest::cellOf(m_b6, 6500e6);
        QCOMPARE(file.readAll().split('\n')[cell + 1].split(',')[1].toDouble(), -50.0);
    }

    // The report holds the picture, band, source, markers, channels and emitters, with every
    // outside text escaped.
    void reportHoldsWhatTheWindowShows()
    {
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz24);
        SweepFeed feed(b);
        InstrumentWindow w(&feed);
        w.resize(1000, 700);
        auto s = desktoptest::sweepWithSignal(b, 2437e6, -42.5f, -90);
        feed.addSweep(s.data(), int(s.size()), 0);
        w.markers()->place(0, feed.shown(), 2437e6);
        w.setSourceName(QStringLiteral("sim <&>"));
        QVERIFY(w.analysis()->takeJson(R"({"type":"analysis","sweeps":5,"channels":[
            {"channel":1,"width_mhz":20,"center_mhz":2412,"occupancy":0.25,"mean_dbm":-80,"max_dbm":-50},
            {"channel":6,"width_mhz":20,"center_mhz":2437,"occupancy":0.05,"mean_dbm":-85,"max_dbm":-42.5}],
            "emitters":[{"kind":"<b>x&y</b>","center_mhz":2437,"width_mhz":20,"active":true}]})"));
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("report.html"));
        QString error;
        QVERIFY2(w.saveReport(path, &error), qPrintable(error));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString html = QString::fromUtf8(file.readAll());
        for (const char* expected :
             {"<td>2.4 GHz</td>", "<td>sim &lt;&amp;&gt;</td>", "&lt;b&gt;x&amp;y&lt;/b&gt;",
              "<tr><td>1</td><td>2412.0</td><td>25.0</td><td>-80.0</td><td>-50.0</td></tr>",
              "<tr class=\"freest\"><td>6</td>"})
            QVERIFY2(html.contains(QLatin1String(expected)), expected);
        const double markerHz = w.markers()->reading(feed.shown(), 0, 20).hz;
        QVERIFY(std::abs(markerHz - 2437e6) < b.grid.stepHz);
        QVERIFY(html.contains(QStringLiteral("<tr><td>1</td><td>%1</td><td>6</td><td>-42.5</td>")
                                  .arg(markerHz / 1e6, 0, 'f', 3)));
        QVERIFY(!html.contains(QLatin1String("<b>x")) && !html.contains(QLatin1String("sim <")));
        // The picture is embedded whole.
        const QString tag = QStringLiteral("data:image/png;base64,");
        const int from = int(html.indexOf(tag)) + int(tag.size());
        QVERIFY(from > tag.size());
        const QByteArray png =
            QByteArray::fromBase64(html.mid(from, html.indexOf(QLatin1Char('"'), from) - from).toLatin1());
        QCOMPARE(QImage::fromData(png, "PNG").size(), w.reportContent().picture.size());

        const QString missing = dir.filePath(QStringLiteral("no/such/report.html"));
        QVERIFY(!w.saveReport(missing, &error));
        QVERIFY2(error.contains(missing), qPrintable(error));
        QVERIFY(!saveReport(ReportContent(), dir.path(), &error));
        QVERIFY(error.contains(dir.path()));
    }

    void settingsSurviveARestart()
    {
        QTemporaryDir dir;
        const QString ini = dir.filePath(QStringLiteral("wsa.ini"));
        SweepFeed feed(*wsa::findBand(wsa::BandId::Ghz5));
        {
            InstrumentWindow w(&feed);
            DisplaySettings d;
            d.topDbm = -20;
            d.bottomDbm = -100;
            d.channelWidthMHz = 80;
            d.showChannels = false;
            d.traceShown[int(Trace::Minimum)] = true;
            w.controls()->setSettings(d);
            w.setSettings(w.controls()->settings());
            w.controls()->setAveraging(25);
            w.controls()->setViewMode(ViewMode::Density);
            QSettings s(ini, QSettings::IniFormat);
            w.saveSettings(s);
        }
        InstrumentWindow again(&feed);
        QSettings s(ini, QSettings::IniFormat);
        again.restoreSettings(s);
        QCOMPARE(again.settings().topDbm, -20.0);
        QCOMPARE(again.settings().bottomDbm, -100.0);
        QCOMPARE(again.settings().channelWidthMHz, 80);
        QVERIFY(!again.settings().showChannels);
        QVERIFY(again.settings().traceShown[int(Trace::Minimum)]);
        QCOMPARE(again.controls()->averaging(), 25);
        QCOMPARE(feed.live().averagingLength(), 25);
        QCOMPARE(again.controls()->viewMode(), ViewMode::Density);
        QVERIFY(!again.spectrum()->isVisibleTo(&again));
        QCOMPARE(again.spectrum()->settings(), again.settings());
    }

    void badValuesInTheSettingsFileAreNotTaken()
    {
        QTemporaryDir dir;
        const QString ini = dir.filePath(QStringLiteral("wsa.ini"));
        {
            QSettings s(ini, QSettings::IniFormat);
            s.setValue(QStringLiteral("window/viewMode"), 99);
            s.setValue(QStringLiteral("window/geometry"), QByteArray("garbage"));
            s.setValue(QStringLiteral("display/topDbm"), QStringLiteral("loud"));
            s.setValue(QStringLiteral("display/bottomDbm"), 1e9);
            s.setValue(QStringLiteral("display/channelWidthMHz"), 33);
            s.setValue(QStringLiteral("display/averaging"), -5);
        }
        SweepFeed feed(*wsa::findBand(wsa::BandId::Ghz24));
        InstrumentWindow w(&feed);
        QSettings s(ini, QSettings::IniFormat);
        w.restoreSettings(s);
        QCOMPARE(w.controls()->viewMode(), ViewMode::All);
        QVERIFY(w.settings().topDbm > w.settings().bottomDbm);
        QVERIFY(w.settings().bottomDbm >= SweepStore::kDensityBottomDbm);
        QVERIFY(w.settings().topDbm <= SweepStore::kDensityTopDbm);
        QCOMPARE(w.settings().channelWidthMHz, 20);
        QCOMPARE(w.controls()->averaging(), 1);
        QVERIFY(!desktoptest::render(w, QSize(800, 600), 1).isNull());
    }
};

QTEST_MAIN(TestDesktopExport)
#include "tst_desktop_export.moc"
