// Frame composition: the frequency labels under the bottom view, a redraw without a new sweep,
// sweeps too short to draw, counts beyond the record, and the fast paint paths against the plain
// point-by-point drawing on the same store, pixel for pixel.
#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>
#include <cstring>

#include "views.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

using Layout = void (CWsa::*)();
static const QRgb kYellow = qRgb(255, 255, 0);

// Everything a paint could change in the statistics.
static quint16 statistics()
{
    QByteArray all;
    for (const auto& part :
         {QByteArray::fromRawData((const char*)maxData.data, sizeof maxData.data),
          QByteArray::fromRawData((const char*)minData.data, sizeof minData.data),
          QByteArray::fromRawData((const char*)sumData, sizeof sumData),
          QByteArray::fromRawData((const char*)popularity, sizeof popularity),
          QByteArray::fromRawData((const char*)historyColor, sizeof historyColor)})
        all += part;
    return qChecksum(all) ^ quint16(sweep_peak_max);
}

// A long recording: every history and colour row filled, a dense density table, levels partly
// outside the display range, a band column to skip.
static void fillFullState(int band, int samples)
{
    QRandomGenerator rng(20 + band);
    const int range = nMaxDraw - nMinDraw;
    auto level = [&] {
        const int r = int(rng.bounded(100));
        return r < 3 ? nMinDraw - 1 - int(rng.bounded(30))
                     : (r < 6 ? nMaxDraw + int(rng.bounded(20))
                              : nMinDraw + int(rng.bounded(range + 1)));
    };
    nLastIdx = WSA_RECORDING_LIMIT - 1;
    nDataCount = nLastIdx + 1;
    for (int k = 0; k <= nLastIdx; ++k) {
        historyData[k].num_samples = samples;
        for (int i = 0; i < samples; ++i)
            historyData[k].data[i] = level();
        for (int c = 1; c < WSA_COLOR_LINE; ++c)
            historyColor[k + 1].color[c] = 0xff000000 | rng.bounded(0x1000000);
        const int t = k / 10; // ten sweeps a second
        const char text[] = {'0',
                             '0',
                             ':',
                             char('0' + t / 600 % 6),
                             char('0' + t / 60 % 10),
                             ':',
                             char('0' + t % 60 / 10),
                             char('0' + t % 10),
                             0};
        std::memcpy(historyTime[k], text, sizeof text);
    }
    sweep_peak_max = 1200;
    for (int i = 0; i < SA_MAX_SAMPLES; ++i) {
        for (int m = 0; m < WSA_DENSITY_LEVELS; ++m)
            popularity[i][m] = i < samples ? int(rng.bounded(1200)) : 0;
        const int a = level(), b = level();
        maxData.data[i] = qMax(a, b);
        minData.data[i] = qMin(qMin(a, b), nMaxDraw);
        sumData[i] = (nMinDraw + int(rng.bounded(range + 1))) * -nDataCount;
    }
    maxData.num_samples = samples;
    maxData.data[5] = nMinDraw - 7;
    currentDatatmp = currentData = historyData[nLastIdx];
    bPrevCurrent = true;
}

class TstFrame : public QObject
{
    Q_OBJECT

    wsatest::AnalyzerEnv* m_env = nullptr;
    CWsa* m_wsa = nullptr;
    int m_link = -1;

    QImage paint() { return m_wsa->grab().toImage().convertToFormat(QImage::Format_RGB32); }
    void selectBand(int band)
    {
        s_band = band;
        m_wsa->initData();
        m_wsa->resizeGrid();
    }

private slots:
    void initTestCase()
    {
        m_env = new wsatest::AnalyzerEnv;
        m_wsa = new CWsa;
        m_wsa->setSize(QSize(800, 400));
        m_link = wsatest::takeOverLink();
        QVERIFY(m_link >= 0);
    }
    void cleanupTestCase()
    {
        delete m_wsa;
        delete m_env;
    }
    void init()
    {
        m_wsa->m_bInspector = m_wsa->m_bSignatureUpdate = m_wsa->m_bUpdate = false;
        bReferencePainting = bRefreshPlanarView = false;
        bCurrent = bAverage = bMax = true;
        selectBand(0);
    }

