// SPDX-License-Identifier: Apache-2.0
#include "framework/grid/qsGrid.h"
#include "tests/tax/TaxWorld.h"

namespace {

constexpr uint kList = 9243;
constexpr uint kDialog = 9244;
constexpr int kScale2 = 2702; // the tax office's
const char kForm[] = "TfrmIPTaxScalesAddDlg";
const char kSaveFirst[] = "You must save this Tax Scale before continuing.\nDo you want to save it now?";
const char kByTheATO[] = "Cannot delete this Tax Scale as it is specifed by the ATO!";

TqsGrid &Grid(QWidget &list)
{
    return FindControl<TqsGrid>(&list, "grdTaxScales");
}

// Edits scale `id`, does something and presses OK.
void Edit(TUserScript &script, int id, const std::function<void(QDialog &)> &doing = {}, bool copy = false)
{
    script.Dialog(kForm, [=](QDialog &dialog) {
        if (doing)
            doing(dialog);
        PressOK(dialog);
    });
    SendToPackage(kDialog, id, copy);
}

} // namespace

class t_tax_scales final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void listColumns_data();
    void listColumns();
    void listShowsCountryAndYear();
    void captionsAndFocus();
    void fieldsByCountry_data();
    void fieldsByCountry();
    void checks_data();
    void checks();
    void taxOfficeScaleIsOnlyLookedAt();
    void copyOfTaxOfficeScale();
    void saveFirst_data();
    void saveFirst();
    void savedUnderTheTaxOfficesCode();
    void bracketsAreRewritten();
    void savedWithoutBrackets();
    void bracketChecks_data();
    void bracketChecks();
    void bracketDialog_data();
    void bracketDialog();
    void gridKeys();
    void medicareLink();
    void deleteFlow_data();
    void deleteFlow();
    void bracketsChangedByAnother_data();
    void bracketsChangedByAnother();
    void failedBracketsTakeTheScaleBack();
    void withholdingPanel();
};

void t_tax_scales::listColumns_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QStringList>("headings");
    QTest::newRow("Australia") << 5 << QStringList{"Code", "Description", "Leave Loading"};
    QTest::newRow("New Zealand") << 6 << QStringList{"Code", "Description"};
    QTest::newRow("other") << 7 << QStringList{"Code", "Description"};
}

void t_tax_scales::listColumns()
{
    QFETCH(int, country);
    TTaxWorld world(country);
    QWidget &list = world.OpenList(kList);
    QTEST(Shown(Grid(list)).first(), "headings");
}

void t_tax_scales::listShowsCountryAndYear()
{
    TTaxWorld world;
    AddTaxScale(50001, "MINE");
    AddTaxScale(50002, "OLD", 2026);
    AddTaxScale(50003, "NZ", 2027, 6);
    QWidget &list = world.OpenList(kList);
    QCOMPARE(ShownCodes(Grid(list)), (QStringList{"1", "2", "3", "4", "4N", "5", "6", "MINE"}));
    // The year may change while the list is open.
    world.database.SetDefault("EndTaxYear", 2026);
    BroadcastChange(9245, 0);
    world.control.Process();
    QCOMPARE(ShownCodes(Grid(list)), (QStringList{"1", "2", "3", "4", "4N", "5", "6", "OLD"}));
}

void t_tax_scales::captionsAndFocus()
{
    TTaxWorld world;
    AddTaxScale(50001, "MINE");
    QStringList seen;
    TUserScript script;
    for (const auto &[record, copy] : {std::pair(0, 0), {50001, 0}, {50001, 1}, {kScale2, 1}}) {
        script.Dialog(kForm, [&](QDialog &dialog) {
            auto &code = FindControl<QLineEdit>(&dialog, "edtCode");
            seen += QString("%1|%2|%3|%4%5")
                        .arg(dialog.windowTitle(), FocusName(dialog), code.text())
                        .arg(code.isEnabled())
                        .arg(code.font().bold());
            QCOMPARE(FindControl<QLabel>(&dialog, "lblCode").isEnabled(), code.isEnabled());
            PressCancel(dialog);
        });
        QVERIFY(SendToPackage(kDialog, record, copy));
    }
    VERIFY_SCRIPT(script);
    QCOMPARE(seen, (QStringList{"Add New Tax Scale|edtCode||10", "Edit Tax Scale \"MINE\"|edtDescription|MINE|01",
                                "Copy Tax Scale \"MINE\"|edtCode|MINE|10", "Copy Tax Scale \"2\"|edtCode|2|10"}));
    QCOMPARE(world.Log(), "");
}

