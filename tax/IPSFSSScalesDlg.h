// SPDX-License-Identifier: Apache-2.0
#pragma once

// Adds a student financial supplement scheme (SFSS) scale (Id 0), edits one, or saves a copy of one (Copy). Returns
// when the dialog is closed.
void DoSFSSScalesAdd(int Id, bool Copy);
