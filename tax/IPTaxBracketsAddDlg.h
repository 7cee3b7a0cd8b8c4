// SPDX-License-Identifier: Apache-2.0
#pragma once

class TMemoryTable;

// Edits one bracket of scale `Id`, given and handed back as four values. Weekly earnings that come in as 0 make it a
// new bracket, whose earnings must not stand in TempTable ("fWeeklyEarnings") yet. Result: the dialog's modal result;
// after anything but QDialog::Accepted the values are as they were. ForHelpHECS: a study loan's bracket.
void DoTaxBracketsAdd(int Id, double &WeeklyEarnings, double &CoefficientA, double &CoefficientB, double &CoefficientC,
                      int &Result, TMemoryTable &TempTable, bool ForHelpHECS);
