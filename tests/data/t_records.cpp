// SPDX-License-Identifier: Apache-2.0
// Records and stored procedures against a database of two small tables.
#include <QDateTime>
#include <QRegularExpression>

#include "framework/data/CorvexADOQuery.h"
#include "tests/data/Engines.h"

namespace {

using Kind = TDbError::Kind;

constexpr auto kSchema = R"(
create table dbo.qprBanks (
    idBank int identity(1, 1) not null constraint PK_qprBanks primary key,
    cCode varchar(10) not null constraint UQ_qprBanks_Code unique,
    cBankName varchar(50) null,
    iStateID int null,
    bActive bit null,
    fRate float null,
    dStart datetime null,
    cNotes varchar(max) null
)
GO
create table dbo.qprScales (
    idScale int not null constraint PK_qprScales primary key,
    cCode varchar(10) not null constraint UQ_qprScales_Code unique
)
GO
create procedure dbo.qprpRename @BankID int, @Name varchar(50) output, @Changed int output as
begin
    if @Name = ''
    begin
        raiserror('No name was given.', 16, 1)
        return -1
    end
    update dbo.qprBanks set cBankName = @Name where idBank = @BankID
    set @Changed = @@rowcount
    set @Name = @Name + ' (new)'
    return 7
end
GO
)";

class TqryTestBanks final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    explicit TqryTestBanks(QObject *owner = nullptr)
        : TCorvexADOQuery("qprBanks", "idBank", Keys::Server, owner)
    {}
    INT_COLUMN(IdBank, "idBank")
    TEXT_COLUMN(Code, "cCode", 10)
    TEXT_COLUMN(BankName, "cBankName", 50)
    INT_COLUMN(State, "iStateID")
    BOOL_COLUMN(Active, "bActive")
    FLOAT_COLUMN(Rate, "fRate")
    DATE_COLUMN(Start, "dStart")
    TEXT_COLUMN(Notes, "cNotes", 0)
};

class TqryTestScales final : public TCorvexADOQuery
{
    Q_OBJECT
public:
    TqryTestScales()
        : TCorvexADOQuery("qprScales", "idScale", Keys::Client)
    {}
    TEXT_COLUMN(Code, "cCode", 10)
};

// Passes everything on, remembers what was written, and misbehaves where a test asks for it.
class TWatchedConnection final : public TDbConnection
{
public:
    explicit TWatchedConnection(std::unique_ptr<TDbConnection> real)
        : real_(std::move(real))
    {}
    TDbRows Select(const QString &sql, const TDbParams &params) override { return real_->Select(sql, params); }
    int Execute(const QString &sql, const TDbParams &params) override
    {
        if (beforeUpdate && sql.startsWith("update")) {
            const auto once = std::exchange(beforeUpdate, {});
            once();
        }
        written.append(sql);
        return missGuards && sql.contains(":g") ? 0 : real_->Execute(sql, params);
    }
    int Insert(const QString &sql, const TDbParams &params) override
    {
        written.append(sql);
        return real_->Insert(sql, params);
    }
    TDbCallResult Call(const QString &procedure, const QList<TDbArgument> &arguments) override
    {
        return real_->Call(procedure, arguments);
    }
    void RunScript(const QString &script, const QString &title) override { real_->RunScript(script, title); }
    void Begin() override
    {
        ++begun;
        real_->Begin();
    }
    void Commit() override
    {
        if (std::exchange(failCommit, false))
            throw TDbError(Kind::DiskFull, 1105, "full");
        real_->Commit();
    }
    void Rollback() override { real_->Rollback(); }
    bool InTransaction() const override { return real_->InTransaction(); }
    QString Description() const override { return real_->Description(); }

    QStringList written;
    int begun = 0;
    std::function<void()> beforeUpdate;
    bool missGuards = false;
    bool failCommit = false;

private:
    const std::unique_ptr<TDbConnection> real_;
};

class TFakeList final : public TListControl
{
public:
    void OpenList(const TListSource &listSource) override { source = listSource; }
    void ReReadList(const TListSource &listSource, bool locate, int key) override
    {
        source = listSource;
        located = locate ? key : -1;
    }
    bool HasCurrent() const override { return !row.isEmpty(); }
    QVariant CurrentValue(QStringView field) const override { return row.value(field.toString()); }

