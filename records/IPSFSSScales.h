// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "records/TaxYearQuery.h"

// Student financial supplement scheme: a repayment table of one tax year.
class CORVEX_API TqryIPSFSSScales final : public TTaxYearQuery
{
    Q_OBJECT
public:
    explicit TqryIPSFSSScales(QObject *owner = nullptr)
        : TTaxYearQuery("_iptblSFSSScales", "idSFSSScales", Keys::Client, owner)
    {}

    TEXT_COLUMN(Code, "cCode", 10)
    TEXT_COLUMN(Description, "cDescription", 100)
    INT_COLUMN(TaxYear, "iTaxYear")
};

class CORVEX_API TqryIPSFSSBrackets final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPSFSSBrackets(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblSFSSBrackets", "idSFSSBrackets", Keys::Client, owner)
    {}

    INT_COLUMN(ScalesID, "iSFSSScalesID")
    INT_COLUMN(TaxYear, "iTaxYear")
    FLOAT_COLUMN(WeeklyEarnings, "fWeeklyEarnings")
    FLOAT_COLUMN(CoefficientA, "CoefficientA")
};
