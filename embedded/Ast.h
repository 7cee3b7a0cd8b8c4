// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

#include "embedded/Lexer.h"

namespace embedded {

// A T-SQL data type, as far as it decides what an expression means.
struct Type
{
    enum class Kind {
        Unknown,
        Bit,
        TinyInt,
        SmallInt,
        Int,
        BigInt,
        Float,
        Money,
        Decimal,
        Text,
        DateTime,
        Date,
        Binary
    };

    Kind kind = Kind::Unknown;
    int length = -1;  // characters of a text, -1 without limit
    int scale = 0;    // of a decimal
    QString declared; // "varchar(10)": as it stands in a column declaration

    Type() = default;
    Type(Kind typeKind) // NOLINT: a kind alone is a type
        : kind(typeKind)
    {}
    bool IsInteger() const { return kind >= Kind::Bit && kind <= Kind::BigInt; }
    bool IsFloat() const { return kind >= Kind::Float && kind <= Kind::Decimal; }
    bool IsNumber() const { return IsInteger() || IsFloat(); }
    bool IsText() const { return kind == Kind::Text; }
    bool IsDate() const { return kind == Kind::DateTime || kind == Kind::Date; }
    bool IsUnknown() const { return kind == Kind::Unknown; }
};

// Reads "varchar(10)", "decimal(12, 4)", "int"...; a Kind::Unknown type when the name is none of the subset's.
Type TypeFromText(const QString &declared);

struct Query;
struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

struct OrderItem
{
    ExprPtr expr;
    bool descending = false;
};

struct Window
{
    std::vector<ExprPtr> partition;
    std::vector<OrderItem> order;
};

struct Expr
{
    enum class Kind {
        Null,
        Integer,
        Decimal,
        String,
        Name,     // qualifier.text
        Star,     // only as the argument of count
        Variable, // text with its '@'
        Negate,
        Complement,
        Binary,  // text is the operator
        Compare, // text is the operator
        And,     // any number of operands
        Or,
        Not,
        Like,    // text, pattern[, escape]
        Between, // value, low, high
        InList,  // value, members...
        InQuery, // value; query
        IsNull,
        Exists,
        Case, // base or null, (when, then)..., else or null
        Cast, // CAST and CONVERT: type, style
        Call, // qualifier.text(args)
        Query // a query that gives one value
    };

    Kind kind = Kind::Null;
    Place place;
    QString text;
    QString qualifier;
    bool negated = false;
    bool distinct = false;
    std::vector<ExprPtr> args;
    std::unique_ptr<Query> query;
    std::unique_ptr<Window> over;
    Type type;
    int style = -1;
    int depth = 1; // of the tree below, so that nothing walks it too deeply

    bool IsPredicate() const
    {
        return kind == Kind::Compare || kind == Kind::And || kind == Kind::Or || kind == Kind::Not ||
               kind == Kind::Like || kind == Kind::Between || kind == Kind::InList || kind == Kind::InQuery ||
               kind == Kind::IsNull || kind == Kind::Exists;
    }
};

struct TableRef
{
    enum class Kind { Table, Derived, Function, Join };
    enum class Join { Cross, Inner, Left, Right, Full };

    Kind kind = Kind::Table;
    Place place;
    QString name; // tables, '#' and '@' tables, functions
    QString alias;
    std::vector<ExprPtr> args;
    std::unique_ptr<Query> query;
    Join join = Join::Cross;
    std::unique_ptr<TableRef> left;
    std::unique_ptr<TableRef> right;
    ExprPtr on;
};

struct SelectItem
{
    Place place;
    ExprPtr expr;       // null for a star
    QString alias;      // or the qualifier of a star
    QString assignedTo; // SELECT @x = expr
    bool star = false;
};

struct SelectCore
{
    bool distinct = false;
    ExprPtr top;
    std::vector<SelectItem> items;
    std::vector<std::unique_ptr<TableRef>> from;
    ExprPtr where;
    std::vector<ExprPtr> groupBy;
    ExprPtr having;
};

struct Query
{
    Place place;
    std::vector<SelectCore> arms; // joined by UNION
    std::vector<bool> all;        // one less than arms
    std::vector<OrderItem> orderBy;
};

struct Statement
{
    enum class Kind {
        Select,
        Insert,
        Update,
        Delete,
        CreateTable,
        AlterTable,
        CreateIndex,
        CreateView,
        CreateFunction,
        CreateProcedure,
        Drop,
        Declare,
        Set,
        SetOption,
        If,
        While,
        Block,
        Break,
        Continue,
        Return,
        Exec,
        RaisError,
        Throw,
        Print,
        Try,
        Transaction,
        Cursor
    };

    explicit Statement(Kind statementKind)
        : kind(statementKind)
    {}
    virtual ~Statement() = default;
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    const Kind kind;
    Place place;
};
using StatementPtr = std::unique_ptr<Statement>;
using StatementList = std::vector<StatementPtr>;

template <Statement::Kind K> struct StatementOf : Statement
{
    StatementOf()
        : Statement(K)
    {}
};

struct SelectStatement final : StatementOf<Statement::Kind::Select>
{
    Query query;
    bool assigns = false; // SELECT @x = ...
};

struct InsertStatement final : StatementOf<Statement::Kind::Insert>
{
    QString table;
    QStringList columns;
    std::vector<std::vector<ExprPtr>> rows; // a null expression stands for DEFAULT
    std::unique_ptr<Query> query;
};

struct Assignment
{
    Place place;
    QString column;
    ExprPtr value; // null for DEFAULT
};

struct UpdateStatement final : StatementOf<Statement::Kind::Update>
{
    QString target; // a table or an alias of `from`
    std::vector<Assignment> assignments;
    std::vector<std::unique_ptr<TableRef>> from;
    ExprPtr where;
};

struct DeleteStatement final : StatementOf<Statement::Kind::Delete>
{
    QString target;
    std::vector<std::unique_ptr<TableRef>> from;
    ExprPtr where;
};

struct ReferenceClause
{
    QString table;
    QStringList columns;
    QString actions; // "ON DELETE CASCADE", already in SQLite's words
};

struct TableConstraint
{
    enum class Kind { PrimaryKey, Unique, Check, ForeignKey };

