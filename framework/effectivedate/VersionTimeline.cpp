// SPDX-License-Identifier: Apache-2.0
#include "framework/effectivedate/VersionTimeline.h"

#include <QAccessible>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTableWidget>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>

#include "framework/effectivedate/EditingController.h"

namespace {

enum class TState { Past, InForce, Future, Deleted };

TState StateOf(const TTimelineVersion &version, const QDate &today)
{
    if (version.deleted)
        return TState::Deleted;
    if (version.start > today)
        return TState::Future;
    return version.end.isValid() && version.end < today ? TState::Past : TState::InForce;
}

QString StateText(TState state)
{
    switch (state) {
    case TState::Past:
        return TVersionTimeline::tr("Past");
    case TState::InForce:
        return TVersionTimeline::tr("In force");
    case TState::Future:
        return TVersionTimeline::tr("Future");
    case TState::Deleted:
        return TVersionTimeline::tr("Deleted");
    }
    return {};
}

QString By(const QString &agent, const QDate &day)
{
    if (agent.isEmpty())
        return day.isValid() ? MessageDate(day) : QString();
    return day.isValid() ? TVersionTimeline::tr("%1, %2").arg(agent, MessageDate(day)) : agent;
}

constexpr int kMargin = 12;
constexpr int kBlockHeight = 30;
constexpr int kDeletedHeight = 14;
constexpr int kTableHeight = 130;
constexpr int kLeastWidth = 26; // so that a version of a few days can still be hit

// A line of text that ends in "…" where there is no room for all of it.
class TElidedLabel final : public QLabel
{
public:
    using QLabel::QLabel;
    QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
        painter.drawText(rect(), Qt::AlignVCenter, fontMetrics().elidedText(text(), Qt::ElideRight, width()));
    }
};

} // namespace

// The strip itself. Time runs to the right, each version at least kLeastWidth wide, so that one long version does not
// squeeze the others out of sight; deleted versions lie below the live ones, over the time that they once had.
class TVersionStrip final : public QWidget
{
public:
    explicit TVersionStrip(QWidget *owner)
        : QWidget(owner)
    {
        setObjectName(QStringLiteral("pnlVersionStrip"));
        setAccessibleName(TVersionTimeline::tr("Versions over time"));
        setFocusPolicy(Qt::StrongFocus);
        setMouseTracking(true);
    }

    void SetVersions(const QList<TTimelineVersion> &versions)
    {
        versions_ = versions;
        today_ = QDate::currentDate();
        LayOut();
        updateGeometry();
        update();
    }

    void SetVersion(int id)
    {
        version_ = id;
        const qsizetype index = IndexOf(id);
        setAccessibleDescription(index < 0 ? QString() : TVersionTimeline::Describe(versions_[index], today_));
        QAccessibleEvent event(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&event);
        update();
    }

    QSize sizeHint() const override
    {
        return {400,
                kMargin / 2 + kBlockHeight + (HasDeleted() ? kDeletedHeight + 4 : 4) + fontMetrics().height() + 10};
    }
    QSize minimumSizeHint() const override { return {200, sizeHint().height()}; }

