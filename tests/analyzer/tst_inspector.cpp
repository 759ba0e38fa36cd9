// Taps on the views: the Inspector's readout lines, side-bar panel and cursor line; the signature
// overlay's outline table, its placement by a tap and its path on screen.
#include <QTest>

#include "cpushbutton.h"
#include "cradiobutton.h"
#include "inspector.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

class TestInspector : public QObject
{
    Q_OBJECT

    wsatest::AnalyzerFixture f;

    void tap(QPoint at) { QTest::mouseClick(f.w, Qt::LeftButton, {}, at); }
    void press(CPushButton* button) { QTest::mouseClick(button, Qt::LeftButton); }
    QImage screen() { return f.w->grab().toImage().convertToFormat(QImage::Format_RGB32); }
    // Pixels of the colour, the cursor's red by default.
    static int count(const QImage& image, QRgb colour = qRgb(255, 0, 0))
    {
        const auto* p = reinterpret_cast<const QRgb*>(image.constBits());
        return int(std::count(p, p + image.width() * image.height(), colour));
    }
    static QString readout()
    {
        const auto& l = strInspector;
        return QString::asprintf("%s|%s|%s|%s", l[0], l[1], l[2], l[3]);
    }

    static constexpr QRgb kGreen = qRgb(0, 255, 0);
    // Presses "Signature", picks `kind` and answers OK.
    void signature(const char* kind)
    {
        QTest::mouseClick(pBtSignatures, Qt::LeftButton);
        QVERIFY(f.w->m_pSignature);
        for (CRadioButton* b : f.w->m_pSignature->findChildren<CRadioButton*>())
            if (b->text() == kind)
                QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(8, b->height() / 2));
        QTest::mouseClick(f.w->m_pSignature->findChild<CPushButton*>(), Qt::LeftButton);
    }
    // Green at every (x, y) pair of `points`, and nowhere outside `box`.
    void checkOutline(std::initializer_list<int> points, const QRect& box)
    {
        const QImage image = screen();
        for (auto p = points.begin(); p != points.end(); p += 2)
            QVERIFY2(image.pixel(p[0], p[1]) == kGreen, qPrintable(QString::number(*p)));
        QCOMPARE(count(image.copy(box), kGreen), count(image, kGreen));
    }

