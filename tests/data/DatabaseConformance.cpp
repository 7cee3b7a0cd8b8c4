// SPDX-License-Identifier: Apache-2.0
#include "tests/data/DatabaseConformance.h"

#include <QDateTime>

using Kind = TDbError::Kind;

namespace {

constexpr auto kSchema = R"(
create table dbo.qptKinds (
    idKind int identity(1, 1) not null constraint PK_qptKinds primary key,
    iInt int null,
    iSmall smallint null,
    bBit bit null,
    fFloat float null,
    mMoney money null,
    cText varchar(60) null,
    cLong varchar(max) null,
    dDate datetime null
)
GO
create table dbo.qptBanks (
    idBank int identity(1, 1) not null constraint PK_qptBanks primary key,
    cCode varchar(10) not null constraint UQ_qptBanks_Code unique,
    cDescription varchar(50) not null,
    dStart datetime null,
    iState int not null constraint DF_qptBanks_State default 3
)
GO
create table dbo.qptBranches (
    idBranch int not null constraint PK_qptBranches primary key,
    iBankID int not null constraint FK_qptBranches_Bank references dbo.qptBanks (idBank),
    cName varchar(20) not null,
    iDesks int not null constraint CK_qptBranches_Desks check (iDesks >= 0)
)
GO
create view dbo.qptvBanks as
select b.idBank, b.cCode + ' - ' + b.cDescription as cFull, r.cName
from dbo.qptBanks b left outer join dbo.qptBranches r on r.iBankID = b.idBank
GO
create function dbo.qptfBanks (@AsAt datetime, @State int) returns table as
return (select idBank, cCode from dbo.qptBanks where ISNULL(dStart, 0) <= @AsAt and (@State = 0 or iState = @State))
GO
create function dbo.qptfTwice (@Number int) returns int as
begin
    return @Number * 2
end
GO
create procedure dbo.qptpKinds
    @In int, @Count int output, @Text varchar(200) output, @Day datetime output, @Rate float output, @Flag bit output
as
begin
    set @Count = @Count + @In
    set @Text = @Text + '!'
    set @Day = dateadd(day, 1, @Day)
    set @Rate = @Rate / 4
    if @Flag = 1 set @Flag = 0 else set @Flag = 1
    return @In * 2
end
GO
create procedure dbo.qptpAddBank @Code varchar(10), @Description varchar(50), @BankID int output as
begin
    insert dbo.qptBanks (cCode, cDescription) values (@Code, @Description)
    set @BankID = scope_identity()
    return 0
end
GO
create procedure dbo.qptpDeleteBank @BankID int as
begin
    if exists (select idBranch from dbo.qptBranches where iBankID = @BankID)
    begin
        raiserror('The bank is in use.', 16, 1)
        return -1
    end
    delete dbo.qptBanks where idBank = @BankID
    return @@rowcount
end
GO
)";

const QDateTime kMidnight(QDate(2009, 9, 9), QTime(0, 0));

} // namespace

void TDatabaseConformance::initTestCase()
{
    db_ = connect_();
    DropAll();
    db_->RunScript(QString::fromLatin1(kSchema), QStringLiteral("conformance"));
}

void TDatabaseConformance::init()
{
    db_->Execute("delete from dbo.qptBranches");
    db_->Execute("delete from dbo.qptBanks");
    db_->Execute("delete from dbo.qptKinds");
}

void TDatabaseConformance::cleanup()
{
    db_->Rollback();
}

void TDatabaseConformance::cleanupTestCase()
{
    DropAll();
    db_.reset();
}

void TDatabaseConformance::DropAll()
{
    for (const char *object : {"procedure dbo.qptpDeleteBank", "procedure dbo.qptpAddBank", "procedure dbo.qptpKinds",
                               "function dbo.qptfTwice", "function dbo.qptfBanks", "view dbo.qptvBanks",
                               "table dbo.qptBranches", "table dbo.qptBanks", "table dbo.qptKinds"}) {
        try {
            db_->Execute(QStringLiteral("drop ") + QLatin1String(object));
        } catch (const TDbError &) { // the first time there is nothing
        }
    }
}

