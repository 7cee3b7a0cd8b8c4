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
using TIntegersEntry = void (*)(int First, int Second);
using TPlainEntry = void (*)();
using TPointerEntry = void (*)(void *Object);

// How a message's parameters are used. An entry without its operation belongs to a screen that is not part of this
// build. P1 modal, P2 list, never multi-select
struct List
{
    TListEntry open = nullptr;
};
// P1 modal, P2 list; when the list holds an entry: multi-select, and the list is emptied
struct SelectList
{
    TListEntry open = nullptr;
};
// P1 modal, P2 list as it is, always multi-select
struct MultiList
{
    TListEntry open = nullptr;
};
// as SelectList, but without an entry in the list nothing at all
struct FilteredSelection
{
    TListEntry open = nullptr;
};
// P1 record id, P2 copy flag
struct Dialog
{
    TDialogEntry open = nullptr;
};
// the same, another dialog in Australia than elsewhere
struct DialogByCountry
{
    TDialogEntry australia = nullptr;
    TDialogEntry elsewhere = nullptr;
    TDialogEntry ForCountry() const { return CountryCode == kAustralia ? australia : elsewhere; }
};
// P1 and P2 as they are
struct Integers
{
    TIntegersEntry open = nullptr;
};
// P1 an object of the caller's
struct Pointer
{
    TPointerEntry open = nullptr;
};
// no parameters
struct Plain
{
    TPlainEntry open = nullptr;
};
// no parameters; nothing in any country but the three
struct PlainByCountry
{
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

using TUse = std::variant<List, SelectList, MultiList, FilteredSelection, Dialog, DialogByCountry, Integers, Pointer,
                          Plain, PlainByCountry>;

// The operation that a row opens in this installation; nullptr when there is none.
template <class Use> auto EntryOf(const Use &use)
{
    if constexpr (requires { use.ForCountry(); })
        return use.ForCountry();
    else
        return use.open;
}

struct TMessageRow
{
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
    {9241, "DoEFTAdd, DoCompanyBankAdd", DialogByCountry{}},
    {9243, "DoTaxScalesMaintenance", List{DoTaxScalesMaintenance}},
    {9244, "DoTaxScalesAdd", Dialog{DoTaxScalesAdd}},
    {9249, "DoContractHoursMaintenance", List{}},
    {9250, "DoContractHoursAdd", Dialog{}},
    {9252, "DoHECSScalesMaintenance", List{DoHECSScalesMaintenance}},
    {9253, "DoHECSScalesAdd", Dialog{DoHECSScalesAdd}},
    {9255, "DoTaxParameters",
     PlainByCountry{IPTaxParametersDlg::DoTaxParameters, IPTaxParametersNZDlg::DoTaxParameters,
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
    {9379, "DoIPSigDatesMaintenance", MultiList{}},
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
    {9451, "DoAwardPayClassEdit", Integers{}},
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

// Opens what a row names, with the parameters used as the row's type says. Gives false when nothing was opened.
class TDispatcher
{
public:
    TDispatcher(qlonglong Param1, qlonglong Param2)
        : param1_(Param1)
        , param2_(Param2)
    {}

    template <class Use> bool operator()(const Use &use) const
    {
        const auto entry = EntryOf(use);
        return entry && Open(use, entry);
    }

private:
    bool Open(const List &, TListEntry entry) const { return Run(entry, Modal(), SelectedList(), false); }
    bool Open(const SelectList &, TListEntry entry) const
    {
        return Run(entry, Modal(), SelectedList(), TakeSelection());
    }
    bool Open(const MultiList &, TListEntry entry) const { return Run(entry, Modal(), SelectedList(), true); }
    bool Open(const FilteredSelection &, TListEntry entry) const
    {
        return TakeSelection() && Run(entry, Modal(), SelectedList(), true);
    }
    bool Open(const Dialog &, TDialogEntry entry) const { return Run(entry, int(param1_), param2_ != 0); }
    bool Open(const DialogByCountry &, TDialogEntry entry) const { return Run(entry, int(param1_), param2_ != 0); }
    bool Open(const Integers &, TIntegersEntry entry) const { return Run(entry, int(param1_), int(param2_)); }
    bool Open(const Pointer &, TPointerEntry entry) const
    {
        return Run(entry, reinterpret_cast<void *>(qintptr(param1_)));
    }
    bool Open(const Plain &, TPlainEntry entry) const { return Run(entry); }
    bool Open(const PlainByCountry &, TPlainEntry entry) const { return Run(entry); }

    template <class Entry, class... Args> static bool Run(Entry entry, Args... args)
    {
        entry(args...);
        return true;
    }

    bool Modal() const { return param1_ != 0; }
    TList *SelectedList() const { return reinterpret_cast<TList *>(qintptr(param2_)); }
    // The entries in a list only say that a selection is asked for; it goes to the screen empty.
    bool TakeSelection() const
    {
        TList *list = SelectedList();
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
    return row && std::visit([](const auto &use) { return EntryOf(use) != nullptr; }, row->use);
}
