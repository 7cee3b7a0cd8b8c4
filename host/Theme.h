// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

enum class TColours { System, Light, Dark };

// "system", "light", "dark"; anything else is System.
TColours ColoursFromName(const QString &name);
QString ColoursName(TColours colours);
// Gives the whole application these colours at once.
void ApplyColours(TColours colours);
