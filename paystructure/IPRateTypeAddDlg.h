// SPDX-License-Identifier: Apache-2.0
#pragma once

// Adds a rate type (RateTypeTDID 0), edits a version of one, saves a copy as a new rate type (DoCopyRecord), or adds a
// version with an effective date of its own (AllowEffectiveDateChange). Returns when the dialog is closed.
void DoRateTypeAdd(int RateTypeTDID, bool DoCopyRecord, bool AllowEffectiveDateChange);
