// SPDX-License-Identifier: Apache-2.0
#include <QAbstractTableModel>
#include <QAction>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollBar>
#include <QSet>
#include <QTreeView>
#include <QWheelEvent>

#include "framework/data/CorvexADOQuery.h"
#include "framework/editors/DecimalText.h"
#include "framework/editors/Editors.h"
#include "framework/grid/qsGridQuery.h"

namespace {

constexpr int kAtOnce = 500;            // rows read at most by one statement
constexpr qint64 kTypingPauseMs = 1500; // what is typed after a longer pause begins a new search

QString LookupText(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("Yes") : QStringLiteral("No");
    case QMetaType::Double:
        return DecimalDigits(value.toDouble());
    case QMetaType::QDateTime:
    case QMetaType::QDate:
        return QLocale().toString(value.toDate(), QLocale::ShortFormat);
    default:
        return value.toString();
    }
}

QString StartPattern(const QString &text)
{
    QString pattern;
    for (const QChar c : text) {
        if (c == u'%' || c == u'_' || c == u'[' || c == u'\\')
            pattern += u'\\';
        pattern += c;
    }
    return pattern + u'%';
}

// The rows that are held: a stretch of the choices in their order, and in front of it the chosen record when it lies
// outside the stretch (or exists no more: then it has no values and shows its id).
class TLookupModel final : public QAbstractTableModel
{
public:
    using QAbstractTableModel::QAbstractTableModel;

    QStringList headings;
    bool moreBefore = false, moreAfter = false;

    bool IsWindow() const { return moreBefore || moreAfter; }
    const QList<TGridRow> &Rows() const { return rows_; }
    const std::optional<TGridRow> &Pinned() const { return pinned_; }

    int RowOf(int key) const
    {
        if (pinned_ && pinned_->key == key)
            return 0;
        for (int i = 0; i < rows_.size(); ++i) {
            if (rows_[i].key == key)
                return i + (pinned_ ? 1 : 0);
        }
        return -1;
    }
    const TGridRow *At(int row) const
    {
        if (pinned_ && row == 0)
            return &*pinned_;
        const int index = row - (pinned_ ? 1 : 0);
        return index >= 0 && index < rows_.size() ? &rows_[index] : nullptr;
    }

    void Reset(const QList<TGridRow> &rows, bool before, bool after, const std::optional<TGridRow> &pinned = {})
    {
        beginResetModel();
        rows_ = rows;
        moreBefore = before;
        moreAfter = after;
        pinned_ = pinned;
        endResetModel();
    }
    void Pin(const TGridRow &row)
    {
        if (pinned_) {
            pinned_ = row;
            Q_EMIT dataChanged(index(0, 0), index(0, columnCount({}) - 1));
            return;
        }
        beginInsertRows({}, 0, 0);
        pinned_ = row;
        endInsertRows();
    }
    void Unpin()
    {
        beginRemoveRows({}, 0, 0);
        pinned_.reset();
        endRemoveRows();
    }
    void Prepend(QList<TGridRow> rows)
    {
        DropPinnedOf(rows);
        if (rows.isEmpty())
            return;
        const int first = pinned_ ? 1 : 0;
        beginInsertRows({}, first, first + int(rows.size()) - 1);
        rows_ = rows + rows_;
        endInsertRows();
    }
    void Append(QList<TGridRow> rows)
    {
        DropPinnedOf(rows);
        if (rows.isEmpty())
            return;
        const int first = rowCount({});
        beginInsertRows({}, first, first + int(rows.size()) - 1);
        rows_ += rows;
        endInsertRows();
    }

    int rowCount(const QModelIndex &parent) const override
    {
        return parent.isValid() ? 0 : int(rows_.size()) + (pinned_ ? 1 : 0);
    }
    int columnCount(const QModelIndex &parent) const override
    {
        return parent.isValid() ? 0 : qMax(1, int(headings.size()));
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        const TGridRow *row = At(index.row());
        if (!row)
            return {};
        if (role == Qt::UserRole)
            return row->key;
        if (role != Qt::DisplayRole && role != Qt::EditRole)
            return {};
        if (row->values.isEmpty())
            return index.column() == 0 ? QVariant(QStringLiteral("#%1").arg(row->key)) : QVariant();
        return LookupText(row->values.value(index.column()));
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
            return headings.value(section);
        return {};
    }

private:
    // The stretch grows over the chosen record: the record keeps its place in front, and stands only there.
    void DropPinnedOf(QList<TGridRow> &rows) const
    {
        if (pinned_)
            rows.removeIf([this](const TGridRow &row) { return row.key == pinned_->key; });
    }

