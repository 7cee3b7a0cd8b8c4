// SPDX-License-Identifier: Apache-2.0
#include "banking/IPBankAddDlg.h"

#include "framework/Ipglobal.h"
#include "framework/Kvglobal.h"
#include "framework/forms/CorvexDlg.h"
#include "records/IPBanks.h"

namespace {

constexpr TDialogFacts kBank{"TfrmIPBankAddDlg",
                             "Add / Edit Banks",
                             "Add New Bank",
                             "Edit Bank \"%s\"",
                             "Copy Bank \"%s\"",
                             101690,
                             9227,
                             "Bank"};

class TfrmIPBankAddDlg final : public TfrmCorvexDlg
{
public:
    TfrmIPBankAddDlg()
        : TfrmCorvexDlg(kBank, qryBanks)
    {
        AddGroup("Bank")
            .Text(edtCode, "edtCode", "&Code", qryBanks.Code)
            .Text(edtBankName, "edtBankName", "Bank &Name", qryBanks.BankName)
            .Text(edtBranchName, "edtBranchName", "&Branch Name", qryBanks.BranchName)
            .Mask(edtBSB, "edtBSB", "B&SB Number", qryBanks.BSBNumber)
            .Lookup(cbxState, "cbxState", "S&tate", qryBanks.State, StateLookup());
        edtBSB->SetEditMask(BSBEditMask(Installation().bsbFormat));
    }

protected:
    void FormShow() override
    {
        TfrmCorvexDlg::FormShow();
        if (CountryCode != kAustralia)
            fields.SetCaption(edtBankName, BankNameCaption());
        FocusControl(edtCode);
    }

    void CheckCode(TChecks &check) override
    {
        check(
            edtCode, [this] { return !OtherBank("cCode", edtCode->text().trimmed()); }, "Code already exists.");
        check(edtCode, NoApostrophe(edtCode), "The Bank Code is invalid!");
    }

    void ValidateInformation(TChecks &check) override
    {
        const QString bsb = edtBSB->Value();
        const bool validBSB =
            CountryCode == kOtherCountry ? !bsb.isEmpty() : bsb.size() == Installation().bsbFormat.size();
        check(edtCode, NotBlank(edtCode), "The Code may not be blank.");
        check(edtBSB, validBSB, "A valid BSB Number is required!");
        // An Australian bank without a name is told so even when something before it is wrong as well.
        if (CountryCode == kAustralia)
            check.Override(edtBankName, NotBlank(edtBankName),
                           FormatText("The %s may not be blank!", {BankNameCaption()}));
        check(
            edtBSB, [&] { return !OtherBank("cBSBNumber", bsb); }, "The BSB Number already exists!");
    }

private:
    bool OtherBank(const char *field, const QString &value) const
    {
        return qryBanks.RecordsExistCriteria(QString("%1 = :value and idBank <> :id").arg(field),
                                             {{"value", value}, {"id", RecordID()}});
    }

    TqryIPBanks qryBanks;
    QLineEdit *edtCode = nullptr;
    QLineEdit *edtBankName = nullptr;
    QLineEdit *edtBranchName = nullptr;
    TqsMaskEdit *edtBSB = nullptr;
    TqsLookupCombo *cbxState = nullptr;
};

} // namespace

void DoIPBankAdd(int Id, bool Copy)
{
    RunRecordDialog<TfrmIPBankAddDlg>(Id, Copy);
}
