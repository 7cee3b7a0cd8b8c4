-- What the lists read.

CREATE VIEW dbo._ipvBanks AS
SELECT B.idBank, B.cCode, B.cBankName, B.cBranchName, B.cBSBNumber, B.iStateID, S.cStateCode, S.cStateDescription, N.idNotes
FROM dbo._iptblBanks B
LEFT JOIN dbo._iptblStates S ON S.idState = B.iStateID
LEFT JOIN dbo._btblNotes N ON N.cNOTETBLTableName = '_IPTBLBANKS' AND N.fNOTETBLTableID = B.idBank
GO

CREATE VIEW dbo._ipvEFTParameters AS
SELECT E.idEFT, E.cCode, E.cInstitutionName, E.bCreditorPayment, E.cUserName, E.cRemitterName, E.cBankAccName, E.cBankAccNumber,
    E.cEFTIDNumber, E.iBankID, E.cAbbrBankName, E.cFileProcMethod, E.cGeneralDescEntries, E.cEFTDiskDrive, E.cTransferFileName,
    E.bSelfBalancingDisk, E.iCountryID, E.cPaymentCode, E.iExportLayoutID, E.cFileExtension, B.cBankName, B.cBSBNumber,
    L.cCode AS cLayoutCode, L.cDescription, C.cCountryName, N.idNotes
FROM dbo._iptblEFTParameters E
LEFT JOIN dbo._iptblBanks B ON B.idBank = E.iBankID
LEFT JOIN dbo._iptblExportLayout L ON L.idExportLayout = E.iExportLayoutID
LEFT JOIN dbo._iptblCountries C ON C.idCountry = E.iCountryID
LEFT JOIN dbo._btblNotes N ON N.cNOTETBLTableName = '_IPTBLEFTPARAMETERS' AND N.fNOTETBLTableID = E.idEFT
GO

-- Every version of every rate type, deleted ones (iChangeType 3) and those of deleted masters included: the history.
CREATE VIEW dbo._ipvRateTypes_TD AS
SELECT T.idRateTypeTD, T.iRateTypeID, T.cCode, T.cDescription, T.iType, T.fRate, T.iFormulaID, T.iRateFactorID, T.iUDHoursWorked,
    T.iGrouping, T.bActive, T.iAwardTDID, T.dEffectiveDate, T.dEndDate, T.iChangeReasonID, R.cChangeReason, T.iChangeType,
    T.iCreateAgentID, C.cAgentName AS cCreateAgentName, T.dCreated, T.iChangeAgentID, A.cAgentName AS cChangeAgentName, T.dChanged
FROM dbo._iptblRateTypes_TD T
LEFT JOIN dbo._iptblChangeReasons R ON R.idChangeReason = T.iChangeReasonID
LEFT JOIN dbo._btblAgents C ON C.idAgent = T.iCreateAgentID
LEFT JOIN dbo._btblAgents A ON A.idAgent = T.iChangeAgentID
GO

-- The live versions of the rates of pay classes.
CREATE VIEW dbo._ipvPayClassesAddRates_TD AS
SELECT T.idPayClassAddRateTD, T.iPayClassAddRateID, T.iPayClassID, P.cCode, P.cDescription, T.iRateTypeID, T.fRate, T.dEffectiveDate,
    T.dEndDate
FROM dbo._iptblPayClassAddRates_TD T
LEFT JOIN dbo._iptblPayClasses P ON P.idPayClass = T.iPayClassID
WHERE T.iChangeType <> 3
GO

-- The current period of each payroll company and pay frequency.
CREATE VIEW dbo._ipvCurrentPayPeriods AS
SELECT P.idPayPeriod, P.iPayerGroupID, P.iPayFrequencyID, P.iTaxYear, P.iPeriodNumber, P.dStartDate, P.dEndDate
FROM dbo._iptblPayPeriods P
WHERE P.bClosed = 0
    AND NOT EXISTS (SELECT 1 FROM dbo._iptblPayPeriods E
        WHERE E.bClosed = 0 AND E.iPayerGroupID = P.iPayerGroupID AND E.iPayFrequencyID = P.iPayFrequencyID
            AND E.dStartDate < P.dStartDate)
GO

-- Transactions of this year with the pay period in which they fall.
CREATE VIEW dbo._ipvEmployeeTrans AS
SELECT T.idEmployeeTrans, T.iEmployeeID, T.iPayPeriodID, T.dTransDate, T.iRateTypeID, T.iAddDeductID, T.iLeaveReasonID, T.fHours,
    T.fRate, T.fAmount, T.bPosted, P.iPayerGroupID, P.iPayFrequencyID, P.dStartDate AS dPeriodStartDate, P.dEndDate AS dPeriodEndDate
FROM dbo._iptblEmployeeTrans T
LEFT JOIN dbo._iptblPayPeriods P ON P.idPayPeriod = T.iPayPeriodID
GO
