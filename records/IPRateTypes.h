// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/data/CorvexADOQuery.h"

// A rate type as its master row holds it: the values of the version in force, or those about to become a version's.
class CORVEX_API TqryIPRateTypes : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryIPRateTypes(QObject *owner = nullptr)
        : TqryIPRateTypes("_iptblRateTypes", "idRateType", owner)
    {}

    TEXT_COLUMN(Code, "cCode", 10)
    TEXT_COLUMN(Description, "cDescription", 50)
    INT_COLUMN(Type, "iType")
    FLOAT_COLUMN(Rate, "fRate")
    INT_COLUMN(FormulaID, "iFormulaID")
    INT_COLUMN(RateFactorID, "iRateFactorID")
    INT_COLUMN(HoursWorked, "iUDHoursWorked")
    INT_COLUMN(Grouping, "iGrouping")
    BOOL_COLUMN(Active, "bActive")
    DATE_COLUMN(EffectiveDate, "dEffectiveDate")
    INT_COLUMN(ChangeReasonID, "iChangeReasonID")

protected:
    TqryIPRateTypes(const QString &table, const QString &keyField, QObject *owner)
        : TCorvexADOQuery(table, keyField, Keys::Server, owner)
    {}
};

// A version of a rate type, for reading: versions are written by their procedure.
class CORVEX_API TqryIPRateTypeVersions final : public TqryIPRateTypes
{
    Q_OBJECT
public:
    explicit TqryIPRateTypeVersions(QObject *owner = nullptr)
        : TqryIPRateTypes("[dbo].[_ipfnGetRateTypes]('18991230',1,1,1)", "idRateTypeTD", owner)
    {}

    INT_COLUMN(RateType, "idRateType")
    BOOL_COLUMN(System, "bSystem")
    INT_COLUMN(AwardTDID, "iAwardTDID")
};
