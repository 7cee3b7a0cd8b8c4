// SPDX-License-Identifier: Apache-2.0
// The T-SQL subset: what statements give, and what is refused.
#include <sqlite3.h>

#include "tests/embedded/EmbeddedTest.h"

using embedded::Engine;
using embedded::Error;
using embedded::Outcome;
using Kind = Error::Kind;

namespace {

const char *const kSchema = R"(
create table dbo.States (
    idState int not null constraint PK_States primary key,
    cState char(3) not null constraint UQ_States unique)
GO
create table [dbo].[Banks] (
    idBank int identity(1,1) not null constraint PK_Banks primary key clustered,
    cCode varchar(10) not null,
    cName nvarchar(50) null,
    cNote nvarchar(max) null,
    iState int null constraint FK_State references States (idState),
    iSmall smallint,
    bActive bit not null constraint DF_Active default 1,
    dFrom datetime null,
    fRate float null,
    mFee money null,
    dcPart decimal(8, 2) null check (dcPart >= 0))
GO
create unique nonclustered index IX_Code on Banks (cCode)
create index IX_Name on dbo.Banks (cName, idBank desc)
GO
create table Links (iBank int not null references Banks (idBank) on delete cascade, iNo int not null, cText varchar(5) null,
    constraint PK_Links primary key (iBank, iNo))
GO
create view dbo.vBanks as
select B.idBank, B.cCode, B.cName, B.dFrom, S.cState, B.cCode + ' - ' + isnull(B.cName, '?') as cFull, isnull(B.dFrom, 0) as dStart
from dbo.Banks B left outer join dbo.States S on S.idState = B.iState
GO
insert States (idState, cState) values (1, 'NSW'), (2, 'VIC'), (3, 'QLD')
GO
insert into dbo.Banks (cCode, cName, iState, iSmall, dFrom, fRate, mFee, dcPart) values
    ('ANZ  ', 'Alpha Bank', 1, 10, '20200131', 1.5, 10, 2.345),
    ('BNK', 'beta bank', 2, 20, '2021-02-28T10:30:00', 2, 2.5, 3),
    ('CBA', null, null, null, null, null, null, null)
GO
insert Links (iBank, iNo, cText) values (1, 1, 'one'), (1, 2, 'two'), (2, 1, null)
GO
create function dbo.fnBanks (@dDate datetime, @all int) returns table as
return (select idBank, cCode, dFrom from Banks where @all = 1 or isnull(dFrom, 0) < @dDate)
GO
create function fnTwice (@n int) returns int as begin return @n * 2 end
GO
create function fnSum (@n int) returns int as
begin
    declare @s int
    set @s = 0
    while @n > 0
    begin
        set @s = @s + @n
        if @n > 100 return -1
        set @n = @n - 1
    end
    return @s
end
GO
)";

} // namespace

class TestEmbedded final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { engine_.reset(); }
    void Expressions_data();
    void Expressions();
    void Queries_data();
    void Queries();
    void Changes_data();
    void Changes();
    void Faults_data();
    void Faults();
    void Refusals_data();
    void Refusals();
    void Comparisons_data();
    void Comparisons();
    void ParametersAndResultTypes();
    void HostileText();
    void Definitions();
    void SchemaIsPlainSqlite();
    void PlansUseIndexes_data();
    void PlansUseIndexes();
    void CallsAndOutputs();
    void ProceduralStatements_data();
    void ProceduralStatements();
    void RecursionEnds();
    void Transactions();
    void StatementCache();
    void ScriptErrorsNameTheirLine();

private:
    QString Show(const QString &batch, const QVariantMap &parameters = {})
    {
        try {
            return Shown(engine_->Run(batch, parameters).rows);
        } catch (const Error &error) {
            return QStringLiteral("error %1: %2").arg(error.number).arg(error.text);
        }
    }

    QTemporaryDir template_;
    std::unique_ptr<QTemporaryDir> dir_;
    std::unique_ptr<Engine> engine_;
};

void TestEmbedded::initTestCase()
{
    Engine::Create(template_.filePath("test.db"))->RunScript(QString::fromUtf8(kSchema), "schema");
}

void TestEmbedded::init()
{
    dir_ = std::make_unique<QTemporaryDir>();
    QVERIFY(QFile::copy(template_.filePath("test.db"), dir_->filePath("test.db")));
    engine_ = Engine::Open(dir_->filePath("test.db"));
}

void TestEmbedded::Expressions_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("value");
    const char *const rows[][2] = {
        {"7 / 2", "3"},
        {"7 % 4", "3"},
        {"7.0 / 2", "3.5"},
        {"-3 - -2", "-1"},
        {"2 + 3 * 4 - (1 - 5)", "18"},
        {"6 & 3", "2"},
        {"10 - 4 - 3", "3"},
        {"'a' + 'b' + N'c'", "abc"},
        {"'a' + null", "NULL"},
        {"'it''s'", "it's"},
        {"'1' + 2", "3"},
        {"left('abcdef', 2) + right('abcdef', 2)", "abef"},
        {"right('ab', 5)", "ab"},
        {"right('ab', 0)", ""},
        {"len('ab  ')", "2"},
        {"substring('abcdef', 2, 3)", "bcd"},
        {"substring('abcdef', 0, 3)", "ab"},
        {"charindex('C', 'abcabc')", "3"},
        {"charindex('c', 'abcabc', 4)", "6"},
        {"charindex('x', 'abc', 2)", "0"},
        {"replace('aXbx', 'x', '-')", "a-b-"},
        {"upper('a') + lower('B') + ltrim('  x') + rtrim('y  ')", "Abxy"},
        {"str(3.14159, 6, 2)", "  3.14"},
        {"str(12)", "        12"},
        {"str(12345, 3)", "***"},
        {"'%2' + cast('%1' as varchar(9)) + substring('%3%1', 2, 3)", "%2%13%1"},
        {"replicate('ab', 3) + space(2) + char(65)", "ababab  A"},
        {"abs(-5)", "5"},
        {"sign(-2.5)", "-1.0"},
        {"round(2.345, 1)", "2.3"},
        {"round(1234, -2)", "1200"},
        {"floor(-1.5)", "-2.0"},
        {"ceiling(1.2)", "2.0"},
        {"isnull(null, 'x')", "x"},
        {"coalesce(null, null, 3)", "3"},
        {"nullif(1, 1)", "NULL"},
        {"nullif('A', 'a ')", "NULL"},
        {"case 2 when 1 then 'a' when 2 then 'b' end", "b"},
        {"case when 1 = 2 then 'a' else 'c' end", "c"},
        {"case when null = null then 1 when null is null then 2 end", "2"},
        {"cast('12' as int) + 1", "13"},
        {"cast(3.9 as int)", "3"},
        {"cast(12 as varchar(5)) + '!'", "12!"},
        {"cast('abcdef' as varchar(3))", "abc"},
        {"cast(1.5 as varchar(10))", "1.5"},
        {"cast(cast(2 as float) as varchar(10))", "2"},
        {"cast(cast(2.5 as money) as varchar(10))", "2.50"},
        {"cast(2.345 as decimal(8, 1))", "2.3"},
        {"cast(5 as bit)", "true"},
        {"cast('2020-02-29' as datetime)", "2020-02-29"},
        {"cast('20200229 13:14:15' as datetime)", "2020-02-29T13:14:15.000"},
        {"cast('2020-02-29T13:14:15.120' as datetime)", "2020-02-29T13:14:15.120"},
        {"convert(datetime, '29/02/2020', 103)", "2020-02-29"},
        {"convert(varchar(10), cast('20200229' as datetime), 103)", "29/02/2020"},
        {"convert(varchar(8), cast('20200229' as datetime), 112)", "20200229"},
        {"convert(varchar(20), cast('20200229 01:02:03' as datetime), 120)", "2020-02-29 01:02:03"},
        {"convert(varchar(30), cast('20200229' as datetime))", "Feb 29 2020 12:00AM"},
        {"cast(cast('19000106' as datetime) as int)", "5"},
        {"cast(46204 as datetime)", "2026-07-03"},
        {"cast('20200131' as datetime) + 1", "2020-02-01"},
        {"cast('20200131' as datetime) - 31", "2019-12-31"},
        {"cast('20200131' as datetime) + 0.5", "2020-01-31T12:00:00.000"},
        {"cast('20200229 13:14:15' as date)", "2020-02-29"},
        {"dateadd(month, 1, '20200131')", "2020-02-29"},
        {"dateadd(month, -1, '20200331 10:00:00')", "2020-02-29T10:00:00.000"},
        {"dateadd(yy, 1, '20200229')", "2021-02-28"},
        {"dateadd(week, 2, '20200101')", "2020-01-15"},
        {"dateadd(mi, 90, '20200101')", "2020-01-01T01:30:00.000"},
        {"datediff(day, '20200228', '20200301 23:00:00')", "2"},
        {"datediff(month, '20200131', '20200201')", "1"},
        {"datediff(year, '20191231', '20200101')", "1"},
        {"datediff(week, '20200104', '20200105')", "1"},
        {"datediff(hour, '20200101 10:59:00', '20200101 11:00:00')", "1"},
        {"datepart(quarter, '20200501')", "2"},
        {"datepart(dw, '20200105')", "1"},
        {"datepart(week, '20200105')", "2"},
        {"year('20200501') * 10000 + month('20200501') * 100 + day('20200501')", "20200501"},
        {"datediff(minute, getdate(), getdate())", "0"},
        {"(select max(idState) from States)", "3"},
        {"dbo.fnTwice(4) + dbo.fnTwice('5')", "18"},
        {"dbo.fnSum(4)", "10"},
        {"dbo.fnSum(200)", "-1"},
        {"object_id('dbo.Banks', 'U') - object_id('Banks')", "0"},
        {"object_id('nothing')", "NULL"},
        {"object_id('vBanks', 'U')", "NULL"},
        {"isnull(cast(null as datetime), 0)", "1900-01-01"},
    };
    for (const auto &row : rows)
        QTest::newRow(row[0]) << row[0] << row[1];
}

