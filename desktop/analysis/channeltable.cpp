#include "channeltable.h"

#include <QApplication>
#include <QHeaderView>
#include <QPainter>

namespace wsa::desktop
{

QString levelText(double dbm)
{
    return std::isfinite(dbm) ? QString::number(dbm, 'f', 1) : QStringLiteral("\u2013");
}

ChannelTableModel::ChannelTableModel(const AnalysisModel* analysis, QObject* parent)
    : QAbstractTableModel(parent), m_analysis(analysis)
{
    connect(analysis, &AnalysisModel::changed, this, &ChannelTableModel::reload);
    reload();
}

void ChannelTableModel::setWidth(int widthMHz)
{
    if (widthMHz == m_width)
        return;
    m_width = widthMHz;
    reload();
}

void ChannelTableModel::reload()
{
    QVector<ChannelRow> rows = m_analysis->channels(m_width);
    m_freest = m_analysis->freestChannel(m_width);
    // A new analysis of the same channels only changes values: the view keeps its scroll place.
    if (rows.size() == m_rows.size() && !rows.isEmpty()) {
        m_rows = std::move(rows);
        emit dataChanged(index(0, 0), index(int(m_rows.size()) - 1, ColumnCount - 1));
        return;
    }
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int ChannelTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ChannelTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ChannelTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const ChannelRow& c = m_rows[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case Channel:
            return c.channel;
        case Center:
            return QString::number(c.centerMHz, 'f', 1);
        case Occupancy:
            return QStringLiteral("%1 %").arg(c.occupancy * 100, 0, 'f', 0);
        case Mean:
            return levelText(c.meanDbm);
        case Max:
            return levelText(c.maxDbm);
        }
        return {};
    case Qt::TextAlignmentRole:
        return int(Qt::AlignRight | Qt::AlignVCenter);
    case ShareRole:
        return c.occupancy;
    case FreestRole:
        return index.row() == m_freest;
    case Qt::BackgroundRole:
        if (index.row() == m_freest)
            return QColor(0x24, 0x5a, 0x34);
        return {};
    case Qt::ToolTipRole:
        if (index.row() == m_freest)
            return tr("The least occupied %1 MHz channel").arg(m_width);
        return {};
    }
    return {};
}

QVariant ChannelTableModel::headerData(int section, Qt::Orientation o, int role) const
{
    if (o != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, o, role);
    switch (section) {
    case Channel:
        return tr("Channel");
    case Center:
        return tr("Centre MHz");
    case Occupancy:
        return tr("Occupancy");
    case Mean:
        return tr("Mean dBm");
    case Max:
        return tr("Max dBm");
    }
    return {};
}

void OccupancyDelegate::paint(QPainter* p, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const
{
    QStyleOptionViewItem o = option;
    initStyleOption(&o, index);
    const QString text = o.text;
    o.text.clear();
    QStyle* style = o.widget ? o.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &o, p, o.widget);
    const double share = std::clamp(index.data(ChannelTableModel::ShareRole).toDouble(), 0.0, 1.0);
    const QRect cell = option.rect.adjusted(2, 3, -2, -3);
    p->fillRect(QRectF(cell.left(), cell.top(), cell.width() * share, cell.height()), barColor());
    p->setPen(option.palette.color(QPalette::Text));
    p->drawText(cell.adjusted(0, 0, -2, 0), Qt::AlignRight | Qt::AlignVCenter, text);
}

ChannelTable::ChannelTable(const AnalysisModel* analysis, QWidget* parent)
    : QTableView(parent), m_model(new ChannelTableModel(analysis, this))
{
    setModel(m_model);
    setItemDelegateForColumn(ChannelTableModel::Occupancy, new OccupancyDelegate(this));
    setSelectionMode(QAbstractItemView::NoSelection);
    verticalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setSectionResizeMode(ChannelTableModel::Occupancy, QHeaderView::Stretch);
}

} // namespace wsa::desktop
