// SPDX-License-Identifier: Apache-2.0
#include "framework/forms/FormBuilder.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// "edtBankName" -> "lblBankName": the label carries its control's name with its own prefix.
QString SiblingName(const QString &name, const QString &prefix)
{
    qsizetype start = 0;
    while (start < name.size() && name[start].isLower())
        ++start;
    return prefix + name.mid(start);
}

// Wide enough for the text the field may hold, within reason.
void SizeToLimit(QLineEdit *edit, int limit)
{
    const int characters = std::clamp(limit + 2, 8, 46);
    edit->setMinimumWidth(edit->fontMetrics().horizontalAdvance(QLatin1Char('n')) * characters + 16);
    if (limit > 0 && limit < 40) {
        edit->setMaximumWidth(edit->minimumWidth() + 40);
        edit->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    }
}

} // namespace

QString PlainCaption(const QString &caption)
{
    QString plain;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption[i] == QLatin1Char('&') && i + 1 < caption.size())
            ++i;
        plain += caption[i];
    }
    return plain;
}

TFormGroup::TFormGroup(TFormFields &fields, QGroupBox *box)
    : fields_(fields)
    , box_(box)
    , grid_(new QGridLayout(box))
{
    grid_->setColumnStretch(1, 1);
    grid_->setHorizontalSpacing(12);
    grid_->setVerticalSpacing(6);
}

QLabel *TFormGroup::AddRow(QWidget *control, const char *name, const char *caption, bool label)
{
    const QString objectName = QString::fromLatin1(name);
    const QString text = QString::fromUtf8(caption);
    control->setObjectName(objectName);
    fields_.tabOrder_.append(control);
    const int row = grid_->rowCount();
    if (!label) {
        grid_->addWidget(control, row, 1);
        return nullptr;
    }
    auto *made = new QLabel(text, box_);
    made->setObjectName(SiblingName(objectName, QStringLiteral("lbl")));
    made->setBuddy(control);
    control->setAccessibleName(PlainCaption(text));
    grid_->addWidget(made, row, 0);
    const bool fixedWidth = control->maximumWidth() < QWIDGETSIZE_MAX;
    grid_->addWidget(control, row, 1, fixedWidth ? Qt::AlignLeft : Qt::Alignment());
    return made;
}

TFieldBinding &TFormGroup::Bind(QWidget *control, QLabel *label, const char *caption, const TColumnBase *column)
{
    TFieldBinding binding;
    binding.control = control;
    binding.label = label;
    binding.caption = PlainCaption(QString::fromUtf8(caption));
    if (column)
        binding.field = column->Field();
    fields_.bindings_.append(binding);
    return fields_.bindings_.last();
}

TFormGroup &TFormGroup::Text(QLineEdit *&control, const char *name, const char *caption, int limit)
{
    control = new QLineEdit(box_);
    control->setMaxLength(limit);
    SizeToLimit(control, limit);
    Bind(control, AddRow(control, name, caption, true), caption, nullptr);
    return *this;
}

TFormGroup &TFormGroup::Text(QLineEdit *&control, const char *name, const char *caption, Column<QString> &column)
{
    Text(control, name, caption, column.Limit());
    TFieldBinding &binding = fields_.bindings_.last();
    binding.field = column.Field();
    binding.load = [edit = control, &column] { edit->setText(column.Get().trimmed()); };
    binding.save = [edit = control, &column] { column.Set(edit->text().trimmed()); };
    return *this;
}

TFormGroup &TFormGroup::Memo(QPlainTextEdit *&control, const char *name, const char *caption, Column<QString> &column)
{
    control = new QPlainTextEdit(box_);
    control->setTabChangesFocus(true);
    TFieldBinding &binding = Bind(control, AddRow(control, name, caption, true), caption, &column);
    binding.load = [edit = control, &column] { edit->setPlainText(column.Get()); };
    binding.save = [edit = control, &column] { column.Set(edit->toPlainText()); };
    return *this;
}

TFormGroup &TFormGroup::Mask(TqsMaskEdit *&control, const char *name, const char *caption, Column<QString> &column)
{
    control = new TqsMaskEdit(box_);
    SizeToLimit(control, 16);
    TFieldBinding &binding = Bind(control, AddRow(control, name, caption, true), caption, &column);
    binding.load = [edit = control, &column] { edit->SetValue(column.Get().trimmed()); };
    binding.save = [edit = control, &column] { column.Set(edit->Value()); };
    return *this;
}

