// SPDX-License-Identifier: Apache-2.0
#pragma once

class TList;

// The Medicare scales of the current tax year. Modal: returns when it is closed, SelectedList then holds the ids
// chosen.
void DoMedicareScalesMaintenance(bool Modal, TList *SelectedList, bool MultiSelect);
