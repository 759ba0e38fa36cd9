// The test result report: F1 saves the screen as an HTML page with a bitmap beside it.
#include "report.h"

#include <QBuffer>
#include <QLocale>
#include <QPixmap>
#include <QPointer>
#include <QScreen>
#include <QWindow>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "ckeypadfactory.h"
#include "cwidgetstyle.h"
#include "engine.h"
#include "plate2promserv.h"
#include "reportfiles.h"
#include "wsa_p.h"

namespace
{

QDateTime localNow()
{
    return QDateTime::currentDateTime();
}

// Console lines name the file alone, not the build machine's path to it.
const char* sourceName()
{
    const char* slash = std::strrchr(__FILE__, '/');
    return slash ? slash + 1 : __FILE__;
}

QString proposedName(const QDateTime& when)
{
    return QLocale::c().toString(when, QStringLiteral("yyyyMMdd-hhmmss"));
}

// English day and month names whatever the user's locale.
QString dateText(const QDateTime& when)
{
    return QLocale::c().toString(when, QStringLiteral("dddd MMMM yyyy hh:mm:ss"));
}

// Longest name that both the name buffer and a quoted "mkdir -p <dir>/<name>_files" command
// line of WSA_REPORT_COMMAND bytes hold, the test set's limit on a report's name; 0 when the
// directory alone fills the command.
int nameRoom(const char* resultDir)
{
    // The command with an empty name. The name's letters and digits are not changed by the
    // quoting.
    char path[WSA_REPORT_COMMAND];
    char quoted[WSA_REPORT_COMMAND];
    if (std::snprintf(path, sizeof path, "%s/_files", resultDir ? resultDir : "") >=
            int(sizeof path) ||
        !wsaShellQuote(path, quoted, sizeof quoted))
        return 0;
    const int fixed = std::snprintf(nullptr, 0, "mkdir -p %s", quoted);
    const int room = WSA_REPORT_COMMAND - 1 - fixed;
    return qBound(0, room, WSA_REPORT_TEXT - 1);
}

// Text of the platform (vendor file, EEPROM) as it may stand in the page, byte for byte apart
// from the escapes: Latin-1 maps every byte to one character and back. Qt leaves the apostrophe
// alone, which an attribute quoted with it would need escaped.
QByteArray htmlEscaped(const char* text)
{
    return QString::fromLatin1(text).toHtmlEscaped().replace(QLatin1Char('\''), "&#39;").toLatin1();
}

// No page was written: the user learns where and why, besides the console line.
void reportNotSaved(CWsa& wsa, const QString& path, const QString& reason)
{
    wsa.showMsgBox(QObject::tr("Error"),
                   CWsa::tr("The test result could not be saved.\n%1\n%2").arg(path, reason));
}

// Nothing of the report could be written at `path` (bytes as the file system has them).
void notSaved(CWsa& wsa, const QByteArray& path, int error)
{
    std::printf("crate file %s failed\n", path.constData());
    reportNotSaved(wsa, QString::fromLocal8Bit(path), QString::fromLocal8Bit(std::strerror(error)));
}

// The picture beside the page, in `dirFd` (closed here); the page stands without it.
void savePicture(const QPixmap& pixmap, int dirFd, const QByteArray& path)
{
    FILE* out = dirFd >= 0 ? wsaCreateOwnFile(dirFd, "wsa.bmp") : nullptr;
    if (dirFd >= 0)
        close(dirFd);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    const bool ok =
        out && buffer.open(QIODevice::WriteOnly) && pixmap.save(&buffer, "BMP") &&
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), out) == size_t(bytes.size());
    if (out)
        std::fclose(out);
    if (!ok)
        std::printf("crate file %s failed\n", path.constData());
}

void formatMacText(const char* mac, char* out, size_t outSize)
{
    const auto* b = reinterpret_cast<const unsigned char*>(mac);
    std::snprintf(out, outSize, "%02x:%02x:%02x:%02x:%02x:%02x", b[0], b[1], b[2], b[3], b[4],
                  b[5]);
}

void writePageHead(FILE* pf)
{
    std::fprintf(pf, "<html>\n<head><title>content type: %s</title></head>\n<body>",
                 "wifi spy result");
}

void writeInfoRow(FILE* pf, int fontSize, const char* label, const char* value)
{
    std::fprintf(pf, "\t<tr><font size=\"%d\"> <td>%s</td><td>%s</td></font></tr>\n", fontSize,
                 label, value);
}

