// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QList>

#include <functional>
#include <memory>

#include "embedded/Ast.h"
#include "embedded/Database.h"

namespace embedded {

struct Column
{
    QString name;
    Type type;
    bool notNull = false;
    bool identity = false;
    bool rowId = false; // INTEGER PRIMARY KEY: SQLite's row number
    bool hasDefault = false;
    bool trimmed = true; // holds no trailing blanks
    bool noCase = true;  // compares without regard to case by itself
};

struct Table
{
    QString name;
    QList<Column> columns;
    bool view = false;

    const Column *Find(const QString &column) const;
};

// A procedure or a function: the statement of `program` that created it.
template <typename T> struct Routine
{
    std::shared_ptr<Program> program;
    const T *definition = nullptr;
};
using ProcedureRoutine = Routine<CreateProcedureStatement>;
using FunctionRoutine = Routine<CreateFunctionStatement>;

// What there is in the database, read from SQLite's own schema when it is first asked for. Sources of procedures,
// functions and views, and types that SQLite's schema cannot hold, are in the table _corvex_objects.
class Catalogue
{
public:
    explicit Catalogue(Database &database);

    // Tables, views and temporary tables; null when there is none.
    const Table *FindTable(const QString &name);
    const FunctionRoutine *FindFunction(const QString &name);
    std::shared_ptr<const ProcedureRoutine> FindProcedure(const QString &name);
    bool Exists(const QString &name);

    // `kind` is "view", "procedure", "function" or "type" (of "table.column").
    void Remember(const QString &kind, const QString &name, const QString &source);
    void Forget(const QString &kind, const QString &name);

    // After a definition, and after a rollback that may have undone one.
    void Changed();
    // Temporary tables come and go with every call; only statements that name them care.
    void TemporaryChanged();
    quint64 Generation() const { return generation_; }
    quint64 TemporaryGeneration() const { return temporaryGeneration_; }

    // Works out the columns of a view's query; set by whoever can translate.
    std::function<QList<Column>(const CreateViewStatement &)> describe;

    static void CreateStore(Database &database);

private:
    std::unique_ptr<Table> Load(const QString &name);
    QString Source(const QString &kind, const QString &name);

    Database &database_;
    quint64 generation_ = 1;
    quint64 temporaryGeneration_ = 1;
    QHash<QString, std::shared_ptr<Table>> tables_;
    QHash<QString, std::shared_ptr<FunctionRoutine>> functions_;
    QHash<QString, std::shared_ptr<ProcedureRoutine>> procedures_;
};

} // namespace embedded
