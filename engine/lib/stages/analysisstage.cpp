#include "analysisstage.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "jsonl.h"

namespace
{

// The emitters a frame lists: those ended within the last minute, then the active ones, each
// group in the order it was named, so the newest come last.
std::vector<const wsa::EmitterReport*> shownEmitters(const wsa::Analyzer& a)
{
    std::vector<const wsa::EmitterReport*> shown;
    const double now = a.seconds();
    for (const wsa::EmitterReport& e : a.ended())
        if (now - e.lastS <= AnalysisStage::kEndedShownS)
            shown.push_back(&e);
    const std::size_t ended = shown.size();
    for (const wsa::EmitterReport& e : a.current())
        shown.push_back(&e);
    auto byId = [](const wsa::EmitterReport* x, const wsa::EmitterReport* y) {
        return x->id < y->id;
    };
    std::sort(shown.begin(), shown.begin() + std::ptrdiff_t(ended), byId);
    std::sort(shown.begin() + std::ptrdiff_t(ended), shown.end(), byId);
    return shown;
}

std::string number(double v)
{
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.1f", v);
    return buf;
}

} // namespace

AnalysisStage::AnalysisStage(Engine& engine, const std::string& filePath, bool frames)
    : m_engine(engine), m_analyzer(engine.band()), m_frames(frames), m_path(filePath)
{
    if (filePath.empty())
        return;
    m_fd = ::open(filePath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (m_fd < 0)
        std::fprintf(stderr, "wsa_raw: cannot write the analysis to %s: %s; acquisition goes on\n",
                     filePath.c_str(), std::strerror(errno));
}

AnalysisStage::~AnalysisStage()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void AnalysisStage::take(const float* dbm, int bins, double timeSeconds)
{
    if (m_finished)
        return;
    m_analyzer.take(dbm, bins, timeSeconds);
    if (m_analyzer.generation() != m_generation) {
        m_generation = m_analyzer.generation();
        m_changePending = true;
        writeEnded();
    }
    if (!m_frames)
        return;
    const long long since = m_engine.nowNs() - m_lastFrameNs;
    if (!m_framed || since >= kPeriodNs || (m_changePending && since >= kSoonestNs))
        publish();
}

void AnalysisStage::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    m_analyzer.finish();
    writeEnded();
    if (m_fd >= 0) {
        std::string lines;
        const wsa::Band& band = m_analyzer.band();
        for (const wsa::ChannelReport& c : m_analyzer.channels(20))
            lines += wsa::channelJson(band, c) + "\n";
        lines += wsa::summaryJson(m_analyzer.sweeps(), m_analyzer.seconds(),
                                  m_analyzer.noiseFloorDbm()) +
                 "\n";
        writeLines(lines);
    }
    if (m_frames)
        publish();
}

void AnalysisStage::publish()
{
    m_engine.analysis(frameJson(m_analyzer));
    m_lastFrameNs = m_engine.nowNs();
    m_framed = true;
    m_changePending = false;
}

std::string AnalysisStage::frameJson(const wsa::Analyzer& a, std::size_t maxBytes)
{
    std::string head = "{\"type\":\"analysis\",\"seconds\":" + number(a.seconds()) +
                       ",\"sweeps\":" + std::to_string(a.sweeps()) + ",\"noise_floor_dbm\":" +
                       (a.sweeps() > 0 ? number(a.noiseFloorDbm()) : "null") + ",\"channels\":[";
    bool first = true;
    for (int width : a.band().widthsMHz) {
        if (width > 160)
            continue;
        for (const wsa::ChannelReport& c : a.channels(width)) {
            head += (first ? "" : ",") + wsa::channelJson(a.band(), c);
            first = false;
        }
    }
    head += "],\"emitters\":[";
    const std::vector<const wsa::EmitterReport*> shown = shownEmitters(a);
    std::vector<std::string> items;
    items.reserve(shown.size());
    std::size_t total = head.size() + 2;
    for (const wsa::EmitterReport* e : shown) {
        items.push_back(wsa::emitterJson(*e, true));
        total += items.back().size() + 1;
    }
    // The oldest go first: an ended emitter before any active one.
    std::size_t from = 0;
    while (from < items.size() && total > maxBytes)
        total -= items[from++].size() + 1;
    for (std::size_t k = from; k < items.size(); ++k)
        head += (k == from ? "" : ",") + items[k];
    return head + "]}";
}

void AnalysisStage::writeEnded()
{
    if (m_fd < 0)
        return;
    const std::vector<wsa::EmitterReport>& ended = m_analyzer.ended();
    // Ended emitters are appended in the order they end; those after the last one written are new.
    std::size_t from = 0;
    for (std::size_t k = ended.size(); k > 0; --k) {
        if (ended[k - 1].id == m_lastWrittenId) {
            from = k;
            break;
        }
    }
    if (from == ended.size())
        return;
    std::string lines;
    for (std::size_t k = from; k < ended.size(); ++k)
        lines += wsa::emitterJson(ended[k]) + "\n";
    m_lastWrittenId = ended.back().id;
    writeLines(lines);
}

void AnalysisStage::writeLines(const std::string& lines)
{
    // One write a batch, so a reader following the file never meets half a line.
    std::size_t done = 0;
    while (done < lines.size()) {
        const ssize_t n = ::write(m_fd, lines.data() + done, lines.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            std::fprintf(stderr,
                         "wsa_raw: writing the analysis to %s failed: %s; acquisition goes on\n",
                         m_path.c_str(), std::strerror(n < 0 ? errno : ENOSPC));
            ::close(m_fd);
            m_fd = -1;
            return;
        }
        done += std::size_t(n);
    }
}
