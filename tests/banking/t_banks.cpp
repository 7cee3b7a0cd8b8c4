// SPDX-License-Identifier: Apache-2.0
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QToolButton>

#include "framework/Kvglobal.h"
#include "framework/editors/Editors.h"
#include "framework/grid/qsGrid.h"
#include "tests/support/TestSupport.h"

namespace {

constexpr uint kBankList = 9225;
constexpr uint kBankDialog = 9226;

// A database, the host's control window and the host.
struct TWorld
{
    TTemplateDatabase database;
    TNotificationRecorder control;
    TMemoryScreenHost host;

    explicit TWorld(int country = 5)
        : database(TTemplateDatabase::Content::Empty, country)
    {}

    QWidget &OpenList()
    {
        SendToPackage(kBankList, 0, 0);
        return *host.Screens.last();
    }
};

int AddBank(const QString &code, const QString &bsb, const QString &name = "Name", const QString &branch = "Branch")
{
    return MainConnection().Insert("insert into _iptblBanks (cCode, cBankName, cBranchName, cBSBNumber) "
                                   "values (:code, :name, :branch, :bsb)",
                                   {{"code", code}, {"name", name}, {"branch", branch}, {"bsb", bsb}});
}

QList<QStringList> Banks()
{
    return RowsOf(
        "select idBank, cCode, cBankName, cBranchName, cBSBNumber, iStateID from _iptblBanks order by idBank");
}

TqsGrid &Grid(QWidget &list)
{
    return FindControl<TqsGrid>(&list, "grdBanks");
}

QStringList ShownCodes(TqsGrid &grid)
{
    QStringList codes;
    int column = -1;
    for (int i = 0; i < grid.model()->columnCount(); ++i) {
        if (grid.model()->headerData(i, Qt::Horizontal).toString() == "Code")
            column = i;
    }
    for (int row = 0; row < grid.model()->rowCount(); ++row)
        codes += grid.model()->index(row, column).data().toString();
    return codes;
}

// Types a bank; a null text leaves the box as it is.
void Fill(QDialog &dialog, const QString &code, const QString &name, const QString &bsb, const QString &branch = {})
{
    const std::pair<const char *, QString> boxes[] = {
        {"edtCode", code}, {"edtBankName", name}, {"edtBSB", bsb}, {"edtBranchName", branch}};
    for (const auto &[box, text] : boxes) {
        if (!text.isNull())
            Type(FindControl<QLineEdit>(&dialog, box), text);
    }
}

// A bank entered and saved through the dialog.
void SaveBank(TUserScript &script, int id, const QString &code, const QString &name, const QString &bsb)
{
    script.Dialog("TfrmIPBankAddDlg", [=](QDialog &dialog) {
        Fill(dialog, code, name, bsb);
        PressOK(dialog);
    });
    SendToPackage(kBankDialog, id, 0);
}

} // namespace

// The bank screens as a payroll officer uses them, through the package's messages.
class t_banks final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void captions_data();
    void captions();
    void checks_data();
    void checks();
    void maskFollowsTheFormat_data();
    void maskFollowsTheFormat();
    void addSavesWhatWasTyped();
    void editSavesOnlyChanges();
    void copySavesANewBank();
    void cancelWritesNothing_data();
    void cancelWritesNothing();
    void deleteFlow_data();
    void deleteFlow();
    void deleteMovesToTheNeighbour();
    void deleteOfAVanishedBank();
    void nothingFocusedDoesNothing();
    void twoListsAndTheStartedHereFlag();
    void cancelledAddClearsTheFlag();
    void conflicts_data();
    void conflicts();
    void hostileText_data();
    void hostileText();
    void textIsCutToItsLimit();
    void notes();
    void keyboard();
    void modalListGivesTheChosenBank();
};

void t_banks::captions_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QString>("bankName");
    QTest::newRow("Australia") << 5 << "Bank Name";
    QTest::newRow("New Zealand") << 6 << "Bank Abbrv";
    QTest::newRow("other") << 7 << "Bank Abbrv";
}

