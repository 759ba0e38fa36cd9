// The topographic view and the colour legends of the topographic and spectral views, checked
// pixel by pixel in both paint paths.
#include <QPainter>
#include <QTest>
#include <cstring>
#include <functional>
#include <memory>

#include "topo.h"
#include "views.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

const QRgb kBackground = qRgb(40, 41, 42);
const QRgb kBlack = qRgb(0, 0, 0);
enum Layout { ViewAll, PlanarOnly, TopoOnly, SpectralOnly };

void useLayout(CWsa* wsa, int band, int layout)
{
    s_band = band;
    nMinDraw = band ? -100 : -110;
    nMaxDraw = band ? -50 : -10;
    wsa->resizeGrid();
    layout == ViewAll      ? wsa->procViewAll()
    : layout == PlanarOnly ? wsa->procPlanar()
    : layout == TopoOnly   ? wsa->procTopographic()
                           : wsa->procSpectral();
}

QImage paint(const std::function<void(QPainter*)>& draw)
{
    QImage image(800, 400, QImage::Format_ARGB32_Premultiplied);
    image.fill(kBackground);
    QPainter painter(&image);
    painter.setFont(viewFont());
    draw(&painter);
    return image;
}

// Text pixels of `text` drawn alone at `baseline` that `image` does not show; -1 if none inked.
int textMismatches(const QImage& image, QPoint baseline, const QString& text)
{
    const QImage alone = paint([&](QPainter* p) { p->drawText(baseline, text); });
    int mismatches = 0, inked = 0;
    for (int y = 0; y < alone.height(); ++y)
        for (int x = 0; x < alone.width(); ++x)
            if (alone.pixel(x, y) != kBackground) {
                ++inked;
                mismatches += image.pixel(x, y) != alone.pixel(x, y);
            }
    return inked ? mismatches : -1;
}

QRgb mapColor(int index)
{
    return qRgb(colormap[index].r, colormap[index].g, colormap[index].b);
}

void clearDensity(int samples, long peak)
{
    std::memset(popularity, 0, sizeof popularity);
    maxData.num_samples = samples;
    sweep_peak_max = peak;
}

} // namespace