    QList<TGridRow> rows_;
    std::optional<TGridRow> pinned_;
};

// Shift for a capital is part of the typing.
bool IsModifier(const QKeyEvent *event)
{
    return event->text().isEmpty() && event->key() >= Qt::Key_Shift && event->key() <= Qt::Key_ScrollLock;
}

} // namespace

// The drop-down. It hands typing and the ends of a long list to the combo box, which alone knows how to read.
class TLookupView final : public QTreeView
{
public:
    explicit TLookupView(QWidget *parent)
        : QTreeView(parent)
    {
        setRootIsDecorated(false);
        setItemsExpandable(false);
        setUniformRowHeights(true);
        setAllColumnsShowFocus(true);
        setSelectionBehavior(SelectRows);
        header()->setSectionsClickable(false);
        header()->setStretchLastSection(true);
    }
    std::function<void(const QString &)> Type;
    std::function<void(bool last)> Jump;
    std::function<void()> Move; // by any other key

    void keyboardSearch(const QString &text) override { Type(text); }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Home || event->key() == Qt::Key_End) {
            Jump(event->key() == Qt::Key_End);
            return;
        }
        if (!IsModifier(event) && (event->text().isEmpty() || !event->text().at(0).isPrint()))
            Move();
        QTreeView::keyPressEvent(event);
    }
};

struct TqsLookupCombo::Impl
{
    TqsLookupCombo *combo;
    TLookupModel *model;
    TLookupView *view;
    TLookupSource source;
    TGridQuery query;
    bool loaded = false;
    bool mayBeEmpty = true;
    bool changing = false; // the rows change under the current index; the key does not
    int key = 0;
    TGridRow chosen; // the record of `key`; without values when the choices do not hold it
    QString typed;
    QElapsedTimer typedAt;

    // The query that reads the choices, or those of them that meet a further criterion, in their order or in that of a
    // column.
    TGridQuery Query(const QString &criterion = {}, const TDbParams &params = {}, const QString &orderBy = {}) const
    {
        TListSource list;
        list.from = source.from;
        list.key = source.key;
        list.where = source.where;
        list.params = source.params;
        if (!criterion.isEmpty())
            list.where =
                list.where.trimmed().isEmpty() ? criterion : u'(' + list.where + QStringLiteral(") and ") + criterion;
        list.params.insert(params);
        QList<TGridColumn> columns;
        for (const auto &[field, heading] : source.columns)
            columns.append(TGridColumn{.field = field, .caption = heading});
        QString order = orderBy.isEmpty() ? source.orderBy.trimmed() : orderBy;
        TGridOrder direction = TGridOrder::Ascending;
        if (order.endsWith(QLatin1String(" desc"), Qt::CaseInsensitive)) {
            order = order.chopped(5).trimmed();
            direction = TGridOrder::Descending;
        }
        if (order.isEmpty() && !source.columns.isEmpty())
            order = source.columns.first().first;
        return TGridQuery(list, columns, order, direction, {}, {});
    }

    void EnsureLoaded()
    {
        if (!loaded && !source.from.isEmpty())
            Load();
    }

    void Load()
    {
        QList<TGridRow> rows = query.First(kAtOnce + 1);
        const bool more = rows.size() > kAtOnce;
        if (more)
            rows.removeLast();
        loaded = true;
        Replace(rows, false, more, true);
        Choose(key);
    }

