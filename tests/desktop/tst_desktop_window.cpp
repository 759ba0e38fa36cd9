// The instrument window as a user drives it: clicking, dragging and keys on the spectrum, the
// panel's peak search and resets, view modes, a band change, pause by the Space key while the
// store keeps counting, and a level range entered the wrong way round.
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QtTest>

#include "densityview.h"
#include "desktoptestsupport.h"
#include "instrumentwindow.h"
#include "markers.h"
#include "markertable.h"
#include "spectrumview.h"
#include "sweepfeed.h"
#include "waterfallview.h"

using namespace wsa::desktop;

namespace
{

QPushButton* button(QWidget* parent, const QString& text)
{
    for (QPushButton* b : parent->findChildren<QPushButton*>()) {
        if (b->text() == text)
            return b;
    }
    return nullptr;
}

QPoint pointAt(const SpectrumView* view, double hz, double dbm = -60)
{
    const PlotLayout l = view->plotLayout();
    return QPointF(view->axis().columnOfHz(hz), yOfLevel(l.plot, -120, -10, dbm)).toPoint();
}

} // namespace

class TestDesktopWindow : public QObject
{
    Q_OBJECT
private:
    const wsa::Band& m_b5 = *wsa::findBand(wsa::BandId::Ghz5);

private slots:
    void clickDragAndKeysMoveTheActiveMarker()
    {
        SweepFeed feed(m_b5);
        InstrumentWindow w(&feed);
        w.resize(1400, 900);
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        const auto sweep = desktoptest::sweepWithSignal(m_b5, 5500e6, -40, -90);
        feed.addSweep(sweep.data(), int(sweep.size()), 0);
        SpectrumView* view = w.spectrum();

        QTest::mouseClick(view, Qt::LeftButton, {}, pointAt(view, 5500e6));
        const MarkerReading r = w.markers()->reading(feed.shown(), 0, 20);
        QVERIFY(r.valid);
        QVERIFY(std::abs(r.bin - desktoptest::cellOf(m_b5, 5500e6)) <= 1);

        // Drag to 5600 MHz: press, then move with the button held.
        const QPoint to = pointAt(view, 5600e6);
        QMouseEvent move(QEvent::MouseMove, to, view->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(view, &move);
        const int dragged = w.markers()->reading(feed.shown(), 0, 20).bin;
        QVERIFY(std::abs(dragged - desktoptest::cellOf(m_b5, 5600e6)) <= 1);

        view->setFocus();
        QTest::keyClick(view, Qt::Key_Right);
        QCOMPARE(w.markers()->reading(feed.shown(), 0, 20).bin, dragged + 1);
        QTest::keyClick(view, Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(w.markers()->reading(feed.shown(), 0, 20).bin, dragged - 9);

        // Key 2 chooses marker 2; a click outside the plot places nothing.
        QTest::keyClick(view, Qt::Key_2);
        QCOMPARE(w.markers()->active(), 1);
        QTest::mouseClick(view, Qt::LeftButton, {}, QPoint(2, 2));
        QVERIFY(!w.markers()->marker(1).on);
        QTest::mouseClick(view, Qt::LeftButton, {}, pointAt(view, 5200e6));
        const MarkerReading two = w.markers()->reading(feed.shown(), 1, 20);
        QVERIFY(two.hasDelta);
        QCOMPARE(two.deltaDb, 0.0f);
        QVERIFY(two.deltaHz < -350e6);

        // Pressing on marker 1 picks it up without moving it; dragging then moves it.
        const QPoint onOne(int(view->axis().columnOfBin(dragged - 9)), to.y());
        QTest::mousePress(view, Qt::LeftButton, {}, onOne);
        QCOMPARE(w.markers()->active(), 0);
        QCOMPARE(w.markers()->reading(feed.shown(), 0, 20).bin, dragged - 9);
        QTest::mouseRelease(view, Qt::LeftButton, {}, onOne);

        // The table shows both, with the channel under each.
        w.markerTable()->refresh();
        QCOMPARE(w.markerTable()->item(1, MarkerTable::Channel)->text(), QString("40"));
        QVERIFY(!w.markerTable()->item(1, MarkerTable::DeltaLevel)->text().isEmpty());
        QVERIFY(w.markerTable()->item(2, MarkerTable::Frequency)->text().isEmpty());
    }

    void pointerReadingsNameFrequencyChannelAndLevel()
    {
        SweepFeed feed(m_b5);
        InstrumentWindow w(&feed);
        w.resize(1400, 900);
        for (int s = 0; s < 30; ++s) {
            const auto sweep = desktoptest::sweepWithSignal(m_b5, 5500e6, -40, -90);
            feed.addSweep(sweep.data(), int(sweep.size()), 1000 + 250 * s);
        }
        SpectrumView* view = w.spectrum();
        QSignalSpy spy(view, &PlotView::pointerMoved);
        const QPoint at = pointAt(view, 5500e6, -60);
        QMouseEvent move(QEvent::MouseMove, at, view->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(view, &move);
        QCOMPARE(spy.count(), 1);
        const QString text = spy.last().at(0).toString();
        QVERIFY2(text.contains(QStringLiteral("5500.")) || text.contains(QStringLiteral("5499.")),
                 qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("channel 100")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("-60.")) || text.contains(QStringLiteral("-59.")),
                 qPrintable(text));
        QVERIFY(view->describePoint(QPointF(1, 1)).isEmpty());
        const PlotLayout l = view->plotLayout();
        QCOMPARE(view->describePoint(
                     QPointF(view->axis().columnOfHz(5182e6), l.channelLabels.center().y())),
                 QStringLiteral("Channel 36: 5170 to 5190 MHz"));
        // In the gap between the sub-bands there is no channel to name.
        QVERIFY(!view->describePoint(pointAt(view, 5400e6)).contains(QStringLiteral("channel")));

        // The waterfall reads rows as sweeps ago and the time between them.
        WaterfallView* fall = w.waterfall();
        desktoptest::render(*fall, fall->size(), 1);
        const QRectF plot = fall->plotLayout().plot;
        const QString row4 = fall->describePoint(QPointF(plot.center().x(), plot.top() + 4.5));
        QVERIFY2(row4.contains(QStringLiteral("4 sweeps ago (1.0 s)")), qPrintable(row4));
        QVERIFY(!fall->describePoint(QPointF(plot.center().x(), plot.bottom() - 1))
                     .contains(QStringLiteral("ago")));
    }

    void wheelZoomsAboutThePointerInEveryView()
    {
        SweepFeed feed(m_b5);
        InstrumentWindow w(&feed);
        w.resize(1400, 900);
        SpectrumView* view = w.spectrum();
        auto wheel = [&](QWidget* target, const QPoint& at, QPoint delta, Qt::KeyboardModifiers m) {
            QWheelEvent e(at, target->mapToGlobal(at), QPoint(), delta, Qt::NoButton, m,
                          Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(target, &e);
        };
        const QPoint at = pointAt(view, 5600e6);
        const double before = view->axis().hzOfColumn(at.x());
        wheel(view, at, QPoint(0, 240), Qt::NoModifier);
        const Span zoomed = visibleSpan(feed.shown().grid(), w.settings());
        QVERIFY(std::abs(zoomed.widthHz() -
                         0.64 * (m_b5.grid.highEdgeHz() - m_b5.grid.lowEdgeHz())) < 1e3);
        // The frequency under the pointer stays under it, in every view.
        QVERIFY(std::abs(view->axis().hzOfColumn(at.x()) - before) < 1e3);
        QCOMPARE(w.waterfall()->settings(), w.settings());
        QCOMPARE(w.density()->span().lowHz, zoomed.lowHz);

        wheel(w.waterfall(), w.waterfall()->plotLayout().plot.center().toPoint(), QPoint(0, -120),
              Qt::ShiftModifier);
        const Span panned = visibleSpan(feed.shown().grid(), w.settings());
        QVERIFY(std::abs(panned.lowHz - (zoomed.lowHz + zoomed.widthHz() / 10)) < 1e3);

        // A panel change keeps the span; zooming far out gives the whole band back as "none".
        w.controls()->setSettings(DisplaySettings());
        w.setSettings(w.settings());
        emit w.controls()->settingsChanged(w.controls()->settings());
        QCOMPARE(visibleSpan(feed.shown().grid(), w.settings()).lowHz, panned.lowHz);
        w.zoom(100);
        QCOMPARE(w.settings().spanLowHz, 0.0);
        QCOMPARE(w.settings().spanHighHz, 0.0);

        // Over the level axis the wheel shifts the levels, and with Ctrl narrows them.
        const QRectF plot = view->plotLayout().plot;
        const QPoint axisPoint(int(plot.left() / 2), int(plot.center().y()));
        QSignalSpy levelSpy(view, &PlotView::levelRangeRequested);
        wheel(view, axisPoint, QPoint(0, 240), Qt::NoModifier);
        QCOMPARE(levelSpy.count(), 1);
        QCOMPARE(w.settings().bottomDbm, -110.0);
        QCOMPARE(w.settings().topDbm, 0.0);
        QCOMPARE(w.controls()->settings().topDbm, 0.0);
        wheel(view, axisPoint, QPoint(0, 120), Qt::NoModifier); // already at the top
        QCOMPARE(w.settings().topDbm, 0.0);
        QCOMPARE(w.settings().bottomDbm, -110.0);
        for (int k = 0; k < 40; ++k)
            wheel(view, axisPoint, QPoint(0, 120), Qt::ControlModifier);
        QVERIFY(w.settings().topDbm - w.settings().bottomDbm >= 1);
        QVERIFY(w.settings().topDbm - w.settings().bottomDbm <= 5); // whole dB: it settles there
        QCOMPARE(w.density()->settings(), w.settings());
        // The waterfall's vertical axis is sweeps: its wheel there changes no levels.
        const DisplaySettings levels = w.settings();
        const QRectF fallPlot = w.waterfall()->plotLayout().plot;
        wheel(w.waterfall(), QPoint(int(fallPlot.left() / 2), int(fallPlot.center().y())),
              QPoint(0, 120), Qt::NoModifier);
        QCOMPARE(w.settings(), levels);

        // Outside the plot the wheel does nothing; a new band starts whole.
        wheel(view, QPoint(2, 2), QPoint(0, 120), Qt::NoModifier); // the corner above the axis
        QCOMPARE(w.settings().spanHighHz, 0.0);
        w.setSpan(5500e6, 5520e6);
        feed.configure(*wsa::findBand(wsa::BandId::Ghz6));
        QCOMPARE(w.settings().spanHighHz, 0.0);
    }

    void panelPeakSearchAndResets()
    {
        SweepFeed feed(m_b5);
        InstrumentWindow w(&feed);
        auto sweep = desktoptest::sweepWithSignal(m_b5, 5300e6, -35, -90, 5);
        sweep[std::size_t(desktoptest::cellOf(m_b5, 5745e6))] = -55;
        feed.addSweep(sweep.data(), int(sweep.size()), 0);

        QPushButton* peak = button(w.controls(), QObject::tr("Peak"));
        QVERIFY(peak);
        peak->click();
        MarkerReading r = w.markers()->reading(feed.shown(), 0, 20);
        QCOMPARE(r.dbm, -35.0f);
        QCOMPARE(r.channel, 60);
        button(w.controls(), QObject::tr("Peak >"))->click();
        r = w.markers()->reading(feed.shown(), 0, 20);
        QCOMPARE(r.bin, desktoptest::cellOf(m_b5, 5745e6));
        QCOMPARE(r.channel, 149);
        button(w.controls(), QObject::tr("< Peak"))->click();
        QCOMPARE(w.markers()->reading(feed.shown(), 0, 20).dbm, -35.0f);
        // Following the peak: the marker goes where the strongest signal goes.
        QCheckBox* follow = nullptr;
        for (QCheckBox* c : w.controls()->findChildren<QCheckBox*>()) {
            if (c->text() == QObject::tr("Follow the peak"))
                follow = c;
        }
        QVERIFY(follow);
        follow->setChecked(true);
        QCOMPARE(w.markers()->reading(feed.shown(), 0, 20).dbm, -35.0f);
        const auto moved = desktoptest::sweepWithSignal(m_b5, 5785e6, -30, -90);
        feed.addSweep(moved.data(), int(moved.size()), 1);
        QCOMPARE(w.markers()->reading(feed.shown(), 0, 20).bin, desktoptest::cellOf(m_b5, 5785e6));
        w.markers()->setActive(1);
        QVERIFY(!follow->isChecked());
        w.markers()->setActive(0);
        QVERIFY(follow->isChecked());
        button(w.controls(), QObject::tr("Marker off"))->click();
        QVERIFY(!follow->isChecked());
        QVERIFY(!w.markers()->reading(feed.shown(), 0, 20).valid);

        QVERIFY(feed.shown().trace(Trace::Maximum));
        button(w.controls(), QObject::tr("Reset holds"))->click();
        QVERIFY(!feed.shown().trace(Trace::Maximum));
        QCOMPARE(feed.shown().densitySweeps(), 2u);
        button(w.controls(), QObject::tr("Clear density"))->click();
        QCOMPARE(feed.shown().densitySweeps(), 0u);
        QCOMPARE(feed.shown().sweepCount(), 2u);
    }

    void viewModesShowOneViewOrAll()
    {
        SweepFeed feed(m_b5);
        InstrumentWindow w(&feed);
        auto* mode = w.controls()->findChildren<QComboBox*>().first();
        QCOMPARE(mode->count(), 4);
        mode->setCurrentIndex(3);
        QVERIFY(!w.spectrum()->isVisibleTo(&w));
        QVERIFY(!w.density()->isVisibleTo(&w));
        QVERIFY(w.waterfall()->isVisibleTo(&w));
        mode->setCurrentIndex(0);
        QVERIFY(w.spectrum()->isVisibleTo(&w) && w.density()->isVisibleTo(&w));
    }

    void aBandChangeOffersItsWidthsAndDropsMarkers()
    {
        SweepFeed feed(m_b5);
        InstrumentWindow w(&feed);
        const auto sweep = desktoptest::sweepWithSignal(m_b5, 5500e6, -40, -90);
        feed.addSweep(sweep.data(), int(sweep.size()), 0);
        w.markers()->toHighest(0, feed.shown());
        QComboBox* width = nullptr;
        for (QComboBox* c : w.controls()->findChildren<QComboBox*>()) {
            if (c->findData(160) >= 0)
                width = c;
        }
        QVERIFY(width);
        QCOMPARE(width->count(), int(m_b5.widthsMHz.size()));
        width->setCurrentIndex(width->findData(80));
        QCOMPARE(w.settings().channelWidthMHz, 80);
        QCOMPARE(w.spectrum()->settings().channelWidthMHz, 80);

        const wsa::Band& b6 = *wsa::findBand(wsa::BandId::Ghz6);
        w.setPaused(true);
        feed.configure(b6);
        QVERIFY(!feed.isPaused());
        QVERIFY(!button(w.controls(), QObject::tr("Pause"))->isChecked());
        QCOMPARE(width->count(), int(b6.widthsMHz.size()));
        QVERIFY(width->findData(320) >= 0);
        QCOMPARE(w.settings().channelWidthMHz, 80);
        QVERIFY(!w.markers()->marker(0).on);
        feed.configure(*wsa::findBand(wsa::BandId::Ghz24));
        QCOMPARE(width->count(), 1);
        QCOMPARE(w.settings().channelWidthMHz, 20);
        // Paints at the new band without complaint, at a size too small for its labels.
        QImage image = desktoptest::render(w, QSize(300, 200), 1);
        QVERIFY(!image.isNull());
    }

    void spacePausesThePictureWhileTheStoreCounts()
    {
        SweepFeed feed(m_b5);
        InstrumentWindow w(&feed);
        w.resize(1200, 800);
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        const auto a = desktoptest::sweepWithSignal(m_b5, 5300e6, -30, -100);
        const auto b = desktoptest::sweepWithSignal(m_b5, 5700e6, -30, -100);
        feed.addSweep(a.data(), int(a.size()), 0);
        auto picture = [&] {
            QImage image = desktoptest::render(*w.spectrum(), w.spectrum()->size(), 1);
            return image.copy(w.spectrum()->plotLayout().plot.toAlignedRect());
        };
        const QImage before = picture();

        QTest::keyClick(&w, Qt::Key_Space);
        QVERIFY(feed.isPaused());
        for (int s = 1; s <= 20; ++s)
            feed.addSweep(b.data(), int(b.size()), s);
        QCOMPARE(feed.live().sweepCount(), 21u);
        QCOMPARE(picture(), before);

        QTest::keyClick(&w, Qt::Key_Space);
        QVERIFY(!feed.isPaused());
        QVERIFY(picture() != before);
        QCOMPARE(feed.shown().sweepCount(), 21u);
    }

    void levelRangeTheWrongWayRoundStaysUsable()
    {
        SweepFeed feed(m_b5);
        InstrumentWindow w(&feed);
        const auto spins = w.controls()->findChildren<QDoubleSpinBox*>();
        QCOMPARE(spins.size(), 2);
        spins[0]->setValue(-100); // top
        spins[1]->setValue(-40);  // bottom
        QVERIFY(w.settings().topDbm > w.settings().bottomDbm);
        const auto sweep = desktoptest::sweepWithSignal(m_b5, 5500e6, -40, -90);
        feed.addSweep(sweep.data(), int(sweep.size()), 0);
        QImage image = desktoptest::render(w, QSize(900, 600), 2);
        QVERIFY(!image.isNull());
    }
};

QTEST_MAIN(TestDesktopWindow)
#include "tst_desktop_window.moc"