int TDatabaseConformance::Count(const QString &table) const
{
    return db_->Select("select count(*) as n from " + table).Value(0, u"n").toInt();
}

void TDatabaseConformance::values_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<QVariant>("got");
    const auto row = [](const char *name, const char *column, const QVariant &given, const QVariant &got) {
        QTest::newRow(name) << QString(column) << given << got;
    };
    const auto same = [&](const char *name, const char *column, const QVariant &value) {
        row(name, column, value, value);
    };
    const QDateTime noon(QDate(2009, 9, 9), QTime(12, 34, 56));
    const QString tenThousand = QString("ab'c; -- \"").repeated(1024);

    same("int lowest", "iInt", -2147483647 - 1);
    same("int highest", "iInt", 2147483647);
    same("smallint lowest", "iSmall", -32768);
    same("bit on", "bBit", true);
    same("bit off", "bBit", false);
    same("float tenth", "fFloat", 0.1);
    same("float third", "fFloat", -1.0 / 3);
    same("float large", "fFloat", 1e300);
    row("float from an int", "fFloat", 3, 3.0);
    same("money", "mMoney", 1234.5678);
    same("money negative", "mMoney", -0.05);
    same("text", "cText", QString("Bank of Melbourne"));
    same("text empty", "cText", QString(""));
    row("text null QString", "cText", QString(), QString(""));
    same("text at its limit", "cText", QString(60, 'x'));
    same("text with leading blanks", "cText", QString("  ab"));
    same("text that looks like a number", "cText", QString("012-345"));
    same("text that looks like NULL", "cText", QString("null"));
    same("text with line ends", "cText", QString("a\r\nb\tc\n"));
    same("text of 10 kB", "cLong", tenThousand);
    same("datetime", "dDate", noon);
    same("datetime first", "dDate", QDateTime(QDate(1900, 1, 1), QTime(0, 0)));
    same("datetime far", "dDate", QDateTime(QDate(9999, 12, 31), QTime(0, 0)));
    row("date", "dDate", noon.date(), kMidnight);
    row("date invalid", "dDate", QDate(), {});
    for (const char *column : {"iInt", "iSmall", "bBit", "fFloat", "mMoney", "cText", "cLong", "dDate"})
        row((QByteArray("NULL for ") + column).constData(), column, {}, {});
    row("NULL int", "iInt", QVariant(QMetaType::fromType<int>()), {});
    row("NULL bit", "bBit", QVariant(QMetaType::fromType<bool>()), {});
    row("NULL float", "fFloat", QVariant(QMetaType::fromType<double>()), {});
    row("NULL text", "cText", QVariant(QMetaType::fromType<QString>()), {});
    row("NULL datetime", "dDate", QVariant(QMetaType::fromType<QDateTime>()), {});
}

void TDatabaseConformance::values()
{
    QFETCH(QString, column);
    QFETCH(QVariant, given);
    QFETCH(QVariant, got);
    db_->Execute("insert dbo.qptKinds (" + column + ") values (:v)", {{"v", given}});
    db_->Execute("insert dbo.qptKinds (iInt) values (7)");
    db_->Execute("update dbo.qptKinds set " + column + " = :v where iInt = 7", {{"v", given}});
    const TDbRows rows = db_->Select("select " + column + " from dbo.qptKinds order by idKind");
    QCOMPARE(rows.size(), 2);
    for (int i = 0; i < rows.size(); ++i) {
        const QVariant value = rows.Value(i, column);
        QCOMPARE(value.metaType(), got.metaType());
        QCOMPARE(value, got);
    }
    QCOMPARE(db_->Select("select idKind from dbo.qptKinds where " + column + " is null").size(), got.isValid() ? 0 : 2);
}

