// SPDX-License-Identifier: Apache-2.0
#include "framework/grid/qsGrid.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QHeaderView>
#include <QHelpEvent>
#include <QIODevice>
#include <QIcon>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QStyleHints>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QToolTip>

#include "framework/grid/qsGridModel.h"

namespace {

constexpr int kPage = 100;       // rows read before anything is shown
constexpr int kFillPage = 250;   // rows read at a time when idle …
constexpr int kFill = 2000;      // … until the window holds this many
constexpr int kMargin = 100;     // rows kept ready above and below what is visible
constexpr int kWindowCap = 6000; // wide lists hold fewer rows:
constexpr int kCellCap = 120000;
constexpr int kLeastWindowCap = 3000;
constexpr int kWholeList = 500; // a complete list of up to this many rows is read again as a whole
constexpr int kExportPage = 500;
constexpr int kSlowMs = 60; // a page that takes longer was not found by an index: bigger pages from then on
constexpr int kCountDelayMs = 150;
constexpr int kCountSlice = 30000; // rows counted at a time, so that counting a long list holds nobody up
constexpr int kLeastWidth = 20, kMostWidth = 2000, kMostBestFit = 600;

// Draws notes as an icon, keeps every record on one line, and tells the whole of a text that was cut.
class TGridDelegate final : public QStyledItemDelegate
{
public:
    explicit TGridDelegate(TqsGrid *grid)
        : QStyledItemDelegate(grid)
        , grid_(grid)
    {
        const QString file = QStringLiteral(":/icons/notes.svg");
        if (QFile::exists(file))
            noteIcon_ = QIcon(file);
        if (noteIcon_.pixmap(16, 16).isNull())
            noteIcon_ = QIcon(); // no reader for the format
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        PaintCheckFrame(painter, option, index);
        const TGridColumn &column = grid_->Columns()[index.column()];
        if (column.kind != TGridColumn::Kind::Notes || column.display || index.data(TqsGrid::RawValueRole).isNull())
            return;
        const int side = std::min(16, option.rect.height() - 4);
        QRect place(0, 0, side, side);
        place.moveCenter(option.rect.center());
        if (!noteIcon_.isNull()) {
            noteIcon_.paint(painter, place);
            return;
        }
        const bool selected = option.state & QStyle::State_Selected;
        painter->save();
        painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
        painter->drawRect(place.adjusted(2, 1, -3, -2));
        for (int y = place.top() + 4; y < place.bottom() - 3; y += 3)
            painter->drawLine(place.left() + 5, y, place.right() - 5, y);
        painter->restore();
    }

    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override
    {
        if (event->type() == QEvent::ToolTip && index.isValid() && index.data(Qt::ToolTipRole).isNull() &&
            sizeHint(option, index).width() > option.rect.width()) {
            QToolTip::showText(event->globalPos(), index.data(Qt::DisplayRole).toString().toHtmlEscaped(), view);
            return true;
        }
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text.replace(QChar::LineSeparator, u' ').replace(u'\r', QLatin1String());
        option->state &= ~QStyle::State_HasFocus; // the row is what is focused
    }

private:
    // Styles draw the frame of a check box darker than the window, which nobody sees on a dark one.
    void PaintCheckFrame(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
    {
        if (!index.data(Qt::CheckStateRole).isValid() || option.palette.color(QPalette::Base).lightness() > 127)
            return;
        QStyleOptionViewItem full = option;
        initStyleOption(&full, index);
        painter->save();
        painter->setPen(option.palette.color(QPalette::PlaceholderText));
        painter->drawRect(
            grid_->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &full, grid_).adjusted(0, 0, -1, -1));
        painter->restore();
    }

    TqsGrid *grid_;
    QIcon noteIcon_;
};

QString CsvField(const QString &text)
{
    if (!text.contains(u'"') && !text.contains(u',') && !text.contains(u'\n') && !text.contains(u'\r'))
        return text;
    QString quoted = text;
    return u'"' + quoted.replace(u'"', QLatin1String("\"\"")) + u'"';
}

} // namespace

struct TqsGrid::Impl
{
    explicit Impl(TqsGrid &grid)
        : q(grid)
        , model(new TqsGridModel(&grid))
    {}

    TqsGrid &q;
    TqsGridModel *model;
    QList<TGridColumn> defaults;
    QString defaultSort;
    TGridOrder defaultOrder = TGridOrder::Ascending;
    QList<int> widths; // of hidden columns too, whose header section has none

    std::optional<TListSource> source;
    QString sortField;
    TGridOrder order = TGridOrder::Ascending;
    int sortSection = -1;
    QString filter;
    bool multiSelect = false;

    std::optional<TGridRow> away; // the focused row while the window does not hold it
    std::optional<TGridRow> lost; // the row focused before the list became empty
    std::optional<TGridRow> sibling;
    int deletedKey = 0;
    int announced = 0;
    int quiet = 0;       // > 0: changes of the current index are not news
    int quietLayout = 0; // > 0: changes of the header are not the user's

    QTimer work; // one step of reading ahead a time
    QTimer counting;
    bool countDue = false;
    qlonglong counted = 0;        // so far …
    std::optional<int> countedTo; // … up to this key
    qlonglong count = -1;
    bool slow = false;

