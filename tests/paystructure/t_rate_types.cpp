// SPDX-License-Identifier: Apache-2.0
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRandomGenerator>
#include <QTableWidget>
#include <QToolButton>

#include "framework/Kvglobal.h"
#include "framework/editors/Editors.h"
#include "framework/effectivedate/EditingController.h"
#include "framework/effectivedate/VersionTimeline.h"
#include "framework/grid/qsGrid.h"
#include "tests/paystructure/VersionChains.h"

namespace {

constexpr uint kList = 9409;
constexpr uint kDialog = 9410;
constexpr char kForm[] = "TfrmIPRateTypeAddDlg";

struct TWorld
{
    TTemplateDatabase database;
    TNotificationRecorder control;
    TMemoryScreenHost host;

    explicit TWorld(TTemplateDatabase::Content content = TTemplateDatabase::Content::Demo)
        : database(content)
    {
        SetCurrentAgent(2, "Priya Raman");
    }
    QWidget &OpenList()
    {
        SendToPackage(kList);
        return *host.Screens.last();
    }
    void SetParameter(const QString &column, const QVariant &value)
    {
        MainConnection().Execute("update _iptblGeneralParameters set " + column + " = :v", {{"v", value}});
        LoadInstallation();
    }
};

// The live version of a record that begins on a day (its last one without a day).
int Version(const QString &code, const QDate &start = {})
{
    const QList<QStringList> rows = RowsOf(
        "select idRateTypeTD from _iptblRateTypes_TD where cCode = :code and iChangeType <> 3 "
        "and (:any = 1 or dEffectiveDate = :start) order by dEffectiveDate desc",
        {{"code", code}, {"any", start.isValid() ? 0 : 1}, {"start", start.isValid() ? start : QDate(2000, 1, 1)}});
    return rows.isEmpty() ? 0 : rows[0][0].toInt();
}

int Master(const QString &code)
{
    return ValueOf("select idRateType from _iptblRateTypes where cCode = :code", {{"code", code}}).toInt();
}

// "1.5 from 2026-07-01 to 2026-12-31" of the live versions, in order.
QStringList Chain(const QString &code)
{
    QStringList chain;
    const TDbRows rows =
        MainConnection().Select("select fRate, dEffectiveDate, dEndDate from _iptblRateTypes_TD where cCode = :code "
                                "and iChangeType <> 3 order by dEffectiveDate",
                                {{"code", code}});
    for (int i = 0; i < rows.size(); ++i) {
        const QDate end = rows.Value(i, u"dEndDate").toDate();
        chain += QString("%1 %2..%3")
                     .arg(rows.Value(i, u"fRate").toDouble())
                     .arg(rows.Value(i, u"dEffectiveDate").toDate().toString(Qt::ISODate), end.toString(Qt::ISODate));
    }
    return chain;
}

// A record with two versions in the past, one in force and one to come, whenever the test runs. Gives their ids.
QList<int> AddDated()
{
    const QDate today = QDate::currentDate();
    const int master = NewMaster("DATED");
    QList<int> ids;
    for (const auto &[days, rate] : {std::pair{-800, 16.5}, {-400, 17.2}, {-100, 17.9}, {200, 18.6}})
        ids += Apply(Add, master, 0, today.addDays(days), rate).version;
    return ids;
}

QLineEdit &Box(QDialog &dialog, const char *name)
{
    return FindControl<QLineEdit>(&dialog, name);
}

TqsDateEdit &EffectiveDate(QDialog &dialog)
{
    return FindControl<TqsDateEdit>(&dialog, "edtEffectiveDate");
}

TqsGrid &Grid(QWidget &list)
{
    return FindControl<TqsGrid>(&list, "grdRateTypes");
}

// Stands on a version and adds an effective date through the toolbar; the dialog is the script's.
void NewEffectiveDate(QWidget &list, int version)
{
    QVERIFY(Grid(list).FocusKey(version));
    Trigger(list, "mniNewEffectiveDate");
}

QString Day(int day, int month, int year)
{
    return MessageDate(QDate(year, month, day));
}

} // namespace

// Rate types as a payroll officer uses them, on the demonstration data: current periods are the fortnight of 18/11/2026
// to 1/12/2026 and the month of November 2026.
class t_rate_types final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void addSavesTheFirstVersion();
    void requiredFields_data();
    void requiredFields();
    void dateChecks_data();
    void dateChecks();
    void newEffectiveDateJoinsTheChain();
    void editLocks_data();
    void editLocks();
    void editMovesAVersion();
    void otherUsersChange();
    void payClassesFollowTheVersionId_data();
    void payClassesFollowTheVersionId();
    void kinds();
    void systemRate();
    void awardRefusals();
    void deletes_data();
    void deletes();
    void deleteKeepsTheChain();
    void listShowsPastValues();
    void timeline();
    void whereUsed();
    void randomWork();
    void rateFactorChecks_data();
    void rateFactorChecks();
    void rateFactorDelete_data();
    void rateFactorDelete();
};

