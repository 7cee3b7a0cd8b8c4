// SPDX-License-Identifier: Apache-2.0
#include <QAction>

#include "framework/Corvexpackagemanager.h"
#include "framework/Kvglobal.h"
#include "framework/grid/qsGrid.h"
#include "tests/support/TestSupport.h"

namespace {

struct TRow
{
    const char *name, *className, *groupKey, *kinds, *caption;
    int displayValue;
};

// clang-format off
constexpr TRow kRegistered[] = {
    {"MaintNonVisible", "", "", "3", "", 0x40A941},
    {"TfrmMaintGroupManager", "TfrmMaintGroupManager", "MAINT", "6,8", "Maintenance Group Manager", 0x40A941},
    {"TfrmMaintGroupManager_General", "TfrmMaintGroupManager", "MAINT_GENERAL", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmMaintGroupManager_Banks", "TfrmMaintGroupManager", "MAINT_GENERAL_BANKS", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmMaintGroupManager_Employment", "TfrmMaintGroupManager", "MAINT_EMPLOYMENT", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmMaintGroupManager_Leave", "TfrmMaintGroupManager", "MAINT_LEAVE", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmMaintGroupManager_LeavePlanning", "TfrmMaintGroupManager", "MAINT_LEAVE_LEAVEPLAN", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmMaintGroupManager_Rates", "TfrmMaintGroupManager", "MAINT_RATES", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmMaintGroupManager_Super", "TfrmMaintGroupManager", "MAINT_SUPER", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmMaintGroupManager_Tax", "TfrmMaintGroupManager", "MAINT_TAX", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmMaintGroupManager_PayrollTax", "TfrmMaintGroupManager", "MAINT_PAYROLLTAX", "6,8", "Maintenance Group Manager", 0x56342A},
    {"TfrmEmpTrfWiz", "TfrmEmpTrfWiz", "ALERT", "1,6", "Employee Transfer", 0x40A941},
    {"TfrmIPAddDeductMaintenance", "TfrmIPAddDeductMaintenance", "MAINT_GENERAL_ADDITIONSDEDUCTIONS", "0,6", "Additions and Deductions Maintenance", 0x56342A},
    {"TfrmIPBankMaintenance", "TfrmIPBankMaintenance", "MAINT_GENERAL_BANKS", "0", "Bank Maintenance", 0x56342A},
    {"TfrmIPContractHoursMaintenance", "TfrmIPContractHoursMaintenance", "MAINT_GENERAL_CONTRACTHOURS", "0,6", "Contract Hours Maintenance", 0x56342A},
    {"TfrmIPCostAccMaintenance", "TfrmIPCostAccMaintenance", "MAINT_GENERAL_COSTACCOUNTS", "0,6", "Cost Accounts Maintenance", 0x56342A},
    {"TfrmIPCreditorMaintenance", "TfrmIPCreditorMaintenance", "MAINT_GENERAL_CREDITORS", "0,6", "Creditor Maintenance", 0x56342A},
    {"TfrmIPDenominations", "TfrmIPDenominations", "MAINT_GENERAL_DENOMINATIONS", "0", "Denominations Maintenance", 0x56342A},
    {"TfrmIPEFTMaintenance", "TfrmIPEFTMaintenance", "MAINT_GENERAL_EFT", "0,6", "EFT Parameters", 0x56342A},
    {"TfrmIPExportLayoutMaintenance", "TfrmIPExportLayoutMaintenance", "MAINT_GENERAL_EFT", "0,6", "Export File Layout Maintenance", 0x56342A},
    {"TfrmLocationGroupMaintenance", "TfrmLocationGroupMaintenance", "MAINT_GENERAL_LOCATIONGROUPS", "0,6", "Location Groups", 0x56342A},
    {"TfrmIPPayComponentsMaintenance", "TfrmIPPayComponentsMaintenance", "MAINT_GENERAL_PAYCOMPONENTS", "0,6", "Pay Components Maintenance", 0x56342A},
    {"TfrmPayFrequencyMaintenance", "TfrmPayFrequencyMaintenance", "MAINT_GENERAL_PAYFREQUENCIES", "0", "Pay Frequencies", 0x56342A},
    {"TfrmIPAllowDeductMaintenance", "TfrmIPAllowDeductMaintenance", "MAINT_GENERAL_PAYMENTSUMDESCRIPTIONS", "0,6", "Allowances Maintenance", 0x56342A},
    {"TfrmIPPayerGroupsMaintenance", "TfrmIPPayerGroupsMaintenance", "MAINT_GENERAL_PAYROLLCOMPANIES", "0,6", "Payroll Company Maintenance", 0x56342A},
    {"TfrmIPSigDatesMaint", "TfrmIPSigDatesMaint", "MAINT_GENERAL_SIGDATES", "0,6", "Significant Dates", 0x56342A},
    {"TfrmIPWorkmansCompMaintenance", "TfrmIPWorkmansCompMaintenance", "MAINT_GENERAL_WORKERSCOMP", "0,6", "Workers Compensation", 0x56342A},
    {"TfrmIPGeneralParametersDlg", "TfrmIPGeneralParametersDlg", "MAINT_GENERAL_GENPARAMETERS", "1", "General Parameters", 0x56342A},
    {"TfrmIPWorkPatternMaintenance", "TfrmIPWorkPatternMaintenance", "MAINT_EMPLOYMENT_WORKPLANNER", "0,6", "Work Pattern Maintenance", 0x56342A},
    {"TfrmSTP2OtherAllowanceDescMaint", "TfrmSTP2OtherAllowanceDescMaint", "MAINT_GENERAL_PAYMENTSUMDESCRIPTIONS", "0,6", "Other Allowance Description Maintenance", 0x56342A},
    {"TfrmIPAnnualLeaveMaintenance", "TfrmIPAnnualLeaveMaintenance", "MAINT_LEAVE_ANNUALLEAVE", "0,6", "Annual Leave Maintenance", 0x56342A},
    {"TfrmIPLeaveLoadingMaintenance", "TfrmIPLeaveLoadingMaintenance", "MAINT_LEAVE_LEAVELOADING", "0,6", "Leave Loading Maintenance", 0x56342A},
    {"TfrmIPLeaveReasonsMaintenance", "TfrmIPLeaveReasonsMaintenance", "MAINT_LEAVE_LEAVEREASONS", "0,6", "Leave Reasons Maintenance", 0x56342A},
    {"TfrmIPLSLMaintenance", "TfrmIPLSLMaintenance", "MAINT_LEAVE_LONGSERVICELEAVE", "0,6", "Long Service Leave Maintenance", 0x56342A},
    {"TfrmIPRDOMaintenance", "TfrmIPRDOMaintenance", "MAINT_LEAVE_RDO", "0,6", "RDO Maintenance", 0x56342A},
    {"TfrmIPSickLeaveMaintenance", "TfrmIPSickLeaveMaintenance", "MAINT_LEAVE_SICKLEAVE", "0,6", "Sick Leave Maintenance", 0x56342A},
    {"TfrmIPUserDefinedLvMaintenance", "TfrmIPUserDefinedLvMaintenance", "MAINT_LEAVE_USERDEFINEDLEAVE", "0,6", "User Defined Leave Maintenance", 0x56342A},
    {"TfrmIPLeaveParametersDlg", "TfrmIPLeaveParametersDlg", "MAINT_LEAVE_PARAMETERS", "1", "Leave Parameters", 0x56342A},
    {"TfrmIPPayrollTaxMaintenance", "TfrmIPPayrollTaxMaintenance", "MAINT_PAYROLLTAX_PAYROLLTAX", "0,6", "Payroll Tax Maintenance", 0x56342A},
    {"TfrmIPCompanyGroupMaintenance", "TfrmIPCompanyGroupMaintenance", "MAINT_PAYROLLTAX_COMPGROUP", "0,6", "Company Group", 0x56342A},
    {"TfrmIPRateTypeMaintenance", "TfrmIPRateTypeMaintenance", "MAINT_RATES_AWARD", "0,6", "Rate Type Maintenance", 0x56342A},
    {"TfrmIPRateTypeMaintenanceLeave", "TfrmIPRateTypeMaintenance", "MAINT_RATES_LEAVE", "0,6", "Rate Type Maintenance", 0x56342A},
    {"TfrmIPPayClassMaintenance", "TfrmIPPayClassMaintenance", "MAINT_RATES_PAYCLASSES", "0,6", "Pay Classes Maintenance", 0x56342A},
    {"TfrmIPRateFactorsMaintenance", "TfrmIPRateFactorsMaintenance", "MAINT_RATES_RATEFACTORS", "0,6", "Rate Factor Maintenance", 0x56342A},
    {"TfrmIPSuperCategoryMaintenance", "TfrmIPSuperCategoryMaintenance", "MAINT_SUPER_CATERGORY", "0,6", "Superannuation Category", 0x56342A},
    {"TfrmIPSuperSchemeMaintenance", "TfrmIPSuperSchemeMaintenance", "MAINT_SUPER_CONTRIBUTIONS", "0,6", "Superannuation Scheme Maintenance", 0x56342A},
    {"TfrmIPSuperFileLayoutMaintenance", "TfrmIPSuperFileLayoutMaintenance", "MAINT_SUPER_FILELAYOUT", "0,6", "Superannuation File Layout Maintenance", 0x56342A},
    {"TfrmIPSuperFundMaintenance", "TfrmIPSuperFundMaintenance", "MAINT_SUPER_FUNDS", "0,6", "Superannuation Fund Maintenance", 0x56342A},
    {"TfrmIPHECSScalesMaintenance", "TfrmIPHECSScalesMaintenance", "MAINT_TAX_HELPSCALES", "0,6", "HECS Scales Maintenance", 0x56342A},
    {"TfrmMedicareScalesMaint", "TfrmMedicareScalesMaint", "MAINT_TAX_MEDICARESCALES", "0", "Medicare Maintenance", 0x56342A},
    {"TfrmIPSFSSScalesMaintenance", "TfrmIPSFSSScalesMaintenance", "MAINT_TAX_SFSSSCALES", "0,6", "SFSS Scales Maintenance", 0x56342A},
    {"TfrmIPTaxScalesMaintenance", "TfrmIPTaxScalesMaintenance", "MAINT_TAX_TAXSCALES", "0,6", "Tax Scales Maintenance", 0x56342A},
    {"TfrmIPTaxParametersDlg", "TfrmIPTaxParametersDlg", "MAINT_TAX_TAXPARAMETERS", "1", "Tax Parameters", 0x56342A},
    {"TfrmIPTaxParametersNZDlg", "TfrmIPTaxParametersNZDlg", "MAINT_TAX_TAXPARAMETERS", "1", "Tax Parameters", 0x56342A},
    {"TfrmIPTaxParametersOtherDlg", "TfrmIPTaxParametersOtherDlg", "MAINT_TAX_TAXPARAMETERS", "1", "Tax Parameters", 0x56342A},
    {"TfrmIPWorkPlanMaintenance", "TfrmIPWorkPlanMaintenance", "MAINT_EMPLOYMENT_WORKPLANNER", "0,6", "Work Planner Maintenance", 0x56342A},
    {"TfrmIPCalendarLeaveMaintenance", "TfrmIPCalendarLeaveMaintenance", "MAINT_LEAVE_LEAVEPLAN_PUBLICHOLIDAYS", "0,6", "Calendar Maintenance", 0x56342A},
};

enum Use { List, Select, Multi, Dialog, Plain, FilteredSelection, Pointer };
struct TMessageUse { uint message; Use use; };
constexpr TMessageUse kMessages[] = {
    {9225, List},
    {9226, Dialog},
    {9228, List},
    {9229, Dialog},
    {9231, List},
    {9232, Dialog},
    {9234, List},
    {9235, Dialog},
    {9237, List},
    {9238, Dialog},
    {9240, List},
    {9241, Dialog},
    {9243, List},
    {9244, Dialog},
    {9249, List},
    {9250, Dialog},
    {9252, List},
    {9253, Dialog},
    {9255, Plain},
    {9256, List},
    {9257, Dialog},
    {9262, Select},
    {9263, Dialog},
    {9265, List},
    {9266, Dialog},
    {9277, List},
    {9278, Dialog},
    {9280, Plain},
    {9281, List},
    {9282, Dialog},
    {9284, List},
    {9285, Dialog},
    {9287, Select},
    {9288, Dialog},
    {9290, List},
    {9291, Dialog},
    {9293, Select},
    {9294, Dialog},
    {9296, Select},
    {9297, Dialog},
    {9299, Select},
    {9300, Dialog},
    {9308, List},
    {9309, Dialog},
    {9311, List},
    {9312, Dialog},
    {9314, Select},
    {9315, Dialog},
    {9320, List},
    {9321, Dialog},
    {9334, List},
    {9335, Dialog},
    {9337, List},
    {9338, Dialog},
    {9348, List},
    {9349, Dialog},
    {9379, Multi},
    {9380, Dialog},
    {9390, List},
    {9391, Dialog},
    {9395, List},
    {9396, Dialog},
    {9404, List},
    {9405, Dialog},
    {9409, Select},
    {9410, Dialog},
    {9412, List},
    {9415, Plain},
    {9418, Select},
    {9419, Dialog},
    {9429, Select},
    {9430, Dialog},
    {9436, FilteredSelection},
    {9437, Pointer},
    {9440, List},
    {9441, Dialog},
    {9443, List},
    {9444, Dialog},
    {9451, Dialog},
    {9453, List},
    {9454, Dialog}};
// clang-format on

TObjectKinds Kinds(const char *bits)
{
    TObjectKinds kinds = 0;
    for (const QString &bit : QString(bits).split(u','))
        kinds |= TObjectKinds(1u << bit.toInt());
    return kinds;
}

qlonglong Parameter(TList &list)
{
    return qlonglong(quintptr(&list));
}

bool IsListUse(Use use)
{
    return use == List || use == Select || use == Multi;
}

} // namespace

