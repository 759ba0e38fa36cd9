// The views at several sizes and device pixel ratios, rendered offscreen: a known sweep's peak is
// drawn at the column its frequency maps to, the axes and the band plan's channel numbers are
// where their frequencies are, the waterfall's newest row is on top, and the density shows the
// level it counted.
#include <QRandomGenerator>
#include <QtTest>
#include <limits>

#include "colormap.h"
#include "densityview.h"
#include "desktoptestsupport.h"
#include "markers.h"
#include "spectrumview.h"
#include "sweepfeed.h"
#include "waterfallview.h"

using namespace wsa::desktop;

namespace
{

const QSize kSizes[] = {{520, 260}, {1100, 420}, {1900, 700}};
const qreal kRatios[] = {1.0, 2.0};

QRect devicePixels(const QRectF& r, qreal dpr)
{
    return QRectF(r.topLeft() * dpr, r.size() * dpr).toAlignedRect();
}

// The topmost device pixel of this colour in the device-pixel rectangle, or (-1, -1).
QPoint topmost(const QImage& image, const QRect& area, QRgb color)
{
    const QRect r = area.intersected(image.rect());
    for (int y = r.top(); y <= r.bottom(); ++y) {
        for (int x = r.left(); x <= r.right(); ++x) {
            if ((image.pixel(x, y) & 0xffffff) == (color & 0xffffff))
                return {x, y};
        }
    }
    return {-1, -1};
}

DisplaySettings onlyCurrent()
{
    DisplaySettings s;
    std::fill(std::begin(s.traceShown), std::end(s.traceShown), false);
    s.traceShown[int(Trace::Current)] = true;
    return s;
}

} // namespace

