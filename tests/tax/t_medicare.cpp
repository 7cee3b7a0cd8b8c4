// SPDX-License-Identifier: Apache-2.0
#include "framework/grid/qsGrid.h"
#include "tests/tax/TaxWorld.h"

namespace {

constexpr uint kList = 9228;
constexpr uint kDialog = 9229;
const char kForm[] = "TfrmMedicareScalesDlg";

// The nine values in the order of their checks, with what is said of a negative one.
const QList<std::pair<QString, QString>> &Values()
{
    static const QList<std::pair<QString, QString>> values{
        {"WeeklyEarningsThreshold", "The Weekly Earnings Threshold may not be less than 0!"},
        {"WeeklyEarningsShadeInThreshold", "The Weekly Earnings Shade in Threshold may not be less than 0!"},
        {"FamilyThreshold", "Family Threshold must be between 0 and 32 000."},
        {"WFTDivisor", "WFT Divisor must be between 0 and 100!"},
        {"AdditionalChildAllowance", "The Additional Child Allowance may not be less than 0!"},
        {"SOPMultiplier", "SOP Multiplier may not be less than 0!"},
        {"SOPDivisor", "SOP Divisor must be between 0 and 100!"},
        {"WLAFactor", "The WLA Factor may not be less than 0!"},
        {"AdjustmentLevy", "The Adjustment Levy may not be less than 0!"},
    };
    return values;
}

void AddScale(int id, const QString &code, int year = 2027)
{
    MainConnection().Execute(
        "insert into _iptblMedicareScales (idMedicareScales, cCode, cMedicareScaleDescription, iTaxYear) "
        "values (:id, :code, 'Text', :year)",
        {{"id", id}, {"code", code}, {"year", year}});
}

} // namespace

class t_medicare final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void list();
    void captions();
    void codeChecks_data();
    void codeChecks();
    void firstNegativeValueWins_data();
    void firstNegativeValueWins();
    void savesWhatWasTyped();
    void deleteFlow_data();
    void deleteFlow();
};

void t_medicare::list()
{
    TTaxWorld world;
    AddScale(50001, "X", 2026);
    QWidget &list = world.OpenList(kList);
    auto &grid = FindControl<TqsGrid>(&list, "grdMedicareScales");
    QCOMPARE(Shown(grid).first(), (QStringList{"Code", "Description"}));
    QCOMPARE(ShownCodes(grid), (QStringList{"2", "6"}));
    world.database.SetDefault("EndTaxYear", 2026);
    BroadcastChange(9230, 0);
    world.control.Process();
    QCOMPARE(ShownCodes(grid), (QStringList{"2", "6", "X"}));
}

void t_medicare::captions()
{
    TTaxWorld world;
    QStringList titles;
    TUserScript script;
    for (const auto &[id, copy] : {std::pair(0, 0), {2701, 0}, {2701, 1}}) {
        script.Dialog(kForm, [&](QDialog &dialog) {
            titles += dialog.windowTitle() + '|' + FocusName(dialog);
            PressCancel(dialog);
        });
        SendToPackage(kDialog, id, copy);
    }
    VERIFY_SCRIPT(script);
    QCOMPARE(titles, (QStringList{"Add New Medicare Scale|edtCode", "Edit Medicare Scale \"2\"|edtCode",
                                  "Copy Medicare Scale \"2\"|edtCode"}));
}

void t_medicare::codeChecks_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("focus");
    const QString blank = "The Code may not be blank.", invalid = "The Medicare Scale Code is invalid!",
                  taken = "Code already exists.", noText = "The Description may not be blank.";
    QTest::newRow("blank") << 0 << "  "
                           << "" << blank << "edtCode";
    QTest::newRow("apostrophe") << 0 << "A'B"
                                << "" << invalid << "edtCode";
    QTest::newRow("taken") << 0 << "6"
                           << "" << taken << "edtCode";
    QTest::newRow("of another year") << 0 << "OLD"
                                     << "Text"
                                     << ""
                                     << "";
    QTest::newRow("an edit is checked too") << 2701 << "6"
                                            << "Text" << taken << "edtCode";
    QTest::newRow("its own code") << 2701 << "2"
                                  << "Text"
                                  << ""
                                  << "";
    QTest::newRow("no description") << 0 << "NEW"
                                    << " " << noText << "edtDescription";
}