    TListSource source;
    int located = 0;
    QVariantMap row;
};

TRecordConflict ConflictOf(TCorvexADOQuery &query)
{
    try {
        query.Post();
    } catch (const TRecordConflict &conflict) {
        return conflict;
    }
    return {}; // neither gone nor fields
}

QStringList FieldsOf(const TRecordConflict &conflict)
{
    QStringList fields;
    for (const TRecordConflict::Field &field : conflict.fields)
        fields.append(field.field);
    return fields;
}

} // namespace

class TRecordsTest final : public QObject
{
    Q_OBJECT

public:
    explicit TRecordsTest(TConnect connect)
        : connect_(std::move(connect))
    {}

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { SetErrorPresenter({}); }
    void cleanupTestCase();

    void newRecord();
    void blanksOfANewRecord();
    void onlyChangesAreWritten();
    void whatIsOnlyShownStays();
    void cancelled();
    void conflicts_data();
    void conflicts();
    void theirsAreTakenWhenNothingIsMine();
    void deletedByAnother();
    void raceWithinTheSave();
    void serverThatComparesOtherwise();
    void twoRecordsOpen();
    void callersTransaction();
    void failedInsert();
    void failedCommit();
    void keyAllocation_data();
    void keyAllocation();
    void clientKeys();
    void selecting();
    void existence();
    void onAList();
    void storedProcedure();
    void misuse();
    void advice_data();
    void advice();

private:
    void Do(const QString &sql, const TDbParams &params = {}) { MainConnection().Execute(sql, params); }
    QVariantList Row(int id) const;
    int Count() const;
    // A bank as the tests start from, by its key.
    int Bank(const QString &code = "NAB");
    void DropAll();

    const TConnect connect_;
    TWatchedConnection *watched_ = nullptr; // the main connection
};

void TRecordsTest::initTestCase()
{
    auto connection = std::make_unique<TWatchedConnection>(connect_());
    watched_ = connection.get();
    SetMainConnection(std::move(connection));
    DropAll();
    MainConnection().RunScript(QString::fromLatin1(kSchema), "records");
}

void TRecordsTest::init()
{
    Do("delete from dbo.qprBanks");
    Do("delete from dbo.qprScales");
}

void TRecordsTest::cleanupTestCase()
{
    DropAll();
    SetMainConnection({});
    QCOMPARE(Thrown([] { MainConnection(); }).message, "No database is open.");
}

void TRecordsTest::DropAll()
{
    for (const char *object : {"procedure dbo.qprpRename", "table dbo.qprScales", "table dbo.qprBanks"}) {
        try {
            Do(QString("drop ") + object);
        } catch (const TDbError &) { // the first time there is nothing
        }
    }
}

QVariantList TRecordsTest::Row(int id) const
{
    return MainConnection()
        .Select("select cCode, cBankName, iStateID, bActive, fRate, dStart from dbo.qprBanks where idBank = :id",
                {{"id", id}})
        .rows.value(0);
}

int TRecordsTest::Count() const
{
    return MainConnection().Select("select count(*) as n from dbo.qprBanks").Value(0, u"n").toInt();
}

int TRecordsTest::Bank(const QString &code)
{
    const int id =
        MainConnection().Insert("insert dbo.qprBanks (cCode, cBankName, iStateID, bActive, fRate, dStart, cNotes) "
                                "values (:c, 'National', 2, 1, 0.1, '2009-09-09', 'note')",
                                {{"c", code}});
    watched_->written.clear();
    watched_->begun = 0;
    return id;
}

