// SPDX-License-Identifier: Apache-2.0
#include "host/Batch.h"

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QDir>
#include <QPointer>
#include <QSaveFile>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTextStream>
#include <QTimer>

#include "framework/Kvutils.h"
#include "framework/grid/qsGrid.h"
#include "host/MainWindow.h"

namespace {

constexpr int kSettleMs = 2000;

// Runs the event loop until what was opened has drawn itself, and a grid has counted its rows.
void Settle(QWidget *screen)
{
    const auto *grid = screen ? screen->findChild<TqsGrid *>() : nullptr;
    const QDeadlineTimer deadline(kSettleMs);
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    } while (grid && grid->RecordCount() < 0 && !deadline.hasExpired());
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

// Takes the pictures of modal windows, and closes them so that whoever waits for them goes on.
class TPhotographer final : public QObject
{
public:
    // Without a folder no window is expected: each is a problem.
    explicit TPhotographer(const QString &folder)
        : folder_(folder)
    {
        connect(&timer_, &QTimer::timeout, this, &TPhotographer::LookForModal);
        timer_.start(15);
    }

    // The name that the next pictures get.
    void SetName(const QString &name)
    {
        name_ = name;
        taken_ = 0;
    }
    int Taken() const { return taken_; }
    int Total() const { return total_; }
    const QStringList &Problems() const { return problems_; }
    void AddProblem(const QString &text) { problems_.append(QStringLiteral("%1: %2").arg(name_, text)); }

    void Take(QWidget *window, const QString &suffix = {})
    {
        if (folder_.isEmpty()) {
            AddProblem(QStringLiteral("the window \"%1\" opened").arg(window->windowTitle()));
            return;
        }
        const QString file = QStringLiteral("%1/%2%3.png").arg(folder_, name_, suffix);
        if (window->grab().save(file)) {
            ++taken_;
            ++total_;
        } else {
            AddProblem(QStringLiteral("cannot write %1").arg(file));
        }
    }

private:
    void LookForModal()
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || busy_)
            return;
        // Seen twice before the picture: by then it is laid out and filled.
        if (modal != seen_) {
            seen_ = modal;
            looks_ = 0;
            return;
        }
        busy_ = true;
        if (looks_++ == 0)
            TakeModal(modal);
        busy_ = false;
        // Not from here: a box that the closing brings up would wait for this timer, which does not fire inside itself.
        QTimer::singleShot(0, modal, [this, modal] { Close(modal); });
    }

    void TakeModal(QWidget *modal)
    {
        if (modal->objectName() == QLatin1String("msgBox")) {
            AddProblem(modal->property("text").toString());
            return;
        }
        auto *pages = modal->findChild<QTabWidget *>();
        if (!pages) {
            Take(modal);
            return;
        }
        for (int i = 0; i < pages->count(); ++i) {
            if (!pages->isTabEnabled(i) || !pages->isTabVisible(i))
                continue;
            pages->setCurrentIndex(i);
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            Take(modal, i == 0 ? QString() : QStringLiteral("_page%1").arg(i + 1));
        }
    }

    void Close(QWidget *modal)
    {
        auto *dialog = qobject_cast<QDialog *>(modal);
        if (dialog && looks_ < 20)
            dialog->reject();
        else if (dialog)
            dialog->QDialog::done(QDialog::Rejected); // it does not let itself be cancelled
        else
            modal->close();
    }

    const QString folder_;
    QTimer timer_;
    QString name_;
    QPointer<QWidget> seen_;
    QStringList problems_;
    int looks_ = 0;
    int taken_ = 0;
    int total_ = 0;
    bool busy_ = false;
};

void CollectScreens(const QList<TNavigationNode> &nodes, QList<TNavigationNode> &screens)
{
    for (const TNavigationNode &node : nodes) {
        const bool known = std::any_of(screens.cbegin(), screens.cend(), [&node](const TNavigationNode &other) {
            return other.className == node.className;
        });
        if (node.message != 0 && node.available && !known)
            screens.append(node);
        CollectScreens(node.children, screens);
    }
}

} // namespace

void Say(FILE *stream, const QString &text)
{
    QTextStream(stream) << text << Qt::endl;
}

