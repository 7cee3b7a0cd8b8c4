// SPDX-License-Identifier: Apache-2.0
// The ODBC connection through SQLite's ODBC driver, which needs no server, and the texts meant for SQL Server as texts.
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "framework/data/OdbcConnection.h"
#include "framework/data/SqlText.h"

namespace {

using Kind = TDbError::Kind;

class TSqliteDialect final : public TOdbcDialect
{
public:
    explicit TSqliteDialect(QString openTransactions = {})
        : openTransactions_(std::move(openTransactions))
    {}
    QStringList SessionSettings() const override
    {
        // One that is not known must not matter.
        return openTransactions_.isEmpty() ? QStringList{"pragma foreign_keys = on"} : QStringList{"no such setting"};
    }
    QString BeginText() const override { return "begin"; }
    QString CommitText() const override { return "commit"; }
    QString RollbackText() const override { return "rollback"; }
    QString OpenTransactionsText() const override { return openTransactions_; }
    QString Placeholder(const QVariant &) const override { return "?"; }
    TAsked RowCount(const QString &sql) const override { return {sql, "select changes() as n"}; }
    TAsked NewKey(const QString &sql) const override { return {sql, "select last_insert_rowid() as id"}; }
    TCallText Call(const QString &, const QList<TDbArgument> &arguments) const override
    {
        TCallText call{"select 7 as r", {}};
        for (const TDbArgument &argument : arguments) {
            if (!argument.inOut)
                continue;
            call.text += ", :" + argument.name + " || '!' as x";
            call.params.insert(argument.name, argument.value);
        }
        return call;
    }
    Kind ErrorKind(int number, const QString &message) const override
    {
        if (message.contains("UNIQUE"))
            return Kind::Duplicate;
        if (message.contains("FOREIGN KEY"))
            return Kind::Referenced;
        return number == 1 ? Kind::Statement : Kind::Other;
    }

private:
    const QString openTransactions_;
};

template <class Operation> Kind KindThrown(Operation operation)
{
    try {
        operation();
    } catch (const TDbError &error) {
        return error.kind;
    }
    throw std::runtime_error("nothing was thrown");
}

QString DriverFile()
{
    const QDir root("/usr/lib");
    const QStringList folders = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &folder : folders) {
        const QString file = root.filePath(folder + "/odbc/libsqlite3odbc.so");
        if (QFile::exists(file))
            return file;
    }
    return {};
}

} // namespace

class TOdbcPlumbingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { db_.reset(); }

    void parametersAreCut_data();
    void parametersAreCut();
    void textsThatAreRefused_data();
    void textsThatAreRefused();
    void scriptsAreCutAtGo();
    void serverTextForCountAndKey();
    void serverTextForCalls();
    void serverErrorNumbers_data();
    void serverErrorNumbers();

    void valuesSurvive_data();
    void valuesSurvive();
    void namedValues();
    void countsKeysAndCalls();
    void errorsAreTold();
    void transactions();
    void rolledBackByTheServer();
    void connectionsAreApart();
    void scriptsNameTheirLine();
    void cannotConnect();

private:
    std::unique_ptr<TDbConnection> Connect(const QString &openTransactions = {}) const
    {
        return OpenOdbcDatabase("DRIVER=SQLite3;Database=" + file_, std::make_unique<TSqliteDialect>(openTransactions));
    }

    QTemporaryDir folder_;
    QString driver_;
    QString file_;
    int made_ = 0;
    std::unique_ptr<TDbConnection> db_;
};

void TOdbcPlumbingTest::initTestCase()
{
    driver_ = DriverFile();
    QFile registry(folder_.filePath("odbcinst.ini"));
    QVERIFY(registry.open(QIODevice::WriteOnly));
    registry.write("[SQLite3]\nDescription=SQLite\nDriver=" + driver_.toUtf8() + "\n");
    registry.close();
    qputenv("ODBCSYSINI", folder_.path().toUtf8());
    qputenv("ODBCINSTINI", "odbcinst.ini");
}

