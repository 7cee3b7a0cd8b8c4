// SPDX-License-Identifier: Apache-2.0
#include <QProgressBar>
#include <QSpinBox>

#include "tests/tax/TaxWorld.h"

namespace {

const char kForm[] = "TfrmNewTaxYearDlg";

void RunTool()
{
    for (const TToolEntry &entry : ThePackage().ToolEntries()) {
        if (entry.ObjectName == "mniNewTaxYear")
            entry.Run();
    }
}

QStringList Tables()
{
    return {"_iptblMedicareScales",  "_iptblTaxScales",  "_iptblTaxBrackets",     "_iptblHECSScales",
            "_iptblHECSBrackets",    "_iptblSFSSScales", "_iptblSFSSBrackets",    "_iptblSGLTaxParameters",
            "_iptblTaxParametersNZ", "_iptblTaxOptions", "_iptblLumpSumTaxRates", "_iptblTaxRebates"};
}

QList<QList<QStringList>> Everything()
{
    QList<QList<QStringList>> all;
    for (const QString &table : Tables())
        all += RowsOf(QString("select * from %1 order by 1").arg(table));
    return all;
}

QString Result(QDialog &dialog)
{
    return FindControl<QLabel>(&dialog, "lblResult").text();
}

} // namespace

class t_new_tax_year final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void copiesAYear();
    void countries_data();
    void countries();
    void skipsWhatIsThere();
    void runTwice();
    void cancelledInTheMiddle();
    void failureTakesEverythingBack();
};

void t_new_tax_year::copiesAYear()
{
    TTaxWorld world;
    AddTaxScale(50001, "MINE", 2027, 5, "6");
    AddTaxBracket(50001, 50001, "MINE", 400, 0.2, 1);
    AddTaxScale(50002, "NZ", 2027, 6);
    const QList<QList<QStringList>> before = Everything();
    QList<QStringList> plan;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        QCOMPARE(FindControl<QComboBox>(&dialog, "cbxFromYear").currentText(), "2027");
        QCOMPARE(FindControl<QSpinBox>(&dialog, "edtToYear").value(), 2028);
        plan = Shown(FindControl<TqsMemoryGrid>(&dialog, "grdPlan"));
        QCOMPARE(Result(dialog), "13 records will be copied, 0 exist already.");
        QCOMPARE(Everything(), before); // only shown so far
        PressOK(dialog);
        QCOMPARE(Result(dialog), "13 records were copied.");
        PressCancel(dialog);
    });
    RunTool();
    VERIFY_SCRIPT(script);
    QCOMPARE(plan.value(1),
             (QStringList{"Medicare Scale", "2", "Medicare levy, tax-free threshold claimed", "Will be copied"}));
    QCOMPARE(plan.last(), (QStringList{"Tax Parameters", "", "Termination values", "Will be copied"}));

    // User records, each as its original but for key and year, Medicare links within the new year.
    QCOMPARE(RowsOf("select t.cCode, t.bUserDefinable, t.cMedicareScaleCode, m.cCode as cLinked from _iptblTaxScales t "
                    "left join "
                    "_iptblMedicareScales m on m.idMedicareScales = t.iMedicareScalesID and m.iTaxYear = 2028 "
                    "where t.iTaxYear = 2028 and t.idTaxScales > 50000 order by t.cCode"),
             (QList<QStringList>{{"1", "1", "", "NULL"},
                                 {"2", "1", "2", "2"},
                                 {"3", "1", "", "NULL"},
                                 {"4", "1", "", "NULL"},
                                 {"4N", "1", "", "NULL"},
                                 {"5", "1", "", "NULL"},
                                 {"6", "1", "6", "6"},
                                 {"MINE", "1", "6", "6"}}));
    const auto brackets = [](int year) {
        return RowsOf(
            "select s.cCode, b.cTaxScaleCode, b.TaxBracket, b.TaxPercentage, b.TaxAmount from _iptblTaxBrackets b "
            "inner join _iptblTaxScales s on s.idTaxScales = b.iTaxScalesID and s.iTaxYear = b.iBracketTaxYear "
            "where b.iBracketTaxYear = :year and s.iCountry = 5 order by s.cCode, b.TaxBracket",
            {{"year", year}});
    };
    QCOMPARE(brackets(2028).size(), 38);
    QCOMPARE(brackets(2028), brackets(2027));
    QCOMPARE(Count("_iptblTaxBrackets", "iBracketTaxYear = 2028 and idTaxBrackets <= 50000"), 0);
    const auto loans = [](int year) {
        return RowsOf("select s.cCode, s.cDescription, b.fWeeklyEarnings, b.CoefficientA, b.CoefficientB from "
                      "_iptblHECSBrackets b "
                      "inner join _iptblHECSScales s on s.idHECSScales = b.iHECSScalesID and s.iTaxYear = b.iTaxYear "
                      "where b.iTaxYear = :year order by s.cCode, b.fWeeklyEarnings",
                      {{"year", year}});
    };
    QCOMPARE(loans(2028).size(), 8);
    QCOMPARE(loans(2028), loans(2027));
    const auto parameters = [](int year) {
        return RowsOf(
            "select iCountry, TerminationTaxRate, TaxReductionAmount, TermETPAnnualTaxFree from _iptblSGLTaxParameters "
            "where iTaxYear = :year",
            {{"year", year}});
    };
    QCOMPARE(parameters(2028), parameters(2027));
    QCOMPARE(world.Log(), "9230:0 9245:0 9254:0 9239:0");
}

void t_new_tax_year::countries_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QStringList>("parameters");
    QTest::newRow("5") << 5 << QStringList{"Termination values"};
    QTest::newRow("6") << 6
                       << QStringList{"Levy, student loan and payroll giving", "Rounding", "Lump sum tax rates",
                                      "Rebates"};
    QTest::newRow("7") << 7 << QStringList{"Rounding"};
}

