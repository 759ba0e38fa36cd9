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
#include "recordreader.h"
#include "store.h"
#include "wsa_p.h"

namespace
{

// The connection the reader's pending bytes belong to, by socket inode: a restart may hand out
// the same descriptor number for a new connection, and a new connection starts with an empty
// record.
ino_t pendingLink = 0;
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

void reportDamage(const wsa::RecordDamage& damage)
{
    switch (damage.kind) {
    case wsa::RecordDamage::UnknownType:
        std::puts("main received unknown data type");
        break;
    case wsa::RecordDamage::BadCount:
        if (damage.type == SA_MSG_SWEEP)
            std::printf("main received sweep with bad sample count %d\n", damage.count);
        else
            std::printf("main received record of type %d with bad sample count %d\n", damage.type,
                        damage.count);
        break;
    case wsa::RecordDamage::CutShort:
    case wsa::RecordDamage::CutSamples:
        std::puts("main received a record cut short");
        break;
    case wsa::RecordDamage::BadLevel:
        std::printf("main received sweep with level %d out of range\n", damage.level);
        break;
    }
}

// Sample count of the sweep in currentData after the band's reduction, or -1 when it cannot be
// used to index the record.
int adjustedCount(const wsa::HandheldMapping& mapping)
{
    const int raw = currentData.num_samples;
    if (raw < 0 || raw > SA_MAX_SAMPLES)
        return -1;
    // A 5 GHz sweep too short for its reduction carries nothing to show, and storing it would
    // give the recording (and the topographic column count) a negative size.
    return mapping.reducedCount(raw);
}

// Each handler returns false when the analyzer was deleted while its box was open.
bool takeSweep(CWsa& wsa)
{
    const wsa::HandheldMapping& mapping = *wsaSelectedBand().handheld;
    const int n = adjustedCount(mapping);
    if (n < 0) {
        std::printf("main received sweep with bad sample count %d\n", currentData.num_samples);
        currentData.num_samples = 0;
        return true;
    }
    bReceivedData = true;
    ++nDataCount;
    if (mapping.pairReduction) {
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

QString configuredText(wsa::BandId band)
{
    switch (band) {
    case wsa::BandId::Ghz5:
        return CWsa::tr("5G Band Configure Succeed!");
    case wsa::BandId::Ghz6: // not offered by the handheld
    case wsa::BandId::Ghz24:
        break;
    }
    return CWsa::tr("2.4G Band Configure Succeed!");
}

bool announceConfigured(CWsa& wsa)
{
    std::puts("\nmain received: CONFIGURED\n");
    std::printf("%d MHz - %d MHz @ %d KHz, %d samples\n", currentData.data[0], currentData.data[1],
                currentData.data[2], currentData.num_samples);
    // The count describes the engine's set-up, not samples of this buffer.
    currentData.num_samples = 0;
    const QString text = configuredText(wsaSelectedBand().id);
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
    wsaResetRecordReader();
    if (probeGoneReported)
        return;
    wsa.showMsgBox(QObject::tr("Error"),
                   QObject::tr("The acquisition engine has stopped.\nSelect a band under "
                               "Frequency to restart it."));
}

// The analyzer the reader's records go to while bytes are being fed.
CWsa* feeding = nullptr;

wsa::RecordReader& reader()
{
    static wsa::RecordReader r(
        [](const stSweep& record) {
            if (feeding)
                wsaDispatchRecord(*feeding, &record);
        },
        reportDamage);
    return r;
}

class Feeding
{
public:
    explicit Feeding(CWsa& wsa) : m_previous(feeding) { feeding = &wsa; }
    ~Feeding() { feeding = m_previous; }

private:
    CWsa* m_previous;
};

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
    Feeding feed(wsa);
    return reader().feed(bytes, size);
}

void wsaResetRecordReader()
{
    reader().reset();
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

    wsa::RecordReader& r = reader();
    const ssize_t got = recv(sockFd, r.space(), r.missing(), MSG_DONTWAIT);
    if (got > 0) {
        Feeding feed(*this);
        r.appended(static_cast<size_t>(got));
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