void t_rate_types::addSavesTheFirstVersion()
{
    TWorld world;
    QWidget &list = world.OpenList();
    TUserScript script;
    script.Dialog(kForm, [](QDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), "Add New Rate Type");
        QCOMPARE(FocusName(dialog), "edtCode");
        QVERIFY(FindControl<QCheckBox>(&dialog, "chkActive").isChecked());
        QVERIFY(!FindControl<QWidget>(&dialog, "rbAward").isVisible());
        Type(Box(dialog, "edtCode"), " NEW ");
        Type(Box(dialog, "edtDescription"), "New one ");
        Type(Box(dialog, "edtFixedRate"), "12.3456");
        FindControl<QComboBox>(&dialog, "cbxGrouping").setCurrentIndex(1);
        EffectiveDate(dialog).SetDate(QDate(2024, 2, 29)); // no date checks for a new record
        PressOK(dialog);
    });
    Trigger(list, "mniMaintAdd");
    VERIFY_SCRIPT(script);
    world.control.Process();
    const int version = Version("NEW");
    QCOMPARE(world.control.TakeLog(), QString("9411:%1").arg(version));
    QCOMPARE(Grid(list).FocusedKey(), version);
    QCOMPARE(RowsOf("select cDescription, iType, fRate, iGrouping, bActive, iChangeType, iCreateAgentID from "
                    "_iptblRateTypes_TD "
                    "where idRateTypeTD = :id",
                    {{"id", version}}),
             (QList<QStringList>{{"New one", "0", "12.3456", "1", "1", "1", "2"}}));
    QCOMPARE(Chain("NEW"), QStringList{"12.3456 2024-02-29.."});
    QCOMPARE(ChainFaults(), QStringList());
    QCOMPARE(RowsOf("select cKind, cCode, cAction from _btblActivityLog where cCode = 'NEW'"),
             (QList<QStringList>{{"Rate Type", "NEW", "Added"}}));
}

// clang-format off
void t_rate_types::requiredFields_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("description");
    QTest::addColumn<bool>("formula");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("focus");
    QTest::newRow("taken") << "spare" << "" << true << "The Rate Type already exists." << "edtCode";
    QTest::newRow("apostrophe") << "A'B" << "" << true << "The Rate Type Code is invalid!" << "edtCode";
    QTest::newRow("no code") << " " << "" << true << "The Code may not be blank." << "edtCode";
    QTest::newRow("no description") << "X" << " " << true << "The Description may not be blank." << "edtDescription";
    QTest::newRow("no formula") << "X" << "x" << true << "Please select a Formula." << "cbxFormula";
    QTest::newRow("nothing") << "X" << "x" << false << "" << "";
}
// clang-format on

void t_rate_types::requiredFields()
{
    QFETCH(QString, code);
    QFETCH(QString, description);
    QFETCH(bool, formula);
    QFETCH(QString, message);
    QFETCH(QString, focus);
    TWorld world;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        Type(Box(dialog, "edtCode"), code);
        Type(Box(dialog, "edtDescription"), description);
        if (formula)
            FindControl<QRadioButton>(&dialog, "rbFormula").click();
        PressOK(dialog);
        if (message.isEmpty())
            return;
        QVERIFY(dialog.isVisible());
        QCOMPARE(FocusName(dialog), focus);
        PressCancel(dialog);
    });
    if (!message.isEmpty())
        script.Box(message);
    const int before = RowsOf("select idRateTypeTD from _iptblRateTypes_TD").size();
    QVERIFY(SendToPackage(kDialog));
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select idRateTypeTD from _iptblRateTypes_TD").size(), before + (message.isEmpty() ? 1 : 0));
}

// clang-format off
void t_rate_types::dateChecks_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<bool>("backpay");
    QTest::addColumn<QString>("message"); // "" when it is saved
    const auto duplicate = [](const char *code, const QString &date) {
        return QString("Rate \"%1\" already exists with an Effective Date of %2.\r\n"
                       "Please enter a unique Effective Date or edit the record that already exists.")
            .arg(code, date);
    };
    const auto used = [](const char *code, const QString &date) {
        return QString("Rate \"%1\" has been used in previous periods after the effective date you have entered.\r\n"
                       "The earliest Effective Date you can enter is %2.")
            .arg(code, date);
    };
    const auto current = [](const char *code, const QString &date) {
        return QString("Transactions currently exist for employees that use Rate \"%1\".\r\n"
                       "This record cannot therefore be updated effective in the current period.\r\n"
                       "To make a change effective in the current period all related transactions must be deleted "
                       "first.\r\n"
                       "Otherwise, the earliest Effective Date you can enter is %2")
            .arg(code, date);
    };
    const QString before = QString::fromUtf8("The Effective Date cannot be before the current period’s start date %1.");
    // NIGHT: posted up to the fortnight that ended on 17/11/2026, unposted in the current one.
    QTest::newRow("duplicate before used, unposted, early") << "NIGHT" << QDate(2025, 7, 1) << false
        << duplicate("NIGHT", Day(1, 7, 2025));
    QTest::newRow("used before unposted and early") << "NIGHT" << QDate(2026, 9, 1) << false
        << used("NIGHT", Day(18, 11, 2026));
    QTest::newRow("used, on the last day of a posted period") << "NIGHT" << QDate(2026, 11, 17) << true
        << used("NIGHT", Day(18, 11, 2026));
    QTest::newRow("unposted, on the first day after") << "NIGHT" << QDate(2026, 11, 18) << false
        << current("NIGHT", Day(2, 12, 2026));
    QTest::newRow("unposted, on the last day of the period") << "NIGHT" << QDate(2026, 12, 1) << false
        << current("NIGHT", Day(2, 12, 2026));
    QTest::newRow("after the period") << "NIGHT" << QDate(2026, 12, 2) << false << "";
    QTest::newRow("previous years count") << "OT20" << QDate(2026, 3, 11) << true << used("OT20", Day(12, 3, 2026));
    QTest::newRow("previous years, advice no earlier than the period") << "OT20" << QDate(2026, 3, 11) << false
        << used("OT20", Day(1, 11, 2026));
    // Nobody's: the earliest current period of all.
    QTest::newRow("early") << "SPARE" << QDate(2026, 10, 31) << false << before.arg(Day(1, 11, 2026));
    QTest::newRow("first day of the period, with backpay") << "SPARE" << QDate(2026, 11, 1) << true << "";
    // WET is given to a fortnightly employee, so the month does not count for it.
    QTest::newRow("early, by the holder's period") << "WET" << QDate(2026, 11, 17) << false
        << before.arg(Day(18, 11, 2026));
    QTest::newRow("early with backpay") << "SPARE" << QDate(2026, 10, 31) << true << "";
}
// clang-format on