void TRecordsTest::newRecord()
{
    TqryTestBanks banks;
    banks.brAppend(true);
    QVERIFY(banks.IsAppending() && banks.IsEditing() && !banks.IsModified());
    QCOMPARE(banks.KeyValue(), 0);
    banks.SetCode("O'Brien");
    banks.SetBankName("'; delete from qprBanks --");
    banks.SetState(3);
    banks.SetActive(true);
    banks.SetRate(0.3);
    banks.SetStart(QDate(2026, 7, 1));
    QVERIFY(banks.IsModified());
    QVERIFY(banks.brPost(true));
    QVERIFY(!banks.IsEditing());
    QVERIFY(banks.KeyValue() > 0);
    QCOMPARE(banks.RecordCount(), 1);
    QCOMPARE(Row(banks.KeyValue()), QVariantList({"O'Brien", "'; delete from qprBanks --", 3, true, 0.3,
                                                  QDateTime(QDate(2026, 7, 1), QTime(0, 0))}));

    TqryTestBanks again;
    again.SelectRecords("idBank", banks.KeyValue(), false);
    QCOMPARE(again.RecordCount(), 1);
    QCOMPARE(again.GetIdBank(), banks.KeyValue());
    QCOMPARE(again.GetCode(), "O'Brien");
    QCOMPARE(again.GetState(), 3);
    QCOMPARE(again.GetActive(), true);
    QCOMPARE(again.GetRate(), 0.3);
    QCOMPARE(again.GetStart(), QDate(2026, 7, 1));
}

void TRecordsTest::blanksOfANewRecord()
{
    TqryTestBanks banks;
    banks.brAppend();
    banks.SetCode("x");
    banks.SetBankName(QString()); // a null text is an empty one
    banks.Rate.SetNull();
    banks.Post();
    QCOMPARE(Row(banks.KeyValue()), QVariantList({"x", "", 0, false, QVariant(), QVariant()}));
    QVERIFY(!banks.BankName.IsNull());
    QVERIFY(banks.Start.IsNull());
    QCOMPARE(banks.GetStart(), QDate());
}

void TRecordsTest::onlyChangesAreWritten()
{
    TqryTestBanks banks;
    banks.SelectRecords("idBank", Bank(), false);
    banks.brEdit(true);
    banks.SetCode("NAB");
    banks.SetBankName("NATIONAL"); // the database would call it equal
    banks.SetStart(QDate());
    QVERIFY(banks.IsModified());
    banks.Post();
    QCOMPARE(watched_->written.size(), 1);
    const QString set = watched_->written[0].section(" set ", 1).section(" where ", 0, 0);
    static const QRegularExpression places(" = :\\w+");
    QCOMPARE(QString(set).remove(places), "cBankName, dStart");
    QCOMPARE(Row(banks.KeyValue()), QVariantList({"NAB", "NATIONAL", 2, true, 0.1, QVariant()}));

    // And again on the same record, without reading it anew.
    banks.brEdit(true);
    banks.SetRate(1.0 / 3);
    banks.Post();
    QCOMPARE(Row(banks.KeyValue()), QVariantList({"NAB", "NATIONAL", 2, true, 1.0 / 3, QVariant()}));
}

void TRecordsTest::whatIsOnlyShownStays()
{
    const int id = Bank();
    Do("update dbo.qprBanks set cBankName = null, iStateID = null, bActive = null, fRate = null, dStart = null");
    watched_->written.clear();
    TqryTestBanks banks;
    banks.SelectRecords("idBank", id, false);
    banks.brEdit(true);
    // What a form does with fields that nobody touched.
    banks.SetBankName(banks.GetBankName());
    banks.SetState(banks.GetState());
    banks.SetActive(banks.GetActive());
    banks.SetRate(banks.GetRate());
    banks.SetStart(banks.GetStart());
    QVERIFY(!banks.IsModified());
    banks.Post();
    QCOMPARE(watched_->written, QStringList());
    QCOMPARE(watched_->begun, 0);

    banks.brEdit(true);
    banks.SetBankName("x");
    banks.SetBankName(""); // an empty text that was typed is not NULL
    banks.Post();
    QCOMPARE(Row(id), QVariantList({"NAB", "", QVariant(), QVariant(), QVariant(), QVariant()}));
}

