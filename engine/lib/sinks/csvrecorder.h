// Appends every sweep delivered to a CSV file in the sweep layout (core/sweepcsv.h), so that
// other tools open our recordings and we replay them.
#ifndef ENGINE_CSVRECORDER_H
#define ENGINE_CSVRECORDER_H

#include <cstdint>
#include <functional>
#include <string>

#include "bandplan.h"
#include "sink.h"

struct RecorderPolicy {
    // A new file when the next row would make the current one larger; 0: no limit.
    std::int64_t limitBytes = 0;
    // Free space below which the front-ends are warned, once per crossing, and below which
    // recording stops so that the system keeps room; checked at each file's opening and after
    // every checkEveryBytes written.
    std::int64_t warnFreeBytes = 1024LL << 20;
    std::int64_t reserveFreeBytes = 128LL << 20;
    std::int64_t checkEveryBytes = 4LL << 20;
    // Bytes free to us on the file system of a path, -1 when unknown; statvfs when unset.
    std::function<std::int64_t(const std::string&)> freeBytes;
};

class CsvRecorderSink : public Sink
{
public:
    // Files go into `dir`, named from the local start time and the band's key, e.g.
    // wsa-20240301-123005-2g4.csv. Started at once, the first sweep creates the first file (and
    // `dir` if missing), so a start that delivers no sweep leaves no empty file; otherwise
    // recording waits for a Record control, which creates its file at once. When a file cannot
    // be created: one line on stderr and a RecordingFailed status, and nothing more is recorded
    // until the next start.
    CsvRecorderSink(const std::string& dir, const wsa::Band& band, bool startNow = true,
                    RecorderPolicy policy = {});
    ~CsvRecorderSink() override;
    CsvRecorderSink(const CsvRecorderSink&) = delete;
    CsvRecorderSink& operator=(const CsvRecorderSink&) = delete;

    void attached(Engine& engine) override { m_engine = &engine; }
    // One row for the grid's shown cells, stamped with the current local time. Each row goes
    // out in one write, so a kill loses at most the row being written. A failed write (a full
    // disk) is reported once and ends the recording; acquisition goes on.
    SinkResult sweep(const int* levels, int count) override;
    // Record 1 starts a new file (when not recording), Record 0 stops.
    void control(wsa::ControlCommand command, double value) override;

    bool isRecording() const { return m_fd >= 0 || m_armed; }
    const std::string& path() const { return m_path; }

private:
    void start();
    void stop();
    bool create();
    void newBase();
    bool roomOnDisk();
    bool writeRow(const char* row, std::size_t size);
    void fail(const std::string& text);
    void report(bool now);

    wsa::SourceGrid m_grid;
    const char* m_bandKey;
    std::string m_dir;
    RecorderPolicy m_policy;
    Engine* m_engine = nullptr;
    std::string m_base;   // the path without ".csv"
    bool m_armed = false; // started: the next sweep creates the file
    int m_fd = -1;
    std::string m_path;
    std::int64_t m_bytes = 0;
    std::int64_t m_checkedAt = 0;
    bool m_warned = false;
    long long m_reportedNs = 0;
    char m_row[16 * 1024];
};

#endif
