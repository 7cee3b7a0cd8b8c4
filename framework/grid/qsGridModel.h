// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractTableModel>

#include <functional>

#include "framework/grid/qsGridQuery.h"

// The rows that a grid holds: a stretch of the list without gaps, extended and cut at its ends. Knows no view.
class TqsGridModel final : public QAbstractTableModel
{
    Q_OBJECT
public:
    // A stretch of rows and whether it reaches the list's ends.
    struct Window
    {
        QList<TGridRow> rows;
        bool atBegin = false;
        bool atEnd = false;
    };

    explicit TqsGridModel(QObject *parent);

    void SetColumns(const QList<TGridColumn> &columns);
    const QList<TGridColumn> &Columns() const { return columns_; }
    void SetCaption(int column, const QString &caption);
    void SetShown(int column, bool visible, bool selectable);

    // Replaces everything.
    void Show(const TGridQuery &query, Window window);
    const TGridQuery &Query() const { return query_; }
    const QList<TGridRow> &Rows() const { return window_.rows; }
    bool AtBegin() const { return window_.atBegin; }
    bool AtEnd() const { return window_.atEnd; }
    int RowOfKey(int key) const; // -1 when the window does not hold it

    // Each reads one page and gives the number of rows added. Throws TDbError.
    int ExtendDown(int limit);
    int ExtendUp(int limit);
    void DropFirst(int count);
    void DropLast(int count);
    void RemoveRowAt(int row);

    // Check boxes stand in this column; -1 for none.
    void SetTickColumn(int column);
    QList<int> Ticked() const { return ticked_; }
    void SetTicked(const QList<int> &keys);
    void ToggleTick(int row);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

    int pageSize = 250;  // rows that fetchMore reads
    bool halted = false; // after a failure nothing more is fetched until the list is read again

Q_SIGNALS:
    void FetchFailed(const QString &message);
    void TicksChanged();

private:
    QVariant Value(const TGridRow &row, int column) const;

    QList<TGridColumn> columns_;
    QList<int> fieldOfColumn_;
    TGridQuery query_;
    Window window_;
    int tickColumn_ = -1;
    QList<int> ticked_; // in the order of ticking
    QSet<int> tickedSet_;
};