void TOdbcPlumbingTest::init()
{
    const QByteArray test = QTest::currentTestFunction();
    if (test.startsWith("server") || test == "parametersAreCut" || test == "textsThatAreRefused" ||
        test == "scriptsAreCutAtGo")
        return;
    if (driver_.isEmpty())
        QSKIP("SQLite's ODBC driver (libsqliteodbc) is not installed");
    file_ = folder_.filePath(QString("plumbing%1.db").arg(++made_));
    db_ = Connect();
    db_->RunScript(
        "create table Kinds (id integer primary key, i int, b bit, f double, c varchar(200), d timestamp)\nGO\n"
        "create table Codes (id integer primary key, c varchar(10) unique)\ngo\n"
        "create table Uses (id integer primary key, codeId int references Codes (id))",
        "plumbing.sql");
}

void TOdbcPlumbingTest::parametersAreCut_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("marked"); // with <name> at each parameter
    QTest::newRow("none") << "select 1 as n"
                          << "select 1 as n";
    QTest::newRow("twice, and at both ends") << ":a+b=:b_2 or :a"
                                             << "<a>+b=<b_2> or <a>";
    QTest::newRow("string") << "x = ':a''s :b' and y = :c"
                            << "x = ':a''s :b' and y = <c>";
    QTest::newRow("brackets and quotes") << "[a:b]]:c].\"d:e\" = :f"
                                         << "[a:b]]:c].\"d:e\" = <f>";
    QTest::newRow("line comment") << "a -- it's :x ?\n= :b"
                                  << "a  \n= <b>";
    QTest::newRow("nested block comment") << "a /* ' /* :x */ ? */ = :b"
                                          << "a   = <b>";
    QTest::newRow("colons that are none") << "'12:30' + a::b : c"
                                          << "'12:30' + a:<b> : c";
    QTest::newRow("division and minus") << "a / b - c = :d"
                                        << "a / b - c = <d>";
    QTest::newRow("question mark in a string") << "c = '?' and d = :d"
                                               << "c = '?' and d = <d>";
}

void TOdbcPlumbingTest::parametersAreCut()
{
    QFETCH(QString, sql);
    QString marked;
    for (const sqltext::TPiece &piece : sqltext::CutAtParameters(sql)) {
        marked += piece.text;
        if (!piece.name.isEmpty())
            marked += '<' + piece.name + '>';
    }
    QTEST(marked, "marked");
}

void TOdbcPlumbingTest::textsThatAreRefused_data()
{
    QTest::addColumn<QString>("sql");
    QTest::newRow("string without end") << "c = 'abc";
    QTest::newRow("doubled apostrophe at the end") << "c = 'abc''";
    QTest::newRow("bracket without end") << "select [abc";
    QTest::newRow("comment without end") << "select 1 /* /* */";
    QTest::newRow("bare question mark") << "c = ?";
}

void TOdbcPlumbingTest::textsThatAreRefused()
{
    QFETCH(QString, sql);
    QCOMPARE(KindThrown([&] { sqltext::CutAtParameters(sql); }), Kind::Statement);
}

void TOdbcPlumbingTest::scriptsAreCutAtGo()
{
    const auto batches =
        sqltext::CutAtGo("\n  go\n\nselect 1 as go\r\nGO\r\n\r\n-- that's one\nselect 'a\nGO\nb' as x\n"
                         "/*\nGO\n*/\n  Go  \nGOTO\ngo");
    QCOMPARE(batches.size(), 3);
    QCOMPARE(batches[0].text, "select 1 as go");
    QCOMPARE(batches[0].line, 4);
    QCOMPARE(batches[1].text, "-- that's one\nselect 'a\nGO\nb' as x\n/*\nGO\n*/");
    QCOMPARE(batches[1].line, 7);
    QCOMPARE(batches[2].text, "GOTO");
    QCOMPARE(batches[2].line, 15);
}

void TOdbcPlumbingTest::serverTextForCountAndKey()
{
    const TSqlServerDialect dialect;
    QCOMPARE(dialect.RowCount("delete T").text, "set nocount on; delete T\n; select @@rowcount as n");
    QCOMPARE(dialect.NewKey("insert T (c) values (:c)").text,
             "set nocount on; insert T (c) values (:c)\n; select cast(scope_identity() as int) as id");
    // These must stand alone in their batch.
    for (const char *text : {"create view v as select 1 as n", " CREATE\nPROCEDURE p as return", "alter function f"}) {
        const QString alone(text);
        QCOMPARE(dialect.RowCount(alone).text, alone);
        QVERIFY(!dialect.RowCount(alone).after.isEmpty());
    }
    QCOMPARE(dialect.Placeholder(QString(250, 'x')), "?");
    QCOMPARE(dialect.Placeholder(QString(251, 'x')), "cast(? as nvarchar(max))");
}

