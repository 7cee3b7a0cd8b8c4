// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <map>

#include "embedded/Engine.h"
#include "tests/data/Engines.h"
#include "tests/database/Schema.h"

using namespace Qt::StringLiterals;
using Kind = TDbError::Kind;

namespace {

// A version as the chain should hold it: value by effective date.
using TChain = std::map<QDate, double>;

} // namespace

// The schema and rows that the scripts make; every test leaves the database as it found it.
class TSchemaSuite final : public QObject
{
    Q_OBJECT
public:
    explicit TSchemaSuite(TConnect connect)
        : db_(connect())
    {}

private Q_SLOTS:
    void initTestCase();
    void init() { db_->Begin(); }
    void cleanup() { db_->Rollback(); }

    void TextLimits_data();
    void TextLimits();
    void ReferenceRows_data();
    void ReferenceRows();
    void PublishedScales();
    void BanksView();
    void DeleteBank();
    void DeleteBankOnItsOwn();
    void InstallationCountry();
    void RateTypesAsAt();
    void DemonstrationShowsEveryRefusal();
    void CurrentPeriods();
    void VersionChains_data();
    void VersionChains();
    void VersionRefusals();
    void LastVersionTakesMaster();
    void MastersFollowTheCalendar();

private:
    int Number(const QString &select, const TDbParams &params = {})
    {
        const TDbRows rows = db_->Select(select, params);
        return rows.isEmpty() ? -1 : rows.rows[0][0].toInt();
    }
    int Id(const QString &key, const QString &table, const QString &code)
    {
        return Number(u"select %1 from %2 where cCode = :code"_s.arg(key, table), {{u"code"_s, code}});
    }
    TDbCallResult Update(int master, int version, const QVariant &date, int type)
    {
        return db_->Call(u"_ipspUpdateRateTypes_TD"_s, {{u"iRateTypeID"_s, master},
                                                        {u"iRateTypeTDID"_s, version, true},
                                                        {u"dEffectiveDate"_s, date},
                                                        {u"iAgentID"_s, 1},
                                                        {u"iChangeReasonID"_s, 1},
                                                        {u"iChangeType"_s, type},
                                                        {u"iAwardTDID"_s, 0},
                                                        {u"cMessage"_s, QString(), true}});
    }
    // A master with a first version.
    int NewRateType(const QString &code, const QDate &date, double rate)
    {
        const int master =
            db_->Insert(u"insert into _iptblRateTypes (cCode, cDescription, fRate) values (:c, :c, :r)"_s,
                        {{u"c"_s, code}, {u"r"_s, rate}});
        Update(master, 0, date.startOfDay(), 1);
        return master;
    }
    void Stage(int master, double rate)
    {
        db_->Execute(u"update _iptblRateTypes set fRate = :r where idRateType = :m"_s,
                     {{u"r"_s, rate}, {u"m"_s, master}});
    }
    int VersionAt(int master, const QDate &date)
    {
        return Number(u"select idRateTypeTD from _iptblRateTypes_TD where iRateTypeID = :m and iChangeType <> 3 "
                      "and dEffectiveDate = :d"_s,
                      {{u"m"_s, master}, {u"d"_s, date.startOfDay()}});
    }
    void CompareChain(int master, const TChain &chain);

    std::unique_ptr<TDbConnection> db_;
};

void TSchemaSuite::initTestCase()
{
    try {
        try {
            Count(*db_, u"dbo.Defaults"_s); // a server's database that an earlier run has filled
        } catch (const TDbError &) {
            RunSchema(*db_, true);
        }
    } catch (const std::exception &error) {
        QFAIL(error.what());
    }
}

