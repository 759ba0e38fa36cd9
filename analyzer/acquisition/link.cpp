// Engine link: reads the engine's records from sockFd, at most one per refresh tick, and acts on
// them. Sweeps go into the store; status messages open a box, and a lost or missing probe closes
// the analyzer.
#include <QMessageBox>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cpushbutton.h"
#include "engine.h"
#include "link.h"
#include "store.h"
#include "wsa_p.h"

namespace
{

// A read may return part of a record (the engine writes slowly, or the socket splits a write).
// The pieces are gathered here across ticks and a record is acted on only when whole; each tick
// reads at most the bytes still missing, so no tick takes more than one record.
unsigned char pendingRecord[SA_RECORD_SIZE];
int pendingFill = 0;
// The connection the pending bytes belong to, by socket inode: a restart may hand out the same
// descriptor number for a new connection, and a new connection starts with an empty record.
ino_t pendingLink = 0;
// Bytes are being skipped after a damaged record; its console line has been printed, and the
// rest of the damaged stretch is skipped without another.
bool resynchronising = false;
// The engine reported the probe lost or missing on this connection: the user has been told and
// the analyzer is closing, so the end of the connection that follows is not reported again.
bool probeGoneReported = false;
// A box opened by a record runs an event loop; a tick delivered inside it must not read the next
// record before the box is answered.
bool parsing = false;

class ParseGuard
{
public:
    ParseGuard() { parsing = true; }
    ~ParseGuard() { parsing = false; }
};

void requestRepaint(CWsa& wsa)
{
    // While a signature is being placed, the side bar stays as it is.
    if (wsa.m_bSignature)
        wsa.update(grid_rect_maximize.adjusted(1, 1, 0, 0));
    else
        wsa.update();
}

bool knownType(int type)
{
    return type == SA_MSG_DISCONNECT || type == SA_MSG_SWEEP || type == SA_MSG_CONFIGURED ||
           type == SA_MSG_NO_DEVICE;
}

// A record may start at p when its type is known and its count lies in 0 .. SA_MAX_SAMPLES, as
// far as the `have` bytes present show (missing bytes of the count are taken as zero, which on
// the little-endian unit keeps exactly the prefixes that can still become a count in range).
bool plausibleStart(const unsigned char* p, int have)
{
    if (have < 1 || !knownType(static_cast<signed char>(p[0])))
        return false;
    if (have <= 4)
        return true;
    unsigned char count[4] = {0, 0, 0, 0};
    std::memcpy(count, p + 4, static_cast<size_t>(std::min(have - 4, 4)));
    int n = 0;
    std::memcpy(&n, count, sizeof n);
    return n >= 0 && n <= SA_MAX_SAMPLES;
}

// Bytes of a record with this header that carry meaning; the rest is not interpreted.
int usedBytes(int type, int count)
{
    const int header = 8;
    if (type == SA_MSG_SWEEP)
        return header + 4 * count;
    if (type == SA_MSG_CONFIGURED)
        return header + 3 * 4;
    return header;
}

// Drops the pending bytes before the first plausible record start after offset `from`.
void skipTo(int from)
{
    int k = from;
    while (k < pendingFill && !plausibleStart(pendingRecord + k, pendingFill - k))
        ++k;
    std::memmove(pendingRecord, pendingRecord + k, static_cast<size_t>(pendingFill - k));
    pendingFill -= k;
}

void reportDamage(int type, int count)
{
    if (resynchronising)
        return;
    resynchronising = true;
    if (!knownType(type))
        std::puts("main received unknown data type");
    else if (type == SA_MSG_SWEEP)
        std::printf("main received sweep with bad sample count %d\n", count);
    else
        std::printf("main received record of type %d with bad sample count %d\n", type, count);
}

// Sample count of the sweep in currentData after the band adjustment, or -1 when it cannot be
// used to index the record.
int adjustedCount()
{
    const int raw = currentData.num_samples;
    if (raw < 0 || raw > SA_MAX_SAMPLES)
        return -1;
    if (s_band == 0)
        return raw;
    // 5 GHz: pairs are reduced and the last 60 pairs lie outside the view. Fewer than 120 raw
    // samples would leave a negative count: such a sweep carries nothing to show, and storing it
    // would give the recording (and the topographic column count) a negative size.
    const int reduced = raw / 2 - 60;
    return reduced >= 0 ? reduced : -1;
}

// Each handler returns false when the analyzer was deleted while its box was open.
bool takeSweep(CWsa& wsa)
{
    const int n = adjustedCount();
    if (n < 0) {
        std::printf("main received sweep with bad sample count %d\n", currentData.num_samples);
        currentData.num_samples = 0;
        return true;
    }
    bReceivedData = true;
    ++nDataCount;
    if (s_band != 0) {
        currentData.num_samples = n;
        for (int i = 0; i < n; ++i)
            currentData.data[i] = std::max(currentData.data[2 * i], currentData.data[2 * i + 1]);
    }
    currentDatatmp.type = currentData.type;
    currentDatatmp.num_samples = n;
    std::memcpy(currentDatatmp.data, currentData.data, sizeof(int) * static_cast<size_t>(n));
    if (nLastIdx < 0)
        maxData = currentData;
    ++nLastIdx;
    if (nLastIdx >= WSA_RECORDING_LIMIT) {
        stopAppEngines();
        if (!wsa.showMsgBox(QObject::tr("Information"),
                            QObject::tr("Reach the max recording time")))
            return false;
        wsa.RestartAppEngines();
    } else {
        historyData[nLastIdx] = currentData;
        wsaCopyTimeText(historyTime[nLastIdx], wsa.getTime());
    }
    requestRepaint(wsa);
    return true;
}

bool announceConfigured(CWsa& wsa)
{
    std::puts("\nmain received: CONFIGURED\n");
    std::printf("%d MHz - %d MHz @ %d KHz, %d samples\n", currentData.data[0], currentData.data[1],
                currentData.data[2], currentData.num_samples);
    // The count describes the engine's set-up, not samples of this buffer.
    currentData.num_samples = 0;
    const QString text = s_band != 0 ? CWsa::tr("5G Band Configure Succeed!")
                                     : CWsa::tr("2.4G Band Configure Succeed!");
    if (!wsa.showMsgBox(QObject::tr("Information"), text))
        return false;
    if (pBtSignatures)
        pBtSignatures->hide();
    return true;
}

bool reportProbeGone(CWsa& wsa, const char* consoleLine)
{
    std::puts(consoleLine);
    currentData.num_samples = 0;
    probeGoneReported = true;
    if (!wsa.showMsgBox(QObject::tr("Error"),
                        QObject::tr("No WIFI SA USB is detected!\nPlease make sure your WIFI SA "
                                    "USB is properly\nconnected to the unit.")))
        return false;
    emit wsa.sigClose();
    return true;
}

// The engine closed its end or the connection failed. Polling a dead descriptor every tick
// would only repeat the failure, and a kept descriptor number may later name another file, so
// the link is forgotten. The analyzer keeps showing what it has; a band selection restarts the
// engine.
void loseLink(CWsa& wsa, bool closeDescriptor)
{
    std::puts("main engine connection closed");
    if (closeDescriptor)
        close(sockFd);
    sockFd = -1;
    pendingFill = 0;
    resynchronising = false;
    if (probeGoneReported)
        return;
    wsa.showMsgBox(QObject::tr("Error"),
                   QObject::tr("The acquisition engine has stopped.\nSelect a band under "
                               "Frequency to restart it."));
}

// The pending record is whole: act on it, or skip to the next plausible record start.
bool takePending(CWsa& wsa)
{
    const int type = static_cast<signed char>(pendingRecord[0]);
    int count = 0;
    std::memcpy(&count, pendingRecord + 4, sizeof count);
    if (!plausibleStart(pendingRecord, SA_RECORD_SIZE)) {
        reportDamage(type, count);
        skipTo(1);
        return true;
    }
    // A record start inside this header: the bytes before it are the tail of something cut
    // short that happened to look like a start (its count read from the real record's type).
    for (int k = 1; k < 8; ++k) {
        if (plausibleStart(pendingRecord + k, SA_RECORD_SIZE - k)) {
            if (!resynchronising)
                std::puts("main received a record cut short");
            resynchronising = true;
            skipTo(k);
            return true;
        }
    }
    resynchronising = false;
    // A record cut short is followed at once by the next one, which then begins in the part of
    // this record its header does not use (the engine leaves that part zero). It ends this
    // record, and its bytes are kept as the start of the next.
    int end = std::clamp(usedBytes(type, count), 0, int(SA_RECORD_SIZE));
    while (end < SA_RECORD_SIZE && !plausibleStart(pendingRecord + end, SA_RECORD_SIZE - end))
        ++end;
    unsigned char record[SA_RECORD_SIZE];
    std::memcpy(record, pendingRecord, sizeof record);
    std::fill(record + end, record + sizeof record, 0);
    std::memmove(pendingRecord, pendingRecord + end, static_cast<size_t>(SA_RECORD_SIZE - end));
    pendingFill = SA_RECORD_SIZE - end;
    return wsaDispatchRecord(wsa, record);
}

// Bytes the pending record still lacks: at most this much is read at a time.
size_t missingBytes()
{
    return static_cast<size_t>(SA_RECORD_SIZE - pendingFill);
}

// `n` bytes have been placed behind the pending ones; a whole record is acted on.
void appended(CWsa& wsa, size_t n)
{
    pendingFill += static_cast<int>(n);
    if (pendingFill == SA_RECORD_SIZE)
        takePending(wsa);
}

} // namespace

