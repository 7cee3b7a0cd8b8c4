// SPDX-License-Identifier: Apache-2.0
#include "framework/grid/MemoryGrid.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>
#include <cmath>

#include "framework/editors/Editors.h"
#include "framework/grid/qsGridQuery.h"

namespace {

using Kind = TGridColumn::Kind;

bool IsNumber(const TGridColumn &column)
{
    return column.kind == Kind::Integer || column.kind == Kind::Float;
}

QVariant BlankOf(const TGridColumn &column)
{
    switch (column.kind) {
    case Kind::Integer:
        return 0;
    case Kind::Float:
        return 0.0;
    case Kind::Bool:
        return false;
    default:
        return QString();
    }
}

// A column that counts nothing stands with the texts.
Qt::Alignment AlignmentOf(const TGridColumn &column)
{
    return (IsNumber(column) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
}

// Numbers are typed in the same box here as everywhere else.
class TNumberDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const auto &table = static_cast<const TMemoryTable &>(*index.model());
        const TGridColumn &column = table.Columns()[index.column()];
        if (!IsNumber(column))
            return QStyledItemDelegate::createEditor(parent, option, index);
        auto *edit = new TqsNumberEdit(parent);
        edit->SetDecimals(column.kind == Kind::Integer ? 0 : column.decimals);
        edit->SetMinimum(table.BoundsOf(index.column()).minimum);
        edit->SetMaximum(table.BoundsOf(index.column()).maximum);
        edit->setAccessibleName(column.caption);
        return edit;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        if (auto *edit = qobject_cast<TqsNumberEdit *>(editor)) {
            edit->SetValue(index.data(Qt::UserRole).toDouble());
            edit->selectAll();
        } else {
            QStyledItemDelegate::setEditorData(editor, index);
        }
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        if (const auto *edit = qobject_cast<TqsNumberEdit *>(editor))
            model->setData(index, edit->Value());
        else
            QStyledItemDelegate::setModelData(editor, model, index);
    }
};

} // namespace

TMemoryTable::TMemoryTable(const QList<TGridColumn> &columns, const QString &sortField, QObject *parent)
    : QAbstractTableModel(parent)
    , columns_(columns)
    , sortColumn_(ColumnOf(sortField))
{
    connect(this, &QAbstractItemModel::rowsInserted, this, &TMemoryTable::Changed);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &TMemoryTable::Changed);
    connect(this, &QAbstractItemModel::modelReset, this, &TMemoryTable::Changed);
    connect(this, &QAbstractItemModel::dataChanged, this, &TMemoryTable::Changed);
}

int TMemoryTable::ColumnOf(QStringView field) const
{
    const auto found = std::find_if(columns_.begin(), columns_.end(), [field](const TGridColumn &column) {
        return field.compare(column.field, Qt::CaseInsensitive) == 0;
    });
    return found == columns_.end() ? -1 : int(found - columns_.begin());
}

QVariant TMemoryTable::Value(int row, QStringView field) const
{
    const int column = ColumnOf(field);
    return row < 0 || row >= Count() || column < 0 ? QVariant() : rows_[row][column];
}

QVariantMap TMemoryTable::Row(int row) const
{
    QVariantMap values;
    for (int i = 0; i < columns_.size(); ++i)
        values.insert(columns_[i].field, rows_[row][i]);
    return values;
}

int TMemoryTable::Find(QStringView field, const QVariant &value) const
{
    const int column = ColumnOf(field);
    for (int row = 0; column >= 0 && row < Count(); ++row) {
        if (rows_[row][column] == value)
            return row;
    }
    return -1;
}

// Where a row belongs among the others, behind its equals.
int TMemoryTable::PlaceFor(const QVariantList &row, int ignored) const
{
    int place = 0;
    for (int i = 0; i < Count(); ++i) {
        if (i == ignored)
            continue;
        if (sortColumn_ >= 0 && QVariant::compare(row[sortColumn_], rows_[i][sortColumn_]) == QPartialOrdering::Less) {
            break;
        }
        ++place;
    }
    return place;
}

