// SPDX-License-Identifier: Apache-2.0
#include <QRandomGenerator>

#include "tests/paystructure/VersionChains.h"

namespace {

// What the live versions of one record must be: nothing but their dates and rates, in order.
using TChain = QMap<QDate, std::pair<int, double>>;

QList<QStringList> Expected(const TChain &chain)
{
    QList<QStringList> rows;
    for (auto at = chain.begin(); at != chain.end(); ++at) {
        const auto next = std::next(at);
        rows += {QString::number(at.value().first), at.key().startOfDay().toString(),
                 next == chain.end() ? QString("NULL") : next.key().addDays(-1).startOfDay().toString(),
                 QString::number(at.value().second)};
    }
    return rows;
}

QList<QStringList> Stored(int master)
{
    QList<QStringList> rows;
    const TDbRows found =
        MainConnection().Select("select idRateTypeTD, dEffectiveDate, dEndDate, fRate from _iptblRateTypes_TD "
                                "where iRateTypeID = :id and iChangeType <> 3 order by dEffectiveDate",
                                {{"id", master}});
    for (int i = 0; i < found.size(); ++i) {
        const QVariant end = found.Value(i, u"dEndDate");
        rows += {found.Value(i, u"idRateTypeTD").toString(), found.Value(i, u"dEffectiveDate").toDateTime().toString(),
                 end.isValid() ? end.toDateTime().toString() : QString("NULL"), found.Value(i, u"fRate").toString()};
    }
    return rows;
}

} // namespace

// The versions of a rate type in the database: whatever is done in whatever order, each day has exactly one.
class t_rate_versions final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void randomSequences_data();
    void randomSequences();
    void refusalsChangeNothing_data();
    void refusalsChangeNothing();
    void lastVersionTakesTheMaster();
    void masterFollowsTheCalendar();
    void listFunction_data();
    void listFunction();
};

void t_rate_versions::randomSequences_data()
{
    QTest::addColumn<uint>("seed");
    for (uint seed : {1u, 2u, 3u, 2026u})
        QTest::addRow("seed %u", seed) << seed;
}

void t_rate_versions::randomSequences()
{
    QFETCH(uint, seed);
    TTemplateDatabase database;
    QRandomGenerator random(seed);
    const QDate today = QDate::currentDate();
    QMap<int, TChain> chains;
    int deleted = 0;

    for (int step = 0; step < 150; ++step) {
        const bool fresh = chains.size() < 3;
        const int master =
            fresh ? NewMaster(QString("R%1").arg(step)) : chains.keys().at(random.bounded(int(chains.size())));
        TChain &chain = chains[master];
        // A few days around today only, so that dates collide and today's version changes often.
        const QDate date = today.addDays(random.bounded(-8, 9));
        const Change change = chain.isEmpty() ? Add : Change(random.bounded(1, 4));
        const auto old = chain.isEmpty() ? chain.end() : std::next(chain.begin(), random.bounded(int(chain.size())));
        const double rate = step + 0.25;
        const QDate from = old == chain.end() ? QDate() : old.key();
        const bool taken = change != Delete && chain.contains(date) && !(change == Edit && date == from);

        const TOutcome outcome = Apply(change, master, change == Add ? 0 : old.value().first, date, rate);
        const QByteArray where = QString("step %1: change %2 of %3 to %4")
                                     .arg(step)
                                     .arg(int(change))
                                     .arg(from.toString(Qt::ISODate), date.toString(Qt::ISODate))
                                     .toUtf8();
        QVERIFY2((outcome.result == Refused) == taken, where);
        QVERIFY2(outcome.result == Done || !outcome.message.isEmpty(), where);
        if (!taken && change == Add) {
            chain.insert(date, {outcome.version, rate});
        } else if (!taken && change == Edit) {
            const int version = old.value().first;
            QCOMPARE(outcome.version, version);
            chain.erase(old);
            chain.insert(date, {version, rate});
        } else if (!taken) {
            chain.erase(old);
            ++deleted;
        }
        QVERIFY2(Stored(master) == Expected(chain), where);
        QVERIFY2(ChainFaults().isEmpty(), where + ": " + ChainFaults().join("; ").toUtf8());
        QCOMPARE(ValueOf("select count(*) as n from _iptblRateTypes_TD where iChangeType = 3").toInt(), deleted);
        if (chain.isEmpty())
            chains.remove(master);
    }
    QVERIFY(deleted > 20);
}

void t_rate_versions::refusalsChangeNothing_data()
{
    QTest::addColumn<int>("change");
    QTest::addColumn<QString>("master"); // by code, "" for none
    QTest::addColumn<int>("which");      // the version by position, -1: none
    QTest::addColumn<QDate>("date");
    QTest::newRow("add on a taken date") << int(Add) << "SPARE" << -1 << QDate(2026, 7, 1);
    QTest::newRow("move to a taken date") << int(Edit) << "SPARE" << 0 << QDate(2026, 7, 1);
    QTest::newRow("no date") << int(Add) << "SPARE" << -1 << QDate();
    QTest::newRow("no such version") << int(Edit) << "SPARE" << -1 << QDate(2028, 1, 1);
    QTest::newRow("another record's version") << int(Delete) << "TOOLS" << 0 << QDate(2028, 1, 1);
    QTest::newRow("no such master") << int(Add) << "" << -1 << QDate(2028, 1, 1);
    QTest::newRow("unknown change") << 7 << "SPARE" << 0 << QDate(2028, 1, 1);
}