    // New rows in place of those held. With `keep` the chosen record stays the current one wherever it lies; else
    // nothing is current.
    void Replace(const QList<TGridRow> &rows, bool before, bool after, bool keep)
    {
        std::optional<TGridRow> pinned;
        if (keep && key != 0 && chosen.key == key && !chosen.values.isEmpty() && (before || after) &&
            std::none_of(rows.begin(), rows.end(), [this](const TGridRow &row) { return row.key == key; }))
            pinned = chosen;
        changing = true;
        model->Reset(rows, before, after, pinned);
        combo->setCurrentIndex(key == 0 ? -1 : model->RowOf(key));
        changing = false;
    }

    // After a search in the drop-down the chosen record may stand out of its place, in front of the others.
    void Settle()
    {
        if (!model->Pinned() || model->Pinned()->values.isEmpty())
            return;
        changing = true;
        if (key == model->Pinned()->key) {
            model->Reset({chosen}, true, true);
            combo->setCurrentIndex(0);
        } else {
            model->Unpin();
        }
        changing = false;
    }

    // Makes the record of an id the current one, reading it when it is not among the rows held.
    void Choose(int id)
    {
        changing = true;
        if (model->Pinned() && model->Pinned()->key != id)
            model->Unpin();
        int row = id == 0 ? -1 : model->RowOf(id);
        if (id != 0 && row < 0) {
            TGridRow record{id, {}};
            if (model->IsWindow()) {
                changing = false;
                if (const std::optional<TGridRow> found = query.At(id)) {
                    record = *found;
                    changing = true;
                    model->Reset({record}, true, true);
                }
                changing = true;
            }
            row = model->RowOf(id);
            if (row < 0) {
                model->Pin(record);
                row = 0;
            }
        }
        combo->setCurrentIndex(row);
        changing = false;
        SetChosen(row);
    }

    // Takes the row over as the value.
    void SetChosen(int row)
    {
        const TGridRow *record = model->At(row);
        chosen = record ? *record : TGridRow();
        if (chosen.key == key)
            return;
        key = chosen.key;
        Q_EMIT combo->ValueChanged();
    }

    void Extend(bool after, int count)
    {
        const QList<TGridRow> &rows = model->Rows();
        if (rows.isEmpty() || !(after ? model->moreAfter : model->moreBefore))
            return;
        const QList<TGridRow> next = after ? query.After(rows.last(), count) : query.Before(rows.first(), count);
        changing = true;
        (after ? model->moreAfter : model->moreBefore) = next.size() == count;
        if (after)
            model->Append(next);
        else
            model->Prepend(next);
        changing = false;
    }

    // Neighbours of a record that was read alone.
    void FillAround(int row)
    {
        const int margin = 30; // more than a page of the drop-down
        if (model->rowCount({}) - row < margin)
            Extend(true, kAtOnce / 2);
        if (row < margin)
            Extend(false, kAtOnce / 2);
    }

    void JumpTo(bool last, bool keep)
    {
        if (last ? model->moreAfter : model->moreBefore)
            Replace(last ? query.Last(kAtOnce) : query.First(kAtOnce), last, !last, keep);
    }

    // The row of the first choice that starts with a text, in the first column that has one; -1: none. Longer lists are
    // searched by the database, and the rows held become those around the one found.
    int Find(const QString &text, int after, bool keep)
    {
        if (!model->IsWindow()) {
            const int count = model->rowCount({});
            for (int column = 0; column < source.columns.size(); ++column) {
                for (int i = 0; i < count; ++i) {
                    const int row = (after + 1 + i) % count;
                    const QString value = model->index(row, column).data().toString();
                    if (value.startsWith(text, Qt::CaseInsensitive))
                        return row;
                }
            }
            return -1;
        }
        for (const auto &[field, heading] : std::as_const(source.columns)) {
            // Ordered by the column itself, so that its index finds the text whether there are any such rows or not.
            const QList<TGridRow> found = Query(field + QStringLiteral(" like :LookupTyped escape '\\'"),
                                                {{QStringLiteral("LookupTyped"), StartPattern(text)}}, field)
                                              .First(1);
            if (found.isEmpty())
                continue;
            if (const int row = model->RowOf(found.first().key); row >= 0)
                return row;
            Replace(found, true, true, keep);
            return model->RowOf(found.first().key);
        }
        return -1;
    }

