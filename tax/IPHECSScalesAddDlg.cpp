// SPDX-License-Identifier: Apache-2.0
#include "tax/IPHECSScalesAddDlg.h"

#include "framework/Kvglobal.h"
#include "records/IPHECSScales.h"
#include "tax/ScaleDlg.h"

namespace {

constexpr TDialogFacts kHECSScale{"TfrmIPHECSScalesAddDlg",
                                  "Add / Edit STSL Scales",
                                  "Add New STSL Scale",
                                  "Edit Study and Training Support Loan (STSL) Scale \"%s\"",
                                  "Copy STSL Scale \"%s\"",
                                  104290,
                                  9254,
                                  "STSL Scale"};

constexpr TBracketFacts kHECSBrackets{"STSL Brackets",
                                      "You must save this STSL Scale before continuing.\nDo you want to save it now?",
                                      "Are you sure you want to delete this STSL Bracket?",
                                      "CoefficientA",
                                      "CoefficientB",
                                      "",
                                      true};

const char kMaxKey[] = "select Max(idHECSScales) as iMaxScaleID from _iptblHECSScales";
const char kDeleteBrackets[] = "delete from _iptblHECSBrackets where iHECSScalesID=:id and iTaxYear = :year";

const QList<TGridColumn> &BracketColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idHECSBracket", "STSL Bracket ID", Kind::Integer, 60},
        {"iHECSScalesID", "STSL Scale ID", Kind::Integer, 60},
        {"fWeeklyEarnings", "Weekly Earnings", Kind::Float, 130, true, true, 2},
        {"CoefficientA", "Coefficient A", Kind::Float, 100, true, true, 4},
        {"CoefficientB", "Coefficient B", Kind::Float, 100, true, true, 4},
    };
    return columns;
}

class TfrmIPHECSScalesAddDlg final : public TfrmScaleDlg
{
public:
    TfrmIPHECSScalesAddDlg()
        : TfrmScaleDlg(kHECSScale, kHECSBrackets, qryHECSScales)
    {
        AddGroup("STSL Scale")
            .Text(edtCode, "edtCode", "&Code", qryHECSScales.Code)
            .Text(edtDescription, "edtDescription", "&Description", qryHECSScales.Description);
        AddBracketsGroup(BracketColumns());
    }

protected:
    void FormShow() override
    {
        TfrmScaleDlg::FormShow();
        grdBrackets->SetColumnVisible(u"idHECSBracket", false);
        grdBrackets->SetColumnVisible(u"iHECSScalesID", false);
        FocusControl(edtCode);
    }

    // Whatever is typed is saved: codes may be empty and may stand twice.
    bool PassChecks() override { return true; }

    void SetSaveFields() override
    {
        const int year = TaxYear();
        TfrmScaleDlg::SetSaveFields();
        qryHECSScales.SetTaxYear(year);
    }

    int NewKey() override { return MaxScaleKey(kMaxKey); }

    QList<QVariantMap> ReadBrackets() override
    {
        TqryIPHECSBrackets qryHECSBrackets;
        qryHECSBrackets.SelectWhere("iHECSScalesID = :scale and iTaxYear = :year",
                                    {{"scale", RecordID()}, {"year", TaxYear()}}, "fWeeklyEarnings");
        QList<QVariantMap> rows;
        for (bool more = !qryHECSBrackets.IsEmpty(); more; more = qryHECSBrackets.Next()) {
            rows.append({{"idHECSBracket", qryHECSBrackets.KeyValue()},
                         {"iHECSScalesID", qryHECSBrackets.GetScalesID()},
                         {"fWeeklyEarnings", qryHECSBrackets.GetWeeklyEarnings()},
                         {"CoefficientA", qryHECSBrackets.GetCoefficientA()},
                         {"CoefficientB", qryHECSBrackets.GetCoefficientB()}});
        }
        return rows;
    }

    void SaveChildren() override
    {
        const int id = qryHECSScales.KeyValue();
        const int year = qryHECSScales.GetTaxYear();
        qryHECSScales.ExecuteThisSQL(kDeleteBrackets, false, {{"id", id}, {"year", year}});
        TqryIPHECSBrackets qryHECSBrackets;
        for (int row = 0; row < Brackets().Count(); ++row) {
            qryHECSBrackets.brAppend(true);
            qryHECSBrackets.SetKeyValue(GetIdxKey());
            qryHECSBrackets.SetScalesID(id);
            qryHECSBrackets.SetTaxYear(year);
            qryHECSBrackets.SetWeeklyEarnings(Bracket(row, "fWeeklyEarnings"));
            qryHECSBrackets.SetCoefficientA(Bracket(row, "CoefficientA"));
            qryHECSBrackets.SetCoefficientB(Bracket(row, "CoefficientB"));
            qryHECSBrackets.Post();
        }
    }

private:
    // Unlike other keys of the tax tables these start at 1.
    static int GetIdxKey() { return ::GetIdxKey("idHECSBrackets", "_iptblHECSBrackets", 0); }

    // A scale that exists keeps its year; a new one gets the current one.
    int TaxYear() const { return RecordID() != 0 ? qryHECSScales.GetTaxYear() : GetEndTaxYear(); }

    TqryIPHECSScales qryHECSScales;
    QLineEdit *edtCode = nullptr;
    QLineEdit *edtDescription = nullptr;
};

} // namespace

void DoHECSScalesAdd(int Id, bool Copy)
{
    RunRecordDialog<TfrmIPHECSScalesAddDlg>(Id, Copy);
}
