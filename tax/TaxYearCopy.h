// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

#include <functional>

// Copies the tax tables of one year to another: Medicare scales, tax scales of the installation's country, study loan
// scales, each with its brackets, and the tax parameters of the country.

struct TTaxYearItem
{
    QString kind; // "Tax Scale"
    QString code; // "" for parameters
    QString description;
    bool exists = false; // the other year has it: it is left as it is
};

// What a copy would do, in its order. Throws TDbError.
QList<TTaxYearItem> PlanTaxYearCopy(int fromYear, int toYear);

// Copies what the other year does not have yet, as users' records under keys of their own, in one transaction. A tax
// scale refers to the Medicare scale of its code in the other year. `progress` is told before every record how many are
// done of how many, and may give false to take everything back. Gives the number of records copied, -1 when it was
// taken back. Throws TDbError, and nothing is changed.
int CopyTaxYear(int fromYear, int toYear, const std::function<bool(int done, int total)> &progress);

// The years that have anything to copy, latest first. Throws TDbError.
QList<int> TaxYearsWithData();