void TDatabaseConformance::textsAreFoundAgain_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"O'Brien",
                             "'",
                             "''",
                             "\"",
                             "a\"b",
                             ";",
                             "'; drop table dbo.qptKinds; --",
                             "-- x",
                             "/* x",
                             "*/",
                             ":name",
                             "?",
                             "@x",
                             "100%",
                             "a_b",
                             "[a]",
                             "]",
                             "\\",
                             "a\\'b",
                             "Zo\xc3\xab & \xc3\x9c\xc3\xb1",
                             "caf\xc3\xa9 \xc2\xa3",
                             "{d '2009-09-09'}",
                             "1=1 or 'a'='a'"})
        QTest::newRow(text) << QString::fromUtf8(text);
}

void TDatabaseConformance::textsAreFoundAgain()
{
    QFETCH(QString, text);
    db_->Execute("insert dbo.qptKinds (cText, iInt) values (:t, 1)", {{"t", text}});
    db_->Execute("insert dbo.qptKinds (cText, iInt) values (" + QuotedSQL(text) + ", 2)");
    db_->Execute("insert dbo.qptKinds (cText, iInt) values ('other', 3)");
    const QList<QVariantList> both{{1, text}, {2, text}};
    QCOMPARE(db_->Select("select iInt, cText from dbo.qptKinds where cText = :t order by iInt", {{"t", text}}).rows,
             both);
    QCOMPARE(
        db_->Select("select iInt, cText from dbo.qptKinds where cText = " + QuotedSQL(text) + " order by iInt").rows,
        both);
    QCOMPARE(
        db_->Select("select iInt, cText from dbo.qptKinds where charindex(:t, cText) > 0 order by iInt", {{"t", text}})
            .rows,
        both);
}

void TDatabaseConformance::columnsOfResults()
{
    const TDbRows none = db_->Select("select idKind, cText as cOther from dbo.qptKinds order by idKind");
    QVERIFY(none.isEmpty());
    QCOMPARE(none.columns, QStringList({"idKind", "cOther"}));
    QCOMPARE(Thrown([&] { db_->Select("delete from dbo.qptKinds"); }).kind, Kind::Statement);
}

void TDatabaseConformance::namedValues()
{
    db_->Execute("insert dbo.qptKinds (iInt, iSmall, cText) values (:a, :a, :b)", {{"a", 5}, {"b", ":a"}});
    const TDbRows rows = db_->Select(
        "select iInt, iSmall, cText from dbo.qptKinds where iInt = :a and cText = ':a' /* :c */ -- :d", {{"a", 5}});
    QCOMPARE(rows.rows, QList<QVariantList>({{5, 5, ":a"}}));
    QCOMPARE(Thrown([&] { db_->Select("select iInt from dbo.qptKinds where iInt = :a"); }).kind, Kind::Statement);
    QCOMPARE(Thrown([&] { db_->Execute("delete from dbo.qptKinds", {{"a", 1}}); }).kind, Kind::Statement);
    QCOMPARE(Count("dbo.qptKinds"), 1);
}

void TDatabaseConformance::identity()
{
    const QString insert = "insert dbo.qptBanks (cCode, cDescription) values (:c, 'x')";
    const int first = db_->Insert(insert, {{"c", "a"}});
    QVERIFY(first > 0);
    QCOMPARE(db_->Insert(insert, {{"c", "b"}}), first + 1);
    QCOMPARE(db_->Select("select idBank, iState from dbo.qptBanks where cCode = 'b'").rows,
             QList<QVariantList>({{first + 1, 3}}));
    QCOMPARE(db_->Insert("insert dbo.qptBranches (idBranch, iBankID, cName, iDesks) values (:id, :bank, 'Main', 0)",
                         {{"id", 77}, {"bank", first}}),
             0);
    // A key is never given twice, whatever became of its row.
    db_->Execute("delete from dbo.qptBanks where cCode = 'b'");
    QCOMPARE(db_->Insert(insert, {{"c", "c"}}), first + 2);
}