void t_tax_scales::fieldsByCountry_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<bool>("australian");
    QTest::addColumn<QStringList>("headings");
    QTest::newRow("Australia") << 5 << true << QStringList{"Weekly Earnings", "Coefficient A", "Coefficient B"};
    for (const int country : {6, 7})
        QTest::addRow("%d", country) << country << false
                                     << QStringList{"Yearly Earnings", "Coefficient A", "Coefficient B",
                                                    "Coefficient C"};
}

void t_tax_scales::fieldsByCountry()
{
    QFETCH(int, country);
    QFETCH(bool, australian);
    TTaxWorld world(country);
    AddTaxScale(50001, "MINE", 2027, country);
    AddTaxBracket(50001, 50001, "MINE", 52000.5, 0.1234, 7);
    QList<QStringList> shown;
    QStringList visible;
    TUserScript script;
    Edit(script, 50001, [&](QDialog &dialog) {
        for (const char *name :
             {"cbxMedicareLookup", "lblMedicareLookup", "chkRebatesApplicable", "chkIncludeLeaveLoading"}) {
            if (FindControl<QWidget>(&dialog, name).isVisible())
                visible += name;
        }
        shown = Shown(BracketGrid(dialog));
    });
    VERIFY_SCRIPT(script);
    QCOMPARE(visible.size(), australian ? 4 : 0);
    QTEST(shown.first(), "headings");
    QStringList row{"52000.50", "0.1234", "7.0000"};
    if (!australian)
        row += "0.0000";
    QCOMPARE(shown.value(1), row);
}

void t_tax_scales::checks_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("message"); // "": it is saved
    QTest::addColumn<QString>("focus");
    const QString invalid = "The Tax Scale Code is invalid!", taken = "The Tax Scale Code already exists!",
                  noCode = "The Tax Scale Code may not be blank!",
                  noText = "The Tax Scale Description may not be blank!";
    QTest::newRow("all is well") << "NEW"
                                 << "Text"
                                 << ""
                                 << "";
    QTest::newRow("apostrophe") << "A'B"
                                << "Text" << invalid << "edtCode";
    QTest::newRow("apostrophe before anything else") << "'"
                                                     << "" << invalid << "edtCode";
    QTest::newRow("taken") << "MINE"
                           << "Text" << taken << "edtCode";
    QTest::newRow("taken, other letters and blanks") << " mine "
                                                     << "Text" << taken << "edtCode";
    QTest::newRow("taken before no description") << "MINE"
                                                 << "" << taken << "edtCode";
    QTest::newRow("the tax office's") << "2"
                                      << "Text" << taken << "edtCode";
    QTest::newRow("of another year") << "OLD"
                                     << "Text"
                                     << ""
                                     << "";
    QTest::newRow("of another country") << "NZ"
                                        << "Text"
                                        << ""
                                        << "";
    QTest::newRow("no code") << ""
                             << "" << noCode << "edtCode";
    QTest::newRow("blanks") << "  "
                            << "Text" << noCode << "edtCode";
    QTest::newRow("no description") << "NEW"
                                    << "  " << noText << "edtDescription";
}

