// The views at several sizes and device pixel ratios, rendered offscreen: a known sweep's peak or
// dip is drawn at the column its frequency maps to, the axes and the band plan's channel numbers
// are where their frequencies are, the waterfall's newest row is on top, and the density shows
// the level it counted.
#include <QRandomGenerator>
#include <QtTest>
#include <limits>

#include "colormap.h"
#include "desktoptestsupport.h"

using namespace desktoptest;

namespace
{

double yOf(const QRectF& plot, double dbm)
{
    return yOfLevel(plot, -120, -10, dbm);
}

} // namespace

class TestDesktopViews : public QObject
{
    Q_OBJECT
private slots:
    void extremeIsDrawnAtItsFrequencysColumn_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<double>("hz");
        QTest::addColumn<float>("level");
        QTest::addColumn<float>("floor");
        QTest::newRow("2.4 GHz ch 6") << int(wsa::BandId::Ghz24) << 2437e6 << -30.f << -115.f;
        QTest::newRow("5 GHz ch 100") << int(wsa::BandId::Ghz5) << 5500e6 << -30.f << -115.f;
        QTest::newRow("6 GHz ch 93") << int(wsa::BandId::Ghz6) << 6415e6 << -30.f << -115.f;
        // 1000 cells in a few hundred columns: a one-cell dip must survive as well as a peak.
        QTest::newRow("6 GHz dip") << int(wsa::BandId::Ghz6) << 6600e6 << -110.f << -60.f;
    }
    void extremeIsDrawnAtItsFrequencysColumn()
    {
        QFETCH(int, band);
        QFETCH(double, hz);
        QFETCH(float, level);
        QFETCH(float, floor);
        const wsa::Band& b = *wsa::findBandIndex(band);
        Views v(b);
        v.spectrum.setSettings(onlyTrace());
        addSignal(v.feed, hz, level, floor);
        auto check = [&](const QSize& size, qreal dpr) {
            const QImage image = render(v.spectrum, size, dpr);
            const PlotLayout l = v.spectrum.plotLayout();
            if (level < floor && size.width() < 600) // the dip's cells outnumber the columns
                QVERIFY(l.plot.width() * dpr < b.grid.shown);
            const QPoint at = firstOf(image, devicePixels(l.plot, dpr),
                                      traceColor(Trace::Current).rgb(), level > floor);
            const double x = v.spectrum.axis().columnOfBin(cellOf(b, hz)) * dpr;
            QVERIFY2(std::abs(at.x() - x) <= 1.5,
                     qPrintable(QString("%1 vs %2").arg(at.x()).arg(x)));
            QVERIFY(std::abs(at.y() - yOf(l.plot, level) * dpr) <= 1.5);
        };
        atEverySize(check);
        // A larger font widens the margins: every layer follows the new plot, at the same size.
        QFont big = v.spectrum.font();
        big.setPointSizeF(big.pointSizeF() * 2);
        v.spectrum.setFont(big);
        check(QSize(1100, 420), 1);
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
        const auto plan = b.channels(width);
        const auto inGrid = std::count_if(plan.begin(), plan.end(), [&](const wsa::Channel& c) {
            return c.centerMHz * 1e6 >= b.grid.lowEdgeHz() &&
                   c.centerMHz * 1e6 <= b.grid.highEdgeHz();
        });
        atEverySize([&](const QSize& size, qreal dpr) {
            const QImage image = render(view, size, dpr);
            const PlotLayout l = view.plotLayout();
            const wsa::Axis axis = view.axis();
            // The plot spans the grid's cells exactly: first cell's lower edge to the last's upper.
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
                QVERIFY(hasInk(image, devicePixels(under, dpr), window));
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
                QVERIFY2(hasInk(image, devicePixels(m.labelRect, dpr), window),
                         QByteArray::number(m.number));
            }
            // Every channel centred inside the plot appears; at the largest size every label fits.
            QCOMPARE(qsizetype(marks.size()), qsizetype(inGrid));
            QVERIFY(labelled >= 1);
            if (size.width() >= 1900 && (width >= 40 || band != int(wsa::BandId::Ghz6)))
                QCOMPARE(labelled, int(marks.size()));
        });
    }

    void spanIsClampedIntoTheGrid()
    {
        const wsa::Band& b = band(wsa::BandId::Ghz24);
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
        const Span narrow = span(2437e6, 2437e6 + 1);
        QCOMPARE(narrow.widthHz(), kMinSpanCells * b.grid.stepHz);
        QCOMPARE((narrow.lowHz + narrow.highHz) / 2, 2437e6 + 0.5);
        QCOMPARE(span(1e9, 9e9).widthHz(), whole.widthHz());
        QCOMPARE(span(2440e6, 2430e6).lowHz, whole.lowHz);
        QCOMPARE(span(std::nan(""), 2430e6).lowHz, whole.lowHz);
    }

    void zoomedSpanMapsFrequenciesOntoThePlot()
    {
        const wsa::Band& b = band(wsa::BandId::Ghz5);
        Views v(b);
        DisplaySettings s = onlyTrace();
        s.spanLowHz = 5490e6;
        s.spanHighHz = 5530e6;
        v.setSettings(s);
        const double hz = 5513e6; // clear of tick and channel lines
        for (int k = 0; k < 5; ++k)
            addSignal(v.feed, hz, -30.5f, -115, 1, k);
        v.markers.place(0, v.feed.shown(), 5200e6); // outside the span: not drawn anywhere
        atEverySize([&](const QSize& size, qreal dpr) {
            QImage image = render(v.spectrum, size, dpr);
            QCOMPARE(firstOf(image, image.rect(), colors::marker().rgb()), QPoint(-1, -1));
            const PlotLayout l = v.spectrum.plotLayout();
            const wsa::Axis axis = v.spectrum.axis();
            QVERIFY(std::abs(axis.columnOfHz(5490e6) - l.plot.left()) < 1e-6);
            QVERIFY(std::abs(axis.columnOfHz(5530e6) - l.plot.right()) < 1e-6);
            const QPoint top =
                firstOf(image, devicePixels(l.plot, dpr), traceColor(Trace::Current).rgb());
            QVERIFY(std::abs(top.x() - axis.columnOfBin(cellOf(b, hz)) * dpr) <= 1.5);

            const QFontMetricsF fm(v.spectrum.font());
            const auto ticks = frequencyTicks(axis, v.spectrum.span(), frequencyTickGap(fm));
            QVERIFY(ticks.size() >= 2);
            for (const Tick& t : ticks)
                QVERIFY(t.value >= 5490e6 && t.value <= 5530e6);
            const auto marks = channelMarks(b, 20, axis, v.spectrum.span(), l.channelLabels, fm);
            QCOMPARE(int(marks.size()), 2);
            QCOMPARE(marks[0].number, 100);
            QCOMPARE(marks[1].centerX, axis.columnOfHz(5520e6));

            image = render(v.waterfall, size, dpr);
            QCOMPARE(rgbAt(image, v.waterfall.axis().columnOfHz(hz) * dpr,
                           int(v.waterfall.plotLayout().plot.top() * dpr)),
                     rgb(colorScale()[std::size_t((-30.5 + 120) / 110 * 255)]));
            image = render(v.density, size, dpr);
            const int y = int(yOf(v.density.plotLayout().plot, -30.5) * dpr);
            QCOMPARE(rgbAt(image, int(v.density.axis().columnOfHz(hz) * dpr), y),
                     rgb(colorScale()[std::size_t(DensityView::shade(1, 1))]));
            const double beside = v.density.axis().columnOfHz(hz + 3 * b.grid.stepHz);
            QCOMPARE(rgbAt(image, int(beside * dpr), y), rgb(colorScale()[0]));
        });
    }

    void levelAxisMatchesTheSettings()
    {
        const QRectF plot(50, 20, 400, 200);
        const auto ticks = levelTicks(plot, -120, -10, 30);
        QVERIFY(ticks.size() >= 3);
        for (const Tick& t : ticks) {
            QCOMPARE(std::fmod(t.value, 10.0), 0.0);
            QCOMPARE(t.pos, yOf(plot, t.value));
            QCOMPARE(levelOfY(plot, -120, -10, t.pos), t.value);
        }
        QCOMPARE(yOf(plot, -120), plot.bottom());
        QCOMPARE(yOf(plot, -10), plot.top());
        // A range that is empty or upside down yields no ticks, not a hang.
        QVERIFY(levelTicks(plot, -50, -50, 30).empty());
        QVERIFY(levelTicks(plot, -10, -120, 30).empty());
        QVERIFY(levelTicks(plot, -120, -10, 0).empty());
    }

    void waterfallShowsTheNewestSweepOnTop()
    {
        SweepFeed feed(band(wsa::BandId::Ghz5), 2000);
        WaterfallView view(&feed);
        // Off round frequencies and channel edges, whose lines are drawn over the picture.
        const double a = 5305e6, c = 5715e6;
        const QRgb hot = rgb(colorScale()[255]); // the top of the level range
        atEverySize([&](const QSize& size, qreal dpr) {
            // More sweeps than the ring has rows, so that it has wrapped.
            for (int s = 0; s < 1500; ++s)
                addSignal(feed, a, -10, -115, 3, s);
            addSignal(feed, c, -10, -115, 3, 1500);
            const QImage image = render(view, size, dpr);
            const QRectF plot = view.plotLayout().plot;
            const int top = int(plot.top() * dpr);
            auto at = [&](double hz, int row) {
                return rgbAt(image, view.axis().columnOfHz(hz) * dpr, row);
            };
            QCOMPARE(at(c, top), hot);
            QVERIFY(at(a, top) != hot);
            QCOMPARE(at(a, top + 1), hot);
            QCOMPARE(at(a, int(plot.bottom() * dpr) - 1), hot);
            QVERIFY(at(c, top + 1) != hot);
        });
    }

    void densityShowsTheCountedLevel()
    {
        SweepFeed feed(band(wsa::BandId::Ghz24));
        DensityView view(&feed);
        for (int s = 0; s < 20; ++s)
            addSignal(feed, 2462e6, -40.5f, -95.5f, 5, s);
        const QRgb always = rgb(colorScale()[std::size_t(DensityView::shade(1, 1))]);
        const QRgb never = rgb(colorScale()[0]);
        atEverySize([&](const QSize& size, qreal dpr) {
            const QImage image = render(view, size, dpr);
            const QRectF plot = view.plotLayout().plot;
            auto at = [&](double hz, double dbm) {
                return rgbAt(image, view.axis().columnOfHz(hz) * dpr, yOf(plot, dbm) * dpr);
            };
            QCOMPARE(at(2462e6, -40.5), always);
            QCOMPARE(at(2462e6, -95.5), never); // the floor lies elsewhere at this column
            QCOMPARE(at(2462e6, -73.3), never);
            QCOMPARE(at(2412e6, -95.5), always);
        });
        QCOMPARE(DensityView::shade(0, 10), 0);
        QCOMPARE(DensityView::shade(5, 0), 0);
        QVERIFY(DensityView::shade(1, 1000) > 0);
        QVERIFY(DensityView::shade(1, 1000) < DensityView::shade(10, 1000));
        QCOMPARE(DensityView::shade(20, 10), 255);
    }

    void sweepBySweepLayersMatchARebuild()
    {
        // The incremental path (a sweep into layers built before) must paint exactly what a
        // rebuild from the store paints, also once the waterfall's ring has wrapped.
        const wsa::Band& b = band(wsa::BandId::Ghz5);
        Views v(b, 600);
        BusyBand busy(b, 5);
        for (PlotView* view : v.all()) {
            for (qreal dpr : {1.0, 2.0}) {
                view->resize(700, 180);
                view->show();
                render(*view, view->size(), dpr); // builds the layers
                for (int s = 0; s < 300; ++s)
                    v.feed.addSweep(busy.next().data(), b.grid.shown, s);
                const QImage incremental = render(*view, view->size(), dpr);
                v.feed.setPaused(true); // a pause rebuilds every layer from the store
                const QImage rebuilt = render(*view, view->size(), dpr);
                v.feed.setPaused(false);
                QVERIFY2(incremental == rebuilt, view->metaObject()->className());
                view->hide();
            }
        }
    }

    void oddSizesSettingsAndSweepsPaintWithoutFault()
    {
        // Tiny and huge sizes first, then spans, level ranges, widths and sizes drawn at random,
        // sweeps with non-finite and absurd levels: every paint, whole or into the layer just
        // built, stays inside its buffers (run under the sanitizers).
        const QSize fixed[] = {{1, 1}, {30, 20}, {4000, 90}};
        const float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity(), -1e30f, 1e30f, 0.0f};
        QRandomGenerator rng(20261124);
        for (const wsa::Band& b : wsa::allBands()) {
            Views v(b, 128);
            std::vector<float> sweep(std::size_t(b.grid.raw));
            for (int k = 0; k < 40; ++k) {
                for (float& level : sweep)
                    level =
                        rng.bounded(20) == 0 ? odd[rng.bounded(5)] : -130 + float(rng.bounded(140));
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
                v.markers.place(int(rng.bounded(4)), v.feed.shown(), lo);
                const QSize size =
                    k < 3 ? fixed[k] : QSize(1 + rng.bounded(1200), 1 + rng.bounded(500));
                const qreal dpr = 1 + rng.bounded(3) * 0.5;
                for (PlotView* view : v.all()) {
                    view->setSettings(k < 3 ? DisplaySettings() : s);
                    v.feed.addSweep(sweep.data(), int(sweep.size()), k);
                    QVERIFY(!render(*view, size, dpr).isNull());
                    v.feed.addSweep(sweep.data(), int(sweep.size()),
                                    k); // into the layer just built
                    QVERIFY(!render(*view, size, dpr).isNull());
                    QVERIFY(view->span().lowHz >= b.grid.lowEdgeHz() - 1);
                    QVERIFY(view->span().highHz <= b.grid.highEdgeHz() + 1);
                }
            }
        }
    }

    void resetHoldsClearsTheHeldTraces()
    {
        const wsa::Band& b = band(wsa::BandId::Ghz24);
        Views v(b);
        v.spectrum.setSettings(onlyTrace(Trace::Maximum));
        addSignal(v.feed, 2437e6, -30, -100, 1, 0);
        addSignal(v.feed, 2437e6, -60, -100, 1, 1);
        auto peakRow = [&] {
            const QImage image = render(v.spectrum, QSize(900, 400), 1);
            return firstOf(image, v.spectrum.plotLayout().plot.toAlignedRect(),
                           traceColor(Trace::Maximum).rgb())
                .y();
        };
        v.spectrum.resize(900, 400);
        const QRectF plot = v.spectrum.plotLayout().plot;
        QVERIFY2(std::abs(peakRow() - yOf(plot, -30)) <= 1.5, QByteArray::number(peakRow()));
        v.feed.resetHolds();
        QCOMPARE(peakRow(), -1);
        addSignal(v.feed, 2437e6, -60, -100, 1, 2);
        QVERIFY(std::abs(peakRow() - yOf(plot, -60)) <= 1.5);
    }
};

QTEST_MAIN(TestDesktopViews)
#include "tst_desktop_views.moc"
