// SPDX-License-Identifier: Apache-2.0
#include "host/StartDlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "framework/Kvglobal.h"
#include "framework/Kvutils.h"

namespace {

QString FileFilter()
{
    return TfrmStart::tr("Payroll databases (*.db);;All files (*)");
}

} // namespace

TfrmStart::TfrmStart(QWidget *parent, const TDatabaseChoice &proposal)
    : QDialog(parent)
    , rdbEmpty(new QRadioButton(tr("Create an &empty database"), this))
    , rdbDemo(new QRadioButton(tr("Create a database with &demonstration data"), this))
    , rdbOpen(new QRadioButton(tr("&Open an existing database file"), this))
    , rdbConnect(new QRadioButton(tr("Connect to a &server"), this))
    , lblFile(new QLabel(tr("&File"), this))
    , edtFile(new QLineEdit(this))
    , btnBrowse(new QPushButton(tr("&Browse…"), this))
    , lblCountry(new QLabel(tr("Coun&try"), this))
    , cbxCountry(new QComboBox(this))
    , lblConnection(new QLabel(tr("&Connection"), this))
    , edtConnection(new QLineEdit(this))
{
    setObjectName(QStringLiteral("frmStart"));
    setWindowTitle(tr("Choose a Database"));
    const auto name = [](QWidget *widget, const char *code, const QString &accessible = {}) {
        widget->setObjectName(QString::fromLatin1(code));
        if (!accessible.isEmpty())
            widget->setAccessibleName(accessible);
    };
    name(rdbEmpty, "rdbEmpty");
    name(rdbDemo, "rdbDemo");
    name(rdbOpen, "rdbOpen");
    name(rdbConnect, "rdbConnect");
    name(edtFile, "edtFile", tr("File"));
    name(btnBrowse, "btnBrowse");
    name(cbxCountry, "cbxCountry", tr("Country"));
    name(edtConnection, "edtConnection", tr("Connection"));
    lblFile->setBuddy(edtFile);
    lblCountry->setBuddy(cbxCountry);
    lblConnection->setBuddy(edtConnection);
    for (const quint8 country : {kAustralia, kNewZealand, kOtherCountry})
        cbxCountry->addItem(CountryName(country), int(country));
    edtConnection->setPlaceholderText(QStringLiteral("DRIVER=FreeTDS;SERVER=…;PORT=1433;DATABASE=…;UID=…;PWD=…"));

    edtFile->setText(proposal.file);
    edtConnection->setText(proposal.connection);
    cbxCountry->setCurrentIndex(cbxCountry->findData(int(proposal.country.value_or(kAustralia))));
    switch (proposal.kind) {
    case TDatabaseChoice::Kind::OpenFile:
        rdbOpen->setChecked(true);
        break;
    case TDatabaseChoice::Kind::CreateEmpty:
        rdbEmpty->setChecked(true);
        break;
    case TDatabaseChoice::Kind::CreateDemonstration:
        rdbDemo->setChecked(true);
        break;
    case TDatabaseChoice::Kind::Connect:
        rdbConnect->setChecked(true);
        break;
    }

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    name(buttons->button(QDialogButtonBox::Ok), "btnOK");
    name(buttons->button(QDialogButtonBox::Cancel), "btnCancel");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    for (QRadioButton *button : {rdbDemo, rdbEmpty, rdbOpen, rdbConnect}) {
        layout->addWidget(button);
        connect(button, &QRadioButton::toggled, this, [this](bool on) {
            if (on)
                UpdateFields();
        });
    }
    layout->addSpacing(8);
    auto *file = new QHBoxLayout;
    file->addWidget(edtFile, 1);
    file->addWidget(btnBrowse);
    auto *form = new QFormLayout;
    form->addRow(lblFile, file);
    form->addRow(lblCountry, cbxCountry);
    form->addRow(lblConnection, edtConnection);
    layout->addLayout(form);
    layout->addStretch();
    layout->addWidget(buttons);
    connect(btnBrowse, &QPushButton::clicked, this, &TfrmStart::Browse);
    UpdateFields();
    resize(640, sizeHint().height());
}

TDatabaseChoice TfrmStart::Choice() const
{
    TDatabaseChoice choice;
    if (rdbEmpty->isChecked())
        choice.kind = TDatabaseChoice::Kind::CreateEmpty;
    else if (rdbDemo->isChecked())
        choice.kind = TDatabaseChoice::Kind::CreateDemonstration;
    else if (rdbConnect->isChecked())
        choice.kind = TDatabaseChoice::Kind::Connect;
    choice.file = edtFile->text().trimmed();
    choice.connection = edtConnection->text().trimmed();
    if (choice.Creates())
        choice.country = quint8(cbxCountry->currentData().toUInt());
    return choice;
}

