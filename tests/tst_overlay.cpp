// The signature overlay: the outline table, placement by a tap, the drawn path and the dialog's
// life as the analyzer sees it.
#include <QPainter>
#include <QPointer>
#include <QTest>
#include <memory>
#include <unistd.h>

#include "cpushbutton.h"
#include "cradiobutton.h"
#include "wsa_p.h"
#include "wsatestsupport.h"

namespace
{

bool isGreen(const QImage& image, int x, int y)
{
    return image.pixel(x, y) == qRgb(0, 255, 0);
}

// Green pixels of the image that lie outside `box`.
int greenOutside(const QImage& image, const QRect& box)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            n += isGreen(image, x, y) && !box.contains(x, y);
    }
    return n;
}

} // namespace

class TestOverlay : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void outlineTable_data();
    void outlineTable();
    void tapPlacesAndDrawsOutline();
    void bluetoothStartsAtItsAnchor();
    void tapMustBeInsideGrid_data();
    void tapMustBeInsideGrid();
    void placementNeedsTopographicAlone();
    void kindWithoutRowIsNotDrawn();
    void closingReleasesDialogLater();
    void userPlacesOutline();

private:
    QImage drawnOutline();
    void enterSignatureMode();

    std::unique_ptr<wsatest::AnalyzerEnv> m_env;
    int m_link = -1;
    CWsa* w = nullptr;
};

void TestOverlay::initTestCase()
{
    m_env = std::make_unique<wsatest::AnalyzerEnv>();
    w = new CWsa;
    // A silent link of our own: no engine message can open a box in the middle of a test.
    m_link = wsatest::takeOverLink();
    QVERIFY(m_link >= 0);
    w->setSize(QSize(800, 400));
    w->show();
    QVERIFY(QTest::qWaitForWindowExposed(w));
}

void TestOverlay::cleanupTestCase()
{
    delete w;
    close(m_link);
    m_env.reset();
}

void TestOverlay::init()
{
    w->procViewAll();
    w->m_bSignature = false;
    w->m_bSignatureUpdate = false;
    w->m_eSignatureType = SIGNATURE_80211BG;
}

// The outline alone, painted by the analyzer onto a black image of the window's size.
QImage TestOverlay::drawnOutline()
{
    QImage image(800, 400, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    w->drawSignature(&painter);
    return image;
}

void TestOverlay::enterSignatureMode()
{
    w->procTopographic();
    w->m_bSignature = true;
}

void TestOverlay::outlineTable_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QPoint>("first");
    QTest::addColumn<QPoint>("tenth");
    QTest::addColumn<QPoint>("last");
    QTest::addColumn<QPoint>("offset");
    QTest::newRow("2g4And40Mhz") << 0 << QPoint(0, 0) << QPoint(90, 47) << QPoint(180, 2)
                                 << QPoint(90, 20);
    QTest::newRow("80211n") << 1 << QPoint(10, 24) << QPoint(98, 63) << QPoint(180, 2)
                            << QPoint(100, 20);
    QTest::newRow("80211bg") << 2 << QPoint(5, 5) << QPoint(50, 60) << QPoint(100, 0)
                             << QPoint(50, 20);
    QTest::newRow("AvTransmitter")
        << 3 << QPoint(3, 10) << QPoint(40, 120) << QPoint(77, 10) << QPoint(40, 20);
    QTest::newRow("Bluetooth") << 4 << QPoint(6, 120) << QPoint(60, 120) << QPoint(120, 0)
                               << QPoint(60, 60);
    QTest::newRow("CordlessPhone")
        << 5 << QPoint(4, 2) << QPoint(24, 58) << QPoint(55, 2) << QPoint(30, 20);
    QTest::newRow("MotoralaCanopy")
        << 6 << QPoint(4, 38) << QPoint(39, 34) << QPoint(114, 2) << QPoint(57, 40);
    QTest::newRow("ErpOfdm") << 7 << QPoint(5, 19) << QPoint(47, 64) << QPoint(100, 4)
                             << QPoint(50, 20);
    QTest::newRow("WirelessAudio")
        << 8 << QPoint(2, 13) << QPoint(35, 28) << QPoint(68, 6) << QPoint(40, 15);
    QTest::newRow("ZigBee") << 9 << QPoint(7, 9) << QPoint(26, 67) << QPoint(49, 22)
                            << QPoint(30, 30);
}

