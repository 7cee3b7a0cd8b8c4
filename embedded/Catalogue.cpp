// SPDX-License-Identifier: Apache-2.0
#include "embedded/Catalogue.h"

#include <QRegularExpression>

#include "embedded/Parser.h"

namespace embedded {

using namespace Qt::StringLiterals;

Type TypeFromText(const QString &declared)
{
    static const QHash<QString, Type::Kind> kinds = {
        {u"bit"_s, Type::Kind::Bit},           {u"tinyint"_s, Type::Kind::TinyInt},
        {u"smallint"_s, Type::Kind::SmallInt}, {u"int"_s, Type::Kind::Int},
        {u"integer"_s, Type::Kind::Int},       {u"bigint"_s, Type::Kind::BigInt},
        {u"float"_s, Type::Kind::Float},       {u"real"_s, Type::Kind::Float},
        {u"money"_s, Type::Kind::Money},       {u"smallmoney"_s, Type::Kind::Money},
        {u"decimal"_s, Type::Kind::Decimal},   {u"numeric"_s, Type::Kind::Decimal},
        {u"varchar"_s, Type::Kind::Text},      {u"nvarchar"_s, Type::Kind::Text},
        {u"char"_s, Type::Kind::Text},         {u"nchar"_s, Type::Kind::Text},
        {u"text"_s, Type::Kind::Text},         {u"ntext"_s, Type::Kind::Text},
        {u"datetime"_s, Type::Kind::DateTime}, {u"smalldatetime"_s, Type::Kind::DateTime},
        {u"date"_s, Type::Kind::Date},         {u"image"_s, Type::Kind::Binary},
        {u"varbinary"_s, Type::Kind::Binary},  {u"binary"_s, Type::Kind::Binary},
        {u"blob"_s, Type::Kind::Binary}};
    static const QRegularExpression form(u"^\\s*(\\w+)\\s*(?:\\(\\s*(max|\\d+)\\s*(?:,\\s*(\\d+)\\s*)?\\))?\\s*$"_s,
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(declared);
    Type type(kinds.value(match.captured(1).toLower(), Type::Kind::Unknown));
    const bool hasLength = match.capturedLength(2) > 0;
    if (type.IsText() && hasLength && match.captured(2).compare("max"_L1, Qt::CaseInsensitive) != 0)
        type.length = match.captured(2).toInt();
    if (type.kind == Type::Kind::Decimal)
        type.scale = match.captured(3).toInt();
    if (type.kind == Type::Kind::Money)
        type.scale = 4;
    // A length is not for every type, a length of 0 for none.
    if (hasLength && (type.length == 0 || !(type.IsText() || type.kind == Type::Kind::Decimal ||
                                            type.kind == Type::Kind::Binary || type.kind == Type::Kind::Float)))
        return {};
    type.declared = declared.trimmed().toLower();
    return type;
}

const Column *Table::Find(const QString &column) const
{
    for (const Column &candidate : columns) {
        if (candidate.name.compare(column, Qt::CaseInsensitive) == 0)
            return &candidate;
    }
    return nullptr;
}

Catalogue::Catalogue(Database &database)
    : database_(database)
{}

void Catalogue::CreateStore(Database &database)
{
    database.Execute(
        u"CREATE TABLE _corvex_objects (kind TEXT NOT NULL, name TEXT NOT NULL COLLATE NOCASE, source TEXT NOT NULL, "
        "PRIMARY KEY (kind, name))"_s);
}

QString Catalogue::Source(const QString &kind, const QString &name)
{
    return database_.Execute(u"SELECT source FROM main._corvex_objects WHERE kind = ?1 AND name = ?2"_s, {kind, name})
        .toString();
}

void Catalogue::Remember(const QString &kind, const QString &name, const QString &source)
{
    database_.Execute(u"INSERT OR REPLACE INTO main._corvex_objects (kind, name, source) VALUES (?1, ?2, ?3)"_s,
                      {kind, name, source});
}

void Catalogue::Forget(const QString &kind, const QString &name)
{
    database_.Execute(u"DELETE FROM main._corvex_objects WHERE kind = ?1 AND name = ?2"_s, {kind, name});
}

void Catalogue::Changed()
{
    ++generation_;
    tables_.clear();
    functions_.clear();
    procedures_.clear();
    TemporaryChanged();
}

void Catalogue::TemporaryChanged()
{
    ++temporaryGeneration_;
    tables_.removeIf([](const auto &entry) { return entry.key().startsWith(u'#') || entry.key().startsWith(u'@'); });
}

const Table *Catalogue::FindTable(const QString &name)
{
    const QString key = name.toLower();
    const auto known = tables_.constFind(key);
    if (known != tables_.constEnd())
        return known->get();
    std::shared_ptr<Table> table = Load(key);
    if (table) // absence is not remembered: another program may create it
        tables_.insert(key, table);
    return table.get();
}

std::unique_ptr<Table> Catalogue::Load(const QString &name)
{
    const bool temporary = name.startsWith(u'#') || name.startsWith(u'@');
    if (name.startsWith("sqlite_"_L1) || name == "_corvex_objects"_L1)
        return nullptr; // not the user's
    auto table = std::make_unique<Table>();
    QString kind;
    {
        const StatementHandle statement = database_.Prepare(
            u"SELECT type, name FROM %1.sqlite_schema WHERE type IN ('table', 'view') AND name = ?1 COLLATE NOCASE"_s
                .arg(temporary ? "temp"_L1 : "main"_L1));
        database_.Bind(statement.get(), 1, name);
        if (!database_.Step(statement.get()))
            return nullptr;
        kind = Database::Value(statement.get(), 0).toString();
        table->name = Database::Value(statement.get(), 1).toString();
    }
    table->view = kind == "view"_L1;
    if (table->view) {
        const QString source = Source(u"view"_s, table->name);
        if (!source.isEmpty()) {
            const std::shared_ptr<Program> program = Parse(source);
            table->columns = describe(static_cast<const CreateViewStatement &>(*program->statements.front()));
            return table;
        }
    }
    const StatementHandle statement = database_.Prepare(
        u"SELECT x.name, x.type, x.\"notnull\", x.dflt_value, x.pk, (SELECT count(*) FROM pragma_table_xinfo(?1, ?2) "
        u"AS y WHERE "
        "y.pk > 0), (SELECT source FROM main._corvex_objects WHERE kind = 'type' AND name = ?1 || '.' || x.name) FROM "
        "pragma_table_xinfo(?1, ?2) AS x"_s);
    database_.Bind(statement.get(), 1, table->name);
    database_.Bind(statement.get(), 2, temporary ? u"temp"_s : u"main"_s);
    while (database_.Step(statement.get())) {
        Column column;
        column.name = Database::Value(statement.get(), 0).toString();
        const QString declared = Database::Value(statement.get(), 1).toString();
        const QString exact = Database::Value(statement.get(), 6).toString();
        column.type = TypeFromText(exact.isEmpty() ? declared : exact);
        column.notNull = Database::Value(statement.get(), 2).toBool();
        column.hasDefault = Database::Value(statement.get(), 3).isValid();
        column.rowId = Database::Value(statement.get(), 4).toInt() == 1 &&
                       Database::Value(statement.get(), 5).toInt() == 1 &&
                       declared.compare("INTEGER"_L1, Qt::CaseInsensitive) == 0;
        if (!table->view) {
            const char *collation = nullptr;
            int autoIncrement = 0;
            sqlite3_table_column_metadata(database_.Handle(), temporary ? "temp" : "main",
                                          table->name.toUtf8().constData(), column.name.toUtf8().constData(), nullptr,
                                          &collation, nullptr, nullptr, &autoIncrement);
            column.identity = autoIncrement != 0;
            column.noCase = collation && qstricmp(collation, "NOCASE") == 0;
        } else {
            column.noCase = column.trimmed = false; // another tool's view: nothing is known
        }
        table->columns.append(column);
    }
    return table;
}

const FunctionRoutine *Catalogue::FindFunction(const QString &name)
{
    const QString key = name.toLower();
    auto known = functions_.constFind(key);
    if (known == functions_.constEnd()) {
        const QString source = Source(u"function"_s, name);
        if (source.isEmpty())
            return nullptr;
        auto function = std::make_shared<FunctionRoutine>();
        function->program = Parse(source);
        function->definition =
            static_cast<const CreateFunctionStatement *>(function->program->statements.front().get());
        known = functions_.insert(key, function);
    }
    return known->get();
}

std::shared_ptr<const ProcedureRoutine> Catalogue::FindProcedure(const QString &name)
{
    const QString key = name.toLower();
    auto known = procedures_.constFind(key);
    if (known == procedures_.constEnd()) {
        const QString source = Source(u"procedure"_s, name);
        if (source.isEmpty())
            return nullptr;
        auto procedure = std::make_shared<ProcedureRoutine>();
        procedure->program = Parse(source);
        procedure->definition =
            static_cast<const CreateProcedureStatement *>(procedure->program->statements.front().get());
        known = procedures_.insert(key, procedure);
    }
    return *known;
}

bool Catalogue::Exists(const QString &name)
{
    return FindTable(name) || FindFunction(name) || FindProcedure(name);
}

} // namespace embedded