void TfrmStart::UpdateFields()
{
    const bool connecting = rdbConnect->isChecked();
    const bool creating = rdbEmpty->isChecked() || rdbDemo->isChecked();
    for (QWidget *widget : std::initializer_list<QWidget *>{lblFile, edtFile, btnBrowse})
        widget->setEnabled(!connecting);
    for (QWidget *widget : std::initializer_list<QWidget *>{lblCountry, cbxCountry})
        widget->setEnabled(creating);
    for (QWidget *widget : std::initializer_list<QWidget *>{lblConnection, edtConnection})
        widget->setEnabled(connecting);
    // A name that can be created stands ready; one that the user typed stays.
    const QString text = edtFile->text();
    const bool ours = text.isEmpty() || text == ProposedDatabaseFile(true) || text == ProposedDatabaseFile(false);
    if (creating && ours)
        edtFile->setText(ProposedDatabaseFile(rdbDemo->isChecked()));
}

void TfrmStart::Browse()
{
    const QString now = edtFile->text().isEmpty() ? ProposedDatabaseFile(rdbDemo->isChecked()) : edtFile->text();
    const QString file = rdbOpen->isChecked()
                             ? AskOpenFile(tr("Open Database"), QFileInfo(now).absolutePath(), FileFilter())
                             : AskSaveFile(tr("New Database"), now, FileFilter());
    if (!file.isEmpty())
        edtFile->setText(QDir::toNativeSeparators(file));
}

void TfrmStart::done(int result)
{
    const TDatabaseChoice choice = Choice();
    if (result == Accepted && choice.kind == TDatabaseChoice::Kind::Connect && choice.connection.isEmpty()) {
        InfoMessage(tr("The connection may not be blank."));
        edtConnection->setFocus();
        return;
    }
    if (result == Accepted && choice.kind != TDatabaseChoice::Kind::Connect && choice.file.isEmpty()) {
        InfoMessage(tr("The file may not be blank."));
        edtFile->setFocus();
        return;
    }
    QDialog::done(result);
}

QString ProposedDatabaseFile(bool demonstration)
{
    const QString folder =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/corvex");
    const QString name = demonstration ? QStringLiteral("demo") : QStringLiteral("payroll");
    QString file = QStringLiteral("%1/%2.db").arg(folder, name);
    for (int i = 2; QFileInfo::exists(file); ++i)
        file = QStringLiteral("%1/%2-%3.db").arg(folder, name).arg(i);
    return QDir::toNativeSeparators(file);
}

std::unique_ptr<TDbConnection> OpenWithProgress(QWidget *parent, const TDatabaseChoice &choice,
                                                const QString &scriptsFolder)
{
    const TBusyCursor busy;
    if (!choice.Creates())
        return OpenChoice(choice, scriptsFolder);
    // The proposed folder may not exist yet; any other is the user's own affair.
    if (QFileInfo(choice.file).absolutePath() == QFileInfo(ProposedDatabaseFile(true)).absolutePath())
        QDir().mkpath(QFileInfo(choice.file).absolutePath());
    QProgressDialog progress(parent);
    progress.setObjectName(QStringLiteral("frmProgress"));
    progress.setWindowTitle(QDialog::tr("New Database"));
    progress.setWindowModality(Qt::ApplicationModal);
    progress.setMinimumWidth(420);
    progress.setMinimumDuration(500);
    progress.setAutoClose(false);
    return OpenChoice(choice, scriptsFolder, [&progress](int step, int steps, const QString &what) {
        progress.setMaximum(steps);
        progress.setLabelText(QDialog::tr("Creating the database: %1").arg(what));
        progress.setValue(step);
        return !progress.wasCanceled();
    });
}

std::unique_ptr<TDbConnection> AskForDatabase(QWidget *parent, TDatabaseChoice &choice, const QString &scriptsFolder)
{
    for (;;) {
        TfrmStart dialog(parent, choice);
        if (dialog.exec() != QDialog::Accepted)
            return nullptr;
        choice = dialog.Choice();
        try {
            return OpenWithProgress(parent, choice, scriptsFolder);
        } catch (const TCreationCancelled &) {
        } catch (const std::exception &error) {
            ShowException(error);
        }
    }
}
