// SPDX-License-Identifier: Apache-2.0
#include "embedded/TranslatorWorker.h"

namespace embedded {

using Kind = Expr::Kind;

namespace {

QString NamedConstraint(const QString &name, const QString &text)
{
    return name.isEmpty() ? text : "CONSTRAINT "_L1 + QuoteName(name) + u' ' + text;
}

QString NameList(const QStringList &names)
{
    QStringList quoted;
    for (const QString &name : names)
        quoted.append(QuoteName(name));
    return quoted.join(", "_L1);
}

// Column and table definitions.
class TableWriter
{
public:
    TableWriter(Catalogue &catalogue, const QString &table, bool temporary)
        : catalogue_(catalogue)
        , worker_(catalogue, nullptr, nullptr, true)
        , table_(table)
        , temporary_(temporary)
    {
        scope_.sources.append({table, QString(), {}});
    }

    void Know(const Column &column) { scope_.sources.first().columns.append(column); }
    void Know(const ColumnDefinition &definition)
    {
        if (Knows(definition.name))
            Fail(Error::Kind::Syntax, 2705,
                 u"Column names in each table must be unique. Column name '%1' in table '%2' is specified more than "
                 "once."_s.arg(definition.name, table_),
                 definition.place, definition.name);
        Column column;
        column.name = definition.name;
        column.type = definition.type;
        Know(column);
    }

    QString Constraint(const TableConstraint &constraint)
    {
        for (const QString &column : constraint.columns) {
            if (!Knows(column))
                Unknown(1911, u"Column name '%1' does not exist in the target table."_s.arg(column), constraint.place,
                        column);
        }
        QString text;
        switch (constraint.kind) {
        case TableConstraint::Kind::PrimaryKey:
            text = u"PRIMARY KEY (%1)"_s.arg(NameList(constraint.columns));
            break;
        case TableConstraint::Kind::Unique:
            text = u"UNIQUE (%1)"_s.arg(NameList(constraint.columns));
            break;
        case TableConstraint::Kind::Check: {
            worker_.scope = &scope_;
            worker_.constant = true;
            text = u"CHECK (%1)"_s.arg(worker_.Translate(*constraint.check).sql);
            worker_.scope = nullptr;
            worker_.constant = false;
            if (constraint.name.isEmpty()) // SQLite would give it the name of the constraint before
                return NamedConstraint("CK_"_L1 + table_, text);
            break;
        }
        case TableConstraint::Kind::ForeignKey:
            text = u"FOREIGN KEY (%1) %2"_s.arg(NameList(constraint.columns), Reference(constraint));
            break;
        }
        return NamedConstraint(constraint.name, text);
    }

    // `rowId`: the column is the table's row number.
    QString ColumnText(const ColumnDefinition &column, bool rowId, const QString &keyName, bool notNull, bool adding)
    {
        const QString name = QuoteName(column.name);
        if (rowId) {
            if (column.type.kind != Type::Kind::Int || column.type.declared != "int"_L1)
                exactTypes.append({column.name, column.type.declared});
            if (column.defaultValue) // SQLite would make up the next number instead
                Refuse(u"A default of a whole-number key"_s, column.place);
            return name + " INTEGER "_L1 + NamedConstraint(keyName, u"PRIMARY KEY"_s) +
                   (column.identity ? " AUTOINCREMENT"_L1 : ""_L1) + ColumnConstraints(column, adding);
        }
        QString text = name + u' ';
        if (column.type.kind == Type::Kind::Binary) { // any other name would give it a number's affinity
            text += "blob"_L1;
            exactTypes.append({column.name, column.type.declared});
        } else {
            // "(max)" is no number, which SQLite wants there; a text without a length has no limit anyway
            text += QString(column.type.declared).remove("(max)"_L1);
        }
        if (column.type.IsText())
            text += " COLLATE NOCASE"_L1;
        if (notNull)
            text += " NOT NULL"_L1;
        if (column.defaultValue) {
            const Fragment value = worker_.Convert(worker_.Translate(*column.defaultValue), column.type,
                                                   Worker::Purpose::Store, column.place);
            const bool constant = column.defaultValue->kind == Kind::Integer ||
                                  column.defaultValue->kind == Kind::Decimal ||
                                  column.defaultValue->kind == Kind::String || column.defaultValue->kind == Kind::Null;
            if (adding && !constant)
                Refuse(u"A computed default for a new column"_s, column.place);
            text += " DEFAULT "_L1 + (adding ? value.sql : u'(' + value.sql + u')');
        }
        return text + TypeCheck(column) + ColumnConstraints(column, adding);
    }