    QString typed;
    QElapsedTimer typedAt;
    QPointer<QMenu> menu;

    // ---- where things are

    int TopRow() const { return q.verticalScrollBar()->value(); }
    int VisibleRows() const { return std::max(1, q.viewport()->height() / q.verticalHeader()->defaultSectionSize()); }

    const TGridRow *Focused() const
    {
        const QModelIndex current = q.currentIndex();
        if (current.isValid())
            return &model->Rows()[current.row()];
        return away ? &*away : nullptr;
    }

    int FirstShownColumn() const
    {
        const QHeaderView *header = q.horizontalHeader();
        for (int visual = 0; visual < header->count(); ++visual) {
            if (const int logical = header->logicalIndex(visual); !header->isSectionHidden(logical))
                return logical;
        }
        return header->count() > 0 ? 0 : -1;
    }

    QList<TGridColumn> ShownColumns() const // in the shown order
    {
        QList<TGridColumn> shown;
        const QHeaderView *header = q.horizontalHeader();
        for (int visual = 0; visual < header->count(); ++visual) {
            if (const int logical = header->logicalIndex(visual); !header->isSectionHidden(logical))
                shown += model->Columns()[logical];
        }
        return shown;
    }

    TGridQuery Query(const TListSource &from, const QString &field, TGridOrder direction, const QString &text) const
    {
        return TGridQuery(from, model->Columns(), field, direction, text, ShownColumns());
    }

    // ---- moving the focus and the view, without a query

    void SetTop(int row)
    {
        q.executeDelayedItemsLayout();
        q.updateGeometries();
        q.verticalScrollBar()->setValue(row);
    }

    void SetCurrent(int row, int column)
    {
        if (column < 0 || column >= model->columnCount() || q.isColumnHidden(column))
            column = FirstShownColumn();
        if (column < 0)
            return;
        // The place in the viewport is decided here; a view that is not shown yet finds its row when it is.
        const bool scrolls = q.hasAutoScroll();
        q.setAutoScroll(scrolls && !q.isVisible());
        q.setCurrentIndex(model->index(row, column));
        q.setAutoScroll(scrolls);
        away.reset();
        lost.reset();
    }

    void EnsureVisible(int row)
    {
        const int visible = VisibleRows();
        if (row < TopRow())
            SetTop(row);
        else if (row >= TopRow() + visible)
            SetTop(row - visible + 1);
    }

    void Announce()
    {
        const TGridRow *row = Focused();
        const int key = row ? row->key : 0;
        if (key == announced)
            return;
        announced = key;
        Q_EMIT q.FocusedRecordChanged(key);
    }

    void SetCount(qlonglong rows)
    {
        if (rows == count)
            return;
        count = rows;
        Q_EMIT q.RecordCountChanged(count);
    }

    // ---- reading

    // Why a window takes another's place: other rows of the same reading, the same list read again, another order,
    // other rows altogether (opened or filtered).
    enum class Why { Moved, ReRead, Reordered, Refiltered };

    struct Place
    {
        TqsGridModel::Window window;
        int row = -1;     // in the window: what the view is laid out around, and the focus unless `away` is set
        int distance = 0; // of that row from the top of the viewport
        std::optional<TGridRow> away = {};
    };

    TqsGridModel::Window FirstPage(const TGridQuery &query, int limit = kPage) const
    {
        TqsGridModel::Window window{query.First(limit), true, false};
        window.atEnd = window.rows.size() < limit;
        return window;
    }

    // The rows around one, itself included when it `exists`; otherwise the row that has taken its place.
    Place Around(const TGridQuery &query, const TGridRow &row, bool exists, int distance) const
    {
        const int visible = VisibleRows();
        const int above = std::clamp(distance + visible, kPage, kFill);
        const int below = std::clamp(2 * visible - distance, kPage, kFill);
        Place place;
        place.distance = distance;
        place.window.rows = query.Before(row, above);
        place.window.atBegin = place.window.rows.size() < above;
        place.row = int(place.window.rows.size());
        if (exists)
            place.window.rows += row;
        const QList<TGridRow> after = query.After(row, below);
        place.window.atEnd = after.size() < below;
        place.window.rows += after;
        place.row = std::min(place.row, int(place.window.rows.size()) - 1);
        return place;
    }

    Place FirstPlace(const TGridQuery &query) const
    {
        Place place;
        place.window = FirstPage(query);
        place.row = place.window.rows.isEmpty() ? -1 : 0;
        return place;
    }

