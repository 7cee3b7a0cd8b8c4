// SPDX-License-Identifier: Apache-2.0
#include "framework/data/CorvexADOQuery.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcData, "corvex.data")

// A longer text may be of a type that SQL Server cannot compare.
constexpr int kLongestComparedText = 250;

struct TRow
{
    int key = 0;
    QVariantList read;   // as the database gave it
    QVariantList values; // as it stands, each of its column's type
};

// To the letter: what the database calls equal (case, trailing blanks) may still be a change.
bool Same(const QVariant &a, const QVariant &b)
{
    return a.isValid() == b.isValid() && a == b;
}

QString ParamName(const char *prefix, int column)
{
    return QLatin1String(prefix) + QString::number(column);
}

[[noreturn]] void Misused(const QString &message)
{
    throw TDbError(TDbError::Kind::Other, 0, message);
}

TErrorPresenter &Presenter()
{
    static TErrorPresenter presenter;
    return presenter;
}

// What the user can do about it; empty when only the server's own words help.
QString Advice(TDbError::Kind kind)
{
    using Kind = TDbError::Kind;
    switch (kind) {
    case Kind::Duplicate:
        return QObject::tr("A record with this value already exists.");
    case Kind::Referenced:
        return QObject::tr("The record is in use by another one, or refers to one that does not exist.");
    case Kind::TooLong:
        return QObject::tr("A text is longer than its field.");
    case Kind::NullValue:
        return QObject::tr("A field that must be filled in is empty.");
    case Kind::Busy:
        return QObject::tr("Another user is working on this data. Please try again in a moment.");
    case Kind::ReadOnly:
        return QObject::tr("The database can only be read, so nothing was saved.");
    case Kind::DiskFull:
        return QObject::tr("The disk that holds the database is full, so nothing was saved.");
    case Kind::ConnectionLost:
        return QObject::tr("The connection to the database is lost. Nothing was saved.");
    default:
        return {};
    }
}

// What a parameter is called whatever way the caller writes it.
QString BareName(const QString &name)
{
    return name.startsWith(u'@') ? name.mid(1) : name;
}

} // namespace

// ---- columns

TColumnBase::TColumnBase(TCorvexADOQuery &query, const char *field, int limit)
    : query_(query)
    , field_(QLatin1String(field))
    , limit_(limit)
{
    query_.AddColumn(this);
}

bool TColumnBase::IsNull() const
{
    return !Variant().isValid();
}

void TColumnBase::SetNull()
{
    query_.SetCurrentValue(*this, {});
}

QVariant TColumnBase::Variant() const
{
    return query_.CurrentValue(*this);
}

void TColumnBase::SetVariant(const QVariant &value)
{
    query_.SetCurrentValue(*this, Normalised(value));
}

template <class T> QVariant Column<T>::Normalised(const QVariant &value) const
{
    if (!value.isValid() || value.isNull())
        return {};
    if constexpr (std::is_same_v<T, QDate>) {
        const QDate date = value.toDate();
        return date.isValid() ? QVariant(QDateTime(date, QTime(0, 0))) : QVariant();
    } else if constexpr (std::is_same_v<T, QString>) {
        const QString text = value.toString();
        return text.isNull() ? QStringLiteral("") : text;
    } else {
        return QVariant::fromValue(value.value<T>());
    }
}

template <class T> T Column<T>::Get() const
{
    const QVariant value = Variant();
    if (!value.isValid()) {
        if constexpr (std::is_same_v<T, QString>)
            return QStringLiteral("");
        else
            return T();
    }
    if constexpr (std::is_same_v<T, QDate>)
        return value.toDateTime().date();
    else
        return value.value<T>();
}

template <class T> void Column<T>::Set(const T &value)
{
    query_.SetCurrentValue(*this, Get() == value ? Variant() : Normalised(QVariant::fromValue(value)));
}

template <class T> QVariant Column<T>::Blank() const
{
    return Normalised(QVariant::fromValue(T()));
}

template class Column<QString>;
template class Column<int>;
template class Column<bool>;
template class Column<double>;
template class Column<QDate>;

// ---- records

struct TCorvexADOQuery::Impl
{
    enum class State { Browse, Edit, Append };
    struct TSelection
    {
        QString where;
        TDbParams params;
        QString orderBy;
    };

    QString tableName;
    QString keyField;
    QString fromTables;
    QString selectFields;
    QString linkNotesField;
    bool useDefaultSQL = true;
    bool openAfterLoad = true;
    Keys keys = Keys::Server;
    QString filter;
    TDbParams filterParams;
    TListControl *list = nullptr;