    std::function<void(int)> onSelect; // arrow keys
    std::function<void(int)> onChoose; // click, Enter, Space

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (versions_.isEmpty()) {
            painter.setPen(palette().color(QPalette::PlaceholderText));
            painter.drawText(rect(), Qt::AlignCenter, TVersionTimeline::tr("No record is selected."));
            return;
        }
        for (qsizetype i = 0; i < versions_.size(); ++i)
            DrawVersion(painter, versions_[i], blocks_[i]);
        DrawDates(painter);
        DrawToday(painter);
    }

    void resizeEvent(QResizeEvent *event) override
    {
        QWidget::resizeEvent(event);
        LayOut();
    }

    void changeEvent(QEvent *event) override
    {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::FontChange || event->type() == QEvent::LayoutDirectionChange)
            LayOut();
    }

    void mousePressEvent(QMouseEvent *event) override
    {
        const qsizetype index = At(event->position().toPoint());
        if (event->button() == Qt::LeftButton && index >= 0)
            onChoose(versions_[index].id);
    }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        setCursor(At(event->position().toPoint()) >= 0 ? Qt::PointingHandCursor : Qt::ArrowCursor);
    }

    void keyPressEvent(QKeyEvent *event) override
    {
        const qsizetype index = IndexOf(version_);
        const qsizetype last = versions_.size() - 1;
        switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Right: {
            const bool forward = (event->key() == Qt::Key_Right) == isLeftToRight();
            Step(std::clamp<qsizetype>(index < 0 ? 0 : index + (forward ? 1 : -1), 0, std::max<qsizetype>(last, 0)));
            return;
        }
        case Qt::Key_Home:
            Step(0);
            return;
        case Qt::Key_End:
            Step(last);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            if (index >= 0)
                onChoose(version_);
            return;
        default:
            QWidget::keyPressEvent(event);
        }
    }

    void focusInEvent(QFocusEvent *event) override
    {
        QWidget::focusInEvent(event);
        update();
    }
    void focusOutEvent(QFocusEvent *event) override
    {
        QWidget::focusOutEvent(event);
        update();
    }

    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::ToolTip) {
            const auto *help = static_cast<QHelpEvent *>(event);
            const qsizetype index = At(help->pos());
            if (index >= 0)
                QToolTip::showText(help->globalPos(), TVersionTimeline::Describe(versions_[index], today_), this,
                                   blocks_[index].toAlignedRect());
            else
                QToolTip::hideText();
            return true;
        }
        return QWidget::event(event);
    }

