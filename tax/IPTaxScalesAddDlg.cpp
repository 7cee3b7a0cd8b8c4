// SPDX-License-Identifier: Apache-2.0
#include "tax/IPTaxScalesAddDlg.h"

#include "framework/Ipglobal.h"
#include "framework/Kvglobal.h"
#include "records/PRTaxScales.h"
#include "tax/ScaleDlg.h"

namespace {

constexpr TDialogFacts kTaxScale{"TfrmIPTaxScalesAddDlg",
                                 "Add / Edit Tax Scales",
                                 "Add New Tax Scale",
                                 "Edit Tax Scale \"%s\"",
                                 "Copy Tax Scale \"%s\"",
                                 104490,
                                 9245,
                                 "Tax Scale"};

constexpr TBracketFacts kTaxBrackets{"Tax Brackets",
                                     "You must save this Tax Scale before continuing.\nDo you want to save it now?",
                                     "Are you sure you want to delete this Tax Bracket?",
                                     "fCoefficientA",
                                     "fCoefficientB",
                                     "fCoefficientC",
                                     false};

const char kMedicareID[] = "select idMedicareScales from _iptblMedicareScales where cCode = :code and iTaxYear = :year";
const char kDeleteBrackets[] = "delete from _iptblTaxBrackets where cTaxScaleCode=:code and iBracketTaxYear = :year";

const QList<TGridColumn> &BracketColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"idTaxBrackets", "Tax Bracket ID", Kind::Integer, 60, false},
        {"fWeeklyEarnings", "Weekly Earnings", Kind::Float, 130, true, true, 2},
        {"fCoefficientA", "Coefficient A", Kind::Float, 100, true, true, 4},
        {"fCoefficientB", "Coefficient B", Kind::Float, 100, true, true, 4},
        {"fCoefficientC", "Coefficient C", Kind::Float, 100, false, true, 4},
    };
    return columns;
}

class TfrmIPTaxScalesAddDlg final : public TfrmScaleDlg
{
public:
    TfrmIPTaxScalesAddDlg()
        : TfrmScaleDlg(kTaxScale, kTaxBrackets, qryTaxScales)
    {
        AddGroup("Tax Scale")
            .Text(edtCode, "edtCode", "&Code", qryTaxScales.Code)
            .Text(edtDescription, "edtDescription", "&Description", qryTaxScales.Description)
            .Lookup(cbxMedicareLookup, "cbxMedicareLookup", "&Medicare Scale", MedicareLookup(GetEndTaxYear()))
            .Check(chkRebatesApplicable, "chkRebatesApplicable", "&Rebates Applicable", qryTaxScales.RatesApplicable)
            .Check(chkIncludeLeaveLoading, "chkIncludeLeaveLoading", "Include Leave &Loading",
                   qryTaxScales.IncludeLeaveLoading);
        // Scales of the tax office's are only looked at: they must be legible all the same.
        ShowReadable(edtCode);
        ShowReadable(edtDescription);
        AddBracketsGroup(BracketColumns());
    }

protected:
    void SetEditFields() override
    {
        TfrmScaleDlg::SetEditFields();
        // The year is read once, whatever happens to the settings while the dialog is open.
        endTaxYear_ = GetEndTaxYear();
        SetMedicare();
    }

    void FormShow() override
    {
        TfrmScaleDlg::FormShow();
        if (CountryCode != kAustralia) {
            for (QWidget *control :
                 std::initializer_list<QWidget *>{cbxMedicareLookup, chkRebatesApplicable, chkIncludeLeaveLoading})
                fields.SetVisible(control, false);
            Brackets().SetCaption(u"fWeeklyEarnings", "Yearly Earnings");
            grdBrackets->SetColumnVisible(u"fCoefficientC", true);
        }
        if (DoCopyRecord())
            SetMedicare(); // the copy belongs to another year than the scale that it was read from may do
        FocusControl(RecordID() != 0 ? edtDescription : edtCode);
    }

    void SetControls() override
    {
        const bool existing = RecordID() != 0;
        const bool editable = BracketsEditable();
        for (const TFieldBinding &binding : fields.Fields())
            fields.SetEnabled(binding.control, editable);
        for (QWidget *control : std::initializer_list<QWidget *>{grdBrackets, btnAdd, btnEdit, btnDelete})
            control->setEnabled(editable);
        if (existing)
            fields.SetEnabled(edtCode, false);
        QFont font = edtCode->font();
        font.setBold(existing);
        edtCode->setFont(font);
    }

    // A scale that exists under a code of the tax office's is only looked at; a copy of one is not that scale.
    bool BracketsEditable() const override
    {
        return RecordID() == 0 || TaxScaleEditable(qryTaxScales.GetCode(), false);
    }

    void CheckCode(TChecks &check) override
    {
        check(edtCode, NoApostrophe(edtCode), "The Tax Scale Code is invalid!");
        check(
            edtCode,
            [this] {
                return !qryTaxScales.RecordsExistCriteria(
                    "idTaxScales <> :id and iTaxYear = :year and iCountry = :country and cCode = :code",
                    {{"id", RecordID()},
                     {"year", TaxYear()},
                     {"country", int(CountryCode)},
                     {"code", edtCode->text().trimmed()}});
            },
            "The Tax Scale Code already exists!");
    }