void TOdbcPlumbingTest::serverTextForCalls()
{
    const TSqlServerDialect dialect;
    const auto call = dialect.Call("dbo.p", {{"ID", 5},
                                             {"Text", QString("it's"), true},
                                             {"Flag", QVariant(QMetaType::fromType<bool>()), true},
                                             {"Rate", 1.5, true},
                                             {"Count", 3, true},
                                             {"Day", QDate(2009, 9, 9), true},
                                             {"Note", QString(300, 'n')}});
    QCOMPARE(call.text,
             "set nocount on; declare @qp_return int, @qp_1 nvarchar(4000), @qp_2 bit, @qp_3 float, @qp_4 int, "
             "@qp_5 datetime, @qp_6 nvarchar(max); set @qp_1 = :qp_1; set @qp_2 = :qp_2; set @qp_3 = :qp_3; "
             "set @qp_4 = :qp_4; set @qp_5 = :qp_5; set @qp_6 = :qp_6; exec @qp_return = dbo.p @ID = :qp_0, "
             "@Text = @qp_1 output, @Flag = @qp_2 output, @Rate = @qp_3 output, @Count = @qp_4 output, "
             "@Day = @qp_5 output, @Note = @qp_6; select @qp_return as qp_return, @qp_1 as qp_1, "
             "@qp_2 as qp_2, @qp_3 as qp_3, @qp_4 as qp_4, @qp_5 as qp_5");
    QCOMPARE(call.params.size(), 7);
    QCOMPARE(call.params["qp_1"].toString(), "it's");

    QCOMPARE(KindThrown([&] { dialect.Call("p; drop table T", {}); }), Kind::Statement);
    QCOMPARE(KindThrown([&] { dialect.Call("p", {{"a = 1; drop table T --", 1}}); }), Kind::Statement);
    QCOMPARE(KindThrown([&] { dialect.Call("p", {{"a", QVariant(), true}}); }), Kind::Statement);
    QCOMPARE(KindThrown([&] { dialect.Call("p", {{"a", QString(4001, 'x'), true}}); }), Kind::TooLong);
}

void TOdbcPlumbingTest::serverErrorNumbers_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Kind>("kind");
    const auto row = [](int number, const char *text, Kind kind) {
        QTest::addRow("%d %s", number, text) << number << QString(text) << kind;
    };
    row(2627, "Violation of PRIMARY KEY constraint", Kind::Duplicate);
    row(2601, "Cannot insert duplicate key row", Kind::Duplicate);
    row(547, "The DELETE statement conflicted with the REFERENCE constraint", Kind::Referenced);
    row(547, "The INSERT statement conflicted with the CHECK constraint", Kind::Check);
    row(8152, "String or binary data would be truncated.", Kind::TooLong);
    row(2628, "String or binary data would be truncated in table", Kind::TooLong);
    row(515, "Cannot insert the value NULL into column", Kind::NullValue);
    row(245, "Conversion failed", Kind::Check);
    row(1205, "deadlocked", Kind::Busy);
    row(1222, "Lock request time out period exceeded.", Kind::Busy);
    row(3906, "the database is read-only", Kind::ReadOnly);
    row(1105, "filegroup is full", Kind::DiskFull);
    row(9002, "The transaction log is full", Kind::DiskFull);
    row(208, "Invalid object name", Kind::Statement);
    row(50000, "Bank is in use", Kind::Raised);
    row(51000, "thrown", Kind::Raised);
    row(20006, "Write to the server failed", Kind::ConnectionLost);
    row(3621, "Cannot insert duplicate key in object. The statement has been terminated.", Kind::Duplicate);
    row(0, "Communication link failure", Kind::ConnectionLost);
    row(7, "something else", Kind::Other);
}

void TOdbcPlumbingTest::serverErrorNumbers()
{
    QFETCH(int, number);
    QFETCH(QString, text);
    QTEST(TSqlServerDialect().ErrorKind(number, text), "kind");
}

