// What the engine's analysis says of the band, as the window shows it: per channel width the
// channels' occupancy and levels, and the emitters active now or ended lately. Filled from the
// engine's JSON object; anything in it that is missing, of the wrong type or out of range is left
// out rather than guessed.
#ifndef DESKTOP_ANALYSISMODEL_H
#define DESKTOP_ANALYSISMODEL_H

#include <QObject>
#include <QPair>
#include <QString>
#include <QVector>
#include <cmath>
#include <map>

namespace wsa::desktop
{

struct ChannelRow {
    int channel = 0;
    int widthMHz = 0;
    double centerMHz = 0;
    double occupancy = 0; // share of sweeps, 0..1
    double meanDbm = NAN; // NaN where the engine had none
    double maxDbm = NAN;
};

struct EmitterRow {
    qint64 id = -1;
    QString kind; // the engine's word, e.g. "bluetooth"
    double centerMHz = 0;
    double widthMHz = 0;
    int channel = 0; // 0 when the emitter is on no channel
    double firstS = NAN;
    double lastS = NAN;
    double duty = NAN;
    double peakDbm = NAN;
    double confidence = NAN;
    bool active = false;
    QVector<QPair<QString, double>> features; // what decided the kind
};

// The kind as a reader says it ("Bluetooth"); unknown words are shown as they came.
QString emitterKindText(const QString& kind);

class AnalysisModel : public QObject
{
    Q_OBJECT
public:
    // More than any band has; a payload naming more is cut there.
    static constexpr int kMaxChannels = 1024;
    static constexpr int kMaxEmitters = 512;
    static constexpr int kMaxFeatures = 32;

    explicit AnalysisModel(QObject* parent = nullptr);

    bool isEmpty() const { return m_sweeps == 0 && m_channels.empty() && m_emitters.isEmpty(); }
    double seconds() const { return m_seconds; }
    qint64 sweeps() const { return m_sweeps; }
    double noiseFloorDbm() const { return m_noiseFloorDbm; }
    // The channels of one width, sorted by channel number; empty for a width not reported.
    QVector<ChannelRow> channels(int widthMHz) const;
    QVector<int> widths() const;
    // Index into channels(widthMHz) of the least occupied channel (the lower mean level among
    // equals), or -1.
    int freestChannel(int widthMHz) const;
    // Active ones and those ended lately, newest last, as the engine sent them.
    const QVector<EmitterRow>& emitters() const { return m_emitters; }

public slots:
    // One analysis object. False, and nothing changes, for text that is no such object.
    bool takeJson(const QByteArray& json);
    void clear();

signals:
    void changed();

private:
    double m_seconds = 0;
    qint64 m_sweeps = 0;
    double m_noiseFloorDbm = NAN;
    std::map<int, QVector<ChannelRow>> m_channels;
    QVector<EmitterRow> m_emitters;
};

} // namespace wsa::desktop

#endif
