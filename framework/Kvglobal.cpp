// SPDX-License-Identifier: Apache-2.0
#include "framework/Kvglobal.h"

#include <QDateTime>

#include "framework/data/Database.h"

quint8 CountryCode = kAustralia;

namespace {

TInstallation theInstallation;
int theAgentID = 0;
QString theAgentName;

} // namespace

const TInstallation &Installation()
{
    return theInstallation;
}

void LoadInstallation()
{
    const TDbRows defaults = MainConnection().Select(
        QStringLiteral("select top 1 Country, EndTaxYear, cBSBFormat, bHoursAndMinutes, bPhase2Reporting "
                       "from Defaults order by idDefaults"));
    const TDbRows parameters = MainConnection().Select(
        QStringLiteral("select top 1 bBackpayEnabled, iRateDecimals from _iptblGeneralParameters "
                       "order by idGeneralParameters"));
    if (defaults.isEmpty() || parameters.isEmpty()) {
        throw TDbError(TDbError::Kind::Other, 0,
                       QStringLiteral("The database holds no installation settings. It was not set up completely."));
    }
    TInstallation loaded;
    loaded.endTaxYear = defaults.Value(0, u"EndTaxYear").toInt();
    loaded.bsbFormat = defaults.Value(0, u"cBSBFormat").toString().trimmed();
    loaded.hoursAndMinutes = defaults.Value(0, u"bHoursAndMinutes").toBool();
    loaded.phase2Reporting = defaults.Value(0, u"bPhase2Reporting").toBool();
    loaded.backpayEnabled = parameters.Value(0, u"bBackpayEnabled").toBool();
    loaded.rateDecimals = parameters.Value(0, u"iRateDecimals").toInt();
    theInstallation = loaded;
    CountryCode = quint8(defaults.Value(0, u"Country").toInt());
}

int GetEndTaxYear()
{
    return theInstallation.endTaxYear;
}

int CurrentAgentID()
{
    return theAgentID;
}

QString CurrentAgentName()
{
    return theAgentName;
}

void SetCurrentAgent(int id, const QString &name)
{
    theAgentID = id;
    theAgentName = name;
}

void LogActivity(const QString &kind, const QString &code, const QString &action)
{
    MainConnection().Execute(
        QStringLiteral(
            "insert into _btblActivityLog (dWhen, iAgentID, cAgentName, iLogType, cKind, cCode, cAction, cText) "
            "values (:now, :agent, :name, 0, :kind, :code, :action, :text)"),
        {{QStringLiteral("now"), QDateTime::currentDateTime()},
         {QStringLiteral("agent"), theAgentID != 0 ? QVariant(theAgentID) : QVariant(QMetaType(QMetaType::Int))},
         {QStringLiteral("name"), theAgentName},
         {QStringLiteral("kind"), kind},
         {QStringLiteral("code"), code},
         {QStringLiteral("action"), action},
         {QStringLiteral("text"), kind + QStringLiteral(" \"") + code + QStringLiteral("\" ") + action}});
}
