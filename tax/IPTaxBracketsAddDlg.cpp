// SPDX-License-Identifier: Apache-2.0
#include "tax/IPTaxBracketsAddDlg.h"

#include "framework/Kvglobal.h"
#include "framework/forms/CorvexDlg.h"
#include "framework/grid/MemoryGrid.h"

namespace {

constexpr int kHelpContext = 104480;

class TfrmIPTaxBracketsAddDlg final : public TfrmCorvexDlg2
{
public:
    TfrmIPTaxBracketsAddDlg(double WeeklyEarnings, double CoefficientA, double CoefficientB, double CoefficientC,
                            const TMemoryTable &TempTable, bool ForHelpHECS)
        : TfrmCorvexDlg2("TfrmIPTaxBracketsAddDlg", "Tax Bracket", kHelpContext)
        , tempTable_(TempTable)
        , earningsBefore_(WeeklyEarnings)
        , forHelpHECS_(ForHelpHECS)
    {
        AddGroup("")
            .Number(edtWeeklyEarnings, "edtWeeklyEarnings", "&Weekly Earnings", 4)
            .Number(edtCoefficientA, "edtCoefficientA", "Coefficient &A", 4)
            .Number(edtCoefficientB, "edtCoefficientB", "Coefficient &B", 4)
            .Number(edtCoefficientC, "edtCoefficientC", "Coefficient &C", 4);
        edtWeeklyEarnings->SetValue(WeeklyEarnings);
        edtCoefficientA->SetValue(CoefficientA);
        edtCoefficientB->SetValue(CoefficientB);
        edtCoefficientC->SetValue(CoefficientC);
    }

    double WeeklyEarnings() const { return edtWeeklyEarnings->Value(); }
    double CoefficientA() const { return edtCoefficientA->Value(); }
    double CoefficientB() const { return edtCoefficientB->Value(); }
    double CoefficientC() const { return edtCoefficientC->Value(); }

protected:
    bool IsNew() const { return earningsBefore_ == 0; }

    void SetDialogCaption() override
    {
        const QString earnings = QString::number(earningsBefore_, 'f', 2);
        if (IsNew())
            setWindowTitle(forHelpHECS_ ? "Add New Bracket" : "Add New Tax Bracket");
        else
            setWindowTitle(FormatText(forHelpHECS_ ? "Edit Bracket \"%s\"" : "Edit Tax Bracket \"%s\"", {earnings}));
    }
    void FormShow() override
    {
        TfrmCorvexDlg2::FormShow();
        if (CountryCode == kAustralia)
            fields.SetVisible(edtCoefficientC, false);
        else
            fields.SetCaption(edtWeeklyEarnings, "Yearly Earnings");
        // What the scale's brackets do not have would be typed for nothing.
        const bool hasB = tempTable_.ColumnOf(u"CoefficientB") >= 0 || tempTable_.ColumnOf(u"fCoefficientB") >= 0;
        fields.SetEnabled(edtCoefficientB, hasB);
        adjustSize();
        FocusControl(edtWeeklyEarnings);
    }
    void ValidateInformation(TChecks &check) override
    {
        if (IsNew()) {
            check(edtWeeklyEarnings, tempTable_.Find(u"fWeeklyEarnings", WeeklyEarnings()) < 0,
                  "Weekly Earnings already exists.");
        }
        check(edtWeeklyEarnings, WeeklyEarnings() > 0, "Weekly Earnings must be greater than zero.");
        check(edtCoefficientA, CoefficientA() >= 0, "Coefficient A may not be less than 0!");
        if (!forHelpHECS_)
            check(edtCoefficientB, CoefficientB() >= 0, "Coefficient B may not be less than 0!");
        if (CountryCode != kAustralia)
            check(edtCoefficientC, CoefficientC() >= 0, "Coefficient C may not be less than 0!");
    }
    void SaveEditFields() override {} // the caller takes the values

private:
    const TMemoryTable &tempTable_;
    const double earningsBefore_;
    const bool forHelpHECS_;
    TqsNumberEdit *edtWeeklyEarnings = nullptr;
    TqsNumberEdit *edtCoefficientA = nullptr;
    TqsNumberEdit *edtCoefficientB = nullptr;
    TqsNumberEdit *edtCoefficientC = nullptr;
};

} // namespace

void DoTaxBracketsAdd(int, double &WeeklyEarnings, double &CoefficientA, double &CoefficientB, double &CoefficientC,
                      int &Result, TMemoryTable &TempTable, bool ForHelpHECS)
{
    TBusyCursor busy;
    TfrmIPTaxBracketsAddDlg dialog(WeeklyEarnings, CoefficientA, CoefficientB, CoefficientC, TempTable, ForHelpHECS);
    busy.Restore();
    Result = dialog.exec();
    if (Result != QDialog::Accepted)
        return;
    WeeklyEarnings = dialog.WeeklyEarnings();
    CoefficientA = dialog.CoefficientA();
    CoefficientB = dialog.CoefficientB();
    CoefficientC = dialog.CoefficientC();
}
