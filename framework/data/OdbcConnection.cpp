// SPDX-License-Identifier: Apache-2.0
#include "framework/data/OdbcConnection.h"

#include <QDate>
#include <QDateTime>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

#include "framework/data/SqlText.h"

namespace {

Q_LOGGING_CATEGORY(lcOdbc, "corvex.data")

// ODBC's type codes, as QSqlField::typeID() gives them.
constexpr int kOdbcBit = -7;
constexpr int kOdbcNumeric = 2;
constexpr int kOdbcDecimal = 3;
constexpr int kOdbcFloat = 6;
constexpr int kOdbcReal = 7;
constexpr int kOdbcDouble = 8;

// "[FreeTDS][SQL Server]Invalid column name" -> "Invalid column name"
QString WithoutDriverNames(const QString &text)
{
    static const QRegularExpression names(
        QStringLiteral(R"(\[[^\]]*(?:ODBC|SQL|FreeTDS|Driver|Microsoft|unixODBC|DataDirect)[^\]]*\])"),
        QRegularExpression::CaseInsensitiveOption);
    return QString(text).remove(names).simplified();
}

int NumberOf(const QSqlError &error)
{
    constexpr int kStatementTerminated = 3621; // only follows the error proper
    int number = 0;
    const QStringList codes = error.nativeErrorCode().split(u';', Qt::SkipEmptyParts);
    for (const QString &code : codes) {
        if (code.toInt() != kStatementTerminated && number == 0)
            number = code.toInt();
    }
    return number;
}

QVariant FromServer(const QVariant &value, int odbcType)
{
    if (!value.isValid() || value.isNull())
        return {};
    switch (odbcType) {
    case kOdbcBit:
        return value.toBool();
    case kOdbcNumeric:
    case kOdbcDecimal:
    case kOdbcFloat:
    case kOdbcReal: // comes as a text
    case kOdbcDouble:
        return value.toDouble();
    default:
        break;
    }
    switch (value.typeId()) {
    case QMetaType::UInt:
        return value.toInt();
    case QMetaType::QDate:
        return QDateTime(value.toDate(), QTime(0, 0));
    case QMetaType::QString: {
        const QString text = value.toString();
        return text.isNull() ? QStringLiteral("") : text;
    }
    default:
        return value;
    }
}

// A key=value of a connection string; the first of the keys that is there.
QString PartOf(const QString &connectionString, const QStringList &keys)
{
    const QStringList parts = connectionString.split(u';', Qt::SkipEmptyParts);
    for (const QString &key : keys) {
        for (const QString &part : parts) {
            const qsizetype equals = part.indexOf(u'=');
            if (equals > 0 && QStringView(part).left(equals).trimmed().compare(key, Qt::CaseInsensitive) == 0)
                return part.mid(equals + 1).trimmed();
        }
    }
    return {};
}

class TOdbcConnection final : public TDbConnection
{
public:
    TOdbcConnection(const QString &connectionString, std::unique_ptr<TOdbcDialect> dialect)
        : dialect_(std::move(dialect))
    {
        static int made = 0;
        name_ = QStringLiteral("corvex_odbc_%1").arg(++made);
        description_ = DescriptionOf(connectionString);
        try {
            Connect(connectionString);
        } catch (...) {
            Drop();
            throw;
        }
    }

    ~TOdbcConnection() override
    {
        try {
            Rollback();
        } catch (const TDbError &error) {
            qCWarning(lcOdbc).noquote() << "Rollback failed:" << error.message;
        }
        Drop();
    }

    TDbRows Select(const QString &sql, const TDbParams &params) override
    {
        TAnswer answer = Run(sql, params);
        if (!answer.hasRows)
            throw TDbError(TDbError::Kind::Statement, 0, QStringLiteral("The statement gives no rows."), sql);
        return std::move(answer.rows);
    }

    int Execute(const QString &sql, const TDbParams &params) override
    {
        return Asked(dialect_->RowCount(WithoutEnd(sql)), params);
    }

    int Insert(const QString &sql, const TDbParams &params) override
    {
        return Asked(dialect_->NewKey(WithoutEnd(sql)), params);
    }