private:
    bool HasDeleted() const
    {
        return std::any_of(versions_.begin(), versions_.end(), [](const TTimelineVersion &v) { return v.deleted; });
    }
    qsizetype IndexOf(int id) const
    {
        for (qsizetype i = 0; i < versions_.size(); ++i) {
            if (versions_[i].id == id)
                return i;
        }
        return -1;
    }
    qsizetype At(const QPoint &at) const
    {
        for (qsizetype i = versions_.size() - 1; i >= 0; --i) {
            if (blocks_.value(i).contains(at))
                return i;
        }
        return -1;
    }
    void Step(qsizetype index)
    {
        if (index >= 0 && index < versions_.size())
            onSelect(versions_[index].id);
    }

    // The points of the scale: the days on which something begins or ends, and their places.
    void LayOut()
    {
        days_.clear();
        places_.clear();
        blocks_.clear();
        if (versions_.isEmpty())
            return;
        for (const TTimelineVersion &version : std::as_const(versions_)) {
            days_.append(version.start);
            if (version.end.isValid())
                days_.append(version.end.addDays(1));
        }
        days_.append(today_);
        std::sort(days_.begin(), days_.end());
        days_.erase(std::unique(days_.begin(), days_.end()), days_.end());
        const QDate open = days_.last().addDays(std::max<qint64>(60, days_.first().daysTo(days_.last()) / 8));
        days_.append(open);

        const double width = std::max(1, this->width() - 2 * kMargin);
        const qsizetype spans = days_.size() - 1;
        const double least = std::min<double>(kLeastWidth, width / double(spans));
        const double shared = width - least * double(spans);
        const double total = double(days_.first().daysTo(open));
        double x = kMargin;
        places_.append(x);
        for (qsizetype i = 0; i < spans; ++i) {
            x += least + shared * double(days_[i].daysTo(days_[i + 1])) / total;
            places_.append(x);
        }
        for (const TTimelineVersion &version : std::as_const(versions_)) {
            const double from = Place(version.start);
            const double to = version.end.isValid() ? Place(version.end.addDays(1)) : places_.last();
            const double top = version.deleted ? kMargin / 2 + kBlockHeight + 4 : kMargin / 2;
            QRectF block(from, top, std::max(2.0, to - from), version.deleted ? kDeletedHeight : kBlockHeight);
            if (!isLeftToRight())
                block.moveLeft(this->width() - block.right());
            blocks_.append(block);
        }
    }

    double Place(const QDate &day) const
    {
        const auto at = std::lower_bound(days_.begin(), days_.end(), day);
        return places_.value(at - days_.begin(), places_.last());
    }

    QColor Mixed(QPalette::ColorRole a, QPalette::ColorRole b, double part) const
    {
        const QColor x = palette().color(a);
        const QColor y = palette().color(b);
        return QColor::fromRgbF(float(x.redF() * part + y.redF() * (1 - part)),
                                float(x.greenF() * part + y.greenF() * (1 - part)),
                                float(x.blueF() * part + y.blueF() * (1 - part)));
    }

    void DrawVersion(QPainter &painter, const TTimelineVersion &version, const QRectF &block) const
    {
        const TState state = StateOf(version, today_);
        QColor fill;
        QColor text = palette().color(QPalette::WindowText);
        QPen edge(Mixed(QPalette::WindowText, QPalette::Window, 0.35), 1);
        switch (state) {
        case TState::InForce:
            fill = palette().color(QPalette::Highlight);
            text = palette().color(QPalette::HighlightedText);
            break;
        case TState::Past:
            fill = Mixed(QPalette::WindowText, QPalette::Window, 0.16);
            break;
        case TState::Future:
            fill = Mixed(QPalette::Highlight, QPalette::Window, 0.28);
            edge.setColor(palette().color(QPalette::Highlight));
            break;
        case TState::Deleted:
            fill = palette().color(QPalette::Window);
            text = Mixed(QPalette::WindowText, QPalette::Window, 0.7);
            edge.setStyle(Qt::DashLine);
            break;
        }
        const QRectF body = block.adjusted(0.5, 0.5, -1.5, -0.5);
        painter.setPen(edge);
        painter.setBrush(fill);
        painter.drawRoundedRect(body, 3, 3);
        if (state == TState::Deleted) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(QBrush(Mixed(QPalette::WindowText, QPalette::Window, 0.25), Qt::BDiagPattern));
            painter.drawRoundedRect(body, 3, 3);
        } else if (!version.end.isValid()) {
            // An arrow says that it goes on.
            painter.setPen(text);
            painter.drawText(body.adjusted(0, 0, -6, 0),
                             int(Qt::AlignVCenter) | int(isLeftToRight() ? Qt::AlignRight : Qt::AlignLeft),
                             isLeftToRight() ? QStringLiteral("→") : QStringLiteral("←"));
        }
        if (state != TState::Deleted) {
            painter.setPen(text);
            const QRectF inner = body.adjusted(4, 0, version.end.isValid() ? -4 : -20, 0);
            const QString value = fontMetrics().elidedText(version.value, Qt::ElideRight, int(inner.width()));
            if (value.size() > 1)
                painter.drawText(inner, Qt::AlignCenter, value);
        }
        if (version.id == version_) {
            QPen mark(palette().color(QPalette::WindowText), hasFocus() ? 2.5 : 1.5);
            painter.setPen(mark);
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(block.adjusted(-2, -2, 0, 2), 4, 4);
        }
    }

    // The days on which versions begin, as many as there is room for.
    void DrawDates(QPainter &painter)
    {
        dates_.clear();
        painter.setPen(Mixed(QPalette::WindowText, QPalette::Window, 0.75));
        const double top = height() - fontMetrics().height() - 3;
        double taken = -1;
        for (qsizetype i = 0; i < versions_.size(); ++i) {
            if (versions_[i].deleted)
                continue;
            const QString text = MessageDate(versions_[i].start);
            const double width = fontMetrics().horizontalAdvance(text);
            const double left = isLeftToRight()
                                    ? std::clamp(blocks_[i].left(), 0.0, std::max(0.0, this->width() - width))
                                    : std::max(0.0, blocks_[i].right() - width);
            const double key = isLeftToRight() ? left : this->width() - left - width;
            if (key < taken)
                continue;
            painter.drawText(QPointF(left, top + fontMetrics().ascent()), text);
            dates_.append(QRectF(left, top, width, 1));
            taken = key + width + 8;
        }
    }

    void DrawToday(QPainter &painter) const
    {
        double x = Place(today_);
        if (!isLeftToRight())
            x = width() - x;
        const double top = kMargin / 2 + kBlockHeight + 1;
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().color(QPalette::WindowText));
        painter.drawPolygon(QPolygonF({{x, top}, {x - 5, top + 7}, {x + 5, top + 7}}));
        const QString text = TVersionTimeline::tr("Today");
        const double width = fontMetrics().horizontalAdvance(text);
        const double left = std::clamp(x - width / 2, 0.0, std::max(0.0, this->width() - width));
        const bool room = std::none_of(dates_.begin(), dates_.end(), [left, width](const QRectF &date) {
            return date.left() < left + width + 6 && left - 6 < date.right();
        });
        if (!room)
            return;
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(QPointF(left, height() - 3 - fontMetrics().descent()), text);
    }

    QList<TTimelineVersion> versions_;
    QList<QDate> days_;
    QList<double> places_;
    QList<QRectF> blocks_;
    QList<QRectF> dates_; // where they were drawn
    QDate today_ = QDate::currentDate();
    int version_ = 0;
};

