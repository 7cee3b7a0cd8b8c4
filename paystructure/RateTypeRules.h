// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/effectivedate/EditingController.h"

// What the list and the dialog of rate types share.

enum RateKind { FixedRate = 0, FormulaRate = 1, AwardRate = 2 };

inline constexpr TDatedUse kRateTypeHolders[] = {
    {"_iptblEmployeeAdditionalRates", "iAddRateTypeID", true},
    {"_ipvPayClassesAddRates_TD", "iRateTypeID", false},
};

// Sick leave is listed as user-defined leave, as its users know it.
inline constexpr TInUse kRateTypeInUse[] = {
    {"_iptblEmployeeAdditionalRates", "iAddRateTypeID", "Employees"},
    {"_iptblEmployeeTrans", "iRateTypeID", "Transactions"},
    {"_iptblEmployeeTransEOY", "iRateTypeID", " Previous Years Transactions"},
    {"_iptblEmployeeTransCosting", "iRateTypeID", " Costing Transactions"},
    {"_iptblEmployeeTransCostingEOY", "iRateTypeID", " Previous Years Costing Transactions"},
    {"_iptblSickLeaveRateTypes", "iRateTypeID", "User Defined Leave"},
    {"_iptblUserDefinedLeaveRateTypes", "iRateTypeID", "User Defined Leave"},
    {"_iptblAnnualLeaveRateTypes", "iRateTypeID", "Annual Leave"},
    {"_iptblLSLeaveRateTypes", "iRateTypeID", "Long Service Leave"},
    {"_iptblAdditionsDeductionsHours", "iRateTypeID", "Additions / Deductions"},
    {"_iptblLeaveReasons", "iRateTypeID", "Leave Reasons"},
    {"_iptblLeaveLoading", "iRateTypeID", "Leave Loading"},
    {"_iptblPayClassAddRates", "iRateTypeID", "Pay Classes"},
};

inline constexpr TDateEffectiveFacts kRateTypeDates{
    "Rate",
    "_iptblRateTypes",
    "idRateType",
    "_iptblRateTypes_TD",
    "idRateTypeTD",
    "iRateTypeID",
    "_ipvRateTypes_TD",
    "iRateTypeID",
    kRateTypeHolders,
    kRateTypeInUse,
    "_ipspUpdateRateTypes_TD",
    "@iRateTypeID",
    "@iRateTypeTDID",
    true,
    "Add/Edit Rate Type TD Record",
    "Delete Rate Type Record",
    "Rate Type Add/Edit!\r\nError:",
};
