// SPDX-License-Identifier: Apache-2.0
#include "tax/IPSFSSScalesDlg.h"

#include "framework/Kvglobal.h"
#include "records/IPSFSSScales.h"
#include "tax/ScaleDlg.h"

namespace {

constexpr TDialogFacts kSFSSScale{"TfrmSFSSScalesDlg",
                                  "Add / Edit SFSS Scales",
                                  "Add SFSS Scales",
                                  "Edit SFSS Scales \"%s\"",
                                  "Copy SFSS Scales \"%s\"",
                                  104390,
                                  9239,
                                  "SFSS Scale"};

constexpr TBracketFacts kSFSSBrackets{
    "SFSS Brackets",
    "You must save this Help/HECS Scale before continuing.\nDo you want to save it now?",
    "Are you sure you want to delete this SFSS Bracket?",
    "CoefficientA",
    "",
    "",
    true};

const char kMaxKey[] = "select Max(idSFSSScales) as iMaxScaleID from _iptblSFSSScales";
const char kDeleteBrackets[] = "delete from _iptblSFSSBrackets where iSFSSScalesID=:id and iTaxYear = :year";

const QList<TGridColumn> &BracketColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idSFSSBracket", "SFSS Bracket ID", Kind::Integer, 60},
        {"iSFSSScalesID", "SFSS Scale ID", Kind::Integer, 60},
        {"fWeeklyEarnings", "Weekly Earnings", Kind::Float, 130, true, true, 2},
        {"CoefficientA", "Coefficient A", Kind::Float, 100, true, true, 4},
    };
    return columns;
}

class TfrmSFSSScalesDlg final : public TfrmScaleDlg
{
public:
    TfrmSFSSScalesDlg()
        : TfrmScaleDlg(kSFSSScale, kSFSSBrackets, qrySFSSScales)
    {
        AddGroup("SFSS Scale")
            .Text(edtCode, "edtCode", "&Code", qrySFSSScales.Code)
            .Text(edtDescription, "edtDescription", "&Description", qrySFSSScales.Description);
        AddBracketsGroup(BracketColumns());
    }

protected:
    void FormShow() override
    {
        TfrmScaleDlg::FormShow();
        grdBrackets->SetColumnVisible(u"idSFSSBracket", false);
        grdBrackets->SetColumnVisible(u"iSFSSScalesID", false);
        FocusControl(edtCode);
    }

    // Whatever is typed is saved: codes may be empty and may stand twice.
    bool PassChecks() override { return true; }

    void SetSaveFields() override
    {
        const int year = TaxYear();
        TfrmScaleDlg::SetSaveFields();
        qrySFSSScales.SetTaxYear(year);
    }

    int NewKey() override { return MaxScaleKey(kMaxKey); }

    QList<QVariantMap> ReadBrackets() override
    {
        TqryIPSFSSBrackets qrySFSSBrackets;
        qrySFSSBrackets.SelectWhere("iSFSSScalesID = :scale and iTaxYear = :year",
                                    {{"scale", RecordID()}, {"year", TaxYear()}}, "fWeeklyEarnings");
        QList<QVariantMap> rows;
        for (bool more = !qrySFSSBrackets.IsEmpty(); more; more = qrySFSSBrackets.Next()) {
            rows.append({{"idSFSSBracket", qrySFSSBrackets.KeyValue()},
                         {"iSFSSScalesID", qrySFSSBrackets.GetScalesID()},
                         {"fWeeklyEarnings", qrySFSSBrackets.GetWeeklyEarnings()},
                         {"CoefficientA", qrySFSSBrackets.GetCoefficientA()}});
        }
        return rows;
    }

    void SaveChildren() override
    {
        const int id = qrySFSSScales.KeyValue();
        const int year = qrySFSSScales.GetTaxYear();
        qrySFSSScales.ExecuteThisSQL(kDeleteBrackets, false, {{"id", id}, {"year", year}});
        TqryIPSFSSBrackets qrySFSSBrackets;
        for (int row = 0; row < Brackets().Count(); ++row) {
            qrySFSSBrackets.brAppend(true);
            qrySFSSBrackets.SetKeyValue(GetIdxKey());
            qrySFSSBrackets.SetScalesID(id);
            qrySFSSBrackets.SetTaxYear(year);
            qrySFSSBrackets.SetWeeklyEarnings(Bracket(row, "fWeeklyEarnings"));
            qrySFSSBrackets.SetCoefficientA(Bracket(row, "CoefficientA"));
            qrySFSSBrackets.Post();
        }
    }

private:
    // Unlike other keys of the tax tables these start at 1.
    static int GetIdxKey() { return ::GetIdxKey("idSFSSBrackets", "_iptblSFSSBrackets", 0); }

    // A scale that exists keeps its year; a new one gets the current one.
    int TaxYear() const { return RecordID() != 0 ? qrySFSSScales.GetTaxYear() : GetEndTaxYear(); }

    TqryIPSFSSScales qrySFSSScales;
    QLineEdit *edtCode = nullptr;
    QLineEdit *edtDescription = nullptr;
};

} // namespace

void DoSFSSScalesAdd(int Id, bool Copy)
{
    RunRecordDialog<TfrmSFSSScalesDlg>(Id, Copy);
}