void TSchemaSuite::TextLimits_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("column");
    QTest::addColumn<int>("limit");
    const auto row = [](const char *table, const char *column, int limit) {
        QTest::addRow("%s.%s", table, column) << QString::fromLatin1(table) << QString::fromLatin1(column) << limit;
    };
    row("_iptblBanks", "cCode", 10);
    row("_iptblBanks", "cBankName", 50);
    row("_iptblBanks", "cBranchName", 50);
    row("_iptblBanks", "cBSBNumber", 20);
    row("_iptblEFTParameters", "cUserName", 26);
    row("_iptblEFTParameters", "cBankAccName", 32);
    row("_iptblEFTParameters", "cEFTDiskDrive", 200);
    row("_iptblTaxScales", "cCode", 10);
    row("_iptblTaxScales", "cMedicareScaleCode", 10);
    row("_iptblTaxBrackets", "cTaxScaleCode", 10);
    row("_iptblMedicareScales", "cCode", 10);
    row("_iptblMedicareScales", "cMedicareScaleDescription", 50);
    row("_iptblHECSScales", "cCode", 10);
    row("_iptblSFSSScales", "cCode", 10);
    row("_iptblRateTypes", "cCode", 10);
    row("_iptblRateTypes_TD", "cDescription", 50);
    row("_iptblRateFactors", "cCode", 10);
    row("_iptblRateFactors", "cDescription", 50);
}

void TSchemaSuite::TextLimits()
{
    QFETCH(QString, table);
    QFETCH(QString, column);
    QFETCH(int, limit);
    const QString sql = u"update %1 set %2 = :v"_s.arg(table, column);
    const QString longest = QString(limit - 1, QChar(u'x')) + QChar(0x0101); // a with a macron
    QVERIFY(db_->Execute(sql, {{u"v"_s, longest}}) > 0);
    QCOMPARE(db_->Select(u"select max(%1) as v from %2"_s.arg(column, table)).Value(0, u"v").toString(), longest);
    QCOMPARE(Thrown([&] { db_->Execute(sql, {{u"v"_s, longest + u'x'}}); }).kind, Kind::TooLong);
}

void TSchemaSuite::ReferenceRows_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<int>("count");
    const auto row = [](const char *from, int count) {
        QTest::addRow("%s", from) << QString::fromLatin1(from) << count;
    };
    row("Defaults where Country = 5 and EndTaxYear = 2027 and cBSBFormat = '000-000'", 1);
    row("_iptblGeneralParameters where iRateDecimals = 4 and bBackpayEnabled = 0", 1);
    row("Entities", 1);
    row("_iptblStates", 8);
    row("_iptblCountries", 249);
    row("_iptblBankInstitutions", 126);
    row("_iptblTaxScales where bUserDefinable = 0", 49);
    row("_iptblTaxBrackets where idTaxBrackets <= 50000", 259);
    row("_iptblMedicareScales", 14);
    row("_iptblHECSBrackets", 130);
    row("_iptblSFSSBrackets", 16);
    row("_iptblSGLTaxParameters where TaxReductionAmount = 270000 and iTaxYear = 2027", 1);
    row("_iptblTaxParametersNZ where iTaxYear = 2027 and fLevyRate = 1.75 and fAnnualLoanThreshold = 24128", 1);
    row("_iptblLumpSumTaxRates where iTaxYear = 2027", 5);
    row("_iptblBanks", 324);
    row("(select distinct left(cCode, 3) as c from _iptblBanks) i", 121);
    row("(select distinct iStateID from _iptblBanks) s", 8);
    row("_iptblEFTParameters", 2);
    row("_iptblEmployeeBank", 9);
    row("_btblNotes", 3);
}

void TSchemaSuite::ReferenceRows()
{
    QFETCH(QString, from);
    QFETCH(int, count);
    QCOMPARE(Count(*db_, from), count);
}