void t_tax_scales::checks()
{
    QFETCH(QString, code);
    QFETCH(QString, description);
    QFETCH(QString, message);
    TTaxWorld world;
    AddTaxScale(60, "MINE");
    AddTaxScale(61, "OLD", 2026);
    AddTaxScale(62, "NZ", 2027, 6);
    const int before = Count("_iptblTaxScales");
    QString focus;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        TypeInto(dialog, "edtCode", code);
        TypeInto(dialog, "edtDescription", description);
        PressOK(dialog);
        if (dialog.isVisible()) {
            focus = FocusName(dialog);
            PressCancel(dialog);
        }
    });
    if (!message.isEmpty())
        script.Box(message);
    SendToPackage(kDialog, 0, 0);
    VERIFY_SCRIPT(script);
    QTEST(focus, "focus");
    QCOMPARE(Count("_iptblTaxScales"), before + (message.isEmpty() ? 1 : 0));
    if (message.isEmpty()) {
        QCOMPARE(
            RowsOf("select idTaxScales, cCode, cDescription, bUserDefinable, iCountry, iTaxYear, iMedicareScalesID, "
                   "cMedicareScaleCode from _iptblTaxScales where idTaxScales > 50000"),
            (QList<QStringList>{{"50001", code, description, "1", "5", "2027", "0", ""}}));
        QCOMPARE(world.Log(), "9245:50001");
    }
}

void t_tax_scales::taxOfficeScaleIsOnlyLookedAt()
{
    TTaxWorld world;
    const auto everything = [] {
        return RowsOf("select * from _iptblTaxScales order by idTaxScales") +
               RowsOf("select * from _iptblTaxBrackets order by idTaxBrackets");
    };
    const QList<QStringList> before = everything();
    QStringList enabled;
    TUserScript script;
    Edit(script, kScale2, [&](QDialog &dialog) {
        for (const char *name : {"edtCode", "edtDescription", "cbxMedicareLookup", "chkRebatesApplicable",
                                 "chkIncludeLeaveLoading", "grdBrackets", "btnAdd", "btnEdit", "btnDelete"}) {
            if (FindControl<QWidget>(&dialog, name).isEnabled())
                enabled += name;
        }
        QCOMPARE(BracketGrid(dialog).model()->rowCount(), 9);
        // However a value got there.
        FindControl<QLineEdit>(&dialog, "edtDescription").setText("");
        BracketGrid(dialog).Table().Remove(0);
    });
    VERIFY_SCRIPT(script);
    QCOMPARE(enabled, QStringList());
    QCOMPARE(everything(), before);
    QCOMPARE(world.Log(), "");
}

void t_tax_scales::copyOfTaxOfficeScale()
{
    TTaxWorld world;
    const QList<QStringList> original = BracketsOf(kScale2);
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        PressOK(dialog); // its own code is taken
        TypeInto(dialog, "edtCode", "2A");
        PressOK(dialog);
    });
    script.Box("The Tax Scale Code already exists!");
    SendToPackage(kDialog, kScale2, 1);
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select cCode, bUserDefinable, iMedicareScalesID, cMedicareScaleCode, bRatesApplicable "
                    "from _iptblTaxScales where idTaxScales = 50001"),
             (QList<QStringList>{{"2A", "1", "2701", "2", "1"}}));
    QCOMPARE(BracketsOf(kScale2), original);
    const QList<QStringList> copies = BracketsOf(50001);
    QCOMPARE(copies.size(), original.size());
    for (int i = 0; i < copies.size(); ++i) {
        QCOMPARE(copies[i].mid(2), original[i].mid(2));
        QCOMPARE(copies[i].mid(0, 2), (QStringList{QString::number(50001 + i), "2A"}));
    }
}

void t_tax_scales::saveFirst_data()
{
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes") << true;
    QTest::newRow("no") << false;
}