void TDatabaseConformance::counts()
{
    for (int i = 0; i < 3; ++i)
        QCOMPARE(db_->Execute("insert dbo.qptKinds (iInt) values (:i)", {{"i", i}}), 1);
    QCOMPARE(db_->Execute("update dbo.qptKinds set iSmall = 1 where iInt > :i", {{"i", 0}}), 2);
    QCOMPARE(db_->Execute("update dbo.qptKinds set iSmall = 1"), 3); // matched counts, not changed
    QCOMPARE(db_->Execute("update dbo.qptKinds set iSmall = 1 where iInt = 99"), 0);
    QCOMPARE(db_->Execute("insert dbo.qptKinds (iInt) select iInt + 10 from dbo.qptKinds where iInt < :i;", {{"i", 2}}),
             2);
    QCOMPARE(db_->Execute("delete dbo.qptKinds where iInt >= 10 -- two"), 2);
    QCOMPARE(db_->Execute("delete from dbo.qptKinds"), 3);
}

void TDatabaseConformance::expressions_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *expression, const QVariant &value) {
        QTest::newRow(expression) << QString(expression) << value;
    };
    row("cCode + ' - ' + cDescription", "NAB - National's");
    row("left(cDescription, 3)", "Nat");
    row("right(cDescription, 2)", "'s");
    row("substring(cDescription, 2, 3)", "ati");
    row("len('ab  ')", 2);
    row("len('')", 0);
    row("upper(cDescription)", "NATIONAL'S");
    row("rtrim(ltrim('  a b  '))", "a b");
    row("replace(cCode, 'A', '')", "NB");
    row("charindex('ion', cDescription)", 4);
    row("isnull(dStart, 0)", QDateTime(QDate(2009, 9, 9), QTime(0, 0)));
    row("isnull(null, 'x')", "x");
    row("coalesce(null, 2)", 2);
    row("'it''s'", "it's");
    row("7 / 2", 3);
    row("7 / 2.0", 3.5);
    row("-7 % 3", -1);
    row("cast(iState as varchar(10)) + '!'", "3!");
    row("cast('12' as int) + 1", 13);
    row("case when iState = 3 then 'three' else 'other' end", "three");
    row("year(dStart) * 100 + month(dStart)", 200909);
    row("dateadd(day, 1, dStart)", QDateTime(QDate(2009, 9, 10), QTime(0, 0)));
    row("dateadd(month, 6, '2009-08-31')", QDateTime(QDate(2010, 2, 28), QTime(0, 0)));
    row("datediff(day, '2009-09-01', dStart)", 8);
    row("abs(-5)", 5);
    row("round(2.345, 2)", 2.35);
    row("dbo.qptfTwice(iState)", 6);
}

void TDatabaseConformance::expressions()
{
    QFETCH(QString, expression);
    db_->Execute("insert dbo.qptBanks (cCode, cDescription, dStart) values ('NAB', 'National''s', '2009-09-09')");
    const TDbRows rows = db_->Select("select " + expression + " as x from dbo.qptBanks");
    QCOMPARE(rows.size(), 1);
    QTEST(rows.Value(0, u"x"), "value");
}

