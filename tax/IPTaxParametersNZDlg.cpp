// SPDX-License-Identifier: Apache-2.0
#include "tax/IPTaxParametersNZDlg.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

#include "framework/Kvglobal.h"
#include "framework/forms/CorvexDlg.h"
#include "framework/grid/MemoryGrid.h"
#include "records/IPTaxOptions.h"
#include "records/IPTaxParametersNZ.h"

namespace {

using Kind = TGridColumn::Kind;

const QList<TGridColumn> &LumpSumColumns()
{
    static const QList<TGridColumn> columns{
        {"fLumpSum", "LumpSum", Kind::Float, 140, true, true, 2},
        {"fTaxRate", "Tax Rate", Kind::Float, 100, true, true, 4},
    };
    return columns;
}

const QList<TGridColumn> &RebateColumns()
{
    static const QList<TGridColumn> columns{
        {"fAnnualValue", "Annual Value", Kind::Float, 140, true, true, 2},
        {"fRate", "Rate", Kind::Float, 100, true, true, 4},
        {"fAmount", "Amount", Kind::Float, 120, true, true, 2},
    };
    return columns;
}

// The rows of one of the two grids, and where they are kept. Their first column names them.
class TRateRows
{
public:
    TRateRows(const char *caption, TCorvexADOQuery &query, const QList<TGridColumn> &columns)
        : caption_(caption)
        , query_(query)
        , grid_(new TqsMemoryGrid(columns, QString()))
    {
        grid_->SetInPlace(true);
        grid_->SetVisibleRows(6);
        grid_->setAccessibleName(caption_);
        grid_->setToolTip(QObject::tr("Ins adds a row, Enter changes a cell, Del removes the row"));
        for (const TGridColumn &column : columns)
            grid_->Table().SetBounds(column.field, 0.0, column.decimals == 4 ? std::optional(100.0) : std::nullopt);
    }

    TqsMemoryGrid *Grid() const { return grid_; }

    void Load()
    {
        const QList<QVariantMap> rows = Stored();
        loaded_ = TextOf(rows);
        grid_->Table().SetRows(rows);
        grid_->FocusRow(0);
    }

    // What is stored counts as what was loaded; the grid stays as it is.
    void Reread() { loaded_ = TextOf(Stored()); }

    void Check(TChecks &check) const
    {
        const QString key = Columns().first().field;
        const QList<QVariantMap> rows = Filled();
        for (int i = 0; i < rows.size(); ++i) {
            for (int k = 0; k < i; ++k) {
                check(grid_, rows[i].value(key) != rows[k].value(key),
                      FormatText("%s already exists.", {Columns().first().caption}));
            }
        }
    }

    void CheckConflict() const
    {
        const QString theirs = TextOf(Stored());
        if (theirs == loaded_)
            return;
        TRecordConflict conflict;
        conflict.fields.append({caption_, loaded_, theirs, TextOf(Filled())});
        throw conflict;
    }

    // In the caller's transaction.
    void Save() const
    {
        const QList<QVariantMap> rows = Filled();
        if (TextOf(rows) == loaded_)
            return;
        query_.ExecuteThisSQL(
            QString("delete from %1 where iCountry = :country and iTaxYear = :year").arg(query_.TableName()), false,
            Scope());
        for (const QVariantMap &row : rows) {
            query_.brAppend(true);
            query_.FindColumn(u"iCountry")->SetVariant(int(kNewZealand));
            query_.FindColumn(u"iTaxYear")->SetVariant(GetEndTaxYear());
            for (const TGridColumn &column : Columns())
                query_.FindColumn(column.field)->SetVariant(row.value(column.field));
            query_.Post();
        }
    }

private:
    const QList<TGridColumn> &Columns() const { return grid_->Table().Columns(); }
    static TDbParams Scope() { return {{"country", int(kNewZealand)}, {"year", GetEndTaxYear()}}; }

