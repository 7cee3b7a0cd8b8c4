// SPDX-License-Identifier: Apache-2.0
#pragma once

class TList;

// The list of rate types; of award rates when the program was started with MAPS=Y. Modal: returns when it is closed,
// SelectedList then holds the ids of the versions chosen.
void DoRateTypeMaintenance(bool ShowModal, TList *SelectedList, bool MultiSelect);