class TestTopo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_env = std::make_unique<wsatest::AnalyzerEnv>();
        m_wsa = std::make_unique<CWsa>();
        wsatest::takeOverLink(); // no records arrive behind the tests' back
    }
    void cleanup() { bReferencePainting = false; }

    void colorIndex_data()
    {
        QTest::addColumn<long>("count");
        QTest::addColumn<long>("peak");
        QTest::addColumn<int>("integerIndex");
        QTest::addColumn<int>("floatIndex");
        QTest::newRow("seen once, peak 1") << 1L << 1L << 239 << 239;
        QTest::newRow("peak 199: K 6000") << 1L << 199L << 30 << 30;
        QTest::newRow("peak 200: K 12000") << 1L << 200L << 60 << 60;
        QTest::newRow("peak 399: K 12000") << 1L << 399L << 30 << 30;
        QTest::newRow("peak 400: K 24000") << 1L << 400L << 60 << 60;
        QTest::newRow("saturates") << 8L << 199L << 239 << 239;
        QTest::newRow("ratio first loses a unit") << 9L << 1000L << 216 << 215;
        QTest::newRow("no count") << 0L << 7L << 0 << 0;
    }
    void colorIndex()
    {
        QFETCH(long, count);
        QFETCH(long, peak);
        QFETCH(int, integerIndex);
        QFETCH(int, floatIndex);
        QCOMPARE(topoColorIndex(count, peak), integerIndex);
        QCOMPARE(topoColorIndexF(count, peak), floatIndex);
    }

    void legends_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<int>("layout");
        QTest::addColumn<QPoint>("legend"); // left, top of its frame
        QTest::addColumn<QPoint>("low");
        QTest::addColumn<QPoint>("high");
        QTest::addColumn<QStringList>("texts");
        const QStringList topo{"0.0%", "2.0%"}, s24{"-110 dBm", "-10 dBm"},
            s5{"-100 dBm", "-50 dBm"};
        const struct {
            const char* name;
            int band, layout, legendX, legendY, lowX, highX;
            QStringList texts;
        } rows[] = {{"topo 2.4 single", 0, TopoOnly, 141, 12, 103, 386, topo},
                    {"topo 2.4 all", 0, ViewAll, 141, 134, 103, 386, topo},
                    {"topo 5 single", 1, TopoOnly, 157, 12, 119, 402, topo},
                    {"topo 5 all", 1, ViewAll, 157, 134, 119, 402, topo},
                    {"spectral 2.4 single", 0, SpectralOnly, 141, 12, 66, 388, s24},
                    {"spectral 2.4 all", 0, ViewAll, 141, 256, 66, 388, s24},
                    {"spectral 5 single", 1, SpectralOnly, 157, 12, 82, 404, s5},
                    {"spectral 5 all", 1, ViewAll, 157, 256, 82, 404, s5}};
        for (const auto& r : rows)
            QTest::newRow(r.name) << r.band << r.layout << QPoint(r.legendX, r.legendY)
                                  << QPoint(r.lowX, r.legendY + 10)
                                  << QPoint(r.highX, r.legendY + 10) << r.texts;
    }
    void legends()
    {
        QFETCH(int, band);
        QFETCH(int, layout);
        QFETCH(QPoint, legend);
        QFETCH(QPoint, low);
        QFETCH(QPoint, high);
        QFETCH(QStringList, texts);
        useLayout(m_wsa.get(), band, layout);
        clearDensity(0, 1);
        const bool spectral = texts[0].endsWith("dBm");
        const int l = legend.x(), t = legend.y();
        for (bool reference : {true, false}) {
            bReferencePainting = reference;
            const QImage image = paint([&](QPainter* p) {
                spectral ? m_wsa->onPaint_SpectralView(p) : m_wsa->onPaint_TopoView(p);
            });
            for (int k = 0; k < 240; ++k)
                for (int y = t + 1; y <= t + 8; ++y)
                    QCOMPARE(image.pixel(l + 1 + k, y), mapColor(k));
            // A black frame round the colour lines, nothing of the bar outside it.
            for (int x = l - 1; x <= l + 242; ++x)
                for (int y = t - 1; y <= t + 10; ++y) {
                    if (x == l - 1 || x == l + 242 || y == t - 1 || y == t + 10)
                        QCOMPARE(image.pixel(x, y), kBackground);
                    else if (x == l || x == l + 241 || y == t || y == t + 9)
                        QCOMPARE(image.pixel(x, y), kBlack);
                }
            QCOMPARE(textMismatches(image, low, texts[0]), 0);
            QCOMPARE(textMismatches(image, high, texts[1]), 0);
        }
    }

    // Sample 5 of 6 seen `count` times at magnitude `level`; sample 6 too, but outside the sweep.
    void densityPoint_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<int>("layout");
        QTest::addColumn<long>("peak");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("index"); // -1: not drawn
        QTest::newRow("2.4 all, peak 1") << 0 << int(ViewAll) << 1L << 1 << 61 << 197 << 239;
        QTest::newRow("2.4 single, peak 400") << 0 << int(TopoOnly) << 400L << 1 << 81 << 237 << 60;
        QTest::newRow("5 all, product first")
            << 1 << int(ViewAll) << 1000L << 9 << 51 << 148 << 216;
        QTest::newRow("5 single") << 1 << int(TopoOnly) << 300L << 5 << 99 << 318 << 200;
        QTest::newRow("|nMinDraw| left out") << 0 << int(ViewAll) << 1L << 1 << 110 << 245 << -1;
        QTest::newRow("|nMaxDraw| left out") << 1 << int(TopoOnly) << 1L << 1 << 50 << 25 << -1;
    }
    void densityPoint()
    {
        QFETCH(int, band);
        QFETCH(int, layout);
        QFETCH(long, peak);
        QFETCH(int, count);
        QFETCH(int, level);
        QFETCH(int, row);
        QFETCH(int, index);
        useLayout(m_wsa.get(), band, layout);
        clearDensity(6, peak);
        popularity[5][level] = popularity[6][level] = count;
        for (bool reference : {true, false}) {
            bReferencePainting = reference;
            const QImage image = paint([&](QPainter* p) { m_wsa->onPaint_TopoView(p); });
            QCOMPARE(image.pixel(55, row), index < 0 ? kBlack : mapColor(index));
            QCOMPARE(image.pixel(56, row), kBlack);
        }
    }

    // The point sits at the sweep's level, coloured by the count at absDbm (the magnitude kept
    // from the last counted sample in a redraw), edge levels included.
    void samplePoint_data()
    {
        QTest::addColumn<int>("sample");
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("absDbm");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("index"); // -1: nothing drawn
        QTest::newRow("count of absDbm, ratio first") << 7 << -50 << 80 << 186 << 215;
        QTest::newRow("edge level drawn") << 7 << -110 << 110 << 245 << 239;
        QTest::newRow("absDbm beyond the table") << 7 << -50 << 500 << 186 << 0;
        QTest::newRow("negative sample") << -1 << -50 << 80 << 0 << -1;
        QTest::newRow("sample beyond a sweep") << int(SA_MAX_SAMPLES) << -50 << 80 << 0 << -1;
    }
    void samplePoint()
    {
        QFETCH(int, sample);
        QFETCH(int, level);
        QFETCH(int, absDbm);
        QFETCH(int, row);
        QFETCH(int, index);
        useLayout(m_wsa.get(), 0, ViewAll);
        clearDensity(0, 1000);
        popularity[7][80] = 9;
        popularity[7][110] = 1000;
        currentData.data[7] = level;
        for (bool reference : {true, false}) {
            bReferencePainting = reference;
            const QImage before = paint([&](QPainter* p) { m_wsa->onPaint_TopoView(p); });
            const QImage after = paint([&](QPainter* p) {
                m_wsa->onPaint_TopoView(p);
                m_wsa->drawTopoSample(p, sample, absDbm);
            });
            if (index < 0)
                QCOMPARE(after, before);
            else
                QCOMPARE(after.pixel(50 + sample, row), mapColor(index));
        }
    }

private:
    std::unique_ptr<wsatest::AnalyzerEnv> m_env;
    std::unique_ptr<CWsa> m_wsa;
};

QTEST_MAIN(TestTopo)
#include "tst_topo.moc"
