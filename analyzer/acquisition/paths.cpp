// Compiled-in paths, for the test set or a desktop installation; the environment overrides them
// for development and tests.
#include "paths.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

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

// Makes `dir` the working directory when it is a real directory of our own user, owner-only;
// otherwise returns why not, as a console phrase.
const char* enterOwnDir(const QByteArray& dir)
{
    const int fd = open(dir.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        struct stat st;
        if (lstat(dir.constData(), &st) == 0 && S_ISLNK(st.st_mode))
            return "is a symbolic link";
        return errno == ENOTDIR ? "is not a directory" : "cannot be opened";
    }
    struct stat st;
    const char* refusal = nullptr;
    if (fstat(fd, &st) != 0)
        refusal = "cannot be examined";
    else if (st.st_uid != geteuid())
        refusal = "belongs to another user";
    else if (fchmod(fd, 0700) != 0 || fchdir(fd) != 0)
        refusal = "cannot be made private";
    close(fd);
    return refusal;
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
    QString base = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (base.isEmpty())
        base = QDir::tempPath();
    const QByteArray dir = QFile::encodeName(QDir::cleanPath(base + QStringLiteral("/wsa")));
    (void)mkdir(dir.constData(), 0700);
    const char* refusal = enterOwnDir(dir);
    if (!refusal)
        return QFile::decodeName(dir);
    // Someone else's link, file or directory at our name: the socket in it would carry the
    // user's measurements to them, so a fresh directory of our own takes its place.
    for (const QString& parent : {base, QDir::tempPath()}) {
        QByteArray pattern = QFile::encodeName(QDir::cleanPath(parent + QStringLiteral("/wsa-XXXXXX")));
        if (mkdtemp(pattern.data()) && !enterOwnDir(pattern)) {
            std::printf("wsa: %s %s; using %s instead\n", dir.constData(), refusal,
                        pattern.constData());
            return QFile::decodeName(pattern);
        }
    }
    std::printf("wsa: %s %s, and no private directory could be made: %s\n", dir.constData(),
                refusal, std::strerror(errno));
    return QString();
}

void wsaExportEngineDefaults()
{
    if (!wsaDesktopPaths() || std::getenv("WSA_RECORD_DIR"))
        return;
    qputenv("WSA_RECORD_DIR", QFile::encodeName(wsaDesktopRecordDir()));
}
