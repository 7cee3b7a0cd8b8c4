// SPDX-License-Identifier: Apache-2.0
#include "framework/Ipglobal.h"

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
