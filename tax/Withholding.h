// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// What a table of brackets withholds, worked out as the tax offices print it: y = a * x - b with the first bracket
// whose threshold is above x. Amounts are dollars and coefficients have four decimals; nothing is worked out in
// floating point, since half a cent decides a dollar.

struct TTaxBracket
{
    double below = 0; // the bracket applies while earnings are less than this
    double a = 0;
    double b = 0;
};

enum class TWithholdingRule {
    Weekly,    // x: whole dollars of weekly earnings plus 99 cents; y to the nearest dollar, 50 cents up
    StudyLoan, // the same; a row without b is a rate on the whole of the earnings
    Yearly     // x: the year's earnings as they are; y to the cent
};

struct TWithholding
{
    double amount = 0; // withheld
    double x = 0;      // the earnings that the formula was given
    double exact = 0;  // before rounding
    int bracket = -1;  // position in the table; -1: the earnings are above its last threshold
};

// One bracket without b is a flat rate: cents of the earnings and of the result are ignored. Weekly tables only.
bool IsFlatRate(const QList<TTaxBracket> &brackets, TWithholdingRule rule);

// Brackets in ascending order. `earnings` below 0 count as 0.
TWithholding Withhold(const QList<TTaxBracket> &brackets, TWithholdingRule rule, double earnings);

// What is almost surely a slip of the keyboard, in order of the brackets; empty for a sound table.
QStringList WithholdingWarnings(const QList<TTaxBracket> &brackets, TWithholdingRule rule);

// "1,282.00"
QString MoneyText(double amount, int decimals = 2);