void TRecordsTest::cancelled()
{
    TqryTestBanks banks;
    banks.SelectRecords("idBank", Bank(), false);
    banks.brEdit(true);
    banks.SetCode("x");
    QCOMPARE(banks.GetCode(), "x");
    banks.Cancel();
    QVERIFY(!banks.IsEditing());
    QCOMPARE(banks.GetCode(), "NAB");
    banks.brAppend(true);
    QCOMPARE(banks.GetCode(), "");
    banks.SetCode("y");
    banks.Cancel();
    QCOMPARE(banks.GetCode(), "NAB");
    QCOMPARE(banks.RecordCount(), 1);
    QCOMPARE(watched_->written, QStringList());
}

void TRecordsTest::conflicts_data()
{
    QTest::addColumn<QString>("theirs"); // what the other sets
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QString>("name"); // of the row after I accepted theirs and wrote mine
    QTest::addColumn<int>("state");
    QTest::newRow("same field") << "cBankName = 'Theirs'" << QStringList{"cBankName"} << "Mine" << 2;
    QTest::newRow("other field") << "iStateID = 9" << QStringList{"iStateID"} << "Mine" << 9;
    QTest::newRow("both") << "cBankName = 'Theirs', iStateID = 9" << QStringList{"cBankName", "iStateID"} << "Mine"
                          << 9;
    QTest::newRow("same as mine") << "cBankName = 'Mine'" << QStringList{"cBankName"} << "Mine" << 2;
    QTest::newRow("case alone") << "cCode = 'nab'" << QStringList{"cCode"} << "Mine" << 2;
    QTest::newRow("a blank alone") << "cNotes = ' note'" << QStringList{"cNotes"} << "Mine" << 2;
    QTest::newRow("to NULL") << "cBankName = null" << QStringList{"cBankName"} << "Mine" << 2;
    QTest::newRow("the smallest fraction") << "fRate = 0.10000000000000002" << QStringList{"fRate"} << "Mine" << 2;
    QTest::newRow("bit and date") << "bActive = 0, dStart = '2009-09-10'" << QStringList{"bActive", "dStart"} << "Mine"
                                  << 2;
}

void TRecordsTest::conflicts()
{
    const int id = Bank();
    TqryTestBanks banks;
    banks.SelectRecords("idBank", id, false);
    QFETCH(QString, theirs);
    Do("update dbo.qprBanks set " + theirs);
    const QVariantList before = Row(id);

    banks.brEdit(true);
    banks.SetBankName("Mine");
    const TRecordConflict conflict = ConflictOf(banks);
    QVERIFY(!conflict.gone);
    QTEST(FieldsOf(conflict), "fields");
    QCOMPARE(Row(id), before);
    QVERIFY(banks.IsEditing());
    for (const TRecordConflict::Field &field : conflict.fields) {
        QVERIFY(field.theirs != field.read);
        QCOMPARE(field.mine, field.field == "cBankName" ? QVariant("Mine") : field.read);
    }

    // Back to editing and saving once more does not get through either.
    banks.brEdit(true);
    QTEST(FieldsOf(ConflictOf(banks)), "fields");

    banks.AcceptTheirsAsRead(conflict);
    QCOMPARE(banks.GetBankName(), "Mine");
    banks.Post();
    QVERIFY(!banks.IsEditing());
    QVariantList expected = before;
    expected[1] = "Mine";
    QCOMPARE(Row(id), expected);
    QTEST(banks.GetBankName(), "name");
    QTEST(banks.GetState(), "state");
}

void TRecordsTest::theirsAreTakenWhenNothingIsMine()
{
    const int id = Bank();
    TqryTestBanks banks;
    banks.SelectRecords("idBank", id, false);
    Do("update dbo.qprBanks set iStateID = 9");
    banks.brEdit(true);
    banks.Post();
    QCOMPARE(banks.GetState(), 9);
    QCOMPARE(Row(id)[2], 9);
}

