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
