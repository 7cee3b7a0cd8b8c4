// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractTableModel>
#include <QTableView>
#include <QVariantMap>

#include <optional>

#include "framework/Export.h"
#include "framework/grid/qsGrid.h"

// Rows that a dialog keeps until it is saved (brackets, rates). A row has one value a column; what is not given is the
// column's blank value (0, "", false). Model columns are those given, hidden ones included; Qt::UserRole of a cell is
// the raw value.
class CORVEX_API TMemoryTable final : public QAbstractTableModel
{
    Q_OBJECT
public:
    // Rows are kept in ascending order of `sortField`, equal ones in order of arrival; "" keeps the order of arrival.
    TMemoryTable(const QList<TGridColumn> &columns, const QString &sortField, QObject *parent = nullptr);

    int Count() const { return int(rows_.size()); }
    int ColumnOf(QStringView field) const; // -1 when there is none
    QVariant Value(int row, QStringView field) const;
    double Number(int row, QStringView field) const { return Value(row, field).toDouble(); }
    QVariantMap Row(int row) const;
    // The first row with this value; -1 when there is none.
    int Find(QStringView field, const QVariant &value) const;

    // Each gives the row's place.
    int Append(const QVariantMap &values);
    int Set(int row, const QVariantMap &values); // columns that are not named stay
    void Remove(int row);
    // In place of all rows so far.
    void SetRows(const QList<QVariantMap> &rows);

    // Cells that the user may change in place. Numbers are rounded to their column's decimals; one out of bounds is
    // refused.
    void SetEditable(bool editable);
    bool IsEditable() const { return editable_; }
    void SetBounds(QStringView field, std::optional<double> minimum, std::optional<double> maximum);
    struct TBounds
    {
        std::optional<double> minimum, maximum;
    };
    TBounds BoundsOf(int column) const { return bounds_.value(column); }

    const QList<TGridColumn> &Columns() const { return columns_; }
    void SetCaption(QStringView field, const QString &caption);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    void Changed(); // rows came, went or changed

private:
    int PlaceFor(const QVariantList &row, int ignored) const;
    void MoveToPlace(int &row);
    QVariantList RowOf(const QVariantMap &values) const;

    QList<TGridColumn> columns_;
    int sortColumn_;
    QList<QVariantList> rows_;
    QHash<int, TBounds> bounds_;
    bool editable_ = false;
};

// The grid over a memory table. Either the dialog does the work (double click and Enter ask for an edit, Ins for a new
// row, Del for a delete), or the cells are edited in place (double click, Enter or typing edits a cell, Ins begins a
// row, Del deletes one).
class CORVEX_API TqsMemoryGrid final : public QTableView
{
    Q_OBJECT
public:
    // Columns with `visible` false are held but not shown.
    TqsMemoryGrid(const QList<TGridColumn> &columns, const QString &sortField, QWidget *parent = nullptr);

    TMemoryTable &Table() const { return *table_; }
    int FocusedRow() const; // -1 when none is focused
    void FocusRow(int row); // the nearest one when there are fewer; none when there are none
    void SetColumnVisible(QStringView field, bool visible);
    void SetInPlace(bool inPlace);
    // Rows that are in sight without scrolling, for the layout.
    void SetVisibleRows(int rows);

    // In place: adds a blank row below and edits its first cell; deletes the focused row.
    void InsertRow();
    void DeleteRow();

Q_SIGNALS:
    void EditRequested();
    void AddRequested();
    void DeleteRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void FitColumns();
    TMemoryTable *table_;
    bool inPlace_ = false;
};
