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

// The shared database as everything above it sees it: T-SQL text with named parameters (":name"), whichever engine runs
// it.

// A failed database operation, told in the server's words.
class CORVEX_API TDbError : public std::exception
{
public:
    enum class Kind {
        Statement, // syntax, unknown object, outside the embedded subset
        Duplicate,
        Referenced,
        TooLong,
        NullValue,
        Check,
        Busy, // locked by another user
        ReadOnly,
        DiskFull,
        Damaged,
        ForeignFile,
        NewerFile,
        ConnectionLost,
        Raised, // a procedure raised it
        Other
    };
    TDbError(Kind kind, int number, QString message, QString statement = {});
    const char *what() const noexcept override { return utf8_.constData(); }

    const Kind kind;
    const int number;      // the server's error number, 0 when it has none
    const QString message; // complete, for a person
    const QString statement;

private:
    QByteArray utf8_;
};

// Named values for a statement, without the colon. A value that the text does not use, or a missing one, is an error.
using TDbParams = QVariantMap;

// A result read to its end, so that no cursor is ever left open on the connection.
// NULL is an invalid QVariant; int, bool (bit), double (float, money), QString and QDateTime otherwise.
struct CORVEX_API TDbRows
{
    QStringList columns;
    QList<QVariantList> rows;

    bool isEmpty() const { return rows.isEmpty(); }
    int size() const { return int(rows.size()); }
    // Column position without regard to case; -1 when there is none.
    int ColumnIndex(QStringView name) const;
    // A value by row and column name; throws TDbError when either does not exist.
    QVariant Value(int row, QStringView column) const;
};

// One argument of a stored procedure; the name is without '@'. An InOut argument's type is its value's type
// (pass a typed NULL, QVariant(QMetaType(...)), when it has no value yet).
struct TDbArgument
{
    QString name;
    QVariant value;
    bool inOut = false;
};

struct TDbCallResult
{
    int returnValue = 0;
    QVariantMap outputs; // InOut arguments by name
};

class CORVEX_API TDbConnection
{
public:
    virtual ~TDbConnection() = default;

    // All operations throw TDbError.
    virtual TDbRows Select(const QString &sql, const TDbParams &params = {}) = 0;
    // Gives the number of rows touched.
    virtual int Execute(const QString &sql, const TDbParams &params = {}) = 0;
    // Runs one INSERT and gives the identity value that the server made; 0 when the table has none.
    virtual int Insert(const QString &sql, const TDbParams &params = {}) = 0;
    virtual TDbCallResult Call(const QString &procedure, const QList<TDbArgument> &arguments) = 0;
    // Runs batches separated by lines that hold GO alone; `title` names the script in errors.
    virtual void RunScript(const QString &script, const QString &title) = 0;

    // Transactions do not nest: Begin throws when one is open. Use TDbTransaction.
    virtual void Begin() = 0;
    virtual void Commit() = 0;
    virtual void Rollback() = 0; // nothing when none is open
    virtual bool InTransaction() const = 0;

    // Where the data is, for the status bar (a file name, or server and database).
    virtual QString Description() const = 0;
};

// Rolls back when it goes out of scope uncommitted.
class CORVEX_API TDbTransaction
{
public:
    explicit TDbTransaction(TDbConnection &connection);
    ~TDbTransaction();
    TDbTransaction(const TDbTransaction &) = delete;
    TDbTransaction &operator=(const TDbTransaction &) = delete;
    void Commit();

private:
    TDbConnection &connection_;
    bool open_ = true;
};

// Text as a T-SQL literal: quotes added, apostrophes doubled. For the few places that build a criterion as text.
CORVEX_API QString QuotedSQL(QStringView text);

// The ways to a connection. Each throws TDbError with a message that a person can act on.
CORVEX_API std::unique_ptr<TDbConnection> CreateEmbeddedDatabase(const QString &file);
CORVEX_API std::unique_ptr<TDbConnection> OpenEmbeddedDatabase(const QString &file);
// `connectionString` as ODBC takes it ("DRIVER=FreeTDS;SERVER=...;DATABASE=...").
CORVEX_API std::unique_ptr<TDbConnection> OpenOdbcDatabase(const QString &connectionString);

// The host's shared connection. MainConnection throws TDbError while there is none.
CORVEX_API void SetMainConnection(std::unique_ptr<TDbConnection> connection);
CORVEX_API TDbConnection &MainConnection();
CORVEX_API bool HasMainConnection();
