// SPDX-License-Identifier: Apache-2.0
#include "package/MessageTable.h"

#include <algorithm>
#include <variant>

#include "banking/IPBankAddDlg.h"
#include "banking/IPBankMaintenance.h"
#include "framework/Kvglobal.h"
#include "paystructure/IPRateFactorAddDlg.h"
#include "paystructure/IPRateFactorsMaintenance.h"
#include "paystructure/IPRateTypeAddDlg.h"
#include "paystructure/IPRateTypeMaintenance.h"
#include "tax/IPHECSScalesAddDlg.h"
#include "tax/IPHECSScalesMaintenance.h"
#include "tax/IPMedicareScalesDlg.h"
#include "tax/IPMedicareScalesMaintenance.h"
#include "tax/IPSFSSScalesDlg.h"
#include "tax/IPSFSSScalesMaintenance.h"
#include "tax/IPTaxParametersDlg.h"
#include "tax/IPTaxParametersNZDlg.h"
#include "tax/IPTaxParametersOtherDlg.h"
#include "tax/IPTaxScalesAddDlg.h"
#include "tax/IPTaxScalesMaintenance.h"

namespace {

using TListEntry = void (*)(bool Modal, TList *SelectedList, bool MultiSelect);
using TDialogEntry = void (*)(int Id, bool Copy);
using TPlainEntry = void (*)();
using TPointerEntry = void (*)(void *Object);

// How a message's parameters are used. An entry without its operation belongs to a screen that is not part of this build.
struct List { TListEntry open = nullptr; };       // P1 modal, P2 list, never multi-select
struct SelectList { TListEntry open = nullptr; }; // multi-select, the list emptied, when the list holds an entry
struct MultiList { TListEntry open = nullptr; };  // always multi-select, the list as it is
struct FilteredSelection { TListEntry open = nullptr; }; // as SelectList, but nothing at all without an entry
struct Dialog { TDialogEntry open = nullptr; };   // P1 record id, P2 copy flag
struct Plain { TPlainEntry open = nullptr; };     // no parameters
struct Pointer { TPointerEntry open = nullptr; }; // P1 an object of the caller's
struct ByCountry {                                // no parameters; nothing in any other country
    TPlainEntry australia = nullptr;
    TPlainEntry newZealand = nullptr;
    TPlainEntry other = nullptr;

