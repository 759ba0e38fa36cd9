#include "halboard.h"

namespace halmanager
{

namespace
{

bool switchedOn(const char* name)
{
    return qEnvironmentVariableIntValue(name) == 1;
}

} // namespace

CDevice::CDevice(const QString& name) : m_name(name) {}

CDevice::~CDevice() = default;

QString CDevice::name() const
{
    return m_name;
}

CUsbWifiSpy::CUsbWifiSpy() : CDevice(QStringLiteral("USB_WIFI_SPY")) {}

CBus::CBus(const QString& name) : m_name(name) {}

CBus::~CBus() = default;

QString CBus::name() const
{
    return m_name;
}

CDevice* CBus::getDevice(const QString& name) const
{
    Q_UNUSED(name);
    return nullptr;
}

CUsbBus::CUsbBus() : CBus(QStringLiteral("UsbBus")), m_spy(new CUsbWifiSpy) {}

CUsbBus::~CUsbBus()
{
    delete m_spy;
}

CDevice* CUsbBus::getDevice(const QString& name) const
{
    if (switchedOn("WSA_HAL_NO_DEVICE") || name != m_spy->name())
        return nullptr;
    return m_spy;
}

CBoardSpec::CBoardSpec() : m_usbBus(new CUsbBus) {}

CBoardSpec* CBoardSpec::GetInstance()
{
    // Lives as long as the process, like the unit's board description.
    static CBoardSpec* instance = new CBoardSpec;
    return instance;
}

CBus* CBoardSpec::getBus(const QString& name) const
{
    if (switchedOn("WSA_HAL_NO_BUS") || name != m_usbBus->name())
        return nullptr;
    return m_usbBus;
}

} // namespace halmanager
