// SPDX-License-Identifier: Apache-2.0
// Feeds mutated statements to the engine. It must neither crash nor hang nor let SQLite see text that SQLite cannot
// parse: whatever the translator accepts is prepared, and an SQLite error other than those the engine knows is a fault.
// Built with clang -fsanitize=fuzzer -DQP_LIBFUZZER, the same file is a libFuzzer target.
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstdio>

#include <unistd.h>

#include "embedded/Engine.h"

using embedded::Engine;
using embedded::Error;

namespace {

const char *const kSchema = R"(
create table dbo.Banks (idBank int identity(1,1) not null constraint PK_Banks primary key, cCode varchar(10) not null,
    cName nvarchar(max) null, cBSB varchar(10), bActive bit not null default 1, dFrom datetime null default getdate(),
    fRate money, fHours float, iState smallint)
GO
create table dbo.States (idState int not null primary key, cState char(3) not null, unique (cState))
GO
create index IX_BSB on Banks (cBSB, idBank)
GO
create view dbo.vBanks as select B.*, S.cState, B.cCode + ' - ' + isnull(B.cName, '') as cFull
from Banks B left outer join States S on S.idState = B.iState
GO
create function dbo.fnFrom (@d datetime, @all int) returns table as
return (select idBank, cCode, dFrom from Banks where @all = 1 or isnull(dFrom, 0) < @d)
GO
create function dbo.fnTwice (@x int) returns int as begin return @x * 2 end
GO
create function dbo.fnSum (@n int) returns int as
begin declare @s int set @s = 0 while @n > 0 begin set @s = @s + @n set @n = @n - 1 end return @s end
GO
create procedure dbo.spAdd @code varchar(10), @id int output as
begin insert Banks (cCode) values (@code) set @id = scope_identity() return 0 end
GO
insert States (idState, cState) values (1, 'NSW'), (2, 'VIC')
GO
insert Banks (cCode, cBSB, iState) values ('ANZ', '012-003', 1)
GO
)";

const char *const kSeeds[] = {
    "select top 100 * from vBanks where cBSB >= :a and (cBSB > :a or idBank > :id) order by cBSB, idBank",
    "select distinct B.cCode, count(*) as n, max(S.cState) from Banks B, States S where B.iState = S.idState group by "
    "B.cCode "
    "having count(*) > 1 order by 2 desc, B.cCode",
    "select x = cCode + ' - ' + cName, y = case iState when 1 then 'a' when 2 then 'b' else null end from Banks",
    "select a.cCode from Banks a inner join (select idState, cState from States where idState in (1, 2)) b on "
    "b.idState = a.iState "
    "full outer join States c on c.idState = a.iState cross join States d",
    "select cCode from Banks union all select cState from States union select top 1 'x' from Banks order by 1",
    "select * from dbo.fnFrom('2009-09-09', 1) f where f.dFrom between '20090101' and dateadd(month, 1, getdate())",
    "select dbo.fnTwice(idBank) + dbo.fnSum(3), row_number() over (partition by iState order by cCode) as r from Banks",
    "select left(cCode, 2), right(cCode, 3), len(cName), substring(cCode, 2, :n), charindex('a', cCode, 2), "
    "replace(cCode, 'a', ''),"
    " str(fRate, 10, 2), round(fRate, -2), floor(fHours), ceiling(fHours), sign(fRate), abs(-1), "
    "ltrim(rtrim(upper(lower(cCode)))),"
    " replicate('%1', 2) + space(1) + char(65) from Banks",
    "select convert(varchar(10), dFrom, 103), cast(fRate as int), datediff(week, dFrom, getdate()), datepart(dw, "
    "dFrom), "
    "year(dFrom), nullif(iState, 0), coalesce(cName, cCode, ''), isnull(dFrom, 0), cast('2020-01-01' as datetime) + 1 "
    "from Banks",
    "select * from Banks where not (cCode like 'A[a-c]%' or cName like :p escape '!') and exists (select * from States "
    "where idState"
    " = iState) and idBank not in (select idState from States) and dFrom is not null and isnull(dFrom, 0) < 5",
    "insert dbo.Banks (cCode, cName, bActive, dFrom, fRate) values (:c, N'it''s', 1, '20200101', 12.5), ('b', null, 0, "
    ":d, -1)",
    "insert into [dbo].[States] select idBank + 10, left(cCode, 3) from Banks where idBank > (select min(idState) from "
    "States)",
    "update Banks set cName = cCode + 'x', fRate = fRate / 2 * (1 + 3 % 2), bActive = 0 where cCode = 'ANZ  '",
    "update B set cName = S.cState from Banks B inner join States S on S.idState = B.iState where S.cState <> 'VIC'",
    "delete B from Banks B left join States S on S.idState = B.iState where S.idState is null",
    "delete from Banks where dFrom < '2010-01-01T10:00:00'",
    "declare @x int, @s varchar(20) = 'a' set @x = 1 select @x = @x + idBank, @s = cCode from Banks where idBank = 1 "
    "if @x > 1 begin update Banks set cName = @s end else begin raiserror('no %s %d', 16, 1, @s, @x) end",
    "begin try begin tran exec spAdd @code = 'q', @id = 1 commit end try begin catch if @@trancount > 0 rollback; "
    "throw end catch",
    "create table #t (id int identity(1,1), c varchar(5) default 'x', check (id > 0)) insert #t (c) select cCode from "
    "Banks "
    "select * from #t drop table #t",
    "declare @t table (id int primary key, c varchar(10)) insert @t select idBank, cCode from Banks select count(*) as "
    "n from @t t",
    "declare c cursor local fast_forward for select idBank from Banks declare @i int open c fetch next from c into @i "
    "close c "
    "deallocate c",
    "create table T (id int identity(5,1) primary key, c varchar(10) not null unique, d decimal(10,2) default (0), i "
    "image, "
    "constraint FK_S foreign key (id) references States (idState) on delete cascade) alter table T add x smallint null",
    "create view v2 (a, b) as select top 5 idBank, cCode from Banks where dFrom > '20100101' order by cCode",
    "create procedure p2 @a int = 1, @b datetime = null output as if object_id('Banks', 'U') is not null return @a "
    "select @b = getdate()",
    "create function f2 (@a money) returns table as return select idBank, fRate * @a as f from Banks",
};