    // One more character typed; `current` is the row that stands out now. Gives the row to stand on, -1 to stay. `keep`
    // as in Replace.
    int Type(const QString &text, int current, bool keep)
    {
        if (!typedAt.isValid() || typedAt.elapsed() > kTypingPauseMs)
            typed.clear();
        typedAt.start();
        typed += text;
        // The same letter again and again walks through what begins with it.
        const bool repeated = typed.size() > 1 && typed.count(typed[0], Qt::CaseInsensitive) == typed.size();
        int row = Find(typed, -1, keep);
        if (row < 0 && repeated)
            row = Find(typed.left(1), current, keep);
        if (row < 0)
            typed.chop(text.size());
        return row;
    }

    bool IsTyping() const { return !typed.isEmpty() && typedAt.isValid() && typedAt.elapsed() <= kTypingPauseMs; }

    // Runs what the user asked for; what goes wrong in the database is shown to him.
    template <class Work> void Guarded(Work &&work)
    {
        try {
            work();
        } catch (const TDbError &error) {
            changing = false;
            PresentError(error);
        }
    }

    void OnScrolled(int value)
    {
        if (changing || !view->isVisible())
            return;
        const QScrollBar *bar = view->verticalScrollBar();
        Guarded([&] {
            if (value >= bar->maximum() && model->moreAfter) {
                Extend(true, kAtOnce);
            } else if (value <= bar->minimum() && model->moreBefore) {
                const QPersistentModelIndex top = view->indexAt(QPoint(1, 1));
                Extend(false, kAtOnce);
                view->scrollTo(top, QAbstractItemView::PositionAtTop);
            }
        });
    }
};

TqsLookupCombo::TqsLookupCombo(QWidget *parent)
    : QComboBox(parent)
    , impl_(std::make_unique<Impl>())
{
    impl_->combo = this;
    impl_->model = new TLookupModel(this);
    impl_->view = new TLookupView(this);
    // A plain list below the box, as long lists need it, in every style.
    setStyleSheet(QStringLiteral("QComboBox { combobox-popup: 0; }"));
    setMaxVisibleItems(16);
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(18);
    setModel(impl_->model);
    setView(impl_->view);
    ShowReadable(this);

    auto *clear = new QAction(tr("Clear"), this);
    clear->setObjectName(QStringLiteral("mniClear"));
    addAction(clear);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(clear, &QAction::triggered, this, [this] { SetKey(0); });

    connect(this, &QComboBox::currentIndexChanged, this, [this](int row) {
        if (!impl_->changing)
            impl_->SetChosen(row);
    });
    connect(impl_->view->verticalScrollBar(), &QScrollBar::valueChanged, this,
            [this](int value) { impl_->OnScrolled(value); });
    impl_->view->Type = [this](const QString &text) {
        impl_->Guarded([&] {
            int row = impl_->Type(text, impl_->view->currentIndex().row(), true);
            if (row < 0)
                return;
            const int key = impl_->model->At(row)->key;
            impl_->FillAround(row);
            row = impl_->model->RowOf(key);
            impl_->view->setCurrentIndex(impl_->model->index(row, 0));
        });
    };
    impl_->view->Move = [this] { impl_->typed.clear(); };
    impl_->view->Jump = [this](bool last) {
        impl_->typed.clear();
        impl_->Guarded([&] {
            impl_->JumpTo(last, true);
            const int first = impl_->model->Pinned() ? 1 : 0;
            impl_->view->setCurrentIndex(impl_->model->index(last ? impl_->model->rowCount({}) - 1 : first, 0));
        });
    };
}

TqsLookupCombo::~TqsLookupCombo() = default;

void TqsLookupCombo::SetSource(const TLookupSource &source)
{
    impl_->source = source;
    impl_->query = impl_->Query();
    impl_->model->headings.clear();
    for (const auto &[field, heading] : source.columns)
        impl_->model->headings += heading;
    impl_->view->setHeaderHidden(std::all_of(impl_->model->headings.cbegin(), impl_->model->headings.cend(),
                                             [](const QString &heading) { return heading.isEmpty(); }));
    impl_->chosen = {};
    impl_->typed.clear();
    if (impl_->loaded || isVisible()) {
        impl_->Load();
    } else if (impl_->key != 0) {
        impl_->EnsureLoaded();
    }
}

