// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/data/CorvexADOQuery.h"
#include "tests/support/TestSupport.h"

enum Change { Add = 1, Edit = 2, Delete = 3 };
enum Result { Done = 0, DoneWithMessage = 1, Refused = 2 };

struct TOutcome
{
    int result = 0;
    int version = 0;
    QString message;
};

// One change of a version, as a screen makes it: the values go into the master row first.
inline TOutcome Apply(Change change, int master, int version, const QDate &date, double rate = 0)
{
    if (change != Delete)
        MainConnection().Execute("update _iptblRateTypes set fRate = :rate where idRateType = :id",
                                 {{"rate", rate}, {"id", master}});
    TCorvexADOStoredProc update("_ipspUpdateRateTypes_TD");
    update.SetParam("@iRateTypeID", master);
    update.SetInOutParam("@iRateTypeTDID", version);
    update.SetParam("@dEffectiveDate", date);
    update.SetParam("@iAgentID", 1);
    update.SetParam("@iChangeReasonID", QVariant(QMetaType(QMetaType::Int)));
    update.SetParam("@iChangeType", int(change));
    update.SetParam("@iAwardTDID", 0);
    update.SetInOutParam("@cMessage", QString(""));
    update.kvExecProc(false);
    return {update.ReturnValue(), update.Param("@iRateTypeTDID").toInt(), update.Param("@cMessage").toString()};
}

inline int NewMaster(const QString &code)
{
    return MainConnection().Insert("insert _iptblRateTypes (cCode, cDescription) values (:code, 'Test')",
                                   {{"code", code}});
}

// What must hold of the versions in the database at any time, asked of the database itself. Gives what does not hold.
inline QStringList ChainFaults()
{
    struct TRule
    {
        const char *name;
        const char *offenders; // rows of master ids
    };
    constexpr TRule rules[] = {
        {"two versions on one day",
         "select A.iRateTypeID from _iptblRateTypes_TD A inner join _iptblRateTypes_TD B on B.iRateTypeID = "
         "A.iRateTypeID "
         "where A.iChangeType <> 3 and B.iChangeType <> 3 and A.idRateTypeTD <> B.idRateTypeTD "
         "and A.dEffectiveDate <= B.dEffectiveDate and (A.dEndDate is null or A.dEndDate >= B.dEffectiveDate)"},
        {"a gap before a version",
         "select B.iRateTypeID from _iptblRateTypes_TD B where B.iChangeType <> 3 "
         "and exists (select 1 from _iptblRateTypes_TD E where E.iRateTypeID = B.iRateTypeID and E.iChangeType <> 3 "
         "and E.dEffectiveDate < B.dEffectiveDate) "
         "and not exists (select 1 from _iptblRateTypes_TD A where A.iRateTypeID = B.iRateTypeID and A.iChangeType <> "
         "3 "
         "and A.dEndDate = dateadd(day, -1, B.dEffectiveDate))"},
        {"a last version with an end",
         "select T.iRateTypeID from _iptblRateTypes_TD T where T.iChangeType <> 3 and T.dEndDate is not null "
         "and not exists (select 1 from _iptblRateTypes_TD L where L.iRateTypeID = T.iRateTypeID and L.iChangeType <> "
         "3 "
         "and L.dEffectiveDate > T.dEffectiveDate)"},
        {"a master without versions",
         "select M.idRateType from _iptblRateTypes M where not exists (select 1 from _iptblRateTypes_TD T "
         "where T.iRateTypeID = M.idRateType and T.iChangeType <> 3)"},
        {"versions without a master",
         "select T.iRateTypeID from _iptblRateTypes_TD T where T.iChangeType <> 3 "
         "and not exists (select 1 from _iptblRateTypes M where M.idRateType = T.iRateTypeID)"},
        {"a master with other values than the version in force",
         "select M.idRateType from _iptblRateTypes M inner join _iptblRateTypes_TD T on T.idRateTypeTD = "
         "M.iRateTypeTDID "
         "where M.cCode <> T.cCode or M.fRate <> T.fRate or M.dEffectiveDate <> T.dEffectiveDate or T.iChangeType = 3"},
        {"a master that carries another version than the one in force",
         "select M.idRateType from _iptblRateTypes M inner join _iptblRateTypes_TD T on T.iRateTypeID = M.idRateType "
         "where T.iChangeType <> 3 and T.dEffectiveDate <= getdate() "
         "and (T.dEndDate is null or T.dEndDate > dateadd(day, -1, getdate())) "
         "and T.idRateTypeTD <> isnull(M.iRateTypeTDID, 0)"},
        {"a master that carries no version",
         "select M.idRateType from _iptblRateTypes M where not exists (select 1 from _iptblRateTypes_TD T "
         "where T.idRateTypeTD = M.iRateTypeTDID and T.iRateTypeID = M.idRateType)"},
    };
    QStringList faults;
    for (const TRule &rule : rules) {
        for (const QStringList &row : RowsOf(QString::fromLatin1(rule.offenders)))
            faults += QStringLiteral("%1: rate type %2").arg(QLatin1String(rule.name), row[0]);
    }
    return faults;
}