void TMemoryTable::MoveToPlace(int &row)
{
    if (sortColumn_ < 0)
        return;
    const bool ordered =
        (row == 0 ||
         QVariant::compare(rows_[row - 1][sortColumn_], rows_[row][sortColumn_]) != QPartialOrdering::Greater) &&
        (row + 1 == Count() ||
         QVariant::compare(rows_[row][sortColumn_], rows_[row + 1][sortColumn_]) != QPartialOrdering::Greater);
    if (ordered)
        return;
    const int place = PlaceFor(rows_[row], row);
    beginMoveRows({}, row, row, {}, place > row ? place + 1 : place);
    rows_.move(row, place);
    endMoveRows();
    row = place;
}

QVariantList TMemoryTable::RowOf(const QVariantMap &values) const
{
    QVariantList row;
    for (const TGridColumn &column : columns_)
        row.append(values.value(column.field, BlankOf(column)));
    return row;
}

int TMemoryTable::Append(const QVariantMap &values)
{
    const QVariantList row = RowOf(values);
    const int place = PlaceFor(row, -1);
    beginInsertRows({}, place, place);
    rows_.insert(place, row);
    endInsertRows();
    return place;
}

int TMemoryTable::Set(int row, const QVariantMap &values)
{
    for (int i = 0; i < columns_.size(); ++i)
        rows_[row][i] = values.value(columns_[i].field, rows_[row][i]);
    MoveToPlace(row);
    Q_EMIT dataChanged(index(row, 0), index(row, int(columns_.size()) - 1));
    return row;
}

void TMemoryTable::Remove(int row)
{
    beginRemoveRows({}, row, row);
    rows_.removeAt(row);
    endRemoveRows();
}

void TMemoryTable::SetRows(const QList<QVariantMap> &rows)
{
    beginResetModel();
    rows_.clear();
    for (const QVariantMap &values : rows)
        rows_.append(RowOf(values));
    if (sortColumn_ >= 0) {
        std::stable_sort(rows_.begin(), rows_.end(), [this](const QVariantList &a, const QVariantList &b) {
            return QVariant::compare(a[sortColumn_], b[sortColumn_]) == QPartialOrdering::Less;
        });
    }
    endResetModel();
}

void TMemoryTable::SetEditable(bool editable)
{
    editable_ = editable;
}

void TMemoryTable::SetBounds(QStringView field, std::optional<double> minimum, std::optional<double> maximum)
{
    bounds_.insert(ColumnOf(field), {minimum, maximum});
}

void TMemoryTable::SetCaption(QStringView field, const QString &caption)
{
    const int column = ColumnOf(field);
    columns_[column].caption = caption;
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

int TMemoryTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : Count();
}

int TMemoryTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(columns_.size());
}

QVariant TMemoryTable::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const TGridColumn &column = columns_[index.column()];
    const QVariant &value = rows_[index.row()][index.column()];
    switch (role) {
    case Qt::DisplayRole:
        return GridText(column, value);
    case Qt::EditRole:
    case Qt::UserRole:
        return value;
    case Qt::TextAlignmentRole:
        return int(AlignmentOf(column));
    default:
        return {};
    }
}

bool TMemoryTable::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!editable_ || role != Qt::EditRole || !index.isValid())
        return false;
    const TGridColumn &column = columns_[index.column()];
    QVariant kept = value;
    if (IsNumber(column)) {
        bool isNumber = false;
        const double scale = std::pow(10.0, column.kind == Kind::Integer ? 0 : column.decimals);
        const double number = std::round(value.toDouble(&isNumber) * scale) / scale;
        const TBounds bounds = BoundsOf(index.column());
        if (!isNumber || (bounds.minimum && number < *bounds.minimum) || (bounds.maximum && number > *bounds.maximum))
            return false;
        kept = column.kind == Kind::Integer ? QVariant(int(number)) : QVariant(number);
    }
    Set(index.row(), {{column.field, kept}});
    return true;
}

Qt::ItemFlags TMemoryTable::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return editable_ && index.isValid() ? flags | Qt::ItemIsEditable : flags;
}

QVariant TMemoryTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columns_.size())
        return QAbstractTableModel::headerData(section, orientation, role);
    if (role == Qt::DisplayRole)
        return columns_[section].caption;
    if (role == Qt::TextAlignmentRole)
        return int(AlignmentOf(columns_[section]));
    return {};
}