void t_banks::captions()
{
    QFETCH(int, country);
    QFETCH(QString, bankName);
    TWorld world(country);
    const int id = AddBank("CBA", "062-000");
    QWidget &list = world.OpenList();
    QCOMPARE(list.windowTitle(), "Bank Maintenance");
    QCOMPARE(FindControl<QLabel>(&list, "lblHeader").text(), "Banks");
    QCOMPARE(FindControl<QLabel>(&list, "lblSubHeader").text(), "Bank List");
    QStringList headings;
    TqsGrid &grid = Grid(list);
    for (int i = 0; i < grid.model()->columnCount(); ++i) {
        if (!grid.isColumnHidden(i))
            headings += grid.model()->headerData(i, Qt::Horizontal).toString();
    }
    QCOMPARE(headings, (QStringList{"BSB Number", "Code", bankName, "Branch Name", "State", "Notes"}));

    QStringList titles;
    TUserScript script;
    for (const auto &[record, copy] : {std::pair(0, 0), std::pair(id, 0), std::pair(id, 1)}) {
        script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) {
            titles += dialog.windowTitle();
            titles += FocusName(dialog);
            PressCancel(dialog);
        });
        QVERIFY(SendToPackage(kBankDialog, record, copy));
    }
    VERIFY_SCRIPT(script);
    QCOMPARE(titles,
             (QStringList{"Add New Bank", "edtCode", "Edit Bank \"CBA\"", "edtCode", "Copy Bank \"CBA\"", "edtCode"}));
}

void t_banks::checks_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<bool>("edit"); // of the first of the two banks that are there
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("bankName");
    QTest::addColumn<QString>("bsb");
    QTest::addColumn<QString>("message"); // "": it is saved
    QTest::addColumn<QString>("focus");

    const QString noCode = "The Code may not be blank.", badBSB = "A valid BSB Number is required!",
                  noName = "The Bank Name may not be blank!", codeTaken = "Code already exists.",
                  badCode = "The Bank Code is invalid!", bsbTaken = "The BSB Number already exists!";
    const auto row = [](const char *name, int country, bool edit, const QString &code, const QString &bankName,
                        const QString &bsb, const QString &message, const QString &focus) {
        QTest::addRow("%d %s: %s", country, edit ? "edit" : "add", name)
            << country << edit << code << bankName << bsb << message << focus;
    };
    // There are "OLD" (062-000, "Old") and "O'B" (062-001), their numbers in the country's format.
    row("all is well", 5, false, "NEW", "N", "012-345", "", "");
    row("no code", 5, false, "", "N", "012-345", noCode, "edtCode");
    row("blanks are no code", 5, false, "   ", "N", "012-345", noCode, "edtCode");
    row("no number", 5, false, "NEW", "N", "", badBSB, "edtBSB");
    row("short number", 5, false, "NEW", "N", "01234", badBSB, "edtBSB");
    row("code before number", 5, false, "", "N", "", noCode, "edtCode");
    row("no name", 5, false, "NEW", "", "012-345", noName, "edtBankName");
    row("blanks are no name", 5, false, "NEW", "  ", "012-345", noName, "edtBankName");
    row("the name's message replaces the code's", 5, false, "", "", "012-345", noName, "edtBankName");
    row("... and the number's", 5, false, "NEW", "", "01", noName, "edtBankName");
    row("... and hides a taken number", 5, false, "NEW", "", "062-000", noName, "edtBankName");
    row("... but not a taken code", 5, false, "OLD", "", "012-345", codeTaken, "edtCode");
    row("taken code", 5, false, "OLD", "N", "012-345", codeTaken, "edtCode");
    row("taken code in small letters", 5, false, " old ", "N", "012-345", codeTaken, "edtCode");
    row("taken code before taken number", 5, false, "OLD", "N", "062-000", codeTaken, "edtCode");
    row("apostrophe", 5, false, "A'B", "N", "012-345", badCode, "edtCode");
    row("apostrophe before the rest", 5, false, "A'B", "", "", badCode, "edtCode");
    row("taken before apostrophe", 5, false, "O'B", "N", "012-345", codeTaken, "edtCode");
    row("taken number", 5, false, "NEW", "N", "062-000", bsbTaken, "edtBSB");
    row("nothing changed", 5, true, {}, {}, {}, "", "");
    row("own code and number", 5, true, "OLD", "Old", "062-000", "", "");
    row("another's code", 5, true, "O'B", {}, {}, "", "");
    row("apostrophe", 5, true, "A'B", {}, {}, "", "");
    row("no code", 5, true, "", {}, {}, noCode, "edtCode");
    row("another's number", 5, true, {}, {}, "062-001", bsbTaken, "edtBSB");
    row("short number", 5, true, {}, {}, "0620", badBSB, "edtBSB");
    row("no name", 5, true, {}, "", {}, noName, "edtBankName");
    row("all is well", 6, false, "NEW", "N", "012345", "", "");
    row("no name", 6, false, "NEW", "", "012345", "", "");
    row("no code", 6, false, "", "", "012345", noCode, "edtCode");
    row("short number", 6, false, "NEW", "", "01234", badBSB, "edtBSB");
    row("no number", 6, false, "NEW", "", "", badBSB, "edtBSB");
    row("taken number", 6, false, "NEW", "", "06-2000", bsbTaken, "edtBSB");
    row("taken code", 6, false, "OLD", "", "", codeTaken, "edtCode");
    row("any number", 7, false, "NEW", "", "1", "", "");
    row("no number", 7, false, "NEW", "N", "", badBSB, "edtBSB");
    row("no code", 7, false, "", "N", "", noCode, "edtCode");
    row("taken number", 7, false, "NEW", "N", "062000", bsbTaken, "edtBSB");
    row("no name", 7, true, {}, "", {}, "", "");
}

