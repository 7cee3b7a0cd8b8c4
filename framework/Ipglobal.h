// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include "framework/Export.h"
#include "framework/editors/Editors.h"

// What the payroll's screens share: look-ups, display lists and small rules.

// The edit mask of a bank-number box: the installation's format with its first "-" as a literal. In the third country
// the format is used as it is; so is a format without "-".
CORVEX_API QString BSBEditMask(const QString &format);

// What the name of a bank is called: a name in Australia, an abbreviation elsewhere.
CORVEX_API QString BankNameCaption();

// States, by code.
CORVEX_API TLookupSource StateLookup();

// True when the code names a scale of the user's, false for one that the tax office of the installation's country
// specifies. The tax office's codes are reference data; an empty or unknown code is the user's. The second argument is
// kept for callers' texts and has no effect. Throws TDbError.
CORVEX_API bool TaxScaleEditable(const QString &Code, bool);

// ---- display lists: the text of a stored number is the entry at that position
// What a rate type is: 0 a fixed rate, 1 a formula, 2 an award percentage.
CORVEX_API const QStringList &TRateTypeString();
// What a rate type is listed with: 0 ordinary pay, 1 leave, 2 awards.
CORVEX_API const QStringList &TRateGroupingString();
// What the hours paid by a rate type are.
CORVEX_API const QStringList &HourTypesString();

// ---- look-ups of the pay structure
CORVEX_API TLookupSource ChangeReasonLookup();
CORVEX_API TLookupSource FormulaLookup();
CORVEX_API TLookupSource RateFactorLookup();
// Rate types by master id, with the values that are in force.
CORVEX_API TLookupSource RateTypeLookup();

// Whether the program was started with this word ("MAPS=Y"), for screens that have a variant.
CORVEX_API bool CommandLineHolds(const QString &word);
