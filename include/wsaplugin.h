// Root object of the analyzer plug-in library.
#ifndef WSAPLUGIN_H
#define WSAPLUGIN_H

#include <QObject>

#include "utilinterface.h"

class CUtilWindow;
class CWsa;

class wsaPlugin : public QObject, public UtilInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID UtilInterface_iid)
    Q_INTERFACES(UtilInterface)

public:
    wsaPlugin();
    ~wsaPlugin() override;

    QString getPluginID() const override;
    QString getPluginName() const override;
    QString getPluginVersion() const override;
    QString getPluginBuilder() const override;
    bool start(QWidget* parent) override;
    bool stop() override;
    void terminate() override;
    void show() override;
    void hide() override;
    void update() override;
    QObject* getObject() override;
    bool bkgRun(QWidget* parent) override;
    void setCallerID(int id) override;

private:
    CUtilWindow* m_pUtilWnd;
    CWsa* m_pWsa;
};

#endif
