// Engine link: the records the engine sends and what the analyzer does with each.
#ifndef LINK_H
#define LINK_H

class CWsa;

// Acts on one complete record of SA_RECORD_SIZE bytes as if it had just been received: copies it
// into currentData and dispatches on its type. A sweep whose sample count is negative or above
// SA_MAX_SAMPLES, raw or after the 5 GHz reduction, is dropped with a console line.
void wsaDispatchRecord(CWsa& wsa, const void* record);

#endif
