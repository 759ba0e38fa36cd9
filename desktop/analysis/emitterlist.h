// The emitters the analysis found: kind, centre, width, channel, duty, peak, confidence and when
// first and last seen; ended ones greyed, the features that decided the kind in a tooltip.
#ifndef DESKTOP_EMITTERLIST_H
#define DESKTOP_EMITTERLIST_H

#include <QAbstractTableModel>
#include <QTableView>

#include "analysismodel.h"

namespace wsa::desktop
{

class EmitterTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Kind, Center, Width, Channel, Duty, Peak, Confidence, First, Last, ColumnCount };

    explicit EmitterTableModel(const AnalysisModel* analysis, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation o, int role) const override;

    // The text of one cell, as the table and the report show it.
    static QString cellText(const EmitterRow& e, int column);
    static QString columnTitle(int column);
    // "kind (confidence): feature = value, ..." for the tooltip.
    static QString featureText(const EmitterRow& e);

private:
    void reload();

    const AnalysisModel* m_analysis;
    QVector<EmitterRow> m_rows;
};

class EmitterList : public QTableView
{
    Q_OBJECT
public:
    explicit EmitterList(const AnalysisModel* analysis, QWidget* parent = nullptr);
    EmitterTableModel* tableModel() const { return m_model; }

private:
    EmitterTableModel* m_model;
};

} // namespace wsa::desktop

#endif
