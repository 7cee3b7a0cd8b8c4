// SPDX-License-Identifier: Apache-2.0
#include <QScopeGuard>
#include <QTextStream>
#include <QTimer>

#include "framework/Corvexpackagemanager.h"
#include "framework/Kvutils.h"
#include "framework/Screens.h"
#include "host/Agents.h"
#include "host/Application.h"
#include "host/Batch.h"
#include "host/HostSettings.h"
#include "host/MainWindow.h"
#include "host/Options.h"
#include "host/StartDlg.h"
#include "host/Theme.h"

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

// What the toolkit remarks on the offscreen platform and on a missing session says nothing to a user.
void DropPlatformRemarks(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    static const auto isRemark = [](const QString &line) {
        return line.contains(QLatin1String("propagateSizeHints")) || line.contains(QLatin1String("XDG_RUNTIME_DIR"));
    };
    if (type != QtWarningMsg || !isRemark(text))
        fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
}

bool CanAsk(const THostOptions &options)
{
    return !options.IsBatch() && QGuiApplication::platformName() != QLatin1String("offscreen");
}

std::unique_ptr<TCorvexPackageInterface> LoadMaintenance()
{
    const QString name = QStringLiteral("qpMaintenance.bpl");
    GlobalPackageList().AddObject(name, LoadPackage(name));
    std::unique_ptr<QObject> made(CreateByClassName(QStringLiteral("TkpIMaintenance")));
    auto *package = qobject_cast<TCorvexPackageInterface *>(made.get());
    if (!package)
        throw std::runtime_error("qpMaintenance.bpl does not offer TkpIMaintenance.");
    made.release();
    return std::unique_ptr<TCorvexPackageInterface>(package);
}

// What the command line names, else the database of the last run.
std::optional<TDatabaseChoice> FirstChoice(const THostOptions &options)
{
    std::optional<TDatabaseChoice> choice = TDatabaseChoice{};
    if (!options.newFile.isEmpty()) {
        choice->kind =
            options.demonstration ? TDatabaseChoice::Kind::CreateDemonstration : TDatabaseChoice::Kind::CreateEmpty;
        choice->file = options.newFile;
    } else if (!options.connection.isEmpty()) {
        choice->kind = TDatabaseChoice::Kind::Connect;
        choice->connection = options.connection;
    } else if (!options.database.isEmpty()) {
        choice->file = options.database;
    } else {
        choice = RememberedDatabase();
    }
    if (choice)
        choice->country = options.country;
    return choice;
}

// False when the user gave up. Throws when there is nobody to ask.
bool OpenFirstDatabase(const THostOptions &options)
{
    std::optional<TDatabaseChoice> choice = FirstChoice(options);
    std::unique_ptr<TDbConnection> connection;
    if (choice) {
        try {
            connection = OpenWithProgress(nullptr, *choice, options.scriptsFolder);
        } catch (const TCreationCancelled &) {
        } catch (const std::exception &error) {
            if (!CanAsk(options))
                throw;
            ShowException(error);
        }
    }
    if (!connection) {
        if (!CanAsk(options))
            throw std::runtime_error("No database: give --database, --connect or --new.");
        TDatabaseChoice proposal =
            choice.value_or(TDatabaseChoice{TDatabaseChoice::Kind::CreateDemonstration, {}, {}, {}});
        connection = AskForDatabase(nullptr, proposal, options.scriptsFolder);
        if (!connection)
            return false;
        choice = proposal;
    }
    SetMainConnection(std::move(connection));
    if (!options.IsBatch())
        RememberDatabase(*choice);
    return true;
}

// Ends the program once a window has been painted.
class TEndWhenPainted final : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        return QObject::eventFilter(watched, event);
    }
};

int RunBatch(TfrmMain &window, const THostOptions &options)
{
    bool done = true;
    for (const TExportRequest &request : options.exports)
        done = ExportList(window, request.message, request.file) && done;
    if (!options.tourFolder.isEmpty())
        done = TakeTour(window, options.tourFolder) && done;
    return done ? 0 : kFailed;
}

int Run(const THostOptions &options)
{
    auto package = LoadMaintenance();
    QApplication::setWindowIcon(ScreenIcon(QStringLiteral("app")));
    // While the application object and with it the database drivers are still there.
    const auto disconnectAtEnd = qScopeGuard([] { SetMainConnection(nullptr); });
    if (!OpenFirstDatabase(options))
        return 0;
    ChooseAgent(options.agent);
    TfrmMain window(std::move(package), options.scriptsFolder);
    TEndWhenPainted endWhenPainted;
    if (options.untilPainted)
        window.installEventFilter(&endWhenPainted);
    window.show();
    if (options.untilPainted)
        return QApplication::exec();
    if (options.IsBatch())
        return RunBatch(window, options);
    QTimer::singleShot(0, &window, [&window, &options] {
        for (const TOpenRequest &request : options.open) {
            if (!window.SendPackageMessage(request.message, request.param1, request.param2))
                Say(stderr, QStringLiteral("Message %1 was not handled.").arg(request.message));
        }
    });
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    // Answered without an application object, which needs a display that may not be there.
    if (words.contains(QStringLiteral("--help")) || words.contains(QStringLiteral("-h"))) {
        QTextStream(stdout) << OptionsHelp();
        return 0;
    }
    const bool hasDisplay = !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (NeedsOffscreen(words, hasDisplay))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen")
        qInstallMessageHandler(DropPlatformRemarks);

    THostApplication application(argc, argv);
    try {
        // Without the words that the toolkit took for itself.
        const THostOptions options = ParseOptions(QCoreApplication::arguments().mid(1));
        OpenHostSettings(options.settingsFile);
        ApplyColours(ColoursFromName(options.colours.isEmpty()
                                         ? HostSettings().value(QStringLiteral("window/colours")).toString()
                                         : options.colours));
        if (!options.packageFolder.isEmpty())
            AddPackageFolder(options.packageFolder);
        try {
            return Run(options);
        } catch (const std::exception &error) {
            if (CanAsk(options))
                ShowException(error);
            else
                Say(stderr, QString::fromUtf8(error.what()));
            return kFailed;
        }
    } catch (const TUsageError &error) {
        Say(stderr, QStringLiteral("corvexhost: %1\nTry corvexhost --help.").arg(QString::fromUtf8(error.what())));
        return kUsage;
    }
}
