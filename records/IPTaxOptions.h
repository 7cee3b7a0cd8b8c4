// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/Kvglobal.h"
#include "framework/data/CorvexADOQuery.h"

// What taxable gross and tax are rounded to in New Zealand and the third country, one row a tax year.
class CORVEX_API TqryIPTaxOptions final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPTaxOptions(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblTaxOptions", "idTaxOptions", Keys::Server, owner)
    {}

    INT_COLUMN(TaxYear, "iTaxYear")
    INT_COLUMN(Country, "iCountry")
    FLOAT_COLUMN(RoundTaxableGrossTo, "fRoundTaxableGrossTo")
    FLOAT_COLUMN(RoundTaxTo, "fRoundTaxTo")

    // Reads the row of the installation's country and a tax year; there is none when nobody has entered it.
    void GetTaxOptions(int year)
    {
        SelectWhere("iCountry = :country and iTaxYear = :year", {{"country", int(CountryCode)}, {"year", year}});
    }
    // Begins to change the row of that year, a new one when there is none.
    void EditTaxYear(int year)
    {
        if (!IsEmpty()) {
            brEdit(true);
            return;
        }
        brAppend(true);
        SetTaxYear(year);
        SetCountry(CountryCode);
    }
};
