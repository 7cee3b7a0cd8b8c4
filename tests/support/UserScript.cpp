// SPDX-License-Identifier: Apache-2.0
#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>

#include "tests/support/TestSupport.h"

namespace {

constexpr int kPollMs = 1;
constexpr int kTicksForActivation = 500;
constexpr qint64 kWatchdogMs = 30'000;

QString DescribeWindow(const QWidget &window)
{
    if (const auto *box = qobject_cast<const QMessageBox *>(&window))
        return QStringLiteral("box \"%1\"%2")
            .arg(box->text(), box->informativeText().isEmpty() ? QString() : " (" + box->informativeText() + u')');
    return QStringLiteral("window \"%1\" (%2)").arg(window.objectName(), window.windowTitle());
}

} // namespace

QString TUserScript::TStep::Describe() const
{
    switch (kind) {
    case Kind::Box:
        return QStringLiteral("box \"%1\"").arg(name);
    case Kind::Dialog:
        return QStringLiteral("window \"%1\"").arg(name);
    case Kind::File:
        return QStringLiteral("file dialog \"%1\"").arg(name);
    }
    return {};
}

TUserScript::TUserScript()
{
    connect(&timer_, &QTimer::timeout, this, &TUserScript::Tick);
    timer_.start(kPollMs);
    sinceProgress_.start();
}

TUserScript::~TUserScript() = default;

TUserScript &TUserScript::Box(const QString &text, QMessageBox::StandardButton answer)
{
    steps_.append({TStep::Kind::Box, text, answer, {}, {}});
    return *this;
}

TUserScript &TUserScript::Box(const QString &text, const QString &answer)
{
    steps_.append({TStep::Kind::Box, text, QMessageBox::NoButton, answer, {}});
    return *this;
}

TUserScript &TUserScript::Dialog(const QString &objectName, std::function<void(QDialog &)> drive)
{
    steps_.append({TStep::Kind::Dialog, objectName, QMessageBox::NoButton, {}, std::move(drive)});
    return *this;
}

TUserScript &TUserScript::FileDialog(const QString &title, const QString &file)
{
    steps_.append({TStep::Kind::File, title, QMessageBox::NoButton, file, {}});
    return *this;
}

void TUserScript::Tick()
{
    QWidget *window = QApplication::activeModalWidget();
    if (!window || !window->isVisible()) {
        sinceProgress_.start();
        waited_ = 0;
        return;
    }
    if (sinceProgress_.elapsed() > kWatchdogMs) {
        failures_ += "Nothing happened for too long at " + DescribeWindow(*window);
        window->hide(); // ends its event loop whatever it thinks of being closed
        sinceProgress_.start();
        return;
    }
    if (driving_.contains(window))
        return; // its driver is at work further out
    // Focus exists in active windows only.
    if (QApplication::activeWindow() != window && ++waited_ < kTicksForActivation)
        return;
    waited_ = 0;
    sinceProgress_.start();
    Handle(*window);
}

void TUserScript::Handle(QWidget &window)
{
    if (next_ >= steps_.size()) {
        Refuse(window, "nothing more was expected");
        return;
    }
    const TStep step = steps_[next_];
    if (!Matches(step, window)) {
        Refuse(window, "expected was " + step.Describe());
        return;
    }
    ++next_;
    // A timer does not tick while its own slot runs: windows that open from here on need another.
    QTimer inner;
    connect(&inner, &QTimer::timeout, this, &TUserScript::Tick);
    inner.start(kPollMs);
    const QPointer<QWidget> guard(&window);
    driving_.append(&window);
    try {
        Perform(step, window);
    } catch (const std::exception &error) {
        failures_ += QStringLiteral("In %1: %2").arg(step.Describe(), QString::fromUtf8(error.what()));
        if (guard)
            guard->close();
    }
    driving_.removeOne(&window);
}

bool TUserScript::Matches(const TStep &step, const QWidget &window) const
{
    switch (step.kind) {
    case TStep::Kind::Box: {
        const auto *box = qobject_cast<const QMessageBox *>(&window);
        return box && box->text() == step.name;
    }
    case TStep::Kind::Dialog:
        return (step.name.isEmpty() || window.objectName() == step.name) && qobject_cast<const QDialog *>(&window) &&
               !qobject_cast<const QMessageBox *>(&window);
    case TStep::Kind::File:
        return qobject_cast<const QFileDialog *>(&window) && window.windowTitle() == step.name;
    }
    return false;
}

void TUserScript::Perform(const TStep &step, QWidget &window)
{
    if (step.kind == TStep::Kind::Dialog) {
        step.drive(static_cast<QDialog &>(window));
        return;
    }
    if (step.kind == TStep::Kind::File) {
        auto &dialog = static_cast<QFileDialog &>(window);
        if (step.caption.isEmpty()) {
            dialog.reject();
            return;
        }
        dialog.selectFile(step.caption);
        static_cast<QDialog &>(dialog).accept();
        return;
    }
    auto &box = static_cast<QMessageBox &>(window);
    if (step.button != QMessageBox::NoButton) {
        if (QAbstractButton *button = box.button(step.button)) {
            button->click();
            return;
        }
    } else {
        for (QAbstractButton *button : box.buttons()) {
            if (button->text() == step.caption) {
                button->click();
                return;
            }
        }
    }
    box.close();
    throw std::runtime_error("The box has no such button.");
}

void TUserScript::Refuse(QWidget &window, const QString &why)
{
    failures_ += QStringLiteral("Unexpected %1; %2").arg(DescribeWindow(window), why);
    const QPointer<QWidget> guard(&window);
    QTimer inner; // closing may ask
    connect(&inner, &QTimer::timeout, this, &TUserScript::Tick);
    inner.start(kPollMs);
    driving_.append(&window);
    if (auto *dialog = qobject_cast<QDialog *>(&window))
        dialog->reject();
    if (guard && guard->isVisible())
        guard->hide();
    driving_.removeOne(&window);
}

bool TUserScript::Verify()
{
    while (next_ < steps_.size())
        failures_ += "Never came: " + steps_[next_++].Describe();
    return failures_.isEmpty();
}

QByteArray TUserScript::Report() const
{
    return failures_.join(u'\n').toUtf8();
}
