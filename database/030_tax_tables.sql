-- Tax tables. The client makes the keys of scales and brackets: those up to 50000 belong to records supplied with the system.
-- iCountry is the country code of the installation (5, 6, 7); iTaxYear the calendar year in which the tax year ends.

-- The codes of the scales that the tax office specifies; whoever holds one of these in its country is not for users to change.
CREATE TABLE dbo._iptblTaxOfficeScaleCodes (
    idTaxOfficeScaleCode int NOT NULL CONSTRAINT PK__iptblTaxOfficeScaleCodes PRIMARY KEY,
    iCountry int NOT NULL,
    cCode nvarchar(10) NOT NULL
)
GO
CREATE UNIQUE INDEX IX__iptblTaxOfficeScaleCodes_Code ON dbo._iptblTaxOfficeScaleCodes (iCountry, cCode)
GO

CREATE TABLE dbo._iptblMedicareScales (
    idMedicareScales int NOT NULL CONSTRAINT PK__iptblMedicareScales PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cMedicareScaleDescription nvarchar(50) NULL,
    iTaxYear int NULL,
    fWeeklyEarningsThreshold float NULL,
    fWeeklyEarningsShadeInThreshold float NULL,
    fFamilyThreshold float NULL,
    fWFTDivisor float NULL,
    fAdditionalChildAllowance float NULL,
    fSOPMultiplier float NULL,
    fSOPDivisor float NULL,
    fWLAFactor float NULL,
    fAdjustmentLevy float NULL
)
GO
CREATE INDEX IX__iptblMedicareScales_Code ON dbo._iptblMedicareScales (iTaxYear, cCode)
GO

CREATE TABLE dbo._iptblTaxScales (
    idTaxScales int NOT NULL CONSTRAINT PK__iptblTaxScales PRIMARY KEY,
    cCode nvarchar(10) NOT NULL,
    cDescription nvarchar(50) NULL,
    bUserDefinable bit NOT NULL DEFAULT 1,
    bRatesApplicable bit NOT NULL DEFAULT 0,      -- rebates apply
    bIncludeLeaveLoading bit NOT NULL DEFAULT 0,
    iCountry int NULL,
    iTaxYear int NULL,
    iMedicareScalesID int NULL DEFAULT 0,         -- 0: none
    cMedicareScaleCode nvarchar(10) NULL DEFAULT ''
)
GO
CREATE INDEX IX__iptblTaxScales_Code ON dbo._iptblTaxScales (iCountry, iTaxYear, cCode)
GO
CREATE INDEX IX__iptblTaxScales_Medicare ON dbo._iptblTaxScales (iMedicareScalesID)
GO

-- A row applies while earnings are below TaxBracket; the last one of a published scale carries 9999999.
CREATE TABLE dbo._iptblTaxBrackets (
    idTaxBrackets int NOT NULL CONSTRAINT PK__iptblTaxBrackets PRIMARY KEY,
    iTaxScalesID int NULL,
    cTaxScaleCode nvarchar(10) NULL,
    iBracketTaxYear int NULL,
    TaxBracket float NULL,
    TaxPercentage float NULL,    -- coefficient A
    TaxAmount float NULL,        -- coefficient B
    CoefficientC float NULL
)
GO
CREATE INDEX IX__iptblTaxBrackets_Scale ON dbo._iptblTaxBrackets (iTaxScalesID, iBracketTaxYear, TaxBracket)
GO
CREATE INDEX IX__iptblTaxBrackets_Code ON dbo._iptblTaxBrackets (cTaxScaleCode, iBracketTaxYear)
GO

-- Study and training support loans.
CREATE TABLE dbo._iptblHECSScales (
    idHECSScales int NOT NULL CONSTRAINT PK__iptblHECSScales PRIMARY KEY,
    cCode nvarchar(10) NULL,
    cDescription nvarchar(100) NULL,
    iTaxYear int NULL
)
GO
CREATE INDEX IX__iptblHECSScales_Code ON dbo._iptblHECSScales (iTaxYear, cCode)
GO

CREATE TABLE dbo._iptblHECSBrackets (
    idHECSBrackets int NOT NULL CONSTRAINT PK__iptblHECSBrackets PRIMARY KEY,
    iHECSScalesID int NULL,
    iTaxYear int NULL,
    fWeeklyEarnings float NULL,
    CoefficientA float NULL,
    CoefficientB float NULL
)
GO
CREATE INDEX IX__iptblHECSBrackets_Scale ON dbo._iptblHECSBrackets (iHECSScalesID, iTaxYear, fWeeklyEarnings)
GO

-- The student financial supplement scheme.
CREATE TABLE dbo._iptblSFSSScales (
    idSFSSScales int NOT NULL CONSTRAINT PK__iptblSFSSScales PRIMARY KEY,
    cCode nvarchar(10) NULL,
    cDescription nvarchar(100) NULL,
    iTaxYear int NULL
)
GO
CREATE INDEX IX__iptblSFSSScales_Code ON dbo._iptblSFSSScales (iTaxYear, cCode)
GO

