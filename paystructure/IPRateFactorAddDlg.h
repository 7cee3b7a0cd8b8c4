// SPDX-License-Identifier: Apache-2.0
#pragma once

// Adds a rate factor (RateFactorID 0), edits one, or saves a copy of one (DoCopyRecord). Returns when the dialog is
// closed.
void DoRateFactorAdd(int RateFactorID, bool DoCopyRecord);
