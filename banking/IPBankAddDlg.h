// SPDX-License-Identifier: Apache-2.0
#pragma once

// Adds a bank (Id 0), edits one, or saves a copy of one (Copy). Returns when the dialog is closed.
void DoIPBankAdd(int Id, bool Copy);