    TPlainEntry ForCountry() const
    {
        switch (CountryCode) {
        case kAustralia:
            return australia;
        case kNewZealand:
            return newZealand;
        case kOtherCountry:
            return other;
        default:
            return nullptr;
        }
    }
};

using TUse = std::variant<List, SelectList, MultiList, FilteredSelection, Dialog, Plain, Pointer, ByCountry>;

struct TMessageRow {
    uint message;
    const char *operation;
    TUse use;
};

// clang-format off
constexpr TMessageRow kMessages[] = {
    {9225, "DoBankMaintenance", List{DoBankMaintenance}},
    {9226, "DoIPBankAdd", Dialog{DoIPBankAdd}},
    {9228, "DoMedicareScalesMaintenance", List{DoMedicareScalesMaintenance}},
    {9229, "DoMedicareScalesAdd", Dialog{DoMedicareScalesAdd}},
    {9231, "DoPayrollTaxMaintenance", List{}},
    {9232, "DoPayrollTaxAdd", Dialog{}},
    {9234, "DoDenominationsMaintenance", List{}},
    {9235, "DoDenominationsAdd", Dialog{}},
    {9237, "DoSFSSScalesMaintenance", List{DoSFSSScalesMaintenance}},
    {9238, "DoSFSSScalesAdd", Dialog{DoSFSSScalesAdd}},
    {9240, "DoEFTMaintenance", List{}},
    {9241, "DoEFTAdd, DoCompanyBankAdd", Dialog{}},
    {9243, "DoTaxScalesMaintenance", List{DoTaxScalesMaintenance}},
    {9244, "DoTaxScalesAdd", Dialog{DoTaxScalesAdd}},
    {9249, "DoContractHoursMaintenance", List{}},
    {9250, "DoContractHoursAdd", Dialog{}},
    {9252, "DoHECSScalesMaintenance", List{DoHECSScalesMaintenance}},
    {9253, "DoHECSScalesAdd", Dialog{DoHECSScalesAdd}},
    {9255, "DoTaxParameters",
     ByCountry{IPTaxParametersDlg::DoTaxParameters, IPTaxParametersNZDlg::DoTaxParameters,
               IPTaxParametersOtherDlg::DoTaxParameters}},
    {9256, "DoPayerGroupsMaintenance", List{}},
    {9257, "DoPayerGroupsAdd", Dialog{}},
    {9262, "DoSuperFundMaintenance", SelectList{}},
    {9263, "DoSuperFundAdd", Dialog{}},
    {9265, "DoSuperFileLayoutMaintenance", List{}},
    {9266, "DoSuperFileLayoutAdd", Dialog{}},
    {9277, "DoRDOMaintenance", List{}},
    {9278, "DoRDOAdd", Dialog{}},
    {9280, "DoGeneralParameters", Plain{}},
    {9281, "DoIPAnnualLeaveMaintenance", List{}},
    {9282, "DoIPAnnualLeaveAdd", Dialog{}},
    {9284, "DoRateFactorsMaintenance", List{DoRateFactorsMaintenance}},
    {9285, "DoRateFactorAdd", Dialog{DoRateFactorAdd}},
    {9287, "DoPayComponentsMaintenance", SelectList{}},
    {9288, "DoPayComponentsAdd", Dialog{}},
    {9290, "DoLeaveLoadingMaintenance", List{}},
    {9291, "DoLeaveLoadingAdd", Dialog{}},
    {9293, "DoAddDeductMaintenance", SelectList{}},
    {9294, "DoAddDeductAdd", Dialog{}},
    {9296, "DoSuperSchemeMaintenance", SelectList{}},
    {9297, "DoSuperSchemeAdd", Dialog{}},
    {9299, "DoPayClassMaintenance", SelectList{}},
    {9300, "DoPayClassAdd", Dialog{}},
    {9308, "DoIPSickLeaveMaintenance", List{}},
    {9309, "DoIPSickLeaveAdd", Dialog{}},
    {9311, "DoIPLSLMaintenance", List{}},
    {9312, "DoIPLSLAdd", Dialog{}},
    {9314, "DoLeaveReasonsMaintenance", SelectList{}},
    {9315, "DoLeaveReasonAdd", Dialog{}},
    {9320, "DoIPCostAccountMaintenance", List{}},
    {9321, "DoIPCostAccountAdd", Dialog{}},
    {9334, "DoWorkmansCompMaintenance", List{}},
    {9335, "DoWorkmansCompAdd", Dialog{}},
    {9337, "DoSuperCategoryMaintenance", List{}},
    {9338, "DoSuperCategoryAdd", Dialog{}},
    {9348, "DoAllowanceDeductionMaintenance", List{}},
    {9349, "DoAllowancesDeductionsAdd", Dialog{}},
    {9379, "DoIPSigDatesMaintenance", SelectList{}},
    {9380, "DoIPSigDatesAdd", Dialog{}},
    {9390, "DoCreditorMaintenance", List{}},
    {9391, "DoCreditorAdd", Dialog{}},
    {9395, "DoIPCalendarLeaveMaintenance", List{}},
    {9396, "DoIPCalendarLeaveAdd", Dialog{}},
    {9404, "DoIPWorkPlanMaintenance", List{}},
    {9405, "DoAddWorkPlan", Dialog{}},
    {9409, "DoRateTypeMaintenance", SelectList{DoRateTypeMaintenance}},
    {9410, "DoRateTypeAdd", Dialog{[](int Id, bool Copy) { DoRateTypeAdd(Id, Copy, false); }}},
    {9412, "DoExportFileLayoutMaintenance", List{}},
    {9415, "DoLeaveParameters", Plain{}},
    {9418, "DoIPUserDefinedLeaveMaintenance", SelectList{}},
    {9419, "DoIPUserDefinedLeaveAdd", Dialog{}},
    {9429, "DoPayFrequencyMaintenance", SelectList{}},
    {9430, "DoAddPayFreqAdd", Dialog{}},
    {9436, "DoAddDeductMaintenance", FilteredSelection{}},
    {9437, "DoNewSuperFund", Pointer{}},
    {9440, "DoCompanyGroupMaintenance", List{}},
    {9441, "DoCompanyGroupAdd", Dialog{}},
    {9443, "DoIPWorkPatternMaintenance", List{}},
    {9444, "DoWorkPatternAddEdit", Dialog{}},
    {9451, "DoAwardPayClassEdit", Dialog{}},
    {9453, "DoSTP2OtherAllowanceDescMaintenance", List{}},
    {9454, "DoSTP2OtherAllowanceDescAdd", Dialog{}},
};
// clang-format on
static_assert(std::size(kMessages) == 81);
static_assert(std::is_sorted(std::begin(kMessages), std::end(kMessages),
                             [](const TMessageRow &a, const TMessageRow &b) { return a.message < b.message; }));

const TMessageRow *FindMessage(uint MsgId)
{
    const auto *found = std::lower_bound(std::begin(kMessages), std::end(kMessages), MsgId,
                                         [](const TMessageRow &row, uint id) { return row.message < id; });
    return found != std::end(kMessages) && found->message == MsgId ? found : nullptr;
}

TList *AsList(qlonglong Param2)
{
    return reinterpret_cast<TList *>(qintptr(Param2));
}

class TDispatcher
{
public:
    TDispatcher(qlonglong Param1, qlonglong Param2)
        : param1_(Param1)
        , param2_(Param2)
    {
    }

