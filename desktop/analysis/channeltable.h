// The channel table: per Wi-Fi channel of one width its centre, how often it was occupied (with
// a drawn bar), and its mean and highest level, sorted by channel, the freest one highlighted.
#ifndef DESKTOP_CHANNELTABLE_H
#define DESKTOP_CHANNELTABLE_H

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <QTableView>

#include "analysismodel.h"

namespace wsa::desktop
{

class ChannelTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Channel, Center, Occupancy, Mean, Max, ColumnCount };
    // The occupancy as a fraction 0..1, for the bar.
    static constexpr int ShareRole = Qt::UserRole;
    // True on the freest channel's row.
    static constexpr int FreestRole = Qt::UserRole + 1;

    explicit ChannelTableModel(const AnalysisModel* analysis, QObject* parent = nullptr);

    void setWidth(int widthMHz);
    int width() const { return m_width; }
    const QVector<ChannelRow>& rows() const { return m_rows; }
    int freestRow() const { return m_freest; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation o, int role) const override;

private:
    void reload();

    const AnalysisModel* m_analysis;
    int m_width = 20;
    QVector<ChannelRow> m_rows;
    int m_freest = -1;
};

// Paints the occupancy as a bar as wide as the share of the cell, with the percentage over it.
class OccupancyDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* p, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    static QColor barColor() { return QColor(0x3a, 0x8f, 0xd0); }
};

class ChannelTable : public QTableView
{
    Q_OBJECT
public:
    explicit ChannelTable(const AnalysisModel* analysis, QWidget* parent = nullptr);
    ChannelTableModel* tableModel() const { return m_model; }

public slots:
    // The width of the window's channel overlay.
    void setWidth(int widthMHz) { m_model->setWidth(widthMHz); }

private:
    ChannelTableModel* m_model;
};

// "-78.1" or an en dash where there is no number.
QString levelText(double dbm);

} // namespace wsa::desktop

#endif