void TRecordsTest::deletedByAnother()
{
    TqryTestBanks banks;
    banks.SelectRecords("idBank", Bank(), false);
    const int old = banks.KeyValue();
    Do("delete from dbo.qprBanks");

    banks.brEdit(true);
    QVERIFY(ConflictOf(banks).gone); // even without changes
    banks.SetBankName("Mine");
    const TRecordConflict conflict = ConflictOf(banks);
    QVERIFY(conflict.gone);
    QVERIFY(banks.IsEditing());
    banks.AcceptTheirsAsRead(conflict);
    QVERIFY(banks.IsAppending());
    QCOMPARE(banks.KeyValue(), 0);
    banks.brEdit(true); // the dialog saves as it did before
    banks.Post();
    QVERIFY(banks.KeyValue() > old);
    QCOMPARE(banks.RecordCount(), 1);
    QCOMPARE(Row(banks.KeyValue()).mid(0, 3), QVariantList({"NAB", "Mine", 2}));

    TqryTestScales scales;
    Do("insert dbo.qprScales (idScale, cCode) values (50001, 'a')");
    scales.SelectRecords("idScale", 50001, false);
    Do("delete from dbo.qprScales");
    scales.brEdit(true);
    scales.SetCode("b");
    scales.AcceptTheirsAsRead(ConflictOf(scales));
    scales.Post();
    QCOMPARE(scales.KeyValue(), 50001);
    scales.SelectRecords("idScale", 50001, false);
    QCOMPARE(scales.GetCode(), "b");
}

void TRecordsTest::raceWithinTheSave()
{
    const int id = Bank();
    Do("update dbo.qprBanks set cBankName = null");
    TqryTestBanks banks;
    banks.SelectRecords("idBank", id, false);
    for (const char *theirs : {"update dbo.qprBanks set cBankName = 'Theirs'", "update dbo.qprBanks set fRate = null",
                               "update dbo.qprBanks set bActive = 0, dStart = null", "delete from dbo.qprBanks"}) {
        banks.brEdit(true);
        banks.SetState(banks.GetState() + 1);
        watched_->beforeUpdate = [&] { Do(theirs); };
        const TRecordConflict conflict = ConflictOf(banks);
        QVERIFY2(conflict.gone || !conflict.fields.isEmpty(), theirs);
        QCOMPARE(Row(id)[2], 2); // and my transaction, with what the other did in it, is undone
        banks.Cancel();
    }
}

void TRecordsTest::serverThatComparesOtherwise()
{
    const int id = Bank();
    TqryTestBanks banks;
    banks.SelectRecords("idBank", id, false);
    banks.brEdit(true);
    banks.SetState(5);
    watched_->missGuards = true;
    banks.Post();
    watched_->missGuards = false;
    QCOMPARE(Row(id)[2], 5);
}

void TRecordsTest::twoRecordsOpen()
{
    const int first = Bank("first");
    const int second = Bank("second");
    TqryTestBanks one;
    TqryTestBanks two;
    TqryTestBanks other;
    one.SelectRecords("idBank", first, false);
    two.SelectRecords("idBank", first, false);
    other.SelectRecords("idBank", second, false);
    for (TqryTestBanks *banks : {&one, &two, &other}) {
        banks->brEdit(true);
        banks->SetBankName("changed");
        banks->SetState(banks == &one ? 5 : 6);
    }
    QVERIFY(one.brPost(true));
    QVERIFY(other.brPost(true));
    QCOMPARE(FieldsOf(ConflictOf(two)), QStringList({"cBankName", "iStateID"}));
    QCOMPARE(Row(first)[2], 5);
    QCOMPARE(Row(second)[2], 6);
}

void TRecordsTest::callersTransaction()
{
    const int id = Bank();
    TqryTestBanks banks;
    banks.SelectRecords("idBank", id, false);
    {
        TDbTransaction transaction(MainConnection());
        banks.brEdit(true);
        banks.SetState(5);
        banks.Post();
        QCOMPARE(watched_->begun, 1);
        QVERIFY(MainConnection().InTransaction());
        QCOMPARE(Row(id)[2], 5);
    }
    QCOMPARE(Row(id)[2], 2);
    {
        TDbTransaction transaction(MainConnection());
        Do("update dbo.qprBanks set cNotes = 'kept'");
        banks.brEdit(true);
        banks.SetState(7);
        QVERIFY(!ConflictOf(banks).fields.isEmpty());
        transaction.Commit(); // a conflict leaves the caller's transaction to the caller
    }
    QCOMPARE(MainConnection().Select("select cNotes from dbo.qprBanks").Value(0, u"cNotes").toString(), "kept");
}

