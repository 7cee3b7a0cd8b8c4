// SPDX-License-Identifier: Apache-2.0
#include "paystructure/IPRateTypeAddDlg.h"

#include <QAction>

#include "framework/Ipglobal.h"
#include "framework/Kvglobal.h"
#include "framework/Screens.h"
#include "framework/effectivedate/DateEffectiveDlg.h"
#include "paystructure/RateTypeRules.h"
#include "records/IPRateTypes.h"

namespace {

constexpr TDialogFacts kRateType{"TfrmIPRateTypeAddDlg",
                                 "Add / Edit Rate Types",
                                 "Add New Rate Type",
                                 "Edit Rate Type \"%s\"",
                                 "Copy Rate Type \"%s\"",
                                 103590,
                                 9411,
                                 "Rate Type"};

class TfrmIPRateTypeAddDlg final : public TfrmDateEffectiveDlg
{
public:
    TfrmIPRateTypeAddDlg()
        : TfrmDateEffectiveDlg(kRateType, kRateTypeDates, qryVersion, qryRateTypes)
    {
        AddGroup("Rate Type")
            .Text(edtCode, "edtCode", "&Code", qryVersion.Code)
            .Text(edtDescription, "edtDescription", "&Description", qryVersion.Description)
            .Radio(rgpType, {"rbFixed", "rbFormula", "rbAward"}, {"Fi&xed", "For&mula", "A&ward"}, qryVersion.Type)
            .Number(edtFixedRate, "edtFixedRate", "&Fixed Rate", qryVersion.Rate, 4)
            .Lookup(cbxFormula, "cbxFormula", "F&ormula", qryVersion.FormulaID, FormulaLookup())
            .Lookup(cbxRateFactor, "cbxRateFactor", "Rate Fac&tor", qryVersion.RateFactorID, RateFactorLookup())
            .Choice(cbxHoursWorked, "cbxHoursWorked", "&Hours Worked", qryVersion.HoursWorked, HourTypesString())
            .Choice(cbxGrouping, "cbxGrouping", "&Grouping", qryVersion.Grouping, TRateGroupingString())
            .Check(chkActive, "chkActive", "Acti&ve", qryVersion.Active);
        AddEffectiveDateGroup(qryVersion.EffectiveDate, qryVersion.ChangeReasonID);
        pnlAward = AddGroup("&Award")
                       .Text(edtAwardCode, "edtAwardCode", "Award Code", 10)
                       .Text(edtAwardName, "edtAwardName", "Award Name", 50)
                       .Box();
        pnlAward->setObjectName("pnlAward");
        for (QLineEdit *edit : {edtAwardCode, edtAwardName})
            edit->setReadOnly(true);
        for (QLineEdit *edit : {edtCode, edtDescription, edtAwardCode, edtAwardName})
            ShowReadable(edit);
        connect(rgpType, &TqsRadioGroup::ValueChanged, this, &TfrmIPRateTypeAddDlg::RateTypeChanged);
        connect(edtCode, &QLineEdit::textChanged, this, &TfrmIPRateTypeAddDlg::CheckCodeCharacters);
    }

    bool IsSystem() const { return !Adding() && qryVersion.GetSystem(); }

protected:
    void SetEditFields() override
    {
        TfrmDateEffectiveDlg::SetEditFields();
        FRateTypeID = RecordID();
        FAwardTDID = qryVersion.IsEmpty() ? 0 : qryVersion.GetAwardTDID();
        lOldRate = qryVersion.IsEmpty() ? 0 : qryVersion.GetRate();
        if (qryVersion.IsEmpty()) {
            chkActive->setChecked(true);
            cbxHoursWorked->setCurrentIndex(0);
            cbxGrouping->setCurrentIndex(0);
            rgpType->SetValue(FixedRate);
        }
        const TDbRows award = MainConnection().Select(
            "select A.cCode, A.cAwardName from _iptblAwards_TD T inner join _iptblAwards A on A.idAward = T.iAwardID "
            "where T.idAwardTD = :award",
            {{"award", FAwardTDID}});
        if (!award.isEmpty()) {
            edtAwardCode->setText(award.Value(0, u"cCode").toString());
            edtAwardName->setText(award.Value(0, u"cAwardName").toString());
        }
    }