void TestEmbedded::Expressions()
{
    QFETCH(QString, expression);
    QFETCH(QString, value);
    QCOMPARE(Show("select " + expression + " as v"), value);
}

void TestEmbedded::Queries_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("rows");
    const char *const rows[][3] = {
        {"top", "select top 2 idBank from Banks order by idBank desc", "3; 2"},
        {"top of an expression", "select top (1 + 1) idBank from Banks order by 1", "1; 2"},
        {"aliases", "select x = cCode, idBank y, cName as [the name] from Banks where idBank = 1", "ANZ|1|Alpha Bank"},
        {"order by alias", "select cCode as k from Banks order by k desc", "CBA; BNK; ANZ"},
        {"order ignores case", "select cName from Banks where cName is not null order by cName desc",
         "beta bank; Alpha Bank"},
        {"distinct ignores case",
         "select distinct x from (select 'a' as x union all select 'A' union all select 'b') t order by x", "a; b"},
        {"comma join", "select B.cCode, S.cState from Banks B, dbo.States S where S.idState = B.iState order by 1",
         "ANZ|NSW; BNK|VIC"},
        {"left join",
         "select b.cCode, s.cState from Banks b left join States s on s.idState = b.iState order by b.idBank",
         "ANZ|NSW; BNK|VIC; CBA|NULL"},
        {"right join",
         "select cCode, cState from Banks b right outer join States s on s.idState = b.iState order by cState",
         "ANZ|NSW; NULL|QLD; BNK|VIC"},
        {"full join", "select count(*) as n from Banks b full join States s on s.idState = b.iState", "4"},
        {"cross join", "select count(*) as n from Banks cross join States", "9"},
        {"nested join",
         "select b.cCode, l.iNo from Banks b left join (Links l inner join States s on s.idState = l.iNo) on "
         "l.iBank = b.idBank order by 1, 2",
         "ANZ|1; ANZ|2; BNK|1; CBA|NULL"},
        {"group",
         "select isnull(iState, 0) as s, count(*) as n from Banks group by isnull(iState, 0) having count(*) > 0 order "
         "by 1",
         "0|1; 1|1; 2|1"},
        {"aggregates",
         "select count(*) as a, count(iState) as b, sum(iSmall) as c, avg(iSmall) as d, min(cName) as e, max(dFrom) as "
         "f "
         "from Banks",
         "3|2|30|15|Alpha Bank|2021-02-28T10:30:00.000"},
        {"having without group", "select sum(iSmall) as s from Banks having sum(iSmall) > 100", ""},
        {"union", "select count(*) as n from (select cState from States union select 'nsw') t", "3"},
        {"union all", "select 1 as x union all select 1", "1; 1"},
        {"top within a union", "select top 1 idState from States order by 1", "1"},
        {"derived", "select t.n from (select top 2 idBank as n from Banks order by idBank desc) t order by n", "2; 3"},
        {"scalar subquery",
         "select cCode, (select count(*) from Links where iBank = B.idBank) as n from Banks B order by n desc",
         "ANZ|2; BNK|1; CBA|0"},
        {"exists",
         "select cCode from Banks B where exists (select * from Links L where L.iBank = B.idBank and L.cText is null)",
         "BNK"},
        {"not exists of an aggregate", "select 1 as x where exists (select count(*) from Links where iBank = 99)", "1"},
        {"in query", "select cCode from Banks where iState in (select idState from States where cState like 'V%')",
         "BNK"},
        {"not in list", "select cCode from Banks where cCode not in ('anz ', 'bnk')", "CBA"},
        {"view", "select cFull, cState from dbo.vBanks where cFull like 'anz -%'", "ANZ - Alpha Bank|NSW"},
        {"star of an alias", "select S.* from States S where idState = 2", "2|VIC"},
        {"null datetime below 5", "select cCode from Banks where isnull(dFrom, 0) < 5", "CBA"},
        {"view's datetime below 5", "select cCode from vBanks where dStart < 5", "CBA"},
        {"table function", "select cCode from [dbo].[fnBanks]('2020-06-01', 0) order by cCode", "ANZ; CBA"},
        {"table function with alias",
         "select f.cCode from fnBanks('20200601', 1) f inner join Banks b on b.idBank = f.idBank where b.iState"
         " = 2",
         "BNK"},
        {"function in place keeps its names apart",
         "select dbo.fnTwice(f.idBank) as n from fnBanks('20300101', 0) as f order by 1", "2; 4; 6"},
        {"row number",
         "select row_number() over (partition by iBank order by iNo desc) as r, iNo from Links where iBank = 1 order "
         "by 1",
         "1|2; 2|1"},
        {"like class", "select cCode from Banks where cCode like '[a-b]%' order by 1", "ANZ; BNK"},
        {"like negated class", "select cCode from Banks where cCode like '[^a]N_'", "BNK"},
        {"like escape", "select 1 as x where '5%' like '5!%' escape '!' and '55' not like '5!%' escape '!'", "1"},
        {"between", "select cCode from Banks where dFrom between '20200101' and '20201231'", "ANZ"},
        {"not between", "select idBank from Banks where idBank not between 2 and 5", "1"},
        {"date as text literal", "select cCode from Banks where dFrom = '2020-01-31T00:00:00'", "ANZ"},
        {"implicit number", "select cCode from Banks where iState = '2'", "BNK"},
        {"logic", "select idBank from Banks where not (idBank = 1 or idBank = 2) and (1 = 1)", "3"},
    };
    for (const auto &row : rows)
        QTest::newRow(row[0]) << row[1] << row[2];
}

