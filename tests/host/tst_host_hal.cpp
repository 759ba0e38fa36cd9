// The hardware abstraction stand-in: board look-ups and the EEPROM service.
#include <QtTest>

#include "halboard.h"
#include "plate2promserv.h"

using namespace halmanager;

static QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class TestHostHal : public QObject
{
    Q_OBJECT

private slots:
    void boardLookups()
    {
        // The switches are read at each look-up, also on objects obtained before they were set.
        CBoardSpec* board = CBoardSpec::GetInstance();
        CBus* bus = board->getBus("UsbBus");
        QVERIFY(bus && dynamic_cast<CUsbWifiSpy*>(bus->getDevice("USB_WIFI_SPY")));
        qputenv("WSA_HAL_NO_DEVICE", "1");
        QVERIFY(!bus->getDevice("USB_WIFI_SPY") && board->getBus("UsbBus"));
        qputenv("WSA_HAL_NO_BUS", "1");
        QVERIFY(!board->getBus("UsbBus"));
    }

    void e2prom()
    {
        PlatE2PromServ service;
        char mac[8] = {}, sn[40];
        qputenv("WSA_MAC_ADDRESS", "00:1b:2c:A0:ff:09");
        qputenv("WSA_SERIAL_NUMBER", "X123");
        QVERIFY(service.ReadMacAddr(mac) == 0 && service.ReadSN(sn) == 0);
        QCOMPARE(QByteArray(mac, 8), QByteArray::fromHex("001b2ca0ff090000")); // six bytes only
        QCOMPARE(QByteArray(sn), QByteArray("X123"));
        qputenv("WSA_MAC_ADDRESS", "");
        qputenv("WSA_SERIAL_NUMBER", "");
        QVERIFY(service.ReadMacAddr(mac) != 0 && service.ReadSN(sn) != 0);

        // Without overrides: the address of one of this machine's interfaces, if one has a usable
        // one (six bytes, not loopback's zeros), and the system's serial, if it has one.
        qunsetenv("WSA_MAC_ADDRESS");
        qunsetenv("WSA_SERIAL_NUMBER");
        QString addresses;
        for (const QString& name : QDir("/sys/class/net").entryList(QDir::Dirs))
            addresses += readAll("/sys/class/net/" + name + "/address");
        const bool usable = addresses.contains(QRegularExpression(
            "^(?!(00:){5}00$)([0-9a-f]{2}:){5}[0-9a-f]{2}$", QRegularExpression::MultilineOption));
        QCOMPARE(service.ReadMacAddr(mac) == 0, usable);
        QVERIFY(!usable || addresses.contains(QByteArray(mac, 6).toHex(':')));
        const QByteArray serial = readAll("/sys/class/dmi/id/product_serial").trimmed() +
                                  readAll("/etc/machine-id").trimmed();
        QCOMPARE(service.ReadSN(sn) == 0, !serial.isEmpty());
        QVERIFY(serial.isEmpty() || (sn[0] && serial.contains(sn)));
    }
};

QTEST_GUILESS_MAIN(TestHostHal)
#include "tst_host_hal.moc"
