// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QString>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;

// The installation's settings as the database keeps them.
struct TInstallationSettings
{
    int country = 0;
    int endTaxYear = 0;
    QString bsbFormat;
    bool hoursAndMinutes = false;
    bool phase2Reporting = false;
    bool extendedLogging = false;
    bool backpay = false;
    int rateDecimals = 0;
};

enum class TSettingsField { None, Country, EndTaxYear, BSBFormat, RateDecimals };

// The first thing wrong with settings, "" when nothing is; `field` tells where.
QString CheckSettings(const TInstallationSettings &settings, TSettingsField &field);
// Read from and written to the main connection. Writing touches only what differs from `before`, in one transaction, so
// that two people who change different settings do not undo each other. Throw TDbError.
TInstallationSettings ReadSettings();
void WriteSettings(const TInstallationSettings &before, const TInstallationSettings &after);

class TfrmSettings final : public QDialog
{
    Q_OBJECT
public:
    // Reads the settings. Throws TDbError.
    explicit TfrmSettings(QWidget *parent);

protected:
    // The save point: OK checks and writes; a failure keeps the dialog open.
    void done(int result) override;

private:
    TInstallationSettings Entered() const;
    void TakeCountryDefaults();

    const TInstallationSettings before_;
    QComboBox *cbxCountry;
    QSpinBox *edtEndTaxYear;
    QLineEdit *edtBSBFormat;
    QSpinBox *edtRateDecimals;
    QCheckBox *chkHoursAndMinutes;
    QCheckBox *chkBackpay;
    QCheckBox *chkPhase2Reporting;
    QCheckBox *chkExtendedLogging;
};
