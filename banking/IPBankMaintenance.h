// SPDX-License-Identifier: Apache-2.0
#pragma once

class TList;

// The bank list. Modal: returns when it is closed, SelectedList then holds the ids chosen.
void DoBankMaintenance(bool Modal, TList *SelectedList, bool MultiSelect);
