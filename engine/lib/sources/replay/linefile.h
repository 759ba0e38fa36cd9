// The lines of a recording, read forwards from any offset, each at most kMaxLine bytes: a longer
// one is skipped as it is read, never held, so a file without newlines costs no more memory than
// a short one.
#ifndef ENGINE_REPLAY_LINEFILE_H
#define ENGINE_REPLAY_LINEFILE_H

#include <cstddef>
#include <vector>

class LineFile
{
public:
    static constexpr std::size_t kMaxLine = 1024 * 1024;

    LineFile() : m_buffer(kMaxLine + 1) {}
    ~LineFile();
    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    // Opens a regular file: 0, or the errno (EINVAL: not a regular file). Opening does not
    // block, as it would on a FIFO without a writer.
    int open(const char* path);
    long long size() const { return m_size; }
    // Reads on from `offset`; inside a line, from the start of the next one.
    void seek(long long offset, bool insideLine = false);
    // The next whole line; a last line without its newline was cut short and is skipped.
    const char* next();
    // Where the line next() returned begins in the file.
    long long lineOffset() const { return m_lineOffset; }

private:
    int m_fd = -1;
    long long m_size = 0;
    std::vector<char> m_buffer;
    long long m_bufferOffset = 0; // the file offset of m_buffer[0]
    long long m_lineOffset = 0;
    std::size_t m_start = 0;
    std::size_t m_end = 0;
    bool m_skipping = false; // inside a line too long to keep, or the one a seek landed in
};

#endif