void TOdbcPlumbingTest::valuesSurvive_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<QVariant>("got");
    const auto row = [](const char *name, const char *column, const QVariant &given, const QVariant &got) {
        QTest::newRow(name) << QString(column) << given << got;
    };
    const QDateTime noon(QDate(2009, 9, 9), QTime(12, 34, 56));
    const QDateTime midnight(QDate(2009, 9, 9), QTime(0, 0));
    const QString hostile = QString::fromUtf8("O'Brien \"x\"; drop table Kinds; -- /* :a ? @b [c] Zoë ☃ \\");
    row("int", "i", -2147483647, -2147483647);
    row("bit on", "b", true, true);
    row("bit off", "b", false, false);
    row("double", "f", 0.1, 0.1);
    row("empty text", "c", QString(""), QString(""));
    row("null QString is an empty text", "c", QString(), QString(""));
    row("hostile text", "c", hostile, hostile);
    row("long text", "c", QString("ab'").repeated(3400), QString("ab'").repeated(3400));
    row("date and time", "d", noon, noon);
    row("date", "d", noon.date(), midnight);
    row("NULL int", "i", QVariant(QMetaType::fromType<int>()), {});
    row("NULL bit", "b", QVariant(QMetaType::fromType<bool>()), {});
    row("NULL text", "c", QVariant(QMetaType::fromType<QString>()), {});
    row("NULL date", "d", QDate(), {});
    row("NULL without a type", "f", QVariant(), {});
}

void TOdbcPlumbingTest::valuesSurvive()
{
    QFETCH(QString, column);
    QFETCH(QVariant, given);
    const int id = db_->Insert("insert into Kinds (" + column + ") values (:v)", {{"v", given}});
    const QVariant value =
        db_->Select("select " + column + " from Kinds where id = :id", {{"id", id}}).Value(0, column);
    QFETCH(QVariant, got);
    QCOMPARE(value.metaType(), got.metaType());
    QCOMPARE(value, got);
    QCOMPARE(db_->Select("select id from Kinds where " + column + " is null").size(), value.isValid() ? 0 : 1);
}

void TOdbcPlumbingTest::namedValues()
{
    const TDbRows rows = db_->Select("select :a as x, ':a' as y, :b as z, :a as w -- :c ?", {{"a", 1}, {"b", "it's"}});
    QCOMPARE(rows.columns, QStringList({"x", "y", "z", "w"}));
    QCOMPARE(rows.rows, QList<QVariantList>({{1, ":a", "it's", 1}}));
    QCOMPARE(rows.ColumnIndex(u"Z"), 2);
    QCOMPARE(KindThrown([&] { rows.Value(0, u"v"); }), Kind::Statement);
    QCOMPARE(KindThrown([&] { rows.Value(1, u"x"); }), Kind::Other);
    QCOMPARE(KindThrown([&] { db_->Select("select :a as x", {{"A", 1}}); }), Kind::Statement);
    QCOMPARE(KindThrown([&] { db_->Select("select 1 as x", {{"a", 1}}); }), Kind::Statement);
    QCOMPARE(KindThrown([&] { db_->Select("select :a as x", {{"a", qQNaN()}}); }), Kind::Check);
    QCOMPARE(KindThrown([&] { db_->Select("select :a as x", {{"a", QVariantList({1})}}); }), Kind::Statement);
}

void TOdbcPlumbingTest::countsKeysAndCalls()
{
    QCOMPARE(db_->Insert("insert into Codes (c) values (:c);", {{"c", "a"}}), 1);
    QCOMPARE(db_->Insert("insert into Codes (c) values ('b') ; "), 2);
    QCOMPARE(db_->Execute("update Codes set c = c || :x", {{"x", "1"}}), 2);
    QCOMPARE(db_->Execute("delete from Codes where c = 'none'"), 0);
    QCOMPARE(KindThrown([&] { db_->Select("delete from Codes where c = 'none'"); }), Kind::Statement);
    const TDbCallResult result = db_->Call("p", {{"a", "in"}, {"b", "one", true}, {"c", 5}, {"d", "two", true}});
    QCOMPARE(result.returnValue, 7);
    QCOMPARE(result.outputs, QVariantMap({{"b", "one!"}, {"d", "two!"}}));
}

