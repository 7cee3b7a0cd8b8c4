// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <exception>
#include <memory>

#include "framework/Export.h"

// A T-SQL subset over SQLite. It links no widget and knows nothing of the product's tables.
namespace embedded {

// A refused or failed statement. `number` is SQL Server's own error number where there is one
// (102 syntax, 195/156 outside the subset, 207 column, 208 object, 515 NULL, 547 reference, 2627/2601 duplicate,
// 8152 text too long, 1222 locked, 3906 read-only, 1105 disk full, 824 damaged file, 50000 RAISERROR, ...).
// `line` and `column` count from 1 within the statement's text and are 0 when the error has no place in it.
class CORVEX_API Error : public std::exception
{
public:
    enum class Kind {
        Syntax,     // does not parse
        Refused,    // parses as something outside the subset
        Unknown,    // no such table, column, procedure, function or parameter
        Duplicate,  // primary key or unique index
        Referenced, // foreign key
        TooLong,    // text beyond varchar(n)
        NullValue,  // NULL in a NOT NULL column
        Check,      // another constraint, or a value that is not of the column's type
        Locked,     // another process holds the file longer than the busy timeout
        ReadOnly,
        DiskFull,
        Damaged,     // truncated or not a database
        ForeignFile, // a SQLite file that this engine did not make
        NewerFile,   // made by a newer version of the engine
        Raised,      // RAISERROR / THROW
        Other
    };

    Error(Kind kind, int number, QString text, int line = 0, int column = 0, QString token = {},
          QString statement = {});
    const char *what() const noexcept override { return utf8_.constData(); }

    const Kind kind;
    const int number;
    const QString text; // complete, for a person
    const int line;
    const int column;
    const QString token;
    const QString statement;

private:
    QByteArray utf8_;
};

// One result set, read to its end. Values: NULL as an invalid QVariant, int/smallint/tinyint as int, bigint as
// qlonglong, bit as bool, float/real/money/decimal as double, text as QString, datetime as QDateTime (local time), date
// as QDate.
struct Rows
{
    QStringList columns;
    QList<QVariantList> rows;
};

struct Outcome
{
    Rows rows; // of the last SELECT that returns rows to the caller
    bool hasRows = false;
    int affected = -1;      // rows that the last INSERT/UPDATE/DELETE touched
    qlonglong identity = 0; // SCOPE_IDENTITY() after the batch, 0 when nothing was generated
};

struct Limits
{
    int busyTimeoutMs = 5000;
    int cachedStatements = 512;
};

// One open database file and everything that runs on it. Belongs to the thread that made it.
class CORVEX_API Engine
{
public:
    // Creates an empty database file. Throws Error when the file exists or cannot be made.
    static std::unique_ptr<Engine> Create(const QString &file, const Limits &limits = {});
    // Opens a file that Create made. Throws Error: ForeignFile, NewerFile, Damaged, Locked, or Other when it does not
    // exist. A file that cannot be written opens for reading; the first write then fails with ReadOnly.
    static std::unique_ptr<Engine> Open(const QString &file, const Limits &limits = {});
    ~Engine();

    // Runs a batch (one statement or several, without GO). `parameters` are named without ':' or '@';
    // a name in the text that is missing there, or one there that the text does not use, is an error.
    // Outside a transaction the batch as a whole is atomic when it is a single statement.
    Outcome Run(const QString &batch, const QVariantMap &parameters = {});

    // Calls a stored procedure. `parameters` (names without '@') go in; on return the OUTPUT ones hold their last
    // values. Gives the procedure's return value (0 without RETURN).
    int Call(const QString &procedure, QVariantMap &parameters);

    // Runs a script: batches separated by lines that hold GO alone. `title` names it in errors. Not one transaction of
    // its own: the caller decides.
    void RunScript(const QString &script, const QString &title);

    void Begin(); // BEGIN IMMEDIATE; throws when one is open
    void Commit();
    void Rollback(); // does nothing when none is open
    bool InTransaction() const;

    bool IsReadOnly() const;
    QString FileName() const;

    // The SQLite text that a single SELECT, INSERT, UPDATE or DELETE becomes (cached by text as Run does).
    // For tests, benchmarks and the curious; throws as Run does.
    QString Translate(const QString &statement);
    // Forgets cached translations (benchmarks measure the cold case with it).
    void ClearTranslations();

private:
    struct Impl;
    explicit Engine(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

} // namespace embedded
