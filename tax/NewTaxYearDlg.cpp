// SPDX-License-Identifier: Apache-2.0
#include "tax/NewTaxYearDlg.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>

#include <algorithm>

#include "framework/Kvglobal.h"
#include "framework/forms/CorvexDlg.h"
#include "framework/grid/MemoryGrid.h"
#include "tax/TaxYearCopy.h"

namespace {

// Medicare, tax, STSL and SFSS scales.
constexpr uint kChangedMessages[] = {9230, 9245, 9254, 9239};
constexpr int kFirstYear = 1980;
constexpr int kLastYear = 2199;

const QList<TGridColumn> &PlanColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"cKind", "Record", Kind::Text, 120},
        {"cCode", "Code", Kind::Text, 90},
        {"cDescription", "Description", Kind::Text, 320},
        {"cAction", "What happens", Kind::Text, 150},
    };
    return columns;
}

QString Counted(qsizetype count, const char *one, const char *many)
{
    return count == 1 ? QString::fromLatin1(one) : QString::fromLatin1(many).arg(QLocale().toString(count));
}

class TfrmNewTaxYearDlg final : public TfrmCorvexDlgBase
{
public:
    TfrmNewTaxYearDlg()
        : TfrmCorvexDlgBase("TfrmNewTaxYearDlg", "New Tax Year")
    {
        cbxFromYear = new QComboBox;
        for (const int year : TaxYearsWithData())
            cbxFromYear->addItem(QString::number(year), year);
        cbxFromYear->setCurrentIndex(std::max(0, cbxFromYear->findData(GetEndTaxYear())));
        edtToYear = new QSpinBox;
        edtToYear->setRange(kFirstYear, kLastYear);
        edtToYear->setValue(cbxFromYear->currentData().toInt() + 1);
        edtToYear->setMaximumWidth(120);
        cbxFromYear->setMaximumWidth(120);
        grdPlan = new TqsMemoryGrid(PlanColumns(), QString());
        grdPlan->setAccessibleName("What will be copied");
        grdPlan->SetVisibleRows(12);
        prgCopy = new QProgressBar;
        prgCopy->setAccessibleName("Progress");

        AddGroup("Tax Year")
            .Note(lblHelp, "lblHelp",
                  "Copies the scales, their brackets and the tax parameters of one year to another. What the other "
                  "year has "
                  "already stays as it is. The current tax year of the installation is not changed.")
            .LabelledWidget(cbxFromYear, "cbxFromYear", "Copy &from")
            .LabelledWidget(edtToYear, "edtToYear", "&To")
            .Widget(grdPlan, "grdPlan")
            .Note(lblResult, "lblResult", QString())
            .Widget(prgCopy, "prgCopy");
        btnOK->setText("&Copy");
        connect(cbxFromYear, &QComboBox::currentIndexChanged, this, [this] { ShowPlan(); });
        connect(edtToYear, &QSpinBox::valueChanged, this, [this] { ShowPlan(); });
        ShowPlan();
    }

    int GetCurrentHelpContext() const override { return 104200; }

protected:
    // OK copies and leaves the window open with what came of it; Cancel stops a running copy, else closes.
    void FormCloseQuery(int result, bool &CanClose) override
    {
        if (result == QDialog::Accepted) {
            CanClose = false;
            if (!running_ && toCopy_ > 0)
                Copy();
        } else if (running_) {
            CanClose = false;
            cancelled_ = true;
        }
    }

private:
    int FromYear() const { return cbxFromYear->currentData().toInt(); }

    void ShowPlan()
    {
        const QList<TTaxYearItem> items =
            FromYear() == edtToYear->value() ? QList<TTaxYearItem>() : PlanTaxYearCopy(FromYear(), edtToYear->value());
        QList<QVariantMap> rows;
        toCopy_ = 0;
        for (const TTaxYearItem &item : items) {
            rows.append({{"cKind", item.kind},
                         {"cCode", item.code},
                         {"cDescription", item.description},
                         {"cAction", item.exists ? "Exists already" : "Will be copied"}});
            toCopy_ += item.exists ? 0 : 1;
        }
        grdPlan->Table().SetRows(rows);
        grdPlan->FocusRow(0);
        prgCopy->reset();
        lblResult->setText(FromYear() == edtToYear->value()
                               ? QString("Choose two different years.")
                               : Counted(toCopy_, "1 record will be copied, ", "%1 records will be copied, ") +
                                     Counted(rows.size() - toCopy_, "1 exists already.", "%1 exist already."));
        UpdateState();
    }

    void UpdateState()
    {
        btnOK->setEnabled(!running_ && toCopy_ > 0);
        cbxFromYear->setEnabled(!running_);
        edtToYear->setEnabled(!running_);
        btnCancel->setText(running_ || toCopy_ > 0 ? "Cancel" : "Close");
    }

    void Copy()
    {
        running_ = true;
        cancelled_ = false;
        UpdateState();
        QElapsedTimer sincePainted;
        QString outcome;
        try {
            const int copied = CopyTaxYear(FromYear(), edtToYear->value(), [&](int done, int total) {
                prgCopy->setMaximum(total);
                prgCopy->setValue(done);
                if (!sincePainted.isValid() || sincePainted.hasExpired(40) || done == total) {
                    QCoreApplication::processEvents();
                    sincePainted.restart();
                }
                return !cancelled_;
            });
            if (copied < 0) {
                outcome = "The copying was cancelled. Nothing was changed.";
            } else {
                outcome = Counted(copied, "1 record was copied.", "%1 records were copied.");
                for (const uint message : kChangedMessages)
                    BroadcastChange(message, 0);
            }
        } catch (const std::exception &error) {
            outcome = "Nothing was changed.";
            ShowException(error);
        }
        running_ = false;
        ShowPlan();
        lblResult->setText(outcome);
    }

    QLabel *lblHelp = nullptr;
    QComboBox *cbxFromYear = nullptr;
    QSpinBox *edtToYear = nullptr;
    TqsMemoryGrid *grdPlan = nullptr;
    QLabel *lblResult = nullptr;
    QProgressBar *prgCopy = nullptr;
    qsizetype toCopy_ = 0;
    bool running_ = false;
    bool cancelled_ = false;
};

} // namespace

void DoNewTaxYear()
{
    TBusyCursor busy;
    TfrmNewTaxYearDlg dialog;
    busy.Restore();
    dialog.exec();
}
