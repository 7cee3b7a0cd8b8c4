// SPDX-License-Identifier: Apache-2.0
#include "framework/Ipglobal.h"

#include <QCoreApplication>

#include "framework/Kvglobal.h"

QString BSBEditMask(const QString &format)
{
    const QString tail = QStringLiteral(";1;_");
    const qsizetype dash = format.indexOf(QLatin1Char('-'));
    if (CountryCode == kOtherCountry || dash < 0)
        return format + tail;
    return format.left(dash) + QStringLiteral("\\-") + format.mid(dash + 1) + tail;
}

QString BankNameCaption()
{
    return CountryCode == kAustralia ? QStringLiteral("Bank Name") : QStringLiteral("Bank Abbrv");
}

TLookupSource StateLookup()
{
    TLookupSource source;
    source.from = QStringLiteral("_iptblStates");
    source.key = QStringLiteral("idState");
    source.columns = {{QStringLiteral("cStateCode"), QStringLiteral("State Code")},
                      {QStringLiteral("cStateDescription"), QStringLiteral("Description")}};
    source.orderBy = QStringLiteral("cStateCode");
    return source;
}

bool TaxScaleEditable(const QString &Code, bool)
{
    return MainConnection()
        .Select(QStringLiteral("select idTaxOfficeScaleCode from _iptblTaxOfficeScaleCodes "
                               "where iCountry = :country and cCode = :code"),
                {{QStringLiteral("country"), int(CountryCode)}, {QStringLiteral("code"), Code.trimmed()}})
        .isEmpty();
}

const QStringList &TRateTypeString()
{
    static const QStringList texts{QStringLiteral("Fixed"), QStringLiteral("Formula"), QStringLiteral("Award")};
    return texts;
}

const QStringList &TRateGroupingString()
{
    static const QStringList texts{QStringLiteral("Pay"), QStringLiteral("Leave"), QStringLiteral("Award")};
    return texts;
}

const QStringList &HourTypesString()
{
    static const QStringList texts{
        QStringLiteral("Normal"),
        QStringLiteral("Time and a Half"),
        QStringLiteral("Double Time"),
        QStringLiteral("Annual Leave"),
        QStringLiteral("Other Leave"),
        QStringLiteral("Overtime"),
        QStringLiteral("Long Service Leave"),
        QStringLiteral("User Defined Leave"),
        QStringLiteral("Sick Leave"),
        QStringLiteral("RDO"),
        QStringLiteral("Public Holiday"),
        QStringLiteral("Workers Compensation"),
        QStringLiteral("Parental Leave"),
        QStringLiteral("Training"),
        QStringLiteral("Travel"),
        QStringLiteral("Unpaid"),
    };
    return texts;
}

TLookupSource ChangeReasonLookup()
{
    TLookupSource source;
    source.from = QStringLiteral("_iptblChangeReasons");
    source.key = QStringLiteral("idChangeReason");
    source.columns = {{QStringLiteral("cChangeReason"), QStringLiteral("Change Reason")}};
    source.where = QStringLiteral("bActive = 1");
    return source;
}

TLookupSource FormulaLookup()
{
    TLookupSource source;
    source.from = QStringLiteral("_iptblFormulaMain");
    source.key = QStringLiteral("idFormulaMain");
    source.columns = {{QStringLiteral("cCode"), QStringLiteral("Formula Code")},
                      {QStringLiteral("cFormulaName"), QStringLiteral("Formula Name")}};
    return source;
}

TLookupSource RateFactorLookup()
{
    TLookupSource source;
    source.from = QStringLiteral("_iptblRateFactors");
    source.key = QStringLiteral("idRateFactor");
    source.columns = {{QStringLiteral("cCode"), QStringLiteral("Code")},
                      {QStringLiteral("cDescription"), QStringLiteral("Description")}};
    return source;
}

TLookupSource RateTypeLookup()
{
    TLookupSource source;
    source.from = QStringLiteral("_iptblRateTypes");
    source.key = QStringLiteral("idRateType");
    source.columns = {{QStringLiteral("cCode"), QStringLiteral("Code")},
                      {QStringLiteral("cDescription"), QStringLiteral("Description")}};
    return source;
}

bool CommandLineHolds(const QString &word)
{
    return QCoreApplication::arguments().contains(word, Qt::CaseInsensitive);
}