bool wsaDispatchRecord(CWsa& wsa, const void* record)
{
    std::memcpy(&currentData, record, SA_RECORD_SIZE);
    switch (currentData.type) {
    case SA_MSG_SWEEP:
        return takeSweep(wsa);
    case SA_MSG_CONFIGURED:
        return announceConfigured(wsa);
    case SA_MSG_DISCONNECT:
        return reportProbeGone(wsa, "spy disconnect");
    case SA_MSG_NO_DEVICE:
        return reportProbeGone(wsa, "No WiFi SA USB is detected!");
    default:
        std::puts("main received unknown data type");
        currentData.num_samples = 0;
        return true;
    }
}

size_t wsaTakeBytes(CWsa& wsa, const void* bytes, size_t size)
{
    const size_t taken = std::min(size, missingBytes());
    std::memcpy(pendingRecord + pendingFill, bytes, taken);
    appended(wsa, taken);
    return taken;
}

void wsaResetRecordReader()
{
    pendingFill = 0;
    resynchronising = false;
}

void CWsa::wsaDataParse()
{
    if (parsing)
        return;
    ParseGuard guard;
    // A sweep not painted by now is not counted in the statistics.
    currentData.type = 0;
    currentData.num_samples = 0;
    if (sockFd < 0)
        return;

    struct stat link;
    const ino_t linkId = fstat(sockFd, &link) == 0 ? link.st_ino : 0;
    if (linkId != pendingLink) {
        pendingLink = linkId;
        wsaResetRecordReader();
        probeGoneReported = false;
    }

    const ssize_t got = recv(sockFd, pendingRecord + pendingFill, missingBytes(), MSG_DONTWAIT);
    if (got > 0) {
        appended(*this, static_cast<size_t>(got));
        return;
    }
    const int error = got < 0 ? errno : 0;
    if (error == EAGAIN || error == EWOULDBLOCK || error == EINTR)
        return;
    if (error != 0)
        std::printf("main engine read fail: %d\n", error);
    // A descriptor that is not (or no longer) a socket is not ours to close.
    const bool ours = error != EBADF && error != ENOTSOCK;
    loseLink(*this, ours);
}
