// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

#include <memory>

#include "host/DatabaseSetup.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// Which database to work with: create an empty one or one with demonstration data, open a file, connect to a server.
class TfrmStart final : public QDialog
{
    Q_OBJECT
public:
    explicit TfrmStart(QWidget *parent, const TDatabaseChoice &proposal);
    TDatabaseChoice Choice() const;

protected:
    void done(int result) override;

private:
    void UpdateFields();
    void Browse();

    QRadioButton *rdbEmpty;
    QRadioButton *rdbDemo;
    QRadioButton *rdbOpen;
    QRadioButton *rdbConnect;
    QLabel *lblFile;
    QLineEdit *edtFile;
    QPushButton *btnBrowse;
    QLabel *lblCountry;
    QComboBox *cbxCountry;
    QLabel *lblConnection;
    QLineEdit *edtConnection;
};

// Where a new database is proposed to stand.
QString ProposedDatabaseFile(bool demonstration);

// Opens what `choice` says, with the hourglass and, for a creation, a progress window. Throws like OpenChoice.
std::unique_ptr<TDbConnection> OpenWithProgress(QWidget *parent, const TDatabaseChoice &choice,
                                                const QString &scriptsFolder);

// Asks until a database is open or the user gives up (nullptr). `choice` is the proposal and, afterwards, what was
// chosen.
std::unique_ptr<TDbConnection> AskForDatabase(QWidget *parent, TDatabaseChoice &choice, const QString &scriptsFolder);
