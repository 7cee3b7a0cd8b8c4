// SPDX-License-Identifier: Apache-2.0
#include "banking/BSBImportDlg.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLocale>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>

#include "banking/BSBDirectoryImport.h"
#include "framework/forms/CorvexDlg.h"

namespace {

constexpr uint kBankChanged = 9227;

class TfrmBSBImportDlg final : public TfrmCorvexDlgBase
{
public:
    TfrmBSBImportDlg()
        : TfrmCorvexDlgBase("TfrmBSBImportDlg", "Import BSB Directory")
    {
        auto *fileRow = new QWidget;
        auto *row = new QHBoxLayout(fileRow);
        row->setContentsMargins(0, 0, 0, 0);
        edtFile = new QLineEdit(fileRow);
        edtFile->setObjectName("edtFile");
        edtFile->setMinimumWidth(380);
        btnBrowse = new QPushButton("B&rowse...", fileRow);
        btnBrowse->setObjectName("btnBrowse");
        btnBrowse->setAutoDefault(false);
        row->addWidget(edtFile, 1);
        row->addWidget(btnBrowse);
        fileRow->setFocusProxy(edtFile);

        prgImport = new QProgressBar;
        prgImport->setAccessibleName("Progress");
        memResult = new QPlainTextEdit;
        memResult->setReadOnly(true);
        memResult->setAccessibleName("Result");
        memResult->setMinimumHeight(160);
        memResult->setTabChangesFocus(true);

        TFormGroup &group = AddGroup("BSB Directory");
        group
            .Note(
                lblHelp, "lblHelp",
                "Banks of the file that are not here yet are added, those with another name or state are brought up to "
                "date. Nothing is deleted. The file is a CSV file as published for the BSB directory.")
            .LabelledWidget(fileRow, "pnlFile", "&File")
            .Widget(prgImport, "prgImport")
            .Widget(memResult, "memResult");
        btnOK->setText("&Import");
        connect(btnBrowse, &QPushButton::clicked, this, [this] {
            const QString name = AskOpenFile("Import BSB Directory", QFileInfo(edtFile->text()).path(),
                                             "CSV files (*.csv *.txt);;All files (*)");
            if (!name.isEmpty())
                edtFile->setText(name);
        });
        connect(edtFile, &QLineEdit::textChanged, this, [this] { UpdateState(); });
        UpdateState();
    }

    int GetCurrentHelpContext() const override { return 101600; }

protected:
    void FormShow() override
    {
        TfrmCorvexDlgBase::FormShow();
        FocusControl(edtFile);
    }

    // OK runs the import and leaves the dialog open with its result; Cancel stops a running import, else closes.
    void FormCloseQuery(int result, bool &CanClose) override
    {
        if (result == QDialog::Accepted) {
            CanClose = false;
            if (!running_)
                Import();
        } else if (running_) {
            CanClose = false;
            cancelled_ = true;
        }
    }

private:
    void UpdateState()
    {
        btnOK->setEnabled(!running_ && !edtFile->text().trimmed().isEmpty());
        edtFile->setEnabled(!running_);
        btnBrowse->setEnabled(!running_);
        btnCancel->setText(running_ || !done_ ? "Cancel" : "Close");
    }

    void Import()
    {
        QFile file(edtFile->text().trimmed());
        if (!file.open(QIODevice::ReadOnly)) {
            InfoMessage(QString("The file \"%1\" cannot be read: %2").arg(file.fileName(), file.errorString()));
            FocusControl(edtFile);
            return;
        }
        running_ = true;
        cancelled_ = false;
        memResult->clear();
        UpdateState();
        QElapsedTimer sincePainted;
        sincePainted.start();
        try {
            const TBSBImportResult result = ImportBSBDirectory(MainConnection(), file, [&](qint64 done, qint64 total) {
                prgImport->setMaximum(int(total));
                prgImport->setValue(int(done));
                if (sincePainted.hasExpired(40) || done == total) {
                    QCoreApplication::processEvents();
                    sincePainted.restart();
                }
                return !cancelled_;
            });
            ShowResult(result);
        } catch (const std::exception &error) {
            memResult->setPlainText("Nothing was imported.");
            ShowException(error);
        }
        running_ = false;
        UpdateState();
    }

    void ShowResult(const TBSBImportResult &result)
    {
        if (result.cancelled) {
            memResult->setPlainText("The import was cancelled. Nothing was changed.");
            return;
        }
        done_ = true;
        const auto line = [](const char *what, int count) {
            return QString("%1: %2\n").arg(QLatin1String(what), QLocale().toString(count));
        };
        QString text = line("Added", result.added) + line("Changed", result.changed) +
                       line("Unchanged", result.unchanged) + line("Closed or merged, not added", result.closed) +
                       line("Closed or merged, kept as they are", result.closedKept) +
                       line("Refused", int(result.refused.size()));
        for (const TBSBRefusedRow &row : result.refused)
            text += QString("Line %1, BSB \"%2\": %3\n").arg(row.line).arg(row.bsb, row.reason);
        memResult->setPlainText(text);
        if (result.added + result.changed > 0)
            BroadcastChange(kBankChanged, 0);
    }

    QLabel *lblHelp = nullptr;
    QLineEdit *edtFile = nullptr;
    QPushButton *btnBrowse = nullptr;
    QProgressBar *prgImport = nullptr;
    QPlainTextEdit *memResult = nullptr;
    bool running_ = false;
    bool cancelled_ = false;
    bool done_ = false;
};

} // namespace

void DoBSBImport()
{
    TfrmBSBImportDlg dialog;
    dialog.exec();
}
