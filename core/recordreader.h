// The record reader: turns a byte stream of 4104-byte records (as the engine writes them, in
// pieces of any size, possibly damaged) into whole records. Each reader keeps its own state, so
// several may read several streams in one process.
#ifndef CORE_RECORDREADER_H
#define CORE_RECORDREADER_H

#include <cstddef>
#include <functional>

#include "halbrin_sa.h"
#include "sweepmodel.h"

namespace wsa
{

// What the reader dropped, reported once per damaged stretch of the stream.
struct RecordDamage {
    enum Kind {
        UnknownType, // a whole record whose type byte is not a record type
        BadCount,    // a known type with a sample count outside 0 .. SA_MAX_SAMPLES
        CutShort,    // a record start inside the header of the record before
        CutSamples,  // a record start where a sweep's level should be: the sweep was cut
        BadLevel     // a sweep with a level outside what a receiver reports
    };
    Kind kind;
    int type;  // the record's type byte, sign-extended
    int count; // its sample count
    int level; // BadLevel: the first level out of range
};

// Framing rule: a record starts with a known type and a count in 0 .. SA_MAX_SAMPLES. A whole
// record that does not is damage, and bytes are dropped up to the next such start; so are the
// bytes before a start that lies inside a header. A record start found in the part of a record
// that its header leaves unused (a record cut short) ends that record there. A sweep with a
// level outside kLowestLevelDbm .. kHighestLevelDbm is never handed on: when a record start lies
// where that level is, the sweep was cut there and the bytes from that start on are kept as the
// next record; otherwise bytes are dropped up to the next record start behind its header.
class RecordReader
{
public:
    // The record is SA_RECORD_SIZE bytes, past its meaningful part zero. Both handlers run after
    // the reader has updated its own state, so they may feed or reset this reader.
    using RecordHandler = std::function<void(const stSweep& record)>;
    using DamageHandler = std::function<void(const RecordDamage& damage)>;

    RecordReader(RecordHandler onRecord, DamageHandler onDamage);

    // Takes at most the bytes the pending record still lacks and, once it is whole, hands it on.
    // Returns how many bytes it took; callers loop to feed a longer buffer.
    std::size_t feed(const void* bytes, std::size_t size);

    // For reading straight from a descriptor: room for the bytes the pending record lacks, then
    // appended() with how many were placed there.
    unsigned char* space() { return m_pending + m_fill; }
    std::size_t missing() const { return std::size_t(SA_RECORD_SIZE - m_fill); }
    void appended(std::size_t n);

    // Forgets a partial record and any damaged stretch: a new connection starts on a boundary.
    void reset();

    std::size_t pendingBytes() const { return std::size_t(m_fill); }
    bool resynchronising() const { return m_resynchronising; }

    // True when a record may start at p, as far as the `have` bytes present show.
    static bool plausibleStart(const unsigned char* p, int have);

private:
    void takePending();
    void skipTo(int from);
    void report(RecordDamage::Kind kind, int type, int count, int level = 0);
    // False when the pending sweep of `count` levels carries one out of range; it has then been
    // dealt with.
    bool levelsPlausible(int type, int count);

    RecordHandler m_onRecord;
    DamageHandler m_onDamage;
    unsigned char m_pending[SA_RECORD_SIZE];
    int m_fill = 0;
    // Bytes are being skipped after damage; its report has been made, and the rest of the
    // damaged stretch is skipped without another.
    bool m_resynchronising = false;
};

} // namespace wsa

#endif
