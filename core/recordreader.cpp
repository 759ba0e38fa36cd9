#include "recordreader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace wsa
{

namespace
{

constexpr int kHeaderBytes = 8;

bool knownType(int type)
{
    return type == SA_MSG_DISCONNECT || type == SA_MSG_SWEEP || type == SA_MSG_CONFIGURED ||
           type == SA_MSG_NO_DEVICE;
}

// Bytes of a record with this header that carry meaning; the rest is not interpreted.
int usedBytes(int type, int count)
{
    if (type == SA_MSG_SWEEP)
        return kHeaderBytes + 4 * count;
    if (type == SA_MSG_CONFIGURED)
        return kHeaderBytes + 3 * 4;
    return kHeaderBytes;
}

} // namespace

RecordReader::RecordReader(RecordHandler onRecord, DamageHandler onDamage)
    : m_onRecord(std::move(onRecord)), m_onDamage(std::move(onDamage))
{
}

// Missing bytes of the count are taken as zero, which on the little-endian unit keeps exactly
// the prefixes that can still become a count in range.
bool RecordReader::plausibleStart(const unsigned char* p, int have)
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

std::size_t RecordReader::feed(const void* bytes, std::size_t size)
{
    const std::size_t taken = std::min(size, missing());
    std::memcpy(m_pending + m_fill, bytes, taken);
    appended(taken);
    return taken;
}

void RecordReader::appended(std::size_t n)
{
    m_fill += static_cast<int>(std::min(n, missing()));
    if (m_fill == SA_RECORD_SIZE)
        takePending();
}

void RecordReader::reset()
{
    m_fill = 0;
    m_resynchronising = false;
}

// Drops the pending bytes before the first plausible record start after offset `from`.
void RecordReader::skipTo(int from)
{
    int k = from;
    while (k < m_fill && !plausibleStart(m_pending + k, m_fill - k))
        ++k;
    std::memmove(m_pending, m_pending + k, static_cast<size_t>(m_fill - k));
    m_fill -= k;
}

void RecordReader::report(RecordDamage::Kind kind, int type, int count, int level)
{
    if (m_resynchronising)
        return;
    m_resynchronising = true;
    if (m_onDamage)
        m_onDamage(RecordDamage{kind, type, count, level});
}

bool RecordReader::levelsPlausible(int type, int count)
{
    if (type != SA_MSG_SWEEP)
        return true;
    int bad = 0;
    int level = 0;
    for (; bad < count; ++bad) {
        std::memcpy(&level, m_pending + kHeaderBytes + 4 * bad, sizeof level);
        if (level < kLowestLevelDbm || level > kHighestLevelDbm)
            break;
    }
    if (bad == count)
        return true;
    // The next record's type byte makes the level holding it impossible, whatever the offset of
    // the cut; with padding that is not zero, the count behind it does.
    const int at = kHeaderBytes + 4 * bad;
    for (int k = std::max(kHeaderBytes, at - 4); k < at + 4; ++k) {
        if (plausibleStart(m_pending + k, SA_RECORD_SIZE - k)) {
            report(RecordDamage::CutSamples, type, count);
            skipTo(k);
            return false;
        }
    }
    // Bytes that only looked like a record, or a record whose levels were damaged: either way
    // the next record may start anywhere behind this header.
    report(RecordDamage::BadLevel, type, count, level);
    skipTo(kHeaderBytes);
    return false;
}

void RecordReader::takePending()
{
    const int type = static_cast<signed char>(m_pending[0]);
    int count = 0;
    std::memcpy(&count, m_pending + 4, sizeof count);
    if (!plausibleStart(m_pending, SA_RECORD_SIZE)) {
        report(knownType(type) ? RecordDamage::BadCount : RecordDamage::UnknownType, type, count);
        skipTo(1);
        return;
    }
    // A record start inside this header: the bytes before it are the tail of something cut
    // short that happened to look like a start (its count read from the real record's type).
    for (int k = 1; k < kHeaderBytes; ++k) {
        if (plausibleStart(m_pending + k, SA_RECORD_SIZE - k)) {
            report(RecordDamage::CutShort, type, count);
            skipTo(k);
            return;
        }
    }
    if (!levelsPlausible(type, count))
        return;
    m_resynchronising = false;
    // A record cut short is followed at once by the next one, which then begins in the part of
    // this record its header does not use (the engine leaves that part zero). It ends this
    // record, and its bytes are kept as the start of the next.
    int end = std::clamp(usedBytes(type, count), 0, int(SA_RECORD_SIZE));
    while (end < SA_RECORD_SIZE && !plausibleStart(m_pending + end, SA_RECORD_SIZE - end))
        ++end;
    // Zero-filled past `end`; `end` never exceeds the record (the loop above stops there).
    stSweep record{};
    std::memcpy(reinterpret_cast<unsigned char*>(&record), m_pending,
                static_cast<size_t>(std::min(end, int(SA_RECORD_SIZE))));
    std::memmove(m_pending, m_pending + end, static_cast<size_t>(SA_RECORD_SIZE - end));
    m_fill = SA_RECORD_SIZE - end;
    if (m_onRecord)
        m_onRecord(record);
}

} // namespace wsa