// What the calculation relies on in every year's scales.
void TSchemaSuite::PublishedScales()
{
    const QString published = u"_iptblTaxScales s where s.bUserDefinable = 0 and "_s;
    // each ends with the open row, and its brackets carry its code and year
    QCOMPARE(Count(*db_, published +
                             u"not exists (select 1 from _iptblTaxBrackets b where b.iTaxScalesID = s.idTaxScales "
                             "and b.TaxBracket = 9999999 and b.cTaxScaleCode = s.cCode "
                             "and b.iBracketTaxYear = s.iTaxYear)"_s),
             0);
    QCOMPARE(Count(*db_,
                   u"_iptblTaxBrackets b left join _iptblTaxScales s on s.idTaxScales = b.iTaxScalesID "
                   "where s.idTaxScales is null or b.cTaxScaleCode <> s.cCode or b.iBracketTaxYear <> s.iTaxYear"_s),
             0);
    // scales 2 and 6, and no others, name the Medicare scale of their own year
    QCOMPARE(Count(*db_,
                   u"_iptblTaxScales s inner join _iptblMedicareScales m on m.idMedicareScales = s.iMedicareScalesID "
                   "and m.cCode = s.cCode and m.iTaxYear = s.iTaxYear and s.cMedicareScaleCode = m.cCode "
                   "where s.cCode in ('2', '6')"_s),
             14);
    QCOMPARE(Count(*db_, published + u"s.iMedicareScalesID <> 0"_s), 14);
    // every published code is one that the editable test knows, and the user's are not
    QCOMPARE(Count(*db_, u"_iptblTaxScales s where s.bUserDefinable = case when exists (select 1 from "
                         "_iptblTaxOfficeScaleCodes c where c.iCountry = s.iCountry and c.cCode = s.cCode) "
                         "then 1 else 0 end"_s),
             0);
    const TDbRows medicare = db_->Select(
        u"select fWeeklyEarningsThreshold, fWLAFactor, fSOPMultiplier, fAdjustmentLevy from _iptblMedicareScales "
        "where cCode = '2' and iTaxYear = 2021"_s);
    QCOMPARE(medicare.rows.value(0), (QVariantList{438.0, 438.48, 0.1, 0.02}));
    const TDbRows bracket =
        db_->Select(u"select TaxPercentage, TaxAmount from _iptblTaxBrackets where cTaxScaleCode = '1' "
                    "and iBracketTaxYear = 2021 and TaxBracket = 515"_s);
    QCOMPARE(bracket.rows.value(0), (QVariantList{0.219, -1.9003}));
    // 2026 has two loan tables of either kind, of which the later one holds the plain code
    QCOMPARE(Count(*db_,
                   u"_iptblHECSScales where iTaxYear = 2026 and cCode in ('TFT', 'NTFT', 'TFT-23SEP', 'NTFT-23SEP')"_s),
             4);
    for (const QString &table : {u"HECS"_s, u"SFSS"_s})
        QCOMPARE(
            Count(*db_, u"_iptbl%1Scales s where not exists (select 1 from _iptbl%1Brackets b where b.i%1ScalesID = "
                        "s.id%1Scales and b.iTaxYear = s.iTaxYear and b.fWeeklyEarnings = 9999999)"_s.arg(table)),
            0);
}

void TSchemaSuite::BanksView()
{
    const int banks = Count(*db_, u"_iptblBanks"_s);
    QCOMPARE(Count(*db_, u"_ipvBanks"_s), banks);
    QCOMPARE(Count(*db_, u"_ipvBanks where idNotes is not null"_s), 3);
    QCOMPARE(Count(*db_, u"_ipvBanks where cStateCode is null"_s), 0);
    const int bank = Number(u"select min(idBank) as n from _ipvBanks where idNotes is not null"_s);
    // a second note, whichever way the table's name is written
    const QString note = u"insert into _btblNotes (cNOTETBLTableName, fNOTETBLTableID, cNote) values (:t, :b, 'x')"_s;
    QCOMPARE(Thrown([&] { db_->Insert(note, {{u"t"_s, u"_iptblbanks"_s}, {u"b"_s, bank}}); }).kind, Kind::Duplicate);
    db_->Rollback(); // a server may end the transaction with the error
    db_->Begin();
    db_->Insert(note, {{u"t"_s, u"_iptblTaxScales"_s}, {u"b"_s, bank}});
    QCOMPARE(Count(*db_, u"_ipvBanks"_s), banks);
}

