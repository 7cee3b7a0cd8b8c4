// SPDX-License-Identifier: Apache-2.0
#include "paystructure/IPRateFactorAddDlg.h"

#include "framework/forms/CorvexDlg.h"
#include "records/IPRateFactors.h"

namespace {

constexpr TDialogFacts kRateFactor{"TfrmIPRateFactorAddDlg",
                                   "Add / Edit Rate Factors",
                                   "Add New Rate Factor",
                                   "Edit Rate Factor \"%s\"",
                                   "Copy Rate Factor \"%s\"",
                                   103690,
                                   9286,
                                   "Rate Factor"};

class TfrmIPRateFactorAddDlg final : public TfrmCorvexDlg
{
public:
    TfrmIPRateFactorAddDlg()
        : TfrmCorvexDlg(kRateFactor, qryRateFactors)
    {
        AddGroup("Rate Factor")
            .Text(edtCode, "edtCode", "&Code", qryRateFactors.Code)
            .Text(edtDescription, "edtDescription", "&Description", qryRateFactors.Description)
            .Number(edtRateFactor, "edtRateFactor", "&Rate Factor", qryRateFactors.RateFactor, 2, 100);
        edtRateFactor->SetMinimum(0);
        edtRateFactor->SetSuffix("%");
    }

protected:
    void FormShow() override
    {
        TfrmCorvexDlg::FormShow();
        FocusControl(edtCode);
    }

    void CheckCode(TChecks &check) override
    {
        check(
            edtCode,
            [this] {
                return !qryRateFactors.RecordsExistCriteria("cCode = :code and idRateFactor <> :id",
                                                            {{"code", edtCode->text().trimmed()}, {"id", RecordID()}});
            },
            "The Rate Factor already exists!");
        check(edtCode, NoApostrophe(edtCode), "The Rate Factor Code is invalid!");
    }

    void ValidateInformation(TChecks &check) override
    {
        check(edtCode, NotBlank(edtCode), "The Code may not be blank.");
        check(edtDescription, NotBlank(edtDescription), "The Description may not be blank.");
        check(edtRateFactor, edtRateFactor->Value() > 0, "The Rate Factor must be greater than 0!");
    }

private:
    TqryIPRateFactors qryRateFactors;
    QLineEdit *edtCode = nullptr;
    QLineEdit *edtDescription = nullptr;
    TqsNumberEdit *edtRateFactor = nullptr;
};

} // namespace

void DoRateFactorAdd(int RateFactorID, bool DoCopyRecord)
{
    RunRecordDialog<TfrmIPRateFactorAddDlg>(RateFactorID, DoCopyRecord);
}
