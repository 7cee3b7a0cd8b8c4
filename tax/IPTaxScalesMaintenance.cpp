// SPDX-License-Identifier: Apache-2.0
#include "tax/IPTaxScalesMaintenance.h"

#include "framework/Ipglobal.h"
#include "framework/forms/Vpmaintenancebaseform.h"
#include "records/PRTaxScales.h"
#include "tax/IPTaxScalesAddDlg.h"

namespace {

constexpr TMaintenanceFacts kTaxScales{"TfrmIPTaxScalesMaintenance",
                                       "Tax Scales Maintenance",
                                       "Tax Scales",
                                       "Tax Scale List",
                                       "grdTaxScales",
                                       1930,
                                       104400,
                                       9245};

const char kTaxScaleInUse[] = "Unable to delete Tax Scale \"%s\", as it is in use by the %s!";
constexpr TInUse kInUse[] = {
    {"_iptblEmployee", "iTaxScalesID", "Employees"},
};

const char kDeleteBrackets[] = "delete from _iptblTaxBrackets where iTaxScalesID = :id";
const char kDeleteScale[] = "delete from _iptblTaxScales where idTaxScales = :id";

const QList<TGridColumn> &TaxScaleColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idTaxScales", "Tax Scale ID", Kind::Integer, 80, false},
        {"cCode", "Code", Kind::Text, 100},
        {"cDescription", "Description", Kind::Text, 320},
        {"bIncludeLeaveLoading", "Leave Loading", Kind::Bool, 110},
        {"bUserDefinable", "User Definable", Kind::Bool, 110, false},
        {"bRatesApplicable", "Rates Applicable", Kind::Bool, 120, false},
        {"iMedicareScalesID", "Medicare Scale ID", Kind::Integer, 120, false},
    };
    return columns;
}

class TfrmIPTaxScalesMaintenance final : public TfrmMaintenanceBase
{
public:
    TfrmIPTaxScalesMaintenance(QWidget *AOwner, bool NonModal, bool Visible)
        : TfrmMaintenanceBase(kTaxScales, qryTaxScales, AOwner, NonModal, Visible)
    {
        qryTaxScales.SetSelectFields("cCode, bUserDefinable");
        qryTaxScales.SetLinkNotesField("idTaxScales");
        Grid()->SetColumns(TaxScaleColumns(), "cCode");
    }

protected:
    void DoShow() override
    {
        TfrmMaintenanceBase::DoShow();
        if (CountryCode == kAustralia)
            return;
        // What only Australian scales have.
        for (const QStringView field : {u"bIncludeLeaveLoading", u"bRatesApplicable", u"iMedicareScalesID"})
            Grid()->SetColumnVisible(field, false, false);
    }
    void RefreshFilter() override { qryTaxScales.RefreshTaxProperties(); }
    void mniMaintAddClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintAddClick(Sender);
        DoTaxScalesAdd(0, false);
    }
    void mniMaintEditClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintEditClick(Sender);
        if (Grid()->RecordFocused(true))
            DoTaxScalesAdd(FocusedID(), false);
    }
    void mniMaintCopyClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintCopyClick(Sender);
        if (Grid()->RecordFocused(true))
            DoTaxScalesAdd(FocusedID(), true);
    }

    QString DeleteQuestion() const override { return "Delete Tax Scale \"" + qryTaxScales.GetCode() + "\" ?"; }
    std::span<const TInUse> InUseTables() const override { return kInUse; }
    bool CheckBeforeDelete() override { return CheckDelete(); }
    void DeleteRecord() override
    {
        DeleteAndTell([this] {
            try {
                TDbTransaction transaction(MainConnection());
                qryTaxScales.ExecuteThisSQL(kDeleteBrackets, false, {{"id", FocusedID()}});
                qryTaxScales.ExecuteThisSQL(kDeleteScale, false, {{"id", FocusedID()}});
                transaction.Commit();
                return true;
            } catch (const TDbError &error) {
                PresentError(error);
                return false;
            }
        });
    }

private:
    bool CheckDelete()
    {
        if (!qryTaxScales.GetUserDefinable() || !TaxScaleEditable(qryTaxScales.GetCode(), false)) {
            InfoMessage("Cannot delete this Tax Scale as it is specifed by the ATO!");
            return false;
        }
        return CheckInUse(kInUse, kTaxScaleInUse, qryTaxScales.GetCode());
    }

    TADOQryPRTaxScales qryTaxScales;
};

} // namespace

void DoTaxScalesMaintenance(bool Modal, TList *SelectedList, bool MultiSelect)
{
    RunMaintenance<TfrmIPTaxScalesMaintenance>(Modal, SelectedList, MultiSelect);
}
