-- Dated versions. Each dated kind of record has this pair of procedures, alike but for the tables and their columns.

-- Puts the values of the version in force today into the master; those of the first to come when none is in force.
-- Returns 0 when a version is in force, 1 when the master has no version at all, 2 when all of them lie in the future.
CREATE PROCEDURE dbo._ipspCarryRateTypes
    @iRateTypeID int
AS
BEGIN
    SET NOCOUNT ON
    DECLARE @iVersion int
    DECLARE @iResult int
    SET @iResult = 0
    SET @iVersion = NULL
    SELECT TOP 1 @iVersion = idRateTypeTD
    FROM dbo._iptblRateTypes_TD
    WHERE iRateTypeID = @iRateTypeID AND iChangeType <> 3 AND dEffectiveDate <= GETDATE()
    ORDER BY dEffectiveDate DESC
    IF @iVersion IS NULL
    BEGIN
        SET @iResult = 2
        SELECT TOP 1 @iVersion = idRateTypeTD
        FROM dbo._iptblRateTypes_TD
        WHERE iRateTypeID = @iRateTypeID AND iChangeType <> 3
        ORDER BY dEffectiveDate
    END
    IF @iVersion IS NULL
        RETURN 1
    UPDATE M SET cCode = T.cCode, cDescription = T.cDescription, iType = T.iType, fRate = T.fRate, iFormulaID = T.iFormulaID,
        iRateFactorID = T.iRateFactorID, iUDHoursWorked = T.iUDHoursWorked, iGrouping = T.iGrouping, bActive = T.bActive,
        iAwardTDID = T.iAwardTDID, dEffectiveDate = T.dEffectiveDate, iChangeReasonID = T.iChangeReasonID,
        iRateTypeTDID = T.idRateTypeTD
    FROM dbo._iptblRateTypes M
    INNER JOIN dbo._iptblRateTypes_TD T ON T.iRateTypeID = M.idRateType
    WHERE T.idRateTypeTD = @iVersion
    RETURN @iResult
END
GO

-- Brings every master whose version has come into force since it was last carried up to date. To run when a day begins.
CREATE PROCEDURE dbo._ipspCarryAllVersions
AS
BEGIN
    SET NOCOUNT ON
    DECLARE @iRateTypeID int
    DECLARE @iResult int
    SELECT @iRateTypeID = MIN(idRateType) FROM dbo._iptblRateTypes
    WHILE @iRateTypeID IS NOT NULL
    BEGIN
        IF EXISTS (SELECT 1 FROM dbo._iptblRateTypes M
            INNER JOIN dbo._iptblRateTypes_TD T ON T.iRateTypeID = M.idRateType
            WHERE M.idRateType = @iRateTypeID AND T.iChangeType <> 3 AND T.dEffectiveDate <= GETDATE()
                AND (T.dEndDate IS NULL OR T.dEndDate > DATEADD(day, -1, GETDATE()))
                AND T.idRateTypeTD <> ISNULL(M.iRateTypeTDID, 0))
            EXEC @iResult = dbo._ipspCarryRateTypes @iRateTypeID = @iRateTypeID
        SELECT @iRateTypeID = MIN(idRateType) FROM dbo._iptblRateTypes WHERE idRateType > @iRateTypeID
    END
    RETURN 0
END
GO

-- Adds (@iChangeType 1), changes (2) or deletes (3) a version of a rate type; the values of the version are those that stand in
-- the master row. Joins the transaction of the caller or opens one of its own.
-- 1: the new version ends what was in force on its date the day before, and takes the end that that one had.
-- 2: a version whose date moves leaves its old place as if deleted and enters the new one as if added.
-- 3: the version before takes over the end of the deleted one. The last live version takes the master and its notes with it.
-- Whatever happens, the master carries the version in force afterwards.
-- Returns 0 done, 1 done with something to tell in @cMessage, 2 refused with the reason in @cMessage.
CREATE PROCEDURE dbo._ipspUpdateRateTypes_TD
    @iRateTypeID int,
    @iRateTypeTDID int OUTPUT,
    @dEffectiveDate datetime,
    @iAgentID int,
    @iChangeReasonID int = NULL,
    @iChangeType int,
    @iAwardTDID int = 0,
    @cMessage nvarchar(255) OUTPUT