void t_tax_scales::saveFirst()
{
    QFETCH(bool, yes);
    TTaxWorld world;
    QWidget &list = world.OpenList(kList);
    QStringList titles;
    int stored = -1;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        Press(dialog, "btnAdd"); // no code yet: the question comes first, then the checks
        TypeInto(dialog, "edtCode", "NEW");
        TypeInto(dialog, "edtDescription", "Text");
        Press(dialog, "btnAdd");
        titles += dialog.windowTitle();
        stored = Count("_iptblTaxBrackets", "iTaxScalesID = 50001");
        if (yes) {
            QCOMPARE(FindControl<QLineEdit>(&dialog, "edtCode").isEnabled(), false);
            TypeInto(dialog, "edtDescription", "Other");
            Press(dialog, "btnAdd"); // saved: no question any more
        }
        PressOK(dialog);
    });
    script.Box(kSaveFirst, yes ? QMessageBox::Yes : QMessageBox::No);
    if (yes)
        script.Box("The Tax Scale Code may not be blank!");
    script.Box(kSaveFirst, yes ? QMessageBox::Yes : QMessageBox::No);
    if (yes) {
        EnterBracket(script, "500", "0.2", "0");
        EnterBracket(script, "9999999", "0.32", "60");
    }
    Trigger(list, "mniMaintAdd");
    VERIFY_SCRIPT(script);
    QCOMPARE(titles, QStringList(yes ? "Edit Tax Scale \"NEW\"" : "Add New Tax Scale"));
    QCOMPARE(stored, 0); // nothing reaches the table before OK
    QCOMPARE(world.Log(), yes ? "9245:50001 9245:50001" : "9245:50001");
    QCOMPARE(Grid(list).FocusedKey(), 50001);
    QCOMPARE(RowsOf("select idTaxScales, cDescription from _iptblTaxScales where cCode = 'NEW'"),
             (QList<QStringList>{{"50001", yes ? "Other" : "Text"}}));
    const QList<QStringList> brackets{{"50001", "NEW", "2027", "500", "0.2", "0"},
                                      {"50002", "NEW", "2027", "9999999", "0.32", "60"}};
    QCOMPARE(BracketsOf(50001), yes ? brackets : QList<QStringList>());
}

// In a year without published scales their codes are free, but whoever takes one makes a tax office scale.
void t_tax_scales::savedUnderTheTaxOfficesCode()
{
    TTaxWorld world;
    world.database.SetDefault("EndTaxYear", 2030);
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        TypeInto(dialog, "edtCode", "2");
        TypeInto(dialog, "edtDescription", "Text");
        Press(dialog, "btnAdd");
        QCOMPARE(FindControl<QPushButton>(&dialog, "btnAdd").isEnabled(), false);
        PressOK(dialog);
    });
    script.Box(kSaveFirst, QMessageBox::Yes);
    SendToPackage(kDialog, 0, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select idTaxScales, bUserDefinable from _iptblTaxScales where iTaxYear = 2030"),
             (QList<QStringList>{{"50001", "0"}}));
}

void t_tax_scales::bracketsAreRewritten()
{
    TTaxWorld world;
    AddTaxScale(50020, "MINE");
    AddTaxBracket(70, 50020, "MINE", 9999999, 0.3, 40);
    AddTaxBracket(71, 50020, "MINE", 400, 0.2, 0);
    AddTaxBracket(72, 50020, "MINE", 100, 0.1, 0, 2026); // of another year
    AddTaxBracket(50100, 999, "OTHER", 1, 0, 0);
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        TqsMemoryGrid &grid = BracketGrid(dialog);
        QCOMPARE(Shown(grid).mid(1),
                 (QList<QStringList>{{"400.00", "0.2000", "0.0000"}, {"9999999.00", "0.3000", "40.0000"}}));
        QCOMPARE(grid.FocusedRow(), 0);
        Press(dialog, "btnEdit"); // 400 becomes 600: earnings of an edited bracket are not compared with the others'
        Press(dialog, "btnAdd");
        Press(dialog, "btnAdd");
        grid.FocusRow(0);
        Press(dialog, "btnDelete");
        QCOMPARE(grid.model()->rowCount(), 3);
        Press(dialog, "btnDelete");
        QCOMPARE(Shown(grid).mid(1),
                 (QList<QStringList>{{"600.00", "0.2000", "0.0000"}, {"9999999.00", "0.3000", "40.0000"}}));
        QCOMPARE(BracketsOf(50020).size(), 3);
        PressOK(dialog);
    });
    EnterBracket(script, "600");
    EnterBracket(script, "50", "0.05");
    script.Dialog("TfrmIPTaxBracketsAddDlg", [](QDialog &dialog) {
        TypeInto(dialog, "edtWeeklyEarnings", "77");
        PressCancel(dialog);
    });
    script.Box("Are you sure you want to delete this Tax Bracket?", QMessageBox::No);
    script.Box("Are you sure you want to delete this Tax Bracket?", QMessageBox::Yes);
    SendToPackage(kDialog, 50020, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(BracketsOf(50020), (QList<QStringList>{{"72", "MINE", "2026", "100", "0.1", "0"},
                                                    {"50101", "MINE", "2027", "600", "0.2", "0"},
                                                    {"50102", "MINE", "2027", "9999999", "0.3", "40"}}));
    QCOMPARE(world.Log(), "9245:50020");
}