void t_new_tax_year::countries()
{
    QFETCH(int, country);
    TTaxWorld world(country);
    MainConnection().Insert("insert into _iptblTaxRebates (iTaxYear, iCountry, fAnnualValue) values (2027, 6, 1)");
    QStringList parameters;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        for (const QStringList &row : Shown(FindControl<TqsMemoryGrid>(&dialog, "grdPlan"))) {
            if (row[0] == "Tax Parameters")
                parameters += row[2];
        }
        PressOK(dialog);
        PressCancel(dialog);
    });
    RunTool();
    VERIFY_SCRIPT(script);
    QTEST(parameters, "parameters");
    QCOMPARE(Count("_iptblLumpSumTaxRates", "iTaxYear = 2028"), country == 6 ? 5 : 0);
    QCOMPARE(Count("_iptblTaxRebates", "iTaxYear = 2028 and iCountry = 6"), country == 6 ? 1 : 0);
    QCOMPARE(Count("_iptblTaxOptions", QString("iTaxYear = 2028 and iCountry = %1").arg(country)),
             country == 5 ? 0 : 1);
}

void t_new_tax_year::skipsWhatIsThere()
{
    TTaxWorld world;
    AddTaxScale(60, "2 ", 2028);
    AddTaxBracket(61, 60, "2", 1, 2, 3, 2028);
    MainConnection().Insert(
        "insert into _iptblSGLTaxParameters (iTaxYear, iCountry, TermETPUpperCap) values (2028, 5, 7)");
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        FindControl<QSpinBox>(&dialog, "edtToYear").setValue(2027);
        QCOMPARE(Result(dialog), "Choose two different years.");
        QVERIFY(!FindControl<QPushButton>(&dialog, "btnOK").isEnabled());
        FindControl<QSpinBox>(&dialog, "edtToYear").setValue(2028);
        QCOMPARE(Result(dialog), "10 records will be copied, 2 exist already.");
        PressOK(dialog);
        PressCancel(dialog);
    });
    RunTool();
    VERIFY_SCRIPT(script);
    QCOMPARE(BracketsOf(60), (QList<QStringList>{{"61", "2", "2028", "1", "2", "3"}}));
    QCOMPARE(Count("_iptblTaxBrackets", "iBracketTaxYear = 2028 and cTaxScaleCode = '2'"), 1);
    QCOMPARE(RowsOf("select TermETPUpperCap from _iptblSGLTaxParameters where iTaxYear = 2028"),
             (QList<QStringList>{{"7"}}));
}

void t_new_tax_year::runTwice()
{
    TTaxWorld world;
    // Codes of study loan scales may be empty and may stand twice.
    for (const int id : {50001, 50002})
        MainConnection().Execute("insert into _iptblHECSScales (idHECSScales, cCode, iTaxYear) values (:id, '', 2027)",
                                 {{"id", id}});
    QList<QList<QStringList>> once;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        PressOK(dialog);
        once = Everything();
        QVERIFY(!FindControl<QPushButton>(&dialog, "btnOK").isEnabled());
        PressCancel(dialog);
    });
    script.Dialog(kForm, [&](QDialog &dialog) {
        QCOMPARE(Result(dialog), "0 records will be copied, 14 exist already.");
        dialog.accept(); // as Enter would
        PressCancel(dialog);
    });
    RunTool();
    RunTool();
    VERIFY_SCRIPT(script);
    QCOMPARE(Count("_iptblHECSScales", "iTaxYear = 2028 and cCode = ''"), 2);
    QCOMPARE(Everything(), once);
}

void t_new_tax_year::cancelledInTheMiddle()
{
    TTaxWorld world;
    {
        TDbTransaction transaction(MainConnection());
        for (int i = 0; i < 400; ++i) {
            const int id = AddTaxScale(50001 + i, QString("S%1").arg(i));
            for (int k = 0; k < 5; ++k)
                AddTaxBracket(50001 + i * 5 + k, id, QString("S%1").arg(i), 100 * (k + 1), 0.1 * k, 0);
        }
        transaction.Commit();
    }
    const QList<QList<QStringList>> before = Everything();
    int reached = 0;
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        auto &progress = FindControl<QProgressBar>(&dialog, "prgCopy");
        connect(&progress, &QProgressBar::valueChanged, &dialog, [&](int value) {
            reached = value;
            if (value == 200)
                PressCancel(dialog);
        });
        PressOK(dialog);
        QVERIFY(dialog.isVisible());
        QCOMPARE(Result(dialog), "The copying was cancelled. Nothing was changed.");
        QCOMPARE(Everything(), before);
        progress.disconnect(&dialog);
        PressOK(dialog); // and now all of it
        PressCancel(dialog);
    });
    RunTool();
    VERIFY_SCRIPT(script);
    QCOMPARE(reached, 200);
    QCOMPARE(Count("_iptblTaxBrackets", "iBracketTaxYear = 2028"), 2037);
}

void t_new_tax_year::failureTakesEverythingBack()
{
    TTaxWorld world;
    const QList<QList<QStringList>> before = Everything();
    Refuse(world.database.FileName(), "insert", "_iptblHECSBrackets");
    TUserScript script;
    script.Dialog(kForm, [&](QDialog &dialog) {
        PressOK(dialog);
        QCOMPARE(Result(dialog), "Nothing was changed.");
        PressCancel(dialog);
    });
    script.Box(kRefused);
    RunTool();
    VERIFY_SCRIPT(script);
    QCOMPARE(Everything(), before);
    QCOMPARE(world.Log(), "");
}

QTEST_MAIN(t_new_tax_year)
#include "t_new_tax_year.moc"
