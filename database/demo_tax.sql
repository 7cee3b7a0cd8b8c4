-- Demonstration data: own scales of the employer beside those of the tax office, and the scales of the employees.

INSERT INTO dbo._iptblTaxScales (idTaxScales, cCode, cDescription, bUserDefinable, bRatesApplicable, bIncludeLeaveLoading, iCountry,
    iTaxYear, iMedicareScalesID, cMedicareScaleCode) VALUES
    (50001, 'DIRECTOR', 'Directors, flat 39 cents', 1, 0, 0, 5, 2027, 0, ''),
    (50002, 'CASUAL', 'Casuals, two steps', 1, 0, 1, 5, 2027, 2701, '2')
GO

INSERT INTO dbo._iptblTaxBrackets (idTaxBrackets, iTaxScalesID, cTaxScaleCode, iBracketTaxYear, TaxBracket, TaxPercentage, TaxAmount,
    CoefficientC) VALUES
    (50001, 50001, 'DIRECTOR', 2027, 9999999, 0.39, 0, 0),
    (50002, 50002, 'CASUAL', 2027, 500, 0.2, 0, 0),
    (50003, 50002, 'CASUAL', 2027, 9999999, 0.32, 60, 0)
GO

UPDATE dbo._iptblEmployee SET iTaxScalesID = 2702
GO
UPDATE dbo._iptblEmployee SET iTaxScalesID = 2701 WHERE cCode IN ('E004', 'E009')
GO
UPDATE dbo._iptblEmployee SET iTaxScalesID = 50001 WHERE cCode = 'E003'
GO
