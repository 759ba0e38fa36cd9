// The plug-in object the host loads: it owns the utility window that holds the analyzer.
#include "wsaplugin.h"

#include <memory>

#include "cutilwindow.h"
#include "wsa.h"

// Qt 4's plug-in loader reads this record from the library file before loading it, and
// refuses a plug-in whose Qt version or build key does not fit the host.
extern "C" Q_DECL_EXPORT const char qt_plugin_verification_data[99]
    __attribute__((section(".qtplugin"), used)) = "pattern=QT_PLUGIN_VERIFICATION_DATA\n"
                                                  "version=4.8.4\n"
                                                  "debug=true\n"
                                                  "buildkey=i386 linux g++-4 full-config";

extern "C" Q_DECL_EXPORT const char* qt_plugin_query_verification_data()
{
    return qt_plugin_verification_data;
}

// qt_plugin_instance comes from Q_PLUGIN_METADATA: a static QPointer that creates a new root
// object whenever the previous one has been destroyed, and never deletes it.

wsaPlugin::wsaPlugin() : QObject(nullptr), m_pUtilWnd(nullptr), m_pWsa(nullptr)
{
    bIsStarted = false;
    m_callerId = -1; // no caller has introduced itself yet
}

wsaPlugin::~wsaPlugin()
{
    bIsStarted = false;
}

QString wsaPlugin::getPluginID() const
{
    return QStringLiteral("com.halbrininc.CommonUtil.wsaPlugin");
}

QString wsaPlugin::getPluginName() const
{
    return QStringLiteral("wsa");
}

QString wsaPlugin::getPluginVersion() const
{
    return QStringLiteral("1.0");
}

QString wsaPlugin::getPluginBuilder() const
{
    return QStringLiteral("HALBRIN");
}

bool wsaPlugin::start(QWidget* parent)
{
    if (!bIsStarted) {
        // A terminated plug-in keeps its window and shows it again.
        if (!m_pUtilWnd) {
            wsaInstallTranslator();
            std::unique_ptr<CUtilWindow> window(new CUtilWindow(parent));
            m_pWsa = new CWsa(window.get());
            window->setWindowSize(CUtilWindow::WindowSize(0));
            window->setCentralWidget(m_pWsa);
            m_pUtilWnd = window.release();
            // The host may delete the window itself, at any moment (even under an open box):
            // forget it then, as after stop, instead of keeping a dangling pointer.
            connect(m_pUtilWnd, &QObject::destroyed, this, [this](QObject* gone) {
                if (gone != m_pUtilWnd)
                    return;
                m_pUtilWnd = nullptr;
                m_pWsa = nullptr;
                bIsStarted = false;
            });
        }
        bIsStarted = true;
    }
    m_pUtilWnd->show();
    m_pUtilWnd->raise();
    m_pUtilWnd->updateWindow(true);
    return true;
}

bool wsaPlugin::stop()
{
    if (!bIsStarted)
        return false;
    if (m_pUtilWnd) {
        CUtilWindow* window = m_pUtilWnd;
        m_pUtilWnd = nullptr;
        m_pWsa = nullptr;
        window->hide();
        delete window; // the analyzer goes with it and stops its engine
    }
    bIsStarted = false;
    return true;
}

void wsaPlugin::terminate()
{
    if (m_pUtilWnd)
        m_pUtilWnd->closeWindow();
    bIsStarted = false;
}

void wsaPlugin::show()
{
    if (m_pUtilWnd) {
        m_pUtilWnd->show();
        m_pUtilWnd->updateWindow(true);
    }
}

void wsaPlugin::hide()
{
    if (m_pUtilWnd)
        m_pUtilWnd->hide();
}

void wsaPlugin::update()
{
    if (m_pUtilWnd)
        m_pUtilWnd->updateWindow(true);
}

QObject* wsaPlugin::getObject()
{
    return m_pUtilWnd;
}

bool wsaPlugin::bkgRun(QWidget*)
{
    return true; // the analyzer has no background mode
}

void wsaPlugin::setCallerID(int id)
{
    m_callerId = id;
}
