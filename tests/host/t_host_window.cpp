// SPDX-License-Identifier: Apache-2.0
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "framework/Kvglobal.h"
#include "host/Agents.h"
#include "host/HostSettings.h"
#include "host/MainWindow.h"
#include "host/SettingsDlg.h"
#include "tests/support/TestSupport.h"

namespace {

constexpr uint kOpens = 9225;  // opens a list
constexpr uint kFails = 9228;  // its screen throws
constexpr uint kAbsent = 9413; // carried out by another module

const TClassRef kBanks{"TfrmIPBankMaintenance", nullptr};
const TClassRef kMedicare{"TfrmMedicareScalesMaint", nullptr};
const TClassRef kSuperFunds{"TfrmIPSuperFundMaintenance", nullptr};

// Chooses its focus when it is first shown, as list screens do.
class TTestScreen final : public QWidget
{
public:
    TTestScreen()
    {
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowTitle(QStringLiteral("Banks & Branches"));
        grid_->setObjectName(QStringLiteral("grdInside"));
    }
    void showEvent(QShowEvent *) override
    {
        if (!shown_)
            grid_->setFocus();
        shown_ = true;
    }

private:
    QLineEdit *grid_ = new QLineEdit(this);
    bool shown_ = false;
};

// A package whose only list is an empty tab.
class TTestPackage final : public TCorvexPackageInterface
{
public:
    void GetObjectClassList() override
    {
        for (const TClassRef *screen : {&kBanks, &kMedicare, &kSuperFunds}) {
            AddObjectClass({}, QLatin1String(screen->name), screen, QStringLiteral("MAINT_X"), ObjectKind(0),
                           QLatin1String(screen->name), 0, 0);
        }
    }
    bool CanHandleMessage(uint MsgId) const override { return MsgId == kOpens || MsgId == kFails; }
    void NonVisiblePkgMessage(uint MsgId, qlonglong Param1, qlonglong Param2, bool &Handled) override
    {
        if (MsgId == kFails)
            throw std::runtime_error("The screen does not open.");
        if (MsgId != kOpens)
            return;
        lastParams = {Param1, Param2};
        ScreenHost()->ShowScreen(new TTestScreen);
        Handled = true;
    }
    QPair<qlonglong, qlonglong> lastParams;
};

struct TRecorder final : public TGlobalListener
{
    void GlobalMessage(TCorvexMessage &message) override
    {
        got.append(QStringLiteral("%1/%2").arg(message.Msg).arg(message.WParam));
    }
    QStringList got;
};

} // namespace

class THostWindowTest final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void ACancelledCreationLeavesNothing();
    void TheTreeOpensAndFocusesTabs();
    void TheFilterKeepsWhatFits();
    void MessagesAreSentAndErrorsShown();
    void NotificationsReachEveryScreen();
    void RequestsAreAnswered();
    void SettingsTouchOnlyWhatChanged();
    void NotesAreWrittenAndRemoved();
    void ANoteChangedByAnotherIsNotLost_data();
    void ANoteChangedByAnotherIsNotLost();

private:
    QTreeWidgetItem *TreeItem(const QString &caption) const;

    QTemporaryDir folder_;
    std::unique_ptr<TTemplateDatabase> database_;
    TTestPackage *package_ = nullptr; // the window's
    std::unique_ptr<TfrmMain> window_;
};

void THostWindowTest::initTestCase()
{
    OpenHostSettings(folder_.filePath(QStringLiteral("settings.ini")));
}

void THostWindowTest::init()
{
    FailOnWarnings();
    database_ = std::make_unique<TTemplateDatabase>();
    ChooseAgent({});
    auto package = std::make_unique<TTestPackage>();
    package_ = package.get();
    window_ = std::make_unique<TfrmMain>(std::move(package), QString());
    ShowActive(*window_);
}

void THostWindowTest::cleanup()
{
    window_.reset();
    database_.reset();
}