void TDatabaseConformance::queries_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("codes"); // of the rows, in order
    const auto row = [](const char *sql, const char *codes) { QTest::newRow(sql) << QString(sql) << QString(codes); };
    row("select cCode from qptBanks order by cCode", "ANZ NAB WBC");
    row("select top 1 cCode from dbo.qptBanks order by cCode desc", "WBC");
    row("select top 2 cCode from [dbo].[qptBanks] order by iState, cCode", "NAB WBC");
    row("select cCode from dbo.qptBanks where ISNULL(dStart, 0) < 5", "ANZ");
    row("select cCode from dbo.qptBanks where ISNULL(dStart, 0) > 5 order by cCode", "NAB WBC");
    row("select cCode from dbo.qptBanks where dStart >= '2009-09-09'", "NAB");
    row("select cCode from dbo.qptBanks where dStart < '20090909'", "WBC");
    row("select cCode from dbo.qptBanks where dStart = '2009-09-08 23:59:00'", "WBC");
    row("select cCode from dbo.qptBanks where dStart between '2009-09-01' and '2009-09-30' order by cCode", "NAB WBC");
    row("select cCode from dbo.qptBanks where cCode = 'nab '", "NAB");
    row("select cCode from dbo.qptBanks where cDescription like 'n%'", "NAB");
    row("select cCode from dbo.qptBanks where cDescription like '%[_]a'", "WBC");
    row("select cCode from dbo.qptBanks where cCode in ('wbc', 'x')", "WBC");
    row("select cCode from dbo.qptBanks where not (cCode = 'NAB' or iState <> 2)", "WBC");
    row("select cCode from dbo.qptBanks b where exists (select idBranch from dbo.qptBranches where iBankID = b.idBank)",
        "NAB");
    row("select b.cCode from dbo.qptBanks b inner join dbo.qptBranches r on r.iBankID = b.idBank where r.cName = "
        "'MAIN'",
        "NAB");
    row("select cFull from dbo.qptvBanks where cName is null order by cFull", "ANZ - ANZ Bank|WBC - Westpac_a");
    row("select cCode from [dbo].[qptfBanks]('2009-09-09', 0) order by cCode", "ANZ NAB WBC");
    row("select cCode from [dbo].[qptfBanks]('2009-09-08', 0) order by cCode", "ANZ");
    row("select f.cCode from dbo.qptfBanks('2009-09-09', 2) f order by f.cCode", "NAB WBC");
    row("select max(cCode) as c from dbo.qptBanks group by iState having count(*) > 1", "WBC");
    row("select cCode from dbo.qptBanks where iState = 5 union select cName from dbo.qptBranches order by 1",
        "ANZ Main");
    row("select distinct cast(iState as varchar(5)) as c from dbo.qptBanks order by c", "2 5");
}

void TDatabaseConformance::queries()
{
    QFETCH(QString, sql);
    db_->Execute(
        "insert dbo.qptBanks (cCode, cDescription, dStart, iState) values ('NAB', 'National', '2009-09-09', 2)");
    db_->Execute("insert dbo.qptBanks (cCode, cDescription, dStart, iState) values ('ANZ', 'ANZ Bank', null, 5)");
    db_->Execute("insert dbo.qptBanks (cCode, cDescription, dStart, iState) "
                 "values ('WBC', 'Westpac_a', '2009-09-08 23:59:00', 2)");
    db_->Execute("insert dbo.qptBranches (idBranch, iBankID, cName, iDesks) "
                 "select 1, idBank, 'Main', 4 from dbo.qptBanks where cCode = 'NAB'");
    QStringList found;
    const TDbRows rows = db_->Select(sql);
    for (int i = 0; i < rows.size(); ++i)
        found.append(rows.rows[i].constFirst().toString());
    QFETCH(QString, codes);
    QCOMPARE(found, codes.split(codes.contains('|') ? '|' : ' '));
}

void TDatabaseConformance::statements()
{
    // Several statements in one go, with a decision in between.
    db_->Execute("if exists (select idBank from dbo.qptBanks where cCode = :c) "
                 "begin update dbo.qptBanks set cDescription = 'again' where cCode = :c end "
                 "else begin insert dbo.qptBanks (cCode, cDescription) values (:c, 'new') end",
                 {{"c", "NAB"}});
    QCOMPARE(db_->Select("select cDescription from dbo.qptBanks").Value(0, u"cDescription").toString(), "new");
    db_->Execute("update b set cDescription = r.cName from dbo.qptBanks b "
                 "inner join dbo.qptBranches r on r.iBankID = b.idBank");
    QCOMPARE(db_->Select("select cDescription from dbo.qptBanks").Value(0, u"cDescription").toString(), "new");
}