void TestOverlay::outlineTable()
{
    QFETCH(int, row);
    QFETCH(QPoint, first);
    QFETCH(QPoint, tenth);
    QFETCH(QPoint, last);
    QFETCH(QPoint, offset);
    const stPoint* p = signatureLine[row];
    for (int i = 1; i < 20; ++i)
        QVERIFY2(p[i].x > p[i - 1].x, qPrintable(QString("point %1").arg(i)));
    QCOMPARE(QPoint(p[0].x, p[0].y), first);
    QCOMPARE(QPoint(p[9].x, p[9].y), tenth);
    QCOMPARE(QPoint(p[19].x, p[19].y), last);
    QCOMPARE(QPoint(signatureAnchorOffset[row].x, signatureAnchorOffset[row].y), offset);
}

void TestOverlay::tapPlacesAndDrawsOutline()
{
    enterSignatureMode();
    w->m_bUpdate = false;
    QVERIFY(w->placeSignature(200, 100));
    QVERIFY(w->m_bSignatureUpdate);
    QVERIFY(w->m_bUpdate);
    QCOMPARE(QPoint(w->m_SignaturePoint.x, w->m_SignaturePoint.y), QPoint(200, 100));

    const QImage image = drawnOutline();
    // Anchor (150, 120), then the table's points 5 px apart, ending back on the anchor's row.
    for (const QPoint v : {QPoint(150, 120), QPoint(155, 115), QPoint(160, 110), QPoint(165, 99),
                           QPoint(200, 60), QPoint(245, 115), QPoint(250, 120)})
        QVERIFY2(isGreen(image, v.x(), v.y()), qPrintable(QString("%1,%2").arg(v.x()).arg(v.y())));
    QVERIFY(isGreen(image, 152, 118));  // on the first, diagonal segment
    QVERIFY(!isGreen(image, 200, 100)); // inside the hump
    QVERIFY(!isGreen(image, 200, 121)); // the path stays open: no base line
    QVERIFY(!isGreen(image, 200, 55));
    QCOMPARE(greenOutside(image, QRect(QPoint(150, 60), QPoint(250, 120))), 0);

    // A further tap moves the outline.
    QVERIFY(w->placeSignature(300, 200));
    const QImage moved = drawnOutline();
    QVERIFY(isGreen(moved, 250, 220));
    QVERIFY(!isGreen(moved, 150, 120));
}

void TestOverlay::bluetoothStartsAtItsAnchor()
{
    enterSignatureMode();
    w->m_eSignatureType = SIGNATURE_BLUETOOTH;
    QVERIFY(w->placeSignature(200, 100));
    const QImage image = drawnOutline();
    QVERIFY(isGreen(image, 140, 160));
    QVERIFY(isGreen(image, 143, 100)); // halfway up the first segment
    QVERIFY(isGreen(image, 146, 40));
    QVERIFY(isGreen(image, 260, 160)); // the last point, 120 px right of the anchor
    QCOMPARE(greenOutside(image, QRect(QPoint(140, 40), QPoint(260, 160))), 0);
}

void TestOverlay::tapMustBeInsideGrid_data()
{
    // The maximised grid of the 2.4 GHz band runs from (50, 24) to (473, 324).
    QTest::addColumn<QPoint>("tap");
    QTest::addColumn<bool>("placed");
    QTest::newRow("left border") << QPoint(50, 100) << false;
    QTest::newRow("right border") << QPoint(473, 100) << false;
    QTest::newRow("top border") << QPoint(200, 24) << false;
    QTest::newRow("bottom border") << QPoint(200, 324) << false;
    QTest::newRow("side bar") << QPoint(520, 100) << false;
    QTest::newRow("top-left inside") << QPoint(51, 25) << true;
    QTest::newRow("bottom-right inside") << QPoint(472, 323) << true;
}