void t_rate_types::dateChecks()
{
    QFETCH(QString, code);
    QFETCH(QDate, date);
    QFETCH(bool, backpay);
    QFETCH(QString, message);
    TWorld world;
    world.SetParameter("bBackpayEnabled", backpay);
    MainConnection().Execute("insert _iptblEmployeeAdditionalRates (iEmployeeID, iAddRateTypeID, dEffectiveDate) "
                             "select E.idEmployee, R.idRateType, '20261201' from _iptblEmployee E, _iptblRateTypes R "
                             "where E.cCode = 'E003' and R.cCode = 'WET'");
    QWidget &list = world.OpenList();
    const QStringList before = Chain(code);
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        QVERIFY(EffectiveDate(dialog).isEnabled());
        EffectiveDate(dialog).SetDate(date);
        PressOK(dialog);
        if (message.isEmpty())
            return;
        QCOMPARE(FocusName(dialog), "edtEffectiveDate");
        PressCancel(dialog);
    });
    if (!message.isEmpty())
        script.Box(message);
    else if (backpay && date < QDate(2026, 11, 1))
        script.Box(QString("Additional Rate \"%1\" has been back-dated").arg(code));
    NewEffectiveDate(list, Grid(list).FocusKey(Version(code)) ? Version(code) : 0);
    VERIFY_SCRIPT(script);
    if (message.isEmpty())
        QCOMPARE(Chain(code).size(), before.size() + 1);
    else
        QCOMPARE(Chain(code), before);
    QCOMPARE(ChainFaults(), QStringList());
}

void t_rate_types::newEffectiveDateJoinsTheChain()
{
    TWorld world;
    QWidget &list = world.OpenList();
    TUserScript script;
    script.Dialog(kForm, [](QDialog &dialog) {
        QCOMPARE(Box(dialog, "edtFixedRate").text(), "17.9000");
        Type(Box(dialog, "edtFixedRate"), "18.25");
        EffectiveDate(dialog).SetDate(QDate(2027, 1, 1));
        PressOK(dialog);
    });
    NewEffectiveDate(list, Version("FIRSTAID", QDate(2026, 7, 1)));
    VERIFY_SCRIPT(script);
    world.control.Process();
    QCOMPARE(Chain("FIRSTAID"),
             (QStringList{"16.5 2024-07-01..2025-06-30", "17.2 2025-07-01..2026-06-30", "17.9 2026-07-01..2026-12-31",
                          "18.25 2027-01-01..2027-06-30", "18.6 2027-07-01.."}));
    QCOMPARE(ChainFaults(), QStringList());
    QCOMPARE(Grid(list).FocusedKey(), Version("FIRSTAID", QDate(2027, 1, 1)));
}

// clang-format off
void t_rate_types::editLocks_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QDate>("start");
    QTest::addColumn<bool>("backpay");
    QTest::addColumn<QString>("open"); // controls that may be changed
    QTest::addColumn<QString>("focus");
    QTest::newRow("posted") << "FIRSTAID" << QDate(2026, 7, 1) << false << "edtDescription" << "edtDescription";
    QTest::newRow("posted and ended") << "SICK" << QDate(2024, 7, 1) << false << "" << "edtChangeReason";
    QTest::newRow("unposted, the code stays open") << "NIGHT" << QDate(2026, 7, 1) << false
        << "edtCode edtDescription" << "edtCode";
    QTest::newRow("not used, in force before the period") << "SPARE" << QDate(2026, 7, 1) << false
        << "edtDescription edtFixedRate" << "edtDescription";
    QTest::newRow("not used, with backpay") << "SPARE" << QDate(2026, 7, 1) << true
        << "edtDescription edtFixedRate edtEffectiveDate" << "edtDescription";
    QTest::newRow("future") << "REMOTE" << QDate(2027, 1, 1) << false
        << "edtDescription edtFixedRate edtEffectiveDate" << "edtDescription";
    QTest::newRow("award") << "CLERK2" << QDate(2025, 7, 1) << true << "edtDescription edtEffectiveDate"
        << "edtDescription";
}
// clang-format on

void t_rate_types::editLocks()
{
    QFETCH(QString, code);
    QFETCH(QDate, start);
    QFETCH(bool, backpay);
    QFETCH(QString, open);
    QFETCH(QString, focus);
    TWorld world;
    world.SetParameter("bBackpayEnabled", backpay);
    MainConnection().Execute("insert _iptblEmployeeTransEOY (dTransDate, iRateTypeID) values ('20260311', :id)",
                             {{"id", Master("SICK")}});
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), QString("Edit Rate Type \"%1\"").arg(code));
        QStringList found;
        for (const char *name : {"edtCode", "edtDescription", "edtFixedRate", "edtEffectiveDate"}) {
            if (FindControl<QWidget>(&dialog, name).isEnabled())
                found += name;
        }
        QCOMPARE(found.join(' '), open);
        QCOMPARE(Box(dialog, "edtCode").font().bold(), !open.contains("edtCode"));
        QCOMPARE(FocusName(dialog), focus);
        QCOMPARE(FindControl<QWidget>(&dialog, "pnlAward").isVisible(), code == "CLERK2");
        PressCancel(dialog);
    });
    QVERIFY(SendToPackage(kDialog, Version(code, start)));
    VERIFY_SCRIPT(script);
}