void TestEmbedded::Queries()
{
    QFETCH(QString, query);
    QFETCH(QString, rows);
    QCOMPARE(Show(query), rows);
}

void TestEmbedded::Changes_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<int>("affected");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("rows");
    QTest::newRow("insert without into") << "insert Links values (3, 1, 'x  ')" << 1
                                         << "select cText + '|' as t from Links where iBank = 3"
                                         << "x|";
    QTest::newRow("insert skips the identity")
        << "insert Banks (cCode) values ('X'), ('Y')" << 2 << "select idBank, bActive from Banks where idBank > 3"
        << "4|true; 5|true";
    QTest::newRow("insert default") << "insert Banks (cCode, bActive) values ('X', default)" << 1
                                    << "select bActive from Banks where cCode = 'x'"
                                    << "true";
    QTest::newRow("insert select converts")
        << "insert Banks (cCode, cName, dFrom, fRate, iSmall, bActive) select 'S' + cast(idState as varchar(3)), "
           "12.50, '20220101', '1.5', "
           "2.9, 7 from States where idState = 1"
        << 1 << "select cName, dFrom, fRate, iSmall, bActive from Banks where cCode = 'S1'"
        << "12.5|2022-01-01|1.5|2|true";
    QTest::newRow("update")
        << "update dbo.Banks set cName = cCode + '!', mFee = mFee / 4, dFrom = null where iState is not null" << 2
        << "select cName, mFee, dFrom from Banks where idBank < 3"
        << "ANZ!|2.5|NULL; BNK!|0.625|NULL";
    QTest::newRow("update from join")
        << "update B set cName = S.cState, iSmall = L.iNo from Banks B inner join States S on S.idState = "
           "B.iState left join Links L on L.iBank = B.idBank and L.iNo = 2 where B.idBank < 3"
        << 2 << "select cName, iSmall from Banks order by idBank"
        << "NSW|2; VIC|NULL; NULL|NULL";
    QTest::newRow("update from another table")
        << "update Banks set cName = S.cState from States S where S.idState = Banks.iState" << 2
        << "select cName from Banks order by idBank"
        << "NSW; VIC; NULL";
    QTest::newRow("delete") << "delete Links where iBank = 1" << 2 << "select count(*) as n from Links"
                            << "1";
    QTest::newRow("delete from join")
        << "delete L from Links L inner join Banks B on B.idBank = L.iBank where B.cCode = 'anz'" << 2
        << "select iBank from Links"
        << "2";
    QTest::newRow("delete cascades") << "delete from Banks where idBank = 1" << 1 << "select count(*) as n from Links"
                                     << "1";
    QTest::newRow("rounded to the column's scale") << "update Banks set dcPart = 1.239, mFee = 1.23456 where idBank = 3"
                                                   << 1 << "select dcPart, mFee from Banks where idBank = 3"
                                                   << "1.24|1.2346";
}

void TestEmbedded::Changes()
{
    QFETCH(QString, change);
    QFETCH(int, affected);
    QFETCH(QString, query);
    QFETCH(QString, rows);
    QCOMPARE(engine_->Run(change).affected, affected);
    QCOMPARE(Show(query), rows);
}

void TestEmbedded::Faults_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<int>("number");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("mentions");
    const struct
    {
        const char *statement;
        int number;
        Kind kind;
        const char *mentions;
    } rows[] = {
        {"insert Banks (cCode) values ('12345678901')", 8152, Kind::TooLong, "'cCode'"},
        {"update Banks set cName = replicate('x', 51)", 8152, Kind::TooLong, "'cName'"},
        {"insert Banks (cName) values ('x')", 515, Kind::NullValue, "column 'cCode', table 'Banks'"},
        {"update Banks set bActive = null", 515, Kind::NullValue, "'bActive'"},
        {"insert States (cState) values ('ACT')", 515, Kind::NullValue, "'idState'"},
        {"insert States (idState, cState) values (null, 'ACT')", 515, Kind::NullValue, "'idState'"},
        {"insert States (idState, cState) select null, 'ACT' from States where idState = 1", 515, Kind::NullValue,
         "'idState'"},
        {"insert Banks (cCode) values ('anz ')", 2601, Kind::Duplicate, "'dbo.Banks'"},
        {"insert States values (9, 'nsw')", 2627, Kind::Duplicate, "UNIQUE KEY"},
        {"insert States values (1, 'ACT')", 2627, Kind::Duplicate, "PRIMARY KEY"},
        {"insert Links values (1, 1, null)", 2627, Kind::Duplicate, "iBank, iNo"},
        {"delete States where idState = 1", 547, Kind::Referenced, "REFERENCE"},
        {"update Banks set iState = 77", 547, Kind::Referenced, "REFERENCE"},
        {"update Banks set dcPart = -1", 547, Kind::Check, "CHECK"},
        {"update Banks set iSmall = 40000", 245, Kind::Check, "'iSmall'"},
        {"update Banks set iSmall = 'abc'", 245, Kind::Check, "'abc'"},
        {"update Banks set fRate = cName", 245, Kind::Check, "'Alpha Bank'"},
        {"update Banks set dFrom = '31/12/2020'", 241, Kind::Check, "date"},
        {"update Banks set dFrom = cName", 241, Kind::Check, "date"},
        {"select 'a' + 1 as x", 245, Kind::Check, "'a'"},
        {"select 1 / (idBank - idBank) as x from Banks", 8134, Kind::Other, "zero"},
        {"insert Banks (idBank, cCode) values (9, 'X')", 544, Kind::Check, "IDENTITY_INSERT"},
        {"update Banks set idBank = 9", 8102, Kind::Check, "'idBank'"},
        {"select x from Banks", 207, Kind::Unknown, "Invalid column name 'x'."},
        {"select B.x from Banks B", 207, Kind::Unknown, "'x'"},
        {"select C.cCode from Banks B", 4104, Kind::Unknown, "C.cCode"},
        {"select idBank from Banks, Links, vBanks", 209, Kind::Unknown, "Ambiguous"},
        {"select 1 as x from Nowhere", 208, Kind::Unknown, "Invalid object name 'Nowhere'."},
        {"select 1 as x from sqlite_master", 208, Kind::Unknown, "'sqlite_master'"},
        {"select 1 as x from _corvex_objects", 208, Kind::Unknown, "'_corvex_objects'"},
        {"insert Nowhere values (1)", 208, Kind::Unknown, "'Nowhere'"},
        {"insert Links (iBank, x) values (1, 2)", 207, Kind::Unknown, "'x'"},
        {"exec spNowhere", 2812, Kind::Unknown, "'spNowhere'"},
        {"select dbo.fnNowhere(1) as x", 4121, Kind::Unknown, "fnNowhere"},
        {"select typeof(1) as x", 195, Kind::Unknown, "'typeof'"},
        {"select @x as x", 137, Kind::Unknown, "@x"},
        {"set @x = 1", 137, Kind::Unknown, "@x"},
        {"insert Links values (1, 2)", 109, Kind::Syntax, "more columns"},
        {"select cCode, count(*) as n from Banks", 8120, Kind::Syntax, "'cCode'"},
        {"select iState from Banks group by cName", 8120, Kind::Syntax, "'iState'"},
        {"select cCode from Banks where count(*) > 1", 147, Kind::Syntax, "aggregate"},
        {"select cCode from Banks order by 2", 108, Kind::Syntax, "ORDER BY"},
        {"select 1 as x from (select cCode from Banks order by cCode) t", 1033, Kind::Syntax, "ORDER BY"},
        {"select 1 as x from (select cCode + 'x' from Banks) t", 8155, Kind::Syntax, "name"},
        {"select 1 as x from Banks where cCode", 4145, Kind::Syntax, "condition"},
        {"select 1 as x union select 1, 2", 205, Kind::Syntax, "UNION"},
        {"select left('a') as x", 174, Kind::Syntax, "left"},
        {"select dateadd(fortnight, 1, getdate()) as x", 155, Kind::Syntax, "fortnight"},
        {"select 1 as x from Banks, Banks", 1013, Kind::Syntax, "Banks"},
        {"declare @a int declare @A int", 134, Kind::Syntax, "@a"},
        {"commit", 3902, Kind::Other, "COMMIT"},
        {"rollback", 3903, Kind::Other, "ROLLBACK"},
        {"create table States (i int)", 2714, Kind::Other, "'States'"},
        {"drop view Banks", 3701, Kind::Unknown, "'Banks'"},
    };
    for (const auto &row : rows)
        QTest::newRow(row.statement) << QString(row.statement) << row.number << row.kind << QString(row.mentions);
}

