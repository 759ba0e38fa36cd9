// Board description of the test set's hardware abstraction layer: buses and their devices.
//
// On a desktop the board has the bus "UsbBus" with the device "USB_WIFI_SPY". For tests:
// WSA_HAL_NO_BUS=1 removes the bus, WSA_HAL_NO_DEVICE=1 removes the device (read at each look-up).
#ifndef HALBOARD_H
#define HALBOARD_H

#include <QString>

namespace halmanager {

class CDevice
{
public:
    explicit CDevice(const QString& name);
    virtual ~CDevice();
    QString name() const;

private:
    QString m_name;
};

class CUsbWifiSpy : public CDevice
{
public:
    CUsbWifiSpy();
};

class CBus
{
public:
    explicit CBus(const QString& name);
    virtual ~CBus();
    QString name() const;
    // Null when no device of that name is on the bus.
    virtual CDevice* getDevice(const QString& name) const;

private:
    QString m_name;
};

class CUsbBus : public CBus
{
public:
    CUsbBus();
    ~CUsbBus() override;
    CDevice* getDevice(const QString& name) const override;

private:
    CUsbWifiSpy* m_spy;
};

class CBoardSpec
{
public:
    static CBoardSpec* GetInstance();
    // Null when no bus of that name exists.
    CBus* getBus(const QString& name) const;

private:
    CBoardSpec();
    CUsbBus* m_usbBus;
};

} // namespace halmanager

#endif
