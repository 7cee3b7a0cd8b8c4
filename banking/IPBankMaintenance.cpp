// SPDX-License-Identifier: Apache-2.0
#include "banking/IPBankMaintenance.h"

#include "banking/IPBankAddDlg.h"
#include "framework/Ipglobal.h"
#include "framework/forms/Vpmaintenancebaseform.h"
#include "records/IPBanks.h"

namespace {

constexpr TMaintenanceFacts kBanks{
    "TfrmIPBankMaintenance", "Bank Maintenance", "Banks", "Bank List", "grdBanks", 1909, 101600, 9227};

const char kBankInUse[] = "Unable to delete Bank \"%s\", as it is in use by the %s!";
constexpr TInUse kInUse[] = {
    {"_iptblEFTParameters", "iBankID", "EFT Parameters"},
    {"_iptblEmployeeBank", "iBankID", "Employees"},
};

const QList<TGridColumn> &BankColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idBank", "Bank ID", Kind::Integer, 70, false},
        {"cBSBNumber", "BSB Number", Kind::Text, 100},
        {"cCode", "Code", Kind::Text, 100},
        {"cBankName", "Bank Name", Kind::Text, 280},
        {"cBranchName", "Branch Name", Kind::Text, 260},
        {"cStateCode", "State", Kind::Text, 60},
        {"idNotes", "Notes", Kind::Notes, 60},
    };
    return columns;
}

class TfrmIPBankMaintenance final : public TfrmMaintenanceBase
{
public:
    TfrmIPBankMaintenance(QWidget *AOwner, bool NonModal, bool Visible)
        : TfrmMaintenanceBase(kBanks, qryBanks, AOwner, NonModal, Visible)
    {
        qryBanks.SetFromTables("_ipvBanks");
        qryBanks.SetSelectFields("cCode");
        qryBanks.SetLinkNotesField("idBank");
        Grid()->SetColumns(BankColumns(), "cBSBNumber");
    }

protected:
    void DoShow() override
    {
        TfrmMaintenanceBase::DoShow();
        Grid()->SetColumnCaption(u"cBankName", BankNameCaption());
    }
    void mniMaintAddClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintAddClick(Sender);
        DoIPBankAdd(0, false);
    }
    void mniMaintEditClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintEditClick(Sender);
        if (Grid()->RecordFocused(true))
            DoIPBankAdd(FocusedID(), false);
    }
    void mniMaintCopyClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintCopyClick(Sender);
        if (Grid()->RecordFocused(true))
            DoIPBankAdd(FocusedID(), true);
    }
    QString DeleteQuestion() const override { return "Delete Bank \"" + qryBanks.GetCode() + "\" ?"; }
    std::span<const TInUse> InUseTables() const override { return kInUse; }
    bool CheckBeforeDelete() override { return CheckInUse(kInUse, kBankInUse, qryBanks.GetCode()); }
    void DeleteRecord() override
    {
        DeleteAndTell([this] {
            TCorvexADOStoredProc delBank("_ipspDeleteBank");
            delBank.SetParam("@BankID", FocusedID());
            return delBank.kvExecProc(true);
        });
    }

private:
    TqryIPBanks qryBanks;
};

} // namespace

void DoBankMaintenance(bool Modal, TList *SelectedList, bool MultiSelect)
{
    RunMaintenance<TfrmIPBankMaintenance>(Modal, SelectedList, MultiSelect);
}
