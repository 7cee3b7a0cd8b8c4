// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

// Numbers are rounded as people do it, on their decimal digits: 1.005 has no exact double, and rounding the double
// gives 1.00.

// `text`: sign, digits, at most one point; "" is 0. Rounded half away from zero to `decimals` digits behind the point;
// never "-0".
QString RoundedDecimal(const QString &text, int decimals);
// The shortest digits that mean this value, without exponent; "0" for what is not a number.
QString DecimalDigits(double value);
