// SPDX-License-Identifier: Apache-2.0
#include "embedded/Engine.h"

#include <QFile>
#include <QFileInfo>

#include "embedded/Database.h"
#include "embedded/Interpreter.h"
#include "embedded/Parser.h"

namespace embedded {

using namespace Qt::StringLiterals;

namespace {

constexpr int kApplicationId = 0x43765831; // "CvX1": which files are ours
constexpr int kFormatVersion = 1;          // of _corvex_objects and of what the schema's texts look like

void Prepare(Database &database)
{
    database.Execute(u"PRAGMA foreign_keys = ON"_s);
    database.Execute(u"PRAGMA synchronous = FULL"_s); // a save that was reported survives the power's failure
    database.Execute(u"PRAGMA temp_store = MEMORY"_s);
    sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_DQS_DML, 0, nullptr); // "x" is a name and nothing else
    sqlite3_db_config(database.Handle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_limit(database.Handle(), SQLITE_LIMIT_LENGTH, 64 << 20); // no value of ours comes near it, a mistake might
}

} // namespace

struct Engine::Impl
{
    Impl(const QString &file, Database::Access access, const Limits &limits)
        : database(file, access, limits.busyTimeoutMs)
        , interpreter(database, limits)
    {}

    // Adds the statement to an error that does not name one.
    template <typename Work> auto Guarded(const QString &statement, Work work)
    {
        try {
            return work();
        } catch (const Error &error) {
            throw Error(error.kind, error.number, error.text, error.line, error.column, error.token,
                        error.statement.isEmpty() ? statement : error.statement);
        }
    }

    Database database;
    Interpreter interpreter;
};

Engine::Engine(std::unique_ptr<Impl> impl)
    : impl_(std::move(impl))
{}

Engine::~Engine() = default;

std::unique_ptr<Engine> Engine::Create(const QString &file, const Limits &limits)
{
    if (QFileInfo::exists(file))
        Fail(Error::Kind::Other, 1802, u"The file \"%1\" exists already."_s.arg(file));
    try {
        auto impl = std::make_unique<Impl>(file, Database::Access::Create, limits);
        Database &database = impl->database;
        database.Execute(u"PRAGMA journal_mode = WAL"_s);
        Prepare(database);
        database.Execute(u"BEGIN IMMEDIATE"_s);
        Catalogue::CreateStore(database);
        database.Execute(u"PRAGMA user_version = %1"_s.arg(kFormatVersion));
        database.Execute(u"PRAGMA application_id = %1"_s.arg(kApplicationId));
        database.Execute(u"COMMIT"_s);
        return std::unique_ptr<Engine>(new Engine(std::move(impl)));
    } catch (const Error &) {
        // half a database would be in the way of the next attempt
        for (const QLatin1StringView suffix : {""_L1, "-wal"_L1, "-shm"_L1, "-journal"_L1})
            QFile::remove(file + suffix);
        throw;
    }
}

std::unique_ptr<Engine> Engine::Open(const QString &file, const Limits &limits)
{
    const QFileInfo info(file);
    if (!info.isFile())
        Fail(Error::Kind::Other, 5133, u"The database file \"%1\" does not exist."_s.arg(file));
    const QFileInfo log(file + u"-wal"_s);
    if (info.size() == 0 && log.size() == 0)
        Fail(Error::Kind::Damaged, 824, u"The database file \"%1\" is damaged: it is empty."_s.arg(info.fileName()));
    auto impl = std::make_unique<Impl>(file, Database::Access::ReadWrite, limits);
    Database &database = impl->database;
    Prepare(database);
    const bool ours =
        database.Execute(u"PRAGMA application_id"_s).toLongLong() == kApplicationId &&
        database.Execute(u"SELECT count(*) FROM sqlite_schema WHERE name = '_corvex_objects'"_s).toInt() == 1;
    if (!ours)
        Fail(Error::Kind::ForeignFile, 1813,
             u"The file \"%1\" is a SQLite database, but not one of this program."_s.arg(info.fileName()));
    if (database.Execute(u"PRAGMA user_version"_s).toLongLong() > kFormatVersion)
        Fail(Error::Kind::NewerFile, 948,
             u"The database \"%1\" was made by a newer version of this program and cannot be opened by this one."_s.arg(
                 info.fileName()));
    return std::unique_ptr<Engine>(new Engine(std::move(impl)));
}

Outcome Engine::Run(const QString &batch, const QVariantMap &parameters)
{
    return impl_->Guarded(batch, [&] { return impl_->interpreter.Run(batch, parameters); });
}

int Engine::Call(const QString &procedure, QVariantMap &parameters)
{
    return impl_->Guarded(procedure, [&] { return impl_->interpreter.Call(procedure, parameters); });
}

void Engine::RunScript(const QString &script, const QString &title)
{
    for (const QString &batch : SplitScript(script)) {
        try {
            impl_->interpreter.Run(batch, {}, false);
        } catch (const Error &error) {
            throw Error(error.kind, error.number, u"%1: %2"_s.arg(title, error.text), error.line, error.column,
                        error.token, batch.trimmed());
        }
    }
}

void Engine::Begin()
{
    impl_->Guarded(u"BEGIN TRANSACTION"_s, [this] { impl_->interpreter.Begin(); });
}

void Engine::Commit()
{
    impl_->Guarded(u"COMMIT"_s, [this] { impl_->interpreter.Commit(); });
}

void Engine::Rollback()
{
    impl_->Guarded(u"ROLLBACK"_s, [this] { impl_->interpreter.Rollback(); });
}

bool Engine::InTransaction() const
{
    return impl_->database.InTransaction();
}

bool Engine::IsReadOnly() const
{
    return impl_->database.IsReadOnly();
}

QString Engine::FileName() const
{
    return impl_->database.FileName();
}

QString Engine::Translate(const QString &statement)
{
    return impl_->Guarded(statement, [&] { return impl_->interpreter.Translate(statement); });
}

void Engine::ClearTranslations()
{
    impl_->interpreter.ClearTranslations();
}

} // namespace embedded
