// SPDX-License-Identifier: Apache-2.0
#include "framework/data/Database.h"

#include <QCoreApplication>
#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcDatabase, "corvex.data")

std::unique_ptr<TDbConnection> &TheMainConnection()
{
    static std::unique_ptr<TDbConnection> connection;
    return connection;
}

} // namespace

TDbError::TDbError(Kind kind_, int number_, QString message_, QString statement_)
    : kind(kind_)
    , number(number_)
    , message(std::move(message_))
    , statement(std::move(statement_))
    , utf8_(message.toUtf8())
{}

int TDbRows::ColumnIndex(QStringView name) const
{
    for (int i = 0; i < columns.size(); ++i) {
        if (name.compare(columns[i], Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QVariant TDbRows::Value(int row, QStringView column) const
{
    const int index = ColumnIndex(column);
    if (index < 0)
        throw TDbError(TDbError::Kind::Statement, 207, QStringLiteral("The result has no column \"%1\".").arg(column));
    if (row < 0 || row >= size())
        throw TDbError(TDbError::Kind::Other, 0,
                       QStringLiteral("The result has no row %1 (it has %2).").arg(row).arg(size()));
    return rows[row][index];
}

TDbTransaction::TDbTransaction(TDbConnection &connection)
    : connection_(connection)
{
    connection_.Begin();
}

TDbTransaction::~TDbTransaction()
{
    if (!open_)
        return;
    try {
        connection_.Rollback();
    } catch (const TDbError &error) {
        // Usually on the way out of another error, which is the one to be told.
        qCWarning(lcDatabase).noquote() << "Rollback failed:" << error.message;
    }
}

void TDbTransaction::Commit()
{
    connection_.Commit();
    open_ = false;
}

QString QuotedSQL(QStringView text)
{
    return u'\'' + text.toString().replace(QLatin1String("'"), QLatin1String("''")) + u'\'';
}

void SetMainConnection(std::unique_ptr<TDbConnection> connection)
{
    // Closed with the application: Qt's drivers are gone when statics are destroyed.
    static const bool closing = [] {
        qAddPostRoutine([] { TheMainConnection().reset(); });
        return true;
    }();
    Q_UNUSED(closing)
    TheMainConnection() = std::move(connection);
}

TDbConnection &MainConnection()
{
    if (!HasMainConnection())
        throw TDbError(TDbError::Kind::ConnectionLost, 0, QStringLiteral("No database is open."));
    return *TheMainConnection();
}

bool HasMainConnection()
{
    return TheMainConnection() != nullptr;
}