TqsMemoryGrid::TqsMemoryGrid(const QList<TGridColumn> &columns, const QString &sortField, QWidget *parent)
    : QTableView(parent)
    , table_(new TMemoryTable(columns, sortField, this))
{
    setModel(table_);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    setTabKeyNavigation(false);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    for (int i = 0; i < columns.size(); ++i) {
        setColumnHidden(i, !columns[i].visible);
        setColumnWidth(i, columns[i].width);
    }
    const bool numbers = std::all_of(columns.begin(), columns.end(), IsNumber);
    if (numbers)
        horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    else
        horizontalHeader()->setStretchLastSection(true);
    ShowReadable(this);
    SetVisibleRows(8);
    FitColumns();
}

void TqsMemoryGrid::SetVisibleRows(int rows)
{
    const int height = verticalHeader()->defaultSectionSize();
    setMinimumHeight((rows + 1) * height + 2 * frameWidth() + 4);
}

void TqsMemoryGrid::FitColumns()
{
    int width = verticalScrollBar()->sizeHint().width() + 2 * frameWidth();
    for (int i = 0; i < table_->columnCount(); ++i)
        width += isColumnHidden(i) ? 0 : table_->Columns()[i].width;
    setMinimumWidth(width);
}

int TqsMemoryGrid::FocusedRow() const
{
    return currentIndex().isValid() ? currentIndex().row() : -1;
}

void TqsMemoryGrid::FocusRow(int row)
{
    int column = 0;
    while (column < table_->columnCount() && isColumnHidden(column))
        ++column;
    const int nearest = std::clamp(row, 0, std::max(0, table_->Count() - 1));
    setCurrentIndex(table_->index(nearest, column));
}

void TqsMemoryGrid::SetColumnVisible(QStringView field, bool visible)
{
    setColumnHidden(table_->ColumnOf(field), !visible);
    FitColumns();
}

void TqsMemoryGrid::SetInPlace(bool inPlace)
{
    inPlace_ = inPlace;
    table_->SetEditable(inPlace);
    setSelectionBehavior(inPlace ? QAbstractItemView::SelectItems : QAbstractItemView::SelectRows);
    setEditTriggers(inPlace ? QAbstractItemView::DoubleClicked | QAbstractItemView::AnyKeyPressed
                            : QAbstractItemView::NoEditTriggers);
    setItemDelegate(new TNumberDelegate(this));
}

void TqsMemoryGrid::InsertRow()
{
    FocusRow(table_->Append({}));
    edit(currentIndex());
}

void TqsMemoryGrid::DeleteRow()
{
    const int row = FocusedRow();
    if (row < 0)
        return;
    table_->Remove(row);
    FocusRow(row);
}

void TqsMemoryGrid::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        // Not the dialog's OK: Enter on a row works on the row.
        event->accept();
        if (FocusedRow() < 0)
            return;
        if (!inPlace_)
            Q_EMIT EditRequested();
        else if (state() != EditingState)
            edit(currentIndex());
        return;
    case Qt::Key_Insert:
        event->accept();
        if (inPlace_)
            InsertRow();
        else
            Q_EMIT AddRequested();
        return;
    case Qt::Key_Delete:
        event->accept();
        if (inPlace_)
            DeleteRow();
        else if (FocusedRow() >= 0)
            Q_EMIT DeleteRequested();
        return;
    default:
        QTableView::keyPressEvent(event);
    }
}

void TqsMemoryGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (inPlace_) {
        QTableView::mouseDoubleClickEvent(event);
        return;
    }
    const QModelIndex at = indexAt(event->pos());
    if (!at.isValid() || event->button() != Qt::LeftButton)
        return;
    setCurrentIndex(at);
    Q_EMIT EditRequested();
}

void TqsMemoryGrid::contextMenuEvent(QContextMenuEvent *event)
{
    if (!inPlace_) {
        QTableView::contextMenuEvent(event);
        return;
    }
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("popMemoryGrid"));
    menu.addAction(tr("&Insert Row\tIns"), this, &TqsMemoryGrid::InsertRow);
    menu.addAction(tr("&Delete Row\tDel"), this, &TqsMemoryGrid::DeleteRow)->setEnabled(FocusedRow() >= 0);
    menu.exec(event->globalPos());
}

void TqsMemoryGrid::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    // A row that cannot be worked on is not marked: it would be the least legible one.
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        clearSelection();
}

void TqsMemoryGrid::focusInEvent(QFocusEvent *event)
{
    QTableView::focusInEvent(event);
    if (FocusedRow() < 0)
        FocusRow(0);
}