void t_banks::checks()
{
    QFETCH(int, country);
    QFETCH(bool, edit);
    QFETCH(QString, code);
    QFETCH(QString, bankName);
    QFETCH(QString, bsb);
    QFETCH(QString, message);
    TWorld world(country);
    const QStringList numbers = country == 5   ? QStringList{"062-000", "062-001"}
                                : country == 6 ? QStringList{"06-2000", "06-2001"}
                                               : QStringList{"062000", "062001"};
    const int old = AddBank("OLD", numbers[0], "Old");
    AddBank("O'B", numbers[1]);
    const auto before = Banks();

    bool stayedOpen = false, closed = false;
    QString focus;
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) {
        Fill(dialog, code, bankName, bsb);
        PressOK(dialog);
        stayedOpen = dialog.isVisible();
        if (!stayedOpen)
            return;
        focus = FocusName(dialog);
        PressCancel(dialog);
        closed = !dialog.isVisible();
    });
    if (!message.isEmpty())
        script.Box(message);
    QVERIFY(SendToPackage(kBankDialog, edit ? old : 0, 0));
    VERIFY_SCRIPT(script);
    QCOMPARE(stayedOpen, !message.isEmpty());
    QVERIFY(!QApplication::overrideCursor());
    if (message.isEmpty()) {
        QCOMPARE(Banks().size(), edit ? 2 : 3);
        QCOMPARE(world.control.TakeLog(), QStringLiteral("9227:%1").arg(edit ? old : 3));
    } else {
        QTEST(focus, "focus");
        QVERIFY(closed);
        QCOMPARE(Banks(), before);
        QCOMPARE(world.control.TakeLog(), "");
    }
}

void t_banks::maskFollowsTheFormat_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("saved"); // "": refused
    QTest::newRow("one dash") << 5 << "000-000"
                              << "123456"
                              << "123-456";
    QTest::newRow("no dash") << 5 << "000000"
                             << "123456"
                             << "123456";
    QTest::newRow("no dash, short") << 5 << "000000"
                                    << "12345"
                                    << "";
    QTest::newRow("two dashes") << 6 << "00-0000-0000000"
                                << "1234567890123"
                                << "12-3456-7890123";
    QTest::newRow("two dashes, short") << 6 << "00-0000-0000000"
                                       << "123456789012"
                                       << "";
    QTest::newRow("other country, part of the format") << 7 << "99-9999"
                                                       << "12"
                                                       << "12-";
    QTest::newRow("other country, only the literal") << 7 << "99-9999"
                                                     << "-"
                                                     << "";
}

void t_banks::maskFollowsTheFormat()
{
    QFETCH(int, country);
    QFETCH(QString, format);
    QFETCH(QString, typed);
    QFETCH(QString, saved);
    TWorld world(country);
    world.database.SetDefault("cBSBFormat", format);
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) {
        Fill(dialog, "NEW", "N", typed);
        PressOK(dialog);
        if (dialog.isVisible())
            PressCancel(dialog);
    });
    if (saved.isEmpty())
        script.Box("A valid BSB Number is required!");
    SendToPackage(kBankDialog);
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select cBSBNumber from _iptblBanks"),
             saved.isEmpty() ? QList<QStringList>() : QList<QStringList>{{saved}});
}

void t_banks::addSavesWhatWasTyped()
{
    TWorld world;
    SetCurrentAgent(1, "Administrator");
    const int state = ValueOf("select idState from _iptblStates where cStateCode = 'VIC'").toInt();
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", [](QDialog &dialog) {
        Fill(dialog, " New ", "  First Bank ", "012345", " Main Street ");
        auto &combo = FindControl<TqsLookupCombo>(&dialog, "cbxState");
        combo.setFocus();
        QTest::keyClicks(&combo, "vic");
        PressOK(dialog);
    });
    SendToPackage(kBankDialog, 0, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(Banks(),
             (QList<QStringList>{{"1", "New", "First Bank", "Main Street", "012-345", QString::number(state)}}));
    QCOMPARE(world.control.TakeLog(), "9227:1");
    QCOMPARE(RowsOf("select cKind, cCode, cAction, cAgentName from _btblActivityLog"),
             (QList<QStringList>{{"Bank", "New", "Added", "Administrator"}}));
}