const char *const kWords[] = {
    "select",
    "from",
    "where",
    "(",
    ")",
    ",",
    "'",
    "[",
    "]",
    "\"",
    "--",
    "/*",
    "*/",
    ";",
    "||",
    "union",
    "all",
    "top 3",
    "order by",
    "group by",
    "null",
    "is null",
    "in (",
    "like",
    "case when 1=1 then 2 end",
    "cast(1 as varchar(3))",
    "@x",
    ":p",
    "@@rowcount",
    "'%2'",
    "%1",
    "limit 1",
    "pragma",
    "attach",
    "sqlite_master",
    "typeof(1)",
    "glob",
    "collate",
    "merge",
    "with",
    "exec",
    "0x12",
    "1e400",
    "99999999999999999999",
    "-9223372036854775808",
    "max(",
    "count(*)",
    "over (order by 1)",
    "not",
    "and",
    "or",
    "between",
    "exists (",
    "N'x'",
    "'%[a-'",
    "''",
    "*",
    "/ 0",
    "%",
    "&",
    "|",
    "~",
    "-",
    "+",
    "_rowid_",
    "rowid",
    "Banks",
    "vBanks",
    "B.",
    "dbo.",
    "cCode",
    "idBank",
    "dFrom",
    "fnFrom('2020-01-01', 1)",
    "dbo.fnTwice(1)",
    "dateadd(month, 1, dFrom)",
    "distinct",
    "default",
    "getdate()",
    "@t",
    "#t",
    "\xc3\xa9",
};

class Fuzzer
{
public:
    Fuzzer()
    {
        engine_ = Engine::Create(dir_.filePath("fuzz.db"));
        engine_->RunScript(QString::fromUtf8(kSchema), "schema");
    }

    // Gives what is wrong, or an empty text.
    QString Try(const QString &text)
    {
        try {
            engine_->Translate(text);
            ++accepted_;
        } catch (const Error &error) {
            if (const QString fault = Judge(error); !fault.isEmpty())
                return fault;
        }
        // What has no loop also runs, and leaves nothing behind.
        if (text.contains("while", Qt::CaseInsensitive) || text.contains("fnSum", Qt::CaseInsensitive))
            return {};
        try {
            engine_->Begin();
            QVariantMap values;
            for (const char *name : {"a", "id", "n", "p", "c", "d"}) {
                if (text.contains(':' + QString::fromLatin1(name)))
                    values.insert(QString::fromLatin1(name), QStringLiteral("1"));
            }
            engine_->Run(text, values);
            ++accepted_;
        } catch (const Error &error) {
            if (const QString fault = Judge(error); !fault.isEmpty())
                return fault;
        }
        engine_->Rollback();
        if (++runs_ % 20000 == 0) // temporary tables and cached statements of a long session
            engine_->ClearTranslations();
        return {};
    }

