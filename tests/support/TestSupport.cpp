// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegularExpression>

namespace {

void SelectAll(QWidget &control)
{
    control.setFocus();
    if (auto *edit = qobject_cast<QLineEdit *>(&control)) {
        edit->selectAll();
        if (!edit->inputMask().isEmpty())
            QTest::keyClick(edit, Qt::Key_Delete);
        edit->home(false);
        edit->selectAll();
    } else if (auto *memo = qobject_cast<QPlainTextEdit *>(&control)) {
        memo->selectAll();
    }
}

} // namespace

void FailOnWarnings()
{
    QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support )"));
}

void ShowActive(QWidget &window)
{
    window.show();
    window.activateWindow(); // offscreen, a closed dialog does not give the activation back
    if (!QTest::qWaitForWindowActive(&window))
        throw std::runtime_error(("Not active: " + window.objectName()).toStdString());
}

void Type(QWidget &control, const QString &text)
{
    SelectAll(control);
    if (text.isEmpty())
        QTest::keyClick(&control, Qt::Key_Delete);
    for (const QChar c : text) {
        if (c.unicode() < 0x7f)
            QTest::keyClick(&control, c.toLatin1());
        else
            QTest::sendKeyEvent(QTest::Click, &control, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
}

void Paste(QWidget &control, const QString &text)
{
    SelectAll(control);
    QApplication::clipboard()->setText(text);
    QTest::keySequence(&control, QKeySequence::Paste);
}

void PressKey(QWidget &control, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(&control, key, modifiers);
}

void Click(QAbstractButton &button)
{
    if (!button.isVisible() || !button.isEnabled())
        throw std::runtime_error(("Cannot be pressed: " + button.objectName()).toStdString());
    button.click();
}

void PressOK(QWidget &dialog)
{
    Click(FindControl<QPushButton>(&dialog, "btnOK"));
}

void PressCancel(QWidget &dialog)
{
    Click(FindControl<QPushButton>(&dialog, "btnCancel"));
}

void Trigger(QWidget &screen, const QString &action)
{
    auto &found = FindControl<QAction>(&screen, action);
    if (!found.isEnabled())
        throw std::runtime_error(("Disabled: " + action).toStdString());
    found.trigger();
}

QString FocusName(const QWidget &window)
{
    static const QRegularExpression controlName("^(edt|cbx|chk|btn|grd|dte|rgp|lst|mmo)[A-Z]");
    const QWidget *focus = window.focusWidget();
    QString name = focus ? focus->objectName() : QString();
    for (const QWidget *control = focus; control && control != &window; control = control->parentWidget()) {
        if (controlName.match(control->objectName()).hasMatch())
            name = control->objectName();
    }
    return name;
}