void TestEmbedded::Faults()
{
    QFETCH(QString, statement);
    QFETCH(int, number);
    QFETCH(Kind, kind);
    QFETCH(QString, mentions);
    const QString before = Show("select * from Banks");
    try {
        engine_->Run(statement);
        QFAIL("no error");
    } catch (const Error &error) {
        QVERIFY2(error.number == number, qPrintable(QStringLiteral("%1 %2").arg(error.number).arg(error.text)));
        QCOMPARE(error.kind, kind);
        QVERIFY2(error.text.contains(mentions), qPrintable(error.text));
        QCOMPARE(error.statement, statement);
    }
    QVERIFY(!engine_->InTransaction());
    QCOMPARE(Show("select * from Banks"), before);
}

void TestEmbedded::Refusals_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("text");
    const auto refused = [](const char *statement, const char *what, int line, int column) {
        QTest::newRow(statement) << QString(statement)
                                 << QStringLiteral("%1 is not part of the supported SQL (line %2, column %3).")
                                        .arg(QString(what))
                                        .arg(line)
                                        .arg(column);
    };
    const auto wrong = [](const char *statement, const char *token, int line, int column) {
        QTest::newRow(statement) << QString(statement)
                                 << QStringLiteral("Incorrect syntax near '%1' (line %2, column %3).")
                                        .arg(QString(token))
                                        .arg(line)
                                        .arg(column);
    };
    refused("select 1 as x\nselect 2 as x\n  merge Banks using States on 1 = 1", "MERGE", 3, 3);
    refused("with c as (select 1 as x) select * from c", "WITH", 1, 1);
    refused("pragma user_version", "PRAGMA", 1, 1);
    refused("attach database 'x' as y", "ATTACH", 1, 1);
    refused("vacuum", "VACUUM", 1, 1);
    refused("select cCode from Banks limit 1", "LIMIT", 1, 25);
    refused("select cCode from Banks where cCode = 'x' limit 1", "LIMIT", 1, 43);
    refused("select cCode || 'x' as y from Banks", "||", 1, 14);
    refused("select 1 as x from Banks where cCode glob 'a*'", "GLOB", 1, 38);
    refused("select 1 as x from Banks where cCode == 'a'", "==", 1, 38);
    refused("insert Banks (cCode) values ('x') returning idBank", "RETURNING", 1, 35);
    refused("replace into States values (1, 'x')", "REPLACE", 1, 1);
    refused("select * from Banks B cross apply fnBanks(B.dFrom, 1) f", "CROSS APPLY", 1, 23);
    refused("select * into x from Banks", "INTO", 1, 10);
    refused("select * from Banks with (nolock)", "WITH", 1, 21);
    refused("select cCode from Banks except select cState from States", "EXCEPT", 1, 25);
    refused("select * from Banks pivot (max(cCode) for iState in ([1])) p", "PIVOT", 1, 21);
    refused("exec ('select 1')", "EXEC of a text", 1, 6);
    refused("exec sp_executesql N'select 1'", "sp_executesql", 1, 6);
    refused("create trigger t on Banks for insert as select 1", "CREATE TRIGGER", 1, 1);
    refused("alter table Banks drop column cName", "ALTER TABLE ... DROP", 1, 19);
    refused("grant select on Banks to public", "GRANT", 1, 1);
    refused("waitfor delay '0:0:1'", "WAITFOR", 1, 1);
    refused("goto x", "GOTO", 1, 1);
    refused("truncate table Links", "TRUNCATE", 1, 1);
    refused("insert Banks (cCode) output inserted.idBank values ('x')", "OUTPUT", 1, 22);
    refused("update vBanks set cCode = 'x'", "A change through the view vBanks", 1, 1);
    refused("select master.dbo.t.x from Banks", "master.", 1, 8);
    refused("select 0x1F as x", "0x", 1, 8);
    refused("select @@version as x", "@@version", 1, 8);
    refused("set rowcount 5", "SET ROWCOUNT", 1, 1);
    refused("select sum(idBank) over (order by idBank) as x from Banks", "OVER", 1, 8);
    wrong("selct 1", "selct", 1, 1);
    wrong("select 1 as x from", "end of text", 1, 19);
    wrong("select (1 as x", "as", 1, 11);
    wrong("select 'open", "'", 1, 8);
    wrong("select /* open", "/*", 1, 8);
    wrong("select 1abc as x", "1a", 1, 8);
    wrong("select * from Banks where", "end of text", 1, 26);
    wrong("begin select 1 as x", "end of text", 1, 20);
    wrong("if 1 = 1", "end of text", 1, 9);
    wrong("insert Banks cCode values (1)", "cCode", 1, 14);
    QString deep = QStringLiteral("1");
    for (int i = 0; i < 500; ++i)
        deep = '(' + deep + ')';
    QTest::newRow("deep") << "select " + deep + " as x"
                          << "Nesting this deep is not part of the supported SQL (line 1, column 67).";
    QTest::newRow("long sum") << "select 1" + QStringLiteral(" + 1").repeated(5000) + " as x"
                              << "Nesting this deep is not part of the supported SQL (line 1, column 802).";
}