void t_medicare::codeChecks()
{
    QFETCH(int, id);
    QFETCH(QString, code);
    QFETCH(QString, description);
    QFETCH(QString, message);
    TTaxWorld world;
    AddScale(12, "OLD", 2026);
    QString focus;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        TypeInto(dialog, "edtCode", code);
        TypeInto(dialog, "edtDescription", description);
        TypeInto(dialog, "edtWFTDivisor", message.isEmpty() ? "1" : "-1"); // what comes later is not asked
        PressOK(dialog);
        if (dialog.isVisible()) {
            focus = FocusName(dialog);
            PressCancel(dialog);
        }
    });
    if (!message.isEmpty())
        script.Box(message);
    SendToPackage(kDialog, id, 0);
    VERIFY_SCRIPT(script);
    QTEST(focus, "focus");
    QCOMPARE(world.Log().isEmpty(), !message.isEmpty());
}

void t_medicare::firstNegativeValueWins_data()
{
    QTest::addColumn<int>("first");
    for (int i = 0; i < Values().size(); ++i)
        QTest::addRow("%s", qPrintable(Values()[i].first)) << i;
}

void t_medicare::firstNegativeValueWins()
{
    QFETCH(int, first);
    TTaxWorld world;
    QString focus;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        for (int i = 0; i < Values().size(); ++i)
            TypeInto(dialog, qPrintable("edt" + Values()[i].first), i < first ? "0" : "-0.0001");
        PressOK(dialog);
        focus = FocusName(dialog);
        PressCancel(dialog);
    });
    script.Box(Values()[first].second);
    SendToPackage(kDialog, 2701, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(focus, "edt" + Values()[first].first);
}

void t_medicare::savesWhatWasTyped()
{
    TTaxWorld world;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        TypeInto(dialog, "edtCode", " NEW ");
        TypeInto(dialog, "edtDescription", "Text");
        int value = 0;
        // Far above what two of the texts call the upper bound.
        for (const auto &[name, text] : Values())
            TypeInto(dialog, qPrintable("edt" + name), QString::number(40000.1234 + value++, 'f', 4));
        PressOK(dialog);
    });
    SendToPackage(kDialog, 0, 0);
    VERIFY_SCRIPT(script);
    QStringList expected{"50001", "NEW", "Text", "2027"};
    QString columns;
    for (int i = 0; i < Values().size(); ++i) {
        expected += QString::number(40000.1234 + i, 'f', 4);
        columns += ", f" + Values()[i].first;
    }
    QCOMPARE(RowsOf("select idMedicareScales, cCode, cMedicareScaleDescription, iTaxYear" + columns +
                    " from _iptblMedicareScales where cCode = 'NEW'"),
             QList<QStringList>{expected});
    QCOMPARE(world.Log(), "9230:50001");
}

void t_medicare::deleteFlow_data()
{
    QTest::addColumn<bool>("yes");
    QTest::addColumn<bool>("used");
    QTest::newRow("no") << false << false;
    QTest::newRow("yes") << true << false;
    QTest::newRow("in use by a scale of another year") << true << true;
}

void t_medicare::deleteFlow()
{
    QFETCH(bool, yes);
    QFETCH(bool, used);
    TTaxWorld world;
    AddScale(60, "X");
    if (used) {
        AddTaxScale(61, "OLD", 2020);
        MainConnection().Execute("update _iptblTaxScales set iMedicareScalesID = 60 where idTaxScales = 61");
    }
    QWidget &list = world.OpenList(kList);
    ShowActive(list);
    QVERIFY(FindControl<TqsGrid>(&list, "grdMedicareScales").FocusKey(60));
    TUserScript script;
    script.Box("Delete Medicare Scales \"X\"?", yes ? QMessageBox::Yes : QMessageBox::No);
    if (used)
        script.Box("Unable to delete Medicare Scale \"X\", as it is in use!");
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    const bool gone = yes && !used;
    QCOMPARE(Count("_iptblMedicareScales", "idMedicareScales = 60"), gone ? 0 : 1);
    QCOMPARE(world.Log(), gone ? "9230:0" : "");
}

QTEST_MAIN(t_medicare)
#include "t_medicare.moc"