    // Finds where to stand after the list is read with `query`: on `locate` when the list holds it, else where we stand
    // now. Changes nothing here.
    Place Find(const TGridQuery &query, std::optional<int> locate, Why why) const
    {
        const bool sameOrder = why == Why::Moved || why == Why::ReRead;
        const QModelIndex current = q.currentIndex();
        const TGridRow *focused = Focused();
        const int visible = VisibleRows();
        const int top = TopRow();
        const auto located = [&](int key) {
            const int old = model->RowOfKey(key);
            return old >= top && old < top + visible ? old - top : visible / 3;
        };

        if (sameOrder && model->Query().IsOpen() && model->AtBegin() && model->AtEnd() &&
            model->rowCount() <= kWholeList) {
            Place place;
            place.window = FirstPage(query, kWholeList + kPage);
            if (place.window.atEnd) {
                const QList<TGridRow> &rows = place.window.rows;
                const auto rowOf = [&rows](int key) {
                    const auto it =
                        std::find_if(rows.begin(), rows.end(), [key](const TGridRow &r) { return r.key == key; });
                    return it == rows.end() ? -1 : int(it - rows.begin());
                };
                if (locate && (place.row = rowOf(*locate)) >= 0) {
                    place.distance = located(*locate);
                    return place;
                }
                place.row = focused ? rowOf(focused->key) : 0;
                if (place.row < 0)
                    place.row = current.row();
                place.row = std::min(place.row, int(rows.size()) - 1);
                place.distance = current.isValid() ? current.row() - top : 0;
                return place;
            }
        }

        if (locate) {
            if (const std::optional<TGridRow> row = query.At(*locate))
                return Around(query, *row, true, located(*locate));
        }
        if (sameOrder && away && model->rowCount() > 0) {
            // The focus is far off: what is looked at stays in view.
            Place place = Stand(query, model->Rows()[std::min(top, model->rowCount() - 1)], 0);
            std::optional<TGridRow> still = query.At(away->key);
            if (const auto old = query.Adopt(*away, model->Query()); !still && old) {
                for (const QList<TGridRow> &rows : {query.After(*old, 1), query.Before(*old, 1)}) {
                    if (!rows.isEmpty() && !still)
                        still = rows.first();
                }
            }
            place.away = still;
            return place;
        }
        if (focused)
            return Stand(query, *focused, current.isValid() ? current.row() - top : visible / 3);
        return lost ? Stand(query, *lost, visible / 3) : FirstPlace(query);
    }

    // Around a row of the present window; around its former place when it is gone.
    Place Stand(const TGridQuery &query, const TGridRow &row, int distance) const
    {
        if (const std::optional<TGridRow> now = query.At(row.key))
            return Around(query, *now, true, distance);
        if (const std::optional<TGridRow> then = query.Adopt(row, model->Query()))
            return Around(query, *then, false, distance);
        return FirstPlace(query);
    }

    void Show(const TGridQuery &query, Place place, Why why)
    {
        const int column = q.currentIndex().column();
        const int across = q.horizontalScrollBar()->value();
        const TGridRow *focused = Focused();
        std::optional<TGridRow> before = focused ? std::optional(*focused) : lost;
        if (before)
            before = query.Adopt(*before, model->Query());
        const bool complete = place.window.atBegin && place.window.atEnd;
        ++quiet;
        model->halted = true; // a view that is being filled would fetch at once
        model->Show(query, std::move(place.window));
        away.reset();
        if (place.away) {
            const int row = model->RowOfKey(place.away->key);
            if (row >= 0)
                SetCurrent(row, column);
            else
                away = place.away;
        } else if (place.row >= 0) {
            SetCurrent(place.row, column);
        } else {
            lost = before;
        }
        SetTop(place.row - place.distance);
        q.horizontalScrollBar()->setValue(across);
        model->halted = false;
        --quiet;
        if (why == Why::Reordered || why == Why::Refiltered)
            slow = false;
        if (why == Why::Refiltered && !complete)
            SetCount(-1);
        countDue = !complete && (why == Why::ReRead || countDue || count < 0);
        if (complete)
            SetCount(model->rowCount());
        counting.stop();
        work.start();
        Announce();
    }

    void Load(const TGridQuery &query, std::optional<int> locate, Why why)
    {
        Show(query, Find(query, locate, why), why);
    }

    bool FocusRow(const TGridRow &row)
    {
        const int held = model->RowOfKey(row.key);
        if (held >= 0) {
            SetCurrent(held, q.currentIndex().column());
            EnsureVisible(held);
        } else {
            Show(model->Query(), Around(model->Query(), row, true, VisibleRows() / 3), Why::Moved);
        }
        return true;
    }

    // ---- extending the window. Each keeps what is looked at where it is.

    int PageRows() const { return slow ? std::max(4 * kFillPage, kFill - model->rowCount()) : kFillPage; }

    bool Extend(bool down)
    {
        QElapsedTimer clock;
        clock.start();
        const int top = TopRow();
        ++quiet;
        int added = 0;
        try {
            added = down ? model->ExtendDown(PageRows()) : model->ExtendUp(PageRows());
        } catch (...) {
            --quiet;
            throw;
        }
        slow = slow || clock.elapsed() > kSlowMs;
        model->pageSize = PageRows();
        if (!down && added)
            SetTop(top + added);
        --quiet;
        return added > 0;
    }

    void Drop(bool fromTop, int rows)
    {
        const int top = TopRow();
        const int first = fromTop ? 0 : model->rowCount() - rows;
        const int current = q.currentIndex().row();
        ++quiet;
        if (current >= first && current < first + rows) {
            away = model->Rows()[current];
            q.selectionModel()->clear();
        }
        if (fromTop) {
            model->DropFirst(rows);
            SetTop(top - rows);
        } else {
            model->DropLast(rows);
        }
        --quiet;
    }

