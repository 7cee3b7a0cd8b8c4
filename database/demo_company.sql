-- Demonstration data: an employer, the people who use the product, employees and where their pay goes.

UPDATE dbo.Entities SET Name = 'Harbour & Hill Trading Pty Ltd', cBusinessNumber = '00 000 000 000' WHERE idEntities = 1
GO

INSERT INTO dbo._btblAgents (cAgentName, bActive) VALUES
    ('Priya Raman', 1),
    ('Tom Whitlock', 1),
    (N'Mere Te Awhārangi', 1),
    ('Joan Perry', 0)
GO

INSERT INTO dbo._iptblEmployee (cCode, cSurname, cGivenNames, cPreferredName, bActive) VALUES
    ('E001', 'Abbott', 'Karen Louise', 'Karen', 1),
    ('E002', 'Banerjee', 'Anil', 'Anil', 1),
    ('E003', 'Castellano', 'Rosa Maria', 'Rosa', 1),
    ('E004', 'D''Arcy', 'Liam', 'Liam', 1),
    ('E005', 'Eriksson', 'Maja', 'Maja', 1),
    ('E006', 'Fong', 'Wei Lin', 'Winnie', 1),
    ('E007', N'Ngāta', N'Hēmi', N'Hēmi', 1),
    ('E008', 'O''Sullivan', 'Bridget', 'Bridie', 1),
    ('E009', 'Petrov', 'Ivan', 'Ivan', 1),
    ('E010', 'Whitford', 'Susan', 'Sue', 0)
GO

INSERT INTO dbo._iptblExportLayout (cCode, cDescription, cDelimiter, cSeparator, cEOLChars, cFileName, cFileExtension, cFilePath,
    bIsTemplate, iLayoutType) VALUES
    ('CSV', 'Comma separated payments', '"', ',', '13,10', 'PAYMENTS', 'CSV', 'C:\Payroll\Export', 0, 0),
    ('TAB', 'Tab separated payments', '', '9', '13,10', 'PAYMENTS', 'TXT', 'C:\Payroll\Export', 0, 0),
    ('TEMPLATE', 'Template of payments', '"', ',', '13,10', 'PAYMENTS', 'CSV', 'C:\Payroll\Export', 1, 0)
GO

-- The employer pays from two accounts; the branches are the first of their institutions.
INSERT INTO dbo._iptblEFTParameters (cCode, cInstitutionName, bCreditorPayment, cUserName, cRemitterName, cBankAccName, cBankAccNumber,
    cEFTIDNumber, iBankID, cAbbrBankName, cFileProcMethod, cGeneralDescEntries, cEFTDiskDrive, cTransferFileName, bSelfBalancingDisk,
    iCountryID)
SELECT 'WAGES', 'Australia & New Zealand Banking Group', 0, 'HARBOUR AND HILL', 'HARBOUR HILL', 'Harbour & Hill Wages', '104482913',
    '012345', MIN(idBank), 'ANZ', '0', 'WAGES', 'C:\Payroll\EFT', 'ANZ', 1, 36
FROM dbo._iptblBanks WHERE cCode LIKE 'ANZ%'
GO
INSERT INTO dbo._iptblEFTParameters (cCode, cInstitutionName, bCreditorPayment, cUserName, cRemitterName, cBankAccName, cBankAccNumber,
    cEFTIDNumber, iBankID, cAbbrBankName, cFileProcMethod, cGeneralDescEntries, cEFTDiskDrive, cTransferFileName, bSelfBalancingDisk,
    iCountryID)
SELECT 'SUPER', 'Commonwealth Bank of Australia', 1, 'HARBOUR AND HILL', 'HARBOUR HILL', 'Harbour & Hill Super', '200917345',
    '301500', MIN(idBank), 'CBA', '0', 'SUPER', 'C:\Payroll\EFT', 'CBA', 0, 36
FROM dbo._iptblBanks WHERE cCode LIKE 'CBA%'
GO

-- Each employee is paid into the last branch of one institution, as the directory orders them.
INSERT INTO dbo._iptblEmployeeBank (iEmployeeID, iBankID, iEFTID, cAccountName, cAccountNumber, fPercent)
SELECT E.idEmployee, MAX(B.idBank), MAX(P.idEFT), MAX(E.cGivenNames + ' ' + E.cSurname), '10020030' + RIGHT(E.cCode, 1), 100
FROM dbo._iptblEmployee E, dbo._iptblBanks B, dbo._iptblEFTParameters P
WHERE P.cCode = 'WAGES'
    AND ((E.cCode IN ('E001', 'E005', 'E009') AND B.cCode LIKE 'NAB%')
        OR (E.cCode IN ('E002', 'E006') AND B.cCode LIKE 'WBC%')
        OR (E.cCode IN ('E003', 'E007', 'E008') AND B.cCode LIKE 'CBA%')
        OR (E.cCode = 'E004' AND B.cCode LIKE 'BSA%'))
GROUP BY E.idEmployee, E.cCode
GO

INSERT INTO dbo._btblNotes (cNOTETBLTableName, fNOTETBLTableID, cNote, iCreateAgentID, dCreated)
SELECT '_IPTBLBANKS', iBankID, 'Pays the wages. Ask the treasurer before changing anything here.', 2, '20260701'
FROM dbo._iptblEFTParameters WHERE cCode = 'WAGES'
GO
INSERT INTO dbo._btblNotes (cNOTETBLTableName, fNOTETBLTableID, cNote, iCreateAgentID, dCreated)
SELECT '_IPTBLBANKS', MAX(idBank), N'Branch moves in September; the number stays. — Mere', 4, '20260814'
FROM dbo._iptblBanks WHERE cCode LIKE 'WBC%'
GO
INSERT INTO dbo._btblNotes (cNOTETBLTableName, fNOTETBLTableID, cNote, iCreateAgentID, dCreated)
SELECT '_IPTBLBANKS', MIN(idBank), 'Rejects account numbers of fewer than nine digits.', 3, '20260902'
FROM dbo._iptblBanks WHERE cCode LIKE 'BQL%'
GO

