// The instrument window as a user drives it: clicking, dragging and keys on the spectrum, the
// panel's peak search and resets, view modes, a band change, pause by the Space key while the
// store keeps counting, and a level range entered the wrong way round.
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QtTest>

#include "desktoptestsupport.h"
#include "markertable.h"

using namespace desktoptest;

namespace
{

QPoint pointAt(const SpectrumView* view, double hz, double dbm = -60)
{
    const PlotLayout l = view->plotLayout();
    return QPointF(view->axis().columnOfHz(hz), yOfLevel(l.plot, -120, -10, dbm)).toPoint();
}

void send(QWidget* target, QEvent::Type type, const QPoint& at, Qt::MouseButtons held)
{
    QMouseEvent e(type, at, target->mapToGlobal(at), Qt::NoButton, held, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &e);
}

void wheel(QWidget* target, const QPoint& at, int dy, Qt::KeyboardModifiers m = Qt::NoModifier)
{
    QWheelEvent e(at, target->mapToGlobal(at), QPoint(), QPoint(0, dy), Qt::NoButton, m,
                  Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(target, &e);
}

void click(const InstrumentWindow& w, const char* text)
{
    QPushButton* b = childWithText<QPushButton>(w.controls(), QObject::tr(text));
    QVERIFY2(b, text);
    b->click();
}

const wsa::Band& b5()
{
    return band(wsa::BandId::Ghz5);
}

} // namespace

class TestDesktopWindow : public QObject
{
    Q_OBJECT
private slots:
    void clickDragAndKeysMoveTheActiveMarker()
    {
        Window t(wsa::BandId::Ghz5);
        InstrumentWindow& w = t.w;
        w.resize(1400, 900);
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        addSignal(t.feed, 5500e6, -40, -90);
        SpectrumView* view = w.spectrum();

        QTest::mouseClick(view, Qt::LeftButton, {}, pointAt(view, 5500e6));
        QVERIFY(t.reading().valid);
        QVERIFY(std::abs(t.reading().bin - cellOf(b5(), 5500e6)) <= 1);

        // Drag to 5600 MHz: press, then move with the button held.
        const QPoint to = pointAt(view, 5600e6);
        send(view, QEvent::MouseMove, to, Qt::LeftButton);
        const int dragged = t.reading().bin;
        QVERIFY(std::abs(dragged - cellOf(b5(), 5600e6)) <= 1);

        view->setFocus();
        QTest::keyClick(view, Qt::Key_Right);
        QCOMPARE(t.reading().bin, dragged + 1);
        QTest::keyClick(view, Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(t.reading().bin, dragged - 9);

        // Key 2 chooses marker 2; a click outside the plot places nothing.
        QTest::keyClick(view, Qt::Key_2);
        QCOMPARE(w.markers()->active(), 1);
        QTest::mouseClick(view, Qt::LeftButton, {}, QPoint(2, 2));
        QVERIFY(!w.markers()->marker(1).on);
        QTest::mouseClick(view, Qt::LeftButton, {}, pointAt(view, 5200e6));
        const MarkerReading two = t.reading(1);
        QVERIFY(two.hasDelta);
        QCOMPARE(two.deltaDb, 0.0f);
        QVERIFY(two.deltaHz < -350e6);

        // Pressing on marker 1 picks it up without moving it; dragging then moves it.
        const QPoint onOne(int(view->axis().columnOfBin(dragged - 9)), to.y());
        QTest::mousePress(view, Qt::LeftButton, {}, onOne);
        QCOMPARE(w.markers()->active(), 0);
        QCOMPARE(t.reading().bin, dragged - 9);
        QTest::mouseRelease(view, Qt::LeftButton, {}, onOne);

        // The table shows both, with the channel under each.
        w.markerTable()->refresh();
        QCOMPARE(w.markerTable()->item(1, MarkerTable::Channel)->text(), QString("40"));
        QVERIFY(!w.markerTable()->item(1, MarkerTable::DeltaLevel)->text().isEmpty());
        QVERIFY(w.markerTable()->item(2, MarkerTable::Frequency)->text().isEmpty());
    }

    void pointerReadingsNameFrequencyChannelAndLevel()
    {
        Window t(wsa::BandId::Ghz5);
        t.w.resize(1400, 900);
        for (int s = 0; s < 30; ++s)
            addSignal(t.feed, 5500e6, -40, -90, 1, 1000 + 250 * s);
        SpectrumView* view = t.w.spectrum();
        QSignalSpy spy(view, &PlotView::pointerMoved);
        send(view, QEvent::MouseMove, pointAt(view, 5500e6, -60), Qt::NoButton);
        QCOMPARE(spy.count(), 1);
        const QString text = spy.last().at(0).toString();
        QVERIFY2((text.contains("5500.") || text.contains("5499.")) &&
                     text.contains("channel 100") &&
                     (text.contains("-60.") || text.contains("-59.")),
                 qPrintable(text));
        QVERIFY(view->describePoint(QPointF(1, 1)).isEmpty());
        const PlotLayout l = view->plotLayout();
        QCOMPARE(view->describePoint(
                     QPointF(view->axis().columnOfHz(5182e6), l.channelLabels.center().y())),
                 QStringLiteral("Channel 36: 5170 to 5190 MHz"));
        // In the gap between the sub-bands there is no channel to name.
        QVERIFY(!view->describePoint(pointAt(view, 5400e6)).contains("channel"));

        // The waterfall reads rows as sweeps ago and the time between them.
        WaterfallView* fall = t.w.waterfall();
        render(*fall, fall->size(), 1);
        const QRectF plot = fall->plotLayout().plot;
        const QString row4 = fall->describePoint(QPointF(plot.center().x(), plot.top() + 4.5));
        QVERIFY2(row4.contains("4 sweeps ago (1.0 s)"), qPrintable(row4));
        QVERIFY(
            !fall->describePoint(QPointF(plot.center().x(), plot.bottom() - 1)).contains("ago"));
    }

    void wheelZoomsAboutThePointerInEveryView()
    {
        Window t(wsa::BandId::Ghz5);
        InstrumentWindow& w = t.w;
        w.resize(1400, 900);
        SpectrumView* view = w.spectrum();
        const QPoint at = pointAt(view, 5600e6);
        const double before = view->axis().hzOfColumn(at.x());
        wheel(view, at, 240);
        auto span = [&] { return visibleSpan(t.feed.shown().grid(), w.settings()); };
        const Span zoomed = span();
        QVERIFY(std::abs(zoomed.widthHz() -
                         0.64 * (b5().grid.highEdgeHz() - b5().grid.lowEdgeHz())) < 1e3);
        // The frequency under the pointer stays under it, in every view.
        QVERIFY(std::abs(view->axis().hzOfColumn(at.x()) - before) < 1e3);
        QCOMPARE(w.waterfall()->settings(), w.settings());
        QCOMPARE(w.density()->span().lowHz, zoomed.lowHz);

        wheel(w.waterfall(), w.waterfall()->plotLayout().plot.center().toPoint(), -120,
              Qt::ShiftModifier);
        const Span panned = span();
        QVERIFY(std::abs(panned.lowHz - (zoomed.lowHz + zoomed.widthHz() / 10)) < 1e3);

        // A panel change keeps the span; zooming far out gives the whole band back as "none".
        w.controls()->setSettings(DisplaySettings());
        w.setSettings(w.settings());
        emit w.controls()->settingsChanged(w.controls()->settings());
        QCOMPARE(span().lowHz, panned.lowHz);
        w.zoom(100);
        QCOMPARE(QList<double>({w.settings().spanLowHz, w.settings().spanHighHz}),
                 QList<double>({0, 0}));

        // Over the level axis the wheel shifts the levels, and with Ctrl narrows them.
        auto levels = [&] { return QList<double>({w.settings().bottomDbm, w.settings().topDbm}); };
        const QRectF plot = view->plotLayout().plot;
        const QPoint axisPoint(int(plot.left() / 2), int(plot.center().y()));
        QSignalSpy levelSpy(view, &PlotView::levelRangeRequested);
        wheel(view, axisPoint, 240);
        QCOMPARE(levelSpy.count(), 1);
        QCOMPARE(levels(), QList<double>({-110, 0}));
        QCOMPARE(w.controls()->settings().topDbm, 0.0);
        wheel(view, axisPoint, 120); // already at the top
        QCOMPARE(levels(), QList<double>({-110, 0}));
        for (int k = 0; k < 40; ++k)
            wheel(view, axisPoint, 120, Qt::ControlModifier);
        QVERIFY(w.settings().topDbm - w.settings().bottomDbm >= 1);
        QVERIFY(w.settings().topDbm - w.settings().bottomDbm <= 5); // whole dB: it settles there
        QCOMPARE(w.density()->settings(), w.settings());
        // The waterfall's vertical axis is sweeps: its wheel there changes no levels.
        const DisplaySettings narrowed = w.settings();
        const QRectF fallPlot = w.waterfall()->plotLayout().plot;
        wheel(w.waterfall(), QPoint(int(fallPlot.left() / 2), int(fallPlot.center().y())), 120);
        QCOMPARE(w.settings(), narrowed);

        // Outside the plot the wheel does nothing; a new band starts whole.
        wheel(view, QPoint(2, 2), 120); // the corner above the axis
        QCOMPARE(w.settings().spanHighHz, 0.0);
        w.setSpan(5500e6, 5520e6);
        t.feed.configure(band(wsa::BandId::Ghz6));
        QCOMPARE(w.settings().spanHighHz, 0.0);
    }

    void panelPeakSearchAndResets()
    {
        Window t(wsa::BandId::Ghz5);
        auto sweep = sweepWithSignal(b5(), 5300e6, -35, -90, 5);
        sweep[std::size_t(cellOf(b5(), 5745e6))] = -55;
        t.feed.addSweep(sweep.data(), int(sweep.size()), 0);

        click(t.w, "Peak");
        QCOMPARE(t.reading().dbm, -35.0f);
        QCOMPARE(t.reading().channel, 60);
        click(t.w, "Peak >");
        QCOMPARE(t.reading().bin, cellOf(b5(), 5745e6));
        QCOMPARE(t.reading().channel, 149);
        click(t.w, "< Peak");
        QCOMPARE(t.reading().dbm, -35.0f);
        // Following the peak: the marker goes where the strongest signal goes.
        QCheckBox* follow =
            childWithText<QCheckBox>(t.w.controls(), QObject::tr("Follow the peak"));
        QVERIFY(follow);
        follow->setChecked(true);
        QCOMPARE(t.reading().dbm, -35.0f);
        addSignal(t.feed, 5785e6, -30, -90, 1, 1);
        QCOMPARE(t.reading().bin, cellOf(b5(), 5785e6));
        t.w.markers()->setActive(1);
        QVERIFY(!follow->isChecked());
        t.w.markers()->setActive(0);
        QVERIFY(follow->isChecked());
        click(t.w, "Marker off");
        QVERIFY(!follow->isChecked());
        QVERIFY(!t.reading().valid);

        QVERIFY(t.feed.shown().trace(Trace::Maximum));
        click(t.w, "Reset holds");
        QVERIFY(!t.feed.shown().trace(Trace::Maximum));
        QCOMPARE(t.feed.shown().densitySweeps(), 2u);
        click(t.w, "Clear density");
        QCOMPARE(t.feed.shown().densitySweeps(), 0u);
        QCOMPARE(t.feed.shown().sweepCount(), 2u);
    }

    // The view modes show one view or all; the widths follow the band, which drops the markers
    // and ends a pause; a level range entered the wrong way round stays usable.
    void panelChoicesFollowTheBand()
    {
        Window t(wsa::BandId::Ghz5);
        InstrumentWindow& w = t.w;
        auto* mode = w.controls()->findChildren<QComboBox*>().first();
        QCOMPARE(mode->count(), 4);
        mode->setCurrentIndex(3);
        QVERIFY(!w.spectrum()->isVisibleTo(&w) && !w.density()->isVisibleTo(&w));
        QVERIFY(w.waterfall()->isVisibleTo(&w));
        mode->setCurrentIndex(0);
        QVERIFY(w.spectrum()->isVisibleTo(&w) && w.density()->isVisibleTo(&w));

        const auto spins = w.controls()->findChildren<QDoubleSpinBox*>();
        QCOMPARE(spins.size(), 2);
        spins[0]->setValue(-100); // top
        spins[1]->setValue(-40);  // bottom
        QVERIFY(w.settings().topDbm > w.settings().bottomDbm);
        addSignal(t.feed, 5500e6, -40, -90);
        QVERIFY(!render(w, QSize(900, 600), 2).isNull());

        w.markers()->toHighest(0, t.feed.shown());
        QComboBox* width = nullptr;
        for (QComboBox* c : w.controls()->findChildren<QComboBox*>())
            width = c->findData(160) >= 0 ? c : width;
        QVERIFY(width);
        QCOMPARE(width->count(), int(b5().widthsMHz.size()));
        width->setCurrentIndex(width->findData(80));
        QCOMPARE(w.settings().channelWidthMHz, 80);
        QCOMPARE(w.spectrum()->settings().channelWidthMHz, 80);

        const wsa::Band& b6 = band(wsa::BandId::Ghz6);
        w.setPaused(true);
        t.feed.configure(b6);
        QVERIFY(!t.feed.isPaused());
        QCOMPARE(t.feed.shown().band().id, wsa::BandId::Ghz6);
        QVERIFY(!childWithText<QPushButton>(w.controls(), QObject::tr("Pause"))->isChecked());
        QCOMPARE(width->count(), int(b6.widthsMHz.size()));
        QVERIFY(width->findData(320) >= 0);
        QCOMPARE(w.settings().channelWidthMHz, 80);
        QVERIFY(!w.markers()->marker(0).on);
        t.feed.configure(band(wsa::BandId::Ghz24));
        QCOMPARE(width->count(), 1);
        QCOMPARE(w.settings().channelWidthMHz, 20);
        // Paints at the new band without complaint, at a size too small for its labels.
        QVERIFY(!render(w, QSize(300, 200), 1).isNull());
    }

    void spacePausesThePictureWhileTheStoreCounts()
    {
        Window t(wsa::BandId::Ghz5);
        t.w.resize(1200, 800);
        t.w.show();
        QVERIFY(QTest::qWaitForWindowActive(&t.w));
        addSignal(t.feed, 5300e6, -30, -100);
        SpectrumView* view = t.w.spectrum();
        auto picture = [&] {
            return render(*view, view->size(), 1).copy(view->plotLayout().plot.toAlignedRect());
        };
        const QImage before = picture();

        QTest::keyClick(&t.w, Qt::Key_Space);
        QVERIFY(t.feed.isPaused());
        for (int s = 1; s <= 20; ++s)
            addSignal(t.feed, 5700e6, -30, -100, 1, s);
        QCOMPARE(t.feed.live().sweepCount(), 21u);
        QCOMPARE(picture(), before);

        QTest::keyClick(&t.w, Qt::Key_Space);
        QVERIFY(!t.feed.isPaused());
        QVERIFY(picture() != before);
        QCOMPARE(t.feed.shown().sweepCount(), 21u);
    }
};

QTEST_MAIN(TestDesktopWindow)
#include "tst_desktop_window.moc"
