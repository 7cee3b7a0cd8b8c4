// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/data/Database.h"

// What differs between servers behind ODBC: the texts in which a server is asked for what ODBC itself does not tell
// reliably, and the meaning of its error numbers. Internal to the data layer.
class TOdbcDialect
{
public:
    // A text to run with the caller's values and, when not empty, one to run after it. The last result of the two
    // holds the answer in its first row and column.
    struct TAsked
    {
        QString text;
        QString after;
    };
    // A procedure call as one statement with named values. The last result is one row: the return value, then the
    // InOut arguments in their order.
    struct TCallText
    {
        QString text;
        TDbParams params;
    };

    virtual ~TOdbcDialect() = default;
    // Run one by one after connecting; a server that does not know one of them works without it.
    virtual QStringList SessionSettings() const = 0;
    virtual QString BeginText() const = 0;
    virtual QString CommitText() const = 0;
    virtual QString RollbackText() const = 0; // nothing to roll back is no error
    // Gives the number of open transactions; empty when the server cannot be asked.
    virtual QString OpenTransactionsText() const = 0;
    // What stands in a text for one bound value.
    virtual QString Placeholder(const QVariant &value) const = 0;
    virtual TAsked RowCount(const QString &sql) const = 0;
    virtual TAsked NewKey(const QString &sql) const = 0;
    // Throws TDbError for names and types that cannot be passed.
    virtual TCallText Call(const QString &procedure, const QList<TDbArgument> &arguments) const = 0;
    virtual TDbError::Kind ErrorKind(int number, const QString &message) const = 0;
};

class TSqlServerDialect final : public TOdbcDialect
{
public:
    QStringList SessionSettings() const override;
    QString BeginText() const override;
    QString CommitText() const override;
    QString RollbackText() const override;
    QString OpenTransactionsText() const override;
    QString Placeholder(const QVariant &value) const override;
    TAsked RowCount(const QString &sql) const override;
    TAsked NewKey(const QString &sql) const override;
    TCallText Call(const QString &procedure, const QList<TDbArgument> &arguments) const override;
    TDbError::Kind ErrorKind(int number, const QString &message) const override;
};

std::unique_ptr<TDbConnection> OpenOdbcDatabase(const QString &connectionString, std::unique_ptr<TOdbcDialect> dialect);
