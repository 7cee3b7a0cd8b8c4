// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QRadioButton>
#include <QWidget>

#include <memory>
#include <optional>

#include "framework/Export.h"
#include "framework/data/Database.h"

// The input controls that screens are made of. Each emits ValueChanged when its value changes, by the user or by code.

// Keeps a control legible while it is disabled or read-only: dark text on the window's colour, in light and dark
// palettes alike. The controls of this header have it already.
CORVEX_API void ShowReadable(QWidget *control);

// A masked text. The mask is written as payroll installations write it: '0' required digit, '9' optional digit, '#'
// digit or sign, 'L'/'l' letter, 'A'/'a' letter or digit, 'C'/'c' any character (capital: required), '\' makes the next
// character a literal, '>' '<' upper/lower case from here; then ";1;_": literals are kept in the value, open positions
// show "_".
class CORVEX_API TqsMaskEdit final : public QLineEdit
{
    Q_OBJECT
public:
    explicit TqsMaskEdit(QWidget *parent = nullptr);
    // "" takes the mask off. The value stays as far as it fits.
    void SetEditMask(const QString &mask);
    // The value with its literals, open positions left out, blanks trimmed; "" when only literals stand in the box.
    QString Value() const;
    // A value that does not fit the mask is shown as it is, without the mask, until it has been emptied.
    void SetValue(const QString &value);

Q_SIGNALS:
    void ValueChanged();

protected:
    void focusInEvent(QFocusEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void ApplyMask();
    void Tell();
    void StandOnFirstOpen();

    QString qtMask_;   // "" without a mask
    QList<bool> open_; // by position: something can be typed there
    QString lastValue_;
    QChar blank_;
    bool setting_ = false;
};

// What the boxes for numbers share: typing and pasting that cannot become a value is refused and the text before it
// stays; the value is shown in its full form while it is not edited.
class CORVEX_API TqsValueEdit : public QLineEdit
{
    Q_OBJECT
public:
    // What is typed is limited to values up to `maximum`. A value set by code is shown whatever it is.
    void SetMaximum(std::optional<double> maximum);
    // From 0 on no sign can be typed; below 0 no value beyond it. A lower bound above 0 is the screen's own check.
    void SetMinimum(std::optional<double> minimum);
    void SetDecimals(int decimals); // 0 to 8
    int Decimals() const { return decimals_; }
    double Value() const { return value_; }
    void SetValue(double value);

Q_SIGNALS:
    void ValueChanged();

protected:
    explicit TqsValueEdit(QWidget *parent);
    // Takes out of a text what may be pasted along with a number; false when no number can come of it. "" is a number.
    virtual bool Clean(QString &text) const = 0;
    virtual double Parse(const QString &cleaned) const = 0;
    // The value as it is kept when code sets it.
    virtual double Kept(double value) const { return value; }
    virtual QString Format(double value, bool editing) const = 0;
    bool WithinBounds(double value, bool negative) const;
    void Reformat();

    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void OnTextChanged();
    void Assign(double value);

    std::optional<double> maximum_, minimum_;
    int decimals_ = 2;
    double value_ = 0;
    QString lastText_;
    bool typed_ = false;
    bool formatting_ = false;
};

// A floating-point number with fixed decimals. What is typed is limited to digits, sign, point and, where a maximum is
// set, to values up to it; a lower bound is the screen's own check. The value is rounded to the decimals, half away
// from zero; the text when the focus leaves. An empty box is 0.
class CORVEX_API TqsNumberEdit final : public TqsValueEdit
{
    Q_OBJECT
    Q_PROPERTY(double value READ Value WRITE SetValue NOTIFY ValueChanged)
public:
    explicit TqsNumberEdit(QWidget *parent = nullptr);
    void SetSuffix(const QString &suffix); // shown behind the number while it is not edited, e.g. "%"

protected:
    bool Clean(QString &text) const override;
    double Parse(const QString &cleaned) const override;
    double Kept(double value) const override;
    QString Format(double value, bool editing) const override;

private:
    QString suffix_;
};

// An amount of hours: h:mm when the installation's hours-and-minutes option is on, else a decimal with `decimals`.
// Either way both can be typed. A value set by code is kept to the last digit until it is edited; a typed one is
// rounded to what is shown.
class CORVEX_API TqsHoursEdit final : public TqsValueEdit
{
    Q_OBJECT
    Q_PROPERTY(double value READ Value WRITE SetValue NOTIFY ValueChanged)
public:
    explicit TqsHoursEdit(QWidget *parent = nullptr);
    // False while the amount is not counted in hours (days, weeks): then it is a decimal whatever the option. Default
    // true.
    void SetCountsHours(bool hours);

protected:
    bool Clean(QString &text) const override;
    double Parse(const QString &cleaned) const override;
    QString Format(double value, bool editing) const override;

private:
    bool AsMinutes() const;
    bool countsHours_ = true;
};
// Hours as they are shown anywhere (h:mm or decimal by the installation's option).
CORVEX_API QString HoursText(double hours, int decimals = 2);

// The user's short date format, with a four-digit year.
CORVEX_API QString ShortDateFormat(const QLocale &locale = QLocale());

// A date that may be absent: a check box (when optional) and a date box with a calendar.
class CORVEX_API TqsDateEdit final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QDate date READ Date WRITE SetDate NOTIFY ValueChanged)
public:
    explicit TqsDateEdit(QWidget *parent = nullptr);
    void SetOptional(bool optional); // default true; a date that is not optional starts at today
    QDate Date() const;              // invalid: none
    void SetDate(const QDate &date);
    QCheckBox *CheckBox() const;
    QDateEdit *DateBox() const;