    TDbCallResult Call(const QString &procedure, const QList<TDbArgument> &arguments) override
    {
        const TOdbcDialect::TCallText call = dialect_->Call(procedure, arguments);
        const TDbRows rows = Run(call.text, call.params).rows;
        if (rows.isEmpty())
            throw TDbError(TDbError::Kind::Other, 0,
                           QStringLiteral("The procedure \"%1\" gave no result.").arg(procedure), call.text);
        TDbCallResult result;
        const QVariantList &row = rows.rows.constFirst();
        result.returnValue = row.value(0).toInt();
        int column = 0;
        for (const TDbArgument &argument : arguments) {
            if (argument.inOut)
                result.outputs.insert(argument.name, row.value(++column));
        }
        return result;
    }

    void RunScript(const QString &script, const QString &title) override
    {
        const QList<sqltext::TBatch> batches = sqltext::CutAtGo(script);
        for (const sqltext::TBatch &batch : batches) {
            try {
                RunText(batch.text, {});
            } catch (const TDbError &error) {
                throw TDbError(error.kind, error.number,
                               QStringLiteral("%1, batch at line %2: %3").arg(title).arg(batch.line).arg(error.message),
                               batch.text);
            }
        }
    }

    void Begin() override
    {
        if (inTransaction_)
            throw TDbError(TDbError::Kind::Other, 0, QStringLiteral("A transaction is already open."));
        RunText(dialect_->BeginText(), {});
        inTransaction_ = true;
        lostTo_.clear();
    }

    void Commit() override
    {
        if (!inTransaction_)
            throw TDbError(TDbError::Kind::Other, 0, QStringLiteral("No transaction is open."));
        RunText(dialect_->CommitText(), {});
        inTransaction_ = false;
    }

    void Rollback() override
    {
        if (!inTransaction_)
            return;
        inTransaction_ = false; // whatever the server answers: a lost connection has rolled back too
        lostTo_.clear();
        RunText(dialect_->RollbackText(), {});
    }

    bool InTransaction() const override { return inTransaction_; }
    QString Description() const override { return description_; }

private:
    struct TAnswer
    {
        TDbRows rows; // of the last result that has columns
        bool hasRows = false;
    };

    static QString DescriptionOf(const QString &connectionString)
    {
        const QString server =
            PartOf(connectionString, {QStringLiteral("SERVER"), QStringLiteral("SERVERNAME"), QStringLiteral("DSN")});
        const QString database = PartOf(connectionString, {QStringLiteral("DATABASE")});
        return server.isEmpty() || database.isEmpty() ? server + database : server + QStringLiteral(" / ") + database;
    }

    void Connect(const QString &connectionString)
    {
        db_ = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name_);
        if (!db_.isValid())
            throw TDbError(TDbError::Kind::Other, 0, QStringLiteral("Qt's ODBC driver (QODBC) is not installed."));
        // The driver puts "DSN=" before whatever names neither a driver nor a server.
        QString name = connectionString.trimmed();
        const bool complete =
            name.contains(u"DRIVER", Qt::CaseInsensitive) || name.contains(u"SERVER", Qt::CaseInsensitive);
        if (!complete && name.startsWith(u"DSN=", Qt::CaseInsensitive))
            name.remove(0, 4);
        db_.setDatabaseName(name);
        if (!db_.open())
            throw TDbError(TDbError::Kind::ConnectionLost, NumberOf(db_.lastError()),
                           QStringLiteral("Cannot connect to the database %1: %2")
                               .arg(description_, WithoutDriverNames(db_.lastError().databaseText())));
        const QStringList settings = dialect_->SessionSettings();
        for (const QString &setting : settings) {
            QSqlQuery query(db_);
            query.setForwardOnly(true);
            if (!query.exec(setting))
                qCInfo(lcOdbc).noquote() << setting << "is refused:" << query.lastError().databaseText();
        }
    }

    void Drop()
    {
        db_ = QSqlDatabase(); // the last handle must be gone before the name is taken back
        QSqlDatabase::removeDatabase(name_);
    }

    // A trailing semicolon would leave an empty statement before what is appended.
    static QString WithoutEnd(const QString &sql)
    {
        QString text = sql.trimmed();
        while (text.endsWith(u';'))
            text = text.chopped(1).trimmed();
        return text;
    }

    // The number in the first row and column of the last result; 0 when it is NULL.
    int Asked(const TOdbcDialect::TAsked &asked, const TDbParams &params)
    {
        TAnswer answer = Run(asked.text, params);
        if (!asked.after.isEmpty())
            answer = Run(asked.after, {});
        return answer.rows.rows.value(0).value(0).toInt();
    }