void t_rate_types::editMovesAVersion()
{
    TWorld world;
    TUserScript script;
    script
        .Dialog(kForm,
                [](QDialog &dialog) {
                    EffectiveDate(dialog).SetDate(QDate(2026, 7, 1));
                    PressOK(dialog);
                    EffectiveDate(dialog).SetDate(QDate(2027, 3, 1));
                    Type(Box(dialog, "edtFixedRate"), "19");
                    FindControl<TqsLookupCombo>(&dialog, "edtChangeReason").SetKey(2);
                    PressOK(dialog);
                })
        .Box(QString("Rate \"FIRSTAID\" already exists with an Effective Date of %1.\r\n"
                     "Please enter a unique Effective Date or edit the record that already exists.")
                 .arg(Day(1, 7, 2026)));
    const int version = Version("FIRSTAID", QDate(2027, 7, 1));
    QVERIFY(SendToPackage(kDialog, version));
    VERIFY_SCRIPT(script);
    world.control.Process();
    QCOMPARE(world.control.TakeLog(), QString("9411:%1").arg(version));
    QCOMPARE(Chain("FIRSTAID").mid(2), (QStringList{"17.9 2026-07-01..2027-02-28", "19 2027-03-01.."}));
    QCOMPARE(
        RowsOf("select iChangeReasonID, iChangeType, iChangeAgentID from _iptblRateTypes_TD where idRateTypeTD = :id",
               {{"id", version}}),
        (QList<QStringList>{{"2", "2", "2"}}));
    QCOMPARE(ChainFaults(), QStringList());
}

// Somebody else changes the version while its dialog is open: nothing is lost in silence.
void t_rate_types::otherUsersChange()
{
    TWorld world;
    const int version = Version("REMOTE");
    TUserScript script;
    script
        .Dialog(kForm,
                [&](QDialog &dialog) {
                    Type(Box(dialog, "edtDescription"), "Mine");
                    MainConnection().Execute("update _iptblRateTypes_TD set fRate = 99 where idRateTypeTD = :id",
                                             {{"id", version}});
                    PressOK(dialog);
                })
        .Box("Another user has changed this record while you were editing it.", "&Write Mine");
    QVERIFY(SendToPackage(kDialog, version));
    QCOMPARE(RowsOf("select cDescription, fRate from _iptblRateTypes_TD where idRateTypeTD = :id", {{"id", version}}),
             (QList<QStringList>{{"Mine", "99"}}));

    script
        .Dialog(kForm,
                [&](QDialog &dialog) {
                    Type(Box(dialog, "edtDescription"), "Again");
                    MainConnection().Execute("update _iptblRateTypes_TD set iChangeType = 3 where idRateTypeTD = :id",
                                             {{"id", version}});
                    PressOK(dialog);
                })
        .Box("Another user has deleted this record while you were editing it.", "&Save Mine as New");
    QVERIFY(SendToPackage(kDialog, version));
    QVERIFY(Version("REMOTE") > version);
    QCOMPARE(RowsOf("select cDescription, fRate from _iptblRateTypes where cCode = 'REMOTE'"),
             (QList<QStringList>{{"Again", "99"}}));

    QWidget &list = world.OpenList();
    script
        .Dialog(kForm,
                [&](QDialog &dialog) {
                    EffectiveDate(dialog).SetDate(QDate(2027, 5, 1));
                    MainConnection().Execute("delete from _iptblRateTypes where cCode = 'REMOTE'");
                    PressOK(dialog);
                })
        .Box("Another user has deleted this record while you were editing it.", "&Leave It Deleted");
    NewEffectiveDate(list, Version("REMOTE"));
    VERIFY_SCRIPT(script);
    QVERIFY(RowsOf("select idRateType from _iptblRateTypes where cCode = 'REMOTE'").isEmpty());
}

void t_rate_types::payClassesFollowTheVersionId_data()
{
    QTest::addColumn<bool>("checksFail");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("expected"); // rates of the rows keyed by the version and by the master
    QTest::newRow("saved") << false << 2 << "22.35";
    QTest::newRow("checks fail") << true << 4 << "21";
}

void t_rate_types::payClassesFollowTheVersionId()
{
    QFETCH(bool, checksFail);
    QFETCH(int, decimals);
    QFETCH(QString, expected);
    TWorld world;
    world.SetParameter("iRateDecimals", decimals);
    const int version = Version("SPARE");
    const int master = Master("SPARE");
    QVERIFY(version != master);
    MainConnection().Execute("delete from _iptblPayClassAddRates_TD");
    for (int key : {version, master})
        MainConnection().Execute("insert _iptblPayClassAddRates_TD (iPayClassID, iRateTypeID, fRate, dEffectiveDate) "
                                 "values (1, :key, 5, '20250701')",
                                 {{"key", key}});
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        QCOMPARE(FindControl<TqsNumberEdit>(&dialog, "edtFixedRate").Decimals(), decimals);
        Type(Box(dialog, "edtFixedRate"), "22.35");
        if (checksFail)
            Type(Box(dialog, "edtDescription"), "");
        PressOK(dialog);
        if (checksFail)
            PressCancel(dialog);
    });
    if (checksFail)
        script.Box("The Description may not be blank.");
    QVERIFY(SendToPackage(kDialog, version));
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select fRate from _iptblPayClassAddRates_TD where iRateTypeID = :id", {{"id", version}}),
             (QList<QStringList>{{expected}}));
    QCOMPARE(RowsOf("select fRate from _iptblPayClassAddRates_TD where iRateTypeID = :id", {{"id", master}}),
             (QList<QStringList>{{"5"}}));
}