void t_banks::editSavesOnlyChanges()
{
    TWorld world;
    const int id = AddBank("CBA", "062-000", "Commonwealth", "Sydney");
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) {
        Type(FindControl<QLineEdit>(&dialog, "edtBankName"), "Commonwealth Bank");
        PressOK(dialog);
    });
    SendToPackage(kBankDialog, id, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(Banks(), (QList<QStringList>{{"1", "CBA", "Commonwealth Bank", "Sydney", "062-000", "NULL"}}));
    QCOMPARE(RowsOf("select cKind, cCode, cAction from _btblActivityLog"),
             (QList<QStringList>{{"Bank", "CBA", "Changed"}}));
}

void t_banks::copySavesANewBank()
{
    TWorld world;
    const int id = AddBank("CBA", "062-000", "Commonwealth", "Sydney");
    const QStringList original = Banks()[0];
    TUserScript script;
    script
        .Dialog("TfrmIPBankAddDlg",
                [](QDialog &dialog) {
                    PressOK(dialog);
                    Fill(dialog, "CBA2", {}, {});
                    PressOK(dialog);
                    Fill(dialog, {}, {}, "062-002");
                    PressOK(dialog);
                })
        .Box("Code already exists.")
        .Box("The BSB Number already exists!");
    QWidget &list = world.OpenList();
    Grid(list).FocusKey(id);
    Trigger(list, "mniMaintCopy");
    VERIFY_SCRIPT(script);
    QCOMPARE(Banks(), (QList<QStringList>{original, {"2", "CBA2", "Commonwealth", "Sydney", "062-002", "NULL"}}));
    QCOMPARE(world.control.TakeLog(), "9227:2");
    QCOMPARE(Grid(list).FocusedKey(), 2);
}

void t_banks::cancelWritesNothing_data()
{
    QTest::addColumn<bool>("escape");
    QTest::newRow("button") << false;
    QTest::newRow("Esc") << true;
}

void t_banks::cancelWritesNothing()
{
    QFETCH(bool, escape);
    TWorld world;
    const int id = AddBank("CBA", "062-000");
    const auto before = Banks();
    TUserScript script; // no question
    for (const int record : {0, id}) {
        script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) {
            Fill(dialog, "X", "Y", "123-456", "Z");
            if (escape)
                PressKey(dialog, Qt::Key_Escape);
            else
                PressCancel(dialog);
        });
        SendToPackage(kBankDialog, record, 0);
    }
    VERIFY_SCRIPT(script);
    QCOMPARE(Banks(), before);
    QCOMPARE(world.control.TakeLog(), "");
    QVERIFY(!MainConnection().InTransaction());
}

void t_banks::deleteFlow_data()
{
    QTest::addColumn<QStringList>("users"); // tables that refer to the bank
    QTest::addColumn<bool>("yes");
    QTest::addColumn<QString>("refusal");
    const QString text = "Unable to delete Bank \"CBA\", as it is in use by the %1!";
    QTest::newRow("no") << QStringList{} << false << QString();
    QTest::newRow("no, and in use") << QStringList{"_iptblEFTParameters"} << false << QString();
    QTest::newRow("yes") << QStringList{} << true << QString();
    QTest::newRow("EFT") << QStringList{"_iptblEFTParameters"} << true << text.arg("EFT Parameters");
    QTest::newRow("employee") << QStringList{"_iptblEmployeeBank"} << true << text.arg("Employees");
    QTest::newRow("both") << QStringList{"_iptblEmployeeBank", "_iptblEFTParameters"} << true
                          << text.arg("EFT Parameters");
}

void t_banks::deleteFlow()
{
    QFETCH(QStringList, users);
    QFETCH(bool, yes);
    QFETCH(QString, refusal);
    TWorld world;
    AddBank("ANZ", "013-000");
    const int id = AddBank("CBA", "062-000");
    for (const QString &table : users)
        MainConnection().Execute(QStringLiteral("insert into %1 (iBankID) values (:id)").arg(table), {{"id", id}});
    QWidget &list = world.OpenList();
    QVERIFY(Grid(list).FocusKey(id));
    TUserScript script;
    script.Box("Delete Bank \"CBA\" ?", yes ? QMessageBox::Yes : QMessageBox::No);
    if (!refusal.isEmpty())
        script.Box(refusal);
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    const bool deleted = yes && refusal.isEmpty();
    QCOMPARE(world.control.TakeLog(), deleted ? "9227:0" : "");
    QCOMPARE(Banks().size(), deleted ? 1 : 2);
    QCOMPARE(ShownCodes(Grid(list)), deleted ? QStringList{"ANZ"} : (QStringList{"ANZ", "CBA"}));
    if (!deleted)
        QCOMPARE(Grid(list).FocusedKey(), id);
}