CREATE TABLE dbo._iptblSFSSBrackets (
    idSFSSBrackets int NOT NULL CONSTRAINT PK__iptblSFSSBrackets PRIMARY KEY,
    iSFSSScalesID int NULL,
    iTaxYear int NULL,
    fWeeklyEarnings float NULL,
    CoefficientA float NULL
)
GO
CREATE INDEX IX__iptblSFSSBrackets_Scale ON dbo._iptblSFSSBrackets (iSFSSScalesID, iTaxYear, fWeeklyEarnings)
GO

-- Australia: termination values, one row a year. TaxReductionAmount is the lower cap of termination payments and ReducedTaxRate
-- the rate from preservation age on.
CREATE TABLE dbo._iptblSGLTaxParameters (
    idSGLTaxParameters int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblSGLTaxParameters PRIMARY KEY,
    iTaxYear int NOT NULL,
    iCountry int NOT NULL,
    TerminationTaxRate float NOT NULL DEFAULT 0,
    TermNoTFNResidentRate float NOT NULL DEFAULT 0,
    TermNoTFNNonResRate float NOT NULL DEFAULT 0,
    TermPost93GrossRate float NOT NULL DEFAULT 0,
    TermPost93GrossLimit float NOT NULL DEFAULT 0,
    TermAssAmtPercent float NOT NULL DEFAULT 0,
    TermSpecRateMedLevy float NOT NULL DEFAULT 0,
    ReducedTaxRate float NOT NULL DEFAULT 0,
    TermAboveCapRate float NOT NULL DEFAULT 0,
    TaxReductionAmount float NOT NULL DEFAULT 0,
    TermETPUpperCap float NOT NULL DEFAULT 0,
    TermWholeOfIncomeCap float NOT NULL DEFAULT 0,
    TermETPInitTaxFree float NOT NULL DEFAULT 0,
    TermETPAnnualTaxFree float NOT NULL DEFAULT 0
)
GO
CREATE UNIQUE INDEX IX__iptblSGLTaxParameters_Year ON dbo._iptblSGLTaxParameters (iCountry, iTaxYear)
GO

-- What taxable gross and tax are rounded to, one row a country and year. New Zealand and the third country.
CREATE TABLE dbo._iptblTaxOptions (
    idTaxOptions int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblTaxOptions PRIMARY KEY,
    iTaxYear int NOT NULL,
    iCountry int NOT NULL,
    fRoundTaxableGrossTo float NOT NULL DEFAULT 0,
    fRoundTaxTo float NOT NULL DEFAULT 0
)
GO
CREATE UNIQUE INDEX IX__iptblTaxOptions_Year ON dbo._iptblTaxOptions (iCountry, iTaxYear)
GO

-- New Zealand: levy, student loan and payroll giving, one row a year. Rates are percentages.
CREATE TABLE dbo._iptblTaxParametersNZ (
    idTaxParametersNZ int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblTaxParametersNZ PRIMARY KEY,
    iTaxYear int NOT NULL,
    iCountry int NOT NULL DEFAULT 6,
    fPayrollGivingCredit float NOT NULL DEFAULT 0,
    fLoanRate float NOT NULL DEFAULT 0,
    fAnnualLoanThreshold float NOT NULL DEFAULT 0,
    fLevyFixedAmount float NOT NULL DEFAULT 0,
    fLevyRate float NOT NULL DEFAULT 0,
    fAnnualLevyThreshold float NOT NULL DEFAULT 0
)
GO
CREATE UNIQUE INDEX IX__iptblTaxParametersNZ_Year ON dbo._iptblTaxParametersNZ (iCountry, iTaxYear)
GO

-- Tax rates of lump sums: a row applies while annual income with the payment is at most fLumpSum; the last carries 9999999.
CREATE TABLE dbo._iptblLumpSumTaxRates (
    idLumpSumTaxRate int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblLumpSumTaxRates PRIMARY KEY,
    iTaxYear int NOT NULL,
    iCountry int NOT NULL DEFAULT 6,
    fLumpSum float NOT NULL DEFAULT 0,
    fTaxRate float NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblLumpSumTaxRates_Year ON dbo._iptblLumpSumTaxRates (iCountry, iTaxYear, fLumpSum)
GO

CREATE TABLE dbo._iptblTaxRebates (
    idTaxRebate int IDENTITY(1,1) NOT NULL CONSTRAINT PK__iptblTaxRebates PRIMARY KEY,
    iTaxYear int NOT NULL,
    iCountry int NOT NULL DEFAULT 6,
    fAnnualValue float NOT NULL DEFAULT 0,
    fRate float NOT NULL DEFAULT 0,
    fAmount float NOT NULL DEFAULT 0
)
GO
CREATE INDEX IX__iptblTaxRebates_Year ON dbo._iptblTaxRebates (iCountry, iTaxYear, fAnnualValue)
GO
