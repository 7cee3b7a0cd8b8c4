// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "records/TaxYearQuery.h"

// Study and training support loans: a repayment table of one tax year.
class CORVEX_API TqryIPHECSScales final : public TTaxYearQuery
{
    Q_OBJECT
public:
    explicit TqryIPHECSScales(QObject *owner = nullptr)
        : TTaxYearQuery("_iptblHECSScales", "idHECSScales", Keys::Client, owner)
    {}

    TEXT_COLUMN(Code, "cCode", 10)
    TEXT_COLUMN(Description, "cDescription", 100)
    INT_COLUMN(TaxYear, "iTaxYear")
};

class CORVEX_API TqryIPHECSBrackets final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPHECSBrackets(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblHECSBrackets", "idHECSBrackets", Keys::Client, owner)
    {}

    INT_COLUMN(ScalesID, "iHECSScalesID")
    INT_COLUMN(TaxYear, "iTaxYear")
    FLOAT_COLUMN(WeeklyEarnings, "fWeeklyEarnings")
    FLOAT_COLUMN(CoefficientA, "CoefficientA")
    FLOAT_COLUMN(CoefficientB, "CoefficientB")
};