void TestEmbedded::Refusals()
{
    QFETCH(QString, statement);
    QFETCH(QString, text);
    try {
        engine_->Run(statement);
        QFAIL("no error");
    } catch (const Error &error) {
        QCOMPARE(error.text, text);
        QVERIFY(error.kind == Kind::Refused || error.kind == Kind::Syntax);
        QVERIFY(text.contains(QStringLiteral("(line %1, column %2)").arg(error.line).arg(error.column)));
    }
}

void TestEmbedded::Comparisons_data()
{
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QVariant>("p");
    QTest::addColumn<QString>("codes");
    QTest::newRow("case and blanks of a parameter") << "cCode = :p" << QVariant("anz   ") << "ANZ";
    QTest::newRow("parameter on the left") << ":p = cCode" << QVariant("Anz ") << "ANZ";
    QTest::newRow("expression") << "left(cName, 6) = :p" << QVariant("ALPHA") << "ANZ";
    QTest::newRow("expression with blanks") << "cCode + ' ' = :p" << QVariant("bnk") << "BNK";
    QTest::newRow("view's expression") << "idBank in (select idBank from vBanks where cFull = :p)"
                                       << QVariant("CBA - ?  ") << "CBA";
    QTest::newRow("case in") << "upper(cName) in (:p, 'x')" << QVariant("Beta Bank ") << "BNK";
    QTest::newRow("blanks of a replacement") << "isnull(cName, 'x ') = :p" << QVariant("X") << "CBA";
    QTest::newRow("like") << "cName like :p" << QVariant("%BANK") << "ANZ; BNK";
    QTest::newRow("like with a class") << "cCode like :p" << QVariant("[ab]%") << "ANZ; BNK";
    QTest::newRow("number in a text") << "iState = :p" << QVariant("2 ") << "BNK";
    QTest::newRow("date") << "dFrom >= :p" << QVariant(QDate(2020, 1, 31)) << "ANZ; BNK";
    QTest::newRow("moment") << "dFrom = :p" << QVariant(QDateTime(QDate(2021, 2, 28), QTime(10, 30))) << "BNK";
    QTest::newRow("date in a text") << "dFrom < :p" << QVariant("2020-02-01T00:00:00") << "ANZ";
    QTest::newRow("date in a text without dashes") << "dFrom < :p" << QVariant("20200201") << "ANZ";
    QTest::newRow("day number") << "isnull(dFrom, 0) < :p" << QVariant(5) << "CBA";
    QTest::newRow("bool") << "bActive = :p" << QVariant(true) << "ANZ; BNK; CBA";
    QTest::newRow("null") << "iState = :p" << QVariant() << "";
    QTest::newRow("null text") << "isnull(:p, 'x') = 'X ' and idBank = 1" << QVariant(QMetaType::fromType<QString>())
                               << "ANZ";
    QTest::newRow("float") << "fRate = :p" << QVariant(1.5) << "ANZ";
    QTest::newRow("case when") << "case cCode when :p then 1 else 0 end = 1" << QVariant("cba") << "CBA";
}

void TestEmbedded::Comparisons()
{
    QFETCH(QString, condition);
    QFETCH(QVariant, p);
    QFETCH(QString, codes);
    QCOMPARE(Show("select cCode from Banks where " + condition + " order by cCode", {{"p", p}}), codes);
}

void TestEmbedded::ParametersAndResultTypes()
{
    const Outcome outcome = engine_->Run("select idBank, bActive, iSmall, fRate, mFee, dcPart, dFrom, cName, cast(1 as "
                                         "bigint) as b, 1.5 as f, 'x' as t, null as n, "
                                         "cast(dFrom as date) as d, count(*) over_ from Banks where idBank = 2 group "
                                         "by idBank, bActive, iSmall, fRate, mFee, dcPart, dFrom, "
                                         "cName");
    QList<int> types;
    for (const QVariant &value : outcome.rows.rows.first())
        types.append(value.typeId());
    QCOMPARE(types, (QList<int>{QMetaType::Int, QMetaType::Bool, QMetaType::Int, QMetaType::Double, QMetaType::Double,
                                QMetaType::Double, QMetaType::QDateTime, QMetaType::QString, QMetaType::LongLong,
                                QMetaType::Double, QMetaType::QString, QMetaType::UnknownType, QMetaType::QDate,
                                QMetaType::Int}));
    QCOMPARE(outcome.affected, -1);
    QVERIFY(outcome.hasRows);

    // every type travels in and comes back as it was
    const QDateTime moment(QDate(2024, 2, 29), QTime(23, 59, 59, 123));
    const QString big(20000, u'x');
    const Outcome inserted = engine_->Run(
        "insert Banks (cCode, cName, cNote, iSmall, bActive, dFrom, fRate, mFee) values (:c, :n, :o, :s, :b, :d, :f, "
        ":m)",
        {{"C", "P1 "}, {"n", QString()}, {"o", big}, {"s", -5}, {"b", false}, {"d", moment}, {"f", 0.1}, {"m", 1.25f}});
    QCOMPARE(inserted.identity, 4);
    QCOMPARE(inserted.affected, 1);
    const QVariantList row =
        engine_
            ->Run("select cCode, cName, cNote, iSmall, bActive, dFrom, fRate, mFee from Banks where idBank = :id",
                  {{"id", 4}})
            .rows.rows.first();
    QCOMPARE(row, (QVariantList{"P1", QVariant(), big, -5, false, moment, 0.1, 1.25}));

    QP_FAULT(engine_->Run("select :a as x"), 137, Kind::Unknown);
    QP_FAULT(engine_->Run("select :a as x", {{"a", 1}, {"b", 2}}), 8145, Kind::Unknown);
}

void TestEmbedded::HostileText()
{
    const QStringList texts = {"'; drop table Banks; --", "\"", "[x]", "a--b", "/* */", "100%", "_", "\\", "日本語 ünï",
                               QString(u'\0') + "x",      "@x", ":x",  "?1",   "''''"};
    for (const QString &text : texts) {
        engine_->Run("update Banks set cName = :t where idBank = 1", {{"t", text}});
        const QVariantList row =
            engine_->Run("select cName, idBank from Banks where cName = :t", {{"t", text}}).rows.rows.value(0);
        QCOMPARE(row.value(0).toString(), text);
        QString literal = text;
        literal.remove(u'\0').replace("'", "''");
        QCOMPARE(Show("select '" + literal + "' as t"), QString(text).remove(u'\0'));
    }
    QCOMPARE(Show("select count(*) as n from Banks"), "3");
    // names can be anything too
    engine_->Run("create table [odd ]] \"name] ([a 'b' \"c\"\"] int, [select] varchar(3))");
    engine_->Run("insert [odd ]] \"name] values (1, 'x')");
    QCOMPARE(Show("select [a 'b' \"c\"\"], \"select\" from [odd ]] \"name] o where o.[select] = 'X'"), "1|x");
}