Q_SIGNALS:
    void ValueChanged();

private:
    void OnValue();
    void ChooseFocus();
    QCheckBox *check_;
    QDateEdit *date_;
    bool optional_ = true;
    QDate last_;
};

// Several of a list of records, kept as comma-separated id text. A box above the list shows and sets none / some / all.
class CORVEX_API TqsCheckList final : public QWidget
{
    Q_OBJECT
public:
    explicit TqsCheckList(QWidget *parent = nullptr);
    // Keeps the ticks of ids that stay. Ticked ids that no items ever named stay too, shown as "#<id>".
    void SetItems(const QList<std::pair<int, QString>> &items);
    QList<int> Checked() const; // in list order
    void SetChecked(const QList<int> &ids);
    QString IdText() const; // "3,7,12"
    void SetIdText(const QString &text);
    QListWidget *List() const;
    QCheckBox *AllBox() const;

Q_SIGNALS:
    void ValueChanged();

private:
    void AddItem(int id, const QString &text, bool known, bool ticked);
    void SetAll(bool ticked);
    void UpdateAllBox();
    QListWidget *list_;
    QCheckBox *all_;
    bool changing_ = false;
};

// One of a few: radio buttons side by side (or below each other), the value is the position.
class CORVEX_API TqsRadioGroup final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int value READ Value WRITE SetValue NOTIFY ValueChanged)
public:
    // objectNames name the buttons; same length as captions.
    explicit TqsRadioGroup(const QStringList &objectNames, const QStringList &captions, Qt::Orientation orientation,
                           QWidget *parent = nullptr);
    int Value() const; // -1: none
    void SetValue(int value);
    QRadioButton *Button(int index) const; // nullptr when there is none

Q_SIGNALS:
    void ValueChanged();

private:
    QList<QRadioButton *> buttons_;
    QButtonGroup *group_;
    int last_ = -1;
};

// Where a look-up's choices come from. T-SQL; `columns` are (field, heading) pairs of the drop-down list, the first one
// is shown in the box.
struct CORVEX_API TLookupSource
{
    QString from;
    QString key;
    QList<std::pair<QString, QString>> columns;
    QString where;
    TDbParams params;
    QString orderBy; // one column, may be followed by " desc"; "" = first column
};

// A look-up of a record by id: a drop-down with several columns and headings, opened by the button, Alt+Down or F4;
// typing finds by the start of any column (the first column before the others); Del or Backspace on the closed box
// empties it when it may be empty. Each item's Qt::UserRole is the id.
class CORVEX_API TqsLookupCombo final : public QComboBox
{
    Q_OBJECT
    Q_PROPERTY(int key READ Key WRITE SetKey NOTIFY ValueChanged)
public:
    explicit TqsLookupCombo(QWidget *parent = nullptr);
    ~TqsLookupCombo() override;
    void SetSource(const TLookupSource &source); // keeps the key; throws TDbError when the choices were read before
    void SetMayBeEmpty(bool may);                // default true
    // Reads the choices again and keeps the key; called when the control is first shown or a key is set. Throws
    // TDbError. Up to 500 choices are all held as items; of more only those around the chosen one, read on as the user
    // moves.
    void Reload();
    int Key() const; // 0: empty
    // Selects by id; an id that the choices do not hold (inactive, deleted) is kept and shown as "#<id>", so that it is
    // not lost on save.
    void SetKey(int key);
    // A column of the chosen record, any that the source has; invalid when empty. Throws TDbError.
    QVariant Field(QStringView field) const;

    void showPopup() override;

Q_SIGNALS:
    void ValueChanged();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
