// SPDX-License-Identifier: Apache-2.0
#include "package/RegistrationTable.h"

namespace {

constexpr TObjectKinds kList = ObjectKind(0);
constexpr TObjectKinds kDialog = ObjectKind(1); // single-record dialogs and the wizard
constexpr TObjectKinds kNonVisible = ObjectKind(3);
constexpr TObjectKinds kGrouped = ObjectKind(6);
constexpr TObjectKinds kFolder = ObjectKind(8);

constexpr int kPrimary = 0x40A941;
constexpr int kOrdinary = 0x56342A;

// Hosts match group keys as exact strings, "MAINT_SUPER_CATERGORY" included.
// clang-format off
constexpr TRegistration kRegistrations[] = {
    {"MaintNonVisible", nullptr, "", kNonVisible, "", kPrimary},
    {"TfrmMaintGroupManager", "TfrmMaintGroupManager", "MAINT", kGrouped | kFolder, "Maintenance Group Manager", kPrimary},
    {"TfrmMaintGroupManager_General", "TfrmMaintGroupManager", "MAINT_GENERAL", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmMaintGroupManager_Banks", "TfrmMaintGroupManager", "MAINT_GENERAL_BANKS", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmMaintGroupManager_Employment", "TfrmMaintGroupManager", "MAINT_EMPLOYMENT", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmMaintGroupManager_Leave", "TfrmMaintGroupManager", "MAINT_LEAVE", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmMaintGroupManager_LeavePlanning", "TfrmMaintGroupManager", "MAINT_LEAVE_LEAVEPLAN", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmMaintGroupManager_Rates", "TfrmMaintGroupManager", "MAINT_RATES", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmMaintGroupManager_Super", "TfrmMaintGroupManager", "MAINT_SUPER", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmMaintGroupManager_Tax", "TfrmMaintGroupManager", "MAINT_TAX", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmMaintGroupManager_PayrollTax", "TfrmMaintGroupManager", "MAINT_PAYROLLTAX", kGrouped | kFolder, "Maintenance Group Manager", kOrdinary},
    {"TfrmEmpTrfWiz", "TfrmEmpTrfWiz", "ALERT", kDialog | kGrouped, "Employee Transfer", kPrimary},
    {"TfrmIPAddDeductMaintenance", "TfrmIPAddDeductMaintenance", "MAINT_GENERAL_ADDITIONSDEDUCTIONS", kList | kGrouped, "Additions and Deductions Maintenance", kOrdinary},
    {"TfrmIPBankMaintenance", "TfrmIPBankMaintenance", "MAINT_GENERAL_BANKS", kList, "Bank Maintenance", kOrdinary},
    {"TfrmIPContractHoursMaintenance", "TfrmIPContractHoursMaintenance", "MAINT_GENERAL_CONTRACTHOURS", kList | kGrouped, "Contract Hours Maintenance", kOrdinary},
    {"TfrmIPCostAccMaintenance", "TfrmIPCostAccMaintenance", "MAINT_GENERAL_COSTACCOUNTS", kList | kGrouped, "Cost Accounts Maintenance", kOrdinary},
    {"TfrmIPCreditorMaintenance", "TfrmIPCreditorMaintenance", "MAINT_GENERAL_CREDITORS", kList | kGrouped, "Creditor Maintenance", kOrdinary},
    {"TfrmIPDenominations", "TfrmIPDenominations", "MAINT_GENERAL_DENOMINATIONS", kList, "Denominations Maintenance", kOrdinary},
    {"TfrmIPEFTMaintenance", "TfrmIPEFTMaintenance", "MAINT_GENERAL_EFT", kList | kGrouped, "EFT Parameters", kOrdinary},
    {"TfrmIPExportLayoutMaintenance", "TfrmIPExportLayoutMaintenance", "MAINT_GENERAL_EFT", kList | kGrouped, "Export File Layout Maintenance", kOrdinary},
    {"TfrmLocationGroupMaintenance", "TfrmLocationGroupMaintenance", "MAINT_GENERAL_LOCATIONGROUPS", kList | kGrouped, "Location Groups", kOrdinary},
    {"TfrmIPPayComponentsMaintenance", "TfrmIPPayComponentsMaintenance", "MAINT_GENERAL_PAYCOMPONENTS", kList | kGrouped, "Pay Components Maintenance", kOrdinary},
    {"TfrmPayFrequencyMaintenance", "TfrmPayFrequencyMaintenance", "MAINT_GENERAL_PAYFREQUENCIES", kList, "Pay Frequencies", kOrdinary},
    {"TfrmIPAllowDeductMaintenance", "TfrmIPAllowDeductMaintenance", "MAINT_GENERAL_PAYMENTSUMDESCRIPTIONS", kList | kGrouped, "Allowances Maintenance", kOrdinary},
    {"TfrmIPPayerGroupsMaintenance", "TfrmIPPayerGroupsMaintenance", "MAINT_GENERAL_PAYROLLCOMPANIES", kList | kGrouped, "Payroll Company Maintenance", kOrdinary},
    {"TfrmIPSigDatesMaint", "TfrmIPSigDatesMaint", "MAINT_GENERAL_SIGDATES", kList | kGrouped, "Significant Dates", kOrdinary},
    {"TfrmIPWorkmansCompMaintenance", "TfrmIPWorkmansCompMaintenance", "MAINT_GENERAL_WORKERSCOMP", kList | kGrouped, "Workers Compensation", kOrdinary},
    {"TfrmIPGeneralParametersDlg", "TfrmIPGeneralParametersDlg", "MAINT_GENERAL_GENPARAMETERS", kDialog, "General Parameters", kOrdinary},
    {"TfrmIPWorkPatternMaintenance", "TfrmIPWorkPatternMaintenance", "MAINT_EMPLOYMENT_WORKPLANNER", kList | kGrouped, "Work Pattern Maintenance", kOrdinary},
    {"TfrmSTP2OtherAllowanceDescMaint", "TfrmSTP2OtherAllowanceDescMaint", "MAINT_GENERAL_PAYMENTSUMDESCRIPTIONS", kList | kGrouped, "Other Allowance Description Maintenance", kOrdinary},
    {"TfrmIPAnnualLeaveMaintenance", "TfrmIPAnnualLeaveMaintenance", "MAINT_LEAVE_ANNUALLEAVE", kList | kGrouped, "Annual Leave Maintenance", kOrdinary},
    {"TfrmIPLeaveLoadingMaintenance", "TfrmIPLeaveLoadingMaintenance", "MAINT_LEAVE_LEAVELOADING", kList | kGrouped, "Leave Loading Maintenance", kOrdinary},
    {"TfrmIPLeaveReasonsMaintenance", "TfrmIPLeaveReasonsMaintenance", "MAINT_LEAVE_LEAVEREASONS", kList | kGrouped, "Leave Reasons Maintenance", kOrdinary},
    {"TfrmIPLSLMaintenance", "TfrmIPLSLMaintenance", "MAINT_LEAVE_LONGSERVICELEAVE", kList | kGrouped, "Long Service Leave Maintenance", kOrdinary},
    {"TfrmIPRDOMaintenance", "TfrmIPRDOMaintenance", "MAINT_LEAVE_RDO", kList | kGrouped, "RDO Maintenance", kOrdinary},
    {"TfrmIPSickLeaveMaintenance", "TfrmIPSickLeaveMaintenance", "MAINT_LEAVE_SICKLEAVE", kList | kGrouped, "Sick Leave Maintenance", kOrdinary},
    {"TfrmIPUserDefinedLvMaintenance", "TfrmIPUserDefinedLvMaintenance", "MAINT_LEAVE_USERDEFINEDLEAVE", kList | kGrouped, "User Defined Leave Maintenance", kOrdinary},
    {"TfrmIPLeaveParametersDlg", "TfrmIPLeaveParametersDlg", "MAINT_LEAVE_PARAMETERS", kDialog, "Leave Parameters", kOrdinary},
    {"TfrmIPPayrollTaxMaintenance", "TfrmIPPayrollTaxMaintenance", "MAINT_PAYROLLTAX_PAYROLLTAX", kList | kGrouped, "Payroll Tax Maintenance", kOrdinary},
    {"TfrmIPCompanyGroupMaintenance", "TfrmIPCompanyGroupMaintenance", "MAINT_PAYROLLTAX_COMPGROUP", kList | kGrouped, "Company Group", kOrdinary},
    {"TfrmIPRateTypeMaintenance", "TfrmIPRateTypeMaintenance", "MAINT_RATES_AWARD", kList | kGrouped, "Rate Type Maintenance", kOrdinary},
    {"TfrmIPRateTypeMaintenanceLeave", "TfrmIPRateTypeMaintenance", "MAINT_RATES_LEAVE", kList | kGrouped, "Rate Type Maintenance", kOrdinary},
    {"TfrmIPPayClassMaintenance", "TfrmIPPayClassMaintenance", "MAINT_RATES_PAYCLASSES", kList | kGrouped, "Pay Classes Maintenance", kOrdinary},
    {"TfrmIPRateFactorsMaintenance", "TfrmIPRateFactorsMaintenance", "MAINT_RATES_RATEFACTORS", kList | kGrouped, "Rate Factor Maintenance", kOrdinary},
    {"TfrmIPSuperCategoryMaintenance", "TfrmIPSuperCategoryMaintenance", "MAINT_SUPER_CATERGORY", kList | kGrouped, "Superannuation Category", kOrdinary},
    {"TfrmIPSuperSchemeMaintenance", "TfrmIPSuperSchemeMaintenance", "MAINT_SUPER_CONTRIBUTIONS", kList | kGrouped, "Superannuation Scheme Maintenance", kOrdinary},
    {"TfrmIPSuperFileLayoutMaintenance", "TfrmIPSuperFileLayoutMaintenance", "MAINT_SUPER_FILELAYOUT", kList | kGrouped, "Superannuation File Layout Maintenance", kOrdinary},
    {"TfrmIPSuperFundMaintenance", "TfrmIPSuperFundMaintenance", "MAINT_SUPER_FUNDS", kList | kGrouped, "Superannuation Fund Maintenance", kOrdinary},
    {"TfrmIPHECSScalesMaintenance", "TfrmIPHECSScalesMaintenance", "MAINT_TAX_HELPSCALES", kList | kGrouped, "HECS Scales Maintenance", kOrdinary},
    {"TfrmMedicareScalesMaint", "TfrmMedicareScalesMaint", "MAINT_TAX_MEDICARESCALES", kList, "Medicare Maintenance", kOrdinary},
    {"TfrmIPSFSSScalesMaintenance", "TfrmIPSFSSScalesMaintenance", "MAINT_TAX_SFSSSCALES", kList | kGrouped, "SFSS Scales Maintenance", kOrdinary},
    {"TfrmIPTaxScalesMaintenance", "TfrmIPTaxScalesMaintenance", "MAINT_TAX_TAXSCALES", kList | kGrouped, "Tax Scales Maintenance", kOrdinary},
    {"TfrmIPTaxParametersDlg", "TfrmIPTaxParametersDlg", "MAINT_TAX_TAXPARAMETERS", kDialog, "Tax Parameters", kOrdinary},
    {"TfrmIPTaxParametersNZDlg", "TfrmIPTaxParametersNZDlg", "MAINT_TAX_TAXPARAMETERS", kDialog, "Tax Parameters", kOrdinary},
    {"TfrmIPTaxParametersOtherDlg", "TfrmIPTaxParametersOtherDlg", "MAINT_TAX_TAXPARAMETERS", kDialog, "Tax Parameters", kOrdinary},
    {"TfrmIPWorkPlanMaintenance", "TfrmIPWorkPlanMaintenance", "MAINT_EMPLOYMENT_WORKPLANNER", kList | kGrouped, "Work Planner Maintenance", kOrdinary},
    {"TfrmIPCalendarLeaveMaintenance", "TfrmIPCalendarLeaveMaintenance", "MAINT_LEAVE_LEAVEPLAN_PUBLICHOLIDAYS", kList | kGrouped, "Calendar Maintenance", kOrdinary},
};
// clang-format on
static_assert(std::size(kRegistrations) == 57);

} // namespace

std::span<const TRegistration> RegistrationTable()
{
    return kRegistrations;
}
