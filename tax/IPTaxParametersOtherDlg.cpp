// SPDX-License-Identifier: Apache-2.0
#include "tax/IPTaxParametersOtherDlg.h"

#include "framework/Kvglobal.h"
#include "framework/forms/CorvexDlg.h"
#include "records/IPTaxOptions.h"

namespace {

class TfrmIPTaxParametersOtherDlg final : public TfrmCorvexDlg2
{
public:
    TfrmIPTaxParametersOtherDlg()
        : TfrmCorvexDlg2("TfrmIPTaxParametersOtherDlg", "Tax Parameters", 104220)
    {
        AddGroup("Rounding")
            .Number(edtTaxableGrossTo, "edtTaxableGrossTo", "Taxable Gross Value To", qryTaxOptions.RoundTaxableGrossTo,
                    4)
            .Number(edtEndResultTo, "edtEndResultTo", "End Result Tax Value To", qryTaxOptions.RoundTaxTo, 4);
        edtTaxableGrossTo->SetMinimum(0);
        edtEndResultTo->SetMinimum(0);
    }

protected:
    void FormShow() override
    {
        TfrmCorvexDlg2::FormShow();
        qryTaxOptions.GetTaxOptions(GetEndTaxYear());
        fields.LoadAll();
        FocusControl(edtTaxableGrossTo);
    }
    void ValidateInformation(TChecks &) override {} // the boxes take no negative number
    void SaveEditFields() override
    {
        qryTaxOptions.EditTaxYear(GetEndTaxYear());
        fields.SaveAll();
        try {
            if (!qryTaxOptions.brPost(true))
                qryTaxOptions.Cancel();
        } catch (const TRecordConflict &) {
            qryTaxOptions.Cancel();
            throw;
        }
    }
    void Reread() override { qryTaxOptions.GetTaxOptions(GetEndTaxYear()); }

private:
    TqryIPTaxOptions qryTaxOptions;
    TqsNumberEdit *edtTaxableGrossTo = nullptr;
    TqsNumberEdit *edtEndResultTo = nullptr;
};

} // namespace

void IPTaxParametersOtherDlg::DoTaxParameters()
{
    TBusyCursor busy;
    TfrmIPTaxParametersOtherDlg dialog;
    busy.Restore();
    dialog.exec();
}
