// The signature overlay: the outline table, placement by a tap and the path on screen.
#include <QTest>

#include "cpushbutton.h"
#include "cradiobutton.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

class TestOverlay : public QObject
{
    Q_OBJECT

    wsatest::AnalyzerFixture f;

    QImage screen() { return f.w->grab().toImage().convertToFormat(QImage::Format_RGB32); }
    static int greens(const QImage& image)
    {
        const auto* p = reinterpret_cast<const QRgb*>(image.constBits());
        return int(std::count(p, p + image.width() * image.height(), qRgb(0, 255, 0)));
    }
    void tap(QPoint at) { QTest::mouseClick(f.w, Qt::LeftButton, {}, at); }
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
            QVERIFY2(image.pixel(p[0], p[1]) == qRgb(0, 255, 0), qPrintable(QString::number(*p)));
        QCOMPARE(greens(image.copy(box)), greens(image));
    }

private slots:
    void initTestCase() { QVERIFY(f.start()); }

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
        QCOMPARE(greens(screen()), 0); // nothing before the tap
        tap({200, 100});
        // The anchor lies 60 left of and 60 below the tap; the first segment rises to (146, 40).
        checkOutline({140, 160, 143, 100, 146, 40, 260, 160}, {140, 40, 121, 121});

        // Asking again hides the outline until the next tap.
        signature("80211bg");
        QCOMPARE(greens(screen()), 0);
        tap({200, 100});
        checkOutline({150, 120, 152, 118, 155, 115, 160, 110, 165, 99, 200, 60, 245, 115, 250, 120},
                     {150, 60, 101, 61});
        QVERIFY(screen().pixel(200, 120) != qRgb(0, 255, 0)); // an open path: no base line

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
        QCOMPARE(greens(screen()), 0);
        f.w->m_eSignatureType = SIGNATURE_80211BG;

        // A view button drops the outline and ends Signature mode.
        QTest::mouseClick(pBtTopographic, Qt::LeftButton);
        QCOMPARE(greens(screen()), 0);
        tap({200, 100});
        QCOMPARE(greens(screen()), 0);
    }
};

QTEST_MAIN(TestOverlay)
#include "tst_overlay.moc"
