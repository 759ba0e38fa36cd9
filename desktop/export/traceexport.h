// Files the window writes: the traces as CSV (one row per cell, frequency in Hz, levels in dBm)
// and pictures. Written through QSaveFile, so a failed write never leaves half a file behind.
#ifndef DESKTOP_TRACEEXPORT_H
#define DESKTOP_TRACEEXPORT_H

#include <QImage>
#include <QString>

#include "sweepstore.h"

class QIODevice;

namespace wsa::desktop
{

// The CSV text: a header line, then per cell its centre frequency and each trace's level, empty
// where a trace has no data yet.
QByteArray tracesCsv(const SweepStore& model);

// Writes to `path`; on failure returns false and a sentence naming the file and the cause.
bool writeFile(const QString& path, const QByteArray& bytes, QString* error);
bool saveTracesCsv(const SweepStore& model, const QString& path, QString* error);
bool savePicture(const QImage& image, const QString& path, QString* error);

} // namespace wsa::desktop

#endif
