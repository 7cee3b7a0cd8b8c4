// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDate>
#include <QString>

#include <span>

#include "framework/Export.h"
#include "framework/forms/WhereUsed.h"

// The rules of dated records. A master row has versions; a version is in force from its effective date to its end date.
// What has been paid by a version stands, so transactions decide what may still change.

// ---- dates

// Columns keep "no date" as NULL or as one of the first days of 1900 (day numbers below 5).
CORVEX_API bool IsDateSet(const QDate &date);
// A date for a message: the user's short format with a four-digit year.
CORVEX_API QString MessageDate(const QDate &date);
// The same for an end date: "<No End Date>" for an open end.
CORVEX_API QString EndDateText(const QDate &date);

// ---- one kind of dated record

// Rows of a table or view with dEffectiveDate and dEndDate that hold a record for a time.
struct TDatedUse
{
    const char *from;
    const char *column; // names the master
    bool employees;     // its rows name employees (iEmployeeID): the pay periods of those count
};

// What the rules, the dialog and the list of one kind need to know. Constants of the kind; pointers and spans outlive
// everybody.
struct TDateEffectiveFacts
{
    const char *kind;         // as the date messages call it: "Rate"
    const char *masterTable;  // "_iptblRateTypes"
    const char *masterKey;    // "idRateType"
    const char *versionTable; // "_iptblRateTypes_TD"
    const char *versionKey;   // "idRateTypeTD"
    const char *masterColumn; // of the versions: "iRateTypeID"
    const char *history;      // the view of all versions, deleted ones and the names of agents and reasons included
    const char *transColumn;  // of the pay transactions; nullptr when no transaction names this kind
    std::span<const TDatedUse> holders;
    std::span<const TInUse> components; // who else refers to the master, without dates
    const char *procedure;              // writes versions
    const char *masterParam;            // its argument names
    const char *versionParam;
    bool hasAward;         // it takes @iAwardTDID
    const char *saveTitle; // titles of what it reports
    const char *deleteTitle;
    const char *errorText; // stands before the words of a failure; line break included
};

// The span of the pay periods that are current now, over the payroll companies and frequencies concerned.
struct TCurrentPeriod
{
    QDate start; // the earliest; invalid when no period is open
    QDate end;   // the latest
};
// Of the employees who hold the record at present; of everybody when nobody does. Throws TDbError.
CORVEX_API TCurrentPeriod CurrentPeriod(const TDateEffectiveFacts &facts, int master);

// The rules for one version. Reads when it is made, so that it says what holds now; make a new one for each question
// that matters. Everything throws TDbError.
class CORVEX_API TDateBasedEditingController
{
public:
    // `version` 0: a record that has none yet. For a new effective date, the version that it starts from.
    TDateBasedEditingController(const TDateEffectiveFacts &facts, int master, int version, bool newVersion);

    bool Exists() const { return start_.isValid(); } // false too when it was deleted
    QDate Start() const { return start_; }
    QDate End() const { return end_; } // invalid: open
    const TCurrentPeriod &Period() const { return period_; }

    // Which fields may change, and why not all of them, in words for the user ("" when nothing need be said).
    //  - a new effective date: all of them
    //  - posted transactions fall into the version's time: neither its values nor its date
    //  - and it ended before the current period: nothing but the change reason
    //  - unposted transactions fall into it: neither its values nor its date
    //  - it came into force before the current period: not its date, unless backpay is enabled
    struct TMayChange
    {
        bool effectiveDate = true;
        bool values = true; // what pays: rate, formula and the like
        bool description = true;
        QString status;
    };
    TMayChange MayChange() const;

    // Why the version may not be saved with this effective date; "" when it may. In this order:
    //  1. another version of the record begins on that date;
    //  2. posted transactions lie in periods that end on the date or later;
    //  3. unposted ones do;
    //  4. the date lies before the current period, and backpay is not enabled.
    // 2 and 3 look at the version's own time when the date stays and only values change, and are not asked when neither
    // does. 4 is asked of a date that is entered, not of one that stays.
    QString CheckBeforeSave(const QString &code, const QDate &entered, bool valuesChange) const;
    // With backpay enabled: the date entered lies before the current period.
    bool BackDates(const QDate &entered) const;

    // Why the version may not be deleted; "" when it may. In this order:
    //  1. transactions, of this or previous years, fall into its time;
    //  2. it is the record's only version, and somebody refers to the record;
    //  3. somebody holds the record at a time of the version's.
    QString CheckBeforeDelete(const QString &code) const;

private:
    bool Moves(const QDate &entered) const { return newVersion_ || entered != start_; }
    QDate LastTransaction(bool posted, const QDate &from, const QDate &to, bool byPeriod) const;
    bool TransactionsBetween(const QDate &from, const QDate &to) const;
    QDate LastDay() const;

    const TDateEffectiveFacts &facts_;
    int master_;
    int version_;
    bool newVersion_;
    QDate start_;
    QDate end_;
    TCurrentPeriod period_;
};
