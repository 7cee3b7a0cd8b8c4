// SPDX-License-Identifier: Apache-2.0
#include "host/SettingsDlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

#include "framework/Kvglobal.h"
#include "framework/Kvutils.h"
#include "framework/data/Database.h"
#include "host/DatabaseSetup.h"

namespace {

constexpr int kFirstTaxYear = 1990;
constexpr int kLastTaxYear = 2100;
constexpr int kLeastDecimals = 2;
constexpr int kMostDecimals = 6;
constexpr int kFormatLength = 20; // of Defaults.cBSBFormat

// The columns of one table that changed, as an UPDATE.
class TChanges
{
public:
    explicit TChanges(const QString &table)
        : table_(table)
    {}
    template <class T> void Add(const char *column, const T &before, const T &after)
    {
        if (before == after)
            return;
        const QString name = QString::fromLatin1(column);
        assignments_.append(QStringLiteral("%1 = :%1").arg(name));
        params_.insert(name, after);
    }
    bool IsEmpty() const { return assignments_.isEmpty(); }
    void Write(TDbConnection &connection) const
    {
        if (!IsEmpty())
            connection.Execute(QStringLiteral("update %1 set %2").arg(table_, assignments_.join(QStringLiteral(", "))),
                               params_);
    }

private:
    QString table_;
    QStringList assignments_;
    TDbParams params_;
};

} // namespace

QString CheckSettings(const TInstallationSettings &settings, TSettingsField &field)
{
    const auto wrong = [&field](TSettingsField where, const QString &text) {
        field = where;
        return text;
    };
    if (settings.country != kAustralia && settings.country != kNewZealand && settings.country != kOtherCountry)
        return wrong(TSettingsField::Country, TfrmSettings::tr("The country must be chosen."));
    if (settings.endTaxYear < kFirstTaxYear || settings.endTaxYear > kLastTaxYear)
        return wrong(TSettingsField::EndTaxYear,
                     TfrmSettings::tr("The tax year must be from %1 to %2.").arg(kFirstTaxYear).arg(kLastTaxYear));
    if (settings.bsbFormat.trimmed().isEmpty())
        return wrong(TSettingsField::BSBFormat, TfrmSettings::tr("The BSB format may not be blank."));
    const bool allowed = std::all_of(settings.bsbFormat.cbegin(), settings.bsbFormat.cend(),
                                     [](QChar c) { return QStringLiteral("09- ").contains(c); });
    if (!allowed || !(settings.bsbFormat.contains(QLatin1Char('0')) || settings.bsbFormat.contains(QLatin1Char('9'))))
        return wrong(TSettingsField::BSBFormat,
                     TfrmSettings::tr("The BSB format is made of 0 (a digit), 9 (a digit or nothing), - and spaces."));
    if (settings.rateDecimals < kLeastDecimals || settings.rateDecimals > kMostDecimals)
        return wrong(
            TSettingsField::RateDecimals,
            TfrmSettings::tr("The decimals of rates must be from %1 to %2.").arg(kLeastDecimals).arg(kMostDecimals));
    field = TSettingsField::None;
    return {};
}

TInstallationSettings ReadSettings()
{
    const TDbRows defaults = MainConnection().Select(QStringLiteral(
        "select top 1 Country, EndTaxYear, cBSBFormat, bHoursAndMinutes, bPhase2Reporting, bExtendedLogging "
        "from dbo.Defaults order by idDefaults"));
    const TDbRows general = MainConnection().Select(QStringLiteral(
        "select top 1 bBackpayEnabled, iRateDecimals from dbo._iptblGeneralParameters order by idGeneralParameters"));
    TInstallationSettings settings;
    settings.country = defaults.Value(0, u"Country").toInt();
    settings.endTaxYear = defaults.Value(0, u"EndTaxYear").toInt();
    settings.bsbFormat = defaults.Value(0, u"cBSBFormat").toString();
    settings.hoursAndMinutes = defaults.Value(0, u"bHoursAndMinutes").toBool();
    settings.phase2Reporting = defaults.Value(0, u"bPhase2Reporting").toBool();
    settings.extendedLogging = defaults.Value(0, u"bExtendedLogging").toBool();
    settings.backpay = general.Value(0, u"bBackpayEnabled").toBool();
    settings.rateDecimals = general.Value(0, u"iRateDecimals").toInt();
    return settings;
}

void WriteSettings(const TInstallationSettings &before, const TInstallationSettings &after)
{
    TChanges defaults(QStringLiteral("dbo.Defaults"));
    defaults.Add("Country", before.country, after.country);
    defaults.Add("EndTaxYear", before.endTaxYear, after.endTaxYear);
    defaults.Add("cBSBFormat", before.bsbFormat, after.bsbFormat);
    defaults.Add("bHoursAndMinutes", before.hoursAndMinutes, after.hoursAndMinutes);
    defaults.Add("bPhase2Reporting", before.phase2Reporting, after.phase2Reporting);
    defaults.Add("bExtendedLogging", before.extendedLogging, after.extendedLogging);
    TChanges general(QStringLiteral("dbo._iptblGeneralParameters"));
    general.Add("bBackpayEnabled", before.backpay, after.backpay);
    general.Add("iRateDecimals", before.rateDecimals, after.rateDecimals);

    if (defaults.IsEmpty() && general.IsEmpty())
        return;

    TDbTransaction transaction(MainConnection());
    defaults.Write(MainConnection());
    general.Write(MainConnection());
    LogActivity(QStringLiteral("Settings"), QStringLiteral("Installation"), QStringLiteral("Changed"));
    transaction.Commit();
}

