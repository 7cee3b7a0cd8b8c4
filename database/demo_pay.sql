-- Demonstration data: pay calendar, pay classes, rate types with versions in the past and the future, and what uses them, so that
-- every refusal can be seen.

INSERT INTO dbo._iptblFormulaMain (cCode, cFormulaName) VALUES
    ('TIMEHALF', 'Normal rate by one and a half'),
    ('DOUBLE', 'Normal rate by two')
GO

INSERT INTO dbo._iptblAwards (cCode, cAwardName) VALUES ('CLERKS', 'Clerks, private sector')
GO
INSERT INTO dbo._iptblAwards_TD (iAwardID, dEffectiveDate)
SELECT idAward, '20250701' FROM dbo._iptblAwards WHERE cCode = 'CLERKS'
GO

INSERT INTO dbo._iptblRateFactors (cCode, cDescription, fRateFactor) VALUES
    ('HALF', 'Time and a half', 50),
    ('DOUBLE', 'Double time', 100),
    ('QUARTER', 'Time and a quarter', 25)
GO

INSERT INTO dbo._iptblPayerGroups (cCode, cPayerGroupName, iEFTID)
SELECT 'HHT', 'Harbour & Hill Trading', idEFT FROM dbo._iptblEFTParameters WHERE cCode = 'WAGES'
GO
INSERT INTO dbo._iptblPayerGroups (cCode, cPayerGroupName, iEFTID)
SELECT 'HHS', 'Harbour & Hill Superannuation', idEFT FROM dbo._iptblEFTParameters WHERE cCode = 'SUPER'
GO

-- Fortnights and months of 2026-27; those that ended before 18 November 2026 are closed.
DECLARE @iPayerGroupID int
DECLARE @iPayFrequencyID int
DECLARE @iPeriod int
DECLARE @dStart datetime
DECLARE @dEnd datetime
SELECT @iPayerGroupID = idPayerGroup FROM dbo._iptblPayerGroups WHERE cCode = 'HHT'
SELECT @iPayFrequencyID = idPayFrequency FROM dbo._iptblPayFrequencies WHERE cCode = 'F'
SET @dStart = '20260701'
SET @iPeriod = 1
WHILE @iPeriod <= 26
BEGIN
    SET @dEnd = DATEADD(day, 13, @dStart)
    INSERT INTO dbo._iptblPayPeriods (iPayerGroupID, iPayFrequencyID, iTaxYear, iPeriodNumber, dStartDate, dEndDate, bClosed)
    VALUES (@iPayerGroupID, @iPayFrequencyID, 2027, @iPeriod, @dStart, @dEnd, CASE WHEN @dEnd < '20261118' THEN 1 ELSE 0 END)
    SET @dStart = DATEADD(day, 14, @dStart)
    SET @iPeriod = @iPeriod + 1
END
SELECT @iPayFrequencyID = idPayFrequency FROM dbo._iptblPayFrequencies WHERE cCode = 'M'
SET @dStart = '20260701'
SET @iPeriod = 1
WHILE @iPeriod <= 12
BEGIN
    SET @dEnd = DATEADD(day, -1, DATEADD(month, 1, @dStart))
    INSERT INTO dbo._iptblPayPeriods (iPayerGroupID, iPayFrequencyID, iTaxYear, iPeriodNumber, dStartDate, dEndDate, bClosed)
    VALUES (@iPayerGroupID, @iPayFrequencyID, 2027, @iPeriod, @dStart, @dEnd, CASE WHEN @dEnd < '20261118' THEN 1 ELSE 0 END)
    SET @dStart = DATEADD(month, 1, @dStart)
    SET @iPeriod = @iPeriod + 1
END
GO

INSERT INTO dbo._iptblPayClasses (cCode, cDescription, iTimeHalfRateFactor, iDoubleRateFactor)
SELECT 'STANDARD', 'Standard hours', H.idRateFactor, D.idRateFactor
FROM dbo._iptblRateFactors H, dbo._iptblRateFactors D
WHERE H.cCode = 'HALF' AND D.cCode = 'DOUBLE'
GO