    int Cap() const
    {
        return std::clamp(kCellCap / std::max(1, int(model->Query().Fields().size())), kLeastWindowCap, kWindowCap);
    }

    // One step of work for the idle moments; false when there is nothing left to do.
    bool Step()
    {
        const int rows = model->rowCount();
        const int above = TopRow();
        const int below = rows - above - VisibleRows();
        if (!model->AtEnd() && below < kMargin)
            return Extend(true), true;
        if (!model->AtBegin() && above < kMargin)
            return Extend(false), true;
        if (rows > Cap()) {
            const int excess = rows - Cap() * 2 / 3;
            Drop(above > below, std::min(excess, std::max(above, below) - 2 * kMargin));
            return true;
        }
        if (rows < kFill && !(model->AtBegin() && model->AtEnd()))
            return Extend(!model->AtEnd() && (model->AtBegin() || below <= above)), true;
        return false;
    }

    void Work()
    {
        if (!source || model->halted)
            return;
        Guard([this] {
            if (Step()) {
                work.start();
                return;
            }
            if (model->AtBegin() && model->AtEnd()) {
                countDue = false;
                SetCount(model->rowCount());
            } else if (countDue) {
                counted = 0;
                countedTo.reset();
                counting.start(kCountDelayMs);
            }
        });
    }

    void Count()
    {
        if (!countDue)
            return;
        Guard([this] {
            const TGridQuery::Slice slice = model->Query().Count(countedTo, kCountSlice);
            counted += slice.rows;
            countedTo = slice.lastKey;
            if (slice.rows == kCountSlice) {
                counting.start(0);
                return;
            }
            countDue = false;
            SetCount(counted);
        });
    }

    // Runs what a user (or idle time) asked for; a failure is told, not thrown.
    template <class Job> bool Guard(Job job)
    {
        try {
            job();
            return true;
        } catch (const TDbError &error) {
            model->halted = true;
            work.stop();
            Q_EMIT q.QueryFailed(error.message);
            return false;
        }
    }

    // The same for a deed that replaces the rows: failing leaves everything as it was, reading ahead included.
    template <class Job> bool GuardChange(Job job)
    {
        try {
            job();
            return true;
        } catch (const TDbError &error) {
            Q_EMIT q.QueryFailed(error.message);
            return false;
        }
    }

    // Reads rows for a step of the cursor that would leave the window; brings a far focus back first.
    void PrepareStep(int rows)
    {
        Guard([&] {
            if (away)
                FocusRow(*away);
            while (rows > 0 && !model->halted && q.currentIndex().row() + rows >= model->rowCount() && Extend(true)) {
            }
            while (rows < 0 && !model->halted && q.currentIndex().row() + rows < 0 && Extend(false)) {
            }
        });
    }

    void Jump(bool toLast)
    {
        if (!model->Query().IsOpen())
            return;
        GuardChange([&] {
            const bool held = toLast ? model->AtEnd() : model->AtBegin();
            if (held && model->rowCount() > 0) {
                const int row = toLast ? model->rowCount() - 1 : 0;
                SetCurrent(row, q.currentIndex().column());
                SetTop(row);
                return;
            }
            const TGridQuery query = model->Query();
            Place place = toLast ? Place{} : FirstPlace(query);
            if (toLast) {
                place.window = {query.Last(kPage), false, true};
                place.window.atBegin = place.window.rows.size() < kPage;
                place.row = int(place.window.rows.size()) - 1;
                place.distance = VisibleRows() - 1;
            }
            Show(query, place, Why::Moved);
        });
    }

    // ---- columns

    QString ColumnId(int column) const
    {
        const QString &field = model->Columns()[column].field;
        int same = 1;
        for (int i = 0; i < column; ++i)
            same += model->Columns()[i].field.compare(field, Qt::CaseInsensitive) == 0;
        return same == 1 ? field : field + u'#' + QString::number(same);
    }

    int ColumnOf(QStringView id) const
    {
        for (int i = 0; i < model->columnCount(); ++i) {
            if (id.compare(ColumnId(i), Qt::CaseInsensitive) == 0)
                return i;
        }
        return -1;
    }

    void ApplyVisible(int column, bool visible)
    {
        ++quietLayout;
        model->SetShown(column, visible, model->Columns()[column].selectable);
        q.setColumnHidden(column, !visible);
        if (visible)
            q.setColumnWidth(column, widths[column]);
        --quietLayout;
        UpdateTickColumn();
        // A hidden column keeps no cursor.
        const QModelIndex current = q.currentIndex();
        if (current.isValid() && q.isColumnHidden(current.column()))
            SetCurrent(current.row(), -1);
    }

    void ApplyWidth(int column, int width)
    {
        ++quietLayout;
        widths[column] = std::clamp(width, kLeastWidth, kMostWidth);
        if (!q.isColumnHidden(column))
            q.setColumnWidth(column, widths[column]);
        --quietLayout;
    }

    void UpdateTickColumn() { model->SetTickColumn(multiSelect ? FirstShownColumn() : -1); }

    void ShowSortIndicator()
    {
        const QSignalBlocker blocker(q.horizontalHeader());
        q.horizontalHeader()->setSortIndicator(sortSection, order == TGridOrder::Ascending ? Qt::AscendingOrder
                                                                                           : Qt::DescendingOrder);
        q.horizontalHeader()->viewport()->update();
    }

