// SPDX-License-Identifier: Apache-2.0
// What can happen to a database file: foreign, newer, damaged, locked, read-only, full disk, a writer that is killed.
#include <QFile>

#include <sqlite3.h>

#include <csignal>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/embedded/EmbeddedTest.h"

using embedded::Engine;
using embedded::Error;
using Kind = Error::Kind;

namespace {

// Runs in a process of its own, which may break its limits or die; gives its exit status as waitpid does.
template <typename Work> int InChild(Work work)
{
    const pid_t child = fork();
    if (child == 0) {
        int status = 99;
        try {
            status = work();
        } catch (const Error &error) {
            fprintf(stderr, "child: %s\n", error.what());
        }
        _exit(status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

QString First(Engine &engine, const QString &query)
{
    return Shown(engine.Run(query).rows);
}

} // namespace

class TestEmbeddedFiles final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void CreateAndOpen();
    void ForeignFiles_data();
    void ForeignFiles();
    void TruncatedFile();
    void LockedByAnotherWriter();
    void ReadersDoNotWait();
    void ReadOnlyFile();
    void DiskFull();
    void KilledWriterLeavesOldOrNew();

private:
    void Plain(const char *sql) // as another program would
    {
        sqlite3 *plain = nullptr;
        sqlite3_open(file_.toUtf8().constData(), &plain);
        char *message = nullptr;
        sqlite3_exec(plain, sql, nullptr, nullptr, &message);
        sqlite3_close(plain);
        QVERIFY2(!message, message);
    }

    std::unique_ptr<QTemporaryDir> dir_;
    QString file_;
};

void TestEmbeddedFiles::init()
{
    dir_ = std::make_unique<QTemporaryDir>();
    file_ = dir_->filePath("data base%20é.db"); // a name that is no plain URI
    Engine::Create(file_)->Run(
        "create table T (id int identity(1,1) primary key, c varchar(max), n int) insert T (c, n) values ('first', 1)");
}

void TestEmbeddedFiles::CreateAndOpen()
{
    QP_FAULT(Engine::Create(file_), 1802, Kind::Other);
    QP_FAULT(Engine::Create(dir_->filePath("no/such/folder.db")), 5120, Kind::Other);
    QP_FAULT(Engine::Open(dir_->filePath("missing.db")), 5133, Kind::Other);
    QP_FAULT(Engine::Open(dir_->path()), 5133, Kind::Other);
    auto engine = Engine::Open(file_);
    QCOMPARE(First(*engine, "select c from T"), "first");
    QCOMPARE(engine->FileName(), file_);
    QVERIFY(!engine->IsReadOnly());
    engine.reset();
    QVERIFY(!QFile::exists(file_ + "-wal")); // the last one to leave tidies up
}

void TestEmbeddedFiles::ForeignFiles_data()
{
    QTest::addColumn<QByteArray>("sql"); // what another program does to it
    QTest::addColumn<int>("number");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("another program's") << QByteArray("PRAGMA application_id = 7") << 1813 << Kind::ForeignFile;
    QTest::newRow("without our table") << QByteArray("DROP TABLE _corvex_objects") << 1813 << Kind::ForeignFile;
    QTest::newRow("newer") << QByteArray("PRAGMA user_version = 99") << 948 << Kind::NewerFile;
}

void TestEmbeddedFiles::ForeignFiles()
{
    QFETCH(QByteArray, sql);
    QFETCH(int, number);
    QFETCH(Kind, kind);
    Plain(sql.constData());
    QP_FAULT(Engine::Open(file_), number, kind);
}

void TestEmbeddedFiles::TruncatedFile()
{
    {
        auto engine = Engine::Open(file_);
        engine->Begin();
        for (int i = 0; i < 200; ++i)
            engine->Run("insert T (c) values (:c)", {{"c", QString(1000, u'x')}});
        engine->Commit();
    }
    QFile file(file_);
    const qint64 size = file.size();
    for (const qint64 part : {size - 4096, size / 2, qint64(5000), qint64(100), qint64(50), qint64(0)}) {
        QVERIFY(file.resize(part));
        QP_FAULT(Engine::Open(file_)->Run("select * from T"), 824, Kind::Damaged);
    }
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(10000, 'g'));
    file.close();
    QP_FAULT(Engine::Open(file_), 824, Kind::Damaged);
}

void TestEmbeddedFiles::LockedByAnotherWriter()
{
    auto one = Engine::Open(file_, {50, 16});
    auto two = Engine::Open(file_, {50, 16});
    one->Begin();
    one->Run("update T set n = 2");
    QP_FAULT(two->Begin(), 1222, Kind::Locked);
    QVERIFY(!two->InTransaction());
    QP_FAULT(two->Run("update T set n = 3"), 1222, Kind::Locked);
    QP_FAULT(two->Run("create table U (i int)"), 1222, Kind::Locked);
    one->Commit();
    QCOMPARE(two->Run("update T set n = n + 1").affected, 1);
    QCOMPARE(First(*one, "select n from T"), "3");

    // what one defines, the other sees without being told
    one->Run("create table U (i int) insert U values (5)");
    QCOMPARE(First(*two, "select i from U"), "5");
    one->Run("alter table U add j int");
    QCOMPARE(First(*two, "select j from U"), "NULL");
}

void TestEmbeddedFiles::ReadersDoNotWait()
{
    auto writer = Engine::Open(file_, {50, 16});
    auto reader = Engine::Open(file_, {50, 16});
    writer->Begin();
    writer->Run("update T set c = 'changed'");
    QCOMPARE(First(*reader, "select c from T"), "first");
    writer->Commit();
    QCOMPARE(First(*reader, "select c from T"), "changed");
}

void TestEmbeddedFiles::ReadOnlyFile()
{
    QVERIFY(QFile::setPermissions(file_, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    QVERIFY(QFile::setPermissions(dir_->path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                                    QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));
    // permissions say nothing to root
    const int status = InChild([this] {
        if (geteuid() == 0 && setuid(65534) != 0)
            return 77;
        auto engine = Engine::Open(file_);
        if (!engine->IsReadOnly() || First(*engine, "select c from T") != "first")
            return 1;
        if (FaultOf([&] { engine->Run("update T set n = 9"); }) != std::pair(3906, Kind::ReadOnly))
            return 2;
        if (FaultOf([&] {
                engine->Begin();
                engine->Run("delete T");
            }) != std::pair(3906, Kind::ReadOnly))
            return 3;
        return 0;
    });
    QFile::setPermissions(dir_->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QVERIFY(WIFEXITED(status));
    if (WEXITSTATUS(status) == 77)
        QSKIP("the user cannot be changed here");
    QCOMPARE(WEXITSTATUS(status), 0);
}

// A file may grow to a limit, as on a full disk: the error is told, the transaction is as InTransaction says, nothing
// is lost.
void TestEmbeddedFiles::DiskFull()
{
    const int status = InChild([this] {
        auto engine = Engine::Open(file_);
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{300000, 300000};
        setrlimit(RLIMIT_FSIZE, &limit);
        const auto fill = [&] {
            for (int i = 0; i < 2000; ++i)
                engine->Run("insert T (c, n) values (:c, :i)", {{"c", QString(2000, u'x')}, {"i", i}});
        };
        engine->Begin();
        engine->Run("insert T (c) values ('goes')");
        const auto fault = FaultOf([&] {
            fill();
            engine->Commit();
        });
        if (fault.second != Kind::DiskFull && fault.first != 823)
            return 1;
        const bool open = engine->InTransaction();
        engine->Rollback();
        if (engine->InTransaction())
            return 2;
        if (First(*engine, "select count(*) as n from T") != "1")
            return open ? 3 : 4;
        if (First(*engine, "select @@trancount as n") != "0")
            return 5;
        return 0;
    });
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
    auto engine = Engine::Open(file_);
    QCOMPARE(First(*engine, "select c, n from T"), "first|1");
    QCOMPARE(engine->Run("insert T (c) values ('again')").affected, 1);
}

// Kills a process that saves again and again; afterwards every save is there as a whole or not at all.
void TestEmbeddedFiles::KilledWriterLeavesOldOrNew()
{
    {
        auto engine = Engine::Open(file_);
        engine->RunScript(
            "create table P (id int primary key, n int not null)\nGO\ncreate table Q (id int primary key, n int not "
            "null)\nGO\n"
            "insert P values (1, 0) insert Q values (1, 0)\nGO\n"
            "create procedure spSave @n int as begin begin tran update P set n = @n update Q set n = @n commit end",
            "kill");
    }
    qlonglong before = 0;
    for (int round = 0; round < 12; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            try {
                auto engine = Engine::Open(file_);
                for (int n = int(before) + 1;; ++n) {
                    if (n % 2) {
                        QVariantMap values{{"n", n}};
                        engine->Call("spSave", values);
                    } else {
                        engine->Begin();
                        engine->Run("update P set n = :n", {{"n", n}});
                        engine->Run("update Q set n = :n", {{"n", n}});
                        engine->Commit();
                    }
                }
            } catch (...) {
                _exit(1);
            }
        }
        usleep(useconds_t(20000 + 7000 * round));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        QVERIFY(WIFSIGNALED(status));
        auto engine = Engine::Open(file_);
        const QVariantList row = engine->Run("select P.n, Q.n as m from P, Q").rows.rows.first();
        QCOMPARE(row[0], row[1]);
        QVERIFY(row[0].toLongLong() >= before);
        before = row[0].toLongLong();
        QCOMPARE(engine->Run("update P set n = n").affected, 1); // no lock is left behind
    }
    QVERIFY(before > 0);
    sqlite3 *plain = nullptr;
    sqlite3_open(file_.toUtf8().constData(), &plain);
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(plain, "PRAGMA integrity_check", -1, &statement, nullptr);
    QCOMPARE(sqlite3_step(statement), SQLITE_ROW);
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0))), "ok");
    sqlite3_finalize(statement);
    sqlite3_close(plain);
}

QTEST_GUILESS_MAIN(TestEmbeddedFiles)
#include "t_embedded_files.moc"
