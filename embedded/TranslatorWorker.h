// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "embedded/Functions.h"
#include "embedded/Translator.h"

// The translator's inside: known to its own units only.
namespace embedded {

using namespace Qt::StringLiterals;

constexpr qsizetype kMaxSql = 200'000; // functions written out in place can grow without end
constexpr int kMaxExpansion = 16;      // functions within functions

// SQLite's order of operators.
enum Precedence { kOr = 1, kAnd, kNot, kEqual, kLess, kBits, kSum, kProduct, kConcat, kUnary, kAtom };

// A piece of SQLite text and what is known about its value.
struct Fragment
{
    QString sql;
    Type type;
    int precedence = kAtom;
    bool trimmed = false;            // a text without trailing blanks
    bool noCase = false;             // a text that compares without regard to case by itself
    std::optional<QVariant> literal; // known now; an invalid value is NULL
    bool classes = false;            // a bound text in which LIKE would find '['

    bool IsNull() const { return literal && !literal->isValid(); }
};

struct Source
{
    QString alias;    // as the statement names it
    QString sqlAlias; // as SQLite does: different where functions are written out in place
    QList<Column> columns;
};

enum class Clause { Items, OrderBy, Other };

struct Scope
{
    Scope *outer = nullptr;
    QList<Source> sources;
    Clause clause = Clause::Other;
    QStringList groups; // translated GROUP BY expressions
    bool aggregated = false;
    int inAggregate = 0;
    QList<std::pair<QString, Place>> ungrouped;
};

// In parentheses unless it binds at least as tightly as `precedence`.
QString Wrap(const Fragment &fragment, int precedence);
Fragment Atom(const QString &sql, const Type &type);
Fragment NumberLiteral(const QVariant &value);
Fragment TextLiteral(const QString &text);
Fragment DateLiteral(const QString &text, const Type &type);
Fragment NullLiteral(const Type &type = {});
// The stored form of SQLite's strftime with these arguments.
QString StoredDate(const QString &arguments);
bool Same(const QString &a, QLatin1StringView b);
// The type of a value that may come from either side.
Type Unify(const Type &a, const Type &b);

// Translates one statement. Its methods are spread over the units by what they are about: conversions, expressions,
// functions, queries.
struct Worker
{
    using Lookup = Translator::Lookup;
    using TableLookup = Translator::TableLookup;
    using Handler = Fragment (Worker::*)(const Expr &);
    enum class Purpose { Compare, Assign, Explicit, Store };
    enum class Use { Result, Derived, Single, Exists, Insert };

    // What a function's parameters stand for where its body is written out in place.
    struct Expansion
    {
        QHash<QString, Fragment> arguments;
        Expansion *outer = nullptr;
        int depth = 1;
        int serial = 0;
    };

    struct QueryText
    {
        QString sql;
        QList<Column> columns;
    };

    struct Core
    {
        std::unique_ptr<Scope> scope = std::make_unique<Scope>();
        QList<Fragment> items;
        QStringList names;
        QString tail; // FROM ... HAVING
        QString limit;
    };

    Worker(Catalogue &theCatalogue, Lookup theVariables, TableLookup theTables, bool isDefinition)
        : catalogue(theCatalogue)
        , variables(std::move(theVariables))
        , tables(std::move(theTables))
        , definition(isDefinition)
    {}

    Catalogue &catalogue;
    const Lookup variables;
    const TableLookup tables;
    const bool definition; // SQLite's own functions only, no variables
    bool constant = false; // a check: SQLite wants the same answer every time
    Translation result;
    Scope *scope = nullptr;
    Expansion *expansion = nullptr;
    int expansions = 0;

    // conversions
    [[noreturn]] static void ConversionError(const QVariant &value, const QString &type);
    [[noreturn]] static void DateError();
    [[noreturn]] void RefuseInDefinition(const QString &what, Place place) const;
    Fragment Trimmed(const Fragment &fragment) const;
    Fragment ToNumber(const Fragment &value);
    static double Days(const Fragment &date);
    Fragment ToInteger(const Fragment &value, const Type &type);
    Fragment ToBit(const Fragment &value);
    static Fragment Bit(bool on);
    Fragment ToFloat(const Fragment &value, const Type &type, Purpose purpose);
    Fragment ToText(const Fragment &value, const Type &type, Purpose purpose, int style, Place place);
    Fragment AsText(const Fragment &value, int style, Place place);
    Fragment DateAsText(const Fragment &value, int style, Place place) const;
    Fragment ToDate(const Fragment &value, const Type &type, int style, Place place);
    Fragment Convert(const Fragment &value, const Type &type, Purpose purpose, Place place, int style = -1);

    // names
    Fragment ColumnReference(Scope &owner, const Source &source, const Column &column, Place place);
    Fragment Name(const Expr &expr);
    Fragment VariableReference(const Expr &expr);

    // expressions
    Fragment Translate(const Expr &expr);
    Fragment TranslateKind(const Expr &expr);
    static Fragment Number(const Expr &expr);
    Fragment Unary(const Expr &expr);
    Fragment Binary(const Expr &expr);
    static Fragment Concatenate(const Fragment &left, const Fragment &right);
    Fragment DateSum(const Expr &expr, const Fragment &left, const Fragment &right);
    static Fragment AddToDate(const Fragment &date, const QString &count, const QString &sign, const QString &unit);
    bool Align(Fragment &left, Fragment &right, Place place);
    Fragment Compare(const QString &op, Fragment left, Fragment right, Place place);
    Fragment Chain(const Expr &expr, QLatin1StringView word, int precedence);
    Fragment Like(const Expr &expr);
    Fragment Between(const Expr &expr);
    Fragment InList(const Expr &expr);
    Fragment InQuery(const Expr &expr);
    Fragment Case(const Expr &expr);
    Fragment Harmonise(const Fragment &value, const Type &type, Place place);
    Fragment Cast(const Expr &expr);