    bool Sort(const QString &field, TGridOrder direction, int section)
    {
        const bool done = GuardChange([&] {
            if (source)
                Load(Query(*source, field, direction, filter), {}, Why::Reordered);
            sortField = field;
            order = direction;
            sortSection = section;
        });
        ShowSortIndicator();
        return done;
    }

    void SortByHeader(int section, Qt::SortOrder direction)
    {
        if (section < 0 || section >= model->columnCount())
            return;
        const TGridOrder wanted = direction == Qt::AscendingOrder ? TGridOrder::Ascending : TGridOrder::Descending;
        if (Sort(model->Columns()[section].field, wanted, section))
            Q_EMIT q.LayoutChanged();
    }

    // The text filter looks at the visible columns, so it changes with them.
    void Refilter()
    {
        if (source && !filter.isEmpty())
            GuardChange([this] { Load(Query(*source, sortField, order, filter), {}, Why::Refiltered); });
    }

    int ShownCount() const { return q.horizontalHeader()->count() - q.horizontalHeader()->hiddenSectionCount(); }

    void ShowColumnMenu(const QPoint &at)
    {
        delete menu;
        menu = new QMenu(&q);
        menu->setObjectName(QStringLiteral("mnuColumns"));
        menu->setAttribute(Qt::WA_DeleteOnClose);
        for (int i = 0; i < model->columnCount(); ++i) {
            const TGridColumn &column = model->Columns()[i];
            if (!column.selectable)
                continue;
            QAction *action = menu->addAction(QString(column.caption).replace(u'&', QLatin1String("&&")));
            action->setObjectName(QStringLiteral("mniColumn_") + ColumnId(i));
            action->setCheckable(true);
            action->setChecked(column.visible);
            action->setEnabled(!column.visible || ShownCount() > 1);
            QObject::connect(action, &QAction::triggered, &q, [this, i](bool on) {
                ApplyVisible(i, on);
                Refilter();
                Q_EMIT q.LayoutChanged();
            });
        }
        menu->addSeparator();
        QAction *fit = menu->addAction(TqsGrid::tr("Best Fit"));
        fit->setObjectName(QStringLiteral("mniBestFit"));
        QObject::connect(fit, &QAction::triggered, &q, [this] {
            for (int i = 0; i < model->columnCount(); ++i) {
                if (!q.isColumnHidden(i))
                    ApplyWidth(i, std::min(kMostBestFit,
                                           std::max(q.sizeHintForColumn(i), q.horizontalHeader()->sectionSizeHint(i))));
            }
            Q_EMIT q.LayoutChanged();
        });
        QAction *reset = menu->addAction(TqsGrid::tr("Reset Layout"));
        reset->setObjectName(QStringLiteral("mniResetLayout"));
        QObject::connect(reset, &QAction::triggered, &q, [this] {
            ApplyDefaults();
            if (sortField != defaultSort || order != defaultOrder)
                Sort(defaultSort, defaultOrder, ColumnOf(defaultSort));
            Refilter();
            Q_EMIT q.LayoutChanged();
        });
        menu->popup(at);
    }

    // Moves columns into this order (logical numbers); the rest follow as they stand.
    void ApplyOrder(const QList<int> &columns)
    {
        ++quietLayout;
        for (int visual = 0; visual < columns.size(); ++visual)
            q.horizontalHeader()->moveSection(q.horizontalHeader()->visualIndex(columns[visual]), visual);
        --quietLayout;
        UpdateTickColumn();
    }

    void ApplyDefaults()
    {
        QList<int> natural;
        for (int i = 0; i < defaults.size(); ++i) {
            natural += i;
            widths[i] = std::clamp(defaults[i].width * q.logicalDpiX() / 96, kLeastWidth, kMostWidth);
            ApplyVisible(i, defaults[i].visible);
            ApplyWidth(i, widths[i]);
        }
        ApplyOrder(natural);
    }
};

