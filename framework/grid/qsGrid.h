// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSet>
#include <QTableView>
#include <QVariantMap>

#include <functional>

#include "framework/data/CorvexADOQuery.h"

class QIODevice;

// One column of a grid: the field it shows, its caption, and how a value becomes text.
struct CORVEX_API TGridColumn
{
    enum class Kind { Text, Integer, Float, Bool, Date, Notes }; // Notes: an icon where the value is not NULL
    QString field;
    QString caption;
    Kind kind = Kind::Text;
    int width = 120;        // in characters' pixels at 96 dpi; the user's saved layout wins
    bool visible = true;    // hidden columns can be switched on in the column chooser …
    bool selectable = true; // … unless they are internal (keys)
    int decimals = 2;       // Float
    std::function<QString(const QVariant &)> display = {}; // an own text for a value (shared display lists)
    // The same for a short list of values: what a value is shown as, an invalid value standing for NULL. Search and
    // filter then find a row by the shown text; a number or date column that has only `display` is not searched.
    QList<QPair<QVariant, QString>> displayValues = {};
};

enum class TGridOrder { Ascending, Descending };

// The grid of a list screen. Reads lazily: it holds a window of rows around what is looked at, read page by page by
// key; the database sorts, filters and searches. A failing query leaves the old rows standing: OpenList, ReReadList and
// ExportCsv throw TDbError, everything that follows a user's hand (keys, scrolling, SortBy, FocusKey, JumpTo…, Search,
// SetTextFilter, columns switched on while filtering, siblings) emits QueryFailed and changes nothing.
// Row access for outsiders goes through model(): every row in the model is filled; canFetchMore/fetchMore extend it
// downwards. Qt::UserRole of any cell gives the raw value, Qt::UserRole + 1 the row's key. Model columns are those of
// SetColumns, in its order; row numbers shift when rows are read above, keys do not. The focused row stays focused (and
// readable) when it is scrolled so far away that the window has let go of it.
class CORVEX_API TqsGrid final : public QTableView, public TListControl
{
    Q_OBJECT
    Q_PROPERTY(qlonglong recordCount READ RecordCount NOTIFY RecordCountChanged)

public:
    static constexpr int RawValueRole = Qt::UserRole;
    static constexpr int KeyRole = Qt::UserRole + 1;

    explicit TqsGrid(QWidget *parent = nullptr);
    ~TqsGrid() override;

    // Columns and the initial sort. Call before the first OpenList.
    void SetColumns(const QList<TGridColumn> &columns, const QString &sortField,
                    TGridOrder order = TGridOrder::Ascending);
    const QList<TGridColumn> &Columns() const;
    void SetColumnCaption(QStringView field, const QString &caption);
    // Shows or hides a column; `selectable` false takes it out of the column chooser too.
    void SetColumnVisible(QStringView field, bool visible, bool selectable = true);
    void SortBy(const QString &field, TGridOrder order);

    // TListControl
    void OpenList(const TListSource &source) override;
    void ReReadList(const TListSource &source, bool locate, int key) override;
    bool HasCurrent() const override;
    QVariant CurrentValue(QStringView field) const override;

    // True if a data row is focused. With `mustBeVisible` false a focused row scrolled out of sight counts too (it
    // always does here).
    bool RecordFocused(bool) const;
    int FocusedKey() const; // 0 when no row is focused
    // Focuses the row with this key; false when the list (under its filters) does not hold it.
    bool FocusKey(int key);
    void JumpToFirst();
    void JumpToLast();

    // Before a delete remember a neighbour (the next row, else the one before) to focus once the current row is gone.
    void GetSiblingForDelete();
    void SetSiblingAfterDelete();

    // Incremental search over the visible columns, from the focused row on (`next`: from the row after it), wrapping at
    // the end
    // (`backwards` likewise upwards). Text is found anywhere in a column's value, without regard to case; date
    // columns are searched by "31/12/2026", "12/2026" or "2026", check and note columns not at all. False when nothing
    // fits.
    bool Search(const QString &text, bool next, bool backwards = false);
    // Only rows in which some visible column holds the text; "" shows all again.
    void SetTextFilter(const QString &text);
    QString TextFilter() const;

    // Ticks: check boxes in front (Qt::CheckStateRole of the leftmost visible column; Space toggles the focused row).
    // Ticked keys survive re-reading, sorting and filtering; those of records that are gone are dropped by ReReadList.
    void SetMultiSelect(bool on);
    bool MultiSelect() const;
    QList<int> TickedKeys() const; // in the order in which they were ticked
    void SetTickedKeys(const QList<int> &keys);

    // Widths, order, visibility and sort, as JSON-able map.
    QVariantMap SaveLayout() const;
    void RestoreLayout(const QVariantMap &layout);

    // Number of records under the filters; -1 while it is not known yet (it is counted after the first rows are shown).
    qlonglong RecordCount() const;

    void CopyToClipboard() const; // selected rows (the focused one), visible columns, tab-separated with a heading line
    // All rows under the filters, visible columns, in the shown order: RFC 4180, UTF-8 with heading line. Reads page by
    // page. Throws TDbError, also (kind Other) when the device cannot be written.
    void ExportCsv(QIODevice &device) const;

    // Text that a value of this column is shown as; check columns, drawn as a mark, are "Yes" or "No" (also for copies
    // and exports).
    QString DisplayText(const TGridColumn &column, const QVariant &value) const;

Q_SIGNALS:
    void FocusedRecordChanged(int key); // 0: none
    void RecordCountChanged(qlonglong count);
    void RecordActivated(int key); // double click or Enter
    void TicksChanged();
    void LayoutChanged(); // by the user: width, order, visibility, sort
    // A query made in response to scrolling, sorting or filtering by the user failed; the old rows stand.
    void QueryFailed(const QString &message);

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index, const QEvent *event) const override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;

public:
    void keyboardSearch(const QString &search) override; // letters typed into the grid search the list

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
