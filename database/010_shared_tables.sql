-- Tables that every screen shares: the settings of the installation, people at work, notes, the activity log and common look-ups.

-- One row: what the installation is set to.
CREATE TABLE dbo.Defaults (
    idDefaults int NOT NULL CONSTRAINT PK_Defaults PRIMARY KEY,
    Country int NOT NULL,                -- 5 Australia, 6 New Zealand, 7 other
    EndTaxYear int NOT NULL,             -- the calendar year in which the current tax year ends
    cBSBFormat nvarchar(20) NOT NULL,    -- edit mask of bank numbers: 0 a digit, 9 a digit or nothing
    bHoursAndMinutes bit NOT NULL DEFAULT 0,
    bPhase2Reporting bit NOT NULL DEFAULT 1,
    bExtendedLogging bit NOT NULL DEFAULT 0
)
GO

-- What a new installation of a country starts with.
CREATE TABLE dbo._btblCountryDefaults (
    Country int NOT NULL CONSTRAINT PK__btblCountryDefaults PRIMARY KEY,
    cCountryDescription nvarchar(50) NOT NULL,
    EndTaxYear int NOT NULL,
    cBSBFormat nvarchar(20) NOT NULL
)
GO

-- One row: settings of the pay calculation.
CREATE TABLE dbo._iptblGeneralParameters (
    idGeneralParameters int NOT NULL CONSTRAINT PK__iptblGeneralParameters PRIMARY KEY,
    bBackpayEnabled bit NOT NULL DEFAULT 0,
    iRateDecimals int NOT NULL DEFAULT 4
)
GO

CREATE TABLE dbo._btblSystemValues (
    cName nvarchar(50) NOT NULL CONSTRAINT PK__btblSystemValues PRIMARY KEY,
    cValue nvarchar(255) NULL
)
GO

-- The employer.
CREATE TABLE dbo.Entities (
    idEntities int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Entities PRIMARY KEY,
    Name nvarchar(100) NOT NULL,
    cBusinessNumber nvarchar(20) NULL
)
GO

-- The users of the product.
CREATE TABLE dbo._btblAgents (
    idAgent int IDENTITY(1,1) NOT NULL CONSTRAINT PK__btblAgents PRIMARY KEY,
    cAgentName nvarchar(50) NOT NULL,
    bActive bit NOT NULL DEFAULT 1
)
GO

-- Keyed by the ISO 3166-1 numeric code.
CREATE TABLE dbo._iptblCountries (
    idCountry int NOT NULL CONSTRAINT PK__iptblCountries PRIMARY KEY,
    cCountryCode nvarchar(2) NOT NULL,
    cCountryCode3 nvarchar(3) NOT NULL,
    cCountryName nvarchar(100) NOT NULL
)
GO
CREATE UNIQUE INDEX IX__iptblCountries_Code ON dbo._iptblCountries (cCountryCode)
GO

CREATE TABLE dbo._iptblStates (
    idState int NOT NULL CONSTRAINT PK__iptblStates PRIMARY KEY,
    cStateCode nvarchar(10) NOT NULL,
    cStateDescription nvarchar(50) NOT NULL,
    iCountryID int NOT NULL
)
GO
CREATE UNIQUE INDEX IX__iptblStates_Code ON dbo._iptblStates (iCountryID, cStateCode)
GO

-- Why a version of a dated record was made.
CREATE TABLE dbo._iptblChangeReasons (
    idChangeReason int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblChangeReasons PRIMARY KEY,
    cChangeReason nvarchar(50) NOT NULL,
    bActive bit NOT NULL DEFAULT 1
)
GO
CREATE UNIQUE INDEX IX__iptblChangeReasons_Reason ON dbo._iptblChangeReasons (cChangeReason)
GO

-- Free text on any record, by table name (in capitals) and key. A record has one note, so that a list joined to its
-- notes shows each record once.
CREATE TABLE dbo._btblNotes (
    idNotes int IDENTITY(1,1) NOT NULL CONSTRAINT PK__btblNotes PRIMARY KEY,
    cNOTETBLTableName nvarchar(100) NOT NULL,
    fNOTETBLTableID int NOT NULL,
    cNote nvarchar(max) NULL,
    iCreateAgentID int NULL,
    dCreated datetime NULL,
    iChangeAgentID int NULL,
    dChanged datetime NULL
)
GO
CREATE UNIQUE INDEX IX__btblNotes_Record ON dbo._btblNotes (cNOTETBLTableName, fNOTETBLTableID)
GO

-- Who did what. iLogType 0 is a record added, changed or deleted; other types are written by extended logging.
CREATE TABLE dbo._btblActivityLog (
    idActivityLog int IDENTITY(1,1) NOT NULL CONSTRAINT PK__btblActivityLog PRIMARY KEY,
    dWhen datetime NOT NULL,
    iAgentID int NULL,
    cAgentName nvarchar(50) NULL,
    iLogType int NOT NULL DEFAULT 0,
    cKind nvarchar(100) NULL,
    cCode nvarchar(50) NULL,
    cAction nvarchar(20) NULL,
    cText nvarchar(max) NULL
)
GO
CREATE INDEX IX__btblActivityLog_When ON dbo._btblActivityLog (dWhen, idActivityLog)
GO
