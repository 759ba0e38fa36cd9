#include "sources.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace wsa::desktop
{

const std::vector<SourceKind>& sourceKinds()
{
    static const std::vector<SourceKind> table = {
        {"sim", QT_TRANSLATE_NOOP("Sources", "Simulated probe"), false},
        {"hackrf", QT_TRANSLATE_NOOP("Sources", "HackRF"), false},
        {"replay", QT_TRANSLATE_NOOP("Sources", "Recording"), true},
    };
    return table;
}

const SourceKind* findSourceKind(const QString& key)
{
    for (const SourceKind& kind : sourceKinds()) {
        if (key == QLatin1String(kind.key))
            return &kind;
    }
    return nullptr;
}

QString sourceKeys()
{
    const auto& table = sourceKinds();
    QString keys;
    for (std::size_t i = 0; i < table.size(); ++i) {
        keys += i == 0 ? "" : i + 1 == table.size() ? " or " : ", ";
        keys += QLatin1String(table[i].key);
    }
    return keys;
}

QString sourceTitle(const SourceKind& kind)
{
    return QCoreApplication::translate("Sources", kind.title);
}

QString recordingProblem(const QString& path)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return QCoreApplication::translate("Sources", "does not exist");
    if (!info.isFile())
        return QCoreApplication::translate("Sources", "is not a regular file");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QCoreApplication::translate("Sources", "cannot be read");
    if (file.size() == 0)
        return QCoreApplication::translate("Sources", "is empty");
    return QString();
}

} // namespace wsa::desktop