void t_tax_scales::savedWithoutBrackets()
{
    TTaxWorld world;
    AddTaxScale(60, "MINE", 2026); // a scale of another year keeps its year
    AddTaxBracket(70, 60, "MINE", 400, 0.2, 0, 2026);
    TUserScript script;
    Edit(script, 60, [](QDialog &dialog) { BracketGrid(dialog).Table().Remove(0); });
    VERIFY_SCRIPT(script);
    QCOMPARE(BracketsOf(60), QList<QStringList>());
    QCOMPARE(ValueOf("select iTaxYear from _iptblTaxScales where idTaxScales = 60").toInt(), 2026);
}

void t_tax_scales::bracketChecks_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QString>("earnings");
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<QString>("c");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("focus");
    const auto row = [](const char *name, int country, const char *earnings, const char *a, const char *b,
                        const char *c, const char *message, const char *focus) {
        QTest::addRow("%d %s", country, name) << country << earnings << a << b << c << message << focus;
    };
    const char twice[] = "Weekly Earnings already exists.", zero[] = "Weekly Earnings must be greater than zero.",
               badA[] = "Coefficient A may not be less than 0!", badB[] = "Coefficient B may not be less than 0!",
               badC[] = "Coefficient C may not be less than 0!";
    row("zero coefficients", 5, "10", "0", "0", "", "", "");
    row("twice before the rest", 5, "400", "-1", "0", "", twice, "edtWeeklyEarnings");
    row("zero earnings", 5, "0", "-1", "-1", "", zero, "edtWeeklyEarnings");
    row("negative earnings", 5, "-0.0001", "0", "0", "", zero, "edtWeeklyEarnings");
    row("A", 5, "10", "-0.0001", "-1", "", badA, "edtCoefficientA");
    row("B", 5, "10", "0", "-0.0001", "", badB, "edtCoefficientB");
    row("B before C", 6, "10", "0", "-1", "-1", badB, "edtCoefficientB");
    row("C", 6, "10", "0", "0", "-0.0001", badC, "edtCoefficientC");
    row("C", 7, "10", "0", "0", "-1", badC, "edtCoefficientC");
    row("C is zero", 7, "10", "0", "0", "0", "", "");
}

void t_tax_scales::bracketChecks()
{
    QFETCH(int, country);
    QFETCH(QString, earnings);
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(QString, c);
    QFETCH(QString, message);
    TTaxWorld world(country);
    AddTaxScale(60, "MINE", 2027, country);
    AddTaxBracket(70, 60, "MINE", 400, 0.2, 0);
    QString focus;
    int rows = 0;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        Press(dialog, "btnAdd");
        rows = BracketGrid(dialog).model()->rowCount();
        PressCancel(dialog);
    });
    script.Dialog("TfrmIPTaxBracketsAddDlg", [&](QDialog &dialog) {
        TypeInto(dialog, "edtWeeklyEarnings", earnings);
        TypeInto(dialog, "edtCoefficientA", a);
        TypeInto(dialog, "edtCoefficientB", b);
        if (!c.isEmpty())
            TypeInto(dialog, "edtCoefficientC", c);
        PressOK(dialog);
        if (dialog.isVisible()) {
            focus = FocusName(dialog);
            PressCancel(dialog);
        }
    });
    if (!message.isEmpty())
        script.Box(message);
    SendToPackage(kDialog, 60, 0);
    VERIFY_SCRIPT(script);
    QTEST(focus, "focus");
    QCOMPARE(rows, message.isEmpty() ? 2 : 1);
}

