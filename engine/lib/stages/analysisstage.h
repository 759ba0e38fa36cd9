// The live analysis inside the engine: sees every sweep at the radio's rate, hands the engine
// an Analysis object for the front-ends about once a second (sooner when an emitter appears or
// ends), and writes JSON Lines to a file as emitters end and when the stream stops.
#ifndef ENGINE_ANALYSISSTAGE_H
#define ENGINE_ANALYSISSTAGE_H

#include <cstdint>
#include <string>

#include "analyzer.h"
#include "enginecore.h"

class AnalysisStage : public SweepObserver
{
public:
    // filePath empty: no file; frames false: no Analysis objects for the front-ends.
    AnalysisStage(Engine& engine, const std::string& filePath, bool frames);
    ~AnalysisStage() override;
    AnalysisStage(const AnalysisStage&) = delete;
    AnalysisStage& operator=(const AnalysisStage&) = delete;

    void take(const float* dbm, int bins, double timeSeconds) override;
    // The stream has stopped: ends the emitters still active, writes them, the channels and the
    // summary to the file, and sends a last Analysis object. Once; later calls do nothing.
    void finish();

    const wsa::Analyzer& analyzer() const { return m_analyzer; }
    bool writing() const { return m_fd >= 0; }

    // The Analysis object: the state now, cut so it stays under maxBytes.
    static std::string frameJson(const wsa::Analyzer& analyzer,
                                 std::size_t maxBytes = kMaxFrameBytes);

    static constexpr std::size_t kMaxFrameBytes = 60 * 1024 - 1;
    static constexpr long long kPeriodNs = 1000000000LL; // a frame about once a second
    static constexpr long long kSoonestNs = 250000000LL; // ... but not closer than this
    static constexpr double kEndedShownS = 60;           // ended emitters a frame still lists

private:
    void publish();
    void writeEnded();
    void writeLines(const std::string& lines);

    Engine& m_engine;
    wsa::Analyzer m_analyzer;
    bool m_frames;
    int m_fd = -1;
    std::string m_path;
    std::uint64_t m_generation = 0;
    bool m_changePending = false;
    long long m_lastFrameNs = 0;
    bool m_framed = false;
    int m_lastWrittenId = 0; // the newest ended emitter already in the file
    bool m_finished = false;
};

#endif