    bool operator()(const List &use) const
    {
        if (use.open)
            use.open(Modal(), AsList(param2_), false);
        return use.open != nullptr;
    }
    bool operator()(const SelectList &use) const
    {
        if (use.open)
            use.open(Modal(), AsList(param2_), TakeSelection());
        return use.open != nullptr;
    }
    bool operator()(const MultiList &use) const
    {
        if (use.open)
            use.open(Modal(), AsList(param2_), true);
        return use.open != nullptr;
    }
    bool operator()(const FilteredSelection &use) const
    {
        if (!use.open || !TakeSelection())
            return false;
        use.open(Modal(), AsList(param2_), true);
        return true;
    }
    bool operator()(const Dialog &use) const
    {
        if (use.open)
            use.open(int(param1_), param2_ != 0);
        return use.open != nullptr;
    }
    bool operator()(const Plain &use) const
    {
        if (use.open)
            use.open();
        return use.open != nullptr;
    }
    bool operator()(const Pointer &use) const
    {
        if (use.open)
            use.open(reinterpret_cast<void *>(qintptr(param1_)));
        return use.open != nullptr;
    }
    bool operator()(const ByCountry &use) const
    {
        const TPlainEntry open = use.ForCountry();
        if (open)
            open();
        return open != nullptr;
    }

private:
    bool Modal() const { return param1_ != 0; }
    // The entries in a list only say that a selection is asked for; it goes to the screen empty.
    bool TakeSelection() const
    {
        TList *list = AsList(param2_);
        if (!list || list->Count() == 0)
            return false;
        list->Clear();
        return true;
    }

    qlonglong param1_;
    qlonglong param2_;
};

} // namespace

bool DispatchMessage(uint MsgId, qlonglong Param1, qlonglong Param2)
{
    const TMessageRow *row = FindMessage(MsgId);
    return row && std::visit(TDispatcher(Param1, Param2), row->use);
}

bool IsDispatched(uint MsgId)
{
    const TMessageRow *row = FindMessage(MsgId);
    if (!row)
        return false;
    return std::visit(
        [](const auto &use) {
            if constexpr (std::is_same_v<std::decay_t<decltype(use)>, ByCountry>)
                return use.ForCountry() != nullptr;
            else
                return use.open != nullptr;
        },
        row->use);
}
