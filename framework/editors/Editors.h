// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QWidget>

#include <optional>

#include "framework/Export.h"
#include "framework/data/Database.h"

// The input controls that screens are made of. Each emits ValueChanged when its value changes, by the user or by code.

// A masked text. The mask is written as payroll installations write it: '0' required digit, '9' optional digit, '#' digit or sign,
// 'L'/'l' letter, 'A'/'a' letter or digit, 'C'/'c' any character (capital: required), '\' makes the next character a literal, '>' '<'
// upper/lower case from here; then ";1;_": literals are kept in the value, open positions show "_".
class CORVEX_API TqsMaskEdit final : public QLineEdit
{
    Q_OBJECT
public:
    explicit TqsMaskEdit(QWidget *parent = nullptr);
    void SetEditMask(const QString &mask);
    // The value with its literals, open positions left out, blanks trimmed; "" when only literals stand in the box.
    QString Value() const;
    void SetValue(const QString &value);

Q_SIGNALS:
    void ValueChanged();
};

// A floating-point number with fixed decimals. What is typed is limited to digits, sign, point and, where a maximum is set, to values up to it;
// a lower bound is the screen's own check. An empty box is 0.
class CORVEX_API TqsNumberEdit final : public QLineEdit
{
    Q_OBJECT
    Q_PROPERTY(double value READ Value WRITE SetValue NOTIFY ValueChanged)
public:
    explicit TqsNumberEdit(QWidget *parent = nullptr);
    void SetDecimals(int decimals); // 0 to 8; the value shown is rounded to it when the focus leaves
    int Decimals() const;
    void SetMaximum(std::optional<double> maximum);
    void SetSuffix(const QString &suffix); // shown behind the number while it is not edited, e.g. "%"
    double Value() const;                  // rounded to the decimals
    void SetValue(double value);

Q_SIGNALS:
    void ValueChanged();
};

// An amount of hours: h:mm when the installation's hours-and-minutes option is on, else a decimal with `decimals`.
class CORVEX_API TqsHoursEdit final : public QLineEdit
{
    Q_OBJECT
    Q_PROPERTY(double value READ Value WRITE SetValue NOTIFY ValueChanged)
public:
    explicit TqsHoursEdit(QWidget *parent = nullptr);
    void SetDecimals(int decimals);
    double Value() const; // hours
    void SetValue(double hours);

Q_SIGNALS:
    void ValueChanged();
};
// Hours as they are shown anywhere (h:mm or decimal by the installation's option).
CORVEX_API QString HoursText(double hours, int decimals = 2);

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
    QCheckBox *check_;
    QDateEdit *date_;
    bool optional_ = true;
};

// Several of a list of records, kept as comma-separated id text. A box above the list shows and sets none / some / all.
class CORVEX_API TqsCheckList final : public QWidget
{
    Q_OBJECT
public:
    explicit TqsCheckList(QWidget *parent = nullptr);
    void SetItems(const QList<std::pair<int, QString>> &items); // keeps the ticks of ids that stay
    QList<int> Checked() const;                                 // in list order
    void SetChecked(const QList<int> &ids);
    QString IdText() const; // "3,7,12"
    void SetIdText(const QString &text);
    QListWidget *List() const;
    QCheckBox *AllBox() const;

Q_SIGNALS:
    void ValueChanged();

private:
    void UpdateAllBox();
    QListWidget *list_;
    QCheckBox *all_;
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
    QRadioButton *Button(int index) const;

Q_SIGNALS:
    void ValueChanged();

private:
    QList<QRadioButton *> buttons_;
};

// Where a look-up's choices come from. T-SQL; `columns` are (field, heading) pairs of the drop-down list, the first one is shown in the box.
struct CORVEX_API TLookupSource {
    QString from;
    QString key;
    QList<std::pair<QString, QString>> columns;
    QString where;
    TDbParams params;
    QString orderBy; // "" = first column
};

// A look-up of a record by id: a drop-down with several columns and headings, opened by the button, Alt+Down or F4; typing finds by the start of
// any column; Del or Backspace on the closed box empties it when it may be empty. Each item's Qt::UserRole is the id.
class CORVEX_API TqsLookupCombo final : public QComboBox
{
    Q_OBJECT
    Q_PROPERTY(int key READ Key WRITE SetKey NOTIFY ValueChanged)
public:
    explicit TqsLookupCombo(QWidget *parent = nullptr);
    ~TqsLookupCombo() override;
    void SetSource(const TLookupSource &source);
    void SetMayBeEmpty(bool may); // default true
    // Reads the choices again and keeps the key; called when the control is first shown or asked for. Throws TDbError.
    void Reload();
    int Key() const; // 0: empty
    // Selects by id; an id that the choices do not hold (inactive, deleted) is kept and shown as "#<id>", so that it is not lost on save.
    void SetKey(int key);
    // A column of the chosen record; invalid when empty.
    QVariant Field(QStringView field) const;

Q_SIGNALS:
    void ValueChanged();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showPopup() override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