void TestEmbedded::Definitions()
{
    engine_->RunScript(R"(
create table T (i int identity(10, 1), c varchar(5) default 'ab', d datetime not null default getdate(), n numeric(6, 1) default 1.25,
    big bigint, x tinyint, img image, primary key (i))
GO
insert T default values
insert T (c, big, x) values (null, 9000000000, 255)
GO
alter table T add iMore smallint not null default 7, cMore varchar(3) null
GO
alter table T add constraint UQ_T unique (big)
GO
create view vT (a, b) as select i, c + 'x' from T
GO
)",
                       "definitions");
    QCOMPARE(Show("select i, c, n, big, x, iMore, cMore from T order by i"),
             "10|ab|1.3|NULL|NULL|7|NULL; 11|NULL|1.3|9000000000|255|7|NULL");
    QCOMPARE(Show("select b from vT where a = 10"), "abx");
    QCOMPARE(Show("select count(*) as n from T where datediff(day, d, getdate()) = 0"), "2");
    QP_FAULT(engine_->Run("insert T (big) values (9000000000)"), 2601, Kind::Duplicate);
    QP_FAULT(engine_->Run("insert T (x) values (256)"), 245, Kind::Check);
    QP_FAULT(engine_->Run("insert T (cMore) values ('long')"), 8152, Kind::TooLong);
    engine_->Run("set identity_insert T on; insert T (i, c) values (100, 'id'); set identity_insert T off; insert T "
                 "(c) values ('nx')");
    QCOMPARE(Show("select max(i) as m from T"), "101");

    // a constraint on an empty table rebuilds it with its indexes
    engine_->RunScript("create table E (a int not null, b int)\nGO\ncreate index IX_E on E (b)\nGO\n"
                       "alter table E add constraint PK_E primary key (a), constraint FK_E foreign key (b) references "
                       "States (idState)",
                       "empty");
    QP_FAULT(engine_->Run("insert E values (1, 99)"), 547, Kind::Referenced);
    engine_->Run("drop index IX_E on E");

    // a key that is a foreign key too, and checked
    engine_->Run("create table K (idState int primary key references States (idState) check (idState < 3))");
    QP_FAULT(engine_->Run("insert K values (0)"), 547, Kind::Referenced);
    QP_FAULT(engine_->Run("insert K values (3)"), 547, Kind::Check);

    // two tables may have an index of the same name
    engine_->Run("create table E2 (b int) create index IX_Code on E2 (b) drop index E2.IX_Code");
    QVERIFY(!engine_->Run("select object_id('E2', 'U') as x").rows.rows.first().first().isNull());
    engine_->Run("drop table E2 drop view if exists vNothing drop view vT");
    QP_FAULT(engine_->Run("select * from vT"), 208, Kind::Unknown);
    QP_FAULT(engine_->Run("create view v as select cast(cName as datetime) as d from Banks"), 156, Kind::Refused);
    QP_FAULT(engine_->Run("create view v as select @x as d"), 137, Kind::Unknown);
    QP_FAULT(engine_->Run("select 1 as x create view v as select 1 as y"), 111, Kind::Syntax);
    QP_FAULT(engine_->Run("create procedure p as select @x as y"), 137, Kind::Unknown);
    QP_FAULT(engine_->Run("create function f (@a int) returns table as return (select nothing from Banks)"), 207,
             Kind::Unknown);
    QP_FAULT(engine_->Run("create function f (@a int) returns int as begin delete Banks return 1 end"), 443,
             Kind::Refused);

    // a definition in a transaction goes with it
    engine_->Begin();
    engine_->Run("create table Gone (i int)");
    engine_->Run("insert Gone values (1)");
    engine_->Rollback();
    QP_FAULT(engine_->Run("select * from Gone"), 208, Kind::Unknown);
}

// Any tool can read and write the file: no function or collation of ours in the schema, and its checks still hold.
void TestEmbedded::SchemaIsPlainSqlite()
{
    engine_->Run(
        "create table X (d datetime default getdate(), i int default (1 + 1), c varchar(3) default left('abcd', 3), "
        "check (len(c) > 0 or c like 'x%'))");
    engine_->RunScript(
        "create view vX as select dateadd(month, 1, dateadd(day, 2, d)) as a, datediff(week, d, getdate()) as b, "
        "convert(varchar(10), d, 103) as e, cast(i as varchar(9)) + str(i) as f, round(i, -1) as g, "
        "charindex('a', c) as h, isnull(d, 0) as j, dbo.fnTwice(i) as k, case when c = 'ABC' then 1 end as l from "
        "X\nGO\n",
        "view");
    engine_.reset();
    sqlite3 *plain = nullptr;
    QCOMPARE(sqlite3_open(dir_->filePath("test.db").toUtf8().constData(), &plain), SQLITE_OK);
    const auto run = [plain](const char *sql) {
        char *message = nullptr;
        sqlite3_exec(plain, sql, nullptr, nullptr, &message);
        const QString text = QString::fromUtf8(message);
        sqlite3_free(message);
        return text;
    };
    QCOMPARE(run("INSERT INTO X DEFAULT VALUES"), QString());
    QCOMPARE(run("INSERT INTO Banks (cCode) VALUES ('from a tool')"), "CHECK constraint failed: cx_length_cCode");
    QCOMPARE(run("INSERT INTO Banks (cCode, iSmall) VALUES ('tool', 'abc')"),
             "CHECK constraint failed: cx_type_iSmall");
    QCOMPARE(run("INSERT INTO Banks (cCode, dFrom) VALUES ('tool', '1/1/2020')"),
             "CHECK constraint failed: cx_type_dFrom");
    QCOMPARE(run("INSERT INTO Banks (cCode, bActive) VALUES ('ANZ', 2)"), "CHECK constraint failed: cx_type_bActive");
    QCOMPARE(run("INSERT INTO Banks (cCode) VALUES ('anz')"), "UNIQUE constraint failed: Banks.cCode");
    QCOMPARE(run("INSERT INTO Banks (cCode, dFrom) VALUES ('TOOL', '2020-01-01')"), QString());
    for (const char *sql :
         {"SELECT * FROM vX", "SELECT * FROM vBanks", "PRAGMA integrity_check", "PRAGMA foreign_key_check"})
        QCOMPARE(run(sql), QString());
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(plain, "SELECT a IS NOT NULL, b, f, g, h, k, l FROM vX", -1, &statement, nullptr);
    QCOMPARE(sqlite3_step(statement), SQLITE_ROW);
    QStringList values;
    for (int i = 0; i < sqlite3_column_count(statement); ++i)
        values.append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, i))));
    sqlite3_finalize(statement);
    sqlite3_close(plain);
    QCOMPARE(values.join('|'), "1|0|2         2|0|1|4|1");

    engine_ = Engine::Open(dir_->filePath("test.db"));
    QCOMPARE(Show("select cCode, dFrom from Banks where cCode = 'tool'"), "TOOL|2020-01-01");
    QCOMPARE(Show("select a from vX where datediff(day, a, getdate()) > 0"), "");
}