void t_rate_types::kinds()
{
    TWorld world;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        const auto state = [&dialog] {
            return QString("%1 %2 %3")
                .arg(FindControl<QWidget>(&dialog, "edtFixedRate").isVisible()
                         ? FindControl<QLabel>(&dialog, "lblFixedRate").text()
                         : "-",
                     FindControl<QWidget>(&dialog, "cbxFormula").isVisible()
                         ? FindControl<QLabel>(&dialog, "lblFormula").text()
                         : "-",
                     Box(dialog, "edtFixedRate").text());
        };
        QCOMPARE(state(), "&Fixed Rate - 21.0000");
        FindControl<QRadioButton>(&dialog, "rbFormula").click();
        QCOMPARE(state(), "- F&ormula 21.0000");
        FindControl<TqsLookupCombo>(&dialog, "cbxFormula").SetKey(1);
        PressOK(dialog);
    });
    QVERIFY(SendToPackage(kDialog, Version("SPARE")));
    QCOMPARE(RowsOf("select iType, iFormulaID, fRate from _iptblRateTypes where cCode = 'SPARE'"),
             (QList<QStringList>{{"1", "1", "0"}}));

    script.Dialog(kForm, [](QDialog &dialog) {
        QCOMPARE(FindControl<QLabel>(&dialog, "lblFixedRate").text(), "Percentage");
        QCOMPARE(Box(dialog, "edtFixedRate").text(), "102.50%");
        QVERIFY(FindControl<QRadioButton>(&dialog, "rbAward").isVisible());
        QVERIFY(!FindControl<QRadioButton>(&dialog, "rbFixed").isEnabled());
        QCOMPARE(Box(dialog, "edtAwardCode").text(), "CLERKS");
        Type(Box(dialog, "edtDescription"), "Clerk two");
        PressOK(dialog);
    });
    QVERIFY(SendToPackage(kDialog, Version("CLERK2")));
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select cDescription, fRate, iAwardTDID from _iptblRateTypes where cCode = 'CLERK2'"),
             (QList<QStringList>{{"Clerk two", "102.5", "1"}}));
}

void t_rate_types::systemRate()
{
    TWorld world;
    MainConnection().Execute("insert _iptblPayClassAddRates_TD (iPayClassID, iRateTypeID, fRate, dEffectiveDate) "
                             "values (1, :key, 5, '20250701')",
                             {{"key", Version("NORMAL")}});
    const QList<QStringList> before = RowsOf("select * from _iptblRateTypes_TD order by idRateTypeTD");
    const QList<QStringList> classes = RowsOf("select * from _iptblPayClassAddRates_TD order by idPayClassAddRateTD");
    TUserScript script;
    script.Box("The selected Rate Type can not be modified as it is a system record.")
        .Dialog(kForm, [](QDialog &dialog) {
            Type(Box(dialog, "edtDescription"), "Changed");
            PressOK(dialog);
        });
    QVERIFY(SendToPackage(kDialog, Version("NORMAL")));
    world.control.Process();
    QCOMPARE(RowsOf("select * from _iptblRateTypes_TD order by idRateTypeTD"), before);
    QCOMPARE(RowsOf("select * from _iptblPayClassAddRates_TD order by idPayClassAddRateTD"), classes);
    QVERIFY(world.control.Notifications.isEmpty());
    // A copy of it is nobody's but the user's.
    script.Dialog(kForm, [](QDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), "Copy Rate Type \"NORMAL\"");
        Type(Box(dialog, "edtCode"), "NORMAL2");
        PressOK(dialog);
    });
    QVERIFY(SendToPackage(kDialog, Version("NORMAL"), 1));
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select bSystem, iChangeType from _iptblRateTypes M inner join _iptblRateTypes_TD T on "
                    "T.iRateTypeID = M.idRateType "
                    "where M.cCode = 'NORMAL2'"),
             (QList<QStringList>{{"0", "1"}}));
}

void t_rate_types::awardRefusals()
{
    TWorld world;
    QWidget &list = world.OpenList();
    QVERIFY(Grid(list).FocusKey(Version("CLERK2")));
    TUserScript script;
    script.Box("An Award Rate Type cannot be copied.")
        .Box("Cannot create a New Effective Date as this is used by an Award.")
        .Box("Delete Rate Type \"CLERK2\" ?", QMessageBox::Yes)
        .Box("Unable to delete Rate Type \"CLERK2\" as it is used by an Award!");
    for (const char *action : {"mniMaintCopy", "mniNewEffectiveDate", "mniMaintDelete"})
        Trigger(list, action);
    VERIFY_SCRIPT(script);
    QVERIFY(Version("CLERK2") != 0);
}

// clang-format off
void t_rate_types::deletes_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QDate>("start");
    QTest::addColumn<QString>("arrange"); // what is done behind the list's back
    QTest::addColumn<QString>("message"); // "" when it goes
    const QString used =
        "Unable to delete Rate \"%1\" as it has been used either in the current period or a previous period";
    const QString only =
        "Unable to delete Rate \"%1\" as this is the only occurence of it and it has been assigned to employees or "
        "other components.";
    const QString held =
        "Unable to delete this record as employees or components have been assigned Rate \"%1\" effective within the "
        "date range of this occurrence (%2 to %3).";
    QTest::newRow("system") << "SPARE" << QDate(2026, 7, 1)
        << "update _iptblRateTypes set bSystem = 1 where cCode = 'SPARE'" << "System Rates cannot be deleted!";
    QTest::newRow("posted transactions, though held") << "FIRSTAID" << QDate(2026, 7, 1) << ""
        << used.arg("FIRSTAID");
    QTest::newRow("previous years' transactions, though the only one") << "OT20" << QDate(2024, 7, 1) << ""
        << used.arg("OT20");
    QTest::newRow("only one, in a pay class") << "TOOLS" << QDate(2025, 7, 1) << "" << only.arg("TOOLS");
    QTest::newRow("only one, in a leave type") << "LSL" << QDate(2024, 7, 1) << "" << only.arg("LSL");
    QTest::newRow("held at its time") << "FIRSTAID" << QDate(2025, 7, 1) << ""
        << held.arg("FIRSTAID", Day(1, 7, 2025), Day(30, 6, 2026));
    QTest::newRow("held, open end") << "FIRSTAID" << QDate(2027, 7, 1) << ""
        << held.arg("FIRSTAID", Day(1, 7, 2027), "<No End Date>");
    QTest::newRow("held before its time only") << "SICK" << QDate(2026, 7, 1) << "" << "";
    QTest::newRow("held until the day before") << "FIRSTAID" << QDate(2027, 7, 1)
        << "update _iptblEmployeeAdditionalRates set dEndDate = '20270630'" << "";
    QTest::newRow("held until its first day") << "FIRSTAID" << QDate(2027, 7, 1)
        << "update _iptblEmployeeAdditionalRates set dEndDate = '20270701'"
        << held.arg("FIRSTAID", Day(1, 7, 2027), "<No End Date>");
    QTest::newRow("nobody's") << "WET" << QDate(2024, 7, 1) << "" << "";
}
// clang-format on

