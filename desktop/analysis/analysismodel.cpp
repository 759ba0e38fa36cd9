#include "analysismodel.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

namespace wsa::desktop
{

namespace
{

// A finite number within [lo, hi], or NaN.
double number(const QJsonObject& o, const char* key, double lo = -1e9, double hi = 1e9)
{
    const QJsonValue v = o.value(QLatin1String(key));
    if (!v.isDouble())
        return NAN;
    const double d = v.toDouble();
    return std::isfinite(d) && d >= lo && d <= hi ? d : NAN;
}

// A whole number within [lo, hi], or `otherwise`.
qint64 whole(const QJsonObject& o, const char* key, qint64 lo, qint64 hi, qint64 otherwise)
{
    const double d = number(o, key, double(lo), double(hi));
    return std::isnan(d) || d != std::floor(d) ? otherwise : qint64(d);
}

bool channelOf(const QJsonObject& o, ChannelRow* c)
{
    c->channel = int(whole(o, "channel", 1, 1000, 0));
    c->widthMHz = int(whole(o, "width_mhz", 1, 1000, 0));
    c->centerMHz = number(o, "center_mhz", 1, 1e6);
    c->occupancy = number(o, "occupancy", 0, 1);
    c->meanDbm = number(o, "mean_dbm", -300, 100);
    c->maxDbm = number(o, "max_dbm", -300, 100);
    // Without these the row says nothing a reader could use.
    return c->channel > 0 && c->widthMHz > 0 && !std::isnan(c->centerMHz) &&
           !std::isnan(c->occupancy);
}

bool emitterOf(const QJsonObject& o, EmitterRow* e)
{
    e->id = whole(o, "id", 0, qint64(1) << 52, -1);
    e->kind = o.value(QLatin1String("kind")).toString().left(64);
    e->centerMHz = number(o, "center_mhz", 1, 1e6);
    e->widthMHz = number(o, "width_mhz", 0, 1e5);
    e->channel = int(whole(o, "channel", 1, 1000, 0));
    e->firstS = number(o, "first_s", 0);
    e->lastS = number(o, "last_s", 0);
    e->duty = number(o, "duty", 0, 1);
    e->peakDbm = number(o, "peak_dbm", -300, 100);
    e->confidence = number(o, "confidence", 0, 1);
    e->active = o.value(QLatin1String("active")).toBool(false);
    const QJsonObject features = o.value(QLatin1String("features")).toObject();
    for (auto it = features.begin(); it != features.end() && e->features.size() < AnalysisModel::kMaxFeatures; ++it) {
        if (it.value().isDouble() && std::isfinite(it.value().toDouble()))
            e->features.append({it.key().left(64), it.value().toDouble()});
    }
    return !e->kind.isEmpty() && !std::isnan(e->centerMHz) && !std::isnan(e->widthMHz);
}

} // namespace

QString emitterKindText(const QString& kind)
{
    static const std::pair<const char*, const char*> names[] = {
        {"wifi-ofdm", QT_TRANSLATE_NOOP("Analysis", "Wi-Fi (OFDM)")},
        {"wifi-dsss", QT_TRANSLATE_NOOP("Analysis", "Wi-Fi (DSSS)")},
        {"bluetooth", QT_TRANSLATE_NOOP("Analysis", "Bluetooth")},
        {"zigbee", QT_TRANSLATE_NOOP("Analysis", "Zigbee")},
        {"microwave-oven", QT_TRANSLATE_NOOP("Analysis", "Microwave oven")},
        {"av-transmitter", QT_TRANSLATE_NOOP("Analysis", "Video transmitter")},
        {"cordless-phone", QT_TRANSLATE_NOOP("Analysis", "Cordless phone")},
        {"wireless-audio", QT_TRANSLATE_NOOP("Analysis", "Wireless audio")},
        {"fixed-wireless", QT_TRANSLATE_NOOP("Analysis", "Fixed wireless link")},
        {"narrowband", QT_TRANSLATE_NOOP("Analysis", "Narrowband")},
        {"unknown", QT_TRANSLATE_NOOP("Analysis", "Unknown")}};
    for (const auto& [word, text] : names) {
        if (kind == QLatin1String(word))
            return QCoreApplication::translate("Analysis", text);
    }
    return kind;
}

AnalysisModel::AnalysisModel(QObject* parent) : QObject(parent) {}

QVector<ChannelRow> AnalysisModel::channels(int widthMHz) const
{
    const auto it = m_channels.find(widthMHz);
    return it == m_channels.end() ? QVector<ChannelRow>() : it->second;
}

QVector<int> AnalysisModel::widths() const
{
    QVector<int> out;
    for (const auto& [width, rows] : m_channels)
        out.append(width);
    return out;
}

int AnalysisModel::freestChannel(int widthMHz) const
{
    const QVector<ChannelRow> rows = channels(widthMHz);
    int best = -1;
    for (int i = 0; i < rows.size(); ++i) {
        if (best < 0 || rows[i].occupancy < rows[best].occupancy ||
            (rows[i].occupancy == rows[best].occupancy && rows[i].meanDbm < rows[best].meanDbm))
            best = i;
    }
    return best;
}

bool AnalysisModel::takeJson(const QByteArray& json)
{
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(json, &error);
    const QJsonObject o = doc.object();
    if (error.error != QJsonParseError::NoError || !doc.isObject() ||
        o.value(QLatin1String("type")).toString() != QLatin1String("analysis"))
        return false;
    const double seconds = number(o, "seconds", 0);
    m_seconds = std::isnan(seconds) ? 0 : seconds;
    m_sweeps = whole(o, "sweeps", 0, qint64(1) << 52, 0);
    m_noiseFloorDbm = number(o, "noise_floor_dbm", -300, 100);
    m_channels.clear();
    const QJsonArray channels = o.value(QLatin1String("channels")).toArray();
    for (int i = 0; i < channels.size() && i < kMaxChannels; ++i) {
        ChannelRow c;
        if (channelOf(channels[i].toObject(), &c))
            m_channels[c.widthMHz].append(c);
    }
    for (auto& [width, rows] : m_channels)
        std::stable_sort(rows.begin(), rows.end(), [](const ChannelRow& a, const ChannelRow& b) {
            return a.channel < b.channel;
        });
    m_emitters.clear();
    const QJsonArray emitters = o.value(QLatin1String("emitters")).toArray();
    for (int i = 0; i < emitters.size() && m_emitters.size() < kMaxEmitters; ++i) {
        EmitterRow e;
        if (emitterOf(emitters[i].toObject(), &e))
            m_emitters.append(e);
    }
    emit changed();
    return true;
}

void AnalysisModel::clear()
{
    m_seconds = 0;
    m_sweeps = 0;
    m_noiseFloorDbm = NAN;
    m_channels.clear();
    m_emitters.clear();
    emit changed();
}

} // namespace wsa::desktop