// The package file as its host sees it.
class t_package final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void registersItsClasses();
    void entryPointsCount();
    void secondInterfaceSharesTheResources();
    void handlesOnlyItsMessages();
    void opensWhatItCanHandle_data();
    void opensWhatItCanHandle();
    void bankListModes_data();
    void bankListModes();
    void errorsPassToTheHost();
    void countryDecidesTaxParameters();
};

void t_package::registersItsClasses()
{
    TCorvexPackageInterface &package = ThePackage();
    package.GetObjectClassList();
    const QList<TObjectEntry> entries = package.ObjectEntries();
    QCOMPARE(entries.size(), qsizetype(std::size(kRegistered)));
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const TRow &row = kRegistered[i];
        const TObjectEntry &entry = entries[i];
        QCOMPARE(entry.ObjectName, row.name);
        QCOMPARE(entry.ObjectClass ? entry.ObjectClass->name : "", QByteArray(row.className));
        QCOMPARE(entry.GroupKey, row.groupKey);
        QCOMPARE(entry.ObjectKinds, Kinds(row.kinds));
        QCOMPARE(entry.Caption, row.caption);
        QCOMPARE(entry.DisplayValue, row.displayValue);
        QCOMPARE(entry.Extra, quintptr(0));
        QVERIFY(!entry.Modules.isEmpty());
    }
    QCOMPARE(entries[40].ObjectClass, entries[41].ObjectClass); // award rates and leave rates are one class
}

