// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

class TList;

// The messages that the package answers: one constant table of message number, entry operation, and how the two
// parameters are used.

// Carries a message out. Gives false, and opens nothing, for a number that is not in the table, one whose screen is not
// part of this build, and one whose parameters ask for nothing. Exceptions of the entry operations pass through.
bool DispatchMessage(uint MsgId, qlonglong Param1, qlonglong Param2);

// Whether DispatchMessage would open a screen, given parameters that make sense.
bool IsDispatched(uint MsgId);
