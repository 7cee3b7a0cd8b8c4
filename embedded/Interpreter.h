// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCache>
#include <QDateTime>

#include "embedded/Catalogue.h"
#include "embedded/Translator.h"

namespace embedded {

// Runs batches and procedures: control flow and variables here, everything that touches data in SQLite.
class Interpreter
{
public:
    Interpreter(Database &database, const Limits &limits);
    ~Interpreter();
    Interpreter(const Interpreter &) = delete;
    Interpreter &operator=(const Interpreter &) = delete;

    Outcome Run(const QString &batch, const QVariantMap &parameters, bool keep = true);
    int Call(const QString &procedure, QVariantMap &parameters);
    QString Translate(const QString &statement);
    void ClearTranslations();

    void Begin();
    void Commit();
    void Rollback();

private:
    enum class Flow { Next, Break, Continue, Return };
    struct Cursor;
    struct Frame;
    struct Nesting;
    struct Compiled;
    struct Selection
    {
        QList<Column> columns;
        QStringList names;
        QList<QVariantList> rows;
    };
    friend struct CompiledSet;

    std::shared_ptr<Program> ParseCached(const QString &batch, bool keep);
    const Variable *Lookup(Frame &frame, const QString &name);
    Compiled &Compile(Frame &frame, const void *node, const std::function<Translation(Translator &)> &translate);
    bool SchemaMoved();
    void Bind(Frame &frame, const Compiled &compiled);

    QVariant Evaluate(Frame &frame, const Expr &expr, const Type &target);
    bool Holds(Frame &frame, const Expr &expr);
    Selection ReadAll(Frame &frame, const SelectStatement &statement, bool forCaller);
    // A stored value as the caller sees it.
    QVariant ToCaller(const QVariant &value, const Type &type);

    Flow RunList(Frame &frame, const StatementList &list);
    Flow RunStatement(Frame &frame, const Statement &statement);
    void RunSelect(Frame &frame, const SelectStatement &statement);
    static bool IsChange(const Statement &statement);
    Compiled &CompileChange(Frame &frame, const Statement &statement);
    void RunChange(Frame &frame, const Statement &statement);
    void RunDeclare(Frame &frame, const DeclareStatement &statement);
    void RunExec(Frame &frame, const ExecStatement &statement);
    void RunRaisError(Frame &frame, const RaisErrorStatement &statement);
    void RunThrow(Frame &frame, const ThrowStatement &statement);
    Flow RunTry(Frame &frame, const TryStatement &statement);
    void RunTransaction(const TransactionStatement &statement);
    void RunCursor(Frame &frame, const CursorStatement &statement);
    int RunProcedure(Frame &frame, const ProcedureRoutine &procedure);
    QVariant CallFunction(const QString &name, const QVariantList &arguments);

    void RunDefinition(Frame &frame, const Statement &statement);
    void CreateTable(Frame &frame, const CreateTableStatement &statement, const QString &name, bool temporary);
    void AlterTable(const AlterTableStatement &statement);
    void AddConstraint(const TableConstraint &constraint, const QString &tableName, Place place);
    void CreateIndex(const CreateIndexStatement &statement);
    void CreateRoutine(const QString &kind, const QString &name, const QString &source);
    void Drop(Frame &frame, const DropStatement &statement);
    void Atomically(const std::function<void()> &work);
    void NeedNew(const QString &name, Place place);

    static Variable &Declared(Frame &frame, const QString &name, Place place);
    void Compute(Frame &frame, const QString &name, const Expr &expr);
    void Assign(Frame &frame, const QString &name, const Variable &value);
    QVariant Adopt(const Variable &value, const Type &target);
    void LeaveFrame(Frame &frame);
    void NoticeRollback();
    void AfterError(int transactionsBefore);

    Database &database_;
    Catalogue catalogue_;
    QCache<QString, std::shared_ptr<Program>> programs_;
    int transactions_ = 0; // @@TRANCOUNT
    bool definedInTransaction_ = false;
    int depth_ = 0;
    int rowCount_ = 0;
    int lastError_ = 0;
    int fetchStatus_ = -1;
    QVariant lastIdentity_;
    QString identityInsert_; // the table that SET IDENTITY_INSERT names
    qlonglong schemaVersion_ = -1;
    Variable scratch_;
    QHash<QString, QDateTime> moments_; // stored text and what it means
};

} // namespace embedded
