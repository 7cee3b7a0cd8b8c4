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
