// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/data/CorvexADOQuery.h"

// Australia's termination values of one tax year.
class CORVEX_API TqryIPTaxParameters final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPTaxParameters(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblSGLTaxParameters", "idSGLTaxParameters", Keys::Server, owner)
    {}

    INT_COLUMN(TaxYear, "iTaxYear")
    INT_COLUMN(Country, "iCountry")
    FLOAT_COLUMN(TerminationTaxRate, "TerminationTaxRate")
    FLOAT_COLUMN(TermNoTFNResidentRate, "TermNoTFNResidentRate")
    FLOAT_COLUMN(TermNoTFNNonResRate, "TermNoTFNNonResRate")
    FLOAT_COLUMN(TermPost93GrossRate, "TermPost93GrossRate")
    FLOAT_COLUMN(TermPost93GrossLimit, "TermPost93GrossLimit")
    FLOAT_COLUMN(TermAssAmtPercent, "TermAssAmtPercent")
    FLOAT_COLUMN(TermSpecRateMedLevy, "TermSpecRateMedLevy")
    FLOAT_COLUMN(ReducedTaxRate, "ReducedTaxRate") // from preservation age on
    FLOAT_COLUMN(TermAboveCapRate, "TermAboveCapRate")
    FLOAT_COLUMN(TaxReductionAmount, "TaxReductionAmount") // lower cap of termination payments
    FLOAT_COLUMN(TermETPUpperCap, "TermETPUpperCap")
    FLOAT_COLUMN(TermWholeOfIncomeCap, "TermWholeOfIncomeCap")
    FLOAT_COLUMN(TermETPInitTaxFree, "TermETPInitTaxFree")
    FLOAT_COLUMN(TermETPAnnualTaxFree, "TermETPAnnualTaxFree")

    // Reads the row of a tax year; there is none when nobody has entered it.
    void SelectTaxYear(int year) { SelectWhere("((iTaxYear=:year)) AND ((iCountry=5))", {{"year", year}}); }
};
