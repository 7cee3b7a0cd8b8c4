// SPDX-License-Identifier: Apache-2.0
#pragma once

class TList;

// The tax scales of the current country and tax year. Modal: returns when it is closed, SelectedList then holds the ids
// chosen.
void DoTaxScalesMaintenance(bool Modal, TList *SelectedList, bool MultiSelect);