bool TakeTour(TfrmMain &window, const QString &folder)
{
    if (!QDir().mkpath(folder)) {
        Say(stderr, QStringLiteral("Cannot make the folder %1.").arg(folder));
        return false;
    }
    TPhotographer photographer(QDir(folder).absolutePath());
    QList<TNavigationNode> screens;
    CollectScreens(window.Navigation(), screens);

    Settle(&window);
    photographer.SetName(QStringLiteral("00_frmMain"));
    photographer.Take(&window);
    int number = 0;
    for (const TNavigationNode &node : screens) {
        const QString name = QStringLiteral("%1_%2").arg(++number, 2, 10, QLatin1Char('0')).arg(node.className);
        photographer.SetName(name);
        if (!window.SendPackageMessage(node.message, 0, 0))
            photographer.AddProblem(QStringLiteral("message %1 was not handled").arg(node.message));
        const QPointer<QWidget> screen = window.CurrentScreen();
        if (screen) {
            if (screen->objectName() != node.className)
                photographer.AddProblem(QStringLiteral("%1 opened instead").arg(screen->objectName()));
            Settle(screen);
            photographer.Take(&window);
            const auto *grid = screen->findChild<TqsGrid *>();
            const int key = grid ? grid->FocusedKey() : 0;
            if (auto *notes = screen->findChild<QAction *>(QStringLiteral("mniNotes"));
                notes && number == 1 && key != 0) {
                photographer.SetName(QStringLiteral("95_frmNotes"));
                notes->trigger();
            }
            // A list's dialog has the next number.
            const uint dialog = node.message + 1;
            if (window.CanHandleMessage(dialog)) {
                if (key != 0) {
                    photographer.SetName(name + QStringLiteral("_edit"));
                    window.SendPackageMessage(dialog, key, 0);
                }
                photographer.SetName(name + QStringLiteral("_new"));
                window.SendPackageMessage(dialog, 0, 0);
            }
        }
        if (photographer.Taken() == 0)
            photographer.AddProblem(QStringLiteral("no window opened"));
        window.CloseAllScreens();
        Settle(nullptr);
    }

    const auto takeHostWindow = [&](const char *action, const char *name) {
        photographer.SetName(QString::fromLatin1(name));
        if (auto *entry = window.findChild<QAction *>(QString::fromLatin1(action)))
            entry->trigger();
    };
    takeHostWindow("mniSettings", "90_frmSettings");
    takeHostWindow("mniKeys", "91_frmHelp");
    takeHostWindow("mniChangeAgent", "92_frmAgent");
    takeHostWindow("mniOpenDatabase", "93_frmStart");
    takeHostWindow("mniActivityLog", "94_frmActivityLog");
    Settle(window.CurrentScreen());
    photographer.Take(&window);
    window.CloseAllScreens();

    Say(stdout, QStringLiteral("%1 pictures of %2 screens in %3")
                    .arg(photographer.Total())
                    .arg(screens.size())
                    .arg(QDir::toNativeSeparators(QDir(folder).absolutePath())));
    for (const QString &problem : photographer.Problems())
        Say(stderr, problem);
    return photographer.Problems().isEmpty();
}

bool ExportList(TfrmMain &window, uint message, const QString &file)
{
    // A box here would wait for an answer that nobody gives.
    TPhotographer boxes{QString()};
    boxes.SetName(QStringLiteral("message %1").arg(message));
    const bool handled = window.SendPackageMessage(message, 0, 0);
    QWidget *screen = window.CurrentScreen();
    Settle(screen);
    const auto *grid = screen ? screen->findChild<TqsGrid *>() : nullptr;
    for (const QString &problem : boxes.Problems())
        Say(stderr, problem);
    if (!handled || !grid) {
        Say(stderr, QStringLiteral("Message %1 opens no list.").arg(message));
        return false;
    }
    QSaveFile out(file);
    bool written = out.open(QIODevice::WriteOnly);
    try {
        if (written)
            grid->ExportCsv(out);
        written = written && out.commit();
    } catch (const std::exception &error) {
        Say(stderr, QString::fromUtf8(error.what()));
        out.cancelWriting();
        written = false;
    }
    if (!written)
        Say(stderr, QStringLiteral("Cannot write %1: %2").arg(QDir::toNativeSeparators(file), out.errorString()));
    else
        Say(stdout, QDir::toNativeSeparators(file));
    window.CloseAllScreens();
    return written;
}