void t_tax_scales::bracketDialog_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QString>("label");
    QTest::addColumn<bool>("coefficientC");
    QTest::newRow("Australia") << 5 << "&Weekly Earnings" << false;
    QTest::newRow("New Zealand") << 6 << "Yearly Earnings" << true;
    QTest::newRow("other") << 7 << "Yearly Earnings" << true;
}

void t_tax_scales::bracketDialog()
{
    QFETCH(int, country);
    QFETCH(QString, label);
    QFETCH(bool, coefficientC);
    TTaxWorld world(country);
    AddTaxScale(60, "MINE", 2027, country);
    AddTaxBracket(70, 60, "MINE", 1234.5678, 0.25, 1.5);
    QStringList titles, shown;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        Press(dialog, "btnAdd");
        Press(dialog, "btnEdit");
        PressCancel(dialog);
    });
    for (int i = 0; i < 2; ++i) {
        script.Dialog("TfrmIPTaxBracketsAddDlg", [&](QDialog &dialog) {
            titles += dialog.windowTitle();
            QCOMPARE(FindControl<QLabel>(&dialog, "lblWeeklyEarnings").text(), label);
            QCOMPARE(FindControl<QWidget>(&dialog, "edtCoefficientC").isVisible(), coefficientC);
            QCOMPARE(FindControl<QWidget>(&dialog, "lblCoefficientC").isVisible(), coefficientC);
            shown += FindControl<QLineEdit>(&dialog, "edtCoefficientA").text();
            QCOMPARE(FocusName(dialog), "edtWeeklyEarnings");
            PressCancel(dialog);
        });
    }
    SendToPackage(kDialog, 60, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(titles, (QStringList{"Add New Tax Bracket", "Edit Tax Bracket \"1234.57\""}));
    QCOMPARE(shown, (QStringList{"0.0000", "0.2500"}));
}

void t_tax_scales::gridKeys()
{
    TTaxWorld world;
    AddTaxScale(60, "MINE");
    AddTaxBracket(70, 60, "MINE", 400, 0.2, 0);
    AddTaxBracket(71, 60, "MINE", 500, 0.3, 0);
    QStringList titles;
    const auto note = [&](QDialog &dialog) {
        titles += dialog.windowTitle();
        PressCancel(dialog);
    };
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        TqsMemoryGrid &grid = BracketGrid(dialog);
        grid.setFocus();
        PressKey(grid, Qt::Key_Insert);
        PressKey(grid, Qt::Key_Down);
        PressKey(grid, Qt::Key_Return);
        const QPoint first = grid.visualRect(grid.model()->index(0, 1)).center();
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, first);
        PressKey(grid, Qt::Key_Delete);
        QCOMPARE(Shown(grid).mid(1), (QList<QStringList>{{"500.00", "0.3000", "0.0000"}}));
        PressCancel(dialog);
    });
    for (int i = 0; i < 3; ++i)
        script.Dialog("TfrmIPTaxBracketsAddDlg", note);
    script.Box("Are you sure you want to delete this Tax Bracket?", QMessageBox::Yes);
    SendToPackage(kDialog, 60, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(titles,
             (QStringList{"Add New Tax Bracket", "Edit Tax Bracket \"500.00\"", "Edit Tax Bracket \"400.00\""}));
    QCOMPARE(BracketsOf(60).size(), 2); // cancelled
}

