// SPDX-License-Identifier: Apache-2.0
#include "tests/tax/TaxWorld.h"

namespace {

constexpr uint kParameters = 9255;
const char kAu[] = "TfrmIPTaxParametersDlg";
const char kNZ[] = "TfrmIPTaxParametersNZDlg";
const char kOther[] = "TfrmIPTaxParametersOtherDlg";

struct TCheck
{
    const char *control; // also the column, without its prefix
    const char *message;
};

// In the order in which they are asked.
constexpr TCheck kAuChecks[] = {
    {"edtTerminationTaxRate", "The Termination Tax Rate may not be negative!"},
    {"edtTermSpecRateMedLevy", "The Medicare Levy Rate may not be negative!"},
    {"edtTermPost93GrossRate", "The Post 93 Gross Rate may not be negative!"},
    {"edtTermNoTFNResidentRate", "The Resident with no TFN Rate may not be negative!"},
    {"edtTermPost93GrossLimit", "The Post 93 Gross Limit may not be negative!"},
    {"edtTermNoTFNNonResRate", "The Non Resident with no TFN Rate may not be negative!"},
    {"edtTermAssAmtPercent", "The Comp B Assessable Percentage may not be negative!"},
    {"edtTaxReductionAmount", "The ETP Lower Cap Amount may not be negative!"},
    {"edtTermETPUpperCap", "The ETP Upper Cap Amount may not be negative!"},
    {"edtReducedTaxRate", "The Preservation Age Tax Rate may not be negative!"},
    {"edtTermAboveCapRate", "The ETP Above Cap Tax Rate may not be negative!"},
    {"edtTermETPInitTaxFree", "The Component D Initial Tax Free Value may not be negative!"},
    {"edtTermETPAnnualTaxFree", "The Component D Annual Tax Free Value may not be negative!"},
    {"edtTermWholeOfIncomeCap", "The ETP Whole Of Income Amount may not be negative!"},
};

constexpr TCheck kNZChecks[] = {
    {"edtLevyRate", "The Levy Rate may not be negative!"},
    {"edtFixedAmount", "The Fixed Amount may not be negative!"},
    {"edtAnnualLevyThreshold", "The Annual Levy Threshold may not be negative!"},
    {"edtLoanRate", "The Student Loan Rate may not be negative!"},
    {"edtAnnualLoanThreshold", "The Student Annual Loan Threshold may not be negative!"},
};

QList<QStringList> LumpSums()
{
    return RowsOf("select fLumpSum, fTaxRate from _iptblLumpSumTaxRates where iTaxYear = 2027 and iCountry = 6 order "
                  "by fLumpSum");
}

} // namespace

class t_tax_parameters final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void oneDialogACountry_data();
    void oneDialogACountry();
    void firstNegativeValueWins_data();
    void firstNegativeValueWins();
    void australianValuesAreSaved();
    void missingYearGetsZeros();
    void percentagesEndAt100();
    void newZealandValuesAndGrids();
    void newZealandGridRules();
    void newYearOfNewZealand();
    void thirdCountry();
    void changedByAnother_data();
    void changedByAnother();
};

void t_tax_parameters::oneDialogACountry_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QString>("form");
    QTest::newRow("Australia") << 5 << kAu;
    QTest::newRow("New Zealand") << 6 << kNZ;
    QTest::newRow("other") << 7 << kOther;
}

void t_tax_parameters::oneDialogACountry()
{
    QFETCH(int, country);
    QFETCH(QString, form);
    TTaxWorld world(country);
    TUserScript script;
    script.Dialog(form, [](QDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), "Tax Parameters");
        PressCancel(dialog);
    });
    QVERIFY(SendToPackage(kParameters));
    CountryCode = 3;
    QVERIFY(!SendToPackage(kParameters));
    VERIFY_SCRIPT(script);
}

void t_tax_parameters::firstNegativeValueWins_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<int>("first");
    for (int i = 0; i < int(std::size(kAuChecks)); ++i)
        QTest::newRow(kAuChecks[i].control) << 5 << i;
    for (int i = 0; i < int(std::size(kNZChecks)); ++i)
        QTest::newRow(kNZChecks[i].control) << 6 << i;
}

void t_tax_parameters::firstNegativeValueWins()
{
    QFETCH(int, country);
    QFETCH(int, first);
    const QList<TCheck> checks = country == 5 ? QList<TCheck>(std::begin(kAuChecks), std::end(kAuChecks))
                                              : QList<TCheck>(std::begin(kNZChecks), std::end(kNZChecks));
    TTaxWorld world(country);
    QString focus;
    TUserScript script;
    script.Dialog(country == 5 ? kAu : kNZ, [&](QDialog &dialog) {
        for (int i = 0; i < checks.size(); ++i)
            TypeInto(dialog, checks[i].control, i < first ? "0" : "-1");
        PressOK(dialog);
        QVERIFY(dialog.isVisible());
        focus = FocusName(dialog);
        PressCancel(dialog);
    });
    script.Box(checks[first].message);
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    QCOMPARE(focus, checks[first].control);
}