void writePageTail(FILE* pf, const char* fileName)
{
    std::fprintf(pf, "<img src=\"%s_files/wsa.bmp\"/>\n", fileName);
    std::fputs("</body>\n</html>", pf);
}

// What the analyzer shows on screen. Where the platform cannot read a window back (some
// Wayland compositors) or the window is not on screen, its own rendering stands in.
QPixmap grabOwnArea(QWidget* wsa)
{
    QWidget* top = wsa->window();
    QWindow* handle = top->windowHandle();
    if (handle && handle->isExposed() && handle->screen()) {
        const QPoint origin = wsa->mapTo(top, QPoint(0, 0));
        // The top-level window's id: asking the analyzer itself for one would make it native.
        const QPixmap shot = handle->screen()->grabWindow(top->winId(), origin.x(), origin.y(),
                                                          wsa->width(), wsa->height());
        if (!shot.isNull())
            return shot;
    }
    return wsa->grab();
}

void saveUnder(CWsa& wsa, const QString& entry, const QPixmap& pixmap)
{
    // Cancelling the keypad is the user's way of not saving.
    if (entry.isNull()) {
        std::puts("Test result not saved: the name entry was cancelled");
        return;
    }

    char oldtext[WSA_REPORT_TEXT];
    char newtext[WSA_REPORT_TEXT];
    std::memset(oldtext, 0, sizeof oldtext);
    std::memset(newtext, 0, sizeof newtext);
    qstrncpy(oldtext, entry.toLocal8Bit().constData(), sizeof oldtext);
    int index = wsaFilterName(oldtext, newtext, sizeof newtext);

    // Without a letter or digit the files would be the hidden ".html" and "_files": the user
    // would not find them, and the next such save would overwrite them. Saying why lets the
    // user press F1 again with a proper name.
    if (index == 0) {
        wsa.showMsgBox(QObject::tr("Error"), CWsa::tr("The name must contain letters or digits."));
        return;
    }

    const char* dir = wsaResultDir();
    const int room = nameRoom(dir);
    if (room == 0) {
        std::printf("Test result not saved: result directory path too long: %s\n", dir);
        reportNotSaved(wsa, QString::fromLocal8Bit(dir), CWsa::tr("The path is too long."));
        return;
    }
    // A long name is cut to what fits rather than refused: the user still gets the result,
    // under a name that starts like the one entered.
    if (index > room) {
        newtext[room] = '\0';
        index = room;
        std::printf("Test result name shortened to %d characters\n", room);
    }

    // The directory's bytes as given: a name that is not text in the locale still names it.
    const QByteArray base = QByteArray(dir) + '/';
    const QByteArray pageName = QByteArray(newtext, index) + ".html";
    const QByteArray pictureDir = QByteArray(newtext, index) + "_files";

    const int dirFd = wsaOpenResultDir(dir);
    if (dirFd < 0)
        return notSaved(wsa, base + pageName, errno);
    // A picture directory that cannot be made costs the picture; one planted under our name
    // costs the save.
    wsaShellMakeDirs(base + pictureDir);
    const int pictureFd = wsaOpenOwnDir(dirFd, pictureDir.constData());
    if (pictureFd < 0 && (errno == ENOTDIR || errno == EPERM)) {
        const int error = errno;
        close(dirFd);
        return notSaved(wsa, base + pictureDir, error);
    }
    FILE* pfHtml = wsaCreateOwnFile(dirFd, pageName.constData());
    const int pageError = errno;
    close(dirFd);
    if (!pfHtml) {
        if (pictureFd >= 0)
            close(pictureFd);
        return notSaved(wsa, base + pageName, pageError);
    }
    writePageHead(pfHtml);
    wsa.saveGeneralInfoOfSet(pfHtml, WSA_REPORT_FONT_SIZE);
    savePicture(pixmap, pictureFd, base + pictureDir + "/wsa.bmp");
    writePageTail(pfHtml, newtext);
    std::fclose(pfHtml);
}

} // namespace

QDateTime (*wsaReportClock)() = localNow;

int wsaFilterName(const char* text, char* out, size_t outSize)
{
    if (!out || outSize == 0)
        return 0;
    size_t index = 0;
    for (const char* p = text; p && *p && index + 1 < outSize; ++p) {
        const char c = *p;
        // Not isalnum: the locale must not let other bytes through to the shell.
        if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            out[index++] = c;
    }
    out[index] = '\0';
    return int(index);
}