AS
BEGIN
    SET NOCOUNT ON
    SET XACT_ABORT ON
    DECLARE @bOwnTransaction int
    DECLARE @iResult int
    DECLARE @iCarried int
    DECLARE @iSelf int
    DECLARE @iPrevious int
    DECLARE @bMoves int
    DECLARE @bWasInForce int
    DECLARE @dDate datetime
    DECLARE @dEnd datetime
    DECLARE @dOldDate datetime
    DECLARE @dOldEnd datetime
    DECLARE @dNext datetime

    SET @cMessage = ''
    SET @iResult = 0
    SET @iSelf = 0
    SET @bMoves = 0
    SET @dDate = CAST(CAST(@dEffectiveDate AS date) AS datetime)

    SET @bOwnTransaction = 0
    IF @@TRANCOUNT = 0
    BEGIN
        BEGIN TRANSACTION
        SET @bOwnTransaction = 1
    END

    -- Holds the master row, so that changes to the versions of one record queue behind each other.
    UPDATE dbo._iptblRateTypes SET iRateTypeTDID = iRateTypeTDID WHERE idRateType = @iRateTypeID
    IF @@ROWCOUNT = 0
    BEGIN
        SET @iResult = 2
        SET @cMessage = 'The Rate Type does not exist. It may have been deleted by another user.'
    END

    IF @iResult = 0 AND (@iChangeType IS NULL OR @iChangeType NOT IN (1, 2, 3))
    BEGIN
        SET @iResult = 2
        SET @cMessage = 'The kind of change must be 1 (add), 2 (edit) or 3 (delete).'
    END

    IF @iResult = 0 AND @iChangeType IN (2, 3)
    BEGIN
        SET @iSelf = @iRateTypeTDID
        SELECT @dOldDate = dEffectiveDate, @dOldEnd = dEndDate
        FROM dbo._iptblRateTypes_TD
        WHERE idRateTypeTD = @iRateTypeTDID AND iRateTypeID = @iRateTypeID AND iChangeType <> 3
        IF @dOldDate IS NULL
        BEGIN
            SET @iResult = 2
            SET @cMessage = 'This version of the Rate Type does not exist. It may have been deleted by another user.'
        END
    END

    IF @iResult = 0 AND @iChangeType IN (1, 2)
    BEGIN
        IF @dDate IS NULL OR @dDate < '19000105'
        BEGIN
            SET @iResult = 2
            SET @cMessage = 'An Effective Date is required.'
        END
        ELSE IF EXISTS (SELECT 1 FROM dbo._iptblRateTypes_TD
            WHERE iRateTypeID = @iRateTypeID AND iChangeType <> 3 AND idRateTypeTD <> @iSelf AND dEffectiveDate = @dDate)
        BEGIN
            SET @iResult = 2
            SET @cMessage = 'The Rate Type already has a version with this Effective Date.'
        END
    END

    SET @bWasInForce = 0
    IF EXISTS (SELECT 1 FROM dbo._iptblRateTypes_TD
        WHERE iRateTypeID = @iRateTypeID AND iChangeType <> 3 AND dEffectiveDate <= GETDATE())
        SET @bWasInForce = 1

    IF @iResult = 0
    BEGIN
        SET @dEnd = @dOldEnd
        IF @iChangeType = 2 AND @dOldDate <> @dDate
            SET @bMoves = 1

        -- Out of the old place.
        IF @iChangeType = 3 OR @bMoves = 1
        BEGIN
            SET @iPrevious = NULL
            SELECT TOP 1 @iPrevious = idRateTypeTD
            FROM dbo._iptblRateTypes_TD
            WHERE iRateTypeID = @iRateTypeID AND iChangeType <> 3 AND dEffectiveDate < @dOldDate
            ORDER BY dEffectiveDate DESC
            UPDATE dbo._iptblRateTypes_TD SET dEndDate = @dOldEnd WHERE idRateTypeTD = @iPrevious
        END

        -- Into the new one.
        IF @iChangeType = 1 OR @bMoves = 1
        BEGIN
            SET @dEnd = NULL
            SET @iPrevious = NULL
            SELECT TOP 1 @iPrevious = idRateTypeTD, @dEnd = dEndDate
            FROM dbo._iptblRateTypes_TD
            WHERE iRateTypeID = @iRateTypeID AND iChangeType <> 3 AND idRateTypeTD <> @iSelf AND dEffectiveDate < @dDate
            ORDER BY dEffectiveDate DESC
            SELECT @dNext = MIN(dEffectiveDate)
            FROM dbo._iptblRateTypes_TD
            WHERE iRateTypeID = @iRateTypeID AND iChangeType <> 3 AND idRateTypeTD <> @iSelf AND dEffectiveDate > @dDate
            IF @iPrevious IS NULL OR @dEnd < @dDate
                SET @dEnd = DATEADD(day, -1, @dNext)
            UPDATE dbo._iptblRateTypes_TD SET dEndDate = DATEADD(day, -1, @dDate) WHERE idRateTypeTD = @iPrevious
        END

        IF @iChangeType = 1
        BEGIN
            INSERT INTO dbo._iptblRateTypes_TD (iRateTypeID, cCode, cDescription, iType, fRate, iFormulaID, iRateFactorID,
                iUDHoursWorked, iGrouping, bActive, iAwardTDID, dEffectiveDate, dEndDate, iChangeReasonID, iChangeType,
                iCreateAgentID, dCreated)
            SELECT idRateType, cCode, cDescription, iType, fRate, iFormulaID, iRateFactorID, iUDHoursWorked, iGrouping, bActive,
                ISNULL(@iAwardTDID, 0), @dDate, @dEnd, @iChangeReasonID, 1, @iAgentID, GETDATE()
            FROM dbo._iptblRateTypes
            WHERE idRateType = @iRateTypeID
            SET @iRateTypeTDID = SCOPE_IDENTITY()
        END

        IF @iChangeType = 2
            UPDATE T SET cCode = M.cCode, cDescription = M.cDescription, iType = M.iType, fRate = M.fRate,
                iFormulaID = M.iFormulaID, iRateFactorID = M.iRateFactorID, iUDHoursWorked = M.iUDHoursWorked,
                iGrouping = M.iGrouping, bActive = M.bActive, iAwardTDID = ISNULL(@iAwardTDID, 0), dEffectiveDate = @dDate,
                dEndDate = @dEnd, iChangeReasonID = @iChangeReasonID, iChangeType = 2, iChangeAgentID = @iAgentID,
                dChanged = GETDATE()
            FROM dbo._iptblRateTypes_TD T
            INNER JOIN dbo._iptblRateTypes M ON M.idRateType = T.iRateTypeID
            WHERE T.idRateTypeTD = @iRateTypeTDID

        IF @iChangeType = 3
            UPDATE dbo._iptblRateTypes_TD SET iChangeType = 3, iChangeAgentID = @iAgentID, dChanged = GETDATE()
            WHERE idRateTypeTD = @iRateTypeTDID

        -- The code belongs to the record as a whole.
        IF @iChangeType IN (1, 2)
            UPDATE T SET cCode = M.cCode
            FROM dbo._iptblRateTypes_TD T
            INNER JOIN dbo._iptblRateTypes M ON M.idRateType = T.iRateTypeID
            WHERE T.iRateTypeID = @iRateTypeID AND T.iChangeType <> 3
    END

    -- After a refusal too: the caller has put the refused values into the master row.
    EXEC @iCarried = dbo._ipspCarryRateTypes @iRateTypeID = @iRateTypeID
    IF @iCarried = 1 AND ((@iChangeType = 3 AND @iResult = 0) OR (@iChangeType = 1 AND @iResult = 2))
    BEGIN
        DELETE FROM dbo._btblNotes WHERE cNOTETBLTableName = '_IPTBLRATETYPES' AND fNOTETBLTableID = @iRateTypeID
        DELETE FROM dbo._iptblRateTypes WHERE idRateType = @iRateTypeID
    END
    IF @iCarried = 2 AND @iResult = 0 AND @bWasInForce = 1
    BEGIN
        SET @iResult = 1
        SET @cMessage = 'No version of the Rate Type is in force today any more.'
    END

    IF @bOwnTransaction = 1
        COMMIT TRANSACTION
    RETURN @iResult
END
GO