void TestEmbedded::PlansUseIndexes_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("plan");
    QTest::newRow("page by key")
        << "select top 100 * from vBanks where cCode >= :a and (cCode > :a or idBank > :id) order by cCode, idBank"
        << "SEARCH B USING INDEX IX_Code (cCode>?), SEARCH S USING INTEGER PRIMARY KEY (rowid=?) LEFT-JOIN";
    QTest::newRow("page backwards")
        << "select top 100 cCode from vBanks where cCode < :a order by cCode desc, idBank desc"
        << "SEARCH B USING INDEX IX_Code (cCode<?)";
    QTest::newRow("by key") << "select * from Banks where idBank = :id"
                            << "SEARCH Banks USING INTEGER PRIMARY KEY (rowid=?)";
    QTest::newRow("by text") << "select * from Banks where cCode = :c"
                             << "SEARCH Banks USING INDEX IX_Code (cCode=?)";
    QTest::newRow("by two columns") << "select * from Links where iBank = :a and iNo = :b"
                                    << "SEARCH Links USING INDEX sqlite_autoindex_Links_1 (iBank=? AND iNo=?)";
    QTest::newRow("beginning of a text") << "select * from Banks where cCode like 'A%'"
                                         << "SEARCH Banks USING INDEX IX_Code (cCode>? AND cCode<?)";
    QTest::newRow("through a function") << "select * from fnBanks('20200101', 1) where idBank = 2"
                                        << "SEARCH Banks~1 USING INTEGER PRIMARY KEY (rowid=?)";
}

void TestEmbedded::PlansUseIndexes()
{
    QFETCH(QString, query);
    QFETCH(QString, plan);
    const QString sql = engine_->Translate(query);
    sqlite3 *plain = nullptr;
    sqlite3_open(dir_->filePath("test.db").toUtf8().constData(), &plain);
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(plain, ("EXPLAIN QUERY PLAN " + sql).toUtf8().constData(), -1, &statement, nullptr);
    QStringList steps;
    while (statement && sqlite3_step(statement) == SQLITE_ROW)
        steps.append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 3))));
    sqlite3_finalize(statement);
    sqlite3_close(plain);
    QCOMPARE(steps.join(", "), plan);
}

void TestEmbedded::CallsAndOutputs()
{
    engine_->RunScript(R"(
create procedure dbo.spAdd
    @cCode varchar(5),
    @iState int = 2,
    @dFrom datetime = null,
    @idBank int output,
    @cMessage varchar(20) output
as
begin
    set nocount on
    if exists (select 1 from Banks where cCode = @cCode)
    begin
        set @cMessage = 'The code ' + @cCode + ' is taken already'
        return 1
    end
    insert Banks (cCode, iState, dFrom) values (@cCode, @iState, @dFrom)
    set @idBank = scope_identity()
    select @cMessage = cState from States where idState = @iState
    return 0
end
GO
create procedure spOuter @n int as
    declare @r int, @id int, @m varchar(50)
    exec @r = dbo.spAdd 'O1', @idBank = @id output, @cMessage = @m output
    if @r = 0
        exec @r = spAdd @cCode = 'O1', @idBank = @id output, @cMessage = @m output
    select @r as r, @m as m, @n + 1 as n
    return @r + 10
GO
)",
                       "procedures");
    QVariantMap in{{"cCode", "N1"}, {"dFrom", QDate(2022, 3, 4)}, {"idBank", QVariant()}, {"CMESSAGE", QString()}};
    QCOMPARE(engine_->Call("dbo.spAdd", in), 0);
    QCOMPARE(in["idBank"], QVariant(4));
    QCOMPARE(in["CMESSAGE"], QVariant("VIC"));
    QCOMPARE(Show("select iState, dFrom from Banks where idBank = 4"), "2|2022-03-04");

    QVariantMap taken{
        {"cCode", "n1   much too long"}, {"idBank", 77}, {"cMessage", ""}}; // a parameter is cut to its length
    QCOMPARE(engine_->Call("spAdd", taken), 1);
    QCOMPARE(taken["cMessage"], QVariant("The code n1    is ta"));
    QCOMPARE(taken["idBank"], QVariant(77));

    const Outcome outer =
        engine_->Run("declare @x int exec @x = spOuter 5 select * from States where idState = @x - 8");
    QCOMPARE(Shown(outer.rows), "3|QLD");
    QCOMPARE(Show("exec spOuter @n = :n", {{"n", 1}}), "1|The code O1 is taken|2");

    QVariantMap wrong{{"cCode", "x"}, {"zz", 1}};
    QP_FAULT(engine_->Call("spAdd", wrong), 8145, Kind::Unknown);
    QVariantMap missing{{"idBank", 1}};
    QP_FAULT(engine_->Call("spAdd", missing), 201, Kind::Unknown);
    QP_FAULT(engine_->Call("spNothing", missing), 2812, Kind::Unknown);
    QVariantMap bad{{"cCode", "y"}, {"iState", "abc"}};
    QP_FAULT(engine_->Call("spAdd", bad), 245, Kind::Check);
}

void TestEmbedded::ProceduralStatements_data()
{
    QTest::addColumn<QString>("batch");
    QTest::addColumn<QString>("rows");
    const char *const rows[][3] = {
        {"while",
         "declare @i int, @s varchar(20) = '' set @i = 0 while @i < 10 begin set @i = @i + 1 if @i = 3 continue if @i "
         "> 5 break "
         "set @s = @s + cast(@i as varchar(2)) end select @s as s",
         "1245"},
        {"if else chain",
         "if 1 = 2 select 1 as x else if exists (select * from Banks) select 2 as x else select 3 as x", "2"},
        {"null condition", "declare @n int if @n = 1 select 1 as x else select 2 as x", "2"},
        {"select assigns the last row",
         "declare @c varchar(10), @i int select @c = cCode, @i = idBank from Banks order by idBank select "
         "@c as c, @i as i",
         "CBA|3"},
        {"select without rows leaves the variable",
         "declare @c varchar(10) = 'x' select @c = cCode from Banks where idBank = 99 select @c as c", "x"},
        {"assignments in order", "declare @a int, @b int select @a = 1, @b = @a + 1 select @b as b", "2"},
        {"variable's type",
         "declare @c varchar(3), @d datetime, @i int, @b bit select @c = 'abcdef', @d = '20200101', @i = '7', @b = 5 "
         "select "
         "@c as c, @d + 1 as d, @i / 2 as i, @b as b",
         "abc|2020-01-02|3|true"},
        {"rowcount", "update Banks set iSmall = 1 where idBank < 3 select @@rowcount as n", "2"},
        {"rowcount of a select", "declare @x int select @x = idBank from Banks select @@rowcount as n", "3"},
        {"catch",
         "begin try insert Banks (cCode) values ('anz') end try begin catch select error_number() as n, "
         "left(error_message(), 13) as "
         "m end catch",
         "2601|Cannot insert"},
        {"catch keeps what came before",
         "begin try insert Banks (cCode) values ('new') insert Banks (cCode) values ('anz') end try begin "
         "catch select count(*) as n from Banks end catch",
         "4"},
        {"raiserror",
         "begin try raiserror('%s has %d of %d%%', 16, 1, 'x', 5, 10) end try begin catch select error_message() as m, "
         "error_number() as n end catch",
         "x has 5 of 10%|50000"},
        {"raiserror of information", "raiserror('only said', 10, 1) select 1 as x", "1"},
        {"throw", "begin try throw 51000, 'thrown', 1 end try begin catch select error_number() as n end catch",
         "51000"},
        {"rethrow",
         "begin try begin try select 1 / 0 as x end try begin catch; throw end catch end try begin catch select "
         "error_number() as n "
         "end catch",
         "8134"},
        {"return ends a batch", "select 1 as x return select 2 as x", "1"},
        {"temporary table",
         "create table #t (id int identity(1,1), c varchar(9)) insert #t (c) select cCode from Banks order by idBank "
         "desc "
         "update #t set c = c + '!' where id = 1 select id, c from #t where c > 'B' order by id drop table #t",
         "1|CBA!; 2|BNK"},
        {"table variable",
         "declare @t table (id int primary key, c varchar(9)) insert into @t select idBank, cCode from Banks delete @t "
         "where "
         "id = 1 select t.c from @t t inner join Banks b on b.idBank = t.id order by t.c",
         "BNK; CBA"},
        {"errors within errors",
         "declare @m varchar(20) begin try throw 50001, 'outer', 1 end try begin catch begin try throw 50002, 'inner', "
         "1 "
         "end try begin catch set @m = error_message() end catch select @m as a, error_message() as b end catch",
         "inner|outer"},
        {"cursor",
         "declare @s varchar(50), @c varchar(9) set @s = '' declare k cursor local fast_forward for select cCode from "
         "Banks order by "
         "cCode open k fetch next from k into @c while @@fetch_status = 0 begin set @s = @s + @c fetch next from k "
         "into @c end close k "
         "deallocate k select @s as s",
         "ANZBNKCBA"},
        {"scope identity", "insert Banks (cCode) values ('i1') select scope_identity() as a, @@identity as b", "4|4"},
        {"scope identity of the last table that has one",
         "insert Banks (cCode) values ('i1') insert Links values (1, 9, null) select scope_identity() as a", "4"},
        {"transaction count",
         "declare @a int begin tran begin transaction select @a = @@trancount commit commit select @a as a, "
         "@@trancount as b",
         "2|0"},
        {"rollback in a batch", "begin tran delete Links rollback select count(*) as n from Links", "3"},
        {"print is silent", "print 'x' + 'y' select 1 as x", "1"},
        {"function with a query", "select dbo.fnSum(count(*)) as n from Links", "6"},
    };
    for (const auto &row : rows)
        QTest::newRow(row[0]) << row[1] << row[2];
}