class TestDesktopViews : public QObject
{
    Q_OBJECT
private slots:
    void peakIsDrawnAtItsFrequencysColumn_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<double>("hz");
        QTest::newRow("2.4 GHz ch 6") << int(wsa::BandId::Ghz24) << 2437e6;
        QTest::newRow("5 GHz ch 100") << int(wsa::BandId::Ghz5) << 5500e6;
        QTest::newRow("6 GHz ch 93") << int(wsa::BandId::Ghz6) << 6415e6;
    }
    void peakIsDrawnAtItsFrequencysColumn()
    {
        QFETCH(int, band);
        QFETCH(double, hz);
        const wsa::Band& b = *wsa::findBandIndex(band);
        SweepFeed feed(b);
        Markers markers;
        SpectrumView view(&feed, &markers);
        view.setSettings(onlyCurrent());
        const auto sweep = desktoptest::sweepWithSignal(b, hz, -30, -115);
        feed.addSweep(sweep.data(), int(sweep.size()), 0);
        const QRgb trace = traceColor(Trace::Current).rgb();
        auto check = [&](const QSize& size, qreal dpr) {
            const QImage image = desktoptest::render(view, size, dpr);
            const PlotLayout l = view.plotLayout();
            const double x = view.axis().columnOfBin(desktoptest::cellOf(b, hz)) * dpr;
            const double y = yOfLevel(l.plot, -120, -10, -30) * dpr;
            const QPoint top = topmost(image, devicePixels(l.plot, dpr), trace);
            const QByteArray where = QByteArray::number(size.width()) + " @" +
                                     QByteArray::number(dpr) + " column " +
                                     QByteArray::number(top.x()) + " vs " + QByteArray::number(x);
            QVERIFY2(std::abs(top.x() - x) <= 1.5, where);
            QVERIFY2(std::abs(top.y() - y) <= 1.5, where);
        };
        for (const QSize& size : kSizes) {
            for (qreal dpr : kRatios)
                check(size, dpr);
        }
        // A larger font widens the margins: every layer follows the new plot, at the same size.
        check(kSizes[1], 1);
        QFont big = view.font();
        big.setPointSizeF(big.pointSizeF() * 2);
        view.setFont(big);
        check(kSizes[1], 1);
    }

    void decimationKeepsNarrowDips()
    {
        // 1000 cells in a few hundred columns: a one-cell dip must survive as well as a peak.
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz6);
        SweepFeed feed(b);
        Markers markers;
        SpectrumView view(&feed, &markers);
        view.setSettings(onlyCurrent());
        const auto sweep = desktoptest::sweepWithSignal(b, 6600e6, -110, -60);
        feed.addSweep(sweep.data(), int(sweep.size()), 0);
        for (qreal dpr : kRatios) {
            const QImage image = desktoptest::render(view, QSize(520, 260), dpr);
            const PlotLayout l = view.plotLayout();
            QVERIFY(l.plot.width() * dpr < b.grid.shown);
            const QRect area = devicePixels(l.plot, dpr);
            const QRgb trace = traceColor(Trace::Current).rgb();
            QPoint lowest(-1, -1);
            for (int y = area.bottom(); y >= area.top() && lowest.x() < 0; --y) {
                for (int x = area.left(); x <= area.right(); ++x) {
                    if ((image.pixel(x, y) & 0xffffff) == (trace & 0xffffff)) {
                        lowest = {x, y};
                        break;
                    }
                }
            }
            const double x = view.axis().columnOfHz(6600e6) * dpr;
            QVERIFY(std::abs(lowest.x() - x) <= 1.5);
            QVERIFY(std::abs(lowest.y() - yOfLevel(l.plot, -120, -10, -110) * dpr) <= 1.5);
        }
    }

    void axesAndChannelNumbersSitAtTheirFrequencies_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<int>("width");
        QTest::newRow("2.4 GHz 20") << int(wsa::BandId::Ghz24) << 20;
        QTest::newRow("5 GHz 40") << int(wsa::BandId::Ghz5) << 40;
        QTest::newRow("5 GHz 160") << int(wsa::BandId::Ghz5) << 160;
        QTest::newRow("6 GHz 20") << int(wsa::BandId::Ghz6) << 20;
        QTest::newRow("6 GHz 80") << int(wsa::BandId::Ghz6) << 80;
    }
    void axesAndChannelNumbersSitAtTheirFrequencies()
    {
        QFETCH(int, band);
        QFETCH(int, width);
        const wsa::Band& b = *wsa::findBandIndex(band);
        SweepFeed feed(b);
        WaterfallView view(&feed);
        DisplaySettings s;
        s.channelWidthMHz = width;
        view.setSettings(s);
        const QRgb window = colors::window().rgb();
        for (const QSize& size : kSizes) {
            for (qreal dpr : kRatios) {
                const QImage image = desktoptest::render(view, size, dpr);
                const PlotLayout l = view.plotLayout();
                const wsa::Axis axis = view.axis();
                // The plot spans the grid's cells exactly: first cell's lower edge to the last's
                // upper edge.
                QCOMPARE(axis.columnOfHz(b.grid.lowEdgeHz()), l.plot.left());
                QCOMPARE(axis.columnOfHz(b.grid.highEdgeHz()), l.plot.right());

                const QFontMetricsF fm(view.font());
                const auto ticks = frequencyTicks(axis, view.span(), frequencyTickGap(fm));
                QVERIFY(ticks.size() >= 2);
                for (const Tick& t : ticks) {
                    QVERIFY(t.value >= b.grid.lowEdgeHz() && t.value <= b.grid.highEdgeHz());
                    QCOMPARE(t.label, QString::number(t.value / 1e6));
                    const QRectF under(t.pos - 6, l.frequencyLabels.top(), 12,
                                       l.frequencyLabels.height());
                    QVERIFY(desktoptest::hasInk(image, devicePixels(under, dpr), window));
                }

                const auto marks = channelMarks(b, width, axis, view.span(), l.channelLabels, fm);
                int labelled = 0;
                double lastRight = -1e9;
                for (const ChannelMark& m : marks) {
                    const wsa::Channel* c = b.channel(width, m.number);
                    QVERIFY(c);
                    QCOMPARE(m.centerX, axis.columnOfHz(c->centerMHz * 1e6));
                    QVERIFY(m.centerX >= l.plot.left() && m.centerX <= l.plot.right());
                    if (!m.labelled)
                        continue;
                    ++labelled;
                    QVERIFY(m.labelRect.left() > lastRight);
                    lastRight = m.labelRect.right();
                    QVERIFY2(desktoptest::hasInk(image, devicePixels(m.labelRect, dpr), window),
                             QByteArray::number(m.number));
                }
                // Every channel centred inside the plot appears; at the largest size every label
                // fits.
                const auto plan = b.channels(width);
                QCOMPARE(int(marks.size()),
                         int(std::count_if(plan.begin(), plan.end(), [&](const wsa::Channel& c) {
                             return c.centerMHz * 1e6 >= b.grid.lowEdgeHz() &&
                                    c.centerMHz * 1e6 <= b.grid.highEdgeHz();
                         })));
                QVERIFY(labelled >= 1);
                if (size.width() >= 1900 && (width >= 40 || band != int(wsa::BandId::Ghz6)))
                    QCOMPARE(labelled, int(marks.size()));
            }
        }
    }

    void spanIsClampedIntoTheGrid()
    {
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz24);
        const SweepGrid grid{b.grid.startHz, b.grid.stepHz, b.grid.shown};
        auto span = [&](double lo, double hi) {
            DisplaySettings s;
            s.spanLowHz = lo;
            s.spanHighHz = hi;
            return visibleSpan(grid, s);
        };
        const Span whole = span(0, 0);
        QCOMPARE(whole.lowHz, b.grid.lowEdgeHz());
        QCOMPARE(whole.highHz, b.grid.highEdgeHz());
        QCOMPARE(span(2430e6, 2440e6).lowHz, 2430e6);
        // Past an edge: moved inside, width kept.
        QCOMPARE(span(2380e6, 2400e6).lowHz, b.grid.lowEdgeHz());
        QCOMPARE(span(2380e6, 2400e6).widthHz(), 20e6);
        QCOMPARE(span(2480e6, 2600e6).highHz, b.grid.highEdgeHz());
        // Too narrow: widened about its centre; too wide or nonsense: the whole grid.
        QCOMPARE(span(2437e6, 2437e6 + 1).widthHz(), kMinSpanCells * b.grid.stepHz);
        QCOMPARE((span(2437e6, 2437e6 + 1).lowHz + span(2437e6, 2437e6 + 1).highHz) / 2,
                 2437e6 + 0.5);
        QCOMPARE(span(1e9, 9e9).widthHz(), whole.widthHz());
        QCOMPARE(span(2440e6, 2430e6).lowHz, whole.lowHz);
        QCOMPARE(span(std::nan(""), 2430e6).lowHz, whole.lowHz);
    }

    void zoomedSpanMapsFrequenciesOntoThePlot()
    {
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz5);
        SweepFeed feed(b);
        Markers markers;
        SpectrumView spectrum(&feed, &markers);
        WaterfallView waterfall(&feed);
        DensityView density(&feed);
        DisplaySettings s = onlyCurrent();
        s.spanLowHz = 5490e6;
        s.spanHighHz = 5530e6;
        for (PlotView* v : {static_cast<PlotView*>(&spectrum), static_cast<PlotView*>(&waterfall),
                            static_cast<PlotView*>(&density)})
            v->setSettings(s);
        const double hz = 5513e6; // clear of tick and channel lines
        const auto sweep = desktoptest::sweepWithSignal(b, hz, -30.5f, -115);
        for (int k = 0; k < 5; ++k)
            feed.addSweep(sweep.data(), int(sweep.size()), k);
        const int cell = desktoptest::cellOf(b, hz);
        markers.place(0, feed.shown(), 5200e6); // outside the span: not drawn anywhere
        for (const QSize& size : kSizes) {
            for (qreal dpr : kRatios) {
                QImage image = desktoptest::render(spectrum, size, dpr);
                QCOMPARE(topmost(image, image.rect(), colors::marker().rgb()), QPoint(-1, -1));
                const PlotLayout l = spectrum.plotLayout();
                const wsa::Axis axis = spectrum.axis();
                QVERIFY(std::abs(axis.columnOfHz(5490e6) - l.plot.left()) < 1e-6);
                QVERIFY(std::abs(axis.columnOfHz(5530e6) - l.plot.right()) < 1e-6);
                const QPoint top =
                    topmost(image, devicePixels(l.plot, dpr), traceColor(Trace::Current).rgb());
                QVERIFY(std::abs(top.x() - axis.columnOfBin(cell) * dpr) <= 1.5);

                const auto ticks = frequencyTicks(axis, spectrum.span(),
                                                  frequencyTickGap(QFontMetricsF(spectrum.font())));
                QVERIFY(ticks.size() >= 2);
                for (const Tick& t : ticks)
                    QVERIFY(t.value >= 5490e6 && t.value <= 5530e6);
                const auto marks = channelMarks(b, 20, axis, spectrum.span(), l.channelLabels,
                                                QFontMetricsF(spectrum.font()));
                QCOMPARE(int(marks.size()), 2);
                QCOMPARE(marks[0].number, 100);
                QCOMPARE(marks[1].centerX, axis.columnOfHz(5520e6));

                image = desktoptest::render(waterfall, size, dpr);
                const int x = int(waterfall.axis().columnOfHz(hz) * dpr);
                const int y = int(waterfall.plotLayout().plot.top() * dpr);
                QCOMPARE(image.pixel(x, y) & 0xffffff,
                         colorScale()[std::size_t((-30.5 + 120) / 110 * 255)] & 0xffffff);
                image = desktoptest::render(density, size, dpr);
                const int yLevel = int(yOfLevel(density.plotLayout().plot, -120, -10, -30.5) * dpr);
                QCOMPARE(image.pixel(int(density.axis().columnOfHz(hz) * dpr), yLevel) & 0xffffff,
                         colorScale()[std::size_t(DensityView::shade(1, 1))] & 0xffffff);
                const int beside = int(density.axis().columnOfHz(hz + 3 * b.grid.stepHz) * dpr);
                QCOMPARE(image.pixel(beside, yLevel) & 0xffffff, colorScale()[0] & 0xffffff);
            }
        }
    }

    void levelAxisMatchesTheSettings()
    {
        const QRectF plot(50, 20, 400, 200);
        const auto ticks = levelTicks(plot, -120, -10, 30);
        QVERIFY(ticks.size() >= 3);
        for (const Tick& t : ticks) {
            QCOMPARE(std::fmod(t.value, 10.0), 0.0);
            QCOMPARE(t.pos, yOfLevel(plot, -120, -10, t.value));
            QCOMPARE(levelOfY(plot, -120, -10, t.pos), t.value);
        }
        QCOMPARE(yOfLevel(plot, -120, -10, -120), plot.bottom());
        QCOMPARE(yOfLevel(plot, -120, -10, -10), plot.top());
        // A range that is empty or upside down yields no ticks, not a hang.
        QVERIFY(levelTicks(plot, -50, -50, 30).empty());
        QVERIFY(levelTicks(plot, -10, -120, 30).empty());
        QVERIFY(levelTicks(plot, -120, -10, 0).empty());
    }

    void waterfallShowsTheNewestSweepOnTop()
    {
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz5);
        SweepFeed feed(b, 2000);
        WaterfallView view(&feed);
        // Off round frequencies and channel edges, whose lines are drawn over the picture.
        const double a = 5305e6;
        const double c = 5715e6;
        const QRgb hot = colorScale()[255]; // the top of the level range
        for (qreal dpr : kRatios) {
            for (const QSize& size : kSizes) {
                view.resize(size);
                const auto old = desktoptest::sweepWithSignal(b, a, -10, -115, 3);
                // More sweeps than the ring has rows, so that it has wrapped.
                for (int s = 0; s < 1500; ++s)
                    feed.addSweep(old.data(), int(old.size()), s);
                const auto newest = desktoptest::sweepWithSignal(b, c, -10, -115, 3);
                feed.addSweep(newest.data(), int(newest.size()), 1500);
                const QImage image = desktoptest::render(view, size, dpr);
                const PlotLayout l = view.plotLayout();
                const int top = int(l.plot.top() * dpr);
                auto pixelAt = [&](double hz, int row) {
                    return image.pixel(int(view.axis().columnOfHz(hz) * dpr), row) & 0xffffff;
                };
                QCOMPARE(pixelAt(c, top), hot & 0xffffff);
                QVERIFY(pixelAt(a, top) != (hot & 0xffffff));
                QCOMPARE(pixelAt(a, top + 1), hot & 0xffffff);
                QCOMPARE(pixelAt(a, int(l.plot.bottom() * dpr) - 1), hot & 0xffffff);
                QVERIFY(pixelAt(c, top + 1) != (hot & 0xffffff));
            }
        }
    }

    void densityShowsTheCountedLevel()
    {
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz24);
        SweepFeed feed(b);
        DensityView view(&feed);
        const auto sweep = desktoptest::sweepWithSignal(b, 2462e6, -40.5f, -95.5f, 5);
        for (int s = 0; s < 20; ++s)
            feed.addSweep(sweep.data(), int(sweep.size()), s);
        const QRgb always = colorScale()[std::size_t(DensityView::shade(1, 1))];
        const QRgb never = colorScale()[0];
        for (qreal dpr : kRatios) {
            for (const QSize& size : kSizes) {
                const QImage image = desktoptest::render(view, size, dpr);
                const PlotLayout l = view.plotLayout();
                const int x = int(view.axis().columnOfHz(2462e6) * dpr);
                auto at = [&](double dbm) {
                    return image.pixel(x, int(yOfLevel(l.plot, -120, -10, dbm) * dpr)) & 0xffffff;
                };
                QCOMPARE(at(-40.5), always & 0xffffff);
                QCOMPARE(at(-95.5), never & 0xffffff); // the floor lies elsewhere at this column
                QCOMPARE(at(-73.3), never & 0xffffff);
                const int floorX = int(view.axis().columnOfHz(2412e6) * dpr);
                QCOMPARE(image.pixel(floorX, int(yOfLevel(l.plot, -120, -10, -95.5) * dpr)) &
                             0xffffff,
                         always & 0xffffff);
            }
        }
        QCOMPARE(DensityView::shade(0, 10), 0);
        QCOMPARE(DensityView::shade(5, 0), 0);
        QVERIFY(DensityView::shade(1, 1000) > 0);
        QVERIFY(DensityView::shade(1, 1000) < DensityView::shade(10, 1000));
        QCOMPARE(DensityView::shade(20, 10), 255);
    }

    void tinyAndHugeSizesPaintWithoutFault()
    {
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz6);
        SweepFeed feed(b, 64);
        Markers markers;
        SpectrumView spectrum(&feed, &markers);
        DensityView density(&feed);
        WaterfallView waterfall(&feed);
        const auto sweep = desktoptest::sweepWithSignal(b, 6500e6, -30, -100);
        markers.place(0, feed.shown(), 6500e6);
        for (PlotView* v : {static_cast<PlotView*>(&spectrum), static_cast<PlotView*>(&density),
                            static_cast<PlotView*>(&waterfall)}) {
            for (const QSize& size : {QSize(1, 1), QSize(30, 20), QSize(4000, 90)}) {
                feed.addSweep(sweep.data(), int(sweep.size()), 0);
                QVERIFY(!desktoptest::render(*v, size, 1.5).isNull());
                feed.addSweep(sweep.data(), int(sweep.size()), 1); // into the layer just built
                QVERIFY(!desktoptest::render(*v, size, 1.5).isNull());
            }
        }
    }

    void sweepBySweepLayersMatchARebuild()
    {
        // The incremental path (a sweep into layers built before) must paint exactly what a
        // rebuild from the store paints, also once the waterfall's ring has wrapped.
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz5);
        SweepFeed feed(b, 600);
        Markers markers;
        SpectrumView spectrum(&feed, &markers);
        DensityView density(&feed);
        WaterfallView waterfall(&feed);
        desktoptest::BusyBand busy(b, 5);
        for (PlotView* v : {static_cast<PlotView*>(&spectrum), static_cast<PlotView*>(&density),
                            static_cast<PlotView*>(&waterfall)}) {
            for (qreal dpr : kRatios) {
                v->resize(700, 180);
                v->show();
                desktoptest::render(*v, v->size(), dpr); // builds the layers
                for (int s = 0; s < 300; ++s)
                    feed.addSweep(busy.next().data(), b.grid.shown, s);
                const QImage incremental = desktoptest::render(*v, v->size(), dpr);
                feed.setPaused(true); // a pause rebuilds every layer from the store
                const QImage rebuilt = desktoptest::render(*v, v->size(), dpr);
                feed.setPaused(false);
                QVERIFY2(incremental == rebuilt, v->metaObject()->className());
                v->hide();
            }
        }
    }

    void randomSettingsAndSweepsPaintWithoutFault()
    {
        // Spans, level ranges, widths and sizes drawn at random, sweeps with non-finite and
        // absurd levels: every paint stays inside its buffers (run under the sanitizers).
        QRandomGenerator rng(20261124);
        for (const wsa::Band& b : wsa::allBands()) {
            SweepFeed feed(b, 128);
            Markers markers;
            SpectrumView spectrum(&feed, &markers);
            DensityView density(&feed);
            WaterfallView waterfall(&feed);
            std::vector<float> sweep(std::size_t(b.grid.raw));
            const float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                                 std::numeric_limits<float>::infinity(), -1e30f, 1e30f, 0.0f};
            for (int k = 0; k < 40; ++k) {
                for (float& v : sweep)
                    v = rng.bounded(20) == 0 ? odd[rng.bounded(5)] : -130 + float(rng.bounded(140));
                feed.addSweep(sweep.data(), int(sweep.size()), k);
                DisplaySettings s;
                const double lo = b.grid.lowEdgeHz() - 50e6 +
                                  rng.bounded(b.grid.highEdgeHz() - b.grid.lowEdgeHz());
                s.spanLowHz = rng.bounded(3) == 0 ? 0 : lo;
                s.spanHighHz = rng.bounded(3) == 0 ? 0 : lo + rng.bounded(400e6) - 20e6;
                s.bottomDbm = -130 + rng.bounded(125);
                s.topDbm = s.bottomDbm + 1 + rng.bounded(130);
                s.channelWidthMHz = b.widthsMHz[rng.bounded(int(b.widthsMHz.size()))];
                for (bool& shown : s.traceShown)
                    shown = rng.bounded(2);
                markers.place(int(rng.bounded(4)), feed.shown(), lo);
                const QSize size(1 + rng.bounded(1200), 1 + rng.bounded(500));
                const qreal dpr = 1 + rng.bounded(3) * 0.5;
                for (PlotView* v :
                     {static_cast<PlotView*>(&spectrum), static_cast<PlotView*>(&density),
                      static_cast<PlotView*>(&waterfall)}) {
                    v->setSettings(s);
                    QVERIFY(!desktoptest::render(*v, size, dpr).isNull());
                    QVERIFY(v->span().lowHz >= b.grid.lowEdgeHz() - 1);
                    QVERIFY(v->span().highHz <= b.grid.highEdgeHz() + 1);
                }
            }
        }
    }

    void resetHoldsClearsTheHeldTraces()
    {
        const wsa::Band& b = *wsa::findBand(wsa::BandId::Ghz24);
        SweepFeed feed(b);
        Markers markers;
        SpectrumView view(&feed, &markers);
        DisplaySettings s;
        std::fill(std::begin(s.traceShown), std::end(s.traceShown), false);
        s.traceShown[int(Trace::Maximum)] = true;
        view.setSettings(s);
        const auto high = desktoptest::sweepWithSignal(b, 2437e6, -30, -100);
        const auto low = desktoptest::sweepWithSignal(b, 2437e6, -60, -100);
        feed.addSweep(high.data(), int(high.size()), 0);
        feed.addSweep(low.data(), int(low.size()), 1);
        const QRgb max = traceColor(Trace::Maximum).rgb();
        auto peakRow = [&] {
            const QImage image = desktoptest::render(view, QSize(900, 400), 1);
            return topmost(image, view.plotLayout().plot.toAlignedRect(), max).y();
        };
        view.resize(900, 400);
        const QRectF plot = view.plotLayout().plot;
        QVERIFY2(std::abs(peakRow() - yOfLevel(plot, -120, -10, -30)) <= 1.5,
                 QByteArray::number(peakRow()) + " " +
                     QByteArray::number(yOfLevel(plot, -120, -10, -30)));
        feed.resetHolds();
        QCOMPARE(peakRow(), -1);
        feed.addSweep(low.data(), int(low.size()), 2);
        QVERIFY(std::abs(peakRow() - yOfLevel(plot, -120, -10, -60)) <= 1.5);
    }
};

QTEST_MAIN(TestDesktopViews)
#include "tst_desktop_views.moc"