void t_tax_scales::medicareLink()
{
    TTaxWorld world;
    AddTaxScale(60, "MINE", 2027, 5, "6");
    const auto link = [] {
        return RowsOf("select cMedicareScaleCode, iMedicareScalesID from _iptblTaxScales where idTaxScales = 60");
    };
    int loaded = -1;
    TUserScript script;
    Edit(script, 60, [&](QDialog &dialog) {
        auto &combo = FindControl<TqsLookupCombo>(&dialog, "cbxMedicareLookup");
        loaded = combo.Key();
        QCOMPARE(combo.count(), 2); // those of the year
        combo.SetKey(2701);
    });
    QCOMPARE(loaded, 2702); // found by its code, not by a stored key
    QCOMPARE(link(), (QList<QStringList>{{"2", "2701"}}));
    Edit(script, 60, [](QDialog &dialog) { FindControl<TqsLookupCombo>(&dialog, "cbxMedicareLookup").SetKey(0); });
    QCOMPARE(link(), (QList<QStringList>{{"", "0"}}));
    // The copy of an older scale gets the current year's.
    AddTaxScale(61, "OLD", 2026, 5, "6");
    Edit(
        script, 61,
        [](QDialog &dialog) {
            QCOMPARE(FindControl<TqsLookupCombo>(&dialog, "cbxMedicareLookup").Key(), 2702);
            TypeInto(dialog, "edtCode", "COPY");
        },
        true);
    QCOMPARE(RowsOf("select iTaxYear, iMedicareScalesID from _iptblTaxScales where cCode = 'COPY'"),
             (QList<QStringList>{{"2027", "2702"}}));
    VERIFY_SCRIPT(script);
}

void t_tax_scales::deleteFlow_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("yes");
    QTest::addColumn<QString>("message"); // after the question
    QTest::addColumn<bool>("gone");
    QTest::newRow("no") << "FREE" << false << "" << false;
    QTest::newRow("free") << "FREE" << true << "" << true;
    QTest::newRow("in use") << "USED" << true
                            << "Unable to delete Tax Scale \"USED\", as it is in use by the Employees!" << false;
    QTest::newRow("tax office") << "3" << true << kByTheATO << false;
    QTest::newRow("tax office, in use") << "2" << true << kByTheATO << false;
    QTest::newRow("not the user's") << "FIXED" << true << kByTheATO << false;
    QTest::newRow("a user's under the tax office's code") << "4" << true << kByTheATO << false;
}

void t_tax_scales::deleteFlow()
{
    QFETCH(QString, code);
    QFETCH(bool, yes);
    QFETCH(QString, message);
    QFETCH(bool, gone);
    TTaxWorld world;
    AddTaxScale(60, "FREE");
    AddTaxBracket(70, 60, "FREE", 400, 0.2, 0);
    AddTaxBracket(71, 60, "RENAMED", 500, 0.2, 0, 2020);
    AddTaxScale(61, "USED");
    AddTaxScale(62, "FIXED");
    MainConnection().Execute("update _iptblTaxScales set bUserDefinable = 0 where idTaxScales = 62");
    MainConnection().Execute("update _iptblTaxScales set bUserDefinable = 1 where idTaxScales = 2704");
    for (const int scale : {61, kScale2})
        MainConnection().Insert("insert into _iptblEmployee (cCode, iTaxScalesID) values ('E', :id)", {{"id", scale}});
    QWidget &list = world.OpenList(kList);
    ShowActive(list);
    const int id =
        ValueOf("select idTaxScales from _iptblTaxScales where iTaxYear = 2027 and cCode = :code", {{"code", code}})
            .toInt();
    QVERIFY(Grid(list).FocusKey(id));
    const int brackets = Count("_iptblTaxBrackets");
    TUserScript script;
    script.Box("Delete Tax Scale \"" + code + "\" ?", yes ? QMessageBox::Yes : QMessageBox::No);
    if (!message.isEmpty())
        script.Box(message);
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    QCOMPARE(Count("_iptblTaxScales", "idTaxScales = " + QString::number(id)), gone ? 0 : 1);
    QCOMPARE(Count("_iptblTaxBrackets"), brackets - (gone ? 2 : 0));
    QCOMPARE(world.Log(), gone ? "9245:0" : "");
}