void TRecordsTest::failedInsert()
{
    Bank("NAB");
    QStringList shown;
    SetErrorPresenter([&](const QString &text) { shown.append(text); });
    TqryTestBanks banks;
    banks.brAppend(true);
    banks.SetCode("nab");
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("insert qprBanks"));
    QVERIFY(!banks.brPost(true));
    QCOMPARE(shown.size(), 1);
    QVERIFY2(shown[0].startsWith("A record with this value already exists.\n\n"), qUtf8Printable(shown[0]));
    QVERIFY(banks.IsAppending());
    QCOMPARE(banks.KeyValue(), 0);
    QVERIFY(!MainConnection().InTransaction());
    QCOMPARE(Count(), 1);

    QCOMPARE(Thrown([&] { banks.brPost(false); }).kind, Kind::Duplicate);
    banks.SetCode(QString(11, 'x'));
    QCOMPARE(Thrown([&] { banks.Post(); }).kind, Kind::TooLong);
    QCOMPARE(shown.size(), 1);
    banks.SetCode("other");
    QVERIFY(banks.brPost(true));
    QCOMPARE(Row(banks.KeyValue())[0], "other");
}

void TRecordsTest::failedCommit()
{
    TqryTestBanks banks;
    banks.brAppend(true);
    banks.SetCode("x");
    watched_->failCommit = true;
    QCOMPARE(Thrown([&] { banks.Post(); }).kind, Kind::DiskFull);
    QCOMPARE(banks.KeyValue(), 0);
    QCOMPARE(Count(), 0);
    banks.Post();
    QVERIFY(banks.KeyValue() > 0);
    QCOMPARE(Count(), 1);
}

void TRecordsTest::keyAllocation_data()
{
    QTest::addColumn<int>("highest");
    QTest::addColumn<int>("floor");
    QTest::addColumn<int>("next");
    QTest::newRow("empty") << 0 << 50000 << 50001;
    QTest::newRow("supplied records only") << 312 << 50000 << 50001;
    QTest::newRow("last supplied") << 50000 << 50000 << 50001;
    QTest::newRow("own records") << 50020 << 50000 << 50021;
    QTest::newRow("no floor, empty") << 0 << 0 << 1;
    QTest::newRow("no floor") << 312 << 0 << 313;
}

void TRecordsTest::keyAllocation()
{
    QFETCH(int, highest);
    QFETCH(int, floor);
    if (highest > 0) {
        Do("insert dbo.qprScales (idScale, cCode) values (7, 'seven')");
        Do("insert dbo.qprScales (idScale, cCode) values (:id, 'x')", {{"id", highest}});
    }
    QTEST(GetIdxKey("idScale", "qprScales", floor), "next");
    if (floor == 50000)
        QTEST(GetIdxKey("idScale", "qprScales"), "next");
}

void TRecordsTest::clientKeys()
{
    TqryTestScales scales;
    scales.brAppend(true);
    scales.SetCode("a");
    QVERIFY(Thrown([&] { scales.Post(); }).message.contains("key"));
    scales.SetKeyValue(GetIdxKey("idScale", "qprScales"));
    scales.Post();
    QCOMPARE(scales.KeyValue(), 50001);

    scales.brAppend(true);
    scales.SetKeyValue(50002);
    scales.SetCode("A");
    QCOMPARE(Thrown([&] { scales.Post(); }).kind, Kind::Duplicate);
    QCOMPARE(scales.KeyValue(), 0);
    scales.SetKeyValue(50003);
    scales.SetCode("b");
    scales.Post();
    QCOMPARE(MainConnection().Select("select idScale, cCode from dbo.qprScales order by idScale").rows,
             QList<QVariantList>({{50001, "a"}, {50003, "b"}}));
}

