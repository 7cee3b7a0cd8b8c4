-- The rows without which no installation works.

INSERT INTO dbo._btblCountryDefaults (Country, cCountryDescription, EndTaxYear, cBSBFormat) VALUES
    (5, 'Australia', 2027, '000-000'),
    (6, 'New Zealand', 2027, '00-0000'),
    (7, 'Other', 2027, '9999999999')
GO

INSERT INTO dbo.Defaults (idDefaults, Country, EndTaxYear, cBSBFormat, bHoursAndMinutes, bPhase2Reporting, bExtendedLogging)
SELECT 1, Country, EndTaxYear, cBSBFormat, 0, 1, 0
FROM dbo._btblCountryDefaults
WHERE Country = 5
GO

INSERT INTO dbo._iptblGeneralParameters (idGeneralParameters, bBackpayEnabled, iRateDecimals) VALUES (1, 0, 4)
GO

INSERT INTO dbo._btblSystemValues (cName, cValue) VALUES
    ('SchemaVersion', '1')
GO

INSERT INTO dbo.Entities (Name) VALUES ('')
GO

INSERT INTO dbo._btblAgents (cAgentName, bActive) VALUES ('Administrator', 1)
GO

INSERT INTO dbo._iptblChangeReasons (cChangeReason) VALUES
    ('Annual review'),
    ('Award variation'),
    ('Correction'),
    ('Enterprise agreement'),
    ('Legislation'),
    ('New record')
GO