    QList<TColumnBase *> columns;
    QList<TSelection> selections; // what the records were read by
    QList<TRow> records;
    int current = -1;
    bool eof = true;

    State state = State::Browse;
    TRow pending;          // the record being edited
    bool fromList = false; // the record being edited was read for it from the list's focused row
    bool replaces = false; // a new record that takes the place of the current one, which somebody deleted

    bool IsKey(const TColumnBase &column) const { return column.Field().compare(keyField, Qt::CaseInsensitive) == 0; }
    bool Editing() const { return state != State::Browse; }
    bool ReadsList() const { return list && !Editing() && records.isEmpty(); }

    QVariantList Blanks() const
    {
        QVariantList blanks;
        for (const TColumnBase *column : columns)
            blanks.append(column->Blank());
        return blanks;
    }

    bool Changed(int i) const
    {
        return !IsKey(*columns[i]) && !Same(columns[i]->Normalised(pending.read[i]), pending.values[i]);
    }

    bool Modified() const
    {
        for (int i = 0; i < columns.size(); ++i) {
            if (Changed(i))
                return true;
        }
        return false;
    }

    void StandOn(int index)
    {
        current = index;
        eof = index < 0;
    }

    void LeaveEdit()
    {
        state = State::Browse;
        pending = {};
        fromList = false;
        replaces = false;
    }

    QList<TRow> Read(TDbConnection &db, const TSelection &selection) const
    {
        QString sql = QStringLiteral("select ") + keyField;
        for (const TColumnBase *column : columns) {
            if (!IsKey(*column))
                sql += QStringLiteral(", ") + column->Field();
        }
        sql += QStringLiteral(" from ") + tableName;
        if (!selection.where.isEmpty())
            sql += QStringLiteral(" where ") + selection.where;
        sql += QStringLiteral(" order by ") + (selection.orderBy.isEmpty() ? keyField : selection.orderBy);

        const TDbRows found = db.Select(sql, selection.params);
        QList<TRow> rows;
        rows.reserve(found.size());
        for (const QVariantList &values : found.rows) {
            TRow row;
            row.key = values.value(0).toInt();
            int at = 0;
            for (const TColumnBase *column : columns) {
                const QVariant value = IsKey(*column) ? values.value(0) : values.value(++at);
                row.read.append(value);
                row.values.append(column->Normalised(value));
            }
            rows.append(row);
        }
        return rows;
    }

    QList<TRow> ReadByKey(TDbConnection &db, int key) const
    {
        return Read(db, {keyField + QStringLiteral(" = :key"), {{QStringLiteral("key"), key}}, {}});
    }

    // Throws unless the row in the database is the one that was read.
    TRow Compared(TDbConnection &db, bool goneOnly) const
    {
        const QList<TRow> now = ReadByKey(db, pending.key);
        TRecordConflict conflict;
        conflict.gone = now.isEmpty();
        for (int i = 0; i < columns.size() && !conflict.gone && !goneOnly; ++i) {
            const QVariant theirs = now.constFirst().read[i];
            if (!IsKey(*columns[i]) && !Same(pending.read[i], theirs))
                conflict.fields.append({columns[i]->Field(), pending.read[i], theirs, pending.values[i]});
        }
        if (conflict.gone || !conflict.fields.isEmpty())
            throw conflict;
        return now.constFirst();
    }

    // The row as the database holds it after a write: it may have rounded or completed what we sent.
    TRow Written(TDbConnection &db, int key) const
    {
        const QList<TRow> now = ReadByKey(db, key);
        if (!now.isEmpty())
            return now.constFirst();
        TRow row = pending;
        row.key = key;
        row.read = row.values;
        return row;
    }

    TRow InsertPending(TDbConnection &db) const
    {
        QStringList names;
        QStringList places;
        TDbParams params;
        const auto add = [&](const QString &field, const QString &param, const QVariant &value) {
            names.append(field);
            places.append(u':' + param);
            params.insert(param, value);
        };
        if (keys == Keys::Client) {
            if (pending.key == 0)
                Misused(QStringLiteral("The new record of %1 was not given a key.").arg(tableName));
            add(keyField, QStringLiteral("key"), pending.key);
        }
        for (int i = 0; i < columns.size(); ++i) {
            if (!IsKey(*columns[i]))
                add(columns[i]->Field(), ParamName("v", i), pending.values[i]);
        }
        const QString sql = QStringLiteral("insert %1 (%2) values (%3)")
                                .arg(tableName, names.join(QStringLiteral(", ")), places.join(QStringLiteral(", ")));
        if (keys == Keys::Client) {
            db.Execute(sql, params);
            return Written(db, pending.key);
        }
        return Written(db, db.Insert(sql, params));
    }

