// SPDX-License-Identifier: Apache-2.0
#include "framework/Kvutils.h"

#include <QApplication>
#include <QFileDialog>
#include <QHash>
#include <QLoggingCategory>
#include <QPushButton>

#include "framework/data/CorvexADOQuery.h"

namespace {

Q_LOGGING_CATEGORY(lcUser, "corvex.user")

QHash<qlonglong, TCorvexMessage> &Stored()
{
    static QHash<qlonglong, TCorvexMessage> stored;
    return stored;
}

QList<TGlobalListener *> &Listeners()
{
    static QList<TGlobalListener *> listeners;
    return listeners;
}

// The data layer has no windows of its own: what it reports is shown here.
const bool presenterSet = [] {
    SetErrorPresenter([](const QString &text) { ErrorMessage(text); });
    return true;
}();

QPointer<QWidget> &ControlWindow()
{
    static QPointer<QWidget> window;
    return window;
}

// The window that a box belongs to: the innermost modal one, else the active one.
QWidget *OwnerWindow()
{
    if (QWidget *modal = QApplication::activeModalWidget())
        return modal;
    return QApplication::activeWindow();
}

QMessageBox::StandardButton ShowBox(QMessageBox::Icon icon, const QString &text, QMessageBox::StandardButtons buttons,
                                    const QString &title = QApplication::applicationDisplayName())
{
    QMessageBox box(icon, title, text, buttons, OwnerWindow());
    box.setObjectName(QStringLiteral("msgBox"));
    box.setTextFormat(Qt::PlainText);
    if (buttons.testFlag(QMessageBox::No)) {
        box.setDefaultButton(QMessageBox::No);
        box.setEscapeButton(QMessageBox::No);
    }
    // An hourglass left by the caller would hide that an answer is asked for.
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    const int answer = box.exec();
    QApplication::restoreOverrideCursor();
    return QMessageBox::StandardButton(answer);
}

} // namespace

bool ConfMessage(const QString &text, QMessageBox::StandardButtons buttons)
{
    return ShowBox(QMessageBox::Question, text, buttons) == QMessageBox::Yes;
}

QMessageBox::StandardButton InfoMessage(const QString &text, QMessageBox::StandardButtons buttons)
{
    return ShowBox(QMessageBox::Information, text, buttons);
}

QMessageBox::StandardButton WarnMessage(const QString &text, QMessageBox::StandardButtons buttons)
{
    return ShowBox(QMessageBox::Warning, text, buttons);
}

QMessageBox::StandardButton ErrorMessage(const QString &text, QMessageBox::StandardButtons buttons)
{
    return ShowBox(QMessageBox::Critical, text, buttons);
}

int ChoiceMessage(const QString &text, const QString &details, const QStringList &answers, int escape)
{
    QMessageBox box(QMessageBox::Question, QApplication::applicationDisplayName(), text, QMessageBox::NoButton,
                    OwnerWindow());
    box.setObjectName(QStringLiteral("msgBox"));
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(details);
    QList<QPushButton *> buttons;
    for (int i = 0; i < answers.size(); ++i) {
        buttons.append(box.addButton(answers[i], QMessageBox::ActionRole));
        buttons.last()->setObjectName(QStringLiteral("btnAnswer%1").arg(i));
    }
    box.setDefaultButton(buttons.value(escape));
    box.setEscapeButton(buttons.value(escape));
    box.exec();
    for (int i = 0; i < buttons.size(); ++i) {
        if (box.clickedButton() == buttons[i])
            return i;
    }
    return escape;
}

void ReturnMessage(const QString &title, int returnValue, const QString &message)
{
    if (returnValue == 0 || message.isEmpty())
        return;
    ShowBox(returnValue == 2 ? QMessageBox::Warning : QMessageBox::Information, message, QMessageBox::Ok, title);
}

void ShowException(const std::exception &error, const QString &doing)
{
    const auto *database = dynamic_cast<const TDbError *>(&error);
    if (database && doing.isEmpty()) {
        PresentError(*database);
        return;
    }
    QString text = database ? database->message : QString::fromUtf8(error.what());
    if (!doing.isEmpty())
        text = doing + QStringLiteral("\n\n") + text;
    qCInfo(lcUser).noquote() << text;
    ErrorMessage(text);
}

QString FormatText(const QString &pattern, const QStringList &arguments)
{
    const QStringList parts = pattern.split(QStringLiteral("%s"));
    QString text = parts.first();
    for (qsizetype i = 1; i < parts.size(); ++i)
        text += arguments.value(i - 1) + parts[i];
    return text;
}

QString AskOpenFile(const QString &title, const QString &folder, const QString &filter)
{
    return QFileDialog::getOpenFileName(OwnerWindow(), title, folder, filter);
}

QString AskSaveFile(const QString &title, const QString &proposal, const QString &filter)
{
    return QFileDialog::getSaveFileName(OwnerWindow(), title, proposal, filter);
}

QString AskFolder(const QString &title, const QString &folder)
{
    return QFileDialog::getExistingDirectory(OwnerWindow(), title, folder);
}

void PushCursor(Qt::CursorShape shape)
{
    QApplication::setOverrideCursor(shape);
}

void PopCursor()
{
    QApplication::restoreOverrideCursor();
}

qlonglong SetGlobalMessageInt(uint Msg, qlonglong WParam, qlonglong LParam, void *Ptr)
{
    static qlonglong last = 0;
    Stored().insert(++last, TCorvexMessage{Msg, WParam, LParam, Ptr, 0});
    return last;
}

bool TakeGlobalMessage(qlonglong handle, TCorvexMessage &message)
{
    const auto found = Stored().constFind(handle);
    if (found == Stored().constEnd())
        return false;
    message = *found;
    Stored().erase(found);
    return true;
}

QWidget *CorvexControl()
{
    return ControlWindow();
}

void SetCorvexControl(QWidget *window)
{
    ControlWindow() = window;
}

QEvent::Type TControlEvent::EventType()
{
    static const int type = QEvent::registerEventType();
    return QEvent::Type(type);
}

void PostControlMessage(uint message, qlonglong handle)
{
    if (QWidget *window = CorvexControl())
        QCoreApplication::postEvent(window, new TControlEvent(message, handle));
}

qlonglong SendControlMessage(uint message, qlonglong handle)
{
    QWidget *window = CorvexControl();
    if (!window)
        return 0;
    TControlEvent event(message, handle);
    QCoreApplication::sendEvent(window, &event);
    return event.Result;
}

void BroadcastChange(uint Msg, int id)
{
    PostControlMessage(kGlobalNotification, SetGlobalMessageInt(Msg, id, 0, nullptr));
}

TGlobalListener::TGlobalListener()
{
    Listeners().append(this);
}

TGlobalListener::~TGlobalListener()
{
    Listeners().removeOne(this);
}

void DeliverGlobalMessage(TCorvexMessage &message)
{
    // A listener may open or close others: walk a copy, skip those that have gone.
    const QList<TGlobalListener *> open = Listeners();
    for (TGlobalListener *listener : open) {
        if (!Listeners().contains(listener))
            continue;
        try {
            listener->GlobalMessage(message);
        } catch (const std::exception &error) {
            ShowException(error);
        }
    }
}
