// Sweep store operations beyond the module header.
#ifndef STORE_H
#define STORE_H

// Copies a time text into a history row of WSA_TIME_TEXT bytes, cutting it so that the
// terminating zero always fits.
void wsaCopyTimeText(char* row, const char* text);

#endif
