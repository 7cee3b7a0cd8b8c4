// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/Kvglobal.h"
#include "framework/data/CorvexADOQuery.h"

// A withholding table of one country and tax year.
class CORVEX_API TADOQryPRTaxScales final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TADOQryPRTaxScales(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblTaxScales", "idTaxScales", Keys::Client, owner)
    {}

    int GetTaxScalesID() const { return KeyValue(); }
    void SetTaxScalesID(int id) { SetKeyValue(id); }
    TEXT_COLUMN(Code, "cCode", 10)
    TEXT_COLUMN(Description, "cDescription", 50)
    BOOL_COLUMN(UserDefinable, "bUserDefinable")
    BOOL_COLUMN(RatesApplicable, "bRatesApplicable")
    BOOL_COLUMN(IncludeLeaveLoading, "bIncludeLeaveLoading")
    INT_COLUMN(Country, "iCountry")
    INT_COLUMN(TaxYear, "iTaxYear")
    INT_COLUMN(MedicareScalesID, "iMedicareScalesID") // 0: none
    TEXT_COLUMN(MedicareScaleCode, "cMedicareScaleCode", 10)

    // Sets a list's filter to the current country and tax year; takes effect when it is read next.
    void RefreshTaxProperties()
    {
        SetFilter("iCountry = :country and iTaxYear = :year",
                  {{"country", int(CountryCode)}, {"year", GetEndTaxYear()}});
    }
};

// One row of a withholding table: below the threshold TaxBracket, y = TaxPercentage * x - TaxAmount.
class CORVEX_API TADOQryPRTaxBrackets final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TADOQryPRTaxBrackets(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblTaxBrackets", "idTaxBrackets", Keys::Client, owner)
    {}

    INT_COLUMN(TaxScalesID, "iTaxScalesID")
    TEXT_COLUMN(TaxScaleCode, "cTaxScaleCode", 10)
    INT_COLUMN(BracketTaxYear, "iBracketTaxYear")
    FLOAT_COLUMN(TaxBracket, "TaxBracket")
    FLOAT_COLUMN(TaxPercentage, "TaxPercentage") // coefficient A
    FLOAT_COLUMN(TaxAmount, "TaxAmount")         // coefficient B
    FLOAT_COLUMN(CoefficientC, "CoefficientC")
};