    Kind kind = Kind::Check;
    Place place;
    QString name;
    QStringList columns;
    ExprPtr check;
    ReferenceClause reference;
};

struct ColumnDefinition
{
    Place place;
    QString name;
    Type type;
    bool notNull = false;
    bool identity = false;
    qlonglong seed = 1;
    ExprPtr defaultValue;
    std::vector<TableConstraint> constraints; // written at the column
};

struct CreateTableStatement final : StatementOf<Statement::Kind::CreateTable>
{
    QString table;
    std::vector<ColumnDefinition> columns;
    std::vector<TableConstraint> constraints;
};

struct AlterTableStatement final : StatementOf<Statement::Kind::AlterTable>
{
    QString table;
    std::vector<ColumnDefinition> columns;
    std::vector<TableConstraint> constraints;
};

struct CreateIndexStatement final : StatementOf<Statement::Kind::CreateIndex>
{
    QString name;
    QString table;
    bool unique = false;
    std::vector<std::pair<QString, bool>> columns; // name, descending
};

struct DropStatement final : StatementOf<Statement::Kind::Drop>
{
    enum class Object { Table, View, Procedure, Function, Index };
    Object object = Object::Table;
    QStringList names;
    QString table; // of an index
    bool ifExists = false;
};

struct CreateViewStatement final : StatementOf<Statement::Kind::CreateView>
{
    QString name;
    Query query;
    QString source;
};

struct Parameter
{
    QString name;  // in small letters, with '@'
    QString label; // as written, without
    Type type;
    ExprPtr defaultValue;
    bool output = false;
};

struct CreateFunctionStatement final : StatementOf<Statement::Kind::CreateFunction>
{
    QString name;
    std::vector<Parameter> parameters;
    std::unique_ptr<Query> query; // of an inline table function, else null
    Type returns;                 // of a scalar one
    StatementList body;
    QString source;
};

struct CreateProcedureStatement final : StatementOf<Statement::Kind::CreateProcedure>
{
    QString name;
    std::vector<Parameter> parameters;
    StatementList body;
    QString source;
};

struct DeclareStatement final : StatementOf<Statement::Kind::Declare>
{
    std::vector<Parameter> variables;                          // defaultValue is the initialiser
    std::vector<std::unique_ptr<CreateTableStatement>> tables; // DECLARE @t TABLE (...)
};

struct SetStatement final : StatementOf<Statement::Kind::Set>
{
    QString variable;
    ExprPtr value;
};

struct SetOptionStatement final : StatementOf<Statement::Kind::SetOption>
{
    QString identityInsert; // the table of SET IDENTITY_INSERT, else empty: an option that changes nothing here
    bool on = false;
};

struct IfStatement final : StatementOf<Statement::Kind::If>
{
    ExprPtr condition;
    StatementPtr then;
    StatementPtr otherwise;
};

struct WhileStatement final : StatementOf<Statement::Kind::While>
{
    ExprPtr condition;
    StatementPtr body;
};

struct BlockStatement final : StatementOf<Statement::Kind::Block>
{
    StatementList body;
};

using BreakStatement = StatementOf<Statement::Kind::Break>;
using ContinueStatement = StatementOf<Statement::Kind::Continue>;

struct ReturnStatement final : StatementOf<Statement::Kind::Return>
{
    ExprPtr value;
};

struct ExecStatement final : StatementOf<Statement::Kind::Exec>
{
    struct Argument
    {
        QString name;  // empty when given by position
        ExprPtr value; // null for DEFAULT
        bool output = false;
    };
    QString procedure;
    QString result; // @r of EXEC @r = p
    std::vector<Argument> arguments;
};

struct RaisErrorStatement final : StatementOf<Statement::Kind::RaisError>
{
    std::vector<ExprPtr> arguments; // message, severity, state, then what the message's %s and %d stand for
};

struct ThrowStatement final : StatementOf<Statement::Kind::Throw>
{
    std::vector<ExprPtr> arguments; // number, message, state, or none: throw again
};

using PrintStatement = StatementOf<Statement::Kind::Print>;

struct TryStatement final : StatementOf<Statement::Kind::Try>
{
    StatementList body;
    StatementList handler;
};

struct TransactionStatement final : StatementOf<Statement::Kind::Transaction>
{
    enum class Action { Begin, Commit, Rollback };
    Action action = Action::Begin;
};

struct CursorStatement final : StatementOf<Statement::Kind::Cursor>
{
    enum class Action { Declare, Open, Fetch, Close, Deallocate };
    Action action = Action::Declare;
    QString name;
    std::unique_ptr<SelectStatement> select;
    QStringList into;
};

struct CompiledSet;

// A parsed batch.
struct Program
{
    QString text;
    StatementList statements;
    QHash<QString, Place> undeclared;      // variables (lower case, with '@') that the caller has to give
    std::shared_ptr<CompiledSet> compiled; // the interpreter's prepared statements
};

} // namespace embedded
