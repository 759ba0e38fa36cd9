// The window's report: one self-contained HTML file with the picture of the views (embedded),
// the band, source and time, the markers' readings, the channel table and the emitters. Built
// from plain values, so that it can be written and checked without a window.
#ifndef DESKTOP_REPORT_H
#define DESKTOP_REPORT_H

#include <QDateTime>
#include <QImage>
#include <QString>
#include <QVector>

#include "analysismodel.h"

namespace wsa::desktop
{

struct ReportMarker {
    int number = 0; // 1..4
    double hz = 0;
    int channel = 0; // 0 outside every channel
    double dbm = 0;
    QString trace;
};

struct ReportContent {
    QImage picture;
    QString band;
    QString source;
    QDateTime time;
    qint64 sweeps = 0;
    double noiseFloorDbm = NAN;
    QVector<ReportMarker> markers;
    int channelWidthMHz = 20;
    QVector<ChannelRow> channels; // of channelWidthMHz, sorted by channel
    int freestChannel = -1;       // index into channels, or -1
    QVector<EmitterRow> emitters;
};

QByteArray reportHtml(const ReportContent& content);
// Writes the report to `path`; on failure false and a sentence naming the file and the cause.
bool saveReport(const ReportContent& content, const QString& path, QString* error);

} // namespace wsa::desktop

#endif
