-- Tax parameters of Australia, New Zealand and the third country.
-- Made by tools/make_database_scripts.py: change that, not this.

INSERT INTO dbo._iptblSGLTaxParameters (iTaxYear, iCountry, TerminationTaxRate, TermNoTFNResidentRate,
    TermNoTFNNonResRate, TermAssAmtPercent, TermSpecRateMedLevy, ReducedTaxRate, TermAboveCapRate, TaxReductionAmount,
    TermETPUpperCap, TermWholeOfIncomeCap, TermETPInitTaxFree, TermETPAnnualTaxFree) VALUES
    (2012, 5, 0, 0, 0, 0, 0, 0, 0, 165000, 1000000, 0, 0, 0),
    (2024, 5, 32, 47, 45, 0, 2, 17, 47, 235000, 0, 180000, 11985, 5994),
    (2025, 5, 32, 47, 45, 5, 2, 17, 47, 245000, 0, 180000, 12524, 6264),
    (2026, 5, 32, 47, 45, 0, 2, 17, 47, 260000, 0, 180000, 13100, 6552),
    (2027, 5, 32, 47, 45, 5, 2, 17, 47, 270000, 0, 180000, 13598, 6801)
GO

INSERT INTO dbo._iptblTaxParametersNZ (iTaxYear, iCountry, fPayrollGivingCredit, fLoanRate, fAnnualLoanThreshold,
    fLevyRate, fAnnualLevyThreshold) VALUES
    (2024, 6, 33.3333, 12, 22828, 1.53, 139384),
    (2025, 6, 33.3333, 12, 24128, 1.6, 142283),
    (2026, 6, 33.3333, 12, 24128, 1.67, 152790),
    (2027, 6, 33.3333, 12, 24128, 1.75, 156641)
GO

INSERT INTO dbo._iptblTaxOptions (iTaxYear, iCountry, fRoundTaxableGrossTo, fRoundTaxTo) VALUES
    (2024, 6, 1, 0.01),
    (2025, 6, 1, 0.01),
    (2026, 6, 1, 0.01),
    (2027, 6, 1, 0.01),
    (2024, 7, 1, 0.01),
    (2025, 7, 1, 0.01),
    (2026, 7, 1, 0.01),
    (2027, 7, 1, 0.01)
GO

INSERT INTO dbo._iptblLumpSumTaxRates (iTaxYear, iCountry, fLumpSum, fTaxRate) VALUES
    (2024, 6, 14000, 10.5),
    (2024, 6, 48000, 17.5),
    (2024, 6, 70000, 30),
    (2024, 6, 180000, 33),
    (2024, 6, 9999999, 39),
    (2025, 6, 14000, 10.5),
    (2025, 6, 48000, 17.5),
    (2025, 6, 70000, 30),
    (2025, 6, 180000, 33),
    (2025, 6, 9999999, 39),
    (2026, 6, 15600, 10.5),
    (2026, 6, 53500, 17.5),
    (2026, 6, 78100, 30),
    (2026, 6, 180000, 33),
    (2026, 6, 9999999, 39),
    (2027, 6, 15600, 10.5),
    (2027, 6, 53500, 17.5),
    (2027, 6, 78100, 30),
    (2027, 6, 180000, 33),
    (2027, 6, 9999999, 39)
GO