void TDatabaseConformance::errors_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<Kind>("kind");
    const auto row = [](const char *name, const char *sql, Kind kind) { QTest::newRow(name) << QString(sql) << kind; };
    row("duplicate", "insert dbo.qptBanks (cCode, cDescription) values ('NAB', 'x')", Kind::Duplicate);
    row("duplicate but for case and blanks", "insert dbo.qptBanks (cCode, cDescription) values ('nab ', 'x')",
        Kind::Duplicate);
    row("duplicate key",
        "insert dbo.qptBranches (idBranch, iBankID, cName, iDesks) select 1, idBank, 'x', 1 from dbo.qptBanks",
        Kind::Duplicate);
    row("duplicate by update", "update dbo.qptBanks set cCode = 'NAB' where cCode = 'ANZ'", Kind::Duplicate);
    row("too long", "insert dbo.qptBanks (cCode, cDescription) values ('12345678901', 'x')", Kind::TooLong);
    row("too long by update", "update dbo.qptBanks set cCode = '12345678901' where cCode = 'ANZ'", Kind::TooLong);
    row("NULL", "insert dbo.qptBanks (cCode, cDescription) values ('x', null)", Kind::NullValue);
    row("NULL by leaving out", "insert dbo.qptBanks (cCode) values ('x')", Kind::NullValue);
    row("no such parent", "insert dbo.qptBranches (idBranch, iBankID, cName, iDesks) values (2, -1, 'x', 1)",
        Kind::Referenced);
    row("parent in use", "delete dbo.qptBanks where cCode = 'NAB'", Kind::Referenced);
    row("check constraint", "update dbo.qptBranches set iDesks = -1", Kind::Check);
    row("text into a number", "update dbo.qptBranches set iDesks = 'many'", Kind::Check);
    row("no such table", "update dbo.qptNowhere set x = 1", Kind::Statement);
    row("no such column", "update dbo.qptBanks set cNothing = 1", Kind::Statement);
    row("no such function", "update dbo.qptBanks set cDescription = dbo.qptfNone(1)", Kind::Statement);
    row("syntax", "update dbo.qptBanks cCode = 1", Kind::Statement);
    row("string without end", "update dbo.qptBanks set cCode = 'x", Kind::Statement);
}

void TDatabaseConformance::errors()
{
    const int bank = db_->Insert("insert dbo.qptBanks (cCode, cDescription) values (:c, 'National')", {{"c", "NAB"}});
    db_->Execute("insert dbo.qptBanks (cCode, cDescription) values ('ANZ', 'ANZ Bank')");
    db_->Execute("insert dbo.qptBranches (idBranch, iBankID, cName, iDesks) values (1, :b, 'Main', 4)", {{"b", bank}});
    const auto all = [&] {
        return db_
            ->Select("select cCode, cDescription, cName, iDesks from dbo.qptBanks "
                     "left outer join dbo.qptBranches on iBankID = idBank order by cCode")
            .rows;
    };
    const auto before = all();

    QFETCH(QString, sql);
    const TThrown thrown = Thrown([&] { db_->Execute(sql); });
    QVERIFY2(!thrown.message.isEmpty(), "an error without words");
    QTEST(thrown.kind, "kind");
    QCOMPARE(all(), before);
}

void TDatabaseConformance::commitAndRollback()
{
    const auto other = connect_();
    const auto insert = [&](int i) { db_->Execute("insert dbo.qptKinds (iInt) values (:i)", {{"i", i}}); };
    {
        TDbTransaction transaction(*db_);
        QVERIFY(db_->InTransaction());
        insert(1);
        insert(2);
        transaction.Commit();
        QVERIFY(!db_->InTransaction());
    }
    QCOMPARE(other->Select("select iInt from dbo.qptKinds order by iInt").rows, QList<QVariantList>({{1}, {2}}));
    {
        TDbTransaction transaction(*db_);
        insert(3);
        QCOMPARE(Count("dbo.qptKinds"), 3); // one's own writes are seen
    }
    QVERIFY(!db_->InTransaction());
    QCOMPARE(other->Select("select iInt from dbo.qptKinds order by iInt").rows, QList<QVariantList>({{1}, {2}}));
    db_->Begin();
    db_->Execute("delete from dbo.qptKinds");
    db_->Rollback();
    db_->Rollback(); // with none open it does nothing
    QCOMPARE(Count("dbo.qptKinds"), 2);
}