void t_package::entryPointsCount()
{
    ThePackage();
    const TModuleHandle again = LoadPackage("qpMaintenance.bpl");
    FinalizePackage(again);
    QVERIFY2(FindClass("TkpIMaintenance"), "still used by the first");
}

void t_package::secondInterfaceSharesTheResources()
{
    ThePackage();
    const std::unique_ptr<QObject> second(CreateByClassName("TkpIMaintenance"));
    QVERIFY(second);
    QCOMPARE(GlobalPackageList().Names().count("qspResources.bpl"), 1);
    QVERIFY(GlobalPackageList().Objects(GlobalPackageList().IndexOf("QSPRESOURCES.BPL")));
    QVERIFY2(!ScreenIcon("add").isNull(), "the icons are in the resource package");
}

void t_package::handlesOnlyItsMessages()
{
    const TTemplateDatabase database;
    TUserScript script; // nothing may open
    QVERIFY(ThePackage().CanHandleMessage(9225));
    QVERIFY(ThePackage().CanHandleMessage(9226));
    TList empty;
    for (uint message = 9200; message < 9500; ++message) {
        const auto *known = std::find_if(std::begin(kMessages), std::end(kMessages),
                                         [message](const TMessageUse &row) { return row.message == message; });
        const bool listed = known != std::end(kMessages);
        if (listed && ThePackage().CanHandleMessage(message))
            continue; // opened below
        QVERIFY2(!ThePackage().CanHandleMessage(message), QByteArray::number(message));
        QVERIFY2(!SendToPackage(message, 1, 0), QByteArray::number(message));
    }
    for (const uint message : {0u, 5030u, 5038u, 0xffffffffu})
        QVERIFY(!SendToPackage(message));
    QVERIFY(!SendToPackage(9436, 1, 0)); // a selection without a list to put it in
    QVERIFY(!SendToPackage(9436, 1, Parameter(empty)));
    VERIFY_SCRIPT(script);
}