void TSchemaSuite::DeleteBank()
{
    const auto remove = [this](int bank) { return db_->Call(u"_ipspDeleteBank"_s, {{u"BankID"_s, bank}}).returnValue; };
    const int eftBank = Number(u"select min(iBankID) as n from _iptblEFTParameters"_s);
    const int employeeBank = Number(u"select min(iBankID) as n from _iptblEmployeeBank"_s);
    const int noted = Number(u"select min(idBank) as n from _ipvBanks where idNotes is not null "
                             "and idBank not in (select iBankID from _iptblEFTParameters) "
                             "and idBank not in (select iBankID from _iptblEmployeeBank)"_s);
    QVERIFY(eftBank > 0 && employeeBank > 0 && noted > 0);
    QCOMPARE(remove(noted), 0);
    QVERIFY(db_->InTransaction()); // the caller's transaction is still the caller's
    QCOMPARE(Count(*db_, u"_iptblBanks where idBank = :b"_s, {{u"b"_s, noted}}), 0);
    QCOMPARE(Count(*db_, u"_btblNotes"_s), 2);
    for (const int bank : {eftBank, employeeBank, noted, -1}) {
        QCOMPARE(Thrown([&] { remove(bank); }).kind, Kind::Raised);
        db_->Rollback();
        db_->Begin();
        QCOMPARE(Count(*db_, u"_iptblBanks"_s), 324); // the rollback brought the deleted one back
        if (bank == employeeBank)
            remove(noted);
    }
    // behind the procedure's back the references still hold
    QCOMPARE(Thrown([&] {
                 db_->Execute(u"delete from _iptblBanks where idBank = :b"_s, {{u"b"_s, eftBank}});
             }).kind,
             Kind::Referenced);
}

void TSchemaSuite::DeleteBankOnItsOwn()
{
    db_->Rollback();
    const int bank = db_->Insert(u"insert into _iptblBanks (cCode, cBSBNumber) values ('SOLO', '999-999')"_s);
    db_->Insert(u"insert into _btblNotes (cNOTETBLTableName, fNOTETBLTableID) values ('_IPTBLBANKS', :b)"_s,
                {{u"b"_s, bank}});
    QCOMPARE(db_->Call(u"_ipspDeleteBank"_s, {{u"BankID"_s, bank}}).returnValue, 0);
    QVERIFY(!db_->InTransaction());
    QCOMPARE(Count(*db_, u"_iptblBanks where idBank = :b"_s, {{u"b"_s, bank}}), 0);
    QCOMPARE(Count(*db_, u"_btblNotes where fNOTETBLTableID = :b"_s, {{u"b"_s, bank}}), 0);
    db_->Begin();
}

void TSchemaSuite::InstallationCountry()
{
    for (const auto &[country, format] : {std::pair(6, u"00-0000"_s), {7, u"9999999999"_s}, {5, u"000-000"_s}}) {
        QCOMPARE(db_->Call(u"_ipspSetInstallationCountry"_s, {{u"Country"_s, country}}).returnValue, 0);
        QCOMPARE(
            Count(*db_, u"Defaults where Country = :c and cBSBFormat = :f"_s, {{u"c"_s, country}, {u"f"_s, format}}),
            1);
    }
    QCOMPARE(Thrown([&] { db_->Call(u"_ipspSetInstallationCountry"_s, {{u"Country"_s, 8}}); }).kind, Kind::Raised);
}

