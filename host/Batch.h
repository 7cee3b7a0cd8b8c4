// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstdio>

class TfrmMain;

// One line on standard output or standard error.
void Say(FILE *stream, const QString &text);

// What the program does without anybody watching. Both tell on standard output what they made and on standard error
// what went wrong.

// Leaves a picture of every screen that can be opened, of its dialog for the first record and for a new one, and of the
// host's own windows in `folder` (made if need be). False when some picture could not be taken or a box turned up.
bool TakeTour(TfrmMain &window, const QString &folder);

// Writes what the list of `message` shows to a CSV file. False when it could not.
bool ExportList(TfrmMain &window, uint message, const QString &file);
