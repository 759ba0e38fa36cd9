// The host's interface of a utility plug-in.
#ifndef UTILINTERFACE_H
#define UTILINTERFACE_H

#include <QtPlugin>
#include <QString>

class QObject;
class QWidget;

class UtilInterface
{
public:
    bool bIsStarted;
    int m_callerId;

    virtual ~UtilInterface() {}
    virtual QString getPluginID() const = 0;
    virtual QString getPluginName() const = 0;
    virtual QString getPluginVersion() const = 0;
    virtual QString getPluginBuilder() const = 0;
    virtual bool bkgRun(QWidget* parent) = 0;
    virtual bool start(QWidget* parent) = 0;
    virtual bool stop() = 0;
    virtual void terminate() = 0;
    virtual void show() = 0;
    virtual void hide() = 0;
    virtual void update() = 0;
    virtual QObject* getObject() = 0;
    virtual void setCallerID(int id) = 0;
};

#define UtilInterface_iid "com.halbrininc.CommonUtil.UtilInterface/1.0"
Q_DECLARE_INTERFACE(UtilInterface, UtilInterface_iid)

#endif
