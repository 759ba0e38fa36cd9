// Compiled-in paths, for the test set or a desktop installation; the environment overrides them
// for development and tests.
#include "paths.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <cstdlib>
#include <string>

#include "wsa_p.h"

#ifndef WSA_DESKTOP_PATHS
#define WSA_DESKTOP_PATHS 0
#endif

namespace
{

const char* fromEnvironment(const char* name, const char* fallback)
{
    const char* value = std::getenv(name);
    return (value && *value) ? value : fallback;
}

// A missing directory is created here; one that cannot be is still returned, so the failure shows
// where the directory is used.
QString underLocation(QStandardPaths::StandardLocation location, const QString& subPath)
{
    QString base = QStandardPaths::writableLocation(location);
    if (base.isEmpty())
        base = QDir::homePath();
    const QString path = QDir::cleanPath(base + QLatin1Char('/') + subPath);
    QDir().mkpath(path);
    return path;
}

[[maybe_unused]] const char* keep(std::string& store, const QString& path)
{
    // Rewritten only on a change, so a pointer handed out before stays valid.
    const std::string encoded = QFile::encodeName(path).toStdString();
    if (store != encoded)
        store = encoded;
    return store.c_str();
}

} // namespace

bool wsaDesktopPaths()
{
    return WSA_DESKTOP_PATHS;
}

QString wsaDesktopResultDir()
{
    return underLocation(QStandardPaths::DocumentsLocation, QStringLiteral("wsa"));
}

QString wsaDesktopRecordDir()
{
    return underLocation(QStandardPaths::GenericDataLocation, QStringLiteral("wsa/recordings"));
}

const char* wsaEnginePath()
{
    return fromEnvironment("WSA_ENGINE_PATH", WSA_DEFAULT_ENGINE_PATH);
}

const char* wsaResultDir()
{
#if WSA_DESKTOP_PATHS
    if (const char* dir = fromEnvironment("WSA_RESULT_DIR", nullptr))
        return dir;
    // Resolved on every call: the user's documents directory is theirs to move.
    static std::string resolved;
    return keep(resolved, wsaDesktopResultDir());
#else
    return fromEnvironment("WSA_RESULT_DIR", WSA_DEFAULT_RESULT_DIR);
#endif
}

const char* wsaVendorInfoPath()
{
    return fromEnvironment("WSA_VENDOR_INFO", WSA_DEFAULT_VENDOR_INFO);
}

QString wsaEnterDesktopWorkDir()
{
    if (!wsaDesktopPaths())
        return QString();
    const QString dir = underLocation(QStandardPaths::RuntimeLocation, QStringLiteral("wsa"));
    // Owner-only: the socket in it carries the user's measurements.
    if (!QFile::setPermissions(dir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner) ||
        !QDir::setCurrent(dir))
        return QString();
    return dir;
}

void wsaExportEngineDefaults()
{
    if (!wsaDesktopPaths() || std::getenv("WSA_RECORD_DIR"))
        return;
    qputenv("WSA_RECORD_DIR", QFile::encodeName(wsaDesktopRecordDir()));
}
