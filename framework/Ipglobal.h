// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "framework/Export.h"
#include "framework/editors/Editors.h"

// What the payroll's screens share: look-ups, display lists and small rules.

// The edit mask of a bank-number box: the installation's format with its first "-" as a literal. In the third country the format
// is used as it is; so is a format without "-".
CORVEX_API QString BSBEditMask(const QString &format);

// What the name of a bank is called: a name in Australia, an abbreviation elsewhere.
CORVEX_API QString BankNameCaption();

// States, by code.
CORVEX_API TLookupSource StateLookup();

// True when the code names a scale of the user's, false for one that the tax office of the installation's country specifies. The
// tax office's codes are reference data; an empty or unknown code is the user's. The second argument is kept for callers' texts
// and has no effect. Throws TDbError.
CORVEX_API bool TaxScaleEditable(const QString &Code, bool);