void t_banks::deleteMovesToTheNeighbour()
{
    TWorld world;
    QList<int> ids;
    for (int i = 0; i < 4; ++i)
        ids += AddBank(QStringLiteral("B%1").arg(i), QStringLiteral("062-00%1").arg(i));
    QWidget &list = world.OpenList();
    TqsGrid &grid = Grid(list);
    TUserScript script;
    const auto removeFocused = [&](const char *code) {
        script.Box(QStringLiteral("Delete Bank \"%1\" ?").arg(code), QMessageBox::Yes);
        Trigger(list, "mniMaintDelete");
        const int focused = grid.FocusedKey(); // at once, not by the notification
        world.control.Process();
        return focused == grid.FocusedKey() ? focused : -1;
    };
    grid.FocusKey(ids[1]);
    QCOMPARE(removeFocused("B1"), ids[2]);
    grid.FocusKey(ids[3]);
    QCOMPARE(removeFocused("B3"), ids[2]);
    QCOMPARE(removeFocused("B2"), ids[0]);
    QCOMPARE(removeFocused("B0"), 0);
    QVERIFY(!FindControl<QAction>(&list, "mniMaintDelete").isEnabled());
    VERIFY_SCRIPT(script);
}

void t_banks::deleteOfAVanishedBank()
{
    TWorld world;
    AddBank("ANZ", "013-000");
    const int id = AddBank("CBA", "062-000");
    QWidget &list = world.OpenList();
    Grid(list).FocusKey(id);
    MainConnection().Execute("delete from _iptblBanks where idBank = :id", {{"id", id}});
    TUserScript script;
    script.Box("Delete Bank \"CBA\" ?", QMessageBox::Yes);
    script.Box("The Bank does not exist. It may have been deleted by another user.");
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    QCOMPARE(world.control.TakeLog(), "");
    QCOMPARE(Grid(list).FocusedKey(), id);
    QCOMPARE(ShownCodes(Grid(list)), (QStringList{"ANZ", "CBA"}));
    Trigger(list, "mniRefresh");
    QCOMPARE(ShownCodes(Grid(list)), QStringList{"ANZ"});
}

void t_banks::nothingFocusedDoesNothing()
{
    TWorld world;
    QWidget &list = world.OpenList();
    TUserScript script;
    for (const char *action : {"mniMaintEdit", "mniMaintCopy", "mniMaintDelete", "mniNotes"})
        FindControl<QAction>(&list, action).trigger();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Delete})
        PressKey(Grid(list), key);
    VERIFY_SCRIPT(script);
}

void t_banks::twoListsAndTheStartedHereFlag()
{
    TWorld world;
    const int a = AddBank("A", "062-001"), b = AddBank("B", "062-003"), c = AddBank("C", "062-005");
    QWidget &first = world.OpenList(), &second = world.OpenList();
    TqsGrid &firstGrid = Grid(first), &secondGrid = Grid(second);
    firstGrid.FocusKey(a);
    secondGrid.FocusKey(c);
    TUserScript script;

    // Added from the first list: it goes to the new bank, the other stays where it is.
    script.Dialog("TfrmIPBankAddDlg", [](QDialog &dialog) {
        Fill(dialog, "D", "N", "062-004");
        PressOK(dialog);
    });
    Trigger(first, "mniMaintAdd");
    QCOMPARE(world.control.TakeLog(), "9227:4");
    QCOMPARE(firstGrid.FocusedKey(), 4);
    QCOMPARE(secondGrid.FocusedKey(), c);
    QCOMPARE(ShownCodes(firstGrid), (QStringList{"A", "B", "D", "C"}));
    QCOMPARE(ShownCodes(secondGrid), ShownCodes(firstGrid));

    // Added from neither.
    SaveBank(script, 0, "E", "N", "062-002");
    QCOMPARE(world.control.TakeLog(), "9227:5");
    QCOMPARE(firstGrid.FocusedKey(), 4);
    QCOMPARE(secondGrid.FocusedKey(), c);
    QCOMPARE(ShownCodes(secondGrid), (QStringList{"A", "E", "B", "D", "C"}));

    // Changed from the second so that its place in the order changes.
    script.Dialog("TfrmIPBankAddDlg", [](QDialog &dialog) {
        Fill(dialog, {}, {}, "062-000");
        PressOK(dialog);
    });
    Trigger(second, "mniMaintEdit");
    world.control.Process();
    QCOMPARE(ShownCodes(firstGrid), (QStringList{"C", "A", "E", "B", "D"}));
    QCOMPARE(secondGrid.FocusedKey(), c);
    QCOMPARE(firstGrid.FocusedKey(), 4);

    // Deleted in the first while it is focused in the second.
    firstGrid.FocusKey(b);
    secondGrid.FocusKey(b);
    script.Box("Delete Bank \"B\" ?", QMessageBox::Yes);
    Trigger(first, "mniMaintDelete");
    QCOMPARE(world.control.TakeLog(), "9227:3 9227:0");
    QCOMPARE(firstGrid.FocusedKey(), 4);
    QCOMPARE(secondGrid.FocusedKey(), 4);
    QCOMPARE(ShownCodes(secondGrid), (QStringList{"C", "A", "E", "D"}));
    VERIFY_SCRIPT(script);
}

