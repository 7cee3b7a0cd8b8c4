// SPDX-License-Identifier: Apache-2.0
#pragma once

class TList;

// The student financial supplement scheme (SFSS) scales of the current tax year. Modal: returns when it is closed,
// SelectedList then holds the ids chosen.
void DoSFSSScalesMaintenance(bool Modal, TList *SelectedList, bool MultiSelect);
