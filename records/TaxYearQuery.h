// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/Kvglobal.h"
#include "framework/data/CorvexADOQuery.h"

// A record class whose lists show the installation's current tax year.
class CORVEX_API TTaxYearQuery : public TCorvexADOQuery
{
    Q_OBJECT
public:
    using TCorvexADOQuery::TCorvexADOQuery;
    // Sets a list's filter to the current tax year; takes effect when it is read next.
    void RefreshTaxYear() { SetFilter("iTaxYear = :year", {{"year", GetEndTaxYear()}}); }
};