void t_banks::cancelledAddClearsTheFlag()
{
    TWorld world;
    const int a = AddBank("A", "062-001"), gone = AddBank("B", "062-002");
    QWidget &list = world.OpenList();
    Grid(list).FocusKey(a);
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", [](QDialog &dialog) { PressCancel(dialog); });
    Trigger(list, "mniMaintAdd");
    QCoreApplication::processEvents();
    SaveBank(script, 0, "C", "N", "062-003");
    world.control.Process();
    QCOMPARE(Grid(list).FocusedKey(), a);

    Grid(list).FocusKey(gone);
    MainConnection().Execute("delete from _iptblBanks where idBank = :id", {{"id", gone}});
    script.Box("The record no longer exists: another user has deleted it.");
    Trigger(list, "mniMaintEdit");
    QCoreApplication::processEvents();
    Grid(list).FocusKey(a);
    SaveBank(script, 0, "D", "N", "062-004");
    world.control.Process();
    QCOMPARE(Grid(list).FocusedKey(), a);
    VERIFY_SCRIPT(script);
}

void t_banks::conflicts_data()
{
    QTest::addColumn<bool>("gone");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("name"); // as it stands in the end; "": no such bank
    QTest::addColumn<QString>("branch");
    QTest::addColumn<bool>("told");
    QTest::newRow("write mine") << false << "&Write Mine"
                                << "Mine"
                                << "Theirs" << true;
    QTest::newRow("keep theirs") << false << "&Keep the Other's"
                                 << "Theirs"
                                 << "Theirs" << true;
    QTest::newRow("back, then write") << false << "&Back to Editing"
                                      << "Mine"
                                      << "Theirs" << true;
    QTest::newRow("gone, save as new") << true << "&Save Mine as New"
                                       << "Mine"
                                       << "Branch" << true;
    QTest::newRow("gone, leave it") << true << "&Leave It Deleted"
                                    << ""
                                    << "" << true;
}

void t_banks::conflicts()
{
    QFETCH(bool, gone);
    QFETCH(QString, answer);
    QFETCH(QString, name);
    QFETCH(QString, branch);
    QFETCH(bool, told);
    TWorld world;
    const int id = AddBank("CBA", "062-000");
    bool stayedOpen = false;
    const QString text = gone ? "Another user has deleted this record while you were editing it."
                              : "Another user has changed this record while you were editing it.";
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) {
        MainConnection().Execute(
            gone ? "delete from _iptblBanks where idBank = :id"
                 : "update _iptblBanks set cBankName = 'Theirs', cBranchName = 'Theirs' where idBank = :id",
            {{"id", id}});
        Type(FindControl<QLineEdit>(&dialog, "edtBankName"), "Mine");
        PressOK(dialog);
        stayedOpen = dialog.isVisible();
        if (!stayedOpen)
            return;
        if (FindControl<QLineEdit>(&dialog, "edtBankName").text() != "Mine")
            throw std::runtime_error("What was typed is lost.");
        PressOK(dialog);
    });
    script.Box(text, answer);
    if (answer == "&Back to Editing")
        script.Box(text, "&Write Mine");
    SendToPackage(kBankDialog, id, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(stayedOpen, answer == "&Back to Editing");
    QList<QStringList> expected;
    if (!name.isEmpty())
        expected += QStringList{"CBA", name, branch, "062-000"};
    QCOMPARE(RowsOf("select cCode, cBankName, cBranchName, cBSBNumber from _iptblBanks"), expected);
    QCOMPARE(!world.control.TakeLog().isEmpty(), told);
    QVERIFY(!MainConnection().InTransaction());
}