    QList<QVariantMap> Stored() const
    {
        QList<QVariantMap> rows;
        query_.SelectWhere("iCountry = :country and iTaxYear = :year", Scope(), Columns().first().field);
        for (bool more = !query_.IsEmpty(); more; more = query_.Next()) {
            QVariantMap row;
            for (const TGridColumn &column : Columns())
                row.insert(column.field, query_.FindColumn(column.field)->Variant().toDouble());
            rows.append(row);
        }
        return rows;
    }

    // A row in which nothing was typed is not one.
    QList<QVariantMap> Filled() const
    {
        QList<QVariantMap> rows;
        for (int i = 0; i < grid_->Table().Count(); ++i) {
            const QVariantMap row = grid_->Table().Row(i);
            if (std::any_of(row.begin(), row.end(), [](const QVariant &value) { return value.toDouble() != 0; }))
                rows.append(row);
        }
        return rows;
    }

    QString TextOf(const QList<QVariantMap> &rows) const
    {
        QStringList texts;
        for (const QVariantMap &row : rows) {
            QStringList values;
            for (const TGridColumn &column : Columns())
                values += QString::number(row.value(column.field).toDouble(), 'g', 12);
            texts += values.join(QLatin1Char(' '));
        }
        return texts.join(QStringLiteral("; "));
    }

    const QString caption_;
    TCorvexADOQuery &query_;
    TqsMemoryGrid *grid_;
    QString loaded_;
};

class TfrmIPTaxParametersNZDlg final : public TfrmCorvexDlg2
{
public:
    TfrmIPTaxParametersNZDlg()
        : TfrmCorvexDlg2("TfrmIPTaxParametersNZDlg", "Tax Parameters", 104210)
        , lumpSums_("Lump Sum Tax Rates", qryLumpSums, LumpSumColumns())
        , rebates_("Rebates", qryRebates, RebateColumns())
    {
        auto *top = new QWidget(pnlClient);
        auto *columns = new QHBoxLayout(top);
        columns->setContentsMargins(0, 0, 0, 0);
        pnlClient->layout()->addWidget(top);
        const auto addColumn = [columns, top](int stretch) {
            auto *column = new QWidget(top);
            auto *rows = new QVBoxLayout(column);
            rows->setContentsMargins(0, 0, 0, 0);
            columns->addWidget(column, stretch);
            return column;
        };
        QWidget *left = addColumn(0);
        QWidget *right = addColumn(1);

        fields.AddGroup(left, "Rounding")
            .Number(edtTaxableGrossTo, "edtTaxableGrossTo", "Taxable Gross Value To", qryTaxOptions.RoundTaxableGrossTo,
                    4)
            .Number(edtEndResultTo, "edtEndResultTo", "End Result Tax Value To", qryTaxOptions.RoundTaxTo, 4);
        fields.AddGroup(left, "Payroll Giving")
            .Number(edtTaxCreditPercent, "edtTaxCreditPercent", "Tax Credit Percent", qryParameters.PayrollGivingCredit,
                    4, 100);
        fields.AddGroup(left, "Student Loan")
            .Number(edtLoanRate, "edtLoanRate", "Loan Rate", qryParameters.LoanRate, 4)
            .Number(edtAnnualLoanThreshold, "edtAnnualLoanThreshold", "Annual Loan Threshold",
                    qryParameters.AnnualLoanThreshold, 4);
        fields.AddGroup(left, "ACC Earnings Levy")
            .Number(edtFixedAmount, "edtFixedAmount", "Fixed Amount", qryParameters.LevyFixedAmount, 4)
            .Number(edtLevyRate, "edtLevyRate", "Levy Rate", qryParameters.LevyRate, 4)
            .Number(edtAnnualLevyThreshold, "edtAnnualLevyThreshold", "Annual Levy Threshold",
                    qryParameters.AnnualLevyThreshold, 4);
        for (QGroupBox *box : left->findChildren<QGroupBox *>(QString(), Qt::FindDirectChildrenOnly)) {
            static_cast<QGridLayout *>(box->layout())
                ->setColumnMinimumWidth(0, fontMetrics().horizontalAdvance("End Result Tax Value To") + 4);
        }
        auto *lblGrids = new QLabel("In the grids Ins adds a row, Enter changes a cell, Del removes the row.", left);
        lblGrids->setWordWrap(true);
        left->layout()->addWidget(lblGrids);
        static_cast<QVBoxLayout *>(left->layout())->addStretch();
        fields.AddGroup(right, "Lump Sum Tax Rates").Widget(lumpSums_.Grid(), "grdLumpSums");
        fields.AddGroup(right, "Rebates").Widget(rebates_.Grid(), "grdRebates");
        for (TqsNumberEdit *edit : {edtTaxableGrossTo, edtEndResultTo, edtTaxCreditPercent})
            edit->SetMinimum(0);
    }

protected:
    void FormShow() override
    {
        TfrmCorvexDlg2::FormShow();
        SelectRecords();
        fields.LoadAll();
        lumpSums_.Load();
        rebates_.Load();
        FocusControl(edtTaxableGrossTo);
    }

