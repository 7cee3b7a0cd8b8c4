// SPDX-License-Identifier: Apache-2.0
#include "framework/effectivedate/EditingController.h"

#include <QCoreApplication>

#include <algorithm>

#include "framework/Kvglobal.h"
#include "framework/Kvutils.h"
#include "framework/data/Database.h"
#include "framework/editors/Editors.h"

namespace {

const QDate kFirstDate(1900, 1, 5);
const QDate kOpenEnd(9999, 12, 31);

QString Name(const char *name)
{
    return QString::fromLatin1(name);
}

// The one date of a statement; invalid for NULL and for "no date".
QDate DateOf(const QString &sql, const TDbParams &params)
{
    const TDbRows rows = MainConnection().Select(sql, params);
    const QDate date = rows.isEmpty() ? QDate() : rows.rows[0].value(0).toDate();
    return IsDateSet(date) ? date : QDate();
}

bool Exists(const QString &sql, const TDbParams &params)
{
    return !MainConnection().Select(sql, params).isEmpty();
}

QString Text(const char *text)
{
    return QCoreApplication::translate("TDateBasedEditingController", text);
}

} // namespace

bool IsDateSet(const QDate &date)
{
    return date.isValid() && date >= kFirstDate;
}

QString MessageDate(const QDate &date)
{
    return QLocale().toString(date, ShortDateFormat());
}

QString EndDateText(const QDate &date)
{
    return IsDateSet(date) ? MessageDate(date) : QStringLiteral("<No End Date>");
}

TCurrentPeriod CurrentPeriod(const TDateEffectiveFacts &facts, int master)
{
    const auto read = [](const QString &where, const TDbParams &params) {
        const TDbRows rows = MainConnection().Select(
            QStringLiteral("select min(P.dStartDate) as dStart, max(P.dEndDate) as dEnd from _ipvCurrentPayPeriods P") +
                where,
            params);
        return TCurrentPeriod{rows.Value(0, u"dStart").toDate(), rows.Value(0, u"dEnd").toDate()};
    };
    QStringList holders;
    for (const TDatedUse &use : facts.holders) {
        if (!use.employees)
            continue;
        holders.append(
            QStringLiteral("exists (select 1 from _iptblEmployee E inner join %1 H on H.iEmployeeID = E.idEmployee "
                           "where H.%2 = :master and (ISNULL(H.dEndDate,0) < 5 or H.dEndDate >= :today) "
                           "and E.iPayerGroupID = P.iPayerGroupID and E.iPayFrequencyID = P.iPayFrequencyID)")
                .arg(Name(use.from), Name(use.column)));
    }
    if (master != 0 && !holders.isEmpty()) {
        const TCurrentPeriod theirs =
            read(QStringLiteral(" where ") + holders.join(QStringLiteral(" or ")),
                 {{QStringLiteral("master"), master}, {QStringLiteral("today"), QDate::currentDate()}});
        if (theirs.start.isValid())
            return theirs;
    }
    return read(QString(), {});
}

TDateBasedEditingController::TDateBasedEditingController(const TDateEffectiveFacts &facts, int master, int version,
                                                         bool newVersion)
    : facts_(facts)
    , master_(master)
    , version_(version)
    , newVersion_(newVersion)
    , period_(CurrentPeriod(facts, master))
{
    if (version_ == 0)
        return;
    const TDbRows rows = MainConnection().Select(
        QStringLiteral("select dEffectiveDate, dEndDate from %1 where %2 = :version and iChangeType <> 3")
            .arg(Name(facts_.versionTable), Name(facts_.versionKey)),
        {{QStringLiteral("version"), version_}});
    if (rows.isEmpty())
        return;
    start_ = rows.Value(0, u"dEffectiveDate").toDate();
    const QDate end = rows.Value(0, u"dEndDate").toDate();
    if (IsDateSet(end))
        end_ = end;
}

QDate TDateBasedEditingController::LastDay() const
{
    return end_.isValid() ? end_ : kOpenEnd;
}

// The last day on which the record is used, counted to the end of the pay period that the use lies in; invalid when it
// is not. `byPeriod` looks for periods that end between the dates, otherwise for transactions made between them.
QDate TDateBasedEditingController::LastTransaction(bool posted, const QDate &from, const QDate &to, bool byPeriod) const
{
    if (!facts_.transColumn || master_ == 0)
        return {};
    const TDbParams params{
        {QStringLiteral("master"), master_}, {QStringLiteral("from"), from}, {QStringLiteral("to"), to}};
    const QString when = byPeriod ? QStringLiteral("ISNULL(dPeriodEndDate, dTransDate)")
                                  : QStringLiteral("ISNULL(dTransDate, dPeriodStartDate)");
    QDate last = DateOf(QStringLiteral("select max(ISNULL(dPeriodEndDate, dTransDate)) as dLast from _ipvEmployeeTrans "
                                       "where %1 = :master and bPosted = %2 and %3 >= :from and %3 <= :to")
                            .arg(Name(facts_.transColumn), posted ? QStringLiteral("1") : QStringLiteral("0"), when),
                        params);
    if (posted) {
        const QDate before = DateOf(QStringLiteral("select max(dTransDate) as dLast from _iptblEmployeeTransEOY "
                                                   "where %1 = :master and dTransDate >= :from and dTransDate <= :to")
                                        .arg(Name(facts_.transColumn)),
                                    params);
        if (before.isValid() && (!last.isValid() || before > last))
            last = before;
    }
    return last;
}

bool TDateBasedEditingController::TransactionsBetween(const QDate &from, const QDate &to) const
{
    return LastTransaction(true, from, to, false).isValid() || LastTransaction(false, from, to, false).isValid();
}