    void ValidateInformation(TChecks &check) override
    {
        check(edtCode, NotBlank(edtCode), "The Tax Scale Code may not be blank!");
        check(edtDescription, NotBlank(edtDescription), "The Tax Scale Description may not be blank!");
    }

    bool PassChecks() override { return !BracketsEditable() || TfrmScaleDlg::PassChecks(); }

    bool SaveRecord() override
    {
        if (BracketsEditable())
            return TfrmScaleDlg::SaveRecord();
        qryTaxScales.Cancel();
        return true;
    }

    void SetSaveFields() override
    {
        const int year = TaxYear();
        TfrmScaleDlg::SetSaveFields();
        qryTaxScales.SetUserDefinable(TaxScaleEditable(edtCode->text().trimmed(), false));
        qryTaxScales.SetTaxYear(year);
        if (RecordID() == 0)
            qryTaxScales.SetCountry(CountryCode);
        const QString medicareCode =
            cbxMedicareLookup->Key() == 0 ? QString("") : cbxMedicareLookup->Field(u"cCode").toString().trimmed();
        qryTaxScales.SetMedicareScaleCode(medicareCode);
        qryTaxScales.SetMedicareScalesID(medicareCode.isEmpty() ? 0 : MedicareID(medicareCode));
    }

    int NewKey() override { return GetIdxKey(true); }

    QList<QVariantMap> ReadBrackets() override
    {
        TADOQryPRTaxBrackets qryTaxBrackets;
        qryTaxBrackets.SelectWhere("iTaxScalesID = :scale and iBracketTaxYear = :year",
                                   {{"scale", RecordID()}, {"year", TaxYear()}}, "TaxBracket");
        QList<QVariantMap> rows;
        for (bool more = !qryTaxBrackets.IsEmpty(); more; more = qryTaxBrackets.Next()) {
            rows.append({{"idTaxBrackets", qryTaxBrackets.KeyValue()},
                         {"fWeeklyEarnings", qryTaxBrackets.GetTaxBracket()},
                         {"fCoefficientA", qryTaxBrackets.GetTaxPercentage()},
                         {"fCoefficientB", qryTaxBrackets.GetTaxAmount()},
                         {"fCoefficientC", qryTaxBrackets.GetCoefficientC()}});
        }
        return rows;
    }

    void SaveChildren() override
    {
        qryTaxScales.ExecuteThisSQL(kDeleteBrackets, false,
                                    {{"code", qryTaxScales.GetCode()}, {"year", qryTaxScales.GetTaxYear()}});
        TADOQryPRTaxBrackets qryTaxBrackets;
        for (int row = 0; row < Brackets().Count(); ++row) {
            qryTaxBrackets.brAppend(true);
            qryTaxBrackets.SetKeyValue(GetIdxKey(false));
            qryTaxBrackets.SetTaxScalesID(qryTaxScales.GetTaxScalesID());
            qryTaxBrackets.SetTaxScaleCode(qryTaxScales.GetCode());
            qryTaxBrackets.SetBracketTaxYear(qryTaxScales.GetTaxYear());
            qryTaxBrackets.SetTaxBracket(Bracket(row, "fWeeklyEarnings"));
            qryTaxBrackets.SetTaxPercentage(Bracket(row, "fCoefficientA"));
            qryTaxBrackets.SetTaxAmount(Bracket(row, "fCoefficientB"));
            qryTaxBrackets.SetCoefficientC(Bracket(row, "fCoefficientC"));
            qryTaxBrackets.Post();
        }
    }

private:
    static TLookupSource MedicareLookup(int year)
    {
        TLookupSource source;
        source.from = "_iptblMedicareScales";
        source.key = "idMedicareScales";
        source.columns = {{"cCode", "Code"}, {"cMedicareScaleDescription", "Description"}};
        source.where = "iTaxYear = :year";
        source.params = {{"year", year}};
        return source;
    }

    static int GetIdxKey(bool Master)
    {
        return Master ? ::GetIdxKey("idTaxScales", "_iptblTaxScales")
                      : ::GetIdxKey("idTaxBrackets", "_iptblTaxBrackets");
    }

    // A scale that exists keeps its year; a new one gets the dialog's.
    int TaxYear() const { return RecordID() != 0 ? qryTaxScales.GetTaxYear() : endTaxYear_; }

    int MedicareID(const QString &code) const
    {
        const TDbRows rows = MainConnection().Select(kMedicareID, {{"code", code}, {"year", TaxYear()}});
        return rows.isEmpty() ? 0 : rows.Value(0, u"idMedicareScales").toInt();
    }

    void SetMedicare()
    {
        const QString code = qryTaxScales.GetMedicareScaleCode().trimmed();
        cbxMedicareLookup->SetKey(0);
        cbxMedicareLookup->SetSource(MedicareLookup(TaxYear()));
        cbxMedicareLookup->SetKey(code.isEmpty() ? 0 : MedicareID(code));
    }

    TADOQryPRTaxScales qryTaxScales;
    int endTaxYear_ = 0;
    QLineEdit *edtCode = nullptr;
    QLineEdit *edtDescription = nullptr;
    TqsLookupCombo *cbxMedicareLookup = nullptr;
    QCheckBox *chkRebatesApplicable = nullptr;
    QCheckBox *chkIncludeLeaveLoading = nullptr;
};

} // namespace

void DoTaxScalesAdd(int Id, bool Copy)
{
    RunRecordDialog<TfrmIPTaxScalesAddDlg>(Id, Copy);
}