void t_tax_parameters::australianValuesAreSaved()
{
    TTaxWorld world;
    TUserScript script;
    script.Dialog(kAu, [](QDialog &dialog) {
        int value = 10;
        for (const TCheck &check : kAuChecks)
            TypeInto(dialog, check.control, QString::number(++value));
        PressOK(dialog);
    });
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    int value = 10;
    for (const TCheck &check : kAuChecks) {
        QCOMPARE(
            ValueOf(QString("select %1 as v from _iptblSGLTaxParameters where iTaxYear = 2027").arg(check.control + 3))
                .toDouble(),
            double(++value));
    }
    QCOMPARE(Count("_iptblSGLTaxParameters", "iTaxYear = 2026 and TaxReductionAmount = 260000"), 1);
}

void t_tax_parameters::missingYearGetsZeros()
{
    TTaxWorld world;
    world.database.SetDefault("EndTaxYear", 2031);
    int there = -1;
    TUserScript script;
    script.Dialog(kAu, [&](QDialog &dialog) {
        there = Count("_iptblSGLTaxParameters", "iTaxYear = 2031 and iCountry = 5");
        TypeInto(dialog, "edtTerminationTaxRate", "5");
        PressCancel(dialog);
    });
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    QCOMPARE(there, 1);
    QStringList sum;
    for (const TCheck &check : kAuChecks)
        sum += QString(check.control).mid(3);
    QCOMPARE(ValueOf(QString("select %1 as v from _iptblSGLTaxParameters where iTaxYear = 2031").arg(sum.join(" + ")))
                 .toDouble(),
             0.0);
}

void t_tax_parameters::percentagesEndAt100()
{
    TTaxWorld world;
    QStringList texts;
    TUserScript script;
    script.Dialog(kAu, [&](QDialog &dialog) {
        for (const char *control : {"edtTermAssAmtPercent", "edtTermSpecRateMedLevy", "edtTermAboveCapRate"}) {
            TypeInto(dialog, control, "1000");
            texts += FindControl<QLineEdit>(&dialog, control).text();
        }
        PressCancel(dialog);
    });
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    QCOMPARE(texts, (QStringList{"100", "100", "1000"}));
}

void t_tax_parameters::newZealandValuesAndGrids()
{
    TTaxWorld world(6);
    TUserScript script;
    script.Dialog(kNZ, [](QDialog &dialog) {
        QCOMPARE(FindControl<QLineEdit>(&dialog, "edtLevyRate").text(), "1.7500");
        int value = 0;
        for (const char *control :
             {"edtTaxableGrossTo", "edtEndResultTo", "edtTaxCreditPercent", "edtLoanRate", "edtAnnualLoanThreshold",
              "edtFixedAmount", "edtLevyRate", "edtAnnualLevyThreshold"})
            TypeInto(dialog, control, QString::number(++value));
        auto &lumpSums = FindControl<TqsMemoryGrid>(&dialog, "grdLumpSums");
        QCOMPARE(Shown(lumpSums).mid(0, 2), (QList<QStringList>{{"LumpSum", "Tax Rate"}, {"15600.00", "10.5000"}}));
        lumpSums.setFocus();
        PressKey(lumpSums, Qt::Key_Delete); // the first
        lumpSums.setCurrentIndex(lumpSums.model()->index(0, 1));
        PressKey(lumpSums, Qt::Key_Return);
        Type(*lumpSums.findChild<TqsNumberEdit *>(), "18.25");
        PressKey(*lumpSums.findChild<TqsNumberEdit *>(), Qt::Key_Return);
        auto &rebates = FindControl<TqsMemoryGrid>(&dialog, "grdRebates");
        QCOMPARE(Shown(rebates).first(), (QStringList{"Annual Value", "Rate", "Amount"}));
        rebates.setFocus();
        PressKey(rebates, Qt::Key_Insert);
        for (const char *text : {"24000", "13", "520"}) {
            const QList<TqsNumberEdit *> edits = rebates.findChildren<TqsNumberEdit *>();
            QVERIFY(!edits.isEmpty());
            TqsNumberEdit *edit = edits.last(); // those before it are on their way out
            Type(*edit, text);
            PressKey(*edit, Qt::Key_Tab); // on to the next cell
        }
        PressKey(rebates, Qt::Key_Insert); // left blank
        PressOK(dialog);
    });
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    QCOMPARE(
        RowsOf("select fRoundTaxableGrossTo, fRoundTaxTo from _iptblTaxOptions where iTaxYear = 2027 and iCountry = 6"),
        (QList<QStringList>{{"1", "2"}}));
    QCOMPARE(RowsOf("select fPayrollGivingCredit, fLoanRate, fAnnualLoanThreshold, fLevyFixedAmount, fLevyRate, "
                    "fAnnualLevyThreshold from _iptblTaxParametersNZ where iTaxYear = 2027"),
             (QList<QStringList>{{"3", "4", "5", "6", "7", "8"}}));
    QCOMPARE(LumpSums(),
             (QList<QStringList>{{"53500", "18.25"}, {"78100", "30"}, {"180000", "33"}, {"9999999", "39"}}));
    QCOMPARE(RowsOf("select iTaxYear, iCountry, fAnnualValue, fRate, fAmount from _iptblTaxRebates"),
             (QList<QStringList>{{"2027", "6", "24000", "13", "520"}}));
}

