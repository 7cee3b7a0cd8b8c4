// SPDX-License-Identifier: Apache-2.0
#include "tax/IPMedicareScalesMaintenance.h"

#include "framework/forms/Vpmaintenancebaseform.h"
#include "records/IPMedicareScales.h"
#include "tax/IPMedicareScalesDlg.h"

namespace {

constexpr TMaintenanceFacts kMedicareScales{"TfrmMedicareScalesMaint",
                                            "Medicare Maintenance",
                                            "Medicare Scales",
                                            "Medicare Scale List",
                                            "grdMedicareScales",
                                            1917,
                                            104300,
                                            9230};

const char kMedicareInUse[] = "Unable to delete Medicare Scale \"%s\", as it is in use!";
constexpr TInUse kInUse[] = {
    {"_iptblTaxScales", "iMedicareScalesID", "Tax Scales"},
};

const char kDeleteScale[] = "delete from _iptblMedicareScales where idMedicareScales = :id";

const QList<TGridColumn> &MedicareColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idMedicareScales", "Medicare Scale ID", Kind::Integer, 80, false},
        {"cCode", "Code", Kind::Text, 100},
        {"cMedicareScaleDescription", "Description", Kind::Text, 380},
        {"fWeeklyEarningsThreshold", "Weekly Earnings Threshold", Kind::Float, 170, false, true, 4},
        {"fWeeklyEarningsShadeInThreshold", "Weekly Earnings Shadein Threshold", Kind::Float, 220, false, true, 4},
        {"fFamilyThreshold", "Family Threshold", Kind::Float, 120, false, true, 4},
        {"fWFTDivisor", "WFT Divisor", Kind::Float, 100, false, true, 4},
        {"fAdditionalChildAllowance", "Additional Child Allowance", Kind::Float, 170, false, true, 4},
        {"fSOPMultiplier", "SOP Multiplier", Kind::Float, 110, false, true, 4},
        {"fSOPDivisor", "SOP Divisor", Kind::Float, 100, false, true, 4},
        {"fWLAFactor", "WLA Factor", Kind::Float, 100, false, true, 4},
        {"fAdjustmentLevy", "Adjustment Levy", Kind::Float, 110, false, true, 4},
    };
    return columns;
}

class TfrmMedicareScalesMaint final : public TfrmMaintenanceBase
{
public:
    TfrmMedicareScalesMaint(QWidget *AOwner, bool NonModal, bool Visible)
        : TfrmMaintenanceBase(kMedicareScales, qryMedicareScales, AOwner, NonModal, Visible)
    {
        qryMedicareScales.SetSelectFields("cCode, idMedicareScales, cMedicareScaleDescription");
        qryMedicareScales.SetLinkNotesField("idMedicareScales");
        Grid()->SetColumns(MedicareColumns(), "cCode");
    }

protected:
    void RefreshFilter() override { qryMedicareScales.RefreshTaxYear(); }
    void mniMaintAddClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintAddClick(Sender);
        DoMedicareScalesAdd(0, false);
    }
    void mniMaintEditClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintEditClick(Sender);
        if (Grid()->RecordFocused(true))
            DoMedicareScalesAdd(FocusedID(), false);
    }
    void mniMaintCopyClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintCopyClick(Sender);
        if (Grid()->RecordFocused(true))
            DoMedicareScalesAdd(FocusedID(), true);
    }

    QString DeleteQuestion() const override
    {
        return "Delete Medicare Scales \"" + qryMedicareScales.GetCode() + "\"?";
    }
    std::span<const TInUse> InUseTables() const override { return kInUse; }
    bool CheckBeforeDelete() override { return CheckInUse(kInUse, kMedicareInUse, qryMedicareScales.GetCode()); }
    void DeleteRecord() override
    {
        DeleteAndTell([this] { return qryMedicareScales.ExecuteThisSQL(kDeleteScale, true, {{"id", FocusedID()}}); });
    }

private:
    TQryIPMedicareScales qryMedicareScales;
};

} // namespace

void DoMedicareScalesMaintenance(bool Modal, TList *SelectedList, bool MultiSelect)
{
    RunMaintenance<TfrmMedicareScalesMaint>(Modal, SelectedList, MultiSelect);
}
