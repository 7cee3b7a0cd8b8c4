// SPDX-License-Identifier: Apache-2.0
#include <QBoxLayout>
#include <QSet>

#include "framework/editors/Editors.h"

namespace {

constexpr int kIdRole = Qt::UserRole;
constexpr int kKnownRole = Qt::UserRole + 1; // false: an id that no item list has named

} // namespace

TqsCheckList::TqsCheckList(QWidget *parent)
    : QWidget(parent)
    , list_(new QListWidget(this))
    , all_(new QCheckBox(tr("All"), this))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(all_);
    column->addWidget(list_);
    list_->setUniformItemSizes(true);
    setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(list_);
    setTabOrder(all_, list_);
    ShowReadable(list_);
    connect(list_, &QListWidget::itemChanged, this, [this] {
        if (changing_)
            return;
        UpdateAllBox();
        Q_EMIT ValueChanged();
    });
    connect(all_, &QCheckBox::stateChanged, this, [this](int state) {
        if (changing_)
            return;
        if (state == Qt::PartiallyChecked)
            UpdateAllBox(); // "some" is shown, never chosen
        else
            SetAll(state == Qt::Checked);
    });
    connect(this, &QObject::objectNameChanged, this, [this](const QString &name) {
        all_->setObjectName(name + QStringLiteral("All"));
        list_->setObjectName(name + QStringLiteral("List"));
    });
    UpdateAllBox();
}

void TqsCheckList::AddItem(int id, const QString &text, bool known, bool ticked)
{
    auto *item = new QListWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
    item->setData(kIdRole, id);
    item->setData(kKnownRole, known);
    list_->addItem(item);
}

void TqsCheckList::SetItems(const QList<std::pair<int, QString>> &items)
{
    const QList<int> before = Checked();
    QList<int> unknown;
    for (int row = 0; row < list_->count(); ++row) {
        const QListWidgetItem *item = list_->item(row);
        if (!item->data(kKnownRole).toBool() && item->checkState() == Qt::Checked)
            unknown += item->data(kIdRole).toInt();
    }
    changing_ = true;
    list_->clear();
    for (const auto &[id, text] : items) {
        AddItem(id, text, true, before.contains(id));
        unknown.removeAll(id);
    }
    for (const int id : std::as_const(unknown))
        AddItem(id, QStringLiteral("#%1").arg(id), false, true);
    changing_ = false;
    UpdateAllBox();
    if (Checked() != before)
        Q_EMIT ValueChanged();
}

QList<int> TqsCheckList::Checked() const
{
    QList<int> ids;
    for (int row = 0; row < list_->count(); ++row) {
        if (list_->item(row)->checkState() == Qt::Checked)
            ids += list_->item(row)->data(kIdRole).toInt();
    }
    return ids;
}

void TqsCheckList::SetChecked(const QList<int> &ids)
{
    const QList<int> before = Checked();
    QList<int> missing = ids;
    changing_ = true;
    for (int row = list_->count() - 1; row >= 0; --row) {
        QListWidgetItem *item = list_->item(row);
        const int id = item->data(kIdRole).toInt();
        missing.removeAll(id);
        item->setCheckState(ids.contains(id) ? Qt::Checked : Qt::Unchecked);
    }
    for (const int id : std::as_const(missing)) {
        if (!Checked().contains(id))
            AddItem(id, QStringLiteral("#%1").arg(id), false, true);
    }
    changing_ = false;
    UpdateAllBox();
    if (Checked() != before)
        Q_EMIT ValueChanged();
}

void TqsCheckList::SetAll(bool ticked)
{
    const QList<int> before = Checked();
    changing_ = true;
    for (int row = 0; row < list_->count(); ++row)
        list_->item(row)->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
    changing_ = false;
    UpdateAllBox();
    if (Checked() != before)
        Q_EMIT ValueChanged();
}

QString TqsCheckList::IdText() const
{
    QStringList texts;
    for (const int id : Checked())
        texts += QString::number(id);
    return texts.join(u',');
}

void TqsCheckList::SetIdText(const QString &text)
{
    QList<int> ids;
    for (const QString &part : text.split(u',')) {
        bool isNumber = false;
        const int id = part.trimmed().toInt(&isNumber);
        if (isNumber && !ids.contains(id))
            ids += id;
    }
    SetChecked(ids);
}

void TqsCheckList::UpdateAllBox()
{
    const qsizetype ticked = Checked().size();
    changing_ = true;
    all_->setCheckState(ticked == 0 ? Qt::Unchecked : ticked == list_->count() ? Qt::Checked : Qt::PartiallyChecked);
    // A click goes from none to all and from all to none; only from "some" does the third state exist.
    all_->setTristate(all_->checkState() == Qt::PartiallyChecked);
    changing_ = false;
}

QListWidget *TqsCheckList::List() const
{
    return list_;
}

QCheckBox *TqsCheckList::AllBox() const
{
    return all_;
}

TqsRadioGroup::TqsRadioGroup(const QStringList &objectNames, const QStringList &captions, Qt::Orientation orientation,
                             QWidget *parent)
    : QWidget(parent)
    , group_(new QButtonGroup(this))
{
    auto *row = new QBoxLayout(orientation == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
    row->setContentsMargins(0, 0, 0, 0);
    for (qsizetype i = 0; i < captions.size(); ++i) {
        auto *button = new QRadioButton(captions[i], this);
        button->setObjectName(objectNames.value(i));
        group_->addButton(button, int(i));
        buttons_ += button;
        row->addWidget(button);
    }
    if (orientation == Qt::Horizontal)
        row->addStretch();
    setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(Button(0));
    connect(group_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
        if (!on || id == last_)
            return;
        last_ = id;
        setFocusProxy(Button(id));
        Q_EMIT ValueChanged();
    });
}

int TqsRadioGroup::Value() const
{
    return group_->checkedId();
}

void TqsRadioGroup::SetValue(int value)
{
    if (QRadioButton *button = Button(value)) {
        button->setChecked(true);
        return;
    }
    if (last_ < 0)
        return;
    last_ = -1;
    group_->setExclusive(false);
    if (QAbstractButton *checked = group_->checkedButton())
        checked->setChecked(false);
    group_->setExclusive(true);
    setFocusProxy(Button(0));
    Q_EMIT ValueChanged();
}

QRadioButton *TqsRadioGroup::Button(int index) const
{
    return buttons_.value(index, nullptr);
}