void TqsLookupCombo::SetMayBeEmpty(bool may)
{
    impl_->mayBeEmpty = may;
    setContextMenuPolicy(may ? Qt::ActionsContextMenu : Qt::DefaultContextMenu);
}

void TqsLookupCombo::Reload()
{
    impl_->Load();
}

int TqsLookupCombo::Key() const
{
    return impl_->key;
}

void TqsLookupCombo::SetKey(int key)
{
    impl_->typed.clear();
    if (key != 0)
        impl_->EnsureLoaded();
    impl_->Choose(key);
}

QVariant TqsLookupCombo::Field(QStringView field) const
{
    if (impl_->key == 0 || impl_->chosen.values.isEmpty())
        return {};
    if (const int index = impl_->query.FieldIndex(field); index >= 0)
        return impl_->chosen.values.value(index);
    TDbParams params{{QStringLiteral("LookupKey"), impl_->key}};
    for (auto param = impl_->source.params.cbegin(); param != impl_->source.params.cend(); ++param) {
        if (impl_->source.from.contains(u':' + param.key(), Qt::CaseInsensitive))
            params.insert(param.key(), param.value());
    }
    const TDbRows rows =
        MainConnection().Select(QStringLiteral("select %1 as LookupValue from %2 where %3 = :LookupKey")
                                    .arg(field, impl_->source.from, impl_->source.key),
                                params);
    return rows.isEmpty() ? QVariant() : rows.Value(0, u"LookupValue");
}

void TqsLookupCombo::keyPressEvent(QKeyEvent *event)
{
    impl_->Settle();
    const int key = event->key();
    if (IsModifier(event)) {
        QComboBox::keyPressEvent(event);
        return;
    }
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
        if (impl_->mayBeEmpty && plain)
            SetKey(0);
        return;
    }
    const QString text = event->text();
    if (plain && !text.isEmpty() && text[0].isPrint() && (text[0] != u' ' || impl_->IsTyping())) {
        impl_->Guarded([&] {
            impl_->EnsureLoaded();
            if (const int row = impl_->Type(text, currentIndex(), false); row >= 0)
                setCurrentIndex(row);
        });
        return;
    }
    impl_->typed.clear();
    impl_->Guarded([&] {
        impl_->EnsureLoaded();
        if (key == Qt::Key_Home || key == Qt::Key_End)
            impl_->JumpTo(key == Qt::Key_End, false);
        else if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown)
            impl_->FillAround(currentIndex());
    });
    QComboBox::keyPressEvent(event);
}

void TqsLookupCombo::showPopup()
{
    impl_->typed.clear();
    impl_->Settle();
    impl_->Guarded([this] {
        impl_->EnsureLoaded();
        impl_->FillAround(currentIndex());
    });
    int width = impl_->view->verticalScrollBar()->sizeHint().width() + 2 * impl_->view->frameWidth();
    for (int column = 0; column < impl_->model->columnCount({}); ++column) {
        impl_->view->resizeColumnToContents(column);
        width += impl_->view->columnWidth(column);
    }
    const int available = screen() ? screen()->availableGeometry().width() * 9 / 10 : width;
    impl_->view->setMinimumWidth(qMin(width, available));
    QComboBox::showPopup();
}

void TqsLookupCombo::showEvent(QShowEvent *event)
{
    // An error here must not open a box in the middle of showing the window.
    if (!impl_->loaded && !impl_->source.from.isEmpty()) {
        try {
            impl_->Load();
        } catch (const TDbError &error) {
            const auto shared = std::make_shared<TDbError>(error);
            QMetaObject::invokeMethod(
                this, [shared] { PresentError(*shared); }, Qt::QueuedConnection);
        }
    }
    QComboBox::showEvent(event);
}

void TqsLookupCombo::wheelEvent(QWheelEvent *event)
{
    // A wheel that scrolls the form must not change a value on its way.
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}
