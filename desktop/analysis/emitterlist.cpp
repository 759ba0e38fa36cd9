#include "emitterlist.h"

#include <QFont>
#include <algorithm>
#include <QHeaderView>

#include "channeltable.h"

namespace wsa::desktop
{

namespace
{
QString fixed(double v, int decimals)
{
    return std::isfinite(v) ? QString::number(v, 'f', decimals) : QStringLiteral("\u2013");
}
} // namespace

EmitterTableModel::EmitterTableModel(const AnalysisModel* analysis, QObject* parent)
    : QAbstractTableModel(parent), m_analysis(analysis)
{
    connect(analysis, &AnalysisModel::changed, this, &EmitterTableModel::reload);
    reload();
}

void EmitterTableModel::reload()
{
    // The same emitters in the same order (the usual case, once a second): values only.
    const QVector<EmitterRow>& rows = m_analysis->emitters();
    const bool same = rows.size() == m_rows.size() && !rows.isEmpty() &&
                      std::equal(rows.begin(), rows.end(), m_rows.begin(),
                                 [](const EmitterRow& a, const EmitterRow& b) { return a.id == b.id; });
    if (same) {
        m_rows = rows;
        emit dataChanged(index(0, 0), index(int(m_rows.size()) - 1, ColumnCount - 1));
        return;
    }
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

int EmitterTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int EmitterTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString EmitterTableModel::cellText(const EmitterRow& e, int column)
{
    switch (column) {
    case Kind:
        return e.active ? emitterKindText(e.kind)
                        : tr("%1 (ended)").arg(emitterKindText(e.kind));
    case Center:
        return fixed(e.centerMHz, 1);
    case Width:
        return fixed(e.widthMHz, 1);
    case Channel:
        return e.channel > 0 ? QString::number(e.channel) : QStringLiteral("\u2013");
    case Duty:
        return std::isfinite(e.duty) ? QStringLiteral("%1 %").arg(e.duty * 100, 0, 'f', 0)
                                     : QStringLiteral("\u2013");
    case Peak:
        return levelText(e.peakDbm);
    case Confidence:
        return fixed(e.confidence, 2);
    case First:
        return fixed(e.firstS, 1);
    case Last:
        return fixed(e.lastS, 1);
    }
    return {};
}

QString EmitterTableModel::columnTitle(int column)
{
    static const char* const titles[ColumnCount] = {
        QT_TR_NOOP("Kind"),       QT_TR_NOOP("Centre MHz"),   QT_TR_NOOP("Width MHz"),
        QT_TR_NOOP("Channel"),    QT_TR_NOOP("Duty"),         QT_TR_NOOP("Peak dBm"),
        QT_TR_NOOP("Confidence"), QT_TR_NOOP("First seen s"), QT_TR_NOOP("Last seen s")};
    return column >= 0 && column < ColumnCount ? tr(titles[column]) : QString();
}

QString EmitterTableModel::featureText(const EmitterRow& e)
{
    QStringList lines{tr("%1, confidence %2").arg(emitterKindText(e.kind), fixed(e.confidence, 2))};
    for (const auto& [name, value] : e.features)
        lines << QStringLiteral("%1 = %2").arg(name, QString::number(value, 'g', 4));
    return lines.join(QLatin1Char('\n'));
}

QVariant EmitterTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const EmitterRow& e = m_rows[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return cellText(e, index.column());
    case Qt::TextAlignmentRole:
        return index.column() == Kind ? int(Qt::AlignLeft | Qt::AlignVCenter)
                                      : int(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::ForegroundRole:
        // Ended emitters stay a while for reference, dimmed.
        return e.active ? QVariant() : QVariant(QColor(0x8a, 0x94, 0xa0));
    case Qt::FontRole:
        if (!e.active) {
            QFont f;
            f.setItalic(true);
            return f;
        }
        return {};
    case Qt::ToolTipRole:
        return featureText(e);
    }
    return {};
}

QVariant EmitterTableModel::headerData(int section, Qt::Orientation o, int role) const
{
    if (o != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, o, role);
    return columnTitle(section);
}

EmitterList::EmitterList(const AnalysisModel* analysis, QWidget* parent)
    : QTableView(parent), m_model(new EmitterTableModel(analysis, this))
{
    setModel(m_model);
    setSelectionMode(QAbstractItemView::NoSelection);
    verticalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setStretchLastSection(true);
}

} // namespace wsa::desktop
