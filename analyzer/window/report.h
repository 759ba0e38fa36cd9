// The test result report's plain parts, usable without a window.
#ifndef REPORT_H
#define REPORT_H

#include <QDateTime>
#include <cstddef>

enum {
    WSA_REPORT_TEXT = 256,    // the entered text and the filtered name, NUL included
    WSA_REPORT_COMMAND = 128, // "mkdir -p <result dir>/<name>_files"
    WSA_REPORT_VERSION = 128,
    WSA_REPORT_MAC_TEXT = 32,
    WSA_REPORT_MAC = 6,
    WSA_REPORT_SN = 32,
    WSA_REPORT_FONT_SIZE = 4
};

// Source of the proposed name and of the date row: local time unless replaced.
extern QDateTime (*wsaReportClock)();

// Copies the ASCII letters and digits of `text`, in order, into `out`: at most outSize - 1 of
// them and a NUL. Returns how many were copied. Only these characters reach the shell.
int wsaFilterName(const char* text, char* out, size_t outSize);

#endif
