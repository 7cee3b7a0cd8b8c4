// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSettings>
#include <QString>

// What the program remembers about its user on this machine: window layouts, colours, the last database. Kept in the
// user's own settings, or in `file` (an INI file) when it is not empty, or in the file that CORVEX_SETTINGS names. Call
// once, before the rest.
void OpenHostSettings(const QString &file);
QSettings &HostSettings();