void t_tax_parameters::newZealandGridRules()
{
    TTaxWorld world(6);
    const QList<QStringList> before = LumpSums();
    QString focus;
    TUserScript script;
    script.Dialog(kNZ, [&](QDialog &dialog) {
        auto &grid = FindControl<TqsMemoryGrid>(&dialog, "grdLumpSums");
        QAbstractItemModel &rows = *grid.model();
        QVERIFY(!rows.setData(rows.index(0, 0), -1.0));
        QVERIFY(!rows.setData(rows.index(0, 1), 100.5));
        QVERIFY(rows.setData(rows.index(0, 1), 12.34567));
        QCOMPARE(rows.index(0, 1).data().toString(), "12.3457");
        QVERIFY(rows.setData(rows.index(0, 0), 53500.0)); // stands in the next row
        PressOK(dialog);
        focus = FocusName(dialog);
        PressCancel(dialog);
    });
    script.Box("LumpSum already exists.");
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    QCOMPARE(focus, "grdLumpSums");
    QCOMPARE(LumpSums(), before);
}

void t_tax_parameters::newYearOfNewZealand()
{
    TTaxWorld world(6);
    world.database.SetDefault("EndTaxYear", 2031);
    TUserScript script;
    script.Dialog(kNZ, [](QDialog &dialog) { PressCancel(dialog); });
    SendToPackage(kParameters);
    QCOMPARE(Count("_iptblTaxParametersNZ", "iTaxYear = 2031"), 0);
    script.Dialog(kNZ, [](QDialog &dialog) {
        TypeInto(dialog, "edtLoanRate", "12");
        PressOK(dialog);
    });
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    QCOMPARE(RowsOf("select iCountry, fLoanRate from _iptblTaxParametersNZ where iTaxYear = 2031"),
             (QList<QStringList>{{"6", "12"}}));
    QCOMPARE(Count("_iptblTaxOptions", "iTaxYear = 2031 and iCountry = 6"), 1);
}

void t_tax_parameters::thirdCountry()
{
    TTaxWorld world(7);
    TUserScript script;
    script.Dialog(kOther, [](QDialog &dialog) {
        TypeInto(dialog, "edtTaxableGrossTo", "-5"); // the sign is not taken
        TypeInto(dialog, "edtEndResultTo", "0.05");
        PressOK(dialog);
    });
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    QCOMPARE(
        RowsOf("select fRoundTaxableGrossTo, fRoundTaxTo from _iptblTaxOptions where iTaxYear = 2027 and iCountry = 7"),
        (QList<QStringList>{{"5", "0.05"}}));
    QCOMPARE(Count("_iptblTaxOptions", "iCountry = 6 and fRoundTaxTo = 0.05"), 0);
}

void t_tax_parameters::changedByAnother_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QStringList>("expected"); // loan rate or termination rate, the one changed by the other
    QTest::newRow("5 mine") << 5 << "&Write Mine" << QStringList{"11", "9"};
    QTest::newRow("5 keep") << 5 << "&Keep the Other's" << QStringList{"32", "9"};
    QTest::newRow("6 mine") << 6 << "&Write Mine" << QStringList{"11", "9"};
    QTest::newRow("6 keep") << 6 << "&Keep the Other's" << QStringList{"12", "9"};
}

void t_tax_parameters::changedByAnother()
{
    QFETCH(int, country);
    QFETCH(QString, answer);
    TTaxWorld world(country);
    const bool australia = country == 5;
    const QString table = australia ? "_iptblSGLTaxParameters" : "_iptblTaxParametersNZ";
    const QString mine = australia ? "TerminationTaxRate" : "fLoanRate",
                  theirs = australia ? "ReducedTaxRate" : "fLevyRate";
    TUserScript script;
    script.Dialog(australia ? kAu : kNZ, [&](QDialog &dialog) {
        MainConnection().Execute(QString("update %1 set %2 = 9 where iTaxYear = 2027").arg(table, theirs));
        TypeInto(dialog, australia ? "edtTerminationTaxRate" : "edtLoanRate", "11");
        PressOK(dialog);
    });
    script.Box("Another user has changed this record while you were editing it.", answer);
    SendToPackage(kParameters);
    VERIFY_SCRIPT(script);
    QTEST(RowsOf(QString("select %1, %2 from %3 where iTaxYear = 2027").arg(mine, theirs, table)).first(), "expected");
}

QTEST_MAIN(t_tax_parameters)
#include "t_tax_parameters.moc"
