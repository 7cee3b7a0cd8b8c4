// SPDX-License-Identifier: Apache-2.0
#include "framework/grid/qsGridModel.h"

TqsGridModel::TqsGridModel(QObject *parent)
    : QAbstractTableModel(parent)
{
    window_.atBegin = window_.atEnd = true;
}

void TqsGridModel::SetColumns(const QList<TGridColumn> &columns)
{
    beginResetModel();
    columns_ = columns;
    query_ = {};
    window_ = {{}, true, true};
    fieldOfColumn_.fill(-1, columns_.size());
    endResetModel();
}

void TqsGridModel::SetCaption(int column, const QString &caption)
{
    columns_[column].caption = caption;
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

void TqsGridModel::SetShown(int column, bool visible, bool selectable)
{
    columns_[column].visible = visible;
    columns_[column].selectable = selectable;
}

void TqsGridModel::Show(const TGridQuery &query, Window window)
{
    beginResetModel();
    query_ = query;
    window_ = std::move(window);
    for (int i = 0; i < columns_.size(); ++i)
        fieldOfColumn_[i] = query_.FieldIndex(columns_[i].field);
    endResetModel();
}

int TqsGridModel::RowOfKey(int key) const
{
    for (int i = 0; i < window_.rows.size(); ++i) {
        if (window_.rows[i].key == key)
            return i;
    }
    return -1;
}

int TqsGridModel::ExtendDown(int limit)
{
    if (window_.atEnd)
        return 0;
    QList<TGridRow> rows = window_.rows.isEmpty() ? query_.First(limit) : query_.After(window_.rows.last(), limit);
    window_.atEnd = rows.size() < limit;
    const int count = int(rows.size());
    if (count == 0)
        return 0;
    beginInsertRows({}, rowCount(), rowCount() + count - 1);
    window_.rows.append(std::move(rows));
    endInsertRows();
    return count;
}

int TqsGridModel::ExtendUp(int limit)
{
    if (window_.atBegin || window_.rows.isEmpty())
        return 0;
    QList<TGridRow> rows = query_.Before(window_.rows.first(), limit);
    window_.atBegin = rows.size() < limit;
    const int count = int(rows.size());
    if (count == 0)
        return 0;
    beginInsertRows({}, 0, count - 1);
    rows.append(std::move(window_.rows));
    window_.rows = std::move(rows);
    endInsertRows();
    return count;
}

void TqsGridModel::DropFirst(int count)
{
    if (count <= 0)
        return;
    beginRemoveRows({}, 0, count - 1);
    window_.rows.remove(0, count);
    window_.rows.squeeze();
    window_.atBegin = false;
    endRemoveRows();
}

void TqsGridModel::DropLast(int count)
{
    if (count <= 0)
        return;
    beginRemoveRows({}, rowCount() - count, rowCount() - 1);
    window_.rows.resize(window_.rows.size() - count);
    window_.rows.squeeze();
    window_.atEnd = false;
    endRemoveRows();
}

void TqsGridModel::RemoveRowAt(int row)
{
    beginRemoveRows({}, row, row);
    window_.rows.removeAt(row);
    endRemoveRows();
}

void TqsGridModel::SetTickColumn(int column)
{
    if (tickColumn_ == column)
        return;
    tickColumn_ = column;
    if (rowCount() > 0 && columnCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::CheckStateRole});
}

void TqsGridModel::SetTicked(const QList<int> &keys)
{
    QList<int> unique;
    QSet<int> set;
    for (const int key : keys) {
        if (!set.contains(key)) {
            set.insert(key);
            unique += key;
        }
    }
    if (unique == ticked_)
        return;
    ticked_ = unique;
    tickedSet_ = set;
    if (tickColumn_ >= 0 && rowCount() > 0)
        Q_EMIT dataChanged(index(0, tickColumn_), index(rowCount() - 1, tickColumn_), {Qt::CheckStateRole});
    Q_EMIT TicksChanged();
}

void TqsGridModel::ToggleTick(int row)
{
    const int key = window_.rows[row].key;
    if (tickedSet_.remove(key)) {
        ticked_.removeOne(key);
    } else {
        tickedSet_.insert(key);
        ticked_ += key;
    }
    if (tickColumn_ >= 0)
        Q_EMIT dataChanged(index(row, tickColumn_), index(row, tickColumn_), {Qt::CheckStateRole});
    Q_EMIT TicksChanged();
}

int TqsGridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(window_.rows.size());
}

int TqsGridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(columns_.size());
}

QVariant TqsGridModel::Value(const TGridRow &row, int column) const
{
    return row.values.value(fieldOfColumn_[column]);
}

QVariant TqsGridModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const TGridRow &row = window_.rows[index.row()];
    const TGridColumn &column = columns_[index.column()];
    using Kind = TGridColumn::Kind;
    switch (role) {
    case Qt::DisplayRole: {
        const QVariant value = Value(row, index.column());
        if (column.kind == Kind::Notes && !column.display)
            return QString();
        if (column.kind == Kind::Bool && !column.display && column.displayValues.isEmpty())
            return value.toBool() ? QStringLiteral("\u2713") : QString();
        return GridText(column, value);
    }
    case Qt::AccessibleTextRole:
        if (column.kind == Kind::Notes && !Value(row, index.column()).isNull())
            return QStringLiteral("Has a note");
        return GridText(column, Value(row, index.column()));
    case Qt::ToolTipRole:
        if (column.kind == Kind::Notes && !Value(row, index.column()).isNull())
            return QStringLiteral("Has a note");
        return {};
    case Qt::TextAlignmentRole:
        return headerData(index.column(), Qt::Horizontal, role);
    case Qt::CheckStateRole:
        if (index.column() == tickColumn_)
            return tickedSet_.contains(row.key) ? Qt::Checked : Qt::Unchecked;
        return {};
    case TqsGrid::RawValueRole:
        return Value(row, index.column());
    case TqsGrid::KeyRole:
        return row.key;
    default:
        return {};
    }
}

bool TqsGridModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || !index.isValid() || index.column() != tickColumn_)
        return false;
    if ((value.toInt() == Qt::Checked) != tickedSet_.contains(window_.rows[index.row()].key))
        ToggleTick(index.row());
    return true;
}

Qt::ItemFlags TqsGridModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.isValid() && index.column() == tickColumn_)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant TqsGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columns_.size())
        return {};
    const TGridColumn &column = columns_[section];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return column.caption;
    case Qt::TextAlignmentRole:
        switch (column.kind) {
        case TGridColumn::Kind::Integer:
        case TGridColumn::Kind::Float:
            // A number that stands for a text (a display list) reads as text.
            if (column.display || !column.displayValues.isEmpty())
                return int(Qt::AlignLeft | Qt::AlignVCenter);
            return int(Qt::AlignRight | Qt::AlignVCenter);
        case TGridColumn::Kind::Bool:
        case TGridColumn::Kind::Notes:
            return int(Qt::AlignCenter);
        default:
            return int(Qt::AlignLeft | Qt::AlignVCenter);
        }
    default:
        return {};
    }
}

bool TqsGridModel::canFetchMore(const QModelIndex &parent) const
{
    return !parent.isValid() && query_.IsOpen() && !window_.atEnd && !halted;
}

void TqsGridModel::fetchMore(const QModelIndex &parent)
{
    if (!canFetchMore(parent))
        return;
    try {
        ExtendDown(pageSize);
    } catch (const TDbError &error) {
        halted = true;
        Q_EMIT FetchFailed(error.message);
    }
}
