// SPDX-License-Identifier: Apache-2.0
#include "tax/IPSFSSScalesMaintenance.h"

#include "framework/forms/Vpmaintenancebaseform.h"
#include "records/IPSFSSScales.h"
#include "tax/IPSFSSScalesDlg.h"

namespace {

constexpr TMaintenanceFacts kSFSSScales{"TfrmIPSFSSScalesMaintenance",
                                        "SFSS Scales Maintenance",
                                        "SFSS Scales",
                                        "SFSS Scale List",
                                        "grdSFSSScales",
                                        1923,
                                        104350,
                                        9239};

const char kDeleteScale[] = "delete from _iptblSFSSScales where idSFSSScales = :id";
const char kDeleteBrackets[] = "delete from _iptblSFSSBrackets where iSFSSScalesID = :id";

const QList<TGridColumn> &SFSSColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idSFSSScales", "SFSS Scale ID", Kind::Integer, 80, false},
        {"cCode", "Code", Kind::Text, 110},
        {"cDescription", "Description", Kind::Text, 480},
        {"iTaxYear", "Tax Year", Kind::Integer, 90, false},
    };
    return columns;
}

class TfrmIPSFSSScalesMaintenance final : public TfrmMaintenanceBase
{
public:
    TfrmIPSFSSScalesMaintenance(QWidget *AOwner, bool NonModal, bool Visible)
        : TfrmMaintenanceBase(kSFSSScales, qrySFSSScales, AOwner, NonModal, Visible)
    {
        qrySFSSScales.SetSelectFields("idSFSSScales, cCode, cDescription");
        qrySFSSScales.SetLinkNotesField("idSFSSScales");
        Grid()->SetColumns(SFSSColumns(), "cCode");
    }

protected:
    void RefreshFilter() override { qrySFSSScales.RefreshTaxYear(); }
    void mniMaintAddClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintAddClick(Sender);
        DoSFSSScalesAdd(0, false);
    }
    void mniMaintEditClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintEditClick(Sender);
        if (Grid()->RecordFocused(true))
            DoSFSSScalesAdd(FocusedID(), false);
    }
    void mniMaintCopyClick(QObject *Sender) override
    {
        TfrmMaintenanceBase::mniMaintCopyClick(Sender);
        if (Grid()->RecordFocused(true))
            DoSFSSScalesAdd(FocusedID(), true);
    }

    QString DeleteQuestion() const override { return "Delete SFSS Scale \"" + qrySFSSScales.GetCode() + "\""; }
    void DeleteRecord() override
    {
        // No transaction: the brackets of a scale that is gone are of no use, but must not keep it from going.
        DeleteAndTell([this] {
            const int id = FocusedID();
            if (!qrySFSSScales.ExecuteThisSQL(kDeleteScale, true, {{"id", id}}))
                return false;
            qrySFSSScales.ExecuteThisSQL(kDeleteBrackets, true, {{"id", id}});
            return true;
        });
    }

private:
    TqryIPSFSSScales qrySFSSScales;
};

} // namespace

void DoSFSSScalesMaintenance(bool Modal, TList *SelectedList, bool MultiSelect)
{
    RunMaintenance<TfrmIPSFSSScalesMaintenance>(Modal, SelectedList, MultiSelect);
}
