// SPDX-License-Identifier: Apache-2.0
#include "paystructure/IPRateFactorsMaintenance.h"

#include "framework/forms/Vpmaintenancebaseform.h"
#include "paystructure/IPRateFactorAddDlg.h"
#include "records/IPRateFactors.h"

namespace {

constexpr TMaintenanceFacts kRateFactors{"TfrmIPRateFactorsMaintenance",
                                         "Rate Factor Maintenance",
                                         "Rate Factors",
                                         "Rate Factor List",
                                         "grdRateFactors",
                                         1920,
                                         103600,
                                         9286};

const char kRateFactorInUse[] = "Unable to delete Rate Factor \"%s\", as it is in use by the %s!";
constexpr TInUse kInUse[] = {
    {"_iptblPayClasses", "iTimeHalfRateFactor", "Pay Classes"},
    {"_iptblPayClasses", "iDoubleRateFactor", "Pay Classes"},
};

const QList<TGridColumn> &RateFactorColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idRateFactor", "Rate Factor ID", Kind::Integer, 100, false},
        {"cCode", "Code", Kind::Text, 120},
        {"cDescription", "Description", Kind::Text, 300},
        {"fRateFactor", "Rate Factor", Kind::Float, 110},
        {"idNotes", "Notes", Kind::Notes, 60},
    };
    return columns;
}

class TfrmIPRateFactorsMaintenance final : public TfrmMaintenanceBase
{
public:
    TfrmIPRateFactorsMaintenance(QWidget *AOwner, bool NonModal, bool Visible)
        : TfrmMaintenanceBase(kRateFactors, qryRateFactors, AOwner, NonModal, Visible)
    {
        qryRateFactors.SetFromTables(
            "_iptblRateFactors left join _btblNotes on cNOTETBLTableName = '_IPTBLRATEFACTORS' "
            "and fNOTETBLTableID = idRateFactor");
        qryRateFactors.SetSelectFields("cDescription");
        qryRateFactors.SetLinkNotesField("idRateFactor");
        Grid()->SetColumns(RateFactorColumns(), "cCode");
    }

protected:
    void mniMaintAddClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintAddClick(Sender);
        DoRateFactorAdd(0, false);
    }
    void mniMaintEditClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintEditClick(Sender);
        if (Grid()->RecordFocused(true))
            DoRateFactorAdd(FocusedID(), false);
    }
    void mniMaintCopyClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintCopyClick(Sender);
        if (Grid()->RecordFocused(true))
            DoRateFactorAdd(FocusedID(), true);
    }
    std::span<const TInUse> InUseTables() const override { return kInUse; }
    QString DeleteQuestion() const override
    {
        return "Delete Rate Factor \"" + qryRateFactors.GetDescription() + "\" ?";
    }
    bool CheckBeforeDelete() override { return CheckInUse(kInUse, kRateFactorInUse, qryRateFactors.GetDescription()); }
    void DeleteRecord() override
    {
        DeleteAndTell([this] {
            try {
                TDbTransaction transaction(MainConnection());
                MainConnection().Execute(
                    "delete from _btblNotes where cNOTETBLTableName = :table and fNOTETBLTableID = :id",
                    {{"table", qryRateFactors.NotesTableName()}, {"id", FocusedID()}});
                MainConnection().Execute("delete from _iptblRateFactors where idRateFactor = :id",
                                         {{"id", FocusedID()}});
                transaction.Commit();
                return true;
            } catch (const TDbError &error) {
                ShowException(error);
                return false;
            }
        });
    }

private:
    TqryIPRateFactors qryRateFactors;
};

} // namespace

void DoRateFactorsMaintenance(bool ShowModal, TList *SelectedList, bool MultiSelect)
{
    RunMaintenance<TfrmIPRateFactorsMaintenance>(ShowModal, SelectedList, MultiSelect);
}
