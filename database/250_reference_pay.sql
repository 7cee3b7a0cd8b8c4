-- Pay frequencies, the system rate type and the system leave reasons.

INSERT INTO dbo._iptblPayFrequencies (cCode, cDescription, iPeriodsPerYear) VALUES
    ('W', 'Weekly', 52),
    ('F', 'Fortnightly', 26),
    ('4', 'Four-weekly', 13),
    ('M', 'Monthly', 12),
    ('Q', 'Quarterly', 4)
GO

DECLARE @iRateTypeID int
DECLARE @iVersion int
DECLARE @iResult int
DECLARE @cMessage nvarchar(255)
INSERT INTO dbo._iptblRateTypes (cCode, cDescription, iType, fRate, iGrouping, bActive, bSystem) VALUES ('NORMAL', 'Normal', 0, 0, 0, 1, 1)
SET @iRateTypeID = SCOPE_IDENTITY()
EXEC @iResult = dbo._ipspUpdateRateTypes_TD @iRateTypeID = @iRateTypeID, @iRateTypeTDID = @iVersion OUTPUT, @dEffectiveDate = '20000101',
    @iAgentID = 1, @iChangeReasonID = NULL, @iChangeType = 1, @iAwardTDID = 0, @cMessage = @cMessage OUTPUT
GO

INSERT INTO dbo._iptblLeaveReasons (cCode, cDescription, iRateTypeID, iLeaveTypeID)
SELECT 'A', 'Annual Leave', idRateType, 1 FROM dbo._iptblRateTypes WHERE cCode = 'NORMAL'
GO
INSERT INTO dbo._iptblLeaveReasons (cCode, cDescription, iRateTypeID, iLeaveTypeID)
SELECT 'S', 'Sick Leave', idRateType, 0 FROM dbo._iptblRateTypes WHERE cCode = 'NORMAL'
GO
INSERT INTO dbo._iptblLeaveReasons (cCode, cDescription, iRateTypeID, iLeaveTypeID)
SELECT 'L', 'Long Service Leave', idRateType, 2 FROM dbo._iptblRateTypes WHERE cCode = 'NORMAL'
GO