void t_rate_types::deletes()
{
    QFETCH(QString, code);
    QFETCH(QDate, start);
    QFETCH(QString, arrange);
    QFETCH(QString, message);
    TWorld world;
    QWidget &list = world.OpenList();
    FindControl<QCheckBox>(&list, "chkShowPastValues").setChecked(true);
    QVERIFY(Grid(list).FocusKey(Version(code, start)));
    if (!arrange.isEmpty())
        MainConnection().Execute(arrange);
    const QStringList before = Chain(code);
    TUserScript script;
    script.Box("Delete Rate Type \"" + code + "\" ?", QMessageBox::Yes);
    if (!message.isEmpty())
        script.Box(message);
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    world.control.Process();
    QCOMPARE(Chain(code).size(), before.size() - (message.isEmpty() ? 1 : 0));
    QCOMPARE(world.control.TakeLog(), message.isEmpty() ? QString("9411:0") : QString());
    QCOMPARE(ChainFaults(), QStringList());
}

void t_rate_types::deleteKeepsTheChain()
{
    TWorld world;
    QWidget &list = world.OpenList();
    QVERIFY(Grid(list).FocusKey(Version("SPARE", QDate(2026, 7, 1))));
    TUserScript script;
    script.Box("Delete Rate Type \"SPARE\" ?", QMessageBox::No).Box("Delete Rate Type \"SPARE\" ?", QMessageBox::Yes);
    Trigger(list, "mniMaintDelete");
    QCOMPARE(Chain("SPARE").size(), 2);
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    world.control.Process();
    QCOMPARE(Chain("SPARE"), QStringList{"20 2025-07-01.."});
    QCOMPARE(ValueOf("select fRate from _iptblRateTypes where cCode = 'SPARE'").toDouble(), 20.0);
    QCOMPARE(RowsOf("select iChangeAgentID from _iptblRateTypes_TD where cCode = 'SPARE' and iChangeType = 3"),
             (QList<QStringList>{{"2"}}));
    // The neighbour below had the focus kept for it.
    QCOMPARE(Grid(list).CurrentValue(u"cCode").toString(), "TOOLS");
}

void t_rate_types::listShowsPastValues()
{
    TWorld world;
    const QList<int> versions = AddDated();
    QWidget &list = world.OpenList();
    const auto count = [&list](const char *code) {
        int rows = 0;
        for (int row = 0; row < Grid(list).model()->rowCount(); ++row)
            rows += Grid(list).model()->index(row, 1).data().toString() == QLatin1String(code) ? 1 : 0;
        return rows;
    };
    QCOMPARE(Grid(list).model()->headerData(1, Qt::Horizontal).toString(), "Code");
    QCOMPARE(count("DATED"), 2);  // in force and future
    QCOMPARE(count("NORMAL"), 0); // system
    QVERIFY(Grid(list).FocusKey(versions[2]));
    FindControl<QCheckBox>(&list, "chkShowPastValues").click();
    QCOMPARE(count("DATED"), 4);
    QCOMPARE(Grid(list).FocusedKey(), versions[2]);
    QVERIFY(Grid(list).FocusKey(versions[3]));
    const auto shown = [&list](const QString &caption) {
        for (int column = 0; column < Grid(list).model()->columnCount(); ++column) {
            if (Grid(list).model()->headerData(column, Qt::Horizontal).toString() == caption)
                return Grid(list).currentIndex().siblingAtColumn(column).data().toString();
        }
        return QString("no such column");
    };
    QCOMPARE(shown("End Date"), "<No End Date>");
    QCOMPARE(shown("Rate Type"), "Fixed");
    QCOMPARE(shown("Fixed Rate"), "18.6000");
    QCOMPARE(shown("Created by Agent"), "Administrator");
    QVERIFY(Grid(list).FocusKey(Version("NIGHT")));
    QCOMPARE(shown("Change Reason"), "Enterprise agreement");
    for (const char *hidden : {"Award Code", "Award Name"}) {
        for (int column = 0; column < Grid(list).model()->columnCount(); ++column) {
            if (Grid(list).model()->headerData(column, Qt::Horizontal).toString() == QLatin1String(hidden))
                QVERIFY(Grid(list).isColumnHidden(column));
        }
    }
}