QTreeWidgetItem *THostWindowTest::TreeItem(const QString &caption) const
{
    const auto *tree = window_->findChild<QTreeWidget *>(QStringLiteral("trvNavigation"));
    return tree->findItems(caption, Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

void THostWindowTest::ACancelledCreationLeavesNothing()
{
    const QDir folder(folder_.path());
    const QStringList before = folder.entryList(QDir::Files);
    const auto cancelAt = [](int step) { return [step](int now, int, const QString &) { return now < step; }; };
    int steps = 0;
    CreateDatabaseFile(folder.filePath(QStringLiteral("whole.db")), false, {},
                       QStringLiteral(QP_SOURCE_DIR "/database"),
                       [&steps](int, int all, const QString &) { return (steps = all) > 0; });
    QVERIFY(QFile::remove(folder.filePath(QStringLiteral("whole.db"))));
    for (const int step : {0, steps / 2, steps - 1}) {
        QVERIFY_THROWS_EXCEPTION(TCreationCancelled,
                                 CreateDatabaseFile(folder.filePath(QStringLiteral("part.db")), false, {},
                                                    QStringLiteral(QP_SOURCE_DIR "/database"), cancelAt(step)));
        QCOMPARE(folder.entryList(QDir::Files), before);
    }
}

void THostWindowTest::TheTreeOpensAndFocusesTabs()
{
    auto *tree = window_->findChild<QTreeWidget *>(QStringLiteral("trvNavigation"));
    auto *tabs = window_->findChild<QTabWidget *>(QStringLiteral("tabScreens"));
    QTreeWidgetItem *banks = TreeItem(QStringLiteral("TfrmIPBankMaintenance"));
    QVERIFY(banks);
    QVERIFY(TreeItem(QStringLiteral("TfrmIPSuperFundMaintenance"))->isDisabled());
    tree->setCurrentItem(banks);
    QTest::keyClick(tree, Qt::Key_Return);
    QCOMPARE(tabs->count(), 1);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Banks && Branches"));
    QCOMPARE(FocusName(*window_), QStringLiteral("grdInside"));
    window_->OpenActivityLog();
    QCOMPARE(tabs->count(), 2);
    // Picked again: the open one comes to the front. Sent again: another one opens.
    QTest::keyClick(tree, Qt::Key_Return);
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(FocusName(*window_), QStringLiteral("grdInside"));
    QVERIFY(window_->SendPackageMessage(kOpens, 0, 0));
    QCOMPARE(tabs->count(), 3);
    QTest::keyClick(window_.get(), Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(tabs->count(), 2);
    // A screen that closes itself takes its tab along.
    tabs->widget(0)->close();
    QTRY_COMPARE(tabs->count(), 1);
    QVERIFY(window_->CloseAllScreens());
    QCOMPARE(tabs->count(), 0);
}

void THostWindowTest::TheFilterKeepsWhatFits()
{
    auto *filter = window_->findChild<QLineEdit *>(QStringLiteral("edtNavigationFilter"));
    QTreeWidgetItem *banks = TreeItem(QStringLiteral("TfrmIPBankMaintenance"));
    QTreeWidgetItem *funds = TreeItem(QStringLiteral("TfrmIPSuperFundMaintenance"));
    QTest::keyClicks(filter, QStringLiteral("bankm"));
    QVERIFY(!banks->isHidden());
    QVERIFY(!banks->parent()->isHidden());
    QVERIFY(funds->isHidden());
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(window_->findChild<QTabWidget *>(QStringLiteral("tabScreens"))->count(), 1);
    QTest::keyClick(filter, Qt::Key_Escape);
    QCOMPARE(filter->text(), QString());
    QVERIFY(!funds->isHidden());
}

void THostWindowTest::MessagesAreSentAndErrorsShown()
{
    bool handled = false;
    QVERIFY(QMetaObject::invokeMethod(window_.get(), "SendPackageMessage", Q_RETURN_ARG(bool, handled),
                                      Q_ARG(uint, kOpens), Q_ARG(qlonglong, 1), Q_ARG(qlonglong, 1LL << 40)));
    QVERIFY(handled);
    QCOMPARE(package_->lastParams, qMakePair(qlonglong(1), 1LL << 40));
    QVERIFY(!window_->SendPackageMessage(9999, 0, 0));
    TUserScript user;
    user.Box(QStringLiteral("The screen does not open."));
    QVERIFY(!window_->SendPackageMessage(kFails, 0, 0));
    VERIFY_SCRIPT(user);
}

void THostWindowTest::NotificationsReachEveryScreen()
{
    TRecorder first;
    TRecorder second;
    BroadcastChange(9227, 12);
    BroadcastChange(9227, 0);
    QCOMPARE(first.got, QStringList());              // posted, not sent
    PostControlMessage(kGlobalNotification, 987654); // a handle that nobody stored
    QCoreApplication::processEvents();
    const QStringList both{QStringLiteral("9227/12"), QStringLiteral("9227/0")};
    QCOMPARE(first.got, both);
    QCOMPARE(second.got, both);
}

void THostWindowTest::RequestsAreAnswered()
{
    QCOMPARE(SendControlMessage(kHostRequest, SetGlobalMessageInt(kOpens, 7, 8, nullptr)), 1);
    QCOMPARE(package_->lastParams, qMakePair(qlonglong(7), qlonglong(8)));
    TUserScript user;
    user.Box(QStringLiteral("The export file layout editor is not part of this application."))
        .Box(QStringLiteral("What was asked for (message 9999) is not part of this application."))
        .Box(QStringLiteral("The screen does not open."));
    for (const uint message : {kAbsent, 9999u, kFails})
        QCOMPARE(SendControlMessage(kHostRequest, SetGlobalMessageInt(message, 0, 0, nullptr)), 0);
    VERIFY_SCRIPT(user);
}

void THostWindowTest::SettingsTouchOnlyWhatChanged()
{
    const TInstallationSettings before = ReadSettings();
    TInstallationSettings mine = before;
    mine.endTaxYear = 2030;
    mine.backpay = true;
    TInstallationSettings theirs = before;
    theirs.bsbFormat = QStringLiteral("00-0000");
    theirs.rateDecimals = 2;
    WriteSettings(before, theirs);
    WriteSettings(before, mine);
    LoadInstallation();
    QCOMPARE(GetEndTaxYear(), 2030);
    QCOMPARE(Installation().bsbFormat, QStringLiteral("00-0000"));
    QCOMPARE(Installation().rateDecimals, 2);
    QVERIFY(Installation().backpayEnabled);

    SetCountry(MainConnection(), kNewZealand);
    LoadInstallation();
    QCOMPARE(int(CountryCode), 6);
    QVERIFY_THROWS_EXCEPTION(TDbError, SetCountry(MainConnection(), 9));
}

void THostWindowTest::NotesAreWrittenAndRemoved()
{
    const QString table = QStringLiteral("_IPTBLBANKS");
    const QString hostile = QStringLiteral("O'Brien; -- \"x\"\nzweite Zeile ü");
    const auto type = [&table](const QString &now, const QString &then, bool ok) {
        TUserScript user;
        user.Dialog(QStringLiteral("frmNotes"), [&](QDialog &form) {
            auto &memo = FindControl<QPlainTextEdit>(&form, QStringLiteral("memNotes"));
            QCOMPARE(memo.toPlainText(), now);
            memo.selectAll();
            memo.insertPlainText(then);
            ok ? PressOK(form) : PressCancel(form);
        });
        DoNotesForm(table, 4, false, {});
        VERIFY_SCRIPT(user);
    };
    type({}, hostile, false);
    QVERIFY(!NoteExists(table, 4));
    type({}, hostile, true);
    QVERIFY(NoteExists(table, 4));
    QVERIFY(!NoteExists(table, 5));
    QVERIFY(!NoteExists(QStringLiteral("_IPTBLEFTPARAMETERS"), 4));
    type(hostile, QStringLiteral("shorter"), true);
    const QString written = QStringLiteral("select cNote from dbo._btblNotes where iChangeAgentID = iCreateAgentID "
                                           "and dChanged is not null and dCreated is not null");
    QCOMPARE(ValueOf(written).toString(), QStringLiteral("shorter"));
    type(QStringLiteral("shorter"), QStringLiteral(" \n"), true);
    QVERIFY(!NoteExists(table, 4));
}

void THostWindowTest::ANoteChangedByAnotherIsNotLost_data()
{
    QTest::addColumn<bool>("gone");
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("left");
    QTest::newRow("changed, back to editing") << false << 0 << "theirs";
    QTest::newRow("changed, keep theirs") << false << 1 << "theirs";
    QTest::newRow("changed, write mine") << false << 2 << "mine";
    QTest::newRow("deleted, leave it") << true << 1 << "";
    QTest::newRow("deleted, write mine") << true << 2 << "mine";
}

void THostWindowTest::ANoteChangedByAnotherIsNotLost()
{
    QFETCH(bool, gone);
    QFETCH(int, answer);
    QFETCH(QString, left);
    MainConnection().Execute(QStringLiteral("insert into dbo._btblNotes (cNOTETBLTableName, fNOTETBLTableID, cNote) "
                                            "values ('_IPTBLBANKS', 4, 'read')"));
    const QString text = gone ? QStringLiteral("Another user has deleted this note while you were editing it.")
                              : QStringLiteral("Another user has changed this note while you were editing it.");
    const QStringList answers{QStringLiteral("&Back to Editing"),
                              gone ? QStringLiteral("&Leave It Deleted") : QStringLiteral("&Keep the Other's"),
                              QStringLiteral("&Write Mine")};
    TUserScript user;
    user.Dialog(QStringLiteral("frmNotes"), [gone](QDialog &form) {
        MainConnection().Execute(gone ? QStringLiteral("delete from dbo._btblNotes")
                                      : QStringLiteral("update dbo._btblNotes set cNote = 'theirs'"));
        auto &memo = FindControl<QPlainTextEdit>(&form, QStringLiteral("memNotes"));
        memo.selectAll();
        memo.insertPlainText(QStringLiteral("mine"));
        PressOK(form);
    });
    user.Box(text, answers[answer]);
    if (answer == 0) {
        user.Dialog(QStringLiteral("frmNotes"), [](QDialog &form) {
            QCOMPARE(FindControl<QPlainTextEdit>(&form, QStringLiteral("memNotes")).toPlainText(),
                     QStringLiteral("mine"));
            PressCancel(form);
        });
    }
    DoNotesForm(QStringLiteral("_IPTBLBANKS"), 4, false, {});
    VERIFY_SCRIPT(user);
    const QList<QStringList> rows = RowsOf(QStringLiteral("select cNote from dbo._btblNotes order by idNotes"));
    QCOMPARE(rows, left.isEmpty() ? QList<QStringList>() : QList<QStringList>{{left}});
}

QTEST_MAIN(THostWindowTest)
#include "t_host_window.moc"