TFormGroup &TFormGroup::Number(TqsNumberEdit *&control, const char *name, const char *caption, int decimals,
                               std::optional<double> maximum)
{
    control = new TqsNumberEdit(box_);
    control->SetDecimals(decimals);
    control->SetMaximum(maximum);
    SizeToLimit(control, 14);
    Bind(control, AddRow(control, name, caption, true), caption, nullptr);
    return *this;
}

TFormGroup &TFormGroup::Number(TqsNumberEdit *&control, const char *name, const char *caption, Column<double> &column,
                               int decimals, std::optional<double> maximum)
{
    Number(control, name, caption, decimals, maximum);
    TFieldBinding &binding = fields_.bindings_.last();
    binding.field = column.Field();
    binding.load = [edit = control, &column] { edit->SetValue(column.Get()); };
    binding.save = [edit = control, &column] { column.Set(edit->Value()); };
    return *this;
}

TFormGroup &TFormGroup::Hours(TqsHoursEdit *&control, const char *name, const char *caption, Column<double> &column,
                              int decimals)
{
    control = new TqsHoursEdit(box_);
    control->SetDecimals(decimals);
    SizeToLimit(control, 10);
    TFieldBinding &binding = Bind(control, AddRow(control, name, caption, true), caption, &column);
    binding.load = [edit = control, &column] { edit->SetValue(column.Get()); };
    binding.save = [edit = control, &column] { column.Set(edit->Value()); };
    return *this;
}

TFormGroup &TFormGroup::Check(QCheckBox *&control, const char *name, const char *caption)
{
    control = new QCheckBox(QString::fromUtf8(caption), box_);
    Bind(control, AddRow(control, name, caption, false), caption, nullptr);
    return *this;
}

TFormGroup &TFormGroup::Check(QCheckBox *&control, const char *name, const char *caption, Column<bool> &column)
{
    Check(control, name, caption);
    TFieldBinding &binding = fields_.bindings_.last();
    binding.field = column.Field();
    binding.load = [box = control, &column] { box->setChecked(column.Get()); };
    binding.save = [box = control, &column] { column.Set(box->isChecked()); };
    return *this;
}

TFormGroup &TFormGroup::Date(TqsDateEdit *&control, const char *name, const char *caption, Column<QDate> &column,
                             bool optional)
{
    control = new TqsDateEdit(box_);
    control->SetOptional(optional);
    TFieldBinding &binding = Bind(control, AddRow(control, name, caption, true), caption, &column);
    binding.load = [edit = control, &column] { edit->SetDate(column.Get()); };
    binding.save = [edit = control, &column] { column.Set(edit->Date()); };
    return *this;
}

TFormGroup &TFormGroup::Lookup(TqsLookupCombo *&control, const char *name, const char *caption,
                               const TLookupSource &source)
{
    control = new TqsLookupCombo(box_);
    control->SetSource(source);
    Bind(control, AddRow(control, name, caption, true), caption, nullptr);
    return *this;
}

TFormGroup &TFormGroup::Lookup(TqsLookupCombo *&control, const char *name, const char *caption, Column<int> &column,
                               const TLookupSource &source)
{
    Lookup(control, name, caption, source);
    TFieldBinding &binding = fields_.bindings_.last();
    binding.field = column.Field();
    binding.load = [combo = control, &column] { combo->SetKey(column.Get()); };
    binding.save = [combo = control, &column] {
        if (combo->Key() == 0)
            column.SetNull();
        else
            column.Set(combo->Key());
    };
    return *this;
}

TFormGroup &TFormGroup::Choice(QComboBox *&control, const char *name, const char *caption, Column<int> &column,
                               const QStringList &texts)
{
    control = new QComboBox(box_);
    control->addItems(texts);
    ShowReadable(control);
    TFieldBinding &binding = Bind(control, AddRow(control, name, caption, true), caption, &column);
    binding.load = [combo = control, &column] { combo->setCurrentIndex(column.Get()); };
    binding.save = [combo = control, &column] { column.Set(combo->currentIndex()); };
    return *this;
}

TFormGroup &TFormGroup::Radio(TqsRadioGroup *&control, const QStringList &names, const QStringList &captions,
                              Column<int> &column, Qt::Orientation orientation)
{
    control = new TqsRadioGroup(names, captions, orientation, box_);
    const QByteArray name = SiblingName(names.value(0), QStringLiteral("rgp")).toLatin1();
    TFieldBinding &binding = Bind(control, AddRow(control, name, "", false), "", &column);
    binding.load = [group = control, &column] { group->SetValue(column.Get()); };
    binding.save = [group = control, &column] { column.Set(group->Value()); };
    return *this;
}