TqsGrid::TqsGrid(QWidget *parent)
    : QTableView(parent)
    , impl_(std::make_unique<Impl>(*this))
{
    setModel(impl_->model);
    setItemDelegate(new TGridDelegate(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setVerticalScrollMode(ScrollPerItem); // the scroll bar then counts rows
    setHorizontalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(std::max(fontMetrics().height() + 6, 18));

    QHeaderView *header = horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionsClickable(true);
    header->setSectionsMovable(true);
    header->setFirstSectionMovable(true);
    header->setSortIndicatorShown(true);
    header->setMinimumSectionSize(kLeastWidth);
    header->setResizeContentsPrecision(200);
    header->setTextElideMode(Qt::ElideRight);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QHeaderView::sortIndicatorChanged, this,
            [this](int section, Qt::SortOrder order) { impl_->SortByHeader(section, order); });
    connect(header, &QHeaderView::sectionResized, this, [this](int column, int, int width) {
        if (width > 0 && column < impl_->widths.size() && impl_->quietLayout == 0) {
            impl_->widths[column] = width;
            Q_EMIT LayoutChanged();
        }
    });
    connect(header, &QHeaderView::sectionMoved, this, [this] {
        if (impl_->quietLayout == 0) {
            impl_->UpdateTickColumn();
            Q_EMIT LayoutChanged();
        }
    });
    connect(header, &QHeaderView::customContextMenuRequested, this,
            [this, header](const QPoint &at) { impl_->ShowColumnMenu(header->viewport()->mapToGlobal(at)); });

    impl_->work.setSingleShot(true);
    impl_->work.setInterval(0);
    connect(&impl_->work, &QTimer::timeout, this, [this] { impl_->Work(); });
    impl_->counting.setSingleShot(true);
    connect(&impl_->counting, &QTimer::timeout, this, [this] { impl_->Count(); });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        if (impl_->quiet == 0)
            impl_->work.start();
    });
    connect(impl_->model, &QAbstractItemModel::rowsInserted, this, [this] {
        const int row = impl_->away ? impl_->model->RowOfKey(impl_->away->key) : -1;
        if (row < 0)
            return;
        ++impl_->quiet;
        impl_->SetCurrent(row, -1);
        --impl_->quiet;
    });
    connect(impl_->model, &TqsGridModel::TicksChanged, this, &TqsGrid::TicksChanged);
    // Queued: the view is in the middle of its layout when it fetches.
    connect(impl_->model, &TqsGridModel::FetchFailed, this, &TqsGrid::QueryFailed, Qt::QueuedConnection);
    connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex &index) {
        if (index.isValid())
            Q_EMIT RecordActivated(FocusedKey());
    });
}

TqsGrid::~TqsGrid() = default;

void TqsGrid::SetColumns(const QList<TGridColumn> &columns, const QString &sortField, TGridOrder order)
{
    ++impl_->quietLayout;
    impl_->defaults = columns;
    impl_->defaultSort = impl_->sortField = sortField;
    impl_->defaultOrder = impl_->order = order;
    impl_->widths.fill(kLeastWidth, columns.size());
    impl_->source.reset();
    impl_->model->SetColumns(columns);
    impl_->ApplyDefaults();
    impl_->sortSection = impl_->ColumnOf(sortField);
    impl_->ShowSortIndicator();
    --impl_->quietLayout;
}

const QList<TGridColumn> &TqsGrid::Columns() const
{
    return impl_->model->Columns();
}

void TqsGrid::SetColumnCaption(QStringView field, const QString &caption)
{
    if (const int column = impl_->ColumnOf(field); column >= 0) {
        impl_->model->SetCaption(column, caption);
        impl_->defaults[column].caption = caption;
    }
}

void TqsGrid::SetColumnVisible(QStringView field, bool visible, bool selectable)
{
    const int column = impl_->ColumnOf(field);
    if (column < 0)
        return;
    impl_->defaults[column].visible = visible;
    impl_->defaults[column].selectable = selectable;
    impl_->model->SetShown(column, visible, selectable);
    impl_->ApplyVisible(column, visible);
    impl_->Refilter();
}

void TqsGrid::SortBy(const QString &field, TGridOrder order)
{
    impl_->Sort(field, order, impl_->ColumnOf(field));
}

void TqsGrid::OpenList(const TListSource &source)
{
    const TGridQuery query = impl_->Query(source, impl_->sortField, impl_->order, impl_->filter);
    Impl::Place place = impl_->FirstPlace(query);
    impl_->source = source;
    impl_->sibling.reset();
    impl_->lost.reset();
    impl_->Show(query, std::move(place), Impl::Why::Refiltered);
}

void TqsGrid::ReReadList(const TListSource &source, bool locate, int key)
{
    const TGridQuery query = impl_->Query(source, impl_->sortField, impl_->order, impl_->filter);
    const QList<int> ticked = impl_->model->Ticked();
    const QList<int> kept = ticked.isEmpty() ? ticked : query.Existing(ticked);
    Impl::Place place = impl_->Find(query, locate ? std::optional(key) : std::nullopt, Impl::Why::ReRead);
    impl_->source = source;
    impl_->Show(query, std::move(place), Impl::Why::ReRead);
    impl_->model->SetTicked(kept);
}

bool TqsGrid::HasCurrent() const
{
    return impl_->Focused() != nullptr;
}

QVariant TqsGrid::CurrentValue(QStringView field) const
{
    const TGridRow *row = impl_->Focused();
    const int index = impl_->model->Query().FieldIndex(field);
    return row && index >= 0 ? row->values.value(index) : QVariant();
}

bool TqsGrid::RecordFocused(bool) const
{
    return HasCurrent();
}

int TqsGrid::FocusedKey() const
{
    const TGridRow *row = impl_->Focused();
    return row ? row->key : 0;
}

bool TqsGrid::FocusKey(int key)
{
    if (!impl_->model->Query().IsOpen())
        return false;
    bool found = false;
    impl_->GuardChange([&] {
        const int held = impl_->model->RowOfKey(key);
        const std::optional<TGridRow> row = held >= 0 ? impl_->model->Rows()[held] : impl_->model->Query().At(key);
        found = row && impl_->FocusRow(*row);
    });
    return found;
}

void TqsGrid::JumpToFirst()
{
    impl_->Jump(false);
}