    TAnswer Run(const QString &sql, const TDbParams &params)
    {
        const QList<sqltext::TPiece> pieces = sqltext::CutAtParameters(sql);
        QString text;
        QVariantList values;
        QSet<QString> used;
        for (const sqltext::TPiece &piece : pieces) {
            text += piece.text;
            if (piece.name.isEmpty())
                continue;
            const auto given = params.constFind(piece.name);
            if (given == params.constEnd())
                throw TDbError(TDbError::Kind::Statement, 137,
                               QStringLiteral("No value is given for \":%1\".").arg(piece.name), sql);
            used.insert(piece.name);
            const QVariant value = sqltext::DbValue(*given);
            if (value.isValid()) {
                text += dialect_->Placeholder(value);
                values.append(value);
            } else {
                text += QStringLiteral("null"); // an untyped NULL cannot be bound for every column
            }
        }
        for (auto it = params.cbegin(); it != params.cend(); ++it) {
            if (!used.contains(it.key()))
                throw TDbError(TDbError::Kind::Statement, 8145,
                               QStringLiteral("The statement does not use the value \":%1\".").arg(it.key()), sql);
        }
        return RunText(text, values);
    }

    // Runs a text with "?" places and reads every result to its end: an open one keeps the connection busy.
    TAnswer RunText(const QString &text, const QVariantList &values)
    {
        if (inTransaction_ && !lostTo_.isEmpty())
            throw TDbError(TDbError::Kind::Other, 0,
                           QStringLiteral("The server has rolled the transaction back: %1").arg(lostTo_), text);
        TAnswer answer;
        QSqlError error;
        {
            QSqlQuery query(db_);
            query.setForwardOnly(true); // else the driver asks for a scrollable server cursor
            if (Start(query, text, values)) {
                do {
                    ReadResult(query, answer);
                } while (!query.lastError().isValid() && query.nextResult());
            }
            error = query.lastError();
        }
        if (error.isValid())
            Fail(error, text);
        return answer;
    }

    static bool Start(QSqlQuery &query, const QString &text, const QVariantList &values)
    {
        if (values.isEmpty())
            return query.exec(text);
        if (!query.prepare(text))
            return false;
        for (const QVariant &value : values)
            query.addBindValue(value);
        return query.exec();
    }

    static void ReadResult(QSqlQuery &query, TAnswer &answer)
    {
        if (!query.isSelect())
            return;
        const QSqlRecord record = query.record();
        TDbRows rows;
        QList<int> types;
        for (int i = 0; i < record.count(); ++i) {
            rows.columns.append(record.fieldName(i));
            types.append(record.field(i).typeID());
        }
        while (query.next()) {
            QVariantList row;
            row.reserve(types.size());
            for (int i = 0; i < types.size(); ++i)
                row.append(FromServer(query.value(i), types[i]));
            rows.rows.append(row);
        }
        answer.rows = std::move(rows);
        answer.hasRows = true;
    }

    [[noreturn]] void Fail(const QSqlError &error, const QString &statement)
    {
        const int number = NumberOf(error);
        const QString told = WithoutDriverNames(error.databaseText());
        const QString message = told.isEmpty() ? error.text() : told;
        const TDbError::Kind kind = dialect_->ErrorKind(number, message);
        if (inTransaction_ && lostTo_.isEmpty() && (kind == TDbError::Kind::ConnectionLost || !TransactionAlive()))
            lostTo_ = message;
        throw TDbError(kind, number, message, statement);
    }

    // Some errors (a deadlock, a failed conversion) roll the whole transaction back on the server. What is written
    // after one of those would be kept on its own.
    bool TransactionAlive() const
    {
        const QString question = dialect_->OpenTransactionsText();
        if (question.isEmpty())
            return true;
        QSqlQuery query(db_);
        query.setForwardOnly(true);
        return query.exec(question) && query.next() && query.value(0).toInt() > 0;
    }

    std::unique_ptr<TOdbcDialect> dialect_;
    QString name_;
    QString description_;
    QSqlDatabase db_;
    bool inTransaction_ = false;
    QString lostTo_; // the error with which the server rolled the open transaction back
};

} // namespace

std::unique_ptr<TDbConnection> OpenOdbcDatabase(const QString &connectionString, std::unique_ptr<TOdbcDialect> dialect)
{
    return std::make_unique<TOdbcConnection>(connectionString, std::move(dialect));
}

std::unique_ptr<TDbConnection> OpenOdbcDatabase(const QString &connectionString)
{
    return OpenOdbcDatabase(connectionString, std::make_unique<TSqlServerDialect>());
}