private slots:
    void initTestCase() { QVERIFY(f.start()); }

    void readoutsInViewAll()
    {
        // Column 261 is 2444 MHz in the 2.4 GHz band.
        tap({261, 74});
        QCOMPARE(readout(), QString("Freq :  2444|Current :  -60|Average :  -0|Maximum :  -110"));
        for (int level : {-30, -50, -70}) {
            QVERIFY(wsatest::sendRecord(f.link, wsatest::makeSweep(424, level)));
            f.w->wsaDataParse();
            f.w->repaint(); // the frame counts the sweep into the statistics
            std::snprintf(historyTime[nLastIdx], WSA_TIME_TEXT, "00:00:0%d", nLastIdx);
        }
        // Two decimals of density; two pixel rows per stored sweep, the newest on top.
        const std::pair<int, const char*> rows[] = {
            {74, "Freq :  2444|Current :  -60|Average :  -50|Maximum :  -30"},
            {186, "Freq :  2444|Amp :  -50|Density :  33.33|"},
            {269, "Freq :  2444|Amp :  -70|Time :  00:00:02|"},
            {273, "Freq :  2444|Amp :  -30|Time :  00:00:00|"},
            {275, "Freq :  2444|Amp :  --|Time :  --|"}};
        for (auto [y, text] : rows) {
            tap({261, y});
            QCOMPARE(readout(), QString(text));
        }

        // A level on the bottom edge reads the last density row, not the one past it.
        nDataCount = 4;
        popularity[200][109] = 1;
        char out[INSPECTOR_LINES][INSPECTOR_LINE_SIZE] = {};
        inspectorReadout(INSPECTOR_TOPOGRAPHIC, grid_rect_topographic, 250, 246, out);
        QCOMPARE(QString(out[2]), QString("Density :  25.00"));
    }

    void cursorBordersAndModes()
    {
        const std::tuple<CPushButton*, QPoint, QRect> taps[] = {
            {pBtViewAll, {200, 74}, grid_rect_planar},
            {pBtViewAll, {200, 196}, grid_rect_topographic},
            {pBtViewAll, {300, 300}, grid_rect_spectral},
            {pBtTopographic, {320, 200}, grid_rect_maximize}};
        for (auto [view, at, grid] : taps) {
            press(view);
            tap(at);
            const QImage image = screen();
            // Over the grid's inner rows, and nothing else in this column or beside it.
            const int rows = grid.height() - 1;
            QCOMPARE(count(image.copy(at.x(), grid.top() + 1, 1, rows)), rows);
            QCOMPARE(count(image.copy(at.x() - 1, 0, 3, 400)), rows);
        }
        // Taps on border lines change nothing; a view change takes the cursor away and keeps
        // the readout.
        const QString kept = readout();
        f.w->repaint();
        for (QPoint p : {QPoint(50, 200), QPoint(473, 200), QPoint(320, 24), QPoint(320, 324)})
            tap(p);
        QVERIFY(readout() == kept && f.w->m_clickxPos == 320 && !f.w->m_bUpdate);
        press(pBtViewAll);
        for (QPoint p : {QPoint(261, 24), QPoint(261, 124), QPoint(261, 146), QPoint(261, 368)})
            tap(p);
        QVERIFY(readout() == kept && f.w->m_clickxPos == 320);
        QCOMPARE(count(screen()), 0);

        // In Frequency mode a tap refreshes the lines but paints neither cursor nor panel.
        const QRect panel(509, 30, 147, 140); // hints and the first readout line
        press(pBtFrequency);
        tap({261, 74});
        QVERIFY(readout().startsWith("Freq :  2444|Current :  -60|"));
        QImage image = screen();
        QVERIFY(count(image) == 0 && image.pixel(523, 180) != qRgb(0, 0, 0)); // no box edge
        QCOMPARE(count(image.copy(panel), image.pixel(panel.topLeft())), 147 * 140);
        press(pBtInspector);
        image = screen();
        QVERIFY(count(image.copy(panel), image.pixel(panel.topLeft())) < 147 * 140);
        QCOMPARE(image.pixel(523, 180), qRgb(0, 0, 0));
    }

    void outlineTable()
    {
        for (const auto& row : signatureLine)
            for (int i = 1; i < 20; ++i)
                QVERIFY(row[i].x > row[i - 1].x);
        const stPoint canopy = signatureAnchorOffset[SIGNATURE_MOTORALACANOPY];
        QVERIFY(canopy.x == 57 && canopy.y == 40); // not half the outline's width
    }

    void userPlacesOutline()
    {
        QTest::mouseClick(pBtTopographic, Qt::LeftButton);
        signature("Bluetooth");
        QCOMPARE(count(screen(), kGreen), 0); // nothing before the tap
        tap({200, 100});
        // The anchor lies 60 left of and 60 below the tap; the first segment rises to (146, 40).
        checkOutline({140, 160, 143, 100, 146, 40, 260, 160}, {140, 40, 121, 121});

        // Asking again hides the outline until the next tap.
        signature("80211bg");
        QCOMPARE(count(screen(), kGreen), 0);
        tap({200, 100});
        checkOutline({150, 120, 152, 118, 155, 115, 160, 110, 165, 99, 200, 60, 245, 115, 250, 120},
                     {150, 60, 101, 61});
        QVERIFY(screen().pixel(200, 120) != kGreen); // an open path: no base line

        // Taps on the maximised grid's border lines, and any layout but Topographic alone, place
        // nothing.
        for (QPoint p : {QPoint(50, 100), QPoint(473, 100), QPoint(200, 24), QPoint(200, 324)})
            tap(p);
        for (auto layout : {wsatest::ViewAll, wsatest::PlanarOnly, wsatest::SpectralOnly}) {
            wsatest::selectLayout(f.w, 0, layout);
            QVERIFY(!f.w->placeSignature(300, 200));
        }
        wsatest::selectLayout(f.w, 0, wsatest::TopoOnly);
        QVERIFY(f.w->m_SignaturePoint.x == 200 && f.w->m_SignaturePoint.y == 100);

        f.w->m_eSignatureType = eSignatureType(SIGNATURE_NUM); // a kind without a row
        QCOMPARE(count(screen(), kGreen), 0);
        f.w->m_eSignatureType = SIGNATURE_80211BG;

        // A view button drops the outline and ends Signature mode.
        QTest::mouseClick(pBtTopographic, Qt::LeftButton);
        QCOMPARE(count(screen(), kGreen), 0);
        tap({200, 100});
        QCOMPARE(count(screen(), kGreen), 0);
    }
};

QTEST_MAIN(TestInspector)
#include "tst_inspector.moc"