    int Update(TDbConnection &db, bool guarded) const
    {
        QStringList sets;
        QString where = keyField + QStringLiteral(" = :key");
        TDbParams params{{QStringLiteral("key"), pending.key}};
        for (int i = 0; i < columns.size(); ++i) {
            const TColumnBase &column = *columns[i];
            if (Changed(i)) {
                sets.append(QStringLiteral("%1 = :%2").arg(column.Field(), ParamName("v", i)));
                params.insert(ParamName("v", i), pending.values[i]);
            }
            if (!guarded || IsKey(column))
                continue;
            const QVariant &read = pending.read[i];
            if (!read.isValid()) {
                where += QStringLiteral(" and %1 is null").arg(column.Field());
            } else if (read.typeId() != QMetaType::QString ||
                       (column.Limit() > 0 && column.Limit() <= kLongestComparedText)) {
                where += QStringLiteral(" and %1 = :%2").arg(column.Field(), ParamName("g", i));
                params.insert(ParamName("g", i), read);
            }
        }
        return db.Execute(
            QStringLiteral("update %1 set %2 where %3").arg(tableName, sets.join(QStringLiteral(", ")), where), params);
    }

    TRow UpdatePending(TDbConnection &db) const
    {
        Compared(db, false);
        // The guards catch who writes between the comparison and the update.
        if (Update(db, true) == 0) {
            Compared(db, false);
            // Still the same row: a value that the server compares otherwise than it tells it (a rounded number).
            if (Update(db, false) == 0) {
                Compared(db, false);
                Misused(QStringLiteral("The record of %1 was not written.").arg(tableName));
            }
        }
        return Written(db, pending.key);
    }

    TRow WritePending(TDbConnection &db) const
    {
        return state == State::Append ? InsertPending(db) : UpdatePending(db);
    }
};

TCorvexADOQuery::TCorvexADOQuery(const QString &tableName, const QString &keyField, Keys keys, QObject *owner)
    : QObject(owner)
    , impl_(std::make_unique<Impl>())
{
    impl_->tableName = tableName;
    impl_->keyField = keyField;
    impl_->keys = keys;
}

TCorvexADOQuery::~TCorvexADOQuery() = default;

QString TCorvexADOQuery::TableName() const
{
    return impl_->tableName;
}

void TCorvexADOQuery::SetTableName(const QString &name)
{
    impl_->tableName = name;
}

QString TCorvexADOQuery::KeyField() const
{
    return impl_->keyField;
}

QString TCorvexADOQuery::FromTables() const
{
    return impl_->fromTables.isEmpty() ? impl_->tableName : impl_->fromTables;
}

void TCorvexADOQuery::SetFromTables(const QString &from)
{
    impl_->fromTables = from;
}

QString TCorvexADOQuery::SelectFields() const
{
    return impl_->selectFields;
}

void TCorvexADOQuery::SetSelectFields(const QString &fields)
{
    impl_->selectFields = fields;
}

QString TCorvexADOQuery::LinkNotesField() const
{
    return impl_->linkNotesField;
}

void TCorvexADOQuery::SetLinkNotesField(const QString &field)
{
    impl_->linkNotesField = field;
}

QString TCorvexADOQuery::NotesTableName() const
{
    return impl_->tableName.toUpper();
}

bool TCorvexADOQuery::UseDefaultSQL() const
{
    return impl_->useDefaultSQL;
}

void TCorvexADOQuery::SetUseDefaultSQL(bool use)
{
    impl_->useDefaultSQL = use;
}

bool TCorvexADOQuery::OpenAfterLoad() const
{
    return impl_->openAfterLoad;
}

void TCorvexADOQuery::SetOpenAfterLoad(bool open)
{
    impl_->openAfterLoad = open;
}

void TCorvexADOQuery::SetFilter(const QString &where, const TDbParams &params)
{
    impl_->filter = where;
    impl_->filterParams = params;
}

void TCorvexADOQuery::SetSelectControlCols(TListControl *control)
{
    impl_->list = control;
}

