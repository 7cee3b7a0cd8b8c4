// SPDX-License-Identifier: Apache-2.0
#include "tax/IPMedicareScalesDlg.h"

#include "framework/forms/CorvexDlg.h"
#include "records/IPMedicareScales.h"
#include "tax/ScaleDlg.h"

namespace {

constexpr TDialogFacts kMedicareScale{"TfrmMedicareScalesDlg",
                                      "Add / Edit Medicare Scales",
                                      "Add New Medicare Scale",
                                      "Edit Medicare Scale \"%s\"",
                                      "Copy Medicare Scale \"%s\"",
                                      104340,
                                      9230,
                                      "Medicare Scale"};

const char kTaxYear[] = "select Country, EndTaxYear from Defaults";
const char kMaxKey[] = "select Max(idMedicareScales) as iMaxScaleID from _iptblMedicareScales";

class TfrmMedicareScalesDlg final : public TfrmCorvexDlg
{
public:
    TfrmMedicareScalesDlg()
        : TfrmCorvexDlg(kMedicareScale, qryMedicareScales)
    {
        auto &qry = qryMedicareScales;
        AddGroup("Medicare Scale")
            .Text(edtCode, "edtCode", "&Code", qry.Code)
            .Text(edtDescription, "edtDescription", "&Description", qry.MedicareScaleDescription)
            .Number(edtWeeklyEarningsThreshold, "edtWeeklyEarningsThreshold", "&Weekly Earnings Threshold",
                    qry.WeeklyEarningsThreshold, 4)
            .Number(edtWeeklyEarningsShadeInThreshold, "edtWeeklyEarningsShadeInThreshold",
                    "Weekly &Earnings Shade In Threshold", qry.WeeklyEarningsShadeInThreshold, 4)
            .Number(edtFamilyThreshold, "edtFamilyThreshold", "&Family Threshold", qry.FamilyThreshold, 4)
            .Number(edtWFTDivisor, "edtWFTDivisor", "WFT &Divisor", qry.WFTDivisor, 4)
            .Number(edtAdditionalChildAllowance, "edtAdditionalChildAllowance", "&Additional Child Allowance",
                    qry.AdditionalChildAllowance, 4)
            .Number(edtSOPMultiplier, "edtSOPMultiplier", "&SOP Multiplier", qry.SOPMultiplier, 4)
            .Number(edtSOPDivisor, "edtSOPDivisor", "S&OP Divisor", qry.SOPDivisor, 4)
            .Number(edtWLAFactor, "edtWLAFactor", "W&LA Factor", qry.WLAFactor, 4)
            .Number(edtAdjustmentLevy, "edtAdjustmentLevy", "A&djustment Levy", qry.AdjustmentLevy, 4);
    }

protected:
    void SetEditFields() override
    {
        TfrmCorvexDlg::SetEditFields();
        const TDbRows defaults = MainConnection().Select(kTaxYear);
        endTaxYear_ = defaults.isEmpty() ? 0 : defaults.Value(0, u"EndTaxYear").toInt();
    }
    void FormShow() override
    {
        TfrmCorvexDlg::FormShow();
        FocusControl(edtCode);
    }

    // The code of an existing scale may be changed, so it is checked on every save.
    void ValidateInformation(TChecks &check) override
    {
        const auto notNegative = [&check](TqsNumberEdit *edit, const char *text) {
            check(edit, edit->Value() >= 0, text);
        };
        check(edtCode, NotBlank(edtCode), "The Code may not be blank.");
        check(edtCode, NoApostrophe(edtCode), "The Medicare Scale Code is invalid!");
        check(
            edtCode,
            [this] {
                return !qryMedicareScales.RecordsExistCriteria(
                    "idMedicareScales <> :id and iTaxYear = :year and cCode = :code",
                    {{"id", RecordID()}, {"year", TaxYear()}, {"code", edtCode->text().trimmed()}});
            },
            "Code already exists.");
        check(edtDescription, NotBlank(edtDescription), "The Description may not be blank.");
        notNegative(edtWeeklyEarningsThreshold, "The Weekly Earnings Threshold may not be less than 0!");
        notNegative(edtWeeklyEarningsShadeInThreshold,
                    "The Weekly Earnings Shade in Threshold may not be less than 0!");
        // Three texts name an upper bound that has never been a limit.
        notNegative(edtFamilyThreshold, "Family Threshold must be between 0 and 32 000.");
        notNegative(edtWFTDivisor, "WFT Divisor must be between 0 and 100!");
        notNegative(edtAdditionalChildAllowance, "The Additional Child Allowance may not be less than 0!");
        notNegative(edtSOPMultiplier, "SOP Multiplier may not be less than 0!");
        notNegative(edtSOPDivisor, "SOP Divisor must be between 0 and 100!");
        notNegative(edtWLAFactor, "The WLA Factor may not be less than 0!");
        notNegative(edtAdjustmentLevy, "The Adjustment Levy may not be less than 0!");
    }

    bool SaveRecord() override { return SaveMedicareScales(); }
    void SetSaveFields() override
    {
        const int year = TaxYear();
        TfrmCorvexDlg::SetSaveFields();
        qryMedicareScales.SetTaxYear(year);
    }
    int NewKey() override { return MaxScaleKey(kMaxKey); }

private:
    bool SaveMedicareScales() { return TfrmCorvexDlg::SaveRecord(); }
    // A scale that exists keeps its year; a new one gets the current one.
    int TaxYear() const { return RecordID() != 0 ? qryMedicareScales.GetTaxYear() : endTaxYear_; }

    TQryIPMedicareScales qryMedicareScales;
    int endTaxYear_ = 0;
    QLineEdit *edtCode = nullptr;
    QLineEdit *edtDescription = nullptr;
    TqsNumberEdit *edtWeeklyEarningsThreshold = nullptr;
    TqsNumberEdit *edtWeeklyEarningsShadeInThreshold = nullptr;
    TqsNumberEdit *edtFamilyThreshold = nullptr;
    TqsNumberEdit *edtWFTDivisor = nullptr;
    TqsNumberEdit *edtAdditionalChildAllowance = nullptr;
    TqsNumberEdit *edtSOPMultiplier = nullptr;
    TqsNumberEdit *edtSOPDivisor = nullptr;
    TqsNumberEdit *edtWLAFactor = nullptr;
    TqsNumberEdit *edtAdjustmentLevy = nullptr;
};

} // namespace

void DoMedicareScalesAdd(int Id, bool Copy)
{
    RunRecordDialog<TfrmMedicareScalesDlg>(Id, Copy);
}
