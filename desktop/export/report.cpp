#include "report.h"

#include <QBuffer>
#include <QCoreApplication>

#include "channeltable.h"
#include "emitterlist.h"
#include "traceexport.h"

namespace wsa::desktop
{

namespace
{

// Its own context, so the catalogue names the texts as they are looked up.
struct Report {
    Q_DECLARE_TR_FUNCTIONS(Report)
};

QString esc(const QString& s)
{
    return s.toHtmlEscaped();
}

QString row(const QStringList& cells, const char* tag = "td", const QString& attributes = {})
{
    QString out = QStringLiteral("<tr%1>").arg(attributes);
    for (const QString& c : cells)
        out += QStringLiteral("<%1>%2</%1>").arg(QLatin1String(tag), esc(c));
    return out + QStringLiteral("</tr>\n");
}

QString pictureHtml(const QImage& picture)
{
    if (picture.isNull())
        return QStringLiteral("<p>%1</p>\n").arg(esc(Report::tr("No picture.")));
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    return QStringLiteral("<p><img alt=\"%1\" src=\"data:image/png;base64,%2\"></p>\n")
        .arg(esc(Report::tr("The views")), QString::fromLatin1(png.toBase64()));
}

QString markersHtml(const QVector<ReportMarker>& markers)
{
    if (markers.isEmpty())
        return QStringLiteral("<p>%1</p>\n").arg(esc(Report::tr("No marker is on.")));
    QString out = QStringLiteral("<table>\n") +
                  row({Report::tr("Marker"), Report::tr("Frequency MHz"), Report::tr("Channel"), Report::tr("Level dBm"),
                       Report::tr("Trace")},
                      "th");
    for (const ReportMarker& m : markers)
        out += row({QString::number(m.number), QString::number(m.hz / 1e6, 'f', 3),
                    m.channel > 0 ? QString::number(m.channel) : QStringLiteral("\u2013"),
                    QString::number(m.dbm, 'f', 1), m.trace});
    return out + QStringLiteral("</table>\n");
}

QString channelsHtml(const ReportContent& c)
{
    if (c.channels.isEmpty())
        return QStringLiteral("<p>%1</p>\n").arg(esc(Report::tr("No channel analysis yet.")));
    QString out = QStringLiteral("<table>\n") +
                  row({Report::tr("Channel"), Report::tr("Centre MHz"), Report::tr("Occupancy %"), Report::tr("Mean dBm"),
                       Report::tr("Max dBm")},
                      "th");
    for (int i = 0; i < c.channels.size(); ++i) {
        const ChannelRow& r = c.channels[i];
        out += row({QString::number(r.channel), QString::number(r.centerMHz, 'f', 1),
                    QString::number(r.occupancy * 100, 'f', 1), levelText(r.meanDbm),
                    levelText(r.maxDbm)},
                   "td", i == c.freestChannel ? QStringLiteral(" class=\"freest\"") : QString());
    }
    return out + QStringLiteral("</table>\n");
}

QString emittersHtml(const QVector<EmitterRow>& emitters)
{
    if (emitters.isEmpty())
        return QStringLiteral("<p>%1</p>\n").arg(esc(Report::tr("No emitter found.")));
    QStringList titles;
    for (int k = 0; k < EmitterTableModel::ColumnCount; ++k)
        titles << EmitterTableModel::columnTitle(k);
    QString out = QStringLiteral("<table>\n") + row(titles, "th");
    for (const EmitterRow& e : emitters) {
        QStringList cells;
        for (int k = 0; k < EmitterTableModel::ColumnCount; ++k)
            cells << EmitterTableModel::cellText(e, k);
        out += row(cells, "td", e.active ? QString() : QStringLiteral(" class=\"ended\""));
    }
    return out + QStringLiteral("</table>\n");
}

} // namespace

QByteArray reportHtml(const ReportContent& c)
{
    const QString title = Report::tr("Wi-Fi spectrum report");
    QString html =
        QStringLiteral("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>%1</title>\n"
                       "<style>body{font-family:sans-serif}table{border-collapse:collapse}"
                       "td,th{border:1px solid #999;padding:2px 6px;text-align:right}"
                       "tr.freest{background:#cfc}tr.ended{color:#888;font-style:italic}"
                       "img{max-width:100%}</style></head><body>\n<h1>%1</h1>\n")
            .arg(esc(title));
    html += QStringLiteral("<table>\n");
    html += row({Report::tr("Band"), c.band});
    html += row({Report::tr("Source"), c.source.isEmpty() ? Report::tr("unknown") : c.source});
    html += row({Report::tr("Time"), c.time.toString(Qt::ISODate)});
    html += row({Report::tr("Sweeps analysed"), QString::number(c.sweeps)});
    html += row({Report::tr("Noise floor dBm"), levelText(c.noiseFloorDbm)});
    html += QStringLiteral("</table>\n");
    html += pictureHtml(c.picture);
    html += QStringLiteral("<h2>%1</h2>\n").arg(esc(Report::tr("Markers"))) + markersHtml(c.markers);
    html += QStringLiteral("<h2>%1</h2>\n").arg(esc(Report::tr("Channels, %1 MHz").arg(c.channelWidthMHz))) +
            channelsHtml(c);
    html += QStringLiteral("<h2>%1</h2>\n").arg(esc(Report::tr("Emitters"))) + emittersHtml(c.emitters);
    html += QStringLiteral("</body></html>\n");
    return html.toUtf8();
}

bool saveReport(const ReportContent& content, const QString& path, QString* error)
{
    return writeFile(path, reportHtml(content), error);
}

} // namespace wsa::desktop