    QList<std::pair<QString, QString>> exactTypes;

private:
    bool Knows(const QString &name) const
    {
        const QList<Column> &columns = scope_.sources.first().columns;
        return std::any_of(columns.cbegin(), columns.cend(), [&name](const Column &column) {
            return column.name.compare(name, Qt::CaseInsensitive) == 0;
        });
    }

    QString ColumnConstraints(const ColumnDefinition &column, bool adding)
    {
        QString text;
        for (const TableConstraint &constraint : column.constraints) {
            if (constraint.kind == TableConstraint::Kind::ForeignKey)
                text += u' ' + NamedConstraint(constraint.name, Reference(constraint));
            else if (constraint.kind == TableConstraint::Kind::Check)
                text += u' ' + Constraint(constraint);
            else if (adding)
                Refuse(u"A key in a new column"_s, constraint.place);
        }
        return text;
    }

    QString Reference(const TableConstraint &constraint)
    {
        const ReferenceClause &reference = constraint.reference;
        if (reference.table.compare(table_, Qt::CaseInsensitive) != 0) {
            const Table *table = temporary_ ? nullptr : catalogue_.FindTable(reference.table);
            if (!table || table->view)
                Unknown(1767, u"Foreign key references invalid table '%1'."_s.arg(reference.table), constraint.place,
                        reference.table);
            for (const QString &column : reference.columns) {
                if (!table->Find(column))
                    Unknown(1770,
                            u"Foreign key references invalid column '%1' in referenced table '%2'."_s.arg(
                                column, reference.table),
                            constraint.place, column);
            }
        }
        return u"REFERENCES "_s + QuoteName(reference.table) +
               (reference.columns.isEmpty() ? QString() : u" ("_s + NameList(reference.columns) + u')') +
               reference.actions;
    }

    static QString TypeCheck(const ColumnDefinition &column)
    {
        const QString name = QuoteName(column.name);
        const auto check = [&column](QLatin1StringView prefix, const QString &condition) {
            return " CONSTRAINT "_L1 + QuoteName(prefix + column.name) + " CHECK ("_L1 + condition + u')';
        };
        const auto whole = [&](const QString &range) {
            return check(kTypeCheck, u"%1 IS NULL OR (typeof(%1) = 'integer' AND %1 BETWEEN %2)"_s.arg(name, range));
        };
        switch (column.type.kind) {
        case Type::Kind::Bit:
            return check(kTypeCheck, name + " IN (0, 1)"_L1);
        case Type::Kind::TinyInt:
            return whole(u"0 AND 255"_s);
        case Type::Kind::SmallInt:
            return whole(u"-32768 AND 32767"_s);
        case Type::Kind::Int:
            return whole(u"-2147483648 AND 2147483647"_s);
        case Type::Kind::BigInt:
            return check(kTypeCheck, u"typeof(%1) IN ('integer', 'null')"_s.arg(name));
        case Type::Kind::Float:
        case Type::Kind::Money:
        case Type::Kind::Decimal:
            return check(kTypeCheck, u"typeof(%1) IN ('real', 'integer', 'null')"_s.arg(name));
        case Type::Kind::DateTime:
        case Type::Kind::Date:
            return check(kTypeCheck, u"%1 GLOB '[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]*'"_s.arg(name));
        case Type::Kind::Text:
            return column.type.length < 0
                       ? QString()
                       : check(kLengthCheck, u"length(%1) <= %2"_s.arg(name, QString::number(column.type.length)));
        case Type::Kind::Unknown:
        case Type::Kind::Binary:
            break;
        }
        return {};
    }