void TOdbcPlumbingTest::errorsAreTold()
{
    db_->Insert("insert into Codes (c) values ('a')");
    try {
        db_->Execute("insert into Codes (c) values (:c)", {{"c", "a"}});
        QFAIL("a duplicate was taken");
    } catch (const TDbError &error) {
        QCOMPARE(error.kind, Kind::Duplicate);
        QCOMPARE(error.number, 19);
        QVERIFY2(error.message.startsWith("UNIQUE constraint failed"), error.what());
        QCOMPARE(error.statement, "insert into Codes (c) values (?)");
    }
    QCOMPARE(KindThrown([&] { db_->Insert("insert into Uses (codeId) values (99)"); }), Kind::Referenced);
    QCOMPARE(KindThrown([&] { db_->Select("select x from Nowhere"); }), Kind::Statement);
    QCOMPARE(db_->Select("select c from Codes").size(), 1); // the connection is of use afterwards
}

void TOdbcPlumbingTest::transactions()
{
    const auto count = [&] { return db_->Select("select c from Codes").size(); };
    {
        TDbTransaction transaction(*db_);
        db_->Insert("insert into Codes (c) values ('a')");
        QVERIFY(db_->InTransaction());
        QCOMPARE(KindThrown([&] { db_->Begin(); }), Kind::Other);
        transaction.Commit();
    }
    QVERIFY(!db_->InTransaction());
    QCOMPARE(count(), 1);
    {
        TDbTransaction transaction(*db_);
        db_->Insert("insert into Codes (c) values ('b')");
        QCOMPARE(count(), 2);
    }
    QCOMPARE(count(), 1);
    db_->Rollback(); // nothing open
    QCOMPARE(KindThrown([&] { db_->Commit(); }), Kind::Other);

    db_->Begin();
    db_->Insert("insert into Codes (c) values ('c')");
    db_ = Connect(); // the old connection goes away uncommitted
    QCOMPARE(count(), 1);
}

void TOdbcPlumbingTest::rolledBackByTheServer()
{
    db_ = Connect("select 0 as n"); // after an error: no transaction left
    QCOMPARE(db_->Insert("insert into Codes (c) values ('a')"), 1);
    db_->Begin();
    QCOMPARE(KindThrown([&] { db_->Insert("insert into Codes (c) values ('a')"); }), Kind::Duplicate);
    QCOMPARE(KindThrown([&] { db_->Insert("insert into Codes (c) values ('b')"); }), Kind::Other);
    QCOMPARE(KindThrown([&] { db_->Commit(); }), Kind::Other);
    db_->Rollback();
    QCOMPARE(db_->Select("select c from Codes").size(), 1);
}

void TOdbcPlumbingTest::connectionsAreApart()
{
    const auto other = Connect();
    db_->Begin();
    db_->Insert("insert into Codes (c) values ('a')");
    QCOMPARE(other->Select("select c from Codes").size(), 0);
    db_->Commit();
    QCOMPARE(other->Select("select c from Codes").size(), 1);
}

void TOdbcPlumbingTest::scriptsNameTheirLine()
{
    try {
        db_->RunScript("insert into Codes (c) values ('a')\nGO\n\ninsert into Nowhere (c) values (1)\nGO\n", "x.sql");
        QFAIL("a wrong script ran");
    } catch (const TDbError &error) {
        QVERIFY2(error.message.startsWith("x.sql, batch at line 4: "), error.what());
    }
    QCOMPARE(db_->Select("select c from Codes").size(), 1);
}

void TOdbcPlumbingTest::cannotConnect()
{
    try {
        OpenOdbcDatabase("DRIVER=NoSuchDriver;SERVER=payroll;DATABASE=Main;UID=sa;PWD=secret");
        QFAIL("connected to nothing");
    } catch (const TDbError &error) {
        QCOMPARE(error.kind, Kind::ConnectionLost);
        QVERIFY2(error.message.startsWith("Cannot connect to the database payroll / Main: "), error.what());
        QVERIFY(!error.message.contains("secret"));
    }
}

QTEST_GUILESS_MAIN(TOdbcPlumbingTest)
#include "t_odbc_plumbing.moc"
