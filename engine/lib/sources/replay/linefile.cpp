#include "linefile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

LineFile::~LineFile()
{
    if (m_fd >= 0)
        close(m_fd);
}

int LineFile::open(const char* path)
{
    m_fd = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_fd < 0)
        return errno;
    struct stat st;
    if (fstat(m_fd, &st) != 0 || !S_ISREG(st.st_mode))
        return EINVAL;
    m_size = st.st_size;
    fcntl(m_fd, F_SETFL, fcntl(m_fd, F_GETFL) & ~O_NONBLOCK);
    return 0;
}

void LineFile::seek(long long offset, bool insideLine)
{
    lseek(m_fd, offset, SEEK_SET);
    m_bufferOffset = offset;
    m_start = m_end = 0;
    m_skipping = insideLine && offset > 0;
}

const char* LineFile::next()
{
    for (;;) {
        char* begin = m_buffer.data() + m_start;
        char* newline = static_cast<char*>(std::memchr(begin, '\n', m_end - m_start));
        if (newline) {
            *newline = '\0';
            m_lineOffset = m_bufferOffset + (long long)m_start;
            m_start = std::size_t(newline - m_buffer.data()) + 1;
            if (!m_skipping)
                return begin;
            m_skipping = false;
            continue;
        }
        // Keep the unfinished line at the front; one longer than kMaxLine is dropped.
        std::memmove(m_buffer.data(), begin, m_end - m_start);
        m_bufferOffset += (long long)m_start;
        m_end -= m_start;
        m_start = 0;
        if (m_end == kMaxLine) {
            m_skipping = true;
            m_bufferOffset += (long long)m_end;
            m_end = 0;
        }
        const ssize_t n = read(m_fd, m_buffer.data() + m_end, kMaxLine - m_end);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return nullptr;
        m_end += std::size_t(n);
    }
}