void t_rate_types::timeline()
{
    TWorld world;
    const QList<int> versions = AddDated();
    QWidget &list = world.OpenList();
    ShowActive(list);
    auto &timeline = FindControl<TVersionTimeline>(&list, "pnlTimeline");
    QVERIFY(timeline.isVisible());
    QVERIFY(Grid(list).FocusKey(versions[2]));
    auto &table = FindControl<QTableWidget>(&list, "grdVersions");
    QCOMPARE(table.rowCount(), 4);
    QCOMPARE(timeline.Version(), Grid(list).FocusedKey());
    QStringList states;
    for (int row = 0; row < table.rowCount(); ++row)
        states += table.item(row, 0)->text() + " " + table.item(row, 3)->text();
    QCOMPARE(states, (QStringList{"Past 16.5000", "Past 17.2000", "In force 17.9000", "Future 18.6000"}));

    // By keyboard to a version that has ended: the list turns to past values for it.
    auto &strip = FindControl<QWidget>(&list, "pnlVersionStrip");
    strip.setFocus();
    PressKey(strip, Qt::Key_Left);
    QVERIFY(FindControl<QLabel>(&list, "lblVersionDetail").text().contains("17.2000"));
    QCOMPARE(strip.accessibleDescription(), FindControl<QLabel>(&list, "lblVersionDetail").text());
    QCOMPARE(Grid(list).FocusedKey(), versions[2]);
    PressKey(strip, Qt::Key_Return);
    QVERIFY(FindControl<QCheckBox>(&list, "chkShowPastValues").isChecked());
    QCOMPARE(Grid(list).FocusedKey(), versions[1]);
    // By mouse to the last one.
    QTest::mouseClick(&strip, Qt::LeftButton, {}, QPoint(strip.width() - 20, 18));
    QCOMPARE(Grid(list).FocusedKey(), versions[3]);

    // A deleted version shows on demand, with who deleted it.
    QVERIFY(Grid(list).FocusKey(Version("SPARE", QDate(2026, 7, 1))));
    TUserScript script;
    script.Box("Delete Rate Type \"SPARE\" ?", QMessageBox::Yes);
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    world.control.Process();
    QVERIFY(Grid(list).FocusKey(Version("SPARE")));
    QCOMPARE(table.rowCount(), 1);
    FindControl<QCheckBox>(&list, "chkShowDeleted").click();
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(table.item(1, 0)->text(), "Deleted");
    QVERIFY(table.item(1, 5)->text().startsWith("Priya Raman"));
    FindControl<QToolButton>(&list, "btnTimelineTable").click();
    QVERIFY(table.isVisible());
    QVERIFY(!strip.isVisible());
}

void t_rate_types::whereUsed()
{
    TWorld world;
    QWidget &list = world.OpenList();
    const auto uses = [&list](const QString &code) {
        QStringList found;
        TUserScript script;
        script.Dialog("frmWhereUsed", [&](QDialog &dialog) {
            const auto &table = FindControl<QTableWidget>(&dialog, "grdWhereUsed");
            for (int row = 0; row < table.rowCount(); ++row)
                found += table.item(row, 0)->text() + " " + table.item(row, 1)->text();
            dialog.reject();
        });
        Grid(list).FocusKey(Version(code));
        Trigger(list, "mniWhereUsed");
        return script.Verify() ? found : QStringList{script.Report()};
    };
    QCOMPARE(uses("OT20"), (QStringList{"Previous Years Transactions 2", "Previous Years Costing Transactions 2"}));
    QCOMPARE(uses("ANNUAL"), (QStringList{"Annual Leave 1", "Leave Loading 1"}));
    QCOMPARE(uses("WET"), QStringList());

    QVERIFY(SendToPackage(9284));
    QWidget &factors = *world.host.Screens.last();
    TUserScript script;
    // A pay class that refers to the factor twice is one record; one that does by its second column alone is another.
    MainConnection().Execute("update _iptblPayClasses set iDoubleRateFactor = iTimeHalfRateFactor");
    MainConnection().Execute("insert _iptblPayClasses (cCode, iDoubleRateFactor) "
                             "select 'OTHER', idRateFactor from _iptblRateFactors where cCode = 'HALF'");
    QVERIFY(FindControl<TqsGrid>(&factors, "grdRateFactors")
                .FocusKey(ValueOf("select idRateFactor from _iptblRateFactors where cCode = 'HALF'").toInt()));
    script.Dialog("frmWhereUsed", [](QDialog &dialog) {
        const auto &table = FindControl<QTableWidget>(&dialog, "grdWhereUsed");
        QCOMPARE(table.rowCount(), 1);
        QCOMPARE(table.item(0, 0)->text() + " " + table.item(0, 1)->text(), "Pay Classes 2");
        dialog.reject();
    });
    Trigger(factors, "mniWhereUsed");
    VERIFY_SCRIPT(script);
}