void TSchemaSuite::RateTypesAsAt()
{
    const auto rates = [this](const QString &arguments) {
        QStringList list;
        const TDbRows rows = db_->Select(u"select fRate from [dbo].[_ipfnGetRateTypes](%1) where cCode = 'FIRSTAID' "
                                         "order by dEffectiveDate"_s.arg(arguments));
        for (const QVariantList &row : rows.rows)
            list.append(QString::number(row[0].toDouble()));
        return list.join(u' ');
    };
    QCOMPARE(rates(u"'2026-06-30', 0, 0, 0"_s), u"17.2"_s);
    QCOMPARE(rates(u"'20260630 15:30:00', 0, 0, 0"_s), u"17.2"_s); // in force to the end of its last day
    QCOMPARE(rates(u"'20260701', 0, 0, 0"_s), u"17.9"_s);
    QCOMPARE(rates(u"'20260701', 1, 0, 0"_s), u"16.5 17.2 17.9"_s);
    QCOMPARE(rates(u"'20260701', 0, 1, 0"_s), u"17.9 18.6"_s);
    QCOMPARE(rates(u"'20240630', 0, 0, 0"_s), QString());
    QVERIFY(!rates(u"'1899-12-30', 0, 0, 0"_s).isEmpty()); // no date: today
    const QString system = u"[dbo].[_ipfnGetRateTypes]('20260701', 0, 0, %1) where cCode = 'NORMAL'"_s;
    QCOMPARE(Count(*db_, system.arg(0)), 0);
    QCOMPARE(Count(*db_, system.arg(1)), 1);
    const TDbRows award = db_->Select(u"select AwardCode, FormulaCode, iType, idNotes from [dbo].[_ipfnGetRateTypes]"
                                      "('20260701', 0, 0, 0) where cCode in ('CLERK2', 'OT15') order by cCode"_s);
    QCOMPARE(award.size(), 2);
    QCOMPARE(award.Value(0, u"AwardCode").toString(), u"CLERKS"_s);
    QCOMPARE(award.Value(1, u"FormulaCode").toString(), u"TIMEHALF"_s);
}

void TSchemaSuite::DemonstrationShowsEveryRefusal()
{
    const auto uses = [this](const QString &table, const QString &column, const QString &code,
                             const QString &rest = {}) {
        return Count(*db_, u"%1 where %2 = :id %3"_s.arg(table, column, rest),
                     {{u"id"_s, Id(u"idRateType"_s, u"_iptblRateTypes"_s, code)}});
    };
    QVERIFY(uses(u"_iptblEmployeeTrans"_s, u"iRateTypeID"_s, u"NIGHT"_s, u"and bPosted = 0"_s) > 0);
    QVERIFY(uses(u"_iptblEmployeeTrans"_s, u"iRateTypeID"_s, u"FIRSTAID"_s, u"and bPosted = 1"_s) > 0);
    QVERIFY(uses(u"_iptblEmployeeAdditionalRates"_s, u"iAddRateTypeID"_s, u"FIRSTAID"_s) > 0);
    QVERIFY(uses(u"_ipvPayClassesAddRates_TD"_s, u"iRateTypeID"_s, u"TOOLS"_s) > 0);
    QVERIFY(uses(u"_iptblEmployeeTransEOY"_s, u"iRateTypeID"_s, u"OT20"_s) > 0);
    for (const QString &table :
         {u"_iptblEmployeeTrans"_s, u"_iptblEmployeeAdditionalRates"_s, u"_ipvPayClassesAddRates_TD"_s})
        QCOMPARE(uses(table, table.contains(u"Additional") ? u"iAddRateTypeID"_s : u"iRateTypeID"_s, u"SPARE"_s), 0);
    QVERIFY(
        Count(*db_, u"_iptblPayClasses p inner join _iptblRateFactors f on f.idRateFactor = p.iTimeHalfRateFactor"_s) >
        0);
    QVERIFY(Count(*db_, u"_iptblEmployee e inner join _iptblTaxScales s on s.idTaxScales = e.iTaxScalesID "
                        "where s.bUserDefinable = 1"_s) > 0);
}

