// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLineEdit>
#include <QString>
#include <QWidget>

#include <concepts>

#include "framework/Export.h"

// The ordered checks of a dialog: asked one after the other, the first that fails sets the text and the control that
// takes the focus, and none after it is asked. A condition may be a value or something callable; a callable one is
// called only when nothing failed before, so that a query for uniqueness costs nothing on a blank code.
class CORVEX_API TChecks
{
public:
    template <std::predicate Condition> void operator()(QWidget *control, Condition &&passes, const QString &text)
    {
        if (!Failed() && !passes())
            Fail(control, text);
    }
    void operator()(QWidget *control, bool passes, const QString &text)
    {
        if (!Failed() && !passes)
            Fail(control, text);
    }
    // Asked whatever failed before; its text takes the place of an earlier one.
    void Override(QWidget *control, bool passes, const QString &text)
    {
        if (!passes)
            Fail(control, text);
    }

    bool Failed() const { return !text_.isEmpty(); }
    const QString &ErrorText() const { return text_; }
    QWidget *Control() const { return control_; }

private:
    void Fail(QWidget *control, const QString &text)
    {
        control_ = control;
        text_ = text;
    }
    QWidget *control_ = nullptr;
    QString text_;
};

// Something other than blanks stands in the box.
inline bool NotBlank(const QLineEdit *edit)
{
    return !edit->text().trimmed().isEmpty();
}

// Codes are quoted in criteria throughout the product, so no code may hold an apostrophe.
inline bool NoApostrophe(const QLineEdit *edit)
{
    return !edit->text().contains(QLatin1Char('\''));
}
