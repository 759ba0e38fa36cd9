// The Inspector: taps on the views, the readout lines, the side-bar panel and the cursor line.
#include <QTest>

#include "cpushbutton.h"
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
};

QTEST_MAIN(TestInspector)
#include "tst_inspector.moc"
