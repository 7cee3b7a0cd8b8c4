-- Pay structure: rate types with their versions, and everything that refers to a rate type. iRateTypeID is the id of the master everywhere.

CREATE TABLE dbo._iptblFormulaMain (
    idFormulaMain int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblFormulaMain PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cFormulaName nvarchar(50) NULL
)
GO

CREATE TABLE dbo._iptblAwards (
    idAward int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblAwards PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cAwardName nvarchar(50) NULL
)
GO

CREATE TABLE dbo._iptblAwards_TD (
    idAwardTD int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblAwards_TD PRIMARY KEY,
    iAwardID int NOT NULL,
    dEffectiveDate datetime NOT NULL,
    dEndDate datetime NULL,
    iChangeType int NOT NULL DEFAULT 1
)
GO
CREATE INDEX IX__iptblAwards_TD_Award ON dbo._iptblAwards_TD (iAwardID, dEffectiveDate)
GO

CREATE TABLE dbo._iptblRateFactors (
    idRateFactor int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblRateFactors PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cDescription nvarchar(50) NULL,
    fRateFactor float NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblRateFactors_Code ON dbo._iptblRateFactors (cCode, idRateFactor)
GO

-- The master of a rate type. Besides its own code it carries the values of the version in force; a dialog writes its values
-- here and _ipspUpdateRateTypes_TD takes them from here into the version.
CREATE TABLE dbo._iptblRateTypes (
    idRateType int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblRateTypes PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cDescription nvarchar(50) NULL,
    iType int NOT NULL DEFAULT 0,        -- 0 fixed, 1 formula, 2 award
    fRate float NOT NULL DEFAULT 0,
    iFormulaID int NULL,
    iRateFactorID int NULL,
    iUDHoursWorked int NOT NULL DEFAULT 0,
    iGrouping int NULL,
    bActive bit NOT NULL DEFAULT 1,
    bSystem bit NOT NULL DEFAULT 0,
    iAwardTDID int NOT NULL DEFAULT 0,
    dEffectiveDate datetime NULL,
    iChangeReasonID int NULL,
    iRateTypeTDID int NULL               -- the version whose values stand here
)
GO
CREATE INDEX IX__iptblRateTypes_Code ON dbo._iptblRateTypes (cCode, idRateType)
GO

-- The versions. Live ones (iChangeType 1 added, 2 edited) of a master follow each other without gap or overlap, the last one
-- without an end; deleted ones (3) stay as history, also when their master is gone.
CREATE TABLE dbo._iptblRateTypes_TD (
    idRateTypeTD int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblRateTypes_TD PRIMARY KEY,
    iRateTypeID int NOT NULL,
    cCode nvarchar(10) NOT NULL,
    cDescription nvarchar(50) NULL,
    iType int NOT NULL DEFAULT 0,
    fRate float NOT NULL DEFAULT 0,
    iFormulaID int NULL,
    iRateFactorID int NULL,
    iUDHoursWorked int NOT NULL DEFAULT 0,
    iGrouping int NULL,
    bActive bit NOT NULL DEFAULT 1,
    iAwardTDID int NOT NULL DEFAULT 0,
    dEffectiveDate datetime NOT NULL,
    dEndDate datetime NULL,
    iChangeReasonID int NULL,
    iChangeType int NOT NULL DEFAULT 1,
    iCreateAgentID int NULL,
    dCreated datetime NULL,
    iChangeAgentID int NULL,
    dChanged datetime NULL
)
GO
CREATE INDEX IX__iptblRateTypes_TD_Master ON dbo._iptblRateTypes_TD (iRateTypeID, dEffectiveDate)
GO
CREATE INDEX IX__iptblRateTypes_TD_Code ON dbo._iptblRateTypes_TD (cCode, idRateTypeTD)
GO

CREATE TABLE dbo._iptblPayFrequencies (
    idPayFrequency int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblPayFrequencies PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cDescription nvarchar(50) NULL,
    iPeriodsPerYear int NOT NULL
)
GO

-- Payroll companies.
CREATE TABLE dbo._iptblPayerGroups (
    idPayerGroup int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblPayerGroups PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cPayerGroupName nvarchar(50) NULL,
    iEFTID int NULL
)
GO
CREATE INDEX IX__iptblPayerGroups_EFT ON dbo._iptblPayerGroups (iEFTID)
GO

-- The pay calendar. The current period of a payroll company and frequency is the first that is not closed.
CREATE TABLE dbo._iptblPayPeriods (
    idPayPeriod int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblPayPeriods PRIMARY KEY,
    iPayerGroupID int NOT NULL,
    iPayFrequencyID int NOT NULL,
    iTaxYear int NOT NULL,
    iPeriodNumber int NOT NULL,
    dStartDate datetime NOT NULL,
    dEndDate datetime NOT NULL,
    bClosed bit NOT NULL DEFAULT 0
)
GO
CREATE UNIQUE INDEX IX__iptblPayPeriods_Start ON dbo._iptblPayPeriods (iPayerGroupID, iPayFrequencyID, dStartDate)
GO
CREATE INDEX IX__iptblPayPeriods_Closed ON dbo._iptblPayPeriods (bClosed, iPayerGroupID, iPayFrequencyID, dStartDate)
GO

CREATE TABLE dbo._iptblPayClasses (
    idPayClass int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblPayClasses PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cDescription nvarchar(50) NULL,
    iTimeHalfRateFactor int NULL,
    iDoubleRateFactor int NULL
)
GO
CREATE INDEX IX__iptblPayClasses_TimeHalf ON dbo._iptblPayClasses (iTimeHalfRateFactor)
GO
CREATE INDEX IX__iptblPayClasses_Double ON dbo._iptblPayClasses (iDoubleRateFactor)
GO

CREATE TABLE dbo._iptblPayClassAddRates (
    idPayClassAddRate int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblPayClassAddRates PRIMARY KEY,
    iPayClassID int NOT NULL,
    iRateTypeID int NOT NULL,
    fRate float NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblPayClassAddRates_RateType ON dbo._iptblPayClassAddRates (iRateTypeID)
GO

CREATE TABLE dbo._iptblPayClassAddRates_TD (
    idPayClassAddRateTD int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblPayClassAddRates_TD PRIMARY KEY,
    iPayClassAddRateID int NULL,
    iPayClassID int NOT NULL,
    iRateTypeID int NOT NULL,
    fRate float NOT NULL DEFAULT 0,
    dEffectiveDate datetime NOT NULL,
    dEndDate datetime NULL,
    iChangeType int NOT NULL DEFAULT 1
)
GO
CREATE INDEX IX__iptblPayClassAddRates_TD_RateType ON dbo._iptblPayClassAddRates_TD (iRateTypeID, dEffectiveDate)
GO

-- The rates that an employee has besides the normal one.
CREATE TABLE dbo._iptblEmployeeAdditionalRates (
    idEmployeeAdditionalRate int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblEmployeeAdditionalRates PRIMARY KEY,
    iEmployeeID int NOT NULL,
    iAddRateTypeID int NOT NULL,
    fRate float NOT NULL DEFAULT 0,
    dEffectiveDate datetime NULL,
    dEndDate datetime NULL
)
GO
CREATE INDEX IX__iptblEmployeeAdditionalRates_RateType ON dbo._iptblEmployeeAdditionalRates (iAddRateTypeID, dEffectiveDate)
GO
CREATE INDEX IX__iptblEmployeeAdditionalRates_Employee ON dbo._iptblEmployeeAdditionalRates (iEmployeeID)
GO

-- Pay transactions of this year and of previous years, and their costing.
CREATE TABLE dbo._iptblEmployeeTrans (
    idEmployeeTrans int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblEmployeeTrans PRIMARY KEY,
    iEmployeeID int NULL,
    iPayPeriodID int NULL,
    dTransDate datetime NULL,
    iRateTypeID int NULL,
    iAddDeductID int NULL,
    iLeaveReasonID int NULL,
    fHours float NOT NULL DEFAULT 0,
    fRate float NOT NULL DEFAULT 0,
    fAmount float NOT NULL DEFAULT 0,
    bPosted bit NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblEmployeeTrans_RateType ON dbo._iptblEmployeeTrans (iRateTypeID, bPosted, dTransDate)
GO
CREATE INDEX IX__iptblEmployeeTrans_AddDeduct ON dbo._iptblEmployeeTrans (iAddDeductID, bPosted, dTransDate)
GO
CREATE INDEX IX__iptblEmployeeTrans_LeaveReason ON dbo._iptblEmployeeTrans (iLeaveReasonID)
GO

CREATE TABLE dbo._iptblEmployeeTransEOY (
    idEmployeeTransEOY int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblEmployeeTransEOY PRIMARY KEY,
    iEmployeeID int NULL,
    iPayPeriodID int NULL,
    dTransDate datetime NULL,
    iRateTypeID int NULL,
    iAddDeductID int NULL,
    iLeaveReasonID int NULL,
    fHours float NOT NULL DEFAULT 0,
    fRate float NOT NULL DEFAULT 0,
    fAmount float NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblEmployeeTransEOY_RateType ON dbo._iptblEmployeeTransEOY (iRateTypeID, dTransDate)
GO
CREATE INDEX IX__iptblEmployeeTransEOY_AddDeduct ON dbo._iptblEmployeeTransEOY (iAddDeductID, dTransDate)
GO
CREATE INDEX IX__iptblEmployeeTransEOY_LeaveReason ON dbo._iptblEmployeeTransEOY (iLeaveReasonID)
GO

CREATE TABLE dbo._iptblEmployeeTransCosting (
    idEmployeeTransCosting int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblEmployeeTransCosting PRIMARY KEY,
    iEmployeeTransID int NULL,
    iEmployeeID int NULL,
    dTransDate datetime NULL,
    iRateTypeID int NULL,
    iAddDeductID int NULL,
    iLeaveReasonID int NULL,
    iCostAccountID int NULL,
    fAmount float NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblEmployeeTransCosting_RateType ON dbo._iptblEmployeeTransCosting (iRateTypeID)
GO
CREATE INDEX IX__iptblEmployeeTransCosting_AddDeduct ON dbo._iptblEmployeeTransCosting (iAddDeductID)
GO
CREATE INDEX IX__iptblEmployeeTransCosting_LeaveReason ON dbo._iptblEmployeeTransCosting (iLeaveReasonID)
GO

CREATE TABLE dbo._iptblEmployeeTransCostingEOY (
    idEmployeeTransCostingEOY int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblEmployeeTransCostingEOY PRIMARY KEY,
    iEmployeeTransID int NULL,
    iEmployeeID int NULL,
    dTransDate datetime NULL,
    iRateTypeID int NULL,
    iAddDeductID int NULL,
    iLeaveReasonID int NULL,
    iCostAccountID int NULL,
    fAmount float NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblEmployeeTransCostingEOY_RateType ON dbo._iptblEmployeeTransCostingEOY (iRateTypeID)
GO
CREATE INDEX IX__iptblEmployeeTransCostingEOY_AddDeduct ON dbo._iptblEmployeeTransCostingEOY (iAddDeductID)
GO
CREATE INDEX IX__iptblEmployeeTransCostingEOY_LeaveReason ON dbo._iptblEmployeeTransCostingEOY (iLeaveReasonID)
GO

-- The rate types that count towards a leave type; iLeaveID is the leave type of that kind.
CREATE TABLE dbo._iptblSickLeaveRateTypes (
    idSickLeaveRateType int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblSickLeaveRateTypes PRIMARY KEY,
    iLeaveID int NOT NULL,
    iRateTypeID int NOT NULL
)
GO
CREATE INDEX IX__iptblSickLeaveRateTypes_RateType ON dbo._iptblSickLeaveRateTypes (iRateTypeID)
GO
CREATE INDEX IX__iptblSickLeaveRateTypes_Leave ON dbo._iptblSickLeaveRateTypes (iLeaveID)
GO

CREATE TABLE dbo._iptblUserDefinedLeaveRateTypes (
    idUserDefinedLeaveRateType int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblUserDefinedLeaveRateTypes PRIMARY KEY,
    iLeaveID int NOT NULL,
    iRateTypeID int NOT NULL
)
GO
CREATE INDEX IX__iptblUserDefinedLeaveRateTypes_RateType ON dbo._iptblUserDefinedLeaveRateTypes (iRateTypeID)
GO
CREATE INDEX IX__iptblUserDefinedLeaveRateTypes_Leave ON dbo._iptblUserDefinedLeaveRateTypes (iLeaveID)
GO

CREATE TABLE dbo._iptblAnnualLeaveRateTypes (
    idAnnualLeaveRateType int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblAnnualLeaveRateTypes PRIMARY KEY,
    iLeaveID int NOT NULL,
    iRateTypeID int NOT NULL
)
GO
CREATE INDEX IX__iptblAnnualLeaveRateTypes_RateType ON dbo._iptblAnnualLeaveRateTypes (iRateTypeID)
GO
CREATE INDEX IX__iptblAnnualLeaveRateTypes_Leave ON dbo._iptblAnnualLeaveRateTypes (iLeaveID)
GO

CREATE TABLE dbo._iptblLSLeaveRateTypes (
    idLSLeaveRateType int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblLSLeaveRateTypes PRIMARY KEY,
    iLeaveID int NOT NULL,
    iRateTypeID int NOT NULL
)
GO
CREATE INDEX IX__iptblLSLeaveRateTypes_RateType ON dbo._iptblLSLeaveRateTypes (iRateTypeID)
GO
CREATE INDEX IX__iptblLSLeaveRateTypes_Leave ON dbo._iptblLSLeaveRateTypes (iLeaveID)
GO

-- The hour types chosen for an addition or deduction.
CREATE TABLE dbo._iptblAdditionsDeductionsHours (
    idAdditionsDeductionsHours int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblAdditionsDeductionsHours PRIMARY KEY,
    iAdditionsDeductionsID int NOT NULL,
    iAdditionsDeductionsTDID int NULL,
    iRateTypeID int NOT NULL,
    cRateTypeCode nvarchar(10) NULL
)
GO
CREATE INDEX IX__iptblAdditionsDeductionsHours_RateType ON dbo._iptblAdditionsDeductionsHours (iRateTypeID)
GO
CREATE INDEX IX__iptblAdditionsDeductionsHours_AddDeduct ON dbo._iptblAdditionsDeductionsHours (iAdditionsDeductionsID)
GO

CREATE TABLE dbo._iptblLeaveReasons (
    idLeaveReason int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblLeaveReasons PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cDescription nvarchar(50) NULL,
    iCostAccountID int NULL,
    iRateTypeID int NULL,
    iAwardTDID int NULL,
    bUnpaid bit NOT NULL DEFAULT 0,
    bWComp bit NOT NULL DEFAULT 0,
    iMaxDays int NULL,
    iLimitType int NULL,
    dRolloverDate datetime NULL,
    fMaxHours float NOT NULL DEFAULT 0,
    iLeaveTypeID int NULL,
    iLeaveClassID int NULL,
    bJobKeeper bit NOT NULL DEFAULT 0,
    iStp2ReportingGroupID int NULL,
    iStp2ReportingSubgroupID int NULL,
    bStp2IsOTE bit NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblLeaveReasons_Code ON dbo._iptblLeaveReasons (cCode, idLeaveReason)
GO
CREATE INDEX IX__iptblLeaveReasons_RateType ON dbo._iptblLeaveReasons (iRateTypeID)
GO

CREATE TABLE dbo._iptblLeaveLoading (
    idLoading int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblLeaveLoading PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cLoadingName nvarchar(50) NULL,
    fLoadingPercent float NOT NULL DEFAULT 0,
    iRateTypeID int NULL,
    fMaxLoading float NOT NULL DEFAULT 0,
    iLeaveLoadingAddsID int NULL
)
GO
CREATE INDEX IX__iptblLeaveLoading_RateType ON dbo._iptblLeaveLoading (iRateTypeID)
GO
CREATE INDEX IX__iptblLeaveLoading_Adds ON dbo._iptblLeaveLoading (iLeaveLoadingAddsID)
GO
