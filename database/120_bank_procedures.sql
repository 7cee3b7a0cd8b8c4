-- Deletes a bank and its note, in the transaction of the caller or in one of its own.
-- Returns 0 when done; 1 with an error when an EFT institution or an employee uses the bank; 2 with an error when there is none.
CREATE PROCEDURE dbo._ipspDeleteBank
    @BankID int
AS
BEGIN
    SET NOCOUNT ON
    SET XACT_ABORT ON
    DECLARE @bOwnTransaction int
    IF NOT EXISTS (SELECT 1 FROM dbo._iptblBanks WHERE idBank = @BankID)
    BEGIN
        RAISERROR('The Bank does not exist. It may have been deleted by another user.', 16, 1)
        RETURN 2
    END
    IF EXISTS (SELECT 1 FROM dbo._iptblEFTParameters WHERE iBankID = @BankID)
    BEGIN
        RAISERROR('The Bank is in use by the EFT Parameters.', 16, 1)
        RETURN 1
    END
    IF EXISTS (SELECT 1 FROM dbo._iptblEmployeeBank WHERE iBankID = @BankID)
    BEGIN
        RAISERROR('The Bank is in use by the Employees.', 16, 1)
        RETURN 1
    END
    SET @bOwnTransaction = 0
    IF @@TRANCOUNT = 0
    BEGIN
        BEGIN TRANSACTION
        SET @bOwnTransaction = 1
    END
    DELETE FROM dbo._iptblBanks WHERE idBank = @BankID
    DELETE FROM dbo._btblNotes WHERE cNOTETBLTableName = '_IPTBLBANKS' AND fNOTETBLTableID = @BankID
    IF @bOwnTransaction = 1
        COMMIT TRANSACTION
    RETURN 0
END
GO