void TRecordsTest::selecting()
{
    const int a = Bank("a");
    const int b = Bank("b");
    const int c = Bank("c");
    Do("update dbo.qprBanks set iStateID = 7 where cCode <> 'a'");
    TqryTestBanks banks;
    QVERIFY(banks.Eof() && banks.IsEmpty());
    const auto codes = [&] {
        QString text;
        for (banks.First(); !banks.Eof(); banks.Next())
            text += banks.GetCode();
        return text;
    };
    banks.SelectRecords("iStateID", 7, false);
    QCOMPARE(banks.KeyValue(), b);
    QCOMPARE(codes(), "bc");
    QCOMPARE(banks.KeyValue(), c); // after the last it stays there
    QVERIFY(!banks.Next());
    banks.SelectRecords("idBank", a, true);
    QCOMPARE(codes(), "bca");

    banks.SelectWhere("iStateID = :s or cCode = :c", {{"s", 7}, {"c", "A"}}, "cCode desc");
    QCOMPARE(codes(), "cba");
    banks.SelectWhere({});
    QCOMPARE(codes(), "abc");
    QCOMPARE(Thrown([&] { banks.SelectWhere("nothing = 1"); }).kind, Kind::Statement);
    QCOMPARE(codes(), "abc");

    Do("delete from dbo.qprBanks where cCode = 'a'");
    banks.First();
    banks.brRefresh(true, "idBank", QString::number(c));
    QCOMPARE(banks.KeyValue(), c);
    QCOMPARE(codes(), "bc");
    banks.SelectRecords("idBank", 0, false);
    QVERIFY(banks.IsEmpty());
    QCOMPARE(banks.KeyValue(), 0);
    QCOMPARE(banks.GetCode(), "");
}

void TRecordsTest::existence()
{
    const int id = Bank("O'Brien");
    const TqryTestBanks banks;
    QVERIFY(banks.RecordsExist("idBank", id));
    QVERIFY(!banks.RecordsExist("idBank", id + 1));
    QVERIFY(banks.RecordsExistCriteria("cCode = :c and idBank <> :id", {{"c", "o'brien "}, {"id", id + 1}}));
    QVERIFY(!banks.RecordsExistCriteria("cCode = :c and idBank <> :id", {{"c", "O'Brien"}, {"id", id}}));
    QVERIFY(banks.RecordsExistCriteria("cCode = " + QuotedSQL(u"O'Brien")));
    QVERIFY(!banks.RecordsExistCriteria("cCode = " + QuotedSQL(u"x' or 'a' = 'a")));

    QVERIFY(banks.ExecuteThisSQL("update dbo.qprBanks set cBankName = :n", true, {{"n", "it's"}}));
    QCOMPARE(Row(id)[1], "it's");
    QCOMPARE(Thrown([&] { banks.ExecuteThisSQL("update qprNowhere set x = 1", false); }).kind, Kind::Statement);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("qprNowhere"));
    QVERIFY(!banks.ExecuteThisSQL("update qprNowhere set x = 1", true));
}

void TRecordsTest::onAList()
{
    const int id = Bank();
    TFakeList list;
    TqryTestBanks banks;
    banks.setProperty("_FromTables", "qprvBanks");
    banks.setProperty("_SelectFields", "cCode, iStateID");
    banks.SetFilter("iStateID = :s", {{"s", 2}});
    banks.SetSelectControlCols(&list);
    banks.OpenList();
    QCOMPARE(list.source.from, "qprvBanks");
    QCOMPARE(list.source.columns, QStringList({"cCode", "iStateID"}));
    QCOMPARE(list.source.key, "idBank");
    QCOMPARE(list.source.where, "iStateID = :s");
    QCOMPARE(list.source.params, TDbParams({{"s", 2}}));
    QCOMPARE(banks.NotesTableName(), "QPRBANKS");

    QCOMPARE(banks.KeyValue(), 0);
    QCOMPARE(banks.GetCode(), "");
    list.row = {{"idBank", id}, {"cCode", "shown"}, {"iStateID", QVariant()}};
    QCOMPARE(banks.KeyValue(), id);
    QCOMPARE(banks.GetCode(), "shown");
    QCOMPARE(banks.GetState(), 0);

    banks.brEdit(true); // works on the record, not on what the list shows of it
    QCOMPARE(banks.GetCode(), "NAB");
    banks.Cancel();
    QCOMPARE(banks.GetCode(), "shown");
    banks.brEdit(true);
    banks.SetState(4);
    banks.Post();
    QCOMPARE(Row(id)[2], 4);
    QCOMPARE(banks.GetState(), 4);

    banks.SetFilter("iStateID = 4");
    banks.brRefresh(true, "idBank", QString::number(id));
    QCOMPARE(list.located, id);
    QCOMPARE(list.source.where, "iStateID = 4");
    QCOMPARE(list.source.params, TDbParams());
    QCOMPARE(banks.GetCode(), "shown");
    banks.brRefresh(true, "", "");
    QCOMPARE(list.located, -1);
}