void TSchemaSuite::CurrentPeriods()
{
    const TDbRows rows = db_->Select(u"select dStartDate, dEndDate from _ipvCurrentPayPeriods order by dEndDate"_s);
    QCOMPARE(rows.size(), 2); // a fortnight and a month
    QCOMPARE(rows.Value(0, u"dStartDate").toDateTime().date(), QDate(2026, 11, 1));
    QCOMPARE(rows.Value(1, u"dStartDate").toDateTime().date(), QDate(2026, 11, 18));
    QCOMPARE(rows.Value(1, u"dEndDate").toDateTime().date(), QDate(2026, 12, 1));
}

// No gap, no overlap, values where they belong, and the master at the version in force.
void TSchemaSuite::CompareChain(int master, const TChain &chain)
{
    const TDbRows rows =
        db_->Select(u"select dEffectiveDate, dEndDate, fRate from _iptblRateTypes_TD where iRateTypeID = :m "
                    "and iChangeType <> 3 order by dEffectiveDate"_s,
                    {{u"m"_s, master}});
    QCOMPARE(rows.size(), int(chain.size()));
    int row = 0;
    double inForce = chain.empty() ? 0 : chain.begin()->second;
    for (auto version = chain.begin(); version != chain.end(); ++version, ++row) {
        const auto next = std::next(version);
        const QDate end = next == chain.end() ? QDate() : next->first.addDays(-1);
        QCOMPARE(rows.Value(row, u"dEffectiveDate").toDateTime().date(), version->first);
        QCOMPARE(rows.Value(row, u"dEndDate").toDateTime().date(), end);
        QCOMPARE(rows.Value(row, u"fRate").toDouble(), version->second);
        if (version->first <= QDate::currentDate())
            inForce = version->second;
    }
    const TDbRows carried =
        db_->Select(u"select fRate from _iptblRateTypes where idRateType = :m"_s, {{u"m"_s, master}});
    QCOMPARE(carried.size(), chain.empty() ? 0 : 1);
    if (!chain.empty())
        QCOMPARE(carried.Value(0, u"fRate").toDouble(), inForce);
}

void TSchemaSuite::VersionChains_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 4; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

// Random adds, edits, moves and deletes, beside a model that knows only dates and values.
void TSchemaSuite::VersionChains()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const QDate origin = QDate::currentDate().addDays(-30);
    TChain chain;
    int master = 0;
    for (int step = 0; step < 120; ++step) {
        const double rate = step + 1;
        const QDate date = origin.addDays(random.bounded(45)); // few days, so that neighbours and clashes are common
        if (chain.empty()) {
            master = NewRateType(u"CHAIN%1"_s.arg(step), date, rate);
            chain[date] = rate;
        } else {
            const auto chosen = std::next(chain.begin(), random.bounded(int(chain.size())));
            const int version = VersionAt(master, chosen->first);
            const int type = random.bounded(10) < 4 ? 1 : random.bounded(2) + 2;
            if (type != 3)
                Stage(master, rate);
            const QDate target = type == 3 ? chosen->first : date;
            const int done = Update(master, version, target.startOfDay(), type).returnValue;
            const bool clash = type != 3 && chain.contains(target) && (type == 1 || chosen->first != target);
            QCOMPARE(done == 2, clash);
            if (!clash) {
                if (type != 1)
                    chain.erase(chosen);
                if (type != 3)
                    chain[target] = rate;
            }
        }
        CompareChain(master, chain);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(u"in step %1"_s.arg(step)));
    }
}

