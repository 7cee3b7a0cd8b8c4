// SPDX-License-Identifier: Apache-2.0
#pragma once

// Adds a study and training support loan (STSL) scale (Id 0), edits one, or saves a copy of one (Copy). Returns when
// the dialog is closed.
void DoHECSScalesAdd(int Id, bool Copy);
