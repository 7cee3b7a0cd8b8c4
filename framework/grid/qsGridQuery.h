// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>
#include <QVariantList>

#include <optional>

#include "framework/grid/qsGrid.h"

// One record of a list: its key and its values in the order of TGridQuery::Fields().
struct TGridRow
{
    int key = 0;
    QVariantList values;
};

// What a grid shows of a value: display lists, decimals, dates as day/month/year; "Yes" or "No" for Bool, "Yes" or ""
// for Notes.
QString GridText(const TGridColumn &column, const QVariant &value);

// The statements of a list: source, fields, order and filter, and the reading of rows from any place in that order.
// Rows are ordered by the sort field and then by the key, both in the same direction, NULL before every value.
// A value class; reading goes through MainConnection() and throws TDbError.
class TGridQuery
{
public:
    TGridQuery() = default;
    // `sortField` "" or the key field sorts by the key alone. `text` "" filters nothing; it is looked for in
    // `searched`.
    TGridQuery(const TListSource &source, const QList<TGridColumn> &columns, const QString &sortField, TGridOrder order,
               const QString &text, const QList<TGridColumn> &searched);

    bool IsOpen() const { return !key_.isEmpty(); }
    // Position of a field by name, without regard to case and to a table prefix; -1 when it is not read.
    int FieldIndex(QStringView name) const;
    const QStringList &Fields() const { return names_; }

    // At most `limit` rows, always in the order of the list.
    QList<TGridRow> First(int limit) const { return Walk(true, nullptr, false, limit, {}); }
    QList<TGridRow> Last(int limit) const { return Walk(false, nullptr, false, limit, {}); }
    QList<TGridRow> After(const TGridRow &row, int limit) const { return Walk(true, &row, false, limit, {}); }
    QList<TGridRow> Before(const TGridRow &row, int limit) const { return Walk(false, &row, false, limit, {}); }
    // The row with a key, if the list holds it under its filters.
    std::optional<TGridRow> At(int key) const;
    // The nearest row below (or above) `from` in which one of `searched` holds the text; from the list's start (or end)
    // without `from`.
    std::optional<TGridRow> Find(const QString &text, const QList<TGridColumn> &searched, const TGridRow *from,
                                 bool inclusive, bool backwards) const;
    // Counts at most `limit` rows in the order of their keys, from the one after `after` on.
    struct Slice
    {
        int rows = 0;
        int lastKey = 0;
    };
    Slice Count(std::optional<int> after, int limit) const;
    // Those of the keys whose records the source still holds, text filter aside; in the given order.
    QList<int> Existing(const QList<int> &keys) const;

    // A row of `other`, with its values at this query's positions: good as a place to read from.
    // Empty when the row lacks the value that this query sorts by.
    std::optional<TGridRow> Adopt(const TGridRow &row, const TGridQuery &other) const;

private:
    struct Condition
    {
        QString sql;
        TDbParams params;
    };
    QList<TGridRow> Walk(bool forward, const TGridRow *from, bool inclusive, int limit, const Condition &extra) const;
    Condition Statement(const QString &head, const QList<Condition> &conditions, const QString &tail) const;
    QList<TGridRow> Read(int top, const QList<Condition> &conditions, const QString &tail) const; // top 0: all
    Condition Holds(const QString &text, const QList<TGridColumn> &searched, const QString &prefix) const;
    QString Expression(QStringView field) const;

    QString from_;
    QString key_;       // as it is written in statements
    QStringList exprs_; // fields as they are written in statements
    QStringList names_; // … and as the result names them
    int keyIndex_ = -1;
    int sortIndex_ = -1;
    bool sortIsKey_ = true;
    TGridOrder order_ = TGridOrder::Ascending;
    Condition where_;
    Condition filter_;
};
