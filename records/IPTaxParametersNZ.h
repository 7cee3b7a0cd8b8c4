// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/Kvglobal.h"
#include "framework/data/CorvexADOQuery.h"

// New Zealand's levy, student loan and payroll giving values of one tax year. Rates are percentages.
class CORVEX_API TqryIPTaxParametersNZ final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPTaxParametersNZ(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblTaxParametersNZ", "idTaxParametersNZ", Keys::Server, owner)
    {}

    INT_COLUMN(TaxYear, "iTaxYear")
    INT_COLUMN(Country, "iCountry")
    FLOAT_COLUMN(PayrollGivingCredit, "fPayrollGivingCredit")
    FLOAT_COLUMN(LoanRate, "fLoanRate")
    FLOAT_COLUMN(AnnualLoanThreshold, "fAnnualLoanThreshold")
    FLOAT_COLUMN(LevyFixedAmount, "fLevyFixedAmount")
    FLOAT_COLUMN(LevyRate, "fLevyRate")
    FLOAT_COLUMN(AnnualLevyThreshold, "fAnnualLevyThreshold")

    void SelectTaxYear(int year)
    {
        SelectWhere("iCountry = :country and iTaxYear = :year", {{"country", int(kNewZealand)}, {"year", year}});
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
        SetCountry(kNewZealand);
    }
};

// Tax rates of lump sums: a row applies while annual income with the payment is at most LumpSum.
class CORVEX_API TqryIPLumpSumTaxRates final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPLumpSumTaxRates(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblLumpSumTaxRates", "idLumpSumTaxRate", Keys::Server, owner)
    {}

    INT_COLUMN(TaxYear, "iTaxYear")
    INT_COLUMN(Country, "iCountry")
    FLOAT_COLUMN(LumpSum, "fLumpSum")
    FLOAT_COLUMN(TaxRate, "fTaxRate")
};

class CORVEX_API TqryIPTaxRebates final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPTaxRebates(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblTaxRebates", "idTaxRebate", Keys::Server, owner)
    {}

    INT_COLUMN(TaxYear, "iTaxYear")
    INT_COLUMN(Country, "iCountry")
    FLOAT_COLUMN(AnnualValue, "fAnnualValue")
    FLOAT_COLUMN(Rate, "fRate")
    FLOAT_COLUMN(Amount, "fAmount")
};
