-- Banks and what refers to them.

-- The institutions of the BSB directory, by the abbreviation that the directory uses for them.
CREATE TABLE dbo._iptblBankInstitutions (
    idBankInstitution int NOT NULL CONSTRAINT PK__iptblBankInstitutions PRIMARY KEY,
    cInstitutionCode nvarchar(3) NOT NULL,
    cInstitutionName nvarchar(100) NOT NULL,
    cBSBPrefixes nvarchar(100) NULL
)
GO
CREATE UNIQUE INDEX IX__iptblBankInstitutions_Code ON dbo._iptblBankInstitutions (cInstitutionCode)
GO

-- Bank branches. Every column that the list sorts by has an index that ends with the key, the order in which lists are paged.
-- The BSB number is unique by the edit dialog, not by the index: numbers are stored as typed, in the format of the installation.
CREATE TABLE dbo._iptblBanks (
    idBank int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblBanks PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cBankName nvarchar(50) NULL,
    cBranchName nvarchar(50) NULL,
    cBSBNumber nvarchar(20) NULL,
    iStateID int NULL
)
GO
CREATE INDEX IX__iptblBanks_BSBNumber ON dbo._iptblBanks (cBSBNumber, idBank)
GO
CREATE INDEX IX__iptblBanks_Code ON dbo._iptblBanks (cCode, idBank)
GO
CREATE INDEX IX__iptblBanks_BankName ON dbo._iptblBanks (cBankName, idBank)
GO
CREATE INDEX IX__iptblBanks_BranchName ON dbo._iptblBanks (cBranchName, idBank)
GO
CREATE INDEX IX__iptblBanks_State ON dbo._iptblBanks (iStateID, idBank)
GO

CREATE TABLE dbo._iptblExportLayout (
    idExportLayout int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblExportLayout PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cDescription nvarchar(50) NULL,
    cDelimiter nvarchar(5) NULL,
    cSeparator nvarchar(5) NULL,
    cEOLChars nvarchar(10) NULL,
    cFileName nvarchar(50) NULL,
    cFileExtension nvarchar(3) NULL,
    cFilePath nvarchar(200) NULL,
    bIsTemplate bit NOT NULL DEFAULT 0,
    iLayoutType int NOT NULL DEFAULT 0
)
GO

-- The bank accounts of the employer, from which payments are made.
CREATE TABLE dbo._iptblEFTParameters (
    idEFT int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblEFTParameters PRIMARY KEY,
    cCode nvarchar(10) NULL,
    cInstitutionName nvarchar(50) NULL,
    bCreditorPayment bit NOT NULL DEFAULT 0,
    cUserName nvarchar(26) NULL,
    cRemitterName nvarchar(16) NULL,
    cBankAccName nvarchar(32) NULL,
    cBankAccNumber nvarchar(9) NULL,
    cEFTIDNumber nvarchar(6) NULL,
    iBankID int NULL CONSTRAINT FK__iptblEFTParameters_Bank REFERENCES dbo._iptblBanks (idBank),
    cAbbrBankName nvarchar(4) NULL,
    cFileProcMethod nvarchar(10) NULL,   -- position in the list of file processing methods
    cGeneralDescEntries nvarchar(30) NULL,
    cEFTDiskDrive nvarchar(200) NULL,
    cTransferFileName nvarchar(50) NULL,
    bSelfBalancingDisk bit NOT NULL DEFAULT 0,
    iCountryID int NULL,
    cPaymentCode nvarchar(6) NULL,
    iExportLayoutID int NULL,
    cFileExtension nvarchar(3) NULL,
    cDelimiter nvarchar(5) NULL,
    cSeparator nvarchar(5) NULL,
    cEOLChars nvarchar(10) NULL
)
GO
CREATE INDEX IX__iptblEFTParameters_Bank ON dbo._iptblEFTParameters (iBankID)
GO
CREATE INDEX IX__iptblEFTParameters_Code ON dbo._iptblEFTParameters (cCode, idEFT)
GO
CREATE INDEX IX__iptblEFTParameters_Layout ON dbo._iptblEFTParameters (iExportLayoutID)
GO

-- Employees are kept by another module; here are the columns that the maintenance screens ask for.
CREATE TABLE dbo._iptblEmployee (
    idEmployee int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblEmployee PRIMARY KEY,
    cCode nvarchar(20) NULL,
    cSurname nvarchar(50) NULL,
    cGivenNames nvarchar(50) NULL,
    cPreferredName nvarchar(50) NULL,
    iTaxScalesID int NULL,
    iPayerGroupID int NULL,
    iPayFrequencyID int NULL,
    iPayClassID int NULL,
    bActive bit NOT NULL DEFAULT 1
)
GO
CREATE INDEX IX__iptblEmployee_Code ON dbo._iptblEmployee (cCode)
GO
CREATE INDEX IX__iptblEmployee_TaxScales ON dbo._iptblEmployee (iTaxScalesID)
GO
CREATE INDEX IX__iptblEmployee_PayerGroup ON dbo._iptblEmployee (iPayerGroupID, iPayFrequencyID)
GO

-- Where the pay of an employee goes.
CREATE TABLE dbo._iptblEmployeeBank (
    idEmployeeBank int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblEmployeeBank PRIMARY KEY,
    iEmployeeID int NULL,
    iBankID int NULL CONSTRAINT FK__iptblEmployeeBank_Bank REFERENCES dbo._iptblBanks (idBank),
    iEFTID int NULL,
    cAccountName nvarchar(32) NULL,
    cAccountNumber nvarchar(20) NULL,
    fAmount float NULL,
    fPercent float NULL
)
GO
CREATE INDEX IX__iptblEmployeeBank_Bank ON dbo._iptblEmployeeBank (iBankID)
GO
CREATE INDEX IX__iptblEmployeeBank_Employee ON dbo._iptblEmployeeBank (iEmployeeID)
GO
CREATE INDEX IX__iptblEmployeeBank_EFT ON dbo._iptblEmployeeBank (iEFTID)
GO