void TqsGrid::JumpToLast()
{
    impl_->Jump(true);
}

void TqsGrid::GetSiblingForDelete()
{
    impl_->sibling.reset();
    impl_->deletedKey = FocusedKey();
    const TGridRow *row = impl_->Focused();
    if (!row)
        return;
    impl_->GuardChange([&] {
        const int current = currentIndex().row();
        const QList<TGridRow> &rows = impl_->model->Rows();
        const TGridQuery &query = impl_->model->Query();
        if (current >= 0 && current + 1 < rows.size()) {
            impl_->sibling = rows[current + 1];
        } else if (const QList<TGridRow> next = query.After(*row, 1); !next.isEmpty()) {
            impl_->sibling = next.first();
        } else if (current > 0) {
            impl_->sibling = rows[current - 1];
        } else if (const QList<TGridRow> previous = query.Before(*row, 1); !previous.isEmpty()) {
            impl_->sibling = previous.first();
        }
    });
}

void TqsGrid::SetSiblingAfterDelete()
{
    const std::optional<TGridRow> sibling = std::exchange(impl_->sibling, std::nullopt);
    const int deleted = std::exchange(impl_->deletedKey, 0);
    if (!impl_->model->Query().IsOpen())
        return;
    impl_->GuardChange([&] {
        const bool gone = deleted && !impl_->model->Query().At(deleted);
        ++impl_->quiet;
        if (sibling && impl_->model->Query().At(sibling->key))
            impl_->FocusRow(*sibling);
        if (const int row = gone ? impl_->model->RowOfKey(deleted) : -1; row >= 0) {
            // Until the list is read again it must not show what is no longer there.
            impl_->model->RemoveRowAt(row);
            if (impl_->count > 0)
                impl_->SetCount(impl_->count - 1);
        }
        --impl_->quiet;
        if (gone) {
            QList<int> ticked = impl_->model->Ticked();
            if (ticked.removeOne(deleted))
                impl_->model->SetTicked(ticked);
        }
        impl_->Announce();
    });
}

bool TqsGrid::Search(const QString &text, bool next, bool backwards)
{
    if (text.isEmpty() || !impl_->model->Query().IsOpen())
        return false;
    bool found = false;
    impl_->GuardChange([&] {
        const TGridQuery query = impl_->model->Query();
        const QList<TGridColumn> columns = impl_->ShownColumns();
        std::optional<TGridRow> row;
        if (const TGridRow *from = impl_->Focused())
            row = query.Find(text, columns, from, !next, backwards);
        if (!row)
            row = query.Find(text, columns, nullptr, true, backwards);
        found = row && impl_->FocusRow(*row);
    });
    return found;
}

void TqsGrid::SetTextFilter(const QString &text)
{
    if (text == impl_->filter)
        return;
    impl_->GuardChange([&] {
        if (impl_->source)
            impl_->Load(impl_->Query(*impl_->source, impl_->sortField, impl_->order, text), {}, Impl::Why::Refiltered);
        impl_->filter = text;
    });
}

QString TqsGrid::TextFilter() const
{
    return impl_->filter;
}

void TqsGrid::SetMultiSelect(bool on)
{
    impl_->multiSelect = on;
    impl_->UpdateTickColumn();
    if (!on)
        impl_->model->SetTicked({});
}

bool TqsGrid::MultiSelect() const
{
    return impl_->multiSelect;
}

QList<int> TqsGrid::TickedKeys() const
{
    return impl_->model->Ticked();
}

void TqsGrid::SetTickedKeys(const QList<int> &keys)
{
    impl_->model->SetTicked(keys);
}

QVariantMap TqsGrid::SaveLayout() const
{
    QVariantList columns;
    for (int visual = 0; visual < horizontalHeader()->count(); ++visual) {
        const int column = horizontalHeader()->logicalIndex(visual);
        columns += QVariantMap{{QStringLiteral("field"), impl_->ColumnId(column)},
                               {QStringLiteral("width"), impl_->widths[column]},
                               {QStringLiteral("visible"), impl_->model->Columns()[column].visible}};
    }
    return {{QStringLiteral("columns"), columns},
            {QStringLiteral("sort"), impl_->sortField},
            {QStringLiteral("descending"), impl_->order == TGridOrder::Descending}};
}

void TqsGrid::RestoreLayout(const QVariantMap &layout)
{
    QList<int> order;
    QList<bool> visible;
    for (const TGridColumn &column : impl_->model->Columns())
        visible += column.visible;
    for (const QVariant &item : layout.value(QStringLiteral("columns")).toList()) {
        const QVariantMap entry = item.toMap();
        const int column = impl_->ColumnOf(entry.value(QStringLiteral("field")).toString());
        if (column < 0 || order.contains(column))
            continue;
        order += column;
        if (const int width = entry.value(QStringLiteral("width")).toInt(); width > 0)
            impl_->ApplyWidth(column, width);
        // Internal columns are not for a layout to show.
        if (impl_->model->Columns()[column].selectable && entry.contains(QStringLiteral("visible")))
            visible[column] = entry.value(QStringLiteral("visible")).toBool();
    }
    if (visible.contains(true)) {
        for (int i = 0; i < visible.size(); ++i)
            impl_->ApplyVisible(i, visible[i]);
    }
    impl_->ApplyOrder(order);

    const QString sort = layout.value(QStringLiteral("sort")).toString();
    const int section = impl_->ColumnOf(sort);
    const TGridOrder direction =
        layout.value(QStringLiteral("descending")).toBool() ? TGridOrder::Descending : TGridOrder::Ascending;
    if (section >= 0 && (sort != impl_->sortField || direction != impl_->order))
        impl_->Sort(sort, direction, section);
    impl_->Refilter();
}

