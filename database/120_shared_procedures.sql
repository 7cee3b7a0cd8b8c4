-- Sets the installation to a country and to the bank number format and tax year of that country.
-- Returns 0 when done; 1 with an error for a country that the product does not know.
CREATE PROCEDURE dbo._ipspSetInstallationCountry
    @Country int
AS
BEGIN
    SET NOCOUNT ON
    DECLARE @EndTaxYear int
    DECLARE @cBSBFormat nvarchar(20)
    IF NOT EXISTS (SELECT 1 FROM dbo._btblCountryDefaults WHERE Country = @Country)
    BEGIN
        RAISERROR('The country must be 5 (Australia), 6 (New Zealand) or 7 (other).', 16, 1)
        RETURN 1
    END
    SELECT @EndTaxYear = EndTaxYear, @cBSBFormat = cBSBFormat FROM dbo._btblCountryDefaults WHERE Country = @Country
    UPDATE dbo.Defaults SET Country = @Country, EndTaxYear = @EndTaxYear, cBSBFormat = @cBSBFormat
    RETURN 0
END
GO
