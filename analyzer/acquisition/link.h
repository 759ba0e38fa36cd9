// Engine link: the records the engine sends and what the analyzer does with each.
#ifndef LINK_H
#define LINK_H

#include <cstddef>

class CWsa;

// Acts on one complete record of SA_RECORD_SIZE bytes as if it had just been received: copies it
// into currentData and dispatches on its type. A sweep whose sample count is negative or above
// SA_MAX_SAMPLES, raw or after the 5 GHz reduction, is dropped with a console line. Returns false
// when the analyzer was deleted while a box the record opened was up; it must not be used then.
bool wsaDispatchRecord(CWsa& wsa, const void* record);

// The link's record reader (wsa::RecordReader) on a byte stream, as the socket feeds it: takes at
// most the bytes the pending record still lacks and, once it is whole, acts on it. Returns how
// many bytes it took; callers loop to feed a longer buffer. Damage is reported on the console
// once per damaged stretch.
std::size_t wsaTakeBytes(CWsa& wsa, const void* bytes, std::size_t size);

// Forgets a partial record: a new connection starts on a record boundary.
void wsaResetRecordReader();

#endif