void t_banks::hostileText_data()
{
    QTest::addColumn<QString>("text");
    const char *const texts[] = {"O'Brien's",
                                 "'; drop table _iptblBanks; --",
                                 "' or '1'='1",
                                 "\"quoted\" & <b>bold</b>",
                                 "/* comment */ -- more",
                                 "100%_[a-z]^\\",
                                 ":value @id ? {fn x}",
                                 "%s %1 %n",
                                 "\u017b\u00f3\u0142\u0107 \u4e2d\u6587 \u0639\u0631\u0628\u064a",
                                 "GO"};
    for (const char *text : texts)
        QTest::newRow(text) << QString::fromUtf8(text);
}

void t_banks::hostileText()
{
    QFETCH(QString, text);
    TWorld world;
    AddBank("OTHER", "013-000", "Some Name", "Some Branch");
    const QString code = QString(text).remove(u'\'').left(10).trimmed();
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) {
        Fill(dialog, code, text, "062-000", text);
        auto &combo = FindControl<TqsLookupCombo>(&dialog, "cbxState");
        combo.setFocus();
        QTest::keyClicks(&combo, "';%_[\\");
        PressOK(dialog);
    });
    SendToPackage(kBankDialog, 0, 0);
    const QStringList saved{"2", code, text, text, "062-000", "NULL"};
    QCOMPARE(Banks().value(1), saved);

    QString title;
    script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) { // read, and saved again
        title = dialog.windowTitle();
        PressOK(dialog);
    });
    SendToPackage(kBankDialog, 2, 0);
    QCOMPARE(title, "Edit Bank \"" + code + "\"");
    QCOMPARE(Banks().value(1), saved);

    QWidget &list = world.OpenList();
    TqsGrid &grid = Grid(list);
    Trigger(list, "mniSearch");
    grid.JumpToFirst();
    Type(FindControl<QLineEdit>(&list, "edtSearch"), text);
    QCOMPARE(grid.FocusedKey(), 2);
    Type(FindControl<QLineEdit>(&list, "edtFilter"), text);
    QCOMPARE(ShownCodes(grid), QStringList{code});
    Type(FindControl<QLineEdit>(&list, "edtFilter"), text + "?");
    QCOMPARE(ShownCodes(grid), QStringList());
    Type(FindControl<QLineEdit>(&list, "edtFilter"), "");
    QCOMPARE(grid.model()->rowCount(), 2);

    grid.FocusKey(2);
    script.Box("Delete Bank \"" + code + "\" ?", QMessageBox::Yes);
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    QCOMPARE(Banks().size(), 1);
}

void t_banks::textIsCutToItsLimit()
{
    TWorld world;
    const QString flood(10 * 1024, u'x');
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", [&](QDialog &dialog) {
        for (const char *box : {"edtCode", "edtBankName", "edtBranchName"})
            Paste(FindControl<QLineEdit>(&dialog, box), flood);
        Paste(FindControl<QLineEdit>(&dialog, "edtBSB"), "062000" + flood);
        PressOK(dialog);
    });
    SendToPackage(kBankDialog, 0, 0);
    QCOMPARE(Banks(), (QList<QStringList>{{"1", flood.left(10), flood.left(50), flood.left(50), "062-000", "NULL"}}));
    QWidget &list = world.OpenList();
    Trigger(list, "mniSearch");
    Paste(FindControl<QLineEdit>(&list, "edtSearch"), flood);
    QVERIFY(!FindControl<QLabel>(&list, "lblSearchResult").text().isEmpty());
    Paste(FindControl<QLineEdit>(&list, "edtFilter"), flood);
    QCOMPARE(Grid(list).model()->rowCount(), 0);
    VERIFY_SCRIPT(script);
}