void t_package::opensWhatItCanHandle_data()
{
    QTest::addColumn<uint>("message");
    QTest::addColumn<int>("use");
    for (const TMessageUse &row : kMessages) {
        if (ThePackage().CanHandleMessage(row.message) && row.use != Pointer)
            QTest::addRow("%u", row.message) << row.message << int(row.use);
    }
}

// One window a message; a list gets its caller's list, and ticks, as its row says.
void t_package::opensWhatItCanHandle()
{
    QFETCH(uint, message);
    QFETCH(int, use);
    const TTemplateDatabase database(TTemplateDatabase::Content::Demo);
    const TNotificationRecorder control;
    TList list;
    list.Add(12);
    list.Add(40);
    const bool isList = IsListUse(Use(use)) || use == FilteredSelection;
    int countAtEntry = -1;
    bool ticks = false;
    TUserScript script;
    script.Dialog("", [&](QDialog &window) {
        countAtEntry = list.Count();
        if (isList) {
            TqsGrid *grid = window.findChild<TqsGrid *>();
            ticks = grid && grid->MultiSelect();
        }
        window.reject();
    });
    QVERIFY(SendToPackage(message, isList ? 1 : 0, isList ? Parameter(list) : 0));
    VERIFY_SCRIPT(script);
    QCOMPARE(countAtEntry, use == Select || use == FilteredSelection ? 0 : 2);
    QCOMPARE(ticks, isList && use != List);
}