TVersionTimeline::TVersionTimeline(QWidget *parent)
    : QWidget(parent)
    , lblTimeline(new QLabel(this))
    , lblVersionDetail(new TElidedLabel(this))
    , chkShowDeleted(new QCheckBox(tr("Show deleted"), this))
    , btnTimelineTable(new QToolButton(this))
    , stack_(new QStackedWidget(this))
    , strip_(new TVersionStrip(this))
    , grdVersions(new QTableWidget(this))
{
    setObjectName(QStringLiteral("pnlTimeline"));
    lblTimeline->setObjectName(QStringLiteral("lblTimeline"));
    lblTimeline->setTextFormat(Qt::PlainText);
    QFont bold = lblTimeline->font();
    bold.setBold(true);
    lblTimeline->setFont(bold);
    lblVersionDetail->setObjectName(QStringLiteral("lblVersionDetail"));
    lblVersionDetail->setTextFormat(Qt::PlainText);
    lblVersionDetail->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    chkShowDeleted->setObjectName(QStringLiteral("chkShowDeleted"));
    btnTimelineTable->setObjectName(QStringLiteral("btnTimelineTable"));
    btnTimelineTable->setText(tr("Table"));
    btnTimelineTable->setCheckable(true);
    btnTimelineTable->setToolTip(tr("Show the versions as a table"));
    grdVersions->setObjectName(QStringLiteral("grdVersions"));
    grdVersions->setAccessibleName(tr("Versions"));
    grdVersions->setColumnCount(6);
    grdVersions->setHorizontalHeaderLabels(
        {tr("State"), tr("Effective Date"), tr("End Date"), tr("Value"), tr("Change Reason"), tr("Changed by")});
    grdVersions->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdVersions->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdVersions->setSelectionMode(QAbstractItemView::SingleSelection);
    grdVersions->setTabKeyNavigation(false);
    grdVersions->setAlternatingRowColors(true);
    grdVersions->verticalHeader()->hide();
    grdVersions->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    grdVersions->verticalHeader()->setMinimumSectionSize(fontMetrics().height() + 6);
    grdVersions->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    grdVersions->horizontalHeader()->setSectionResizeMode(5, QHeaderView::Stretch);
    grdVersions->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);

    auto *head = new QHBoxLayout;
    head->addWidget(lblTimeline);
    head->addSpacing(12);
    head->addWidget(lblVersionDetail, 1);
    head->addWidget(chkShowDeleted);
    head->addWidget(btnTimelineTable);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 6, 12, 6);
    layout->setSpacing(4);
    layout->addLayout(head);
    stack_->addWidget(strip_);
    stack_->addWidget(grdVersions);
    layout->addWidget(stack_);

    strip_->onSelect = [this](int id) { Select(id); };
    strip_->onChoose = [this](int id) { Choose(id); };
    connect(chkShowDeleted, &QCheckBox::toggled, this, &TVersionTimeline::ShowVersions);
    connect(btnTimelineTable, &QToolButton::toggled, this, [this](bool table) {
        stack_->setCurrentIndex(table ? 1 : 0);
        ShowVersions();
    });
    connect(grdVersions, &QTableWidget::itemSelectionChanged, this, [this] {
        const QTableWidgetItem *item = grdVersions->item(grdVersions->currentRow(), 0);
        if (item)
            Select(item->data(Qt::UserRole).toInt());
    });
    connect(grdVersions, &QTableWidget::cellClicked, this, [this] { Choose(version_); });
    connect(grdVersions, &QTableWidget::cellActivated, this, [this] { Choose(version_); });
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
}