void t_tax_scales::bracketsChangedByAnother_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QStringList>("thresholds");
    QTest::newRow("keep") << "&Keep the Other's" << QStringList{"400", "800"};
    QTest::newRow("mine") << "&Write Mine" << QStringList{"300"};
}

void t_tax_scales::bracketsChangedByAnother()
{
    QFETCH(QString, answer);
    TTaxWorld world;
    AddTaxScale(60, "MINE");
    AddTaxBracket(70, 60, "MINE", 400, 0.2, 0);
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        AddTaxBracket(71, 60, "MINE", 800, 0.3, 0);
        Press(dialog, "btnEdit");
        PressOK(dialog);
    });
    EnterBracket(script, "300");
    script.Box("Another user has changed this record while you were editing it.", answer);
    SendToPackage(kDialog, 60, 0);
    VERIFY_SCRIPT(script);
    QStringList thresholds;
    for (const QStringList &row : BracketsOf(60))
        thresholds += row[3];
    QTEST(thresholds, "thresholds");
}

void t_tax_scales::failedBracketsTakeTheScaleBack()
{
    TTaxWorld world;
    AddTaxScale(60, "MINE");
    AddTaxBracket(70, 60, "MINE", 400, 0.2, 0);
    Refuse(world.database.FileName(), "insert", "_iptblTaxBrackets");
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        TypeInto(dialog, "edtDescription", "Changed");
        PressOK(dialog);
    });
    script.Box(kRefused);
    SendToPackage(kDialog, 60, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(ValueOf("select cDescription from _iptblTaxScales where idTaxScales = 60").toString(), "About MINE");
    QCOMPARE(BracketsOf(60).size(), 1);
    QCOMPARE(world.Log(), "");
}

void t_tax_scales::withholdingPanel()
{
    TTaxWorld world;
    AddTaxScale(60, "MINE");
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        auto &panel = FindControl<QGroupBox>(&dialog, "grpWithholding");
        TMemoryTable &brackets = BracketGrid(dialog).Table();
        QVERIFY(!panel.isVisible());
        brackets.Append({{"fWeeklyEarnings", 362.0}});
        brackets.Append({{"fWeeklyEarnings", 9999999.0}, {"fCoefficientA", 0.3227}, {"fCoefficientB", 185.1935}});
        QVERIFY(panel.isVisible());
        const auto text = [&](const char *label) { return FindControl<QLabel>(&dialog, label).text(); };
        TypeInto(dialog, "edtTryEarnings", "1100");
        QCOMPARE(text("lblWithholding"), "withholds 170.00");
        QVERIFY2(text("lblFormula").startsWith("Bracket 2 (and above)"), qPrintable(text("lblFormula")));
        QCOMPARE(text("lblWarnings"), "Please check: The result jumps by -68.38 at 362.00 (bracket 2).\n"
                                      "The result is negative in bracket 2 (-68.00 at 362.00).");
        brackets.Set(1, {{"fCoefficientB", 116.8174}});
        QVERIFY(!FindControl<QLabel>(&dialog, "lblWarnings").isVisible());
        QCOMPARE(text("lblWithholding"), "withholds 238.00"); // 355.2894... - 116.8174
        QCOMPARE(Shown(FindControl<TqsMemoryGrid>(&dialog, "grdWithholding")).mid(1),
                 (QList<QStringList>{{"0.00", "362.00", "0.00", "0.00"}, {"362.00", "and above", "0.00", ""}}));
        PressCancel(dialog);
    });
    SendToPackage(kDialog, 60, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(BracketsOf(60), QList<QStringList>());
}

QTEST_MAIN(t_tax_scales)
#include "t_tax_scales.moc"