qlonglong TqsGrid::RecordCount() const
{
    return impl_->count;
}

void TqsGrid::CopyToClipboard() const
{
    const TGridRow *row = impl_->Focused();
    if (!row)
        return;
    QStringList captions, values;
    for (const TGridColumn &column : impl_->ShownColumns()) {
        captions += column.caption;
        values += DisplayText(column, row->values.value(impl_->model->Query().FieldIndex(column.field)));
    }
    for (QStringList *line : {&captions, &values}) {
        for (QString &text : *line)
            text.replace(u'\t', u' ')
                .replace(QLatin1String("\r\n"), QLatin1String(" "))
                .replace(u'\n', u' ')
                .replace(u'\r', u' ');
    }
    QApplication::clipboard()->setText(captions.join(u'\t') + u'\n' + values.join(u'\t') + u'\n');
}

void TqsGrid::ExportCsv(QIODevice &device) const
{
    const auto write = [&device](const QStringList &fields) {
        const QByteArray line = (fields.join(u',') + QLatin1String("\r\n")).toUtf8();
        if (device.write(line) != line.size())
            throw TDbError(TDbError::Kind::Other, 0, device.errorString());
    };
    const TGridQuery query = impl_->model->Query();
    const QList<TGridColumn> columns = impl_->ShownColumns();
    QStringList line;
    for (const TGridColumn &column : columns)
        line += CsvField(column.caption);
    write(line);
    if (!query.IsOpen())
        return;
    QList<int> fields;
    for (const TGridColumn &column : columns)
        fields += query.FieldIndex(column.field);
    QList<TGridRow> rows = query.First(kExportPage);
    while (!rows.isEmpty()) {
        for (const TGridRow &row : std::as_const(rows)) {
            line.clear();
            for (int i = 0; i < columns.size(); ++i)
                line += CsvField(DisplayText(columns[i], row.values.value(fields[i])));
            write(line);
        }
        if (rows.size() < kExportPage)
            break;
        const TGridRow last = rows.last();
        rows = query.After(last, kExportPage);
    }
}

QString TqsGrid::DisplayText(const TGridColumn &column, const QVariant &value) const
{
    return GridText(column, value);
}

QModelIndex TqsGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const int page = impl_->VisibleRows();
    if (impl_->model->rowCount() > 0 && (currentIndex().isValid() || impl_->away)) {
        switch (action) {
        case MoveDown:
            impl_->PrepareStep(1);
            break;
        case MovePageDown:
            impl_->PrepareStep(page);
            break;
        case MoveUp:
            impl_->PrepareStep(-1);
            break;
        case MovePageUp:
            impl_->PrepareStep(-page);
            break;
        default:
            break;
        }
    }
    return QTableView::moveCursor(action, modifiers);
}

// A click beside the rows leaves the focused one selected: it is still the one that the actions work on.
QItemSelectionModel::SelectionFlags TqsGrid::selectionCommand(const QModelIndex &index, const QEvent *) const
{
    return index.isValid() ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                           : QItemSelectionModel::SelectionFlags(QItemSelectionModel::NoUpdate);
}

void TqsGrid::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy)) {
        CopyToClipboard();
        event->accept();
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool plain = modifiers == Qt::NoModifier;
    const bool plainOrCtrl = plain || modifiers == Qt::ControlModifier;
    if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        if (HasCurrent())
            Q_EMIT RecordActivated(FocusedKey());
        event->accept();
    } else if (plain && event->key() == Qt::Key_Space && MultiSelect()) {
        if (impl_->away)
            impl_->GuardChange([this] { impl_->FocusRow(*impl_->away); });
        if (currentIndex().isValid())
            impl_->model->ToggleTick(currentIndex().row());
        event->accept();
    } else if (plainOrCtrl && event->key() == Qt::Key_Home) {
        JumpToFirst();
        event->accept();
    } else if (plainOrCtrl && event->key() == Qt::Key_End) {
        JumpToLast();
        event->accept();
    } else {
        QTableView::keyPressEvent(event);
    }
}

void TqsGrid::keyboardSearch(const QString &search)
{
    if (search.isEmpty() || !search.at(0).isPrint())
        return;
    if (!impl_->typedAt.isValid() || impl_->typedAt.elapsed() > QGuiApplication::styleHints()->keyboardInputInterval())
        impl_->typed.clear();
    impl_->typedAt.start();
    impl_->typed += search;
    Search(impl_->typed, false);
}

void TqsGrid::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    impl_->work.start();
}

void TqsGrid::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    if (impl_ && impl_->quiet == 0) {
        if (current.isValid())
            impl_->away.reset();
        impl_->Announce();
    }
}