QString TVersionTimeline::Describe(const TTimelineVersion &version, const QDate &today)
{
    QStringList parts{tr("%1 to %2").arg(MessageDate(version.start), EndDateText(version.end)), version.value,
                      StateText(StateOf(version, today))};
    if (!version.reason.isEmpty())
        parts.append(version.reason);
    if (const QString by = By(version.createdBy, version.created); !by.isEmpty())
        parts.append(tr("created by %1").arg(by));
    if (const QString by = By(version.changedBy, version.changed); !by.isEmpty())
        parts.append(version.deleted ? tr("deleted by %1").arg(by) : tr("changed by %1").arg(by));
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

void TVersionTimeline::SetVersions(const QString &caption, const QList<TTimelineVersion> &versions)
{
    all_ = versions;
    lblTimeline->setText(caption);
    const bool anyDeleted = std::any_of(all_.begin(), all_.end(), [](const TTimelineVersion &v) { return v.deleted; });
    chkShowDeleted->setEnabled(anyDeleted);
    ShowVersions();
}

void TVersionTimeline::ShowVersions()
{
    const bool deleted = chkShowDeleted->isChecked();
    shown_.clear();
    std::copy_if(all_.begin(), all_.end(), std::back_inserter(shown_),
                 [deleted](const TTimelineVersion &v) { return deleted || !v.deleted; });
    strip_->SetVersions(shown_);

    const QSignalBlocker blocker(grdVersions);
    const QDate today = QDate::currentDate();
    grdVersions->setRowCount(int(shown_.size()));
    for (int row = 0; row < shown_.size(); ++row) {
        const TTimelineVersion &version = shown_[row];
        const QStringList texts{StateText(StateOf(version, today)),
                                MessageDate(version.start),
                                EndDateText(version.end),
                                version.value,
                                version.reason,
                                version.changedBy.isEmpty() ? By(version.createdBy, version.created)
                                                            : By(version.changedBy, version.changed)};
        for (int column = 0; column < texts.size(); ++column) {
            auto *item = new QTableWidgetItem(texts[column]);
            item->setData(Qt::UserRole, version.id);
            grdVersions->setItem(row, column, item);
        }
    }
    // As high as the page that is seen needs it, whatever the other one would take.
    stack_->setFixedHeight(btnTimelineTable->isChecked() ? kTableHeight : strip_->sizeHint().height());
    SetVersion(version_);
}

void TVersionTimeline::SetVersion(int id)
{
    const auto at = std::find_if(shown_.begin(), shown_.end(), [id](const TTimelineVersion &v) { return v.id == id; });
    version_ = at == shown_.end() ? 0 : id;
    lblVersionDetail->setText(at == shown_.end() ? QString() : Describe(*at, QDate::currentDate()));
    lblVersionDetail->setToolTip(lblVersionDetail->text());
    strip_->SetVersion(version_);
    const QSignalBlocker blocker(grdVersions);
    if (at == shown_.end())
        grdVersions->clearSelection();
    else
        grdVersions->selectRow(int(at - shown_.begin()));
}

void TVersionTimeline::Select(int id)
{
    SetVersion(id);
}

void TVersionTimeline::Choose(int id)
{
    SetVersion(id);
    Q_EMIT VersionChosen(id);
}