void TestEmbedded::ProceduralStatements()
{
    QFETCH(QString, batch);
    QFETCH(QString, rows);
    QCOMPARE(Show(batch), rows);
    QVERIFY(!engine_->InTransaction());
}

void TestEmbedded::RecursionEnds()
{
    engine_->RunScript("create procedure spLoop @n int as begin declare @t table (i int) insert @t values (@n) set @n "
                       "= @n + 1 exec spLoop @n "
                       "end\nGO\ncreate function fnFac (@n int) returns bigint as begin if @n < 2 return 1 return @n * "
                       "dbo.fnFac(@n - 1) end\n"
                       "GO\ncreate function fnSelf (@n int) returns int as begin return dbo.fnSelf(@n) end\n",
                       "recursion");
    QP_FAULT(engine_->Run("exec spLoop 1"), 217, Kind::Other);
    QCOMPARE(Show("select dbo.fnFac(10) as n"), "3628800");
    QP_FAULT(engine_->Run("select dbo.fnFac(100) as n"), 217, Kind::Other);
    QP_FAULT(engine_->Run("select dbo.fnSelf(1) as n"), 156, Kind::Refused);
    QCOMPARE(Show("select dbo.fnFac(5) + dbo.fnFac(4) as n"), "144");
}

void TestEmbedded::Transactions()
{
    engine_->RunScript("create procedure spTran @fail int as begin begin tran insert Banks (cCode) values ('T1') if "
                       "@fail = 1 raiserror("
                       "'failed', 16, 1) commit end\nGO\n",
                       "p");
    QVariantMap fails{{"fail", 1}};
    QVariantMap works{{"fail", 0}};
    QP_FAULT(engine_->Call("spTran", fails), 50000, Kind::Raised); // its own transaction goes with it
    QVERIFY(!engine_->InTransaction());
    QCOMPARE(Show("select count(*) as n from Banks"), "3");

    engine_->Begin();
    QVERIFY(engine_->InTransaction());
    QP_FAULT(engine_->Begin(), 3988, Kind::Other);
    QCOMPARE(engine_->Call("spTran", works), 0); // joins the caller's
    QVERIFY(engine_->InTransaction());
    QCOMPARE(Show("select @@trancount as n"), "1");
    QP_FAULT(engine_->Run("insert Banks (cCode) values ('T1')"), 2601, Kind::Duplicate);
    QVERIFY(engine_->InTransaction()); // a failed statement takes only itself back
    engine_->Rollback();
    QCOMPARE(Show("select count(*) as n from Banks"), "3");
    engine_->Rollback(); // none is open: nothing happens

    engine_->Begin();
    engine_->Run("insert Banks (cCode) values ('T2')");
    engine_->Commit();
    QCOMPARE(Show("select count(*) as n from Banks where cCode = 't2'"), "1");

    // several rows are one statement
    QP_FAULT(engine_->Run("insert Banks (cCode) values ('T3'), ('T2')"), 2601, Kind::Duplicate);
    QCOMPARE(Show("select count(*) as n from Banks where cCode = 'T3'"), "0");
}

// A cached statement must not outlive what it was made for: types of parameters, definitions, LIKE's classes.
void TestEmbedded::StatementCache()
{
    const QString sum = "select :a + :b as x";
    QCOMPARE(Show(sum, {{"a", 1}, {"b", 2}}), "3");
    QCOMPARE(Show(sum, {{"a", "1"}, {"b", "2"}}), "12");
    QCOMPARE(Show(sum, {{"a", QDate(2020, 1, 1)}, {"b", 2}}), "2020-01-03");
    const QString like = "select count(*) as n from Banks where cCode like :p";
    QCOMPARE(Show(like, {{"p", "A%"}}), "1");
    QCOMPARE(Show(like, {{"p", "[ab]%"}}), "2");
    QCOMPARE(Show(like, {{"p", "%"}}), "3");
    QCOMPARE(Show("select * from States where idState = 1"), "1|NSW");
    engine_->Run("alter table States add cMore varchar(3) default 'm'");
    QCOMPARE(Show("select * from States where idState = 1"), "1|NSW|m");
    engine_->RunScript(
        "drop function fnTwice\nGO\ncreate function fnTwice (@n int) returns int as begin return @n * 3 end", "f");
    QCOMPARE(Show("select dbo.fnTwice(2) as n"), "6");

    auto small = Engine::Open(dir_->filePath("test.db"), {1000, 3});
    for (int i = 0; i < 20; ++i)
        QCOMPARE(Shown(small->Run(QStringLiteral("select %1 + :a as x").arg(i), {{"a", 1}}).rows),
                 QString::number(i + 1));
    small->ClearTranslations();
    QCOMPARE(Shown(small->Run("select 5 as x").rows), "5");
}

void TestEmbedded::ScriptErrorsNameTheirLine()
{
    try {
        engine_->RunScript("select 1 as x\ngo\n\ncreate table A (i int)\n GO \ninsert A values (1)\n\ninsert A valus "
                           "(2)\nGO\ndrop table A\n",
                           "make.sql");
        QFAIL("no error");
    } catch (const Error &error) {
        QCOMPARE(error.text, "make.sql: Incorrect syntax near 'valus' (line 8, column 10).");
        QCOMPARE(error.line, 8);
    }
    QCOMPARE(Show("select count(*) as n from A"),
             "0"); // the batch before the error stands, the one with it did not begin
}

QTEST_GUILESS_MAIN(TestEmbedded)
#include "t_embedded.moc"
