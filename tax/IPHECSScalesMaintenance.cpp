// SPDX-License-Identifier: Apache-2.0
#include "tax/IPHECSScalesMaintenance.h"

#include "framework/forms/Vpmaintenancebaseform.h"
#include "records/IPHECSScales.h"
#include "tax/IPHECSScalesAddDlg.h"

namespace {

constexpr TMaintenanceFacts kHECSScales{"TfrmIPHECSScalesMaintenance",
                                        "STSL Scales Maintenance",
                                        "STSL Scales",
                                        "STSL Scale List",
                                        "grdHECSScales",
                                        1913,
                                        104250,
                                        9254};

const char kDeleteScale[] = "delete from _iptblHECSScales where idHECSScales = :id";
const char kDeleteBrackets[] = "delete from _iptblHECSBrackets where iHECSScalesID  = :id";

const QList<TGridColumn> &HECSColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idHECSScales", "STSL Scale ID", Kind::Integer, 80, false},
        {"cCode", "Code", Kind::Text, 110},
        {"cDescription", "Description", Kind::Text, 480},
        {"iTaxYear", "Tax Year", Kind::Integer, 90},
    };
    return columns;
}

class TfrmIPHECSScalesMaintenance final : public TfrmMaintenanceBase
{
public:
    TfrmIPHECSScalesMaintenance(QWidget *AOwner, bool NonModal, bool Visible)
        : TfrmMaintenanceBase(kHECSScales, qryHECSScales, AOwner, NonModal, Visible)
    {
        qryHECSScales.SetSelectFields("idHECSScales, cCode, cDescription");
        qryHECSScales.SetLinkNotesField("idHECSScales");
        Grid()->SetColumns(HECSColumns(), "cCode");
    }

protected:
    void RefreshFilter() override { qryHECSScales.RefreshTaxYear(); }
    void mniMaintAddClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintAddClick(Sender);
        DoHECSScalesAdd(0, false);
    }
    void mniMaintEditClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintEditClick(Sender);
        if (Grid()->RecordFocused(true))
            DoHECSScalesAdd(FocusedID(), false);
    }
    void mniMaintCopyClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintCopyClick(Sender);
        if (Grid()->RecordFocused(true))
            DoHECSScalesAdd(FocusedID(), true);
    }

    QString DeleteQuestion() const override { return "Delete STSL Scale \"" + qryHECSScales.GetCode() + "\""; }
    void DeleteRecord() override
    {
        // No transaction: the brackets of a scale that is gone are of no use, but must not keep it from going.
        DeleteAndTell([this] {
            const int id = FocusedID();
            if (!qryHECSScales.ExecuteThisSQL(kDeleteScale, true, {{"id", id}}))
                return false;
            qryHECSScales.ExecuteThisSQL(kDeleteBrackets, true, {{"id", id}});
            return true;
        });
    }

private:
    TqryIPHECSScales qryHECSScales;
};

} // namespace

void DoHECSScalesMaintenance(bool Modal, TList *SelectedList, bool MultiSelect)
{
    RunMaintenance<TfrmIPHECSScalesMaintenance>(Modal, SelectedList, MultiSelect);
}