    int Accepted() const { return accepted_; }

private:
    static QString Judge(const Error &error)
    {
        if (error.text.contains("SQLite code"))
            return error.text;
        const bool placed = error.kind == Error::Kind::Syntax || error.kind == Error::Kind::Refused;
        if (placed && error.text.contains("line 0,"))
            return "without a place: " + error.text;
        return {};
    }

    QTemporaryDir dir_;
    std::unique_ptr<Engine> engine_;
    int accepted_ = 0;
    int runs_ = 0;
};

Fuzzer &TheFuzzer()
{
    static Fuzzer fuzzer;
    return fuzzer;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString fault = TheFuzzer().Try(text);
    if (!fault.isEmpty()) {
        fprintf(stderr, "%s\nfor: %s\n", qPrintable(fault), qPrintable(text));
        abort();
    }
    return 0;
}

#ifndef QP_LIBFUZZER

namespace {

QString Mutated(const QStringList &seeds, QRandomGenerator &random)
{
    const auto below = [&random](qsizetype limit) { return limit > 0 ? qsizetype(random.bounded(quint32(limit))) : 0; };
    // half of them from the original corpus, lest the pool breeds one kind only
    QString text = seeds[below(below(2) ? seeds.size() : qsizetype(std::size(kSeeds)))];
    const int changes = 1 + int(below(4));
    for (int i = 0; i < changes; ++i) {
        const qsizetype at = below(text.size() + 1);
        switch (below(8)) {
        case 0: // drop some characters
            text.remove(at, 1 + below(8));
            break;
        case 1: // any character
            text.insert(at, QChar(char16_t(below(4) ? 32 + below(95) : below(0xffff))));
            break;
        case 2:
        case 3: // a word of interest
            text.insert(at, ' ' + QString::fromUtf8(kWords[below(qsizetype(std::size(kWords)))]) + ' ');
            break;
        case 4: { // a piece of another statement
            const QString &other = seeds[below(seeds.size())];
            text.insert(at, other.mid(below(other.size()), 1 + below(40)));
            break;
        }
        case 5: { // a piece of its own, again and again
            const QString piece = text.mid(at, 1 + below(20));
            text.insert(at, piece.repeated(int(1 + below(below(50) ? 3 : 200))));
            break;
        }
        case 6: { // one word for another
            const QStringList words = text.split(' ');
            QStringList changed = words;
            changed[below(words.size())] = words[below(words.size())];
            text = changed.join(' ');
            break;
        }
        default:
            text.truncate(at);
        }
    }
    return text.left(20000);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const auto option = [&arguments](const QString &name, quint32 otherwise) {
        const qsizetype at = arguments.indexOf(name);
        return at >= 0 ? arguments.value(at + 1).toUInt() : otherwise;
    };
    const quint32 seconds = option("--seconds", 5);
    const quint32 seed = option("--seed", QRandomGenerator::global()->generate());
    printf("fuzz_translator --seconds %u --seed %u\n", seconds, seed);
    fflush(stdout);

    QStringList seeds;
    for (const char *text : kSeeds)
        seeds.append(QString::fromUtf8(text));
    for (const QString &text : std::as_const(seeds)) { // the corpus itself must be inside the subset
        try {
            Fuzzer fresh;
            fresh.Try(text);
        } catch (const Error &error) {
            fprintf(stderr, "%s\n", error.what());
            return 1;
        }
    }
    QRandomGenerator random(seed);
    QElapsedTimer clock;
    clock.start();
    qint64 count = 0;
    while (clock.elapsed() < qint64(seconds) * 1000) {
        const QString text = Mutated(seeds, random);
        alarm(20); // a hang ends the program with SIGALRM
        QElapsedTimer one;
        one.start();
        const int accepted = TheFuzzer().Accepted();
        const QString fault = TheFuzzer().Try(text);
        if (TheFuzzer().Accepted() > accepted && text.size() > 40) { // what was understood is worth changing further
            if (seeds.size() < 2000)
                seeds.append(text);
            else
                seeds[int(std::size(kSeeds)) + random.bounded(2000 - int(std::size(kSeeds)))] = text;
        }
        if (!fault.isEmpty() || one.elapsed() > 10000) {
            fprintf(stderr, "%s (%lld ms)\nfor: %s\n", qPrintable(fault), one.elapsed(), qPrintable(text));
            return 1;
        }
        ++count;
    }
    printf("%lld statements, %d accepted\n", count, TheFuzzer().Accepted());
    return TheFuzzer().Accepted() > 0 ? 0 : 1;
}

#endif