    void frequencyLabels_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<Layout>("layout");
        QTest::addColumn<int>("baseline");
        const QStringList names = {"View All", "Planar", "Topographic", "Spectral"};
        const Layout layouts[] = {&CWsa::procViewAll, &CWsa::procPlanar, &CWsa::procTopographic,
                                  &CWsa::procSpectral};
        for (int band = 0; band <= 1; ++band) {
            for (int l = 0; l < 4; ++l) {
                QTest::addRow("%s, %s", band ? "5 GHz" : "2.4 GHz", qPrintable(names[l]))
                    << band << layouts[l] << (l == 0 ? 388 : 344);
            }
        }
    }
    // One label under each inner column line, 15 pixels left of it; none at the edges.
    void frequencyLabels()
    {
        QFETCH(int, band);
        QFETCH(Layout, layout);
        QFETCH(int, baseline);
        selectBand(band);
        (m_wsa->*layout)();
        const QImage image = paint();
        const QStringList labels =
            band ? QStringList{"5260", "5360", "5460", "5560", "5660", "5760"}
                 : QStringList{"2410", "2420", "2430", "2440", "2450", "2460", "2470", "2480"};
        QImage expected(image.size(), QImage::Format_RGB32);
        expected.fill(viewBackground());
        QPainter painter(&expected);
        painter.setFont(viewFont());
        painter.setPen(Qt::white);
        for (int k = 0; k < labels.size(); ++k)
            painter.drawText(50 + (k + 1) * (band ? 65 : 47) - 15, baseline, labels[k]);
        painter.end();
        const QRect strip(0, baseline - 14, 640, 20);
        QCOMPARE(image.copy(strip), expected.copy(strip));
    }

    // With only m_bUpdate set the traces come back from the saved copy of the sweep, unclamped,
    // and no statistic changes.
    void redrawKeepsStatistics()
    {
        m_wsa->procPlanar();
        stSweep sweep = wsatest::makeSweep(423, -60);
        sweep.data[10] = -130;
        QVERIFY(wsatest::sendRecord(m_link, sweep));
        m_wsa->wsaDataParse();
        paint();
        QVERIFY(!bReceivedData);
        QCOMPARE(currentData.data[10], nMinDraw);
        const quint16 before = statistics();
        m_wsa->msgUpdate();
        const QImage image = paint();
        QVERIFY(!m_wsa->m_bUpdate);
        QCOMPARE(statistics(), before);
        QCOMPARE(currentData.num_samples, 423);
        QCOMPARE(currentData.data[10], -130);
        QCOMPARE(image.pixel(151, 174), kYellow);
        QCOMPARE(image.pixel(61, 323), kYellow); // sample 10, one row inside the bottom edge
    }

    void shortSweepDrawsNothing_data()
    {
        QTest::addColumn<int>("samples");
        QTest::addColumn<bool>("newData");
        QTest::newRow("one sample, new") << 1 << true;
        QTest::newRow("no sample, new") << 0 << true;
        QTest::newRow("negative count, new") << -4 << true;
        QTest::newRow("one sample, redraw") << 1 << false;
        QTest::newRow("negative count, redraw") << -4 << false;
    }
    void shortSweepDrawsNothing()
    {
        QFETCH(int, samples);
        QFETCH(bool, newData);
        m_wsa->procViewAll();
        const stSweep sweep = wsatest::makeSweep(samples, -40);
        nLastIdx = 0;
        historyData[0] = sweep;
        const QImage empty = paint();
        const quint16 before = statistics();
        (newData ? currentData : currentDatatmp) = sweep;
        (newData ? bReceivedData : m_wsa->m_bUpdate) = true;
        const QImage image = paint();
        nLastIdx = -1;
        QCOMPARE(image, empty);
        QCOMPARE(statistics(), before);
    }

    // A count beyond the record's 1024 levels is cut to them: the line runs on past the grid
    // (columns are never clamped) and nothing beyond the record is read or counted.
    void countsBeyondTheRecord()
    {
        m_wsa->procPlanar();
        stSweep sweep = wsatest::makeSweep(SA_MAX_SAMPLES, -50);
        sweep.num_samples = 5000;
        currentData = historyData[0] = sweep;
        nLastIdx = 0;
        nDataCount = 1;
        bReceivedData = true;
        QCOMPARE(paint().pixel(600, 144), kYellow);
        QCOMPARE(popularity[SA_MAX_SAMPLES - 1][50], 1);

        currentDatatmp = sweep;
        currentDatatmp.num_samples = 1 << 20;
        nLastIdx = 1 << 20;
        m_wsa->m_bUpdate = true;
        QCOMPARE(paint().pixel(600, 144), kYellow);
        QCOMPARE(currentData.num_samples, 1 << 20);
        nLastIdx = -1;
    }

    void fastMatchesReference_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<Layout>("layout");
        QTest::addColumn<QString>("scenario");
        const char* names[] = {"View All", "Planar", "Topographic", "Spectral"};
        const Layout layouts[] = {&CWsa::procViewAll, &CWsa::procPlanar, &CWsa::procTopographic,
                                  &CWsa::procSpectral};
        for (int band = 0; band <= 1; ++band) {
            for (int l = 0; l < 4; ++l) {
                for (const char* s : {"redraw", "new sweep", "new sweep and redraw", "Max off",
                                      "Current switched off", "refresh", "wide sweep"}) {
                    QTest::addRow("%s, %s, %s", band ? "5 GHz" : "2.4 GHz", names[l], s)
                        << band << layouts[l] << QString(s);
                }
            }
        }
    }
    void fastMatchesReference()
    {
        QFETCH(int, band);
        QFETCH(Layout, layout);
        QFETCH(QString, scenario);
        selectBand(band);
        (m_wsa->*layout)();
        QImage images[2];
        for (int reference = 0; reference <= 1; ++reference) {
            fillFullState(band, scenario == "wide sweep" ? SA_MAX_SAMPLES : (band ? 452 : 423));
            bMax = scenario != "Max off";
            bCurrent = scenario != "Current switched off";
            bRefreshPlanarView = scenario == "refresh";
            bReceivedData = scenario.startsWith("new") || scenario == "wide sweep";
            m_wsa->m_bUpdate = !scenario.startsWith("new") || scenario.endsWith("redraw");
            bReferencePainting = reference;
            images[reference] = paint();
        }
        nLastIdx = -1;
        // Compared where this module draws: the Planar view with its labels and wherever its
        // traces reach, and the frequency labels. The other views check their own paths.
        QRegion area(50, frequencyRect().bottom() + 4, 750, 24);
        if (bPlanarView)
            area += QRect(0, 0, 800, planarRect().bottom() + 5);
        for (const QRect& r : area) {
            const QImage fast = images[0].copy(r), plain = images[1].copy(r);
            for (int y = 0; fast != plain && y < r.height(); ++y) {
                for (int x = 0; x < r.width(); ++x) {
                    QVERIFY2(fast.pixel(x, y) == plain.pixel(x, y),
                             qPrintable(QString("first difference at (%1, %2)")
                                            .arg(r.left() + x)
                                            .arg(r.top() + y)));
                }
            }
        }
    }
};

QTEST_MAIN(TstFrame)
#include "tst_frame.moc"