void TSchemaSuite::VersionRefusals()
{
    const QDate first(2025, 1, 1);
    const int master = NewRateType(u"REFUSE"_s, first, 10);
    const int version = VersionAt(master, first);
    const int other = Id(u"idRateType"_s, u"_iptblRateTypes"_s, u"SPARE"_s);
    const auto refused = [&](const TDbCallResult &result) {
        QCOMPARE(result.returnValue, 2);
        QVERIFY(!result.outputs.value(u"cMessage"_s).toString().isEmpty());
        CompareChain(master, {{first, 10}}); // what was staged is gone from the master too
    };
    Stage(master, 11);
    refused(Update(master, version, QDateTime(first, QTime(13, 0)), 1)); // the same day, whatever the time
    Stage(master, 12);
    refused(Update(master, 0, QVariant(QMetaType(QMetaType::QDateTime)), 1));
    refused(Update(master, 0, QDate(1899, 12, 30).startOfDay(), 1));
    Stage(master, 13);
    refused(Update(master, 987654, first.startOfDay(), 2));
    refused(Update(master, version, first.startOfDay(), 4));
    refused(Update(-5, version, first.startOfDay(), 3));
    QCOMPARE(Update(other, version, first.startOfDay(), 3).returnValue, 2); // another record's version
    // a record that never got its first version leaves nothing behind
    const int stillborn = db_->Insert(u"insert into _iptblRateTypes (cCode) values ('STILLBORN')"_s);
    QCOMPARE(Update(stillborn, 0, QVariant(QMetaType(QMetaType::QDateTime)), 1).returnValue, 2);
    QCOMPARE(Count(*db_, u"_iptblRateTypes where idRateType = :m"_s, {{u"m"_s, stillborn}}), 0);
}

void TSchemaSuite::LastVersionTakesMaster()
{
    const QDate first(2025, 1, 1);
    const QDate second(2200, 1, 1);
    const int master = NewRateType(u"LAST"_s, first, 10);
    Stage(master, 20);
    const TDbCallResult added = Update(master, VersionAt(master, first), second.startOfDay(), 1);
    QCOMPARE(added.returnValue, 0);
    const int version = added.outputs.value(u"iRateTypeTDID"_s).toInt();
    QCOMPARE(version, VersionAt(master, second));
    db_->Insert(u"insert into _btblNotes (cNOTETBLTableName, fNOTETBLTableID) values ('_IPTBLRATETYPES', :m)"_s,
                {{u"m"_s, master}});
    // only a future version is left: that is worth telling
    const TDbCallResult gone = Update(master, VersionAt(master, first), first.startOfDay(), 3);
    QCOMPARE(gone.returnValue, 1);
    QVERIFY(!gone.outputs.value(u"cMessage"_s).toString().isEmpty());
    CompareChain(master, {{second, 20}});
    QCOMPARE(Update(master, version, second.startOfDay(), 3).returnValue, 0);
    CompareChain(master, {});
    QCOMPARE(Count(*db_, u"_btblNotes where cNOTETBLTableName = '_IPTBLRATETYPES' and fNOTETBLTableID = :m"_s,
                   {{u"m"_s, master}}),
             0);
    QCOMPARE(Count(*db_, u"_ipvRateTypes_TD where iRateTypeID = :m and iChangeType = 3"_s, {{u"m"_s, master}}), 2);
}

void TSchemaSuite::MastersFollowTheCalendar()
{
    const int master = Id(u"idRateType"_s, u"_iptblRateTypes"_s, u"FIRSTAID"_s);
    const double inForce = db_->Select(u"select fRate from _iptblRateTypes where idRateType = :m"_s, {{u"m"_s, master}})
                               .Value(0, u"fRate")
                               .toDouble();
    // as if it had been carried before the version in force began
    db_->Execute(u"update _iptblRateTypes set fRate = 1, iRateTypeTDID = 0 where idRateType = :m"_s,
                 {{u"m"_s, master}});
    QCOMPARE(db_->Call(u"_ipspCarryAllVersions"_s, {}).returnValue, 0);
    QCOMPARE(
        Count(*db_, u"_iptblRateTypes where idRateType = :m and fRate = :r"_s, {{u"m"_s, master}, {u"r"_s, inForce}}),
        1);
}

// What concerns the embedded file alone.
class TEmbeddedSchemaTest final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void EmptyDatabase();
    void LookupsUseIndexes_data();
    void LookupsUseIndexes();