TListSource TCorvexADOQuery::ListSource() const
{
    if (!impl_->useDefaultSQL)
        Misused(QStringLiteral("The list of %1 has no statement of its own.").arg(impl_->tableName));
    TListSource source;
    source.from = FromTables();
    const QStringList fields = impl_->selectFields.split(u',', Qt::SkipEmptyParts);
    for (const QString &field : fields)
        source.columns.append(field.trimmed());
    source.key = impl_->keyField;
    source.where = impl_->filter;
    source.params = impl_->filterParams;
    return source;
}

void TCorvexADOQuery::OpenList()
{
    if (!impl_->list)
        Misused(QStringLiteral("The query on %1 has no list control.").arg(impl_->tableName));
    impl_->list->OpenList(ListSource());
    DropRecords();
}

void TCorvexADOQuery::brRefresh(bool locate, const QString &keyField, const QString &keyValue)
{
    bool isNumber = false;
    const int key = keyValue.toInt(&isNumber);
    const bool toKey = locate && isNumber && !keyField.isEmpty();
    if (impl_->list) {
        impl_->list->ReReadList(ListSource(), toKey, key);
        DropRecords();
        return;
    }
    const int wanted = toKey ? key : KeyValue();
    QList<TRow> rows;
    for (const Impl::TSelection &selection : std::as_const(impl_->selections))
        rows.append(impl_->Read(MainConnection(), selection));
    impl_->LeaveEdit();
    impl_->records = rows;
    impl_->StandOn(rows.isEmpty() ? -1 : 0);
    for (int i = 0; i < rows.size(); ++i) {
        if (rows[i].key == wanted)
            impl_->StandOn(i);
    }
}

void TCorvexADOQuery::DropRecords()
{
    impl_->LeaveEdit();
    impl_->records.clear();
    impl_->selections.clear();
    impl_->StandOn(-1);
}

void TCorvexADOQuery::SelectRecords(const QString &keyField, int id, bool append)
{
    const Impl::TSelection selection{keyField + QStringLiteral(" = :id"), {{QStringLiteral("id"), id}}, {}};
    const QList<TRow> rows = id == 0 ? QList<TRow>() : impl_->Read(MainConnection(), selection);
    impl_->LeaveEdit();
    if (!append) {
        impl_->records.clear();
        impl_->selections.clear();
    }
    if (id != 0)
        impl_->selections.append(selection);
    impl_->records.append(rows);
    First();
}

void TCorvexADOQuery::SelectWhere(const QString &where, const TDbParams &params, const QString &orderBy)
{
    const Impl::TSelection selection{where, params, orderBy};
    const QList<TRow> rows = impl_->Read(MainConnection(), selection);
    impl_->LeaveEdit();
    impl_->selections = {selection};
    impl_->records = rows;
    First();
}

int TCorvexADOQuery::RecordCount() const
{
    return int(impl_->records.size());
}

void TCorvexADOQuery::First()
{
    if (impl_->Editing())
        Misused(QStringLiteral("A record of %1 is being edited.").arg(impl_->tableName));
    impl_->StandOn(impl_->records.isEmpty() ? -1 : 0);
}

bool TCorvexADOQuery::Next()
{
    if (impl_->Editing())
        Misused(QStringLiteral("A record of %1 is being edited.").arg(impl_->tableName));
    if (impl_->current + 1 >= impl_->records.size()) {
        impl_->eof = true;
        return false;
    }
    impl_->StandOn(impl_->current + 1);
    return true;
}

bool TCorvexADOQuery::Eof() const
{
    return impl_->eof;
}

int TCorvexADOQuery::KeyValue() const
{
    if (impl_->Editing())
        return impl_->pending.key;
    if (impl_->ReadsList())
        return impl_->list->HasCurrent() ? impl_->list->CurrentValue(impl_->keyField).toInt() : 0;
    return impl_->current < 0 ? 0 : impl_->records[impl_->current].key;
}

void TCorvexADOQuery::SetKeyValue(int key)
{
    if (impl_->state != Impl::State::Append || impl_->keys != Keys::Client)
        Misused(QStringLiteral("The key of this record of %1 is not the caller's to set.").arg(impl_->tableName));
    impl_->pending.key = key;
}

void TCorvexADOQuery::brAppend(bool)
{
    if (impl_->state == Impl::State::Edit)
        Misused(QStringLiteral("A record of %1 is being edited.").arg(impl_->tableName));
    impl_->LeaveEdit();
    impl_->pending.read = impl_->Blanks();
    impl_->pending.values = impl_->pending.read;
    impl_->state = Impl::State::Append;
}

