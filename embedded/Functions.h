// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDateTime>
#include <QLatin1StringView>
#include <QString>
#include <QVariant>

#include <optional>

namespace embedded {

class Database;

// Names of the constraints that watch over a column's length and type begin with these.
inline constexpr QLatin1StringView kLengthCheck("cx_length_");
inline constexpr QLatin1StringView kTypeCheck("cx_type_");

// The one form in which a point in time is stored: 'YYYY-MM-DD' at midnight, else 'YYYY-MM-DD HH:MM:SS[.mmm]'.
QString DateText(const QDateTime &moment);
// Reads stored text (or another tool's ISO text); invalid when it is none.
QDateTime DateFromText(const QString &text);
// A text as a person or a program writes it, as stored text: ISO forms, or those of CONVERT's style. Empty text is
// 1900-01-01. Nothing when it cannot be read.
std::optional<QString> CanonicalDate(const QString &text, int style = 0);
// Days since 1900-01-01 (with a fraction for the time) as stored text. Nothing outside the years 1753 to 9999.
std::optional<QString> DateFromDays(double days);
// A text as a whole or broken number. Nothing when it is none.
std::optional<QVariant> NumberFromText(const QString &text);

// The functions that translated statements use at run time (none of them ever stands in the file's schema):
// cx_date(value[, style]), cx_datetext(text), cx_number(text), cx_int(text), cx_like(pattern, text[, escape]),
// cx_replace(text, from, to), cx_nonzero(divisor), cx_required(value, column, table), cx_object(name[, type]),
// cx_call(function, arguments...).
void RegisterFunctions(Database &database);

} // namespace embedded
