-- The versions of rate types as at a date: those in force then, with the earlier and later ones on request (1), and without
-- system rates when @bSystem is 0. A date below 5 January 1900 stands for "none" and means today. Deleted versions never show.
CREATE FUNCTION dbo._ipfnGetRateTypes (@dDate datetime, @bPast int, @bFuture int, @bSystem int)
RETURNS TABLE
AS
RETURN (
    SELECT T.idRateTypeTD, M.idRateType, M.cCode, T.cDescription, T.iType, T.fRate, T.iFormulaID, F.cCode AS FormulaCode,
        F.cFormulaName AS FormulaDesc, T.iRateFactorID, T.iUDHoursWorked, T.iGrouping, T.bActive, M.bSystem, T.dEffectiveDate,
        T.dEndDate, T.iChangeReasonID, R.cChangeReason, T.iCreateAgentID, CA.cAgentName AS cCreateAgentName, T.iChangeAgentID,
        EA.cAgentName AS cChangeAgentName, T.iAwardTDID, W.cCode AS AwardCode, W.cAwardName AS AwardName, N.idNotes
    FROM dbo._iptblRateTypes_TD T
    INNER JOIN dbo._iptblRateTypes M ON M.idRateType = T.iRateTypeID
    LEFT JOIN dbo._iptblFormulaMain F ON F.idFormulaMain = T.iFormulaID
    LEFT JOIN dbo._iptblChangeReasons R ON R.idChangeReason = T.iChangeReasonID
    LEFT JOIN dbo._btblAgents CA ON CA.idAgent = T.iCreateAgentID
    LEFT JOIN dbo._btblAgents EA ON EA.idAgent = T.iChangeAgentID
    LEFT JOIN dbo._iptblAwards_TD WT ON WT.idAwardTD = T.iAwardTDID
    LEFT JOIN dbo._iptblAwards W ON W.idAward = WT.iAwardID
    LEFT JOIN dbo._btblNotes N ON N.cNOTETBLTableName = '_IPTBLRATETYPES' AND N.fNOTETBLTableID = M.idRateType
    WHERE T.iChangeType <> 3
        AND (@bSystem <> 0 OR M.bSystem = 0)
        AND (@bFuture <> 0 OR T.dEffectiveDate <= CASE WHEN @dDate >= '19000105' THEN @dDate ELSE GETDATE() END)
        AND (@bPast <> 0 OR ISNULL(T.dEndDate, 0) < 5
            OR T.dEndDate > DATEADD(day, -1, CASE WHEN @dDate >= '19000105' THEN @dDate ELSE GETDATE() END))
)
GO
