// The check both German catalogues pass: lupdate over the sources into a copy of the catalogue,
// then every entry read back. A text new in the code, still unfinished, translated as nothing, or
// losing a placeholder, its mnemonic or a tag is a fault.
#ifndef WSA_TEST_CATALOGUE_H
#define WSA_TEST_CATALOGUE_H

#include <QDirIterator>
#include <QFile>
#include <QLibraryInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamReader>

namespace wsatest
{

// What a translation must carry over from its source: the arguments, the one mnemonic, the tags.
inline QStringList skeleton(const QString& text)
{
    static const QRegularExpression parts(QStringLiteral("%[1-9n]|&[^& ]|<[^>]*>"));
    QStringList out;
    for (auto it = parts.globalMatch(text); it.hasNext();) {
        const QString part = it.next().captured();
        out << (part.startsWith('&') ? QStringLiteral("&") : part);
    }
    if (!text.contains('<'))
        out.sort(); // word order may change; markup order may not
    return out;
}

struct CatalogueCheck {
    QString error;      // lupdate or the file could not be run or read
    int messages = 0;   // entries lupdate left in the copy
    QStringList faults; // one line per entry at fault
};

// `catalogue` is copied to `copy`, brought up to date from the *.cpp and *.h below `dirs`.
inline CatalogueCheck checkCatalogue(const QString& catalogue, const QStringList& dirs,
                                     const QString& copy)
{
    CatalogueCheck result;
    const QString lupdate = QLibraryInfo::path(QLibraryInfo::BinariesPath) + "/lupdate";
    if (!QFile::copy(catalogue, copy)) {
        result.error = "cannot copy " + catalogue;
        return result;
    }
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    QStringList args{"-silent", "-no-obsolete", "-locations", "none"};
    for (const QString& dir : dirs) {
        QDirIterator it(dir, {"*.cpp", "*.h"}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            args << it.next();
    }
    QProcess run;
    run.start(lupdate, args << "-ts" << copy);
    if (!run.waitForFinished(60000) || run.exitStatus() != QProcess::NormalExit ||
        run.exitCode() != 0) {
        result.error = lupdate + ": " + QString::fromLocal8Bit(run.readAllStandardError());
        return result;
    }
    QFile file(copy);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = "cannot read " + copy;
        return result;
    }
    QXmlStreamReader xml(&file);
    QString context, source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == u"name") {
            context = xml.readElementText();
        } else if (xml.name() == u"source") {
            source = xml.readElementText();
        } else if (xml.name() == u"translation") {
            const QString type = xml.attributes().value("type").toString();
            const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
            ++result.messages;
            if (!type.isEmpty() || text.trimmed().isEmpty() || skeleton(text) != skeleton(source))
                result.faults << QString("%1: \"%2\" -> \"%3\" %4").arg(context, source, text, type);
        }
    }
    if (xml.hasError())
        result.error = xml.errorString();
    return result;
}

} // namespace wsatest

#endif
