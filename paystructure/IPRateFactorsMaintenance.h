// SPDX-License-Identifier: Apache-2.0
#pragma once

class TList;

// The list of rate factors. Modal: returns when it is closed, SelectedList then holds the ids chosen.
void DoRateFactorsMaintenance(bool ShowModal, TList *SelectedList, bool MultiSelect);