void TDatabaseConformance::transactionsDoNotNest()
{
    TDbTransaction transaction(*db_);
    db_->Execute("insert dbo.qptKinds (iInt) values (1)");
    QVERIFY(Thrown([&] { TDbTransaction inner(*db_); }).message != TThrown().message);
    QVERIFY(db_->InTransaction());
    transaction.Commit();
    QCOMPARE(Count("dbo.qptKinds"), 1);
    QVERIFY(Thrown([&] { db_->Commit(); }).message != TThrown().message);
}

void TDatabaseConformance::errorInsideTransaction()
{
    {
        TDbTransaction transaction(*db_);
        db_->Execute("insert dbo.qptBanks (cCode, cDescription) values ('a', 'x')");
        QCOMPARE(Thrown([&] { db_->Execute("insert dbo.qptBanks (cCode, cDescription) values ('a', 'y')"); }).kind,
                 Kind::Duplicate);
    }
    QCOMPARE(Count("dbo.qptBanks"), 0);
    db_->Execute("insert dbo.qptBanks (cCode, cDescription) values ('a', 'z')");
    QCOMPARE(Count("dbo.qptBanks"), 1);
}

void TDatabaseConformance::procedureArguments()
{
    const TDbCallResult result = db_->Call("dbo.qptpKinds", {{"In", 21},
                                                             {"Count", 1, true},
                                                             {"Text", "O'Brien; -- \"x\"", true},
                                                             {"Day", QDate(2009, 12, 31), true},
                                                             {"Rate", 1.5, true},
                                                             {"Flag", false, true}});
    QCOMPARE(result.returnValue, 42);
    const QVariantMap expected{{"Count", 22},
                               {"Text", "O'Brien; -- \"x\"!"},
                               {"Day", QDateTime(QDate(2010, 1, 1), QTime(0, 0))},
                               {"Rate", 0.375},
                               {"Flag", true}};
    QCOMPARE(result.outputs, expected);
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        QCOMPARE(result.outputs[it.key()].metaType(), it->metaType());
}

void TDatabaseConformance::procedureNulls()
{
    const TDbCallResult result = db_->Call("qptpKinds", {{"In", -4},
                                                         {"Count", QVariant(QMetaType::fromType<int>()), true},
                                                         {"Text", QVariant(QMetaType::fromType<QString>()), true},
                                                         {"Day", QVariant(QMetaType::fromType<QDateTime>()), true},
                                                         {"Rate", QVariant(QMetaType::fromType<double>()), true},
                                                         {"Flag", QVariant(QMetaType::fromType<bool>()), true}});
    QCOMPARE(result.returnValue, -8);
    QCOMPARE(result.outputs, QVariantMap({{"Count", {}}, {"Text", {}}, {"Day", {}}, {"Rate", {}}, {"Flag", true}}));
}

void TDatabaseConformance::procedureThatWrites()
{
    const TDbCallResult added = db_->Call(
        "qptpAddBank",
        {{"Code", "NAB"}, {"Description", "O'Brien"}, {"BankID", QVariant(QMetaType::fromType<int>()), true}});
    const int id = added.outputs["BankID"].toInt();
    QCOMPARE(db_->Select("select idBank, cDescription from dbo.qptBanks").rows, QList<QVariantList>({{id, "O'Brien"}}));
    QCOMPARE(db_->Call("[dbo].[qptpDeleteBank]", {{"BankID", id}}).returnValue, 1);
    QCOMPARE(Count("dbo.qptBanks"), 0);
    QCOMPARE(db_->Call("qptpDeleteBank", {{"BankID", id}}).returnValue, 0);
    {
        TDbTransaction transaction(*db_);
        db_->Call("qptpAddBank", {{"Code", "ANZ"}, {"Description", "x"}, {"BankID", 0, true}});
    }
    QCOMPARE(Count("dbo.qptBanks"), 0);
}

