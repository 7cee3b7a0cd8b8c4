// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVariant>

#include <sqlite3.h>

#include <functional>
#include <memory>
#include <optional>

#include "embedded/Engine.h"

namespace embedded {

struct StatementCloser
{
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, StatementCloser>;

// The SQLite connection. Values that travel to and from it are invalid (NULL), qlonglong, double, QString or
// QByteArray.
class Database
{
public:
    enum class Access { Create, ReadWrite };

    Database(const QString &file, Access access, int busyTimeoutMs);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    sqlite3 *Handle() const { return handle_; }
    const QString &FileName() const { return file_; }
    bool IsReadOnly() const;
    bool InTransaction() const { return sqlite3_get_autocommit(handle_) == 0; }

    StatementHandle Prepare(const QString &sql);
    // True when there is a row; throws Error.
    bool Step(sqlite3_stmt *statement);
    void Bind(sqlite3_stmt *statement, int index, const QVariant &value);
    static QVariant Value(sqlite3_stmt *statement, int column);

    // Runs SQLite text of the engine's own to its end; gives the first value of the first row.
    QVariant Execute(const QString &sql, const QVariantList &values = {});

    // A function that runs within SQLite leaves its error here; Step throws it.
    void Defer(const Error &error) { pending_.emplace(error); }
    // What the SQL function cx_call does: set by the interpreter.
    std::function<QVariant(const QString &function, const QVariantList &arguments)> callFunction;

    // For SELECTs that fail in sqlite3_step and for everything else: the error of `code` in the engine's words.
    [[noreturn]] void Throw(int code);

private:
    [[noreturn]] void ThrowConstraint(int code, const QString &message);
    void OpenHandle(const QString &name, int flags);
    QString KeyKind(const QString &table, const QStringList &columns);

    QString file_;
    sqlite3 *handle_ = nullptr;
    std::optional<Error> pending_;
    bool immutable_ = false;
};

} // namespace embedded