TFormGroup &TFormGroup::CheckList(TqsCheckList *&control, const char *name, const char *caption,
                                  Column<QString> &column)
{
    control = new TqsCheckList(box_);
    TFieldBinding &binding = Bind(control, AddRow(control, name, caption, true), caption, &column);
    binding.load = [list = control, &column] { list->SetIdText(column.Get()); };
    binding.save = [list = control, &column] { column.Set(list->IdText()); };
    return *this;
}

TFormGroup &TFormGroup::Note(QLabel *&control, const char *name, const QString &text)
{
    control = new QLabel(text, box_);
    control->setObjectName(QString::fromLatin1(name));
    control->setTextFormat(Qt::PlainText);
    control->setWordWrap(true);
    grid_->addWidget(control, grid_->rowCount(), 0, 1, 2);
    return *this;
}

TFormGroup &TFormGroup::Widget(QWidget *control, const char *name)
{
    control->setObjectName(QString::fromLatin1(name));
    fields_.tabOrder_.append(control);
    grid_->addWidget(control, grid_->rowCount(), 0, 1, 2);
    return *this;
}

TFormGroup &TFormGroup::LabelledWidget(QWidget *control, const char *name, const char *caption)
{
    Bind(control, AddRow(control, name, caption, true), caption, nullptr);
    return *this;
}

TFormGroup &TFormGroup::Buttons(std::initializer_list<TButton> buttons)
{
    auto *row = new QHBoxLayout;
    row->addStretch();
    for (const TButton &button : buttons) {
        button.control = new QPushButton(QString::fromUtf8(button.caption), box_);
        button.control->setObjectName(QString::fromLatin1(button.name));
        button.control->setAutoDefault(false);
        fields_.tabOrder_.append(button.control);
        row->addWidget(button.control);
    }
    grid_->addLayout(row, grid_->rowCount(), 0, 1, 2);
    return *this;
}

TFormFields::~TFormFields()
{
    qDeleteAll(groups_);
}

TFormGroup &TFormFields::AddGroup(QWidget *parent, const QString &caption, const QString &name)
{
    if (!parent->layout())
        new QVBoxLayout(parent);
    auto *box = new QGroupBox(caption, parent);
    box->setObjectName(name.isEmpty() ? QStringLiteral("grp%1").arg(PlainCaption(caption).remove(QLatin1Char(' ')))
                                      : name);
    parent->layout()->addWidget(box);
    groups_.append(new TFormGroup(*this, box));
    return *groups_.last();
}

void TFormFields::LoadAll()
{
    for (const TFieldBinding &binding : std::as_const(bindings_)) {
        if (binding.load)
            binding.load();
    }
}

void TFormFields::SaveAll()
{
    for (const TFieldBinding &binding : std::as_const(bindings_)) {
        if (binding.save)
            binding.save();
    }
}

const TFieldBinding *TFormFields::Find(const QWidget *control) const
{
    const auto found = std::find_if(bindings_.begin(), bindings_.end(),
                                    [control](const TFieldBinding &binding) { return binding.control == control; });
    return found == bindings_.end() ? nullptr : &*found;
}

const TFieldBinding *TFormFields::FindField(const QString &column) const
{
    const auto found = std::find_if(bindings_.begin(), bindings_.end(), [&column](const TFieldBinding &binding) {
        return binding.field.compare(column, Qt::CaseInsensitive) == 0;
    });
    return found == bindings_.end() ? nullptr : &*found;
}

void TFormFields::SetVisible(QWidget *control, bool visible) const
{
    control->setVisible(visible);
    const TFieldBinding *binding = Find(control);
    if (binding && binding->label)
        binding->label->setVisible(visible);
}

void TFormFields::SetEnabled(QWidget *control, bool enabled) const
{
    control->setEnabled(enabled);
    const TFieldBinding *binding = Find(control);
    if (binding && binding->label)
        binding->label->setEnabled(enabled);
}

void TFormFields::SetCaption(QWidget *control, const QString &caption) const
{
    const TFieldBinding *binding = Find(control);
    if (!binding || !binding->label)
        return;
    binding->label->setText(caption);
    control->setAccessibleName(PlainCaption(caption));
}

void TFormFields::AlignGroups() const
{
    for (const TFormGroup *group : groups_) {
        int width = 0;
        for (const TFieldBinding &binding : bindings_) {
            if (binding.label && binding.label->parentWidget()->parentWidget() == group->box_->parentWidget())
                width = std::max(width, binding.label->sizeHint().width());
        }
        group->grid_->setColumnMinimumWidth(0, width);
    }
}

void TFormFields::SetTabOrder() const
{
    for (qsizetype i = 1; i < tabOrder_.size(); ++i)
        QWidget::setTabOrder(tabOrder_[i - 1], tabOrder_[i]);
}