private:
    QTemporaryDir folder_;
    QString file_ = folder_.filePath(QStringLiteral("empty.db"));
};

void TEmbeddedSchemaTest::EmptyDatabase()
{
    const auto db = CreateEmbeddedDatabase(file_);
    RunSchema(*db, false);
    for (const QString &table : {u"_iptblBanks"_s, u"_iptblEmployee"_s, u"_btblNotes"_s, u"_iptblEFTParameters"_s,
                                 u"_iptblPayPeriods"_s, u"_iptblRateTypes where bSystem = 0"_s})
        QCOMPARE(Count(*db, table), 0);
    for (const QString &table : {u"Defaults"_s, u"_btblAgents"_s, u"Entities"_s, u"_iptblTaxScales"_s})
        QVERIFY(Count(*db, table) > 0);
}

void TEmbeddedSchemaTest::LookupsUseIndexes_data()
{
    QTest::addColumn<QString>("sql");
    for (const char *column : {"cBSBNumber", "cCode", "cBankName", "cBranchName"})
        QTest::addRow("page of banks by %s", column)
            << u"select top 100 idBank, cCode, cBankName, cBranchName, cBSBNumber, cStateCode, idNotes from _ipvBanks "
               "where %1 >= 'a' and (%1 > 'a' or idBank > 7) order by %1, idBank"_s.arg(QLatin1String(column));
    const auto row = [](const char *name, const char *sql) { QTest::newRow(name) << QString::fromLatin1(sql); };
    row("bank in use by institutions", "select top 1 idEFT from _iptblEFTParameters where iBankID = 5 order by idEFT");
    row("bank in use by employees", "select top 1 idEmployeeBank from _iptblEmployeeBank where iBankID = 5 "
                                    "order by idEmployeeBank");
    row("note of a record",
        "select idNotes from _btblNotes where cNOTETBLTableName = '_IPTBLBANKS' and fNOTETBLTableID = 5");
    row("brackets of a scale", "select * from _iptblTaxBrackets where iTaxScalesID = 2702 and iBracketTaxYear = 2027 "
                               "order by TaxBracket");
    row("scales of a year", "select * from _iptblTaxScales where iCountry = 5 and iTaxYear = 2027 order by cCode");
    row("employees of a scale", "select idEmployee from _iptblEmployee where iTaxScalesID = 5");
    row("versions of a rate type", "select * from _iptblRateTypes_TD where iRateTypeID = 5 order by dEffectiveDate");
    row("unposted transactions", "select 1 as n from _iptblEmployeeTrans where iRateTypeID = 5 and bPosted = 0");
    row("costing of a rate type", "select 1 as n from _iptblEmployeeTransCosting where iRateTypeID = 5");
}

void TEmbeddedSchemaTest::LookupsUseIndexes()
{
    QFETCH(QString, sql);
    const QString translated = embedded::Engine::Open(file_)->Translate(sql);
    auto sqlite = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"plan"_s);
    sqlite.setDatabaseName(file_);
    QVERIFY(sqlite.open());
    QStringList plan;
    {
        QSqlQuery query(sqlite);
        QVERIFY2(query.exec(u"explain query plan "_s + translated), qPrintable(query.lastError().text() + translated));
        while (query.next())
            plan.append(query.value(u"detail"_s).toString());
    }
    sqlite = {};
    QSqlDatabase::removeDatabase(u"plan"_s);
    QVERIFY2(!plan.isEmpty() && plan.filter(u"TEMP B-TREE"_s).isEmpty() && plan.filter(u"SCAN"_s).isEmpty(),
             qPrintable(plan.join(u"; "_s)));
}

int main(int argc, char **argv)
{
    const int failures = RunOnEveryEngine<TSchemaSuite>(argc, argv);
    const QCoreApplication application(argc, argv);
    TEmbeddedSchemaTest embedded;
    return failures + QTest::qExec(&embedded, argc, argv);
}

#include "t_schema.moc"