TfrmSettings::TfrmSettings(QWidget *parent)
    : QDialog(parent)
    , before_(ReadSettings())
    , cbxCountry(new QComboBox(this))
    , edtEndTaxYear(new QSpinBox(this))
    , edtBSBFormat(new QLineEdit(this))
    , edtRateDecimals(new QSpinBox(this))
    , chkHoursAndMinutes(new QCheckBox(tr("Show &hours as hours and minutes"), this))
    , chkBackpay(new QCheckBox(tr("Bac&kpay"), this))
    , chkPhase2Reporting(new QCheckBox(tr("STP &Phase 2 reporting"), this))
    , chkExtendedLogging(new QCheckBox(tr("E&xtended activity logging"), this))
{
    setObjectName(QStringLiteral("frmSettings"));
    setWindowTitle(tr("Settings"));
    auto *form = new QFormLayout;
    const auto row = [form](const QString &caption, QWidget *editor, const char *name) {
        editor->setObjectName(QString::fromLatin1(name));
        editor->setAccessibleName(QString(caption).remove(QLatin1Char('&')));
        form->addRow(caption, editor);
    };
    for (const quint8 country : {kAustralia, kNewZealand, kOtherCountry})
        cbxCountry->addItem(CountryName(country), int(country));
    cbxCountry->setCurrentIndex(cbxCountry->findData(before_.country));
    row(tr("&Country"), cbxCountry, "cbxCountry");

    edtEndTaxYear->setRange(kFirstTaxYear, kLastTaxYear);
    edtEndTaxYear->setValue(before_.endTaxYear);
    edtEndTaxYear->setToolTip(tr("The calendar year in which the tax year ends"));
    row(tr("End tax &year"), edtEndTaxYear, "edtEndTaxYear");

    edtBSBFormat->setMaxLength(kFormatLength);
    edtBSBFormat->setText(before_.bsbFormat);
    edtBSBFormat->setToolTip(tr("0 a digit, 9 a digit or nothing"));
    row(tr("&BSB format"), edtBSBFormat, "edtBSBFormat");

    edtRateDecimals->setRange(kLeastDecimals, kMostDecimals);
    edtRateDecimals->setValue(before_.rateDecimals);
    row(tr("Rate &decimals"), edtRateDecimals, "edtRateDecimals");

    chkHoursAndMinutes->setObjectName(QStringLiteral("chkHoursAndMinutes"));
    chkHoursAndMinutes->setChecked(before_.hoursAndMinutes);
    chkBackpay->setObjectName(QStringLiteral("chkBackpay"));
    chkBackpay->setChecked(before_.backpay);
    chkPhase2Reporting->setObjectName(QStringLiteral("chkPhase2Reporting"));
    chkPhase2Reporting->setChecked(before_.phase2Reporting);
    chkExtendedLogging->setObjectName(QStringLiteral("chkExtendedLogging"));
    chkExtendedLogging->setChecked(before_.extendedLogging);
    for (QCheckBox *box : {chkHoursAndMinutes, chkBackpay, chkPhase2Reporting, chkExtendedLogging})
        form->addRow(QString(), box);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("btnOK"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("btnCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(cbxCountry, &QComboBox::activated, this, &TfrmSettings::TakeCountryDefaults);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addStretch();
    layout->addWidget(buttons);
    setMinimumWidth(380);
}

TInstallationSettings TfrmSettings::Entered() const
{
    TInstallationSettings settings;
    settings.country = cbxCountry->currentData().toInt();
    settings.endTaxYear = edtEndTaxYear->value();
    settings.bsbFormat = edtBSBFormat->text();
    settings.hoursAndMinutes = chkHoursAndMinutes->isChecked();
    settings.phase2Reporting = chkPhase2Reporting->isChecked();
    settings.extendedLogging = chkExtendedLogging->isChecked();
    settings.backpay = chkBackpay->isChecked();
    settings.rateDecimals = edtRateDecimals->value();
    return settings;
}

void TfrmSettings::TakeCountryDefaults()
{
    // Another country counts its tax years and writes its bank numbers in another way.
    const TDbRows rows = MainConnection().Select(
        QStringLiteral("select EndTaxYear, cBSBFormat from dbo._btblCountryDefaults where Country = :country"),
        {{QStringLiteral("country"), cbxCountry->currentData().toInt()}});
    if (rows.isEmpty())
        return;
    edtEndTaxYear->setValue(rows.Value(0, u"EndTaxYear").toInt());
    edtBSBFormat->setText(rows.Value(0, u"cBSBFormat").toString());
}

void TfrmSettings::done(int result)
{
    if (result == Accepted) {
        const TInstallationSettings entered = Entered();
        TSettingsField field = TSettingsField::None;
        if (const QString wrong = CheckSettings(entered, field); !wrong.isEmpty()) {
            InfoMessage(wrong);
            switch (field) {
            case TSettingsField::Country:
                cbxCountry->setFocus();
                break;
            case TSettingsField::EndTaxYear:
                edtEndTaxYear->setFocus();
                break;
            case TSettingsField::RateDecimals:
                edtRateDecimals->setFocus();
                break;
            case TSettingsField::BSBFormat:
            case TSettingsField::None:
                edtBSBFormat->setFocus();
                break;
            }
            return;
        }
        try {
            WriteSettings(before_, entered);
        } catch (const TDbError &error) {
            ShowException(error);
            return;
        }
    }
    QDialog::done(result);
}