void TestOverlay::tapMustBeInsideGrid()
{
    QFETCH(QPoint, tap);
    QFETCH(bool, placed);
    enterSignatureMode();
    w->m_SignaturePoint = {1, 1};
    QCOMPARE(w->placeSignature(tap.x(), tap.y()), placed);
    QCOMPARE(w->m_bSignatureUpdate, placed);
    QCOMPARE(QPoint(w->m_SignaturePoint.x, w->m_SignaturePoint.y), placed ? tap : QPoint(1, 1));
}

void TestOverlay::placementNeedsTopographicAlone()
{
    const struct {
        const char* name;
        void (CWsa::*showViews)();
        bool signatureMode;
    } cases[] = {{"view all", &CWsa::procViewAll, true},
                 {"planar", &CWsa::procPlanar, true},
                 {"spectral", &CWsa::procSpectral, true},
                 {"topographic, other mode", &CWsa::procTopographic, false}};
    for (const auto& c : cases) {
        (w->*c.showViews)();
        w->m_bSignature = c.signatureMode;
        QVERIFY2(!w->placeSignature(200, 100), c.name);
        QVERIFY2(!w->m_bSignatureUpdate, c.name);
    }
}

void TestOverlay::kindWithoutRowIsNotDrawn()
{
    enterSignatureMode();
    QVERIFY(w->placeSignature(200, 100));
    for (int kind : {int(SIGNATURE_NUM), 15}) {
        w->m_eSignatureType = eSignatureType(kind);
        QCOMPARE(greenOutside(drawnOutline(), QRect()), 0);
    }
}

void TestOverlay::closingReleasesDialogLater()
{
    QCOMPARE(wsatest::captureStdout([&] { w->deleteSignatureSetDia(); }),
             QString("receive close sig \n"));

    w->createSignatureSetDia();
    QPointer<CWSASignature> dialog = w->m_pSignature;
    QVERIFY(dialog);
    QVERIFY(!dialog->parent());
    QVERIFY(dialog->isVisible());
    QCOMPARE(wsatest::captureStdout([&] { w->deleteSignatureSetDia(); }),
             QString("receive close sig \nreceive close sig 1\n"));
    QVERIFY(!w->m_pSignature);
    QVERIFY(dialog); // deleted only once control is back in the event loop
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QVERIFY(!dialog->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!dialog);
}

void TestOverlay::userPlacesOutline()
{
    auto choose = [&](const QString& kind) {
        QTest::mouseClick(pBtSignatures, Qt::LeftButton);
        QPointer<CWSASignature> dialog = w->m_pSignature;
        QVERIFY(dialog);
        for (CRadioButton* b : dialog->findChildren<CRadioButton*>()) {
            if (b->text() == kind)
                QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(8, b->height() / 2));
        }
        QTest::mouseClick(dialog->findChild<CPushButton*>(), Qt::LeftButton);
        QVERIFY(!w->m_pSignature);
    };
    auto shown = [&] {
        const QImage image = w->grab().toImage().convertToFormat(QImage::Format_RGB32);
        return isGreen(image, 140, 160) && isGreen(image, 143, 100) && isGreen(image, 146, 40);
    };

    QTest::mouseClick(pBtTopographic, Qt::LeftButton);
    QVERIFY(pBtSignatures->isVisible());
    choose("Bluetooth");
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(w->m_eSignatureType, SIGNATURE_BLUETOOTH);
    QVERIFY(!shown()); // nothing before the tap
    QTest::mouseClick(w, Qt::LeftButton, {}, QPoint(200, 100));
    QVERIFY(shown());

    // Asking again hides the outline until the next tap, even for the same kind.
    choose("Bluetooth");
    if (QTest::currentTestFailed())
        return;
    QVERIFY(!shown());
    QTest::mouseClick(w, Qt::LeftButton, {}, QPoint(200, 100));
    QVERIFY(shown());

    // Any view button ends Signature mode and drops the outline.
    QTest::mouseClick(pBtViewAll, Qt::LeftButton);
    QVERIFY(!shown());
    QVERIFY(!w->placeSignature(200, 100));
}

QTEST_MAIN(TestOverlay)
#include "tst_overlay.moc"