void t_rate_versions::refusalsChangeNothing()
{
    QFETCH(int, change);
    QFETCH(QString, master);
    QFETCH(int, which);
    QFETCH(QDate, date);
    TTemplateDatabase database(TTemplateDatabase::Content::Demo);
    const QList<QStringList> versions =
        RowsOf("select T.idRateTypeTD from _iptblRateTypes_TD T where T.cCode = 'SPARE' order by T.dEffectiveDate");
    const int id = master.isEmpty()
                       ? 99999
                       : ValueOf("select idRateType from _iptblRateTypes where cCode = :c", {{"c", master}}).toInt();
    const QList<QStringList> before = RowsOf("select * from _iptblRateTypes_TD order by idRateTypeTD");
    const QList<QStringList> masters = RowsOf("select * from _iptblRateTypes order by idRateType");

    const TOutcome outcome = Apply(Change(change), id, which < 0 ? 0 : versions[which][0].toInt(), date, 77.5);
    QCOMPARE(outcome.result, int(Refused));
    QVERIFY(!outcome.message.isEmpty());
    QCOMPARE(RowsOf("select * from _iptblRateTypes_TD order by idRateTypeTD"), before);
    // The refused values do not stay in the master row either.
    QCOMPARE(RowsOf("select * from _iptblRateTypes order by idRateType"), masters);
}

void t_rate_versions::lastVersionTakesTheMaster()
{
    TTemplateDatabase database;
    const int master = NewMaster("GONE");
    const TOutcome first = Apply(Add, master, 0, QDate(2026, 1, 1), 10);
    const TOutcome second = Apply(Add, master, 0, QDate(2026, 6, 1), 11);
    MainConnection().Execute(
        "insert _btblNotes (cNOTETBLTableName, fNOTETBLTableID, cNote) values ('_IPTBLRATETYPES', :id, 'x')",
        {{"id", master}});
    Apply(Delete, master, first.version, QDate(2026, 1, 1));
    QCOMPARE(RowsOf("select count(*) as n from _iptblRateTypes where cCode = 'GONE'")[0][0], "1");
    QCOMPARE(RowsOf("select count(*) as n from _btblNotes")[0][0], "1");
    Apply(Delete, master, second.version, QDate(2026, 6, 1));
    QCOMPARE(RowsOf("select count(*) as n from _iptblRateTypes where cCode = 'GONE'")[0][0], "0");
    QCOMPARE(RowsOf("select count(*) as n from _btblNotes")[0][0], "0");
    QCOMPARE(RowsOf("select fRate, iChangeType from _iptblRateTypes_TD where cCode = 'GONE' order by fRate"),
             (QList<QStringList>{{"10", "3"}, {"11", "3"}}));
}

// Time passes: what was a future version when it was stored is in force one day.
void t_rate_versions::masterFollowsTheCalendar()
{
    TTemplateDatabase database;
    const QDate today = QDate::currentDate();
    const int master = NewMaster("TIME");
    Apply(Add, master, 0, today.addDays(-20), 10);
    const TOutcome next = Apply(Add, master, 0, today.addDays(10), 12);
    QCOMPARE(ValueOf("select fRate from _iptblRateTypes where cCode = 'TIME'").toDouble(), 10.0);
    MainConnection().Execute(
        "update _iptblRateTypes_TD set dEndDate = :end where idRateTypeTD <> :id and iRateTypeID = :m",
        {{"end", today.addDays(-1)}, {"id", next.version}, {"m", master}});
    MainConnection().Execute("update _iptblRateTypes_TD set dEffectiveDate = :start where idRateTypeTD = :id",
                             {{"start", today}, {"id", next.version}});
    QVERIFY(!ChainFaults().isEmpty());
    TCorvexADOStoredProc("_ipspCarryAllVersions").kvExecProc(false);
    QCOMPARE(ValueOf("select fRate from _iptblRateTypes where cCode = 'TIME'").toDouble(), 12.0);
    QCOMPARE(ChainFaults(), QStringList());
}

void t_rate_versions::listFunction_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QStringList>("rates"); // of the one record, and of the system's
    QTest::newRow("in force on a day") << "'20260115',0,0,0" << QStringList{"2"};
    QTest::newRow("the last day of a version") << "'20260630',0,0,0" << QStringList{"2"};
    QTest::newRow("the first day of the next") << "'20260701',0,0,0" << QStringList{"3"};
    QTest::newRow("with past ones") << "'20260115',1,0,0" << QStringList{"1", "2"};
    QTest::newRow("with future ones") << "'20260115',0,1,0" << QStringList{"2", "3"};
    QTest::newRow("all, the system's too") << "'20260115',1,1,1" << QStringList{"0", "1", "2", "3"};
    QTest::newRow("before the first") << "'20240101',0,0,0" << QStringList{};
}

void t_rate_versions::listFunction()
{
    QFETCH(QString, arguments);
    QFETCH(QStringList, rates);
    TTemplateDatabase database;
    const int master = NewMaster("A");
    Apply(Add, master, 0, QDate(2025, 1, 1), 1);
    Apply(Add, master, 0, QDate(2025, 7, 1), 2);
    Apply(Add, master, 0, QDate(2026, 7, 1), 3);
    const TOutcome removed = Apply(Add, master, 0, QDate(2026, 2, 1), 9);
    Apply(Delete, master, removed.version, QDate(2026, 2, 1));
    QStringList found;
    for (const QStringList &row :
         RowsOf("select fRate from [dbo].[_ipfnGetRateTypes](" + arguments + ") order by fRate"))
        found += row[0];
    QCOMPARE(found, rates);
}

QTEST_MAIN(t_rate_versions)
#include "t_rate_versions.moc"
