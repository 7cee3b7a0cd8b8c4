// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "records/TaxYearQuery.h"

// The parameters of the Medicare levy for one tax year, under a code.
class CORVEX_API TQryIPMedicareScales final : public TTaxYearQuery
{
    Q_OBJECT
public:
    explicit TQryIPMedicareScales(QObject *owner = nullptr)
        : TTaxYearQuery("_iptblMedicareScales", "idMedicareScales", Keys::Client, owner)
    {}

    int GetIdMedicareScales() const { return KeyValue(); }
    TEXT_COLUMN(Code, "cCode", 10)
    TEXT_COLUMN(MedicareScaleDescription, "cMedicareScaleDescription", 50)
    INT_COLUMN(TaxYear, "iTaxYear")
    FLOAT_COLUMN(WeeklyEarningsThreshold, "fWeeklyEarningsThreshold")
    FLOAT_COLUMN(WeeklyEarningsShadeInThreshold, "fWeeklyEarningsShadeInThreshold")
    FLOAT_COLUMN(FamilyThreshold, "fFamilyThreshold")
    FLOAT_COLUMN(WFTDivisor, "fWFTDivisor")
    FLOAT_COLUMN(AdditionalChildAllowance, "fAdditionalChildAllowance")
    FLOAT_COLUMN(SOPMultiplier, "fSOPMultiplier")
    FLOAT_COLUMN(SOPDivisor, "fSOPDivisor")
    FLOAT_COLUMN(WLAFactor, "fWLAFactor")
    FLOAT_COLUMN(AdjustmentLevy, "fAdjustmentLevy")
};