    // functions
    struct Builtin
    {
        int least;
        int most;
        Handler handler;
    };

    static const QHash<QString, Builtin> &Builtins();
    Fragment Call(const Expr &expr);
    Fragment Argument(const Expr &expr, size_t index) { return Translate(*expr.args[index]); }
    Fragment TextArgument(const Expr &expr, size_t index) { return AsText(Argument(expr, index), 0, expr.place); }
    Fragment NumberArgument(const Expr &expr, size_t index);
    Fragment IntegerArgument(const Expr &expr, size_t index);
    Fragment DateArgument(const Expr &expr, size_t index);
    Fragment IsNullCall(const Expr &expr);
    Fragment Coalesce(const Expr &expr);
    Fragment NullIf(const Expr &expr);
    Fragment Left(const Expr &expr);
    Fragment Right(const Expr &expr);
    Fragment Len(const Expr &expr);
    Fragment Substring(const Expr &expr);
    Fragment CharIndex(const Expr &expr);
    Fragment Replace(const Expr &expr);
    Fragment TextCall(const Expr &expr);
    Fragment Str(const Expr &expr);
    Fragment Char(const Expr &expr) { return Atom(u"char(%1)"_s.arg(IntegerArgument(expr, 0).sql), Type::Kind::Text); }
    Fragment Replicate(const Expr &expr);
    Fragment Abs(const Expr &expr);
    Fragment Round(const Expr &expr);
    Fragment Floor(const Expr &expr);
    Fragment GetDate(const Expr &expr);
    enum class Unit { Year, Quarter, Month, Week, Day, Hour, Minute, Second, WeekDay, DayOfYear };
    static Unit DateUnit(const Expr &expr);
    Fragment DateAdd(const Expr &expr);
    Fragment DateDiff(const Expr &expr);
    Fragment DatePart(const Expr &expr);
    Fragment Aggregate(const Expr &expr);
    static Fragment Distinct(const Fragment &value);
    Fragment RowNumber(const Expr &expr);
    Fragment ObjectId(const Expr &expr);
    Fragment Special(const Expr &expr);

    // functions of the database
    struct Enter
    {
        Enter(Worker &owner, const QString &name, Place place, QHash<QString, Fragment> arguments)
            : worker(owner)
        {
            current.arguments = std::move(arguments);
            current.outer = worker.expansion;
            current.depth = worker.expansion ? worker.expansion->depth + 1 : 1;
            current.serial = ++worker.expansions;
            if (current.depth > kMaxExpansion || current.serial > 1000)
                Refuse(u"A function that calls functions this deeply (%1)"_s.arg(name), place);
            worker.expansion = &current;
            scope = std::exchange(worker.scope, nullptr);
        }
        ~Enter()
        {
            worker.expansion = current.outer;
            worker.scope = scope;
        }
        Enter(const Enter &) = delete;
        Enter &operator=(const Enter &) = delete;
        Worker &worker;
        Expansion current;
        Scope *scope = nullptr;
    };

    const CreateFunctionStatement &FindFunction(const QString &name, bool table, Place place);
    QHash<QString, Fragment> Arguments(const CreateFunctionStatement &function, const std::vector<ExprPtr> &values,
                                       Place place);
    Fragment UserCall(const Expr &expr);

    // FROM
    QString SqlAlias(const QString &alias) const;
    const Table &ResolveTable(const QString &name, Place place);
    void AddSource(const QString &alias, const QList<Column> &columns, Place place);
    static QString TableName(const Table &table);
    QString From(const TableRef &ref);
    QString FromList(const std::vector<std::unique_ptr<TableRef>> &list);

    // queries
    Core TranslateCore(const SelectCore &core, Use use);
    Fragment IntegerArgumentOf(const Expr &expr) { return ToInteger(Translate(expr), Type::Kind::Int); }
    void AddItem(Core &text, const SelectItem &item, Use use);
    static void CheckGroups(const Core &core);
    QueryText TranslateQuery(const Query &query, Use use, const QList<const Column *> &store = {},
                             const QString &storeTable = {});
    static QString ExistsItems(const Core &core);
    QList<Column> Columns(const Query &query, std::vector<Core> &cores, Use use, const QList<const Column *> &store,
                          const QString &storeTable);
    QString OrderBy(const Query &query, std::vector<Core> &cores);

    // changes
    Fragment Store(const Fragment &value, const Column &column, const QString &table, Place place);
    const Table &Target(const QString &name, Place place);
    static const Column &TargetColumn(const Table &table, const QString &name, Place place);
    void Insert(const InsertStatement &statement);
    QString Rows(const InsertStatement &statement, QList<const Column *> &columns, const QString &table);
    QString PrepareFrom(const QString &target, const std::vector<std::unique_ptr<TableRef>> &from, const Table *&table,
                        Place place, QString &alias);
    static const TableRef *FindTarget(const TableRef &ref, const QString &target);
    Fragment AssignedValue(const Assignment &assignment, const Table &table, const Column *&column);
    void Update(const UpdateStatement &statement);
    void Delete(const DeleteStatement &statement);
    void Select(const SelectStatement &statement);
    static bool Mentions(const Expr &expr, const SelectCore &core);
};

} // namespace embedded
