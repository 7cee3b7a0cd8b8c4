// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/data/CorvexADOQuery.h"

// A named percentage by which a pay class multiplies the normal rate.
class CORVEX_API TqryIPRateFactors final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPRateFactors(QObject *owner = nullptr)
        : TCorvexADOQuery("_iptblRateFactors", "idRateFactor", Keys::Server, owner)
    {}

    TEXT_COLUMN(Code, "cCode", 10)
    TEXT_COLUMN(Description, "cDescription", 50)
    FLOAT_COLUMN(RateFactor, "fRateFactor")
};