    void FormShow() override
    {
        TfrmDateEffectiveDlg::FormShow();
        if (Adding())
            FRateTypeID = 0;
        const bool award = rgpType->Value() == AwardRate;
        rgpType->Button(AwardRate)->setVisible(award);
        pnlAward->setVisible(award);
        const bool values = MayChange().values && !award;
        for (QWidget *control : QList<QWidget *>{rgpType, edtFixedRate})
            fields.SetEnabled(control, values);
        for (QWidget *control : QList<QWidget *>{cbxFormula, cbxRateFactor, cbxHoursWorked})
            fields.SetEnabled(control, MayChange().values);
        for (QWidget *control : QList<QWidget *>{edtDescription, cbxGrouping, chkActive})
            fields.SetEnabled(control, MayChange().description);
        RateTypeChanged();
        shownRate_ = edtFixedRate->Value();

        const bool lockCode = !Adding() && !HasUnpostedTransactions();
        QFont font = edtCode->font();
        font.setBold(lockCode);
        edtCode->setFont(font);
        fields.SetEnabled(edtCode, !lockCode);
        FocusControl(!lockCode                     ? static_cast<QWidget *>(edtCode)
                     : edtDescription->isEnabled() ? static_cast<QWidget *>(edtDescription)
                                                   : edtChangeReason);
        adjustSize();
    }

    bool PassChecks() override
    {
        return RunChecks(
            [this](TChecks &check) {
                CheckRequiredFields(check);
                CheckDates(check);
            },
            &WarnMessage);
    }

    void SetSaveFields() override
    {
        TfrmDateEffectiveDlg::SetSaveFields();
        // A rate of more decimals than are shown keeps them until it is changed.
        if (!bChanged())
            qryVersion.SetRate(lOldRate);
        if (rgpType->Value() == FormulaRate)
            qryVersion.SetRate(0);
        else if (qryVersion.GetFormulaID() != 0)
            qryVersion.FormulaID.SetNull();
    }

    bool ValuesChange() const override
    {
        return bChanged() || rgpType->Value() != qryVersion.GetType() ||
               cbxFormula->Key() != qryVersion.GetFormulaID() || cbxRateFactor->Key() != qryVersion.GetRateFactorID() ||
               cbxHoursWorked->currentIndex() != qryVersion.GetHoursWorked();
    }

    int AwardTDID() const override { return FAwardTDID; }

    void VersionBackDated() override
    {
        InfoMessage(FormatText("Additional Rate \"%s\" has been back-dated", {edtCode->text().trimmed()}));
    }

    void FormCloseQuery(int result, bool &CanClose) override
    {
        if (result == QDialog::Accepted && IsSystem()) {
            qryVersion.Cancel();
            return;
        }
        TfrmDateEffectiveDlg::FormCloseQuery(result, CanClose);
        // Pay classes take the rate over whatever the checks said.
        if (result == QDialog::Accepted)
            UpdatePayClasses();
    }

private:
    // What is shown, and what is locked, follows from the kind of rate.
    void RateTypeChanged()
    {
        const int kind = rgpType->Value();
        fields.SetVisible(cbxFormula, kind == FormulaRate);
        fields.SetVisible(edtFixedRate, kind != FormulaRate);
        fields.SetCaption(edtFixedRate, kind == AwardRate ? "Percentage" : "&Fixed Rate");
        edtFixedRate->SetSuffix(kind == AwardRate ? "%" : "");
        edtFixedRate->SetDecimals(kind == AwardRate ? 2 : Installation().rateDecimals);
    }

