#include "translation.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

namespace wsa::desktop
{

void installTranslator()
{
    QCoreApplication* app = QCoreApplication::instance();
    if (!app)
        return;
    // Parented to the application, so a later application gets its own; kept also when no
    // catalogue matches, to mark the look-up as done.
    const QString name = QStringLiteral("wsaDesktopTranslator");
    if (app->findChild<QTranslator*>(name, Qt::FindDirectChildrenOnly))
        return;
    auto* translator = new QTranslator(app);
    translator->setObjectName(name);
    if (translator->load(QLocale::system(), QStringLiteral("wsa_desktop"), QStringLiteral("_"),
                         QStringLiteral(":/desktop-i18n")))
        QCoreApplication::installTranslator(translator);
}

} // namespace wsa::desktop
