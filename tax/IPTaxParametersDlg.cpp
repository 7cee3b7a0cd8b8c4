// SPDX-License-Identifier: Apache-2.0
#include "tax/IPTaxParametersDlg.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>

#include "framework/Kvglobal.h"
#include "framework/forms/CorvexDlg.h"
#include "records/IPTaxParameters.h"

namespace {

struct TPreservationAge
{
    const char *dateOfBirth;
    const char *age;
};

constexpr TPreservationAge kPreservationAges[] = {
    {"Before 01/07/1960", "55"},       {"01/07/1960 - 30/06/1961", "56"}, {"01/07/1961 - 30/06/1962", "57"},
    {"01/07/1962 - 30/06/1963", "58"}, {"01/07/1963 - 30/06/1964", "59"}, {"After 30/06/1964", "60"},
};

QWidget *PreservationAgeTable()
{
    auto *table = new QWidget;
    auto *grid = new QGridLayout(table);
    grid->setContentsMargins(0, 8, 0, 0);
    grid->setHorizontalSpacing(24);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(1, 1);
    const auto put = [grid, table](int row, int column, const char *text) {
        auto *label = new QLabel(QString::fromLatin1(text), table);
        QFont font = label->font();
        font.setBold(row == 0);
        label->setFont(font);
        grid->addWidget(label, row, column);
    };
    put(0, 0, "Date Of Birth");
    put(0, 1, "Preservation Age ");
    int row = 0;
    for (const TPreservationAge &age : kPreservationAges) {
        put(++row, 0, age.dateOfBirth);
        put(row, 1, age.age);
    }
    return table;
}

class TfrmIPTaxParametersDlg final : public TfrmCorvexDlg2
{
public:
    TfrmIPTaxParametersDlg()
        : TfrmCorvexDlg2("TfrmIPTaxParametersDlg", "Tax Parameters", 104200)
    {
        auto *top = new QWidget(pnlClient);
        auto *columns = new QHBoxLayout(top);
        columns->setContentsMargins(0, 0, 0, 0);
        pnlClient->layout()->addWidget(top);

        auto &qry = qryTaxParameters;
        fields.AddGroup(top, "Termination")
            .Number(edtTerminationTaxRate, "edtTerminationTaxRate", "&Termination Tax Rate", qry.TerminationTaxRate, 4)
            .Number(edtTermNoTFNResidentRate, "edtTermNoTFNResidentRate", "R&esident with no TFN Rate",
                    qry.TermNoTFNResidentRate, 4)
            .Number(edtTermNoTFNNonResRate, "edtTermNoTFNNonResRate", "&Non Resident with no TFN Rate",
                    qry.TermNoTFNNonResRate, 4)
            .Number(edtTermPost93GrossRate, "edtTermPost93GrossRate", "&Post 93 Tax Gross Rate",
                    qry.TermPost93GrossRate, 4)
            .Number(edtTermPost93GrossLimit, "edtTermPost93GrossLimit", "P&ost 93 Gross Limit",
                    qry.TermPost93GrossLimit, 4)
            .Number(edtTermAssAmtPercent, "edtTermAssAmtPercent", "&Comp B Assessable Percentage",
                    qry.TermAssAmtPercent, 2, 100)
            .Number(edtTermSpecRateMedLevy, "edtTermSpecRateMedLevy", "&Medicare Levy Rate", qry.TermSpecRateMedLevy, 2,
                    100);
        fields.AddGroup(top, "Employment Termination Payment")
            .Number(edtReducedTaxRate, "edtReducedTaxRate", "P&reservation Age Tax Rate", qry.ReducedTaxRate, 4)
            .Number(edtTermAboveCapRate, "edtTermAboveCapRate", "&Above Cap Tax Rate", qry.TermAboveCapRate, 4)
            .Number(edtTaxReductionAmount, "edtTaxReductionAmount", "&Lower Cap Amount", qry.TaxReductionAmount, 4)
            .Number(edtTermETPUpperCap, "edtTermETPUpperCap", "&Upper Cap Amount", qry.TermETPUpperCap, 4)
            .Number(edtTermWholeOfIncomeCap, "edtTermWholeOfIncomeCap", "&Whole Of Income Cap",
                    qry.TermWholeOfIncomeCap, 4)
            .Widget(PreservationAgeTable(), "pnlPreservationAges");
        for (QGroupBox *box : top->findChildren<QGroupBox *>(QString(), Qt::FindDirectChildrenOnly)) {
            auto *grid = static_cast<QGridLayout *>(box->layout());
            grid->setRowStretch(grid->rowCount(), 1); // the shorter one's fields stay together
        }
        AddGroup("Component D")
            .Number(edtTermETPInitTaxFree, "edtTermETPInitTaxFree", "&Initial Tax Free Value", qry.TermETPInitTaxFree,
                    4)
            .Number(edtTermETPAnnualTaxFree, "edtTermETPAnnualTaxFree", "Annual Tax &Free Value",
                    qry.TermETPAnnualTaxFree, 4);
    }

protected:
    void FormShow() override
    {
        TfrmCorvexDlg2::FormShow();
        SetEditFields();
        FocusControl(edtTerminationTaxRate);
    }

