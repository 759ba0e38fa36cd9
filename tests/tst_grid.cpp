// View geometry and the grid: the layout by band, the view-mode switches, level-to-row with its
// clamp, and the grid's pixels (frame, ticks, dotted lines, labels) in both bands and layouts.
#include <QPainter>
#include <QtTest>
#include <climits>

#include "ccheckbox.h"
#include "views.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

using Layout = void (CWsa::*)();

static QRect edges(int l, int t, int r, int b)
{
    return QRect(QPoint(l, t), QPoint(r, b));
}

class TstGrid : public QObject
{
    Q_OBJECT

    wsatest::AnalyzerEnv* m_env = nullptr;
    CWsa* m_wsa = nullptr;

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
        m_wsa->m_bInspector = false;
    }
    void cleanupTestCase()
    {
        delete m_wsa;
        delete m_env;
    }

    void viewModes_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<Layout>("handler");
        QTest::addColumn<int>("flags"); // planar 4, topographic 2, spectral 1
        QTest::addColumn<bool>("traceBoxes");
        for (int band : {0, 1}) {
            const char* name = band ? "5 GHz" : "2.4 GHz";
            QTest::addRow("%s, planar", name) << band << &CWsa::procPlanar << 4 << true;
            QTest::addRow("%s, topographic", name) << band << &CWsa::procTopographic << 2 << false;
            QTest::addRow("%s, spectral", name) << band << &CWsa::procSpectral << 1 << false;
            QTest::addRow("%s, all", name) << band << &CWsa::procViewAll << 7 << true;
        }
    }
    void viewModes()
    {
        QFETCH(int, band);
        QFETCH(Layout, handler);
        QFETCH(int, flags);
        QFETCH(bool, traceBoxes);
        selectBand(band);
        QCOMPARE(nCellWidth, band ? 65 : 47);
        QCOMPARE(nStartFreq, band ? 5160 : 2400);
        QCOMPARE(nEndFreq, band ? 5835 : 2490);
        QCOMPARE(sidebar_rect, edges(508, 24, 656, 324));
        QCOMPARE(toolbox_rect, edges(666, 0, 806, m_wsa->rect().bottom()));
        m_wsa->m_bInspectorUpdate = true;
        (m_wsa->*handler)();
        QCOMPARE(int(bPlanarView) * 4 + int(bTopographicView) * 2 + int(bSpectralView), flags);
        QCOMPARE(nCellHeight, flags == 7 ? 10 : 30);
        QVERIFY(!m_wsa->m_bInspectorUpdate);
        for (CCheckBox* box : {pCbCurrent, pCbAverage, pCbMax}) {
            if (box)
                QCOMPARE(box->isVisibleTo(m_wsa), traceBoxes);
        }
        // The rectangles stay as laid out; each drawing picks one by a single flag.
        const int right = band ? 505 : 473;
        const QRect maximize = edges(50, 24, right, 324), planar = edges(50, 24, right, 124);
        const QRect topo = edges(50, 146, right, 246), spectral = edges(50, 268, right, 368);
        QCOMPARE(grid_rect_maximize, maximize);
        QCOMPARE(grid_rect_planar, planar);
        QCOMPARE(grid_rect_topographic, topo);
        QCOMPARE(grid_rect_spectral, spectral);
        QCOMPARE(planarRect(), bSpectralView ? planar : maximize);
        QCOMPARE(topoRect(), bPlanarView ? topo : maximize);
        QCOMPARE(spectralRect(), bTopographicView ? spectral : maximize);
        QCOMPARE(frequencyRect(), flags == 7 ? spectral : maximize);
    }

    void levelRows_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<bool>("stacked");
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("row");      // levelToRow
        QTest::addColumn<int>("drawnRow"); // after the clamp
        // Single view, 2.4 GHz: 3 pixels per dB, -110 on the bottom edge (324), -10 on the top.
        QTest::newRow("2.4 top edge") << 0 << false << -10 << 24 << 25;
        QTest::newRow("2.4 bottom edge") << 0 << false << -110 << 324 << 323;
        QTest::newRow("2.4 middle") << 0 << false << -60 << 174 << 174;
        QTest::newRow("2.4 above range") << 0 << false << -5 << 9 << 25;
        QTest::newRow("2.4 below range") << 0 << false << -120 << 354 << 323;
        QTest::newRow("2.4 positive level") << 0 << false << 20 << 54 << 54;
        QTest::newRow("2.4 most negative int") << 0 << false << INT_MIN << INT_MAX << 323;
        QTest::newRow("2.4 stacked") << 0 << true << -61 << 75 << 75;
        QTest::newRow("5 middle") << 1 << false << -75 << 174 << 174;
        QTest::newRow("5 stacked") << 1 << true << -77 << 78 << 78;
        QTest::newRow("5 top edge") << 1 << true << -50 << 24 << 25;
        QTest::newRow("5 below range") << 1 << true << -101 << 126 << 123;
    }
    void levelRows()
    {
        QFETCH(int, band);
        QFETCH(bool, stacked);
        QFETCH(int, level);
        QFETCH(int, row);
        QFETCH(int, drawnRow);
        selectBand(band);
        const QRect rect = stacked ? grid_rect_planar : grid_rect_maximize;
        QCOMPARE(levelToRow(rect, level), row);
        int x = 77, y = row;
        QCOMPARE(__validate_and_correct_position(rect, x, y), drawnRow != row ? 1 : 0);
        QCOMPARE(y, drawnRow);
        QCOMPARE(x, 77);
        QCOMPARE(clampedRow(rect, level), drawnRow);
    }

    void gridPixels_data()
    {
        QTest::addColumn<int>("band");
        QTest::addColumn<bool>("all");
        QTest::addColumn<QStringList>("labels"); // top to bottom, empty where a row has none
        QTest::newRow("2.4 GHz, View All")
            << 0 << true << QStringList{"", "-30", "", "-50", "", "-70", "", "-90", ""};
        QTest::newRow("2.4 GHz, Planar")
            << 0 << false
            << QStringList{"-20", "-30", "-40", "-50", "-60", "-70", "-80", "-90", "-100"};
        QTest::newRow("5 GHz, View All")
            << 1 << true << QStringList{"", "-60", "", "-70", "", "-80", "", "-90", ""};
        QTest::newRow("5 GHz, Planar")
            << 1 << false
            << QStringList{"-55", "-60", "-65", "-70", "-75", "-80", "-85", "-90", "-95"};
    }
    void gridPixels()
    {
        QFETCH(int, band);
        QFETCH(bool, all);
        QFETCH(QStringList, labels);
        selectBand(band);
        all ? m_wsa->procViewAll() : m_wsa->procPlanar();
        const QImage image = m_wsa->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QRect rect = planarRect();
        const int L = rect.left(), T = rect.top(), R = rect.right(), B = rect.bottom();
        const int cellW = band ? 65 : 47, cellH = all ? 10 : 30;
        const QRgb white = qRgb(255, 255, 255), black = qRgb(0, 0, 0);
        const QRgb dot = QColor(Qt::lightGray).rgb(), bg = viewBackground().rgb();

        // The one-pixel frame strokes the left and top edges and just outside the right and
        // bottom edges of the rectangle.
        for (int y = T; y <= B + 1; ++y)
            QVERIFY(image.pixel(L, y) == white && image.pixel(R + 1, y) == white);
        for (int x = L; x <= R + 1; ++x)
            QVERIFY(image.pixel(x, T) == white && image.pixel(x, B + 1) == white);
        QCOMPARE(image.pixel(R, B), black);
        QCOMPARE(image.pixel(R + 2, T + 5), bg);

        // Three-pixel ticks left of each row line and below each column line.
        for (int k = 1; k <= 9; ++k) {
            const int y = T + k * cellH;
            QVERIFY(image.pixel(L - 3, y) == white && image.pixel(L - 1, y) == white);
            QVERIFY(image.pixel(L - 4, y) == bg && image.pixel(L - 2, y + 1) == bg);
        }
        for (int x = L + cellW; x < R; x += cellW) {
            QVERIFY(image.pixel(x, B + 2) == white && image.pixel(x, B + 3) == white);
            QVERIFY(image.pixel(x, B + 4) == bg && image.pixel(x + 1, B + 2) == bg);
        }

        // Dotted lines: rows and columns holding a light grey dot every third pixel.
        QList<int> rows, columns;
        for (int y = T + 1; y < B; ++y) {
            int dots = 0;
            for (int x = L + 1; x <= R; ++x)
                dots += image.pixel(x, y) == dot;
            if (dots >= (R - L) / 3)
                rows << y;
        }
        for (int x = L + 1; x <= R; ++x) {
            int dots = 0;
            for (int y = T + 1; y <= B; ++y)
                dots += image.pixel(x, y) == dot;
            if (dots >= (B - T) / 3)
                columns << x;
        }
        QCOMPARE(rows.size(), 9);
        QCOMPARE(columns.size(), band ? 6 : 8);
        for (int k = 0; k < rows.size(); ++k)
            QCOMPARE(rows[k], T + (k + 1) * cellH);
        for (int k = 0; k < columns.size(); ++k)
            QCOMPARE(columns[k], L + (k + 1) * cellW);
        QVERIFY(image.pixel(L + 1, T + cellH) == dot && image.pixel(L + 2, T + cellH) == black);

        // "dBm" and the amplitude labels at baseline row + 7, compared with the same texts
        // drawn alone; the rest of the label column is background.
        QImage expected(image.size(), QImage::Format_RGB32);
        expected.fill(bg);
        QPainter painter(&expected);
        painter.setFont(viewFont());
        painter.setPen(Qt::white);
        painter.drawText(L - 40, T + 7, CWsa::tr("dBm"));
        for (int i = 0; i < labels.size(); ++i)
            painter.drawText(L - 40, T + (i + 1) * cellH + 7, labels[i]);
        painter.end();
        const QRect column(0, T - 14, L - 3, B - T + 27);
        QCOMPARE(image.copy(column), expected.copy(column));
    }
};

QTEST_MAIN(TstGrid)
#include "tst_grid.moc"
