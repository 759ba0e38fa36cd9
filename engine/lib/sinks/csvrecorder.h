// Appends every sweep delivered to a CSV file in the sweep layout (core/sweepcsv.h), so that
// other tools open our recordings and we replay them.
#ifndef ENGINE_CSVRECORDER_H
#define ENGINE_CSVRECORDER_H

#include <string>

#include "bandplan.h"
#include "sink.h"

class CsvRecorderSink : public Sink
{
public:
    // Names a new file in `dir` from the local start time and the band's key, e.g.
    // wsa-20240301-123005-2g4.csv. The first sweep creates it (and `dir` if missing), so a
    // start that delivers no sweep leaves no empty file. When that fails: one line on stderr,
    // and nothing more is recorded.
    CsvRecorderSink(const std::string& dir, const wsa::Band& band);
    ~CsvRecorderSink() override;
    CsvRecorderSink(const CsvRecorderSink&) = delete;
    CsvRecorderSink& operator=(const CsvRecorderSink&) = delete;

    // One row for the grid's shown cells, stamped with the current local time. Each row goes
    // out in one write, so a kill loses at most the row being written. A failed write (a full
    // disk) is reported once and ends the recording; acquisition goes on.
    SinkResult sweep(const int* levels, int count) override;

private:
    bool create();

    wsa::SourceGrid m_grid;
    std::string m_dir;
    std::string m_base; // the path without ".csv"
    bool m_failed = false;
    int m_fd = -1;
    std::string m_path;
    char m_row[16 * 1024];
};

#endif
