#include "traceexport.h"

#include <QCoreApplication>
#include <QSaveFile>

namespace wsa::desktop
{

namespace
{

// Its own context, so the catalogue names the texts as they are looked up.
struct Export {
    Q_DECLARE_TR_FUNCTIONS(Export)
};

} // namespace

bool writeFile(const QString& path, const QByteArray& bytes, QString* error)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    if (error)
        *error = Export::tr("Could not write %1: %2").arg(path, file.errorString());
    return false;
}

QByteArray tracesCsv(const SweepStore& model)
{
    const SweepGrid grid = model.grid();
    QByteArray out("frequency_hz,current_dbm,average_dbm,maximum_dbm,minimum_dbm\n");
    out.reserve(grid.bins * 48);
    const float* traces[kTraceCount];
    for (int t = 0; t < kTraceCount; ++t)
        traces[t] = model.trace(Trace(t));
    for (int i = 0; i < grid.bins; ++i) {
        out += QByteArray::number(qint64(std::llround(grid.firstHz + i * grid.stepHz)));
        for (const float* t : traces) {
            out += ',';
            if (t)
                out += QByteArray::number(double(t[i]), 'f', 2);
        }
        out += '\n';
    }
    return out;
}

bool saveTracesCsv(const SweepStore& model, const QString& path, QString* error)
{
    return writeFile(path, tracesCsv(model), error);
}

bool savePicture(const QImage& image, const QString& path, QString* error)
{
    QSaveFile file(path);
    if (image.isNull()) {
        if (error)
            *error = Export::tr("Could not write %1: there is no picture").arg(path);
        return false;
    }
    if (file.open(QIODevice::WriteOnly) && image.save(&file, "PNG") && file.commit())
        return true;
    if (error)
        *error = Export::tr("Could not write %1: %2")
                     .arg(path, file.error() != QFileDevice::NoError ? file.errorString()
                                                                     : Export::tr("PNG encoding failed"));
    return false;
}

} // namespace wsa::desktop