void t_package::bankListModes_data()
{
    QTest::addColumn<qlonglong>("modal");
    QTest::newRow("non-modal") << qlonglong(0);
    QTest::newRow("modal") << qlonglong(1);
    QTest::newRow("any other value is modal") << qlonglong(-5);
}

void t_package::bankListModes()
{
    QFETCH(qlonglong, modal);
    const TTemplateDatabase database(TTemplateDatabase::Content::Demo);
    const TNotificationRecorder control;
    TMemoryScreenHost host;
    TUserScript script;
    if (modal != 0)
        script.Dialog("TfrmIPBankMaintenance", [](QDialog &list) { PressCancel(list); });
    QVERIFY(SendToPackage(9225, modal, 0));
    VERIFY_SCRIPT(script);
    QCOMPARE(host.Screens.size(), modal != 0 ? 0 : 1);
    QVERIFY(!QApplication::overrideCursor());
    if (modal == 0) {
        const QPointer<QWidget> screen = host.Screens[0];
        QVERIFY(screen->isVisible());
        QCOMPARE(screen->property("systemFunctionId").toInt(), 1909);
        screen->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY2(!screen, "a non-modal screen frees itself");
    }
}

void t_package::errorsPassToTheHost()
{
    const TTemplateDatabase database;
    TUserScript script;
    bool handled = false;
    QVERIFY_THROWS_EXCEPTION(TDbError, ThePackage().NonVisiblePkgMessage(9226, 4711, 0, handled));
    QVERIFY(!handled);
    QVERIFY(!QApplication::overrideCursor());
    VERIFY_SCRIPT(script);
}

void t_package::countryDecidesTaxParameters()
{
    const TTemplateDatabase database;
    TUserScript script;
    CountryCode = 3;
    QVERIFY(!ThePackage().CanHandleMessage(9255));
    QVERIFY(!SendToPackage(9255));
    VERIFY_SCRIPT(script);
}

QTEST_MAIN(t_package)
#include "t_package.moc"