void TCorvexADOQuery::brEdit(bool)
{
    if (impl_->Editing())
        return;
    if (impl_->ReadsList()) {
        const int key = KeyValue();
        const QList<TRow> rows = key == 0 ? QList<TRow>() : impl_->ReadByKey(MainConnection(), key);
        if (!rows.isEmpty()) {
            impl_->records = {rows.constFirst()};
            impl_->StandOn(0);
            impl_->fromList = true;
        }
    }
    if (impl_->current < 0)
        Misused(QStringLiteral("There is no record of %1 to edit.").arg(impl_->tableName));
    impl_->pending = impl_->records[impl_->current];
    impl_->state = Impl::State::Edit;
}

bool TCorvexADOQuery::IsEditing() const
{
    return impl_->Editing();
}

bool TCorvexADOQuery::IsAppending() const
{
    return impl_->state == Impl::State::Append;
}

bool TCorvexADOQuery::IsModified() const
{
    return impl_->Editing() && impl_->Modified();
}

void TCorvexADOQuery::Post()
{
    if (!impl_->Editing())
        Misused(QStringLiteral("No record of %1 is being edited.").arg(impl_->tableName));
    TDbConnection &db = MainConnection();
    TRow written;
    try {
        if (impl_->state == Impl::State::Edit && !impl_->Modified()) {
            written = impl_->Compared(db, true); // nothing to write, so no write lock either
        } else if (db.InTransaction()) {
            written = impl_->WritePending(db);
        } else {
            TDbTransaction transaction(db);
            written = impl_->WritePending(db);
            transaction.Commit();
        }
    } catch (const TDbError &) {
        // The key may be taken by the time of the next attempt.
        if (impl_->state == Impl::State::Append)
            impl_->pending.key = 0;
        throw;
    }
    if (impl_->state == Impl::State::Edit || impl_->replaces) {
        impl_->records[impl_->current] = written;
        impl_->eof = false;
    } else {
        impl_->records.append(written);
        impl_->StandOn(int(impl_->records.size()) - 1);
    }
    impl_->LeaveEdit();
}

bool TCorvexADOQuery::brPost(bool showError)
{
    try {
        Post();
        return true;
    } catch (const TDbError &error) {
        if (!showError)
            throw;
        PresentError(error);
        return false;
    }
}

void TCorvexADOQuery::CheckUnchanged() const
{
    if (!impl_->Editing())
        Misused(QStringLiteral("No record of %1 is being edited.").arg(impl_->tableName));
    if (impl_->state == Impl::State::Edit)
        impl_->Compared(MainConnection(), !impl_->Modified());
}

void TCorvexADOQuery::Cancel()
{
    if (impl_->fromList)
        DropRecords();
    impl_->LeaveEdit();
}

void TCorvexADOQuery::AcceptTheirsAsRead(const TRecordConflict &conflict)
{
    if (impl_->state != Impl::State::Edit)
        Misused(QStringLiteral("No record of %1 is being edited.").arg(impl_->tableName));
    if (conflict.gone) {
        impl_->state = Impl::State::Append;
        impl_->replaces = true;
        impl_->pending.read = impl_->Blanks();
        if (impl_->keys == Keys::Server)
            impl_->pending.key = 0;
        return;
    }
    for (const TRecordConflict::Field &field : conflict.fields) {
        for (int i = 0; i < impl_->columns.size(); ++i) {
            const TColumnBase &column = *impl_->columns[i];
            if (column.Field().compare(field.field, Qt::CaseInsensitive) != 0)
                continue;
            const bool mineStays = impl_->Changed(i);
            impl_->pending.read[i] = field.theirs;
            if (!mineStays)
                impl_->pending.values[i] = column.Normalised(field.theirs);
        }
    }
}

bool TCorvexADOQuery::RecordsExist(const QString &field, int id) const
{
    return RecordsExistCriteria(field + QStringLiteral(" = :id"), {{QStringLiteral("id"), id}});
}

bool TCorvexADOQuery::RecordsExistCriteria(const QString &criteria, const TDbParams &params) const
{
    const QString sql =
        QStringLiteral("select top 1 %1 from %2 where %3 order by %1").arg(impl_->keyField, impl_->tableName, criteria);
    return !MainConnection().Select(sql, params).isEmpty();
}

bool TCorvexADOQuery::ExecuteThisSQL(const QString &sql, bool showError, const TDbParams &params) const
{
    try {
        MainConnection().Execute(sql, params);
        return true;
    } catch (const TDbError &error) {
        if (!showError)
            throw;
        PresentError(error);
        return false;
    }
}

