#include "markertable.h"

#include <QHeaderView>

#include "colormap.h"
#include "markers.h"
#include "sweepfeed.h"

namespace wsa::desktop
{

MarkerTable::MarkerTable(SweepFeed* feed, Markers* markers, QWidget* parent)
    : QTableWidget(Markers::kCount, 7, parent), m_feed(feed), m_markers(markers)
{
    setHorizontalHeaderLabels({tr("Marker"), tr("Frequency (MHz)"), tr("Channel"),
                               tr("Level (dBm)"), tr("Trace"), tr("Δ Frequency (MHz)"),
                               tr("Δ Level (dB)")});
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    for (int r = 0; r < rowCount(); ++r) {
        for (int c = 0; c < columnCount(); ++c) {
            auto* item = new QTableWidgetItem;
            item->setTextAlignment(c == TraceColumn ? Qt::AlignLeft | Qt::AlignVCenter
                                                    : Qt::AlignRight | Qt::AlignVCenter);
            setItem(r, c, item);
        }
        item(r, Number)->setText(QString::number(r + 1));
    }
    setMaximumHeight(verticalHeader()->defaultSectionSize() * Markers::kCount +
                     horizontalHeader()->sizeHint().height() + 2 * frameWidth());
    m_timer.setSingleShot(true);
    m_timer.setInterval(100);
    connect(&m_timer, &QTimer::timeout, this, &MarkerTable::refresh);
    connect(markers, &Markers::changed, this, &MarkerTable::refresh);
    connect(feed, &SweepFeed::sweepShown, this, &MarkerTable::schedule);
    connect(feed, &SweepFeed::shownReset, this, &MarkerTable::refresh);
    connect(this, &QTableWidget::currentCellChanged, this,
            [this](int row) { m_markers->setActive(row); });
    refresh();
}

void MarkerTable::setChannelWidth(int widthMHz)
{
    m_channelWidth = widthMHz;
    refresh();
}

void MarkerTable::schedule()
{
    if (!m_timer.isActive())
        m_timer.start();
}

void MarkerTable::refresh()
{
    m_timer.stop();
    const SweepStore& model = m_feed->shown();
    for (int i = 0; i < Markers::kCount; ++i) {
        const MarkerReading r = m_markers->reading(model, i, m_channelWidth);
        const Marker& m = m_markers->marker(i);
        auto set = [&](int column, const QString& text) { item(i, column)->setText(text); };
        set(Frequency, r.valid ? QString::number(r.hz / 1e6, 'f', 3) : QString());
        set(Channel, r.valid && r.channel ? QString::number(r.channel) : QString());
        set(Level, r.valid ? QString::number(r.dbm, 'f', 1) : QString());
        set(TraceColumn, m.on ? traceName(m.trace) : QString());
        set(DeltaFrequency, r.hasDelta ? QString::number(r.deltaHz / 1e6, 'f', 3) : QString());
        set(DeltaLevel, r.hasDelta ? QString::number(r.deltaDb, 'f', 1) : QString());
        item(i, TraceColumn)->setForeground(traceColor(m.trace));
    }
    if (currentRow() != m_markers->active())
        selectRow(m_markers->active());
}

} // namespace wsa::desktop
