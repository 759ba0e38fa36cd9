// The hardware abstraction stand-in: board look-ups and the EEPROM service.
#include <QDir>
#include <QFile>
#include <QTest>
#include <cstring>

#include "cboardspec.h"
#include "plate2promserv.h"

using namespace halmanager;

namespace
{

const char* const kSwitches[] = {"WSA_HAL_NO_BUS", "WSA_HAL_NO_DEVICE", "WSA_MAC_ADDRESS",
                                 "WSA_NET_IF", "WSA_SERIAL_NUMBER"};

QByteArray readTrimmed(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll().trimmed() : QByteArray();
}

// Interfaces of this machine with a usable hardware address, read independently of the service.
QMap<QString, QByteArray> realInterfaces()
{
    QMap<QString, QByteArray> result;
    const QDir net("/sys/class/net");
    for (const QString& name : net.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::System)) {
        const QByteArray address = readTrimmed(net.filePath(name + "/address"));
        if (name == "lo" || address.isEmpty() || address == "00:00:00:00:00:00")
            continue;
        const QByteArray bytes = QByteArray::fromHex(QByteArray(address).replace(':', ""));
        if (bytes.size() == 6)
            result.insert(name, bytes);
    }
    return result;
}

} // namespace

class TestHostHal : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void boardLookups();
    void macFromEnvironment_data();
    void macFromEnvironment();
    void macFromInterfaces();
    void serialNumber_data();
    void serialNumber();
    void serialFromSystem();
};

void TestHostHal::cleanup()
{
    for (const char* name : kSwitches)
        qunsetenv(name);
}

void TestHostHal::boardLookups()
{
    CBoardSpec* board = CBoardSpec::GetInstance();
    QVERIFY(board && CBoardSpec::GetInstance() == board);
    auto* bus = dynamic_cast<CUsbBus*>(board->getBus("UsbBus"));
    QVERIFY(bus);
    QVERIFY(dynamic_cast<CUsbWifiSpy*>(bus->getDevice("USB_WIFI_SPY")));
    QVERIFY(!board->getBus("PciBus"));
    QVERIFY(!bus->getDevice("USB_DISK"));

    // The switches are read at each look-up, on objects obtained before they were set.
    qputenv("WSA_HAL_NO_DEVICE", "0");
    QVERIFY(bus->getDevice("USB_WIFI_SPY"));
    qputenv("WSA_HAL_NO_DEVICE", "1");
    QVERIFY(!bus->getDevice("USB_WIFI_SPY"));
    QVERIFY(board->getBus("UsbBus"));
    qputenv("WSA_HAL_NO_BUS", "1");
    QVERIFY(!board->getBus("UsbBus"));
    cleanup();
    QVERIFY(board->getBus("UsbBus")->getDevice("USB_WIFI_SPY"));
}

void TestHostHal::macFromEnvironment_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("expected"); // empty: failure

    QTest::newRow("lower case") << QByteArray("00:1b:2c:a0:ff:09")
                                << QByteArray::fromHex("001b2ca0ff09");
    QTest::newRow("upper case") << QByteArray("00:1B:2C:A0:FF:09")
                                << QByteArray::fromHex("001b2ca0ff09");
    QTest::newRow("empty") << QByteArray("") << QByteArray();
    QTest::newRow("five bytes") << QByteArray("00:1b:2c:a0:ff") << QByteArray();
    QTest::newRow("seven bytes") << QByteArray("00:1b:2c:a0:ff:09:10") << QByteArray();
    QTest::newRow("not hex") << QByteArray("00:1b:2c:a0:fg:09") << QByteArray();
    QTest::newRow("dashes") << QByteArray("00-1b-2c-a0-ff-09") << QByteArray();
}