// Adds, new dates, moves and deletes through the screens in random order, on a database without pay periods.
void t_rate_types::randomWork()
{
    TWorld world(TTemplateDatabase::Content::Empty);
    QWidget &list = world.OpenList();
    FindControl<QCheckBox>(&list, "chkShowPastValues").setChecked(true);
    QRandomGenerator random(11);
    const QDate today = QDate::currentDate();
    for (int step = 0; step < 60; ++step) {
        const QList<QStringList> versions =
            RowsOf("select T.idRateTypeTD, T.cCode, T.iRateTypeID, convert(varchar(10), T.dEffectiveDate, 120) from "
                   "_iptblRateTypes_TD T "
                   "inner join _iptblRateTypes M on M.idRateType = T.iRateTypeID "
                   "where T.iChangeType <> 3 and M.bSystem = 0 order by T.idRateTypeTD");
        const int what = versions.size() < 3 ? 0 : random.bounded(4);
        const QDate date = today.addDays(random.bounded(-6, 7));
        const QStringList row = what == 0 ? QStringList() : versions[random.bounded(int(versions.size()))];
        // The other versions of the same record.
        QList<QDate> others;
        for (const QStringList &other : versions) {
            if (what != 0 && other[2] == row[2] && (what == 1 || other[0] != row[0]))
                others += QDate::fromString(other[3], Qt::ISODate);
        }
        const bool taken = (what == 1 || what == 2) && others.contains(date);
        const bool noneInForce =
            !taken && ((what == 3 && !others.isEmpty()) || (what == 2 && date > today)) &&
            QDate::fromString(row[3], Qt::ISODate) <= today &&
            std::none_of(others.begin(), others.end(), [today](const QDate &other) { return other <= today; });
        TUserScript script;
        if (what == 3) {
            script.Box("Delete Rate Type \"" + row[1] + "\" ?", QMessageBox::Yes);
        } else {
            script.Dialog(kForm, [&](QDialog &dialog) {
                if (what == 0) {
                    Type(Box(dialog, "edtCode"), QString("C%1").arg(step));
                    Type(Box(dialog, "edtDescription"), "x");
                }
                Type(Box(dialog, "edtFixedRate"), QString::number(step));
                EffectiveDate(dialog).SetDate(date);
                PressOK(dialog);
                if (taken)
                    PressCancel(dialog);
            });
            if (taken)
                script.Box(QString("Rate \"%1\" already exists with an Effective Date of %2.\r\n"
                                   "Please enter a unique Effective Date or edit the record that already exists.")
                               .arg(row[1], MessageDate(date)));
        }
        if (noneInForce)
            script.Box("No version of the Rate Type is in force today any more.");
        if (what != 0)
            QVERIFY(Grid(list).FocusKey(row[0].toInt()));
        static const char *const actions[] = {"mniMaintAdd", "mniNewEffectiveDate", "mniMaintEdit", "mniMaintDelete"};
        Trigger(list, actions[what]);
        VERIFY_SCRIPT(script);
        world.control.Process();
        QVERIFY2(ChainFaults().isEmpty(), QString("step %1: %2").arg(step).arg(ChainFaults().join("; ")).toUtf8());
        const int now = int(RowsOf("select T.idRateTypeTD from [dbo].[_ipfnGetRateTypes]('18991230',1,1,0) T").size());
        QCOMPARE(now, int(versions.size()) + (what == 0 || (what == 1 && !taken) ? 1 : what == 3 ? -1 : 0));
    }
}

// clang-format off
void t_rate_types::rateFactorChecks_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("focus");
    QTest::newRow("taken") << "half" << "" << "0" << "The Rate Factor already exists!" << "edtCode";
    QTest::newRow("apostrophe") << "A'B" << "" << "0" << "The Rate Factor Code is invalid!" << "edtCode";
    QTest::newRow("no code") << "" << "" << "0" << "The Code may not be blank." << "edtCode";
    QTest::newRow("no description") << "X" << "" << "0" << "The Description may not be blank." << "edtDescription";
    QTest::newRow("nothing") << "X" << "x" << "0" << "The Rate Factor must be greater than 0!" << "edtRateFactor";
    QTest::newRow("least") << "X" << "x" << "0.01" << "" << "0.01";
    QTest::newRow("most") << "X" << "x" << "100" << "" << "100";
    QTest::newRow("more cannot be typed") << "X" << "x" << "100.01" << "" << "100";
}
// clang-format on

void t_rate_types::rateFactorChecks()
{
    QFETCH(QString, code);
    QFETCH(QString, description);
    QFETCH(QString, value);
    QFETCH(QString, message);
    QFETCH(QString, focus);
    TWorld world;
    TUserScript script;
    script.Dialog("TfrmIPRateFactorAddDlg", [&](QDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), "Add New Rate Factor");
        Type(Box(dialog, "edtCode"), code);
        Type(Box(dialog, "edtDescription"), description);
        Type(Box(dialog, "edtRateFactor"), value);
        PressOK(dialog);
        if (message.isEmpty())
            return;
        QCOMPARE(FocusName(dialog), focus);
        PressCancel(dialog);
    });
    if (!message.isEmpty())
        script.Box(message);
    QVERIFY(SendToPackage(9285));
    VERIFY_SCRIPT(script);
    world.control.Process();
    const QList<QStringList> saved =
        RowsOf("select idRateFactor, fRateFactor from _iptblRateFactors where cCode = 'X'");
    QCOMPARE(saved.size(), message.isEmpty() ? 1 : 0);
    if (saved.isEmpty())
        return;
    QCOMPARE(saved[0][1], focus);
    QCOMPARE(world.control.TakeLog(), "9286:" + saved[0][0]);
}

// clang-format off
void t_rate_types::rateFactorDelete_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("description");
    QTest::addColumn<bool>("used");
    QTest::newRow("time and a half") << "HALF" << "Time and a half" << true;
    QTest::newRow("double") << "DOUBLE" << "Double time" << true;
    QTest::newRow("nobody's") << "QUARTER" << "Time and a quarter" << false;
}
// clang-format on

void t_rate_types::rateFactorDelete()
{
    QFETCH(QString, code);
    QFETCH(QString, description);
    QFETCH(bool, used);
    TWorld world;
    QVERIFY(SendToPackage(9284));
    QWidget &list = *world.host.Screens.last();
    const int id = ValueOf("select idRateFactor from _iptblRateFactors where cCode = :c", {{"c", code}}).toInt();
    QVERIFY(FindControl<TqsGrid>(&list, "grdRateFactors").FocusKey(id));
    TUserScript script;
    script.Box("Delete Rate Factor \"" + description + "\" ?", QMessageBox::Yes);
    if (used)
        script.Box("Unable to delete Rate Factor \"" + description + "\", as it is in use by the Pay Classes!");
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    world.control.Process();
    QCOMPARE(RowsOf("select cCode from _iptblRateFactors where cCode = :c", {{"c", code}}).size(), used ? 1 : 0);
    QCOMPARE(world.control.TakeLog(), used ? QString() : QString("9286:0"));
}

QTEST_MAIN(t_rate_types)
#include "t_rate_types.moc"
