#include "simsource.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <memory>

#include "emitterscene.h"
#include "enginecore.h"
#include "scene.h"

namespace
{

constexpr double kProbeMinDbm = -110; // the probe's measuring range
constexpr double kProbeMaxDbm = -20;

struct SimSettings {
    std::uint64_t seed;
    bool emitters; // the changing cast of emitters instead of the fixed scene
    double rate; // sweeps per second; 0 = none
    bool noProbe;
    // Sweep counts at which a fault is played; -1 = never.
    long loseAfter;
    long dieAfter;
    long shortAfter;
    long corruptAfter;
    long sweeps;
};

bool reached(long knob, long made)
{
    return knob >= 0 && made == knob;
}

int finish(WaitResult result)
{
    return exitStatus(result == WaitResult::Failed ? SinkResult::Failed : SinkResult::Ok);
}

class SimSource : public Source
{
public:
    SimSource(const SimSettings& settings, const wsa::Band& band)
        : m_settings(settings), m_scene(band, settings.seed)
    {
        if (settings.emitters)
            m_emitters = std::make_unique<EmitterScene>(band, settings.seed, settings.rate);
    }

    int run(Engine& engine) override;

private:
    // What happens when sweep made + 1 is due: a fault, a damaged record or a sweep.
    SinkResult due(Engine& engine, long& made);

    SimSettings m_settings;
    Scene m_scene;
    std::unique_ptr<EmitterScene> m_emitters;
    // The probe's record buffer: a damaged record carries whatever it last held.
    int m_data[SA_MAX_SAMPLES] = {};
    double m_levels[SA_MAX_SAMPLES];
    int m_corruptSent = 0;
};

int SimSource::run(Engine& engine)
{
    if (m_settings.noProbe)
        return exitStatus(engine.fault(Fault::NoProbe));
    const wsa::Announcement& layout = m_scene.layout();
    m_data[0] = layout.startMHz;
    m_data[1] = layout.endMHz;
    m_data[2] = layout.stepKHz;
    const SinkResult announced = engine.announce(layout);
    if (announced != SinkResult::Ok)
        return exitStatus(announced);
    if (m_settings.rate <= 0)
        return finish(engine.waitFor(-1, -1));

    // Sweep k is due k periods after the start, so rounding never accumulates into drift.
    const long double periodNs = 1e9L / m_settings.rate;
    const long long startNs = engine.nowNs();
    long made = 0;
    for (long k = 1;; ++k) {
        if (reached(m_settings.sweeps, made))
            return finish(engine.waitFor(-1, -1));
        const WaitResult waited = engine.waitFor(-1, startNs + (long long)(k * periodNs));
        if (waited != WaitResult::Deadline)
            return finish(waited);
        if (reached(m_settings.dieAfter, made)) {
            raise(SIGKILL);
            return 1;
        }
        if (reached(m_settings.loseAfter, made))
            return exitStatus(engine.fault(Fault::Disconnect));
        const SinkResult result = due(engine, made);
        if (result != SinkResult::Ok)
            return exitStatus(result);
    }
}

SinkResult SimSource::due(Engine& engine, long& made)
{
    const int samples = m_scene.layout().samples;
    // The damaged records bypass pacing: they stand for a broken link, and count as no sweep.
    if (reached(m_settings.corruptAfter, made) && m_corruptSent < 2)
        return engine.damaged(m_corruptSent++ == 0 ? Damage::BadCount : Damage::UnknownType, m_data,
                              samples);
    if (m_emitters) {
        m_emitters->nextSweep(m_levels, samples);
        for (int i = 0; i < samples; ++i) {
            m_levels[i] = std::clamp(m_levels[i], kProbeMinDbm, kProbeMaxDbm);
            m_data[i] = int(std::lround(m_levels[i]));
        }
    } else {
        m_scene.nextSweep(m_data);
        for (int i = 0; i < samples; ++i)
            m_levels[i] = m_data[i];
    }
    const bool cut = reached(m_settings.shortAfter, made);
    ++made;
    if (cut)
        return engine.damaged(Damage::ShortRecord, m_data, samples);
    engine.offer(m_levels);
    return SinkResult::Ok;
}

} // namespace

const std::vector<Variable>& simVariables()
{
    static const std::vector<Variable> table = {
        seed("WSA_SIM_SEED", "20240611",
             "seed of the scene, decimal or 0x-hex; the same seed and settings give the same "
             "sweeps"),
        choice("WSA_SIM_SCENE", "fixed|emitters", "fixed",
               "fixed: the same access points, hoppers, oven and sensors every run; emitters: a "
               "cast of every kind the band carries that changes every minute, from WSA_SIM_SEED, "
               "for watching the analysis name them"),
        number("WSA_SIM_RATE", "sweeps per second", 0.001, 1000, "8",
               "sweeps per second, fractions allowed; sweep k is due k periods after the "
               "Configured record; 0: no sweeps, stay connected",
               true),
        flag("WSA_SIM_NO_PROBE", "1: send No device instead of Configured, then exit"),
        count("WSA_SIM_LOSE_AFTER", "when sweep N+1 is due, send Disconnect instead and exit"),
        count("WSA_SIM_DIE_AFTER", "when sweep N+1 is due, die by SIGKILL without a record"),
        count("WSA_SIM_SHORT_AFTER",
              "send only the first half of sweep N+1's record; the next sweep follows whole"),
        count("WSA_SIM_CORRUPT_AFTER",
              "after sweep N send a sweep record claiming 5000 samples, then a record of "
              "unknown type; then the sweeps go on"),
        count("WSA_SIM_SWEEPS", "stop after sweep N and stay connected"),
    };
    return table;
}

std::unique_ptr<Source> makeSimSource(const Settings& s, const wsa::Band& band)
{
    const SimSettings settings{s.seed("WSA_SIM_SEED"),
                               s.text("WSA_SIM_SCENE") == "emitters",
                               s.number("WSA_SIM_RATE"),
                               s.flag("WSA_SIM_NO_PROBE"),       s.count("WSA_SIM_LOSE_AFTER"),
                               s.count("WSA_SIM_DIE_AFTER"),     s.count("WSA_SIM_SHORT_AFTER"),
                               s.count("WSA_SIM_CORRUPT_AFTER"), s.count("WSA_SIM_SWEEPS")};
    return std::make_unique<SimSource>(settings, band);
}