    Catalogue &catalogue_;
    Worker worker_;
    Scope scope_;
    const QString table_;
    const bool temporary_;
};

} // namespace

Definition TranslateTable(Catalogue &catalogue, const CreateTableStatement &statement, const QString &name,
                          bool temporary)
{
    TableWriter writer(catalogue, name, temporary);
    const TableConstraint *key = nullptr;
    QList<const TableConstraint *> others;
    const auto sort = [&](const TableConstraint &constraint, bool atColumn) {
        if (constraint.kind == TableConstraint::Kind::PrimaryKey) {
            if (key)
                Fail(Error::Kind::Syntax, 8110,
                     u"Cannot add multiple PRIMARY KEY constraints to table '%1'."_s.arg(name), constraint.place);
            key = &constraint;
        } else if (!atColumn || constraint.kind == TableConstraint::Kind::Unique) {
            others.append(&constraint);
        }
    };
    const ColumnDefinition *identity = nullptr;
    for (const ColumnDefinition &column : statement.columns) {
        writer.Know(column);
        for (const TableConstraint &constraint : column.constraints)
            sort(constraint, true);
        if (!column.identity)
            continue;
        if (identity || !column.type.IsInteger() || column.type.kind == Type::Kind::Bit || column.defaultValue)
            Refuse(u"This identity column"_s, column.place);
        identity = &column;
    }
    for (const TableConstraint &constraint : statement.constraints)
        sort(constraint, false);

    // A whole number that is the key becomes SQLite's row number, and so does an identity column, which is unique
    // anyway.
    const ColumnDefinition *rowId = key ? nullptr : identity;
    for (const ColumnDefinition &column : statement.columns) {
        if (key && key->columns.size() == 1 && key->columns.first().compare(column.name, Qt::CaseInsensitive) == 0 &&
            column.type.IsInteger() && column.type.kind != Type::Kind::Bit)
            rowId = &column;
    }
    if (identity && identity != rowId)
        Refuse(u"An identity column beside another primary key"_s, identity->place);

    QStringList parts;
    for (const ColumnDefinition &column : statement.columns) {
        const bool inKey = key && key->columns.contains(column.name, Qt::CaseInsensitive);
        parts.append(
            writer.ColumnText(column, &column == rowId, key ? key->name : QString(), column.notNull || inKey, false));
    }
    if (key && !rowId)
        parts.append(writer.Constraint(*key));
    for (const TableConstraint *constraint : std::as_const(others))
        parts.append(writer.Constraint(*constraint));
    Definition definition;
    definition.statements.append(u"CREATE %1TABLE %2 (\n  "_s.arg(temporary ? u"TEMP "_s : QString(), QuoteName(name)) +
                                 parts.join(",\n  "_L1) + "\n)"_L1);
    definition.exactTypes = writer.exactTypes;
    if (identity && identity->seed != 1) {
        definition.seedTable = name;
        definition.seed = identity->seed;
    }
    return definition;
}

Definition TranslateColumns(Catalogue &catalogue, const AlterTableStatement &statement, const Table &table)
{
    TableWriter writer(catalogue, table.name, false);
    for (const Column &column : table.columns)
        writer.Know(column);
    Definition definition;
    for (const ColumnDefinition &column : statement.columns) {
        writer.Know(column);
        if (column.identity)
            Refuse(u"A new identity column"_s, column.place);
        if (column.notNull && !column.defaultValue)
            Fail(Error::Kind::NullValue, 4901,
                 u"Column '%1' cannot be added to table '%2' because it does not allow nulls and has no default."_s.arg(
                     column.name, table.name),
                 column.place, column.name);
        definition.statements.append("ALTER TABLE "_L1 + QuoteName(table.name) + " ADD COLUMN "_L1 +
                                     writer.ColumnText(column, false, {}, column.notNull, true));
    }
    definition.exactTypes = writer.exactTypes;
    return definition;
}

QString TranslateConstraint(Catalogue &catalogue, const TableConstraint &constraint, const Table &table)
{
    TableWriter writer(catalogue, table.name, false);
    for (const Column &column : table.columns)
        writer.Know(column);
    return writer.Constraint(constraint);
}

QString TranslateView(Catalogue &catalogue, const CreateViewStatement &statement)
{
    Worker worker(catalogue, nullptr, nullptr, true);
    return u"CREATE VIEW %1 AS\n"_s.arg(QuoteName(statement.name)) +
           worker.TranslateQuery(statement.query, Worker::Use::Derived).sql;
}

void CheckTableFunction(Catalogue &catalogue, const CreateFunctionStatement &statement)
{
    QHash<QString, Fragment> arguments;
    for (const Parameter &parameter : statement.parameters)
        arguments.insert(parameter.name, Atom(u"NULL"_s, parameter.type));
    Worker worker(catalogue, nullptr, nullptr, false);
    const Worker::Enter enter(worker, statement.name, statement.place, std::move(arguments));
    worker.TranslateQuery(*statement.query, Worker::Use::Derived);
}

QList<Column> DescribeView(Catalogue &catalogue, const CreateViewStatement &statement)
{
    Worker worker(catalogue, nullptr, nullptr, true);
    return worker.TranslateQuery(statement.query, Worker::Use::Derived).columns;
}

} // namespace embedded
