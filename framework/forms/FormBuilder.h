// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <functional>
#include <optional>

#include "framework/Export.h"
#include "framework/data/CorvexADOQuery.h"
#include "framework/editors/Editors.h"

class QTabWidget;

// One field of a form: its control, its label, and how its value travels between control and record.
struct TFieldBinding
{
    QWidget *control = nullptr;
    QLabel *label = nullptr; // nullptr for controls that carry their own caption
    QString caption;         // without the access-key mark
    QString field;           // column name; empty for a field without one
    std::function<void()> load;
    std::function<void()> save;
};

class TFormFields;

// A titled group of fields. The words add one field each, in tab order; each makes the control (owned by the group),
// names it, makes its label a buddy, limits it, and binds it to a column where one is given. A control made with the
// overload without a column is the dialog's own business.
class CORVEX_API TFormGroup
{
public:
    // Plain text, trimmed on its way into the record. The limit is the column's.
    TFormGroup &Text(QLineEdit *&control, const char *name, const char *caption, Column<QString> &column);
    TFormGroup &Text(QLineEdit *&control, const char *name, const char *caption, int limit);
    TFormGroup &Memo(QPlainTextEdit *&control, const char *name, const char *caption, Column<QString> &column);
    TFormGroup &Mask(TqsMaskEdit *&control, const char *name, const char *caption, Column<QString> &column);
    // A number with fixed decimals; `maximum` is what can be typed at most.
    TFormGroup &Number(TqsNumberEdit *&control, const char *name, const char *caption, Column<double> &column,
                       int decimals, std::optional<double> maximum = {});
    TFormGroup &Number(TqsNumberEdit *&control, const char *name, const char *caption, int decimals,
                       std::optional<double> maximum = {});
    TFormGroup &Hours(TqsHoursEdit *&control, const char *name, const char *caption, Column<double> &column,
                      int decimals = 2);
    TFormGroup &Check(QCheckBox *&control, const char *name, const char *caption, Column<bool> &column);
    TFormGroup &Check(QCheckBox *&control, const char *name, const char *caption);
    TFormGroup &Date(TqsDateEdit *&control, const char *name, const char *caption, Column<QDate> &column,
                     bool optional = true);
    TFormGroup &Lookup(TqsLookupCombo *&control, const char *name, const char *caption, Column<int> &column,
                       const TLookupSource &source);
    TFormGroup &Lookup(TqsLookupCombo *&control, const char *name, const char *caption, const TLookupSource &source);
    // A list of display texts; the column holds the position.
    TFormGroup &Choice(QComboBox *&control, const char *name, const char *caption, Column<int> &column,
                       const QStringList &texts);
    TFormGroup &Radio(TqsRadioGroup *&control, const QStringList &names, const QStringList &captions,
                      Column<int> &column, Qt::Orientation orientation = Qt::Horizontal);
    TFormGroup &CheckList(TqsCheckList *&control, const char *name, const char *caption, Column<QString> &column);
    // A line of text across the group.
    TFormGroup &Note(QLabel *&control, const char *name, const QString &text);
    // A widget of the dialog's own across the group, or behind a label.
    TFormGroup &Widget(QWidget *control, const char *name);
    TFormGroup &LabelledWidget(QWidget *control, const char *name, const char *caption);
    // A row of push buttons, right-aligned.
    struct TButton
    {
        QPushButton *&control;
        const char *name;
        const char *caption;
    };
    TFormGroup &Buttons(std::initializer_list<TButton> buttons);

    QGroupBox *Box() const { return box_; }

private:
    friend class TFormFields;
    TFormGroup(TFormFields &fields, QGroupBox *box);
    QLabel *AddRow(QWidget *control, const char *name, const char *caption, bool label);
    TFieldBinding &Bind(QWidget *control, QLabel *label, const char *caption, const TColumnBase *column);

    TFormFields &fields_;
    QGroupBox *box_;
    QGridLayout *grid_;
};

// All fields of a form, in order.
class CORVEX_API TFormFields
{
public:
    // Groups are laid out below each other in `parent`'s layout (made when it has none).
    TFormGroup &AddGroup(QWidget *parent, const QString &caption, const QString &name = {});
    ~TFormFields();

    void LoadAll();
    void SaveAll();
    // nullptr when the control is not a field.
    const TFieldBinding *Find(const QWidget *control) const;
    const TFieldBinding *FindField(const QString &column) const;
    const QList<TFieldBinding> &Fields() const { return bindings_; }
    // Shows or hides, enables or disables a control together with its label.
    void SetVisible(QWidget *control, bool visible) const;
    void SetEnabled(QWidget *control, bool enabled) const;
    void SetCaption(QWidget *control, const QString &caption) const;
    // Tab order is declaration order.
    void SetTabOrder() const;
    // Groups below each other begin their controls at the same place.
    void AlignGroups() const;

private:
    friend class TFormGroup;
    QList<TFieldBinding> bindings_;
    QList<TFormGroup *> groups_;
    QList<QWidget *> tabOrder_;
};

// A caption without its access-key mark ("B&SB Number" -> "BSB Number").
CORVEX_API QString PlainCaption(const QString &caption);
