// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>

#include "framework/Corvexpackagemanager.h"
#include "tests/support/TestSupport.h"

TCorvexPackageInterface &ThePackage()
{
    static TCorvexPackageInterface *const package = [] {
        const QString name = "qpMaintenance.bpl";
        GlobalPackageList().AddObject(name, LoadPackage(name));
        auto *made = qobject_cast<TCorvexPackageInterface *>(CreateByClassName("TkpIMaintenance"));
        if (!made)
            throw std::runtime_error("The package offers no TkpIMaintenance.");
        made->setParent(qApp);
        return made;
    }();
    return *package;
}

bool SendToPackage(uint MsgId, qlonglong Param1, qlonglong Param2)
{
    bool handled = false;
    ThePackage().NonVisiblePkgMessage(MsgId, Param1, Param2, handled);
    return handled;
}

TNotificationRecorder::TNotificationRecorder(bool deliver)
    : deliver_(deliver)
{
    setObjectName("TNotificationRecorder");
    SetCorvexControl(this);
}

TNotificationRecorder::~TNotificationRecorder()
{
    if (CorvexControl() == this)
        SetCorvexControl(nullptr);
}

bool TNotificationRecorder::event(QEvent *event)
{
    if (event->type() != TControlEvent::EventType())
        return QWidget::event(event);
    auto &control = static_cast<TControlEvent &>(*event);
    TCorvexMessage message;
    if (!TakeGlobalMessage(control.Handle, message)) {
        qWarning("Message %u with a handle that nobody stored", control.Message);
        return true;
    }
    if (control.Message == kGlobalNotification) {
        Notifications += message;
        if (deliver_)
            DeliverGlobalMessage(message);
    } else {
        Requests += message;
        control.Result = OnRequest ? OnRequest(message) : 0;
    }
    return true;
}

void TNotificationRecorder::Process()
{
    QCoreApplication::sendPostedEvents(this, TControlEvent::EventType());
}

QString TNotificationRecorder::TakeLog()
{
    Process();
    QStringList texts;
    for (const TCorvexMessage &message : std::as_const(Notifications))
        texts += QStringLiteral("%1:%2").arg(message.Msg).arg(message.WParam);
    Notifications.clear();
    return texts.join(u' ');
}

TMemoryScreenHost::TMemoryScreenHost()
{
    SetScreenHost(this);
}

TMemoryScreenHost::~TMemoryScreenHost()
{
    for (const QPointer<QWidget> &screen : std::as_const(Screens)) {
        if (screen)
            screen->close();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    SetScreenHost(nullptr);
}

void TMemoryScreenHost::ShowScreen(QWidget *screen)
{
    Screens += screen;
    ShowActive(*screen);
}

QVariantMap TMemoryScreenHost::LoadLayout(const QString &name)
{
    return Layouts.value(name);
}

void TMemoryScreenHost::SaveLayout(const QString &name, const QVariantMap &layout)
{
    Layouts.insert(name, layout);
}

void TMemoryScreenHost::ShowHelp(int helpContext, const QString &)
{
    HelpContexts += helpContext;
}
