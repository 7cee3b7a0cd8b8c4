// SPDX-License-Identifier: Apache-2.0
#include "embedded/Database.h"

#include <QFileInfo>
#include <QStringList>
#include <QUrl>

#include "embedded/Functions.h"
#include "embedded/Lexer.h"

namespace embedded {

using namespace Qt::StringLiterals;

Database::Database(const QString &file, Access access, int busyTimeoutMs)
    : file_(file)
{
    OpenHandle(QFileInfo(file).absoluteFilePath(),
               SQLITE_OPEN_READWRITE | (access == Access::Create ? SQLITE_OPEN_CREATE : 0));
    try {
        sqlite3_extended_result_codes(handle_, 1);
        sqlite3_busy_timeout(handle_, busyTimeoutMs);
        if (access == Access::ReadWrite) {
            // The first look at the file says whether it is one. A write-ahead log needs its index beside it: where
            // that cannot be made, the file is read as it stands.
            sqlite3_stmt *statement = nullptr;
            int code = sqlite3_prepare_v2(handle_, "PRAGMA schema_version", -1, &statement, nullptr);
            if (code == SQLITE_OK)
                code = sqlite3_step(statement) == SQLITE_ROW ? SQLITE_OK : sqlite3_extended_errcode(handle_);
            sqlite3_finalize(statement);
            const bool noIndex = (code & 0xff) == SQLITE_CANTOPEN || code == SQLITE_READONLY_DIRECTORY ||
                                 code == SQLITE_READONLY_CANTINIT;
            if (noIndex && QFileInfo(file + u"-wal"_s).size() == 0) { // what the log holds must not go unread
                sqlite3_close_v2(std::exchange(handle_, nullptr));
                const QByteArray path = QUrl::toPercentEncoding(QFileInfo(file).absoluteFilePath(), "/");
                OpenHandle(u"file:"_s + QString::fromLatin1(path) + u"?immutable=1"_s,
                           SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
                sqlite3_extended_result_codes(handle_, 1);
                immutable_ = true;
            } else if (code != SQLITE_OK) {
                Throw(code);
            }
        }
        RegisterFunctions(*this);
    } catch (...) {
        sqlite3_close_v2(handle_);
        throw;
    }
}

Database::~Database()
{
    sqlite3_close_v2(handle_);
}

void Database::OpenHandle(const QString &name, int flags)
{
    const int code = sqlite3_open_v2(name.toUtf8().constData(), &handle_, flags, nullptr);
    if (code == SQLITE_OK)
        return;
    const QString reason = handle_ ? QString::fromUtf8(sqlite3_errmsg(handle_)) : u"out of memory"_s;
    sqlite3_close_v2(std::exchange(handle_, nullptr));
    Fail(Error::Kind::Other, 5120, u"Unable to open the database file \"%1\": %2."_s.arg(file_, reason));
}

bool Database::IsReadOnly() const
{
    return immutable_ || sqlite3_db_readonly(handle_, "main") == 1;
}

StatementHandle Database::Prepare(const QString &sql)
{
    const QByteArray text = sql.toUtf8();
    sqlite3_stmt *statement = nullptr;
    const int code =
        sqlite3_prepare_v3(handle_, text.constData(), int(text.size()), SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (code != SQLITE_OK)
        Throw(code);
    return StatementHandle(statement);
}

bool Database::Step(sqlite3_stmt *statement)
{
    const int code = sqlite3_step(statement);
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE)
        return false;
    Throw(sqlite3_extended_errcode(handle_));
}

void Database::Bind(sqlite3_stmt *statement, int index, const QVariant &value)
{
    int code = SQLITE_OK;
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        code = sqlite3_bind_null(statement, index);
        break;
    case QMetaType::LongLong:
        code = sqlite3_bind_int64(statement, index, value.toLongLong());
        break;
    case QMetaType::Double:
        code = sqlite3_bind_double(statement, index, value.toDouble());
        break;
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        code = sqlite3_bind_blob64(statement, index, bytes.constData() ? bytes.constData() : "",
                                   sqlite3_uint64(bytes.size()), SQLITE_TRANSIENT);
        break;
    }
    default: {
        const QByteArray text = value.toString().toUtf8();
        code = sqlite3_bind_text64(statement, index, text.constData() ? text.constData() : "",
                                   sqlite3_uint64(text.size()), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    }
    if (code != SQLITE_OK)
        Throw(code);
}

QVariant Database::Value(sqlite3_stmt *statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return qlonglong(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_TEXT: {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
        return QString::fromUtf8(text, sqlite3_column_bytes(statement, column));
    }
    case SQLITE_BLOB: {
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(statement, column));
        return QByteArray(bytes, sqlite3_column_bytes(statement, column));
    }
    default:
        return {};
    }
}

QVariant Database::Execute(const QString &sql, const QVariantList &values)
{
    const StatementHandle statement = Prepare(sql);
    for (int i = 0; i < values.size(); ++i)
        Bind(statement.get(), i + 1, values[i]);
    if (!Step(statement.get()))
        return {};
    QVariant first = Value(statement.get(), 0);
    while (Step(statement.get())) {
    }
    return first;
}

void Database::Throw(int code)
{
    const QString message = QString::fromUtf8(sqlite3_errmsg(handle_));
    if (pending_) {
        const Error error = *pending_;
        pending_.reset();
        throw error;
    }
    const QString name = QFileInfo(file_).fileName();
    switch (code & 0xff) {
    case SQLITE_CONSTRAINT:
        ThrowConstraint(code, message);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        Fail(Error::Kind::Locked, 1222,
             u"Lock request time out period exceeded: another program is working in the database \"%1\"."_s.arg(name));
    case SQLITE_READONLY:
        Fail(Error::Kind::ReadOnly, 3906,
             u"Failed to update database \"%1\" because the database is read-only."_s.arg(name));
    case SQLITE_FULL:
        Fail(Error::Kind::DiskFull, 1105,
             u"Could not allocate space in database \"%1\" because the disk is full."_s.arg(name));
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        Fail(Error::Kind::Damaged, 824,
             u"The database file \"%1\" is damaged or is not a database (%2)."_s.arg(name, message));
    case SQLITE_IOERR:
        Fail(Error::Kind::Other, 823,
             u"The operating system reported an error on the database file \"%1\" (%2)."_s.arg(name, message));
    case SQLITE_CANTOPEN:
        Fail(Error::Kind::Other, 5120, u"Unable to open the database file \"%1\" (%2)."_s.arg(name, message));
    case SQLITE_TOOBIG:
        Fail(Error::Kind::TooLong, 8152, u"String or binary data would be truncated."_s);
    default:
        break;
    }
    // SQLite's own limits on the size of a statement
    for (const QLatin1StringView limit : {"parser stack overflow"_L1, "too large"_L1, "too many"_L1, "at most"_L1}) {
        if (message.contains(limit))
            Fail(Error::Kind::Refused, 8631, u"The statement is too large or too deeply nested (%1)."_s.arg(message));
    }
    if (message == "integer overflow"_L1)
        Fail(Error::Kind::Check, 8115, u"Arithmetic overflow error converting expression to data type bigint."_s);
    Fail(Error::Kind::Other, 50001, u"%1 (SQLite code %2)"_s.arg(message).arg(code));
}

// Whether the columns are the primary key, a UNIQUE constraint or a unique index.
QString Database::KeyKind(const QString &table, const QStringList &columns)
{
    const StatementHandle statement = Prepare(u"SELECT l.origin, (SELECT group_concat(i.name, ', ') FROM "
                                              u"pragma_index_info(l.name) AS i) FROM pragma_index_list(?1) "
                                              "AS l WHERE l.\"unique\""_s);
    Bind(statement.get(), 1, table);
    while (Step(statement.get())) {
        if (Value(statement.get(), 1).toString() == columns.join(u", "_s))
            return Value(statement.get(), 0).toString();
    }
    return u"pk"_s;
}

void Database::ThrowConstraint(int code, const QString &message)
{
    // "UNIQUE constraint failed: t.a, t.b", "CHECK constraint failed: name", "FOREIGN KEY constraint failed"
    const QString detail = message.section(u": "_s, 1);
    switch (code) {
    case SQLITE_CONSTRAINT_NOTNULL:
        Fail(Error::Kind::NullValue, 515,
             u"Cannot insert the value NULL into column '%1', table '%2'; column does not allow nulls."_s.arg(
                 detail.section(u'.', 1), detail.section(u'.', 0, 0)),
             {}, detail.section(u'.', 1));
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
    case SQLITE_CONSTRAINT_UNIQUE: {
        const QString table = detail.section(u'.', 0, 0);
        QStringList columns;
        for (const QString &column : detail.split(u", "_s))
            columns.append(column.section(u'.', 1));
        const QString kind = KeyKind(table, columns);
        if (kind == "c"_L1)
            Fail(Error::Kind::Duplicate, 2601,
                 u"Cannot insert duplicate key row in object 'dbo.%1' with a unique index on (%2)."_s.arg(
                     table, columns.join(u", "_s)),
                 {}, columns.first());
        Fail(Error::Kind::Duplicate, 2627,
             u"Violation of %1 constraint on (%2). Cannot insert duplicate key in object 'dbo.%3'."_s.arg(
                 kind == "u"_L1 ? u"UNIQUE KEY"_s : u"PRIMARY KEY"_s, columns.join(u", "_s), table),
             {}, columns.first());
    }
    case SQLITE_CONSTRAINT_FOREIGNKEY:
        Fail(Error::Kind::Referenced, 547, u"The statement conflicted with a REFERENCE or FOREIGN KEY constraint."_s);
    case SQLITE_CONSTRAINT_DATATYPE:
        Fail(Error::Kind::Check, 245, u"Conversion failed: the key has to be a whole number."_s);
    default:
        break;
    }
    if (detail.startsWith(kLengthCheck)) {
        const QString column = detail.mid(kLengthCheck.size());
        Fail(Error::Kind::TooLong, 8152, u"String or binary data would be truncated (column '%1')."_s.arg(column), {},
             column);
    }
    if (detail.startsWith(kTypeCheck)) {
        const QString column = detail.mid(kTypeCheck.size());
        Fail(Error::Kind::Check, 245, u"Conversion failed: the value is not of the type of column '%1'."_s.arg(column),
             {}, column);
    }
    Fail(Error::Kind::Check, 547, u"The statement conflicted with the CHECK constraint \"%1\"."_s.arg(detail), {},
         detail);
}

} // namespace embedded