    void CheckCodeCharacters()
    {
        if (!mniCodeInvalid_) {
            mniCodeInvalid_ = edtCode->addAction(ScreenIcon("alert"), QLineEdit::TrailingPosition);
            mniCodeInvalid_->setObjectName("mniCodeInvalid");
            mniCodeInvalid_->setToolTip("An apostrophe cannot stand in a code.");
        }
        mniCodeInvalid_->setVisible(!NoApostrophe(edtCode));
    }

    void CheckRequiredFields(TChecks &check) const
    {
        const QString code = edtCode->text().trimmed();
        // A code that was changed is as new as that of a new record.
        const bool newCode = Adding() || code.compare(RecordCode(), Qt::CaseInsensitive) != 0;
        check(
            edtCode, [&] { return !newCode || !OtherRateType(code); }, "The Rate Type already exists.");
        check(edtCode, !newCode || NoApostrophe(edtCode), "The Rate Type Code is invalid!");
        check(edtCode, NotBlank(edtCode), "The Code may not be blank.");
        check(edtDescription, NotBlank(edtDescription), "The Description may not be blank.");
        check(cbxFormula, rgpType->Value() != FormulaRate || cbxFormula->Key() != 0, "Please select a Formula.");
    }

    bool bChanged() const { return edtFixedRate->Value() != shownRate_; }

    bool OtherRateType(const QString &code) const
    {
        return qryRateTypes.RecordsExistCriteria("cCode = :code and idRateType <> :id",
                                                 {{"code", code}, {"id", MasterID()}});
    }

    bool HasUnpostedTransactions() const
    {
        return TCorvexADOQuery("_iptblEmployeeTrans", "idEmployeeTrans")
            .RecordsExistCriteria(QString::asprintf("iRateTypeID = %d and bPosted = 0", MasterID()));
    }

    void UpdatePayClasses()
    {
        const double rate = qryRateTypes.IsEmpty() ? lOldRate : qryRateTypes.GetRate();
        // Keyed by the version's id, though pay classes name the master: installations count on it.
        qryRateTypes.ExecuteThisSQL(
            QString::asprintf("update dbo._iptblPayClassAddRates_TD set fRate = %.*f where iRateTypeID = %d",
                              Installation().rateDecimals, rate, FRateTypeID),
            true);
    }

    TqryIPRateTypeVersions qryVersion;
    TqryIPRateTypes qryRateTypes;
    int FRateTypeID = 0; // the version that the dialog was opened with
    int FAwardTDID = 0;
    double lOldRate = 0;
    double shownRate_ = 0; // lOldRate as the rate field shows it
    QLineEdit *edtCode = nullptr;
    QAction *mniCodeInvalid_ = nullptr; // the sign in the code's box
    QLineEdit *edtDescription = nullptr;
    TqsRadioGroup *rgpType = nullptr;
    TqsNumberEdit *edtFixedRate = nullptr;
    TqsLookupCombo *cbxFormula = nullptr;
    TqsLookupCombo *cbxRateFactor = nullptr;
    QComboBox *cbxHoursWorked = nullptr;
    QComboBox *cbxGrouping = nullptr;
    QCheckBox *chkActive = nullptr;
    QGroupBox *pnlAward = nullptr;
    QLineEdit *edtAwardCode = nullptr;
    QLineEdit *edtAwardName = nullptr;
};

} // namespace

void DoRateTypeAdd(int RateTypeTDID, bool DoCopyRecord, bool AllowEffectiveDateChange)
{
    TBusyCursor busy;
    TfrmIPRateTypeAddDlg dialog;
    dialog.SetAllowEffectiveDateChange(AllowEffectiveDateChange);
    dialog.SetRecordID(RateTypeTDID);
    dialog.SetDoCopyRecord(DoCopyRecord);
    busy.Restore();
    if (dialog.IsSystem())
        InfoMessage("The selected Rate Type can not be modified as it is a system record.");
    dialog.exec();
}