void TRecordsTest::storedProcedure()
{
    const int id = Bank();
    QStringList shown;
    SetErrorPresenter([&](const QString &text) { shown.append(text); });
    TCorvexADOStoredProc rename("qprpRename");
    rename.SetParam("@BankID", id);
    rename.SetInOutParam("Name", "O'Brien");
    rename.SetInOutParam("@changed", QVariant(QMetaType::fromType<int>()));
    QVERIFY(rename.kvExecProc(true));
    QCOMPARE(rename.ReturnValue(), 7);
    QCOMPARE(rename.Param("@Name").toString(), "O'Brien (new)");
    QCOMPARE(rename.Param("Changed").toInt(), 1);
    QCOMPARE(rename.Param("@BankID").toInt(), id);
    QCOMPARE(Row(id)[1], "O'Brien");

    rename.SetInOutParam("@Name", "");
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("No name was given."));
    QVERIFY(!rename.kvExecProc(true));
    QCOMPARE(shown, QStringList("No name was given."));
    QCOMPARE(rename.ReturnValue(), 0); // nothing of the run before
    QCOMPARE(Thrown([&] { rename.kvExecProc(false); }).kind, Kind::Raised);
}

void TRecordsTest::misuse()
{
    const int id = Bank();
    TqryTestBanks banks;
    const auto refused = [](auto operation) { return Thrown(operation).message != TThrown().message; };
    QVERIFY(refused([&] { banks.brEdit(true); })); // no record
    QVERIFY(refused([&] { banks.SetCode("x"); }));
    QVERIFY(refused([&] { banks.Post(); }));
    QVERIFY(refused([&] { banks.OpenList(); })); // no list
    banks.SelectRecords("idBank", id, false);
    QVERIFY(refused([&] { banks.SetCode("x"); }));
    QVERIFY(refused([&] { banks.SetKeyValue(5); }));
    banks.brEdit(true);
    QVERIFY(refused([&] { banks.brAppend(true); }));
    QVERIFY(refused([&] { banks.First(); }));
    QVERIFY(refused([&] { banks.SetKeyValue(5); }));
    QCOMPARE(banks.FindColumn(u"CCODE"), &banks.Code);
    QCOMPARE(banks.FindColumn(u"cNothing"), nullptr);
    QCOMPARE(banks.Code.Limit(), 10);
}

void TRecordsTest::advice_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("word"); // that tells what happened; empty when the server's words stand alone
    QTest::newRow("referenced") << Kind::Referenced << "in use";
    QTest::newRow("busy") << Kind::Busy << "Another user";
    QTest::newRow("read-only") << Kind::ReadOnly << "only be read";
    QTest::newRow("full") << Kind::DiskFull << "full";
    QTest::newRow("lost") << Kind::ConnectionLost << "lost";
    QTest::newRow("raised") << Kind::Raised << "";
    QTest::newRow("statement") << Kind::Statement << "";
}

void TRecordsTest::advice()
{
    QString shown;
    SetErrorPresenter([&](const QString &text) { shown = text; });
    QFETCH(Kind, kind);
    QFETCH(QString, word);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("its own words.*delete T"));
    PresentError(TDbError(kind, 1, "its own words", "delete T"));
    if (word.isEmpty())
        QCOMPARE(shown, "its own words");
    else
        QVERIFY2(shown.contains(word) && shown.endsWith("\n\nits own words"), qUtf8Printable(shown));
}

int main(int argc, char **argv)
{
    return RunOnEveryEngine<TRecordsTest>(argc, argv);
}
#include "t_records.moc"
