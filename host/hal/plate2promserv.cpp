#include "plate2promserv.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStringList>

#include <cstring>

namespace halmanager
{

namespace
{

constexpr int kMacBytes = 6;
constexpr int kSerialMax = 31;
const char kNetRoot[] = "/sys/class/net";

// "xx:xx:xx:xx:xx:xx" (also as sysfs writes it) into six bytes.
bool parseMac(const QByteArray& text, unsigned char* out)
{
    const QList<QByteArray> parts = text.trimmed().split(':');
    if (parts.size() != kMacBytes)
        return false;
    for (int i = 0; i < kMacBytes; ++i) {
        if (parts[i].size() != 2)
            return false;
        bool ok = false;
        const uint value = parts[i].toUInt(&ok, 16);
        if (!ok)
            return false;
        out[i] = static_cast<unsigned char>(value);
    }
    return true;
}

bool isZero(const unsigned char* mac)
{
    for (int i = 0; i < kMacBytes; ++i) {
        if (mac[i] != 0)
            return false;
    }
    return true;
}

QByteArray readSmallFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.read(256).trimmed();
}

bool interfaceMac(const QString& name, unsigned char* out)
{
    // Interface names never contain a slash; refusing one keeps the look-up inside sysfs.
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || name == QLatin1String(".."))
        return false;
    const QString dir = QStringLiteral("%1/%2").arg(QLatin1String(kNetRoot), name);
    return parseMac(readSmallFile(dir + QStringLiteral("/address")), out) && !isZero(out);
}

bool isLoopback(const QString& name)
{
    // ARPHRD_LOOPBACK; the name alone is not reliable.
    const QByteArray type =
        readSmallFile(QStringLiteral("%1/%2/type").arg(QLatin1String(kNetRoot), name));
    return name == QLatin1String("lo") || type == "772";
}

bool firstInterfaceMac(unsigned char* out)
{
    QDir dir{QLatin1String(kNetRoot)};
    const QStringList names =
        dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::System, QDir::Name);
    for (const QString& name : names) {
        if (!isLoopback(name) && interfaceMac(name, out))
            return true;
    }
    return false;
}

// Cuts at most kSerialMax bytes without splitting a UTF-8 sequence.
int copySerial(const QByteArray& text, char* sn)
{
    int length = qMin<int>(static_cast<int>(text.size()), kSerialMax);
    if (length < text.size()) {
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xc0) == 0x80)
            --length;
    }
    std::memcpy(sn, text.constData(), static_cast<size_t>(length));
    sn[length] = '\0';
    return 0;
}

bool meaningfulSerial(const QByteArray& serial)
{
    if (serial.isEmpty())
        return false;
    // Firmware fills the field with placeholders when the maker left it blank.
    static const char* const placeholders[] = {"to be filled by o.e.m.",
                                               "not specified",
                                               "default string",
                                               "system serial number",
                                               "none",
                                               "n/a",
                                               "0123456789",
                                               "not applicable"};
    const QByteArray lower = serial.toLower();
    for (const char* p : placeholders) {
        if (lower == p)
            return false;
    }
    for (char c : serial) {
        if (c != '0' && c != ' ' && c != '.' && c != 'x' && c != 'X' && c != 'f' && c != 'F')
            return true;
    }
    return false;
}

} // namespace

PlatE2PromServ::PlatE2PromServ() = default;

PlatE2PromServ::~PlatE2PromServ() = default;

int PlatE2PromServ::ReadMacAddr(char* mac)
{
    if (!mac)
        return -1;
    unsigned char bytes[kMacBytes] = {};
    bool found = false;
    if (qEnvironmentVariableIsSet("WSA_MAC_ADDRESS"))
        found = parseMac(qgetenv("WSA_MAC_ADDRESS"), bytes);
    else if (qEnvironmentVariableIsSet("WSA_NET_IF"))
        found = interfaceMac(qEnvironmentVariable("WSA_NET_IF"), bytes);
    else
        found = firstInterfaceMac(bytes);
    if (!found)
        return -1;
    std::memcpy(mac, bytes, kMacBytes);
    return 0;
}

int PlatE2PromServ::ReadSN(char* sn)
{
    if (!sn)
        return -1;
    if (qEnvironmentVariableIsSet("WSA_SERIAL_NUMBER")) {
        const QByteArray serial = qgetenv("WSA_SERIAL_NUMBER");
        if (serial.isEmpty())
            return -1;
        return copySerial(serial, sn);
    }
    const QByteArray dmi = readSmallFile(QStringLiteral("/sys/class/dmi/id/product_serial"));
    if (meaningfulSerial(dmi))
        return copySerial(dmi, sn);
    const QByteArray machineId = readSmallFile(QStringLiteral("/etc/machine-id"));
    if (!machineId.isEmpty())
        return copySerial(machineId, sn);
    return -1;
}

} // namespace halmanager
