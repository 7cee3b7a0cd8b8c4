// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <stdexcept>

#include "framework/Corvexpackageintf.h"
#include "framework/Kvutils.h"
#include "framework/Screens.h"
#include "framework/data/Database.h"

// ---- databases

// A fresh database made by the product's own scripts, in a folder of its own; the main connection and the
// installation's settings are its as long as it lives. The scripts are run once and the file that they make is copied.
class TTemplateDatabase
{
public:
    enum class Content { Empty, Demo };
    // Throws std::runtime_error or TDbError when the scripts cannot be run.
    explicit TTemplateDatabase(Content content = Content::Empty, int country = 5);
    ~TTemplateDatabase();
    TTemplateDatabase(const TTemplateDatabase &) = delete;
    TTemplateDatabase &operator=(const TTemplateDatabase &) = delete;

    QString FileName() const { return file_; }
    // Sets one column of the installation's defaults and reads them again.
    void SetDefault(const QString &column, const QVariant &value);

private:
    QTemporaryDir folder_;
    QString file_;
};

// Rows of the main connection as texts, NULL as "NULL", a bit as "0" or "1".
QList<QStringList> RowsOf(const QString &select, const TDbParams &params = {});
// The one value of a statement that gives one row; throws std::runtime_error otherwise.
QVariant ValueOf(const QString &select, const TDbParams &params = {});

// ---- controls

// For init(): a warning fails the test, save what the offscreen platform says that it cannot do.
void FailOnWarnings();

// The control with this object name below `root`; throws when there is none, or not one of this type.
template <class T> T &FindControl(QObject *root, const QString &name)
{
    if (T *found = root->findChild<T *>(name))
        return *found;
    throw std::runtime_error(QStringLiteral("No %1 \"%2\" in \"%3\"")
                                 .arg(QLatin1String(T::staticMetaObject.className()), name, root->objectName())
                                 .toStdString());
}

// Shows a window and waits until it is active: before that nothing has the focus.
void ShowActive(QWidget &window);
// Takes the place of what stands in an edit control, key by key.
void Type(QWidget &control, const QString &text);
// The same through the clipboard.
void Paste(QWidget &control, const QString &text);
void PressKey(QWidget &control, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
// Presses a button that the user could press; throws when it is hidden or disabled.
void Click(QAbstractButton &button);
void PressOK(QWidget &dialog);
void PressCancel(QWidget &dialog);
// Triggers an action that the user could trigger; throws when it is disabled.
void Trigger(QWidget &screen, const QString &action);
// The name of the control in a window that has the focus; a composite's part answers with the composite's name when it
// has one of the controls' prefixes.
QString FocusName(const QWidget &window);

// ---- the package

// The interface of the real package file, loaded when it is first asked for. Throws std::runtime_error when that fails.
TCorvexPackageInterface &ThePackage();
// Sends it a message; gives what it says of having handled it.
bool SendToPackage(uint MsgId, qlonglong Param1 = 0, qlonglong Param2 = 0);

// ---- modal windows

// Plays the user at modal windows: an ordered list of the windows that must come and what he does in each. One that is
// not planned is closed and is a failure; so is one that never came. Nothing waits: every window is answered when it is
// up.
class TUserScript final : public QObject
{
public:
    TUserScript();
    ~TUserScript() override;

    // A message box with exactly this text, answered with a standard button or the button that bears a caption.
    TUserScript &Box(const QString &text, QMessageBox::StandardButton answer = QMessageBox::Ok);
    TUserScript &Box(const QString &text, const QString &answer);
    // A window by object name ("": whatever window that is no box), driven by a function that has to close it in the
    // end (or leave it open for the next Dialog of the same name). Windows that open meanwhile are the next ones of the
    // list.
    TUserScript &Dialog(const QString &objectName, std::function<void(QDialog &)> drive);
    // A file dialog by title: chooses the file, or cancels with "".
    TUserScript &FileDialog(const QString &title, const QString &file);

    // True when every planned window came, in order, and no other.
    bool Verify();
    QByteArray Report() const; // what went wrong, for QVERIFY2

private:
    struct TStep
    {
        enum class Kind { Box, Dialog, File };
        Kind kind;
        QString name; // text, object name or title
        QMessageBox::StandardButton button = QMessageBox::NoButton;
        QString caption; // of the button, or the file
        std::function<void(QDialog &)> drive;
        QString Describe() const;
    };
    void Tick();
    void Handle(QWidget &window);
    bool Matches(const TStep &step, const QWidget &window) const;
    void Perform(const TStep &step, QWidget &window);
    void Refuse(QWidget &window, const QString &why);

    QList<TStep> steps_;
    qsizetype next_ = 0;
    QStringList failures_;
    QList<QWidget *> driving_;
    QTimer timer_;
    QElapsedTimer sinceProgress_;
    int waited_ = 0;
};
#define VERIFY_SCRIPT(script) QVERIFY2((script).Verify(), (script).Report().constData())

// ---- the host

// Stands in for the host's control window: keeps what was posted or sent, in order, unpacked.
class TNotificationRecorder final : public QWidget
{
public:
    explicit TNotificationRecorder(bool deliver = true); // deliver: hands 5038 on to the open screens, as the host does
    ~TNotificationRecorder() override;

    QList<TCorvexMessage> Notifications;                  // 5038
    QList<TCorvexMessage> Requests;                       // 5030
    std::function<qlonglong(TCorvexMessage &)> OnRequest; // the answer to a request; 0 without
    // Lets what is posted arrive.
    void Process();
    // "9227:12 9227:0" of the notifications since the last call.
    QString TakeLog();

protected:
    bool event(QEvent *event) override;

private:
    bool deliver_;
};

// Stands in for the host: shows screens as windows and keeps layouts in memory.
class TMemoryScreenHost final : public TScreenHost
{
public:
    TMemoryScreenHost();
    ~TMemoryScreenHost() override; // closes the screens that are still open
    TMemoryScreenHost(const TMemoryScreenHost &) = delete;
    TMemoryScreenHost &operator=(const TMemoryScreenHost &) = delete;

    void ShowScreen(QWidget *screen) override;
    QVariantMap LoadLayout(const QString &name) override;
    void SaveLayout(const QString &name, const QVariantMap &layout) override;
    void ShowHelp(int helpContext, const QString &screenTitle) override;

    QList<QPointer<QWidget>> Screens; // in order of opening
    QMap<QString, QVariantMap> Layouts;
    QList<int> HelpContexts;
};