void CWsa::saveTestResult()
{
    const QString defaultName = proposedName(wsaReportClock());

    // Taken before the keypad opens, so the keypad is never part of the picture. The tool box
    // and the two columns left of it are left out.
    const QRect work = CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_WORKING_AREA);
    const QRect tools = CWidgetStyle::getScreenRegion(CWidgetStyle::REGION_TOOL_BOX);
    const QPixmap pixmap =
        grabOwnArea(this).copy(0, 0, work.width() - tools.width() - 2, work.height());

    const QPointer<CWsa> alive(this);
    const QString entry = getKeyboard(tr("Save Test Result"), defaultName);
    if (!alive)
        return; // deleted with its window while the keypad was open
    saveUnder(*this, entry, pixmap);
    if (!alive)
        return;

    m_bUpdate = true;
    update();
}

QString CWsa::getKeyboard(const QString& title, const QString& text)
{
    return CKeyPadFactory::accessKeyPad(title, text, CKeyPadFactory::KEYPAD_FULL, 0, 100, this);
}

void CWsa::saveGeneralInfoOfSet(FILE* pfOutput, int font_size)
{
    if (!pfOutput)
        return;
    std::fprintf(pfOutput,
                 "\n<br><font size=%d> <a  style=\"color:blue;\"> %s </a> </font> </br>\n",
                 font_size, QObject::tr("General Information").toLocal8Bit().constData());
    std::fputs("<table border=\"1\">\n", pfOutput);

    // The moment of writing, not that of the proposed name.
    writeInfoRow(pfOutput, font_size,
                 QObject::tr("Date and Time Results Were Saved:").toLocal8Bit().constData(),
                 dateText(wsaReportClock()).toLocal8Bit().constData());

    char sVersion[WSA_REPORT_VERSION];
    char formatMac[WSA_REPORT_MAC_TEXT];
    char mac[WSA_REPORT_MAC];
    char sn[WSA_REPORT_SN];
    std::memset(sVersion, 0, sizeof sVersion);
    std::memset(formatMac, 0, sizeof formatMac);
    std::memset(mac, 0, sizeof mac);
    std::memset(sn, 0, sizeof sn);

    (void)GetVersion(wsaVendorInfoPath(), sVersion, sizeof sVersion);
    writeInfoRow(pfOutput, font_size, QObject::tr("Software Version:").toLocal8Bit().constData(),
                 htmlEscaped(sVersion).constData());

    if (m_pE2promserv && m_pE2promserv->ReadMacAddr(mac) == 0) {
        formatMacText(mac, formatMac, sizeof formatMac);
        writeInfoRow(pfOutput, font_size,
                     QObject::tr("MAC Address of Test Port:").toLocal8Bit().constData(), formatMac);
    } else {
        std::printf("### ERROR: FILE:%s\t Func:%s\t%d\n", sourceName(), __func__, __LINE__);
    }

    if (m_pE2promserv && m_pE2promserv->ReadSN(sn) == 0) {
        sn[sizeof sn - 1] = '\0'; // the platform's text, bounded here whatever it wrote
        writeInfoRow(pfOutput, font_size,
                     QObject::tr("Serial Number of Test Set:").toLocal8Bit().constData(),
                     htmlEscaped(sn).constData());
    } else {
        std::printf("### ERROR: FILE:%s\t Func:%s\t%d\n", sourceName(), __func__, __LINE__);
    }

    std::fputs("</table>", pfOutput);
    std::fputs("<br\n>", pfOutput);
}

int GetVersion(const char* sPath, char* pOut, size_t nOutLength)
{
    if (!sPath || !pOut || nOutLength == 0)
        return -2;
    FILE* pStream = wsaOpenRegularFile(sPath);
    if (!pStream)
        return -1;
    std::memset(pOut, 0, nOutLength);
    // The first line is read in place and its tail from "Common" on moved to the front. A line
    // without "Common" (or an empty file) leaves the text empty: the file was read, it just
    // names no version, which an empty cell in the report says well enough.
    const int limit = int(qMin<size_t>(nOutLength, INT_MAX));
    if (limit > 1 && std::fgets(pOut, limit, pStream)) {
        const char* common = std::strstr(pOut, "Common");
        const size_t length = common ? std::strlen(common) : 0;
        if (common)
            std::memmove(pOut, common, length);
        std::memset(pOut + length, 0, nOutLength - length);
    }
    std::fclose(pStream);
    return 0;
}