void TDatabaseConformance::procedureErrors_data()
{
    QTest::addColumn<QString>("procedure");
    QTest::addColumn<QVariantMap>("arguments");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("message"); // in it
    QTest::newRow("raised") << "qptpDeleteBank" << QVariantMap{{"BankID", 0}} << Kind::Raised << "The bank is in use.";
    QTest::newRow("no such procedure") << "qptpNone" << QVariantMap{{"BankID", 0}} << Kind::Statement << "qptpNone";
    QTest::newRow("no such parameter") << "qptpDeleteBank" << QVariantMap{{"BankID", 0}, {"Other", 1}}
                                       << Kind::Statement << "";
    QTest::newRow("parameter left out") << "qptpDeleteBank" << QVariantMap() << Kind::Statement << "BankID";
    QTest::newRow("no name") << "qptpDeleteBank; delete qptBanks" << QVariantMap() << Kind::Statement << "";
    QTest::newRow("duplicate inside") << "qptpAddBank"
                                      << QVariantMap{{"Code", "NAB"}, {"Description", "x"}, {"BankID", 0}}
                                      << Kind::Duplicate << "";
    QTest::newRow("NULL inside") << "qptpAddBank"
                                 << QVariantMap{{"Code", "ANZ"}, {"Description", QVariant()}, {"BankID", 0}}
                                 << Kind::NullValue << "";
}

void TDatabaseConformance::procedureErrors()
{
    const int bank = db_->Insert("insert dbo.qptBanks (cCode, cDescription) values (:c, 'National')", {{"c", "NAB"}});
    db_->Execute("insert dbo.qptBranches (idBranch, iBankID, cName, iDesks) values (1, :b, 'Main', 4)", {{"b", bank}});
    QFETCH(QVariantMap, arguments);
    QList<TDbArgument> list;
    for (auto it = arguments.cbegin(); it != arguments.cend(); ++it)
        list.append({it.key(), it.key() == "BankID" && *it == 0 ? QVariant(bank) : *it});
    QFETCH(QString, procedure);
    const TThrown thrown = Thrown([&] { db_->Call(procedure, list); });
    QTEST(thrown.kind, "kind");
    QFETCH(QString, message);
    QVERIFY2(thrown.message.contains(message), qUtf8Printable(thrown.message));
    QCOMPARE(Count("dbo.qptBanks"), 1);
}

void TDatabaseConformance::scripts()
{
    db_->RunScript("insert dbo.qptKinds (iInt) values (1)\r\nGO\r\n\r\n  go  \r\n-- a comment alone\r\nGo\r\n"
                   "insert dbo.qptKinds (cText) values ('x\r\nGO\r\ny')\r\ninsert dbo.qptKinds (iInt) values (3)",
                   "good.sql");
    QCOMPARE(Count("dbo.qptKinds"), 3);
    QCOMPARE(Count("dbo.qptKinds where cText = 'x\r\nGO\r\ny'"), 1);

    const TThrown thrown = Thrown([&] {
        TDbTransaction transaction(*db_);
        db_->RunScript("delete from dbo.qptKinds\nGO\ninsert dbo.qptNowhere (x) values (1)\nGO\n", "bad.sql");
        transaction.Commit();
    });
    QCOMPARE(thrown.kind, Kind::Statement);
    QVERIFY2(thrown.message.contains("bad.sql") && thrown.message.contains("qptNowhere"),
             qUtf8Printable(thrown.message));
    QCOMPARE(Count("dbo.qptKinds"), 3);
}