TDateBasedEditingController::TMayChange TDateBasedEditingController::MayChange() const
{
    TMayChange may;
    if (newVersion_) {
        may.status = Text("A version is added from the effective date on. The one before it then ends the day before.");
        return may;
    }
    if (!Exists())
        return may;
    const bool past = end_.isValid() && period_.start.isValid() && end_ < period_.start;
    if (LastTransaction(true, start_, LastDay(), false).isValid()) {
        may.effectiveDate = may.values = false;
        may.description = !past;
        may.status =
            past ? Text("This version has ended and was paid by: only its change reason can be changed.")
                 : Text("Posted transactions were paid by this version, so its values and its effective date stay. "
                        "For other values add a new effective date.");
    } else if (LastTransaction(false, start_, LastDay(), false).isValid()) {
        may.effectiveDate = may.values = false;
        may.status =
            Text("Transactions of the current period use this version, so its values and its effective date stay "
                 "until they are deleted.");
    } else if (!Installation().backpayEnabled && period_.start.isValid() && start_ < period_.start) {
        may.effectiveDate = false;
        may.status = Text("This version came into force before the current period, so its effective date stays.");
    }
    return may;
}

QString TDateBasedEditingController::CheckBeforeSave(const QString &code, const QDate &entered, bool valuesChange) const
{
    const QString kind = QString::fromUtf8(facts_.kind);
    const bool moves = Moves(entered);
    if (moves && ::Exists(QStringLiteral("select top 1 %3 from %1 where %2 = :master and dEffectiveDate = :date "
                                         "and iChangeType <> 3 and %3 <> :version order by %3")
                              .arg(Name(facts_.versionTable), Name(facts_.masterColumn), Name(facts_.versionKey)),
                          {{QStringLiteral("master"), master_},
                           {QStringLiteral("date"), entered},
                           {QStringLiteral("version"), newVersion_ ? 0 : version_}}))
        return FormatText("%s \"%s\" already exists with an Effective Date of %s.\r\n"
                          "Please enter a unique Effective Date or edit the record that already exists.",
                          {kind, code, MessageDate(entered)});
    if (!moves && !valuesChange)
        return {};

    const QDate from = moves ? entered : start_;
    const QDate to = moves ? kOpenEnd : LastDay();
    const bool backpay = Installation().backpayEnabled;
    if (const QDate used = LastTransaction(true, from, to, moves); used.isValid()) {
        QDate earliest = used.addDays(1);
        if (!backpay && period_.start.isValid())
            earliest = std::max(earliest, period_.start);
        return FormatText("%s \"%s\" has been used in previous periods after the effective date you have entered.\r\n"
                          "The earliest Effective Date you can enter is %s.",
                          {kind, code, MessageDate(earliest)});
    }
    if (const QDate used = LastTransaction(false, from, to, moves); used.isValid())
        return FormatText(
            "Transactions currently exist for employees that use %s \"%s\".\r\n"
            "This record cannot therefore be updated effective in the current period.\r\n"
            "To make a change effective in the current period all related transactions must be deleted first.\r\n"
            "Otherwise, the earliest Effective Date you can enter is %s",
            {kind, code, MessageDate(used.addDays(1))});
    if (moves && !backpay && period_.start.isValid() && entered < period_.start)
        return FormatText(QString::fromUtf8("The Effective Date cannot be before the current period’s start date %s."),
                          {MessageDate(period_.start)});
    return {};
}

bool TDateBasedEditingController::BackDates(const QDate &entered) const
{
    return Installation().backpayEnabled && Moves(entered) && period_.start.isValid() && entered < period_.start;
}

QString TDateBasedEditingController::CheckBeforeDelete(const QString &code) const
{
    const QString kind = QString::fromUtf8(facts_.kind);
    if (!Exists())
        return {}; // the procedure tells that it is gone
    if (TransactionsBetween(start_, LastDay()))
        return FormatText(
            "Unable to delete %s \"%s\" as it has been used either in the current period or a previous period",
            {kind, code});

    const TDbParams master{{QStringLiteral("master"), master_}};
    const bool onlyOne = !::Exists(
        QStringLiteral("select top 1 %3 from %1 where %2 = :master and iChangeType <> 3 and %3 <> :version order by %3")
            .arg(Name(facts_.versionTable), Name(facts_.masterColumn), Name(facts_.versionKey)),
        {{QStringLiteral("master"), master_}, {QStringLiteral("version"), version_}});
    if (onlyOne) {
        const bool held = std::any_of(facts_.holders.begin(), facts_.holders.end(), [&](const TDatedUse &use) {
            return ::Exists(QStringLiteral("select top 1 %2 from %1 where %2 = :master order by %2")
                                .arg(Name(use.from), Name(use.column)),
                            master);
        });
        if (held || AnyUse(facts_.components, master_))
            return FormatText(
                "Unable to delete %s \"%s\" as this is the only occurence of it and it has been assigned to "
                "employees or other components.",
                {kind, code});
        return {};
    }

    for (const TDatedUse &use : facts_.holders) {
        const bool held =
            ::Exists(QStringLiteral("select top 1 DBC.%2 from %1 DBC where (DBC.%2 = :master) "
                                    "and (DBC.dEffectiveDate is null or DBC.dEffectiveDate <= :last) "
                                    "and (DBC.dEndDate >= :first or ISNULL(DBC.dEndDate,0) < 5) order by DBC.%2")
                         .arg(Name(use.from), Name(use.column)),
                     {{QStringLiteral("master"), master_},
                      {QStringLiteral("first"), start_},
                      {QStringLiteral("last"), LastDay()}});
        if (held)
            return FormatText(
                "Unable to delete this record as employees or components have been assigned %s \"%s\" effective "
                "within the date range of this occurrence (%s to %s).",
                {kind, code, MessageDate(start_), EndDateText(end_)});
    }
    return {};
}