TColumnBase *TCorvexADOQuery::FindColumn(QStringView field) const
{
    for (TColumnBase *column : std::as_const(impl_->columns)) {
        if (field.compare(column->Field(), Qt::CaseInsensitive) == 0)
            return column;
    }
    return nullptr;
}

const QList<TColumnBase *> &TCorvexADOQuery::Columns() const
{
    return impl_->columns;
}

void TCorvexADOQuery::AddColumn(TColumnBase *column)
{
    impl_->columns.append(column);
}

QVariant TCorvexADOQuery::CurrentValue(const TColumnBase &column) const
{
    if (impl_->ReadsList())
        return impl_->list->HasCurrent() ? column.Normalised(impl_->list->CurrentValue(column.Field())) : QVariant();
    if (impl_->IsKey(column))
        return KeyValue() == 0 ? QVariant() : column.Normalised(KeyValue());
    if (!impl_->Editing() && impl_->current < 0)
        return {};
    const TRow &row = impl_->Editing() ? impl_->pending : impl_->records[impl_->current];
    return row.values.value(impl_->columns.indexOf(const_cast<TColumnBase *>(&column)));
}

void TCorvexADOQuery::SetCurrentValue(const TColumnBase &column, const QVariant &value)
{
    if (!impl_->Editing())
        Misused(
            QStringLiteral("%1 is set, but no record of %2 is being edited.").arg(column.Field(), impl_->tableName));
    if (impl_->IsKey(column))
        SetKeyValue(value.toInt());
    else
        impl_->pending.values[impl_->columns.indexOf(const_cast<TColumnBase *>(&column))] = value;
}

// ---- stored procedures

struct TCorvexADOStoredProc::Impl
{
    QString procedure;
    QList<TDbArgument> arguments;
    TDbCallResult result;

    void Set(const QString &name, const QVariant &value, bool inOut)
    {
        const QString bare = BareName(name);
        for (TDbArgument &argument : arguments) {
            if (argument.name.compare(bare, Qt::CaseInsensitive) == 0) {
                argument.value = value;
                argument.inOut = inOut;
                return;
            }
        }
        arguments.append({bare, value, inOut});
    }
};

TCorvexADOStoredProc::TCorvexADOStoredProc(const QString &procedure, QObject *owner)
    : QObject(owner)
    , impl_(std::make_unique<Impl>())
{
    impl_->procedure = procedure;
}

TCorvexADOStoredProc::~TCorvexADOStoredProc() = default;

void TCorvexADOStoredProc::SetParam(const QString &name, const QVariant &value)
{
    impl_->Set(name, value, false);
}

void TCorvexADOStoredProc::SetInOutParam(const QString &name, const QVariant &value)
{
    impl_->Set(name, value, true);
}

QVariant TCorvexADOStoredProc::Param(const QString &name) const
{
    const QString bare = BareName(name);
    for (const TDbArgument &argument : std::as_const(impl_->arguments)) {
        if (argument.name.compare(bare, Qt::CaseInsensitive) == 0)
            return impl_->result.outputs.value(argument.name, argument.value);
    }
    return {};
}

int TCorvexADOStoredProc::ReturnValue() const
{
    return impl_->result.returnValue;
}

bool TCorvexADOStoredProc::kvExecProc(bool showError)
{
    impl_->result = {};
    try {
        impl_->result = MainConnection().Call(impl_->procedure, impl_->arguments);
        return true;
    } catch (const TDbError &error) {
        if (!showError)
            throw;
        PresentError(error);
        return false;
    }
}

// ---- free functions

int GetIdxKey(const QString &keyField, const QString &table, int floor)
{
    const TDbRows rows =
        MainConnection().Select(QString::asprintf("select top 1 %s from %s order by %s desc", qUtf8Printable(keyField),
                                                  qUtf8Printable(table), qUtf8Printable(keyField)));
    const int highest = rows.isEmpty() ? 0 : rows.Value(0, keyField).toInt();
    return qMax(highest, floor) + 1;
}

void SetErrorPresenter(TErrorPresenter presenter)
{
    Presenter() = std::move(presenter);
}

void PresentError(const TDbError &error)
{
    qCCritical(lcData).noquote() << error.message << '(' << error.number << ')' << error.statement;
    if (!Presenter())
        return;
    const QString advice = Advice(error.kind);
    Presenter()(advice.isEmpty() ? error.message : advice + QStringLiteral("\n\n") + error.message);
}
