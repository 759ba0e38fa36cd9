// PLACEHOLDER: to be written (plug-in object).
#include "wsaplugin.h"

wsaPlugin::wsaPlugin() : m_pUtilWnd(nullptr), m_pWsa(nullptr) { bIsStarted = false; }
wsaPlugin::~wsaPlugin() {}
QString wsaPlugin::getPluginID() const { return QString(); }
QString wsaPlugin::getPluginName() const { return QString(); }
QString wsaPlugin::getPluginVersion() const { return QString(); }
QString wsaPlugin::getPluginBuilder() const { return QString(); }
bool wsaPlugin::start(QWidget*) { return true; }
bool wsaPlugin::stop() { return false; }
void wsaPlugin::terminate() {}
void wsaPlugin::show() {}
void wsaPlugin::hide() {}
void wsaPlugin::update() {}
QObject* wsaPlugin::getObject() { return nullptr; }
bool wsaPlugin::bkgRun(QWidget*) { return true; }
void wsaPlugin::setCallerID(int id) { m_callerId = id; }