    void ValidateInformation(TChecks &check) override { ValidateParameters(check); }

    void SaveEditFields() override
    {
        if (qryTaxParameters.IsEmpty() && !EnsureRow())
            return;
        qryTaxParameters.brEdit(true);
        fields.SaveAll();
        try {
            if (!qryTaxParameters.brPost(true))
                qryTaxParameters.Cancel();
        } catch (const TRecordConflict &) {
            qryTaxParameters.Cancel();
            throw;
        }
    }

    void Reread() override { EnsureRow(); }

private:
    // A year that nobody has entered yet gets its row of zeros at once. False when it could not be written.
    bool EnsureRow()
    {
        qryTaxParameters.SelectTaxYear(GetEndTaxYear());
        if (qryTaxParameters.RecordCount() >= 1)
            return true;
        qryTaxParameters.brAppend(true);
        qryTaxParameters.SetTaxYear(GetEndTaxYear());
        qryTaxParameters.SetCountry(kAustralia);
        if (qryTaxParameters.brPost(true))
            return true;
        qryTaxParameters.Cancel();
        return false;
    }

    void SetEditFields()
    {
        EnsureRow();
        fields.LoadAll();
    }

    // The order is neither that of the form nor that of the record.
    void ValidateParameters(TChecks &check)
    {
        const auto notNegative = [&check](TqsNumberEdit *edit, const char *text) {
            check(edit, edit->Value() >= 0, text);
        };
        notNegative(edtTerminationTaxRate, "The Termination Tax Rate may not be negative!");
        notNegative(edtTermSpecRateMedLevy, "The Medicare Levy Rate may not be negative!");
        notNegative(edtTermPost93GrossRate, "The Post 93 Gross Rate may not be negative!");
        notNegative(edtTermNoTFNResidentRate, "The Resident with no TFN Rate may not be negative!");
        notNegative(edtTermPost93GrossLimit, "The Post 93 Gross Limit may not be negative!");
        notNegative(edtTermNoTFNNonResRate, "The Non Resident with no TFN Rate may not be negative!");
        notNegative(edtTermAssAmtPercent, "The Comp B Assessable Percentage may not be negative!");
        notNegative(edtTaxReductionAmount, "The ETP Lower Cap Amount may not be negative!");
        notNegative(edtTermETPUpperCap, "The ETP Upper Cap Amount may not be negative!");
        notNegative(edtReducedTaxRate, "The Preservation Age Tax Rate may not be negative!");
        notNegative(edtTermAboveCapRate, "The ETP Above Cap Tax Rate may not be negative!");
        notNegative(edtTermETPInitTaxFree, "The Component D Initial Tax Free Value may not be negative!");
        notNegative(edtTermETPAnnualTaxFree, "The Component D Annual Tax Free Value may not be negative!");
        notNegative(edtTermWholeOfIncomeCap, "The ETP Whole Of Income Amount may not be negative!");
    }

    TqryIPTaxParameters qryTaxParameters;
    TqsNumberEdit *edtTerminationTaxRate = nullptr;
    TqsNumberEdit *edtTermNoTFNResidentRate = nullptr;
    TqsNumberEdit *edtTermNoTFNNonResRate = nullptr;
    TqsNumberEdit *edtTermPost93GrossRate = nullptr;
    TqsNumberEdit *edtTermPost93GrossLimit = nullptr;
    TqsNumberEdit *edtTermAssAmtPercent = nullptr;
    TqsNumberEdit *edtTermSpecRateMedLevy = nullptr;
    TqsNumberEdit *edtReducedTaxRate = nullptr;
    TqsNumberEdit *edtTermAboveCapRate = nullptr;
    TqsNumberEdit *edtTaxReductionAmount = nullptr;
    TqsNumberEdit *edtTermETPUpperCap = nullptr;
    TqsNumberEdit *edtTermWholeOfIncomeCap = nullptr;
    TqsNumberEdit *edtTermETPInitTaxFree = nullptr;
    TqsNumberEdit *edtTermETPAnnualTaxFree = nullptr;
};

} // namespace

void IPTaxParametersDlg::DoTaxParameters()
{
    TBusyCursor busy;
    TfrmIPTaxParametersDlg dialog;
    busy.Restore();
    dialog.exec();
}