UPDATE E SET iPayerGroupID = G.idPayerGroup, iPayFrequencyID = F.idPayFrequency, iPayClassID = C.idPayClass
FROM dbo._iptblEmployee E, dbo._iptblPayerGroups G, dbo._iptblPayFrequencies F, dbo._iptblPayClasses C
WHERE G.cCode = 'HHT' AND C.cCode = 'STANDARD'
    AND ((E.cCode <= 'E006' AND F.cCode = 'F') OR (E.cCode > 'E006' AND F.cCode = 'M'))
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iFormulaID int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
SELECT @iFormulaID = idFormulaMain FROM dbo._iptblFormulaMain WHERE cCode = 'TIMEHALF'
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iFormulaID, iGrouping, bActive) VALUES ('OT15', 'Time and a half', 1, 0, @iFormulaID, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20240701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iFormulaID int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
SELECT @iFormulaID = idFormulaMain FROM dbo._iptblFormulaMain WHERE cCode = 'DOUBLE'
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iFormulaID, iGrouping, bActive) VALUES ('OT20', 'Double time', 1, 0, @iFormulaID, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20240701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('FIRSTAID', 'First aid officer', 0, 16.5, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20240701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
UPDATE dbo._iptblRateTypes SET fRate = 17.2 WHERE idRateType = @iRateTypeID
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'Annual review'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20250701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
UPDATE dbo._iptblRateTypes SET fRate = 17.9 WHERE idRateType = @iRateTypeID
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'Annual review'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20260701', @iAgentID = 3, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
UPDATE dbo._iptblRateTypes SET fRate = 18.6 WHERE idRateType = @iRateTypeID
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'Annual review'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20270701', @iAgentID = 3, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('NIGHT', 'Night shift', 0, 41.75, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20250701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
UPDATE dbo._iptblRateTypes SET fRate = 43.4 WHERE idRateType = @iRateTypeID
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'Enterprise agreement'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20260701', @iAgentID = 3, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('TOOLS', 'Own tools', 0, 2.85, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20250701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('ANNUAL', 'Annual leave', 0, 38.2, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20240701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
UPDATE dbo._iptblRateTypes SET fRate = 39.6 WHERE idRateType = @iRateTypeID
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'Annual review'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20260701', @iAgentID = 3, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('SICK', 'Sick leave', 0, 38.2, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20240701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
UPDATE dbo._iptblRateTypes SET fRate = 39.6 WHERE idRateType = @iRateTypeID
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'Annual review'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20260701', @iAgentID = 3, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('LSL', 'Long service leave', 0, 38.2, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20240701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iAwardTDID int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
SELECT @iAwardTDID = MAX(idAwardTD) FROM dbo._iptblAwards_TD
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('CLERK2', 'Clerk level 2', 2, 102.5, 2, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'Award variation'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20250701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = @iAwardTDID, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('REMOTE', 'Remote site', 0, 12.4, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20270101', @iAgentID = 4, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('WET', 'Wet weather', 0, 1.15, 0, 0)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20240701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iReason int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive) VALUES ('SPARE', 'Not used by anybody', 0, 20, 0, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'New record'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20250701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
UPDATE dbo._iptblRateTypes SET fRate = 21 WHERE idRateType = @iRateTypeID
SELECT @iReason = idChangeReason FROM dbo._iptblChangeReasons WHERE cChangeReason = 'Correction'
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT,
    @dEffectiveDate = '20260701', @iAgentID = 2, @iChangeReasonID = @iReason, @iChangeType = 1,
    @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

INSERT INTO dbo._iptblPayClassAddRates (iPayClassID, iRateTypeID, fRate)
SELECT C.idPayClass, R.idRateType, R.fRate
FROM dbo._iptblPayClasses C, dbo._iptblRateTypes R
WHERE C.cCode = 'STANDARD' AND R.cCode IN ('TOOLS', 'NIGHT')
GO
INSERT INTO dbo._iptblPayClassAddRates_TD (iPayClassAddRateID, iPayClassID, iRateTypeID, fRate, dEffectiveDate)
SELECT idPayClassAddRate, iPayClassID, iRateTypeID, fRate, '20250701' FROM dbo._iptblPayClassAddRates
GO

INSERT INTO dbo._iptblEmployeeAdditionalRates (iEmployeeID, iAddRateTypeID, fRate, dEffectiveDate)
SELECT E.idEmployee, R.idRateType, R.fRate, '20250701'
FROM dbo._iptblEmployee E, dbo._iptblRateTypes R
WHERE (R.cCode = 'FIRSTAID' AND E.cCode IN ('E001', 'E005')) OR (R.cCode = 'NIGHT' AND E.cCode IN ('E002', 'E006'))
GO
-- Assigned for the time before the version in force only.
INSERT INTO dbo._iptblEmployeeAdditionalRates (iEmployeeID, iAddRateTypeID, fRate, dEffectiveDate, dEndDate)
SELECT E.idEmployee, R.idRateType, R.fRate, '20250701', '20260630'
FROM dbo._iptblEmployee E, dbo._iptblRateTypes R
WHERE R.cCode = 'SICK' AND E.cCode = 'E004'
GO

-- Posted: first aid and night shifts of the closed fortnights from August on, overtime of October.
INSERT INTO dbo._iptblEmployeeTrans (iEmployeeID, iPayPeriodID, dTransDate, iRateTypeID, fHours, fRate, fAmount, bPosted)
SELECT E.idEmployee, P.idPayPeriod, DATEADD(day, 2, P.dStartDate), R.idRateType, 7.6, R.fRate, 7.6 * R.fRate, 1
FROM dbo._iptblEmployee E
INNER JOIN dbo._iptblPayPeriods P ON P.iPayerGroupID = E.iPayerGroupID AND P.iPayFrequencyID = E.iPayFrequencyID
CROSS JOIN dbo._iptblRateTypes R
WHERE P.bClosed = 1
    AND ((R.cCode = 'FIRSTAID' AND E.cCode IN ('E001', 'E005') AND P.dStartDate >= '20260801')
        OR (R.cCode = 'NIGHT' AND E.cCode IN ('E002', 'E006') AND P.dStartDate >= '20260801')
        OR (R.cCode = 'OT15' AND E.cCode = 'E003' AND P.dStartDate >= '20261001'))
GO
-- Not posted: night shifts of the current fortnight.
INSERT INTO dbo._iptblEmployeeTrans (iEmployeeID, iPayPeriodID, dTransDate, iRateTypeID, fHours, fRate, fAmount, bPosted)
SELECT E.idEmployee, P.idPayPeriod, DATEADD(day, 1, P.dStartDate), R.idRateType, 7.6, R.fRate, 7.6 * R.fRate, 0
FROM dbo._iptblEmployee E
INNER JOIN dbo._ipvCurrentPayPeriods P ON P.iPayerGroupID = E.iPayerGroupID AND P.iPayFrequencyID = E.iPayFrequencyID
CROSS JOIN dbo._iptblRateTypes R
WHERE R.cCode = 'NIGHT' AND E.cCode IN ('E002', 'E006')
GO
INSERT INTO dbo._iptblEmployeeTransEOY (iEmployeeID, dTransDate, iRateTypeID, fHours, fRate, fAmount)
SELECT E.idEmployee, '20260311', R.idRateType, 4, R.fRate, 4 * R.fRate
FROM dbo._iptblEmployee E, dbo._iptblRateTypes R
WHERE R.cCode = 'OT20' AND E.cCode IN ('E001', 'E003')
GO
INSERT INTO dbo._iptblEmployeeTransCosting (iEmployeeTransID, iEmployeeID, dTransDate, iRateTypeID, fAmount)
SELECT idEmployeeTrans, iEmployeeID, dTransDate, iRateTypeID, fAmount FROM dbo._iptblEmployeeTrans WHERE bPosted = 1
GO
INSERT INTO dbo._iptblEmployeeTransCostingEOY (iEmployeeTransID, iEmployeeID, dTransDate, iRateTypeID, fAmount)
SELECT idEmployeeTransEOY, iEmployeeID, dTransDate, iRateTypeID, fAmount FROM dbo._iptblEmployeeTransEOY
GO

INSERT INTO dbo._iptblAnnualLeaveRateTypes (iLeaveID, iRateTypeID)
SELECT 1, idRateType FROM dbo._iptblRateTypes WHERE cCode = 'ANNUAL'
GO
INSERT INTO dbo._iptblSickLeaveRateTypes (iLeaveID, iRateTypeID)
SELECT 1, idRateType FROM dbo._iptblRateTypes WHERE cCode = 'SICK'
GO
INSERT INTO dbo._iptblLSLeaveRateTypes (iLeaveID, iRateTypeID)
SELECT 1, idRateType FROM dbo._iptblRateTypes WHERE cCode = 'LSL'
GO
INSERT INTO dbo._iptblLeaveReasons (cCode, cDescription, iRateTypeID, iLeaveTypeID)
SELECT 'FAMILY', 'Family leave', idRateType, 3 FROM dbo._iptblRateTypes WHERE cCode = 'SICK'
GO
INSERT INTO dbo._iptblLeaveLoading (cCode, cLoadingName, fLoadingPercent, iRateTypeID)
SELECT 'LOAD175', 'Annual leave loading', 17.5, idRateType FROM dbo._iptblRateTypes WHERE cCode = 'ANNUAL'
GO
