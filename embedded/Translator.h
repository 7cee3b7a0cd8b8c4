// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>
#include <QVariant>

#include <functional>

#include "embedded/Ast.h"
#include "embedded/Catalogue.h"

namespace embedded {

struct Variable
{
    Type type;
    QVariant value; // in the form in which it is bound
};

// SQLite text that stands for one statement.
struct Translation
{
    QString sql;
    QStringList variables;      // ?1, ?2 ... in this order
    QList<Column> columns;      // of a SELECT
    QString identityTable;      // INSERT: the table whose identity column is generated...
    bool identityGiven = false; // ... or given with the values
    bool temporary = false;     // names a temporary table or a table variable
};

struct Worker;

// One use of the translator: one statement. Throws Error.
class Translator
{
public:
    // What a name stands for at the moment; null when it is not declared. A translation holds for other values of the
    // same types, as long as the text values that contain '[' stay the same ones (LIKE reads them as classes).
    using Lookup = std::function<const Variable *(const QString &)>;
    // The temporary table behind a table variable; empty when there is none.
    using TableLookup = std::function<QString(const QString &)>;

    Translator(Catalogue &catalogue, Lookup variables, TableLookup tables);
    ~Translator();
    Translator(const Translator &) = delete;
    Translator &operator=(const Translator &) = delete;

    Translation Select(const SelectStatement &statement);
    Translation Insert(const InsertStatement &statement);
    Translation Update(const UpdateStatement &statement);
    Translation Delete(const DeleteStatement &statement);
    // SELECT of one value, converted to `target` unless that is Kind::Unknown.
    Translation Value(const Expr &expr, const Type &target);
    Translation Condition(const Expr &expr);

private:
    std::unique_ptr<Worker> worker_;
};

// Definitions become SQLite's with SQLite's own functions only, so that any tool can open the file.
struct Definition
{
    QStringList statements;
    QList<std::pair<QString, QString>> exactTypes; // column, T-SQL type, where SQLite's schema cannot hold it
    QString seedTable;                             // identity that does not start at 1
    qlonglong seed = 1;
};
Definition TranslateTable(Catalogue &catalogue, const CreateTableStatement &statement, const QString &name,
                          bool temporary);
Definition TranslateColumns(Catalogue &catalogue, const AlterTableStatement &statement, const Table &table);
// A table constraint as it stands in CREATE TABLE.
QString TranslateConstraint(Catalogue &catalogue, const TableConstraint &constraint, const Table &table);
// Throws for an inline table function whose query could not run.
void CheckTableFunction(Catalogue &catalogue, const CreateFunctionStatement &statement);
QString TranslateView(Catalogue &catalogue, const CreateViewStatement &statement);
QList<Column> DescribeView(Catalogue &catalogue, const CreateViewStatement &statement);

QString QuoteName(const QString &name);
QString QuoteText(const QString &text);

} // namespace embedded