void t_banks::notes()
{
    TWorld world;
    const int id = AddBank("CBA", "062-000");
    AddBank("ANZ", "013-000");
    QWidget &list = world.OpenList();
    Grid(list).FocusKey(id);
    const auto writeNote = [](QDialog &form) {
        Type(FindControl<QPlainTextEdit>(&form, "memNotes"), "Call Ann's desk");
        PressOK(form);
    };
    TUserScript script;
    script.Dialog("frmNotes", writeNote);
    Trigger(list, "mniNotes");
    QCOMPARE(RowsOf("select cNOTETBLTableName, fNOTETBLTableID, cNote from _btblNotes"),
             (QList<QStringList>{{"_IPTBLBANKS", QString::number(id), "Call Ann's desk"}}));

    QList<int> states;
    const auto look = [&](QDialog &dialog) {
        states += FindControl<QToolButton>(&dialog, "btnNote").property("state").toInt();
        PressCancel(dialog);
    };
    for (const auto &[record, copy] : {std::pair(0, 0), std::pair(2, 0), std::pair(id, 0), std::pair(id, 1)}) {
        script.Dialog("TfrmIPBankAddDlg", look);
        SendToPackage(kBankDialog, record, copy);
    }
    QCOMPARE(states, (QList<int>{0, 1, 2, 0}));

    script
        .Dialog("TfrmIPBankAddDlg",
                [&](QDialog &dialog) {
                    Click(FindControl<QToolButton>(&dialog, "btnNote"));
                    look(dialog);
                })
        .Dialog("frmNotes", writeNote);
    SendToPackage(kBankDialog, 2, 0);
    QCOMPARE(states.last(), 2);

    Grid(list).FocusKey(id);
    script.Box("Delete Bank \"CBA\" ?", QMessageBox::Yes);
    Trigger(list, "mniMaintDelete");
    QCOMPARE(RowsOf("select fNOTETBLTableID from _btblNotes"), (QList<QStringList>{{"2"}}));
    VERIFY_SCRIPT(script);
}

void t_banks::keyboard()
{
    TWorld world;
    const int a = AddBank("A", "062-001");
    AddBank("B", "062-002");
    QWidget &list = world.OpenList();
    TqsGrid &grid = Grid(list);
    QCOMPARE(FocusName(list), "grdBanks");
    grid.FocusKey(a);
    QStringList titles;
    const auto note = [&](QDialog &dialog) {
        titles += dialog.windowTitle();
        PressKey(dialog, Qt::Key_Escape);
    };
    TUserScript script;
    script.Dialog("TfrmIPBankAddDlg", note);
    PressKey(grid, Qt::Key_Insert);
    script.Dialog("TfrmIPBankAddDlg", note);
    PressKey(grid, Qt::Key_Return);
    ShowActive(list); // keys belong to the active window
    PressKey(grid, Qt::Key_Down);
    script.Box("Delete Bank \"B\" ?", QMessageBox::No);
    PressKey(grid, Qt::Key_Delete);
    QCOMPARE(titles, (QStringList{"Add New Bank", "Edit Bank \"A\""}));
    AddBank("C", "062-003");
    ShowActive(list);
    PressKey(grid, Qt::Key_F5);
    QCOMPARE(ShownCodes(grid), (QStringList{"A", "B", "C"}));
    PressKey(grid, Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(FocusName(list), "edtSearch");
    QTest::keyClicks(&FindControl<QLineEdit>(&list, "edtSearch"), "062-003");
    QCOMPARE(grid.FocusedKey(), 3);
    PressKey(list, Qt::Key_F1);
    QCOMPARE(world.host.HelpContexts, QList<int>{101600});

    // The whole dialog without a mouse.
    script.Dialog("TfrmIPBankAddDlg", [](QDialog &dialog) {
        QTest::keyClicks(dialog.focusWidget(), "NEW");
        for (const char *text : {"Name", "Branch", "123456", "nsw"}) {
            PressKey(*dialog.focusWidget(), Qt::Key_Tab);
            QTest::keyClicks(dialog.focusWidget(), text);
        }
        PressKey(*dialog.focusWidget(), Qt::Key_Return);
    });
    Trigger(list, "mniMaintAdd");
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select b.cCode, b.cBankName, b.cBranchName, b.cBSBNumber, s.cStateCode from _iptblBanks b "
                    "join _iptblStates s on s.idState = b.iStateID"),
             (QList<QStringList>{{"NEW", "Name", "Branch", "123-456", "NSW"}}));
}

void t_banks::modalListGivesTheChosenBank()
{
    TWorld world;
    AddBank("A", "062-001");
    const int b = AddBank("B", "062-002");
    TList chosen;
    chosen.Add(77);
    TUserScript script;
    script.Dialog("TfrmIPBankMaintenance", [&](QDialog &list) {
        Grid(list).FocusKey(b);
        PressOK(list);
    });
    SendToPackage(kBankList, 1, qlonglong(quintptr(&chosen)));
    QCOMPARE(chosen.Items(), QList<int>{b});
    script.Dialog("TfrmIPBankMaintenance", [&](QDialog &list) { PressCancel(list); });
    SendToPackage(kBankList, 1, qlonglong(quintptr(&chosen)));
    QCOMPARE(chosen.Items(), QList<int>{b});
    VERIFY_SCRIPT(script);
}

QTEST_MAIN(t_banks)
#include "t_banks.moc"