    void ValidateInformation(TChecks &check) override
    {
        const auto notNegative = [&check](TqsNumberEdit *edit, const char *text) {
            check(edit, edit->Value() >= 0, text);
        };
        notNegative(edtLevyRate, "The Levy Rate may not be negative!");
        notNegative(edtFixedAmount, "The Fixed Amount may not be negative!");
        notNegative(edtAnnualLevyThreshold, "The Annual Levy Threshold may not be negative!");
        notNegative(edtLoanRate, "The Student Loan Rate may not be negative!");
        notNegative(edtAnnualLoanThreshold, "The Student Annual Loan Threshold may not be negative!");
        lumpSums_.Check(check);
        rebates_.Check(check);
    }

    void SaveEditFields() override
    {
        qryParameters.EditTaxYear(GetEndTaxYear());
        qryTaxOptions.EditTaxYear(GetEndTaxYear());
        fields.SaveAll();
        bool posted = false;
        try {
            TDbTransaction transaction(MainConnection());
            lumpSums_.CheckConflict();
            rebates_.CheckConflict();
            qryParameters.Post();
            posted = true;
            qryTaxOptions.Post();
            lumpSums_.Save();
            rebates_.Save();
            transaction.Commit();
        } catch (const TRecordConflict &) {
            CancelEdits();
            if (posted)
                qryParameters.SelectTaxYear(GetEndTaxYear()); // it holds values that were rolled back
            throw;
        } catch (const TDbError &error) {
            CancelEdits();
            PresentError(error);
        }
    }

    void Reread() override
    {
        SelectRecords();
        lumpSums_.Reread();
        rebates_.Reread();
    }

private:
    void SelectRecords()
    {
        qryParameters.SelectTaxYear(GetEndTaxYear());
        qryTaxOptions.GetTaxOptions(GetEndTaxYear());
    }
    void CancelEdits()
    {
        qryParameters.Cancel();
        qryTaxOptions.Cancel();
        qryLumpSums.Cancel();
        qryRebates.Cancel();
    }

    TqryIPTaxParametersNZ qryParameters;
    TqryIPTaxOptions qryTaxOptions;
    TqryIPLumpSumTaxRates qryLumpSums;
    TqryIPTaxRebates qryRebates;
    TRateRows lumpSums_;
    TRateRows rebates_;
    TqsNumberEdit *edtTaxableGrossTo = nullptr;
    TqsNumberEdit *edtEndResultTo = nullptr;
    TqsNumberEdit *edtTaxCreditPercent = nullptr;
    TqsNumberEdit *edtLoanRate = nullptr;
    TqsNumberEdit *edtAnnualLoanThreshold = nullptr;
    TqsNumberEdit *edtFixedAmount = nullptr;
    TqsNumberEdit *edtLevyRate = nullptr;
    TqsNumberEdit *edtAnnualLevyThreshold = nullptr;
};

} // namespace

void IPTaxParametersNZDlg::DoTaxParameters()
{
    TBusyCursor busy;
    TfrmIPTaxParametersNZDlg dialog;
    busy.Restore();
    dialog.exec();
}
