// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QEvent>
#include <QList>
#include <QMessageBox>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <exception>
#include <functional>

#include "framework/Export.h"

// The one door to the user, and the way news travels between screens.

// ---- messages. All are modal QMessageBoxes with exactly the given text; objectName "msgBox".
// Yes/No question; true on Yes. No is the default button and what Esc answers.
CORVEX_API bool ConfMessage(const QString &text,
                            QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No);
// One OK button unless `buttons` says otherwise; gives the button pressed.
CORVEX_API QMessageBox::StandardButton InfoMessage(const QString &text,
                                                   QMessageBox::StandardButtons buttons = QMessageBox::Ok);
CORVEX_API QMessageBox::StandardButton WarnMessage(const QString &text,
                                                   QMessageBox::StandardButtons buttons = QMessageBox::Ok);
CORVEX_API QMessageBox::StandardButton ErrorMessage(const QString &text,
                                                    QMessageBox::StandardButtons buttons = QMessageBox::Ok);
// A question with named answers; gives the index of the answer, `escape` when the box is closed.
CORVEX_API int ChoiceMessage(const QString &text, const QString &details, const QStringList &answers, int escape);
// What a procedure reports of its work, under a title of its own: nothing for 0, `message` as information for 1 (done,
// with something to tell) and as a warning for 2 (refused).
CORVEX_API void ReturnMessage(const QString &title, int returnValue, const QString &message);
// Reports what went wrong: a TDbError in the server's words, anything else by its text. Also logged.
CORVEX_API void ShowException(const std::exception &error, const QString &doing = {});

// Puts arguments into a text with "%s" places, one each, in order. An argument that itself holds "%s" stays as it is.
CORVEX_API QString FormatText(const QString &pattern, const QStringList &arguments);

// File choices, "" when the user cancels. `filter` as QFileDialog takes it.
CORVEX_API QString AskOpenFile(const QString &title, const QString &folder, const QString &filter);
CORVEX_API QString AskSaveFile(const QString &title, const QString &proposal, const QString &filter);
CORVEX_API QString AskFolder(const QString &title, const QString &folder);

// ---- cursor stack: each Push needs its Pop; the cursor before comes back.
CORVEX_API void PushCursor(Qt::CursorShape shape);
CORVEX_API void PopCursor();
// Hourglass for the length of a block.
class CORVEX_API TBusyCursor
{
public:
    TBusyCursor() { PushCursor(Qt::WaitCursor); }
    ~TBusyCursor() { Restore(); }
    TBusyCursor(const TBusyCursor &) = delete;
    TBusyCursor &operator=(const TBusyCursor &) = delete;
    void Restore()
    {
        if (active_)
            PopCursor();
        active_ = false;
    }

private:
    bool active_ = true;
};

// ---- messages between package, host and screens
inline constexpr uint kGlobalNotification =
    5038;                                  // posted: the host delivers a stored notification to every open screen
inline constexpr uint kHostRequest = 5030; // sent: the host carries out a stored request and answers at once

struct TCorvexMessage
{
    uint Msg = 0;
    qlonglong WParam = 0; // the record id of a change notification (0: none in particular)
    qlonglong LParam = 0;
    void *Ptr = nullptr;
    qlonglong Result = 0;
};

// Stores a notification until it is taken and gives its handle (never 0).
CORVEX_API qlonglong SetGlobalMessageInt(uint Msg, qlonglong WParam, qlonglong LParam, void *Ptr);
// Takes a stored notification out; false for a handle that is unknown or was taken before.
CORVEX_API bool TakeGlobalMessage(qlonglong handle, TCorvexMessage &message);

// The host's control window; nullptr before the host has set it.
CORVEX_API QWidget *CorvexControl();
CORVEX_API void SetCorvexControl(QWidget *window);

// What reaches the control window: an event of this type, posted (5038) or sent (5030).
class CORVEX_API TControlEvent final : public QEvent
{
public:
    static QEvent::Type EventType();
    TControlEvent(uint message, qlonglong handle)
        : QEvent(EventType())
        , Message(message)
        , Handle(handle)
    {}
    const uint Message;
    const qlonglong Handle;
    qlonglong Result = 0; // what the host answers to a sent one
};
// Posts to the control window; delivered later, in order. Nothing happens without a control window.
CORVEX_API void PostControlMessage(uint message, qlonglong handle);
// Sends to the control window and gives its answer (0 without one).
CORVEX_API qlonglong SendControlMessage(uint message, qlonglong handle);

// Tells every open screen that records of a kind changed: stores (Msg, id) and posts it as 5038.
CORVEX_API void BroadcastChange(uint Msg, int id);

// ---- open screens: every form that wants the host's news, in order of opening.
class CORVEX_API TGlobalListener
{
public:
    TGlobalListener();
    virtual ~TGlobalListener();
    TGlobalListener(const TGlobalListener &) = delete;
    TGlobalListener &operator=(const TGlobalListener &) = delete;
    virtual void GlobalMessage(TCorvexMessage &message) = 0;
};
// The host's delivery of a notification to every listener that is open when it starts. An error in one screen is shown
// and does not keep the others from the news.
CORVEX_API void DeliverGlobalMessage(TCorvexMessage &message);
