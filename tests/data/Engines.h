// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

#include "framework/data/Database.h"

using TConnect = std::function<std::unique_ptr<TDbConnection>()>;

// Runs a suite, made with a way to connect, on the embedded engine and, when QP_TEST_ODBC holds the connection string
// of an empty T-SQL database, on that too. Every call of the way opens another connection to the same database.
template <class Suite> int RunOnEveryEngine(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("conformance.db"));
    int failures = 0;
    {
        CreateEmbeddedDatabase(file);
        Suite suite([file] { return OpenEmbeddedDatabase(file); });
        failures += QTest::qExec(&suite, argc, argv);
    }
    const QString server = qEnvironmentVariable("QP_TEST_ODBC");
    if (!server.isEmpty()) {
        Suite suite([server] { return OpenOdbcDatabase(server); });
        failures += QTest::qExec(&suite, argc, argv);
    }
    return failures;
}

// The kind and text of the error that an operation ends in; fails the test by Kind::Other with an own text when it does
// not.
struct TThrown
{
    TDbError::Kind kind = TDbError::Kind::Other;
    QString message = QStringLiteral("(nothing was thrown)");
};

template <class Operation> TThrown Thrown(Operation operation)
{
    try {
        operation();
    } catch (const TDbError &error) {
        return {error.kind, error.message};
    }
    return {};
}
