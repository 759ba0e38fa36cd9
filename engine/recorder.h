// Appends every sweep sent to the analyzer to a CSV file in the sweep layout (see sweepcsv.h), so
// that other tools open our recordings and we replay them.
#ifndef ENGINE_RECORDER_H
#define ENGINE_RECORDER_H

#include <string>

#include "grid.h"

class Recorder
{
public:
    // Names a new file in `dir` from the local start time and the band, e.g.
    // wsa-20240301-123005-2g4.csv. The first append() creates it (and `dir` if missing), so a
    // start that sends no sweep leaves no empty file. When that fails: one line on stderr, and
    // append() does nothing more.
    Recorder(const char* dir, Band band);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // One row for the grid's shown bins, stamped with the current local time. Each row goes out
    // in one write, so a kill loses at most the row being written. A failed write (a full disk)
    // is reported once and ends the recording; acquisition goes on.
    void append(const int* levels);

private:
    bool create();

    Grid m_grid;
    std::string m_dir;
    std::string m_base; // the path without ".csv"
    bool m_failed = false;
    int m_fd = -1;
    std::string m_path;
    char m_row[16 * 1024];
};

#endif