void TestHostHal::macFromEnvironment()
{
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, expected);
    qputenv("WSA_MAC_ADDRESS", value);
    qputenv("WSA_NET_IF", "lo"); // the override wins over the interface

    char mac[8];
    std::memset(mac, 0x55, sizeof mac);
    PlatE2PromServ service;
    const int rc = service.ReadMacAddr(mac);
    if (expected.isEmpty()) {
        QVERIFY(rc != 0);
        QCOMPARE(QByteArray(mac, 6), QByteArray(6, 0x55)); // untouched on failure
    } else {
        QCOMPARE(rc, 0);
        QCOMPARE(QByteArray(mac, 6), expected);
    }
    QCOMPARE(QByteArray(mac + 6, 2), QByteArray(2, 0x55)); // six bytes only
}

void TestHostHal::macFromInterfaces()
{
    PlatE2PromServ service;
    char mac[6];
    qputenv("WSA_NET_IF", "no-such-interface0");
    QVERIFY(service.ReadMacAddr(mac) != 0);
    qputenv("WSA_NET_IF", "../../../etc");
    QVERIFY(service.ReadMacAddr(mac) != 0);
    qputenv("WSA_NET_IF", "lo"); // all zeros: no address
    QVERIFY(service.ReadMacAddr(mac) != 0);

    const QMap<QString, QByteArray> interfaces = realInterfaces();
    qunsetenv("WSA_NET_IF");
    if (interfaces.isEmpty()) {
        QVERIFY(service.ReadMacAddr(mac) != 0);
        QSKIP("this machine has no network interface with a hardware address");
    }
    QCOMPARE(service.ReadMacAddr(mac), 0);
    QVERIFY(interfaces.values().contains(QByteArray(mac, 6)));
    for (auto it = interfaces.cbegin(); it != interfaces.cend(); ++it) {
        qputenv("WSA_NET_IF", it.key().toLocal8Bit());
        QCOMPARE(service.ReadMacAddr(mac), 0);
        QCOMPARE(QByteArray(mac, 6), it.value());
    }
}

void TestHostHal::serialNumber_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("expected"); // null: failure

    QTest::newRow("plain") << QByteArray("X123") << QByteArray("X123");
    QTest::newRow("31 characters") << QByteArray(31, 'a') << QByteArray(31, 'a');
    QTest::newRow("truncated") << QByteArray("0123456789").repeated(4)
                               << QByteArray("0123456789").repeated(4).left(31);
    // Two-byte characters: the cut must not split one.
    QTest::newRow("utf-8") << QByteArray("\xc3\xa9").repeated(20)
                           << QByteArray("\xc3\xa9").repeated(15);
    QTest::newRow("empty") << QByteArray("") << QByteArray();
}

void TestHostHal::serialNumber()
{
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, expected);
    qputenv("WSA_SERIAL_NUMBER", value);

    char sn[40];
    std::memset(sn, 0x55, sizeof sn);
    const int rc = PlatE2PromServ().ReadSN(sn);
    if (expected.isNull()) {
        QVERIFY(rc != 0);
        return;
    }
    QCOMPARE(rc, 0);
    QCOMPARE(QByteArray(sn), expected);
    QCOMPARE(sn[32], char(0x55)); // never past the 32-byte field
}

void TestHostHal::serialFromSystem()
{
    qunsetenv("WSA_SERIAL_NUMBER");
    const QByteArray dmi = readTrimmed("/sys/class/dmi/id/product_serial");
    const QByteArray machineId = readTrimmed("/etc/machine-id");
    char sn[32];
    const int rc = PlatE2PromServ().ReadSN(sn);
    if (dmi.isEmpty() && machineId.isEmpty()) {
        QVERIFY(rc != 0);
        QSKIP("this machine has neither a DMI serial nor a machine id");
    }
    QCOMPARE(rc, 0);
    const QByteArray serial(sn);
    QVERIFY(!serial.isEmpty() && serial.size() <= 31);
    QVERIFY(serial == dmi.left(31) || serial == machineId.left(31));
    if (dmi.isEmpty())
        QCOMPARE(serial, machineId.left(31));
}

QTEST_GUILESS_MAIN(TestHostHal)
#include "tst_host_hal.moc"
