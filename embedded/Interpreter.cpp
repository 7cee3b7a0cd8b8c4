// SPDX-License-Identifier: Apache-2.0
#include "embedded/Interpreter.h"

#include <QDateTime>

#include <unordered_map>

#include "embedded/Functions.h"
#include "embedded/Parser.h"

namespace embedded {

using namespace Qt::StringLiterals;

namespace {

constexpr int kMaxCalls = 32; // procedures within procedures, as on the server

// What a caller gives, in the form in which it is bound.
Variable FromCaller(const QString &name, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return {};
    case QMetaType::Bool:
        return {Type::Kind::Bit, value.isNull() ? QVariant() : QVariant(qlonglong(value.toBool()))};
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::LongLong: {
        const qlonglong number = value.toLongLong();
        const bool big = number != qlonglong(int(number));
        return {big ? Type::Kind::BigInt : Type::Kind::Int, value.isNull() ? QVariant() : QVariant(number)};
    }
    case QMetaType::Float:
    case QMetaType::Double:
        return {Type::Kind::Float, value.isNull() ? QVariant() : QVariant(value.toDouble())};
    case QMetaType::QString: {
        const QString text = value.toString();
        return {Type::Kind::Text, text.isNull() ? QVariant() : QVariant(text)};
    }
    case QMetaType::QDate:
    case QMetaType::QDateTime: {
        const QDateTime moment = value.typeId() == QMetaType::QDate ? value.toDate().startOfDay() : value.toDateTime();
        return {Type::Kind::DateTime, moment.isValid() ? QVariant(DateText(moment)) : QVariant()};
    }
    case QMetaType::QByteArray:
        return {Type::Kind::Binary, value.isNull() ? QVariant() : value};
    case QMetaType::Nullptr:
        return {};
    default:
        Fail(
            Error::Kind::Other, 257,
            u"A value of type %1 cannot be given as parameter '%2'."_s.arg(QString::fromLatin1(value.typeName()), name),
            {}, name);
    }
}

} // namespace

// A statement that was translated and prepared for variables of certain types.
struct Interpreter::Compiled
{
    StatementHandle handle;
    Translation translation;
    QStringList names; // of its columns
    QByteArray signature;
    quint64 generation = 0;
    quint64 temporaryGeneration = 0;
};

// All of one batch, by the statement or expression that was translated.
struct CompiledSet
{
    std::unordered_map<const void *, std::vector<std::unique_ptr<Interpreter::Compiled>>> entries;
    std::vector<std::unique_ptr<Interpreter::Compiled>> replaced; // in use further out while they were recompiled
};

struct Interpreter::Cursor
{
    const SelectStatement *select = nullptr;
    Selection content;
    qsizetype at = 0;
    bool open = false;
};

// One level of procedures within procedures.
struct Interpreter::Nesting
{
    explicit Nesting(Interpreter &owner)
        : interpreter(owner)
    {
        if (interpreter.depth_ >= kMaxCalls)
            Fail(Error::Kind::Other, 217,
                 u"Maximum stored procedure, function, trigger, or view nesting level exceeded (limit %1)."_s.arg(
                     kMaxCalls));
        ++interpreter.depth_;
    }
    ~Nesting() { --interpreter.depth_; }
    Nesting(const Nesting &) = delete;
    Nesting &operator=(const Nesting &) = delete;
    Interpreter &interpreter;
};

// What a batch, procedure or function has of its own while it runs.
struct Interpreter::Frame
{
    Program *program = nullptr;
    QHash<QString, Variable> variables;
    QHash<QString, QString> tables; // table variables: the temporary tables behind them
    QStringList temporaries;        // temporary tables that end with the frame
    QHash<QString, Cursor> cursors;
    std::optional<Error> caught;
    QVariant identity; // SCOPE_IDENTITY()
    QVariant returned;
    Type returns; // of a function
    Outcome *outcome = nullptr;
    bool function = false;
};

Interpreter::Interpreter(Database &database, const Limits &limits)
    : database_(database)
    , catalogue_(database)
    , programs_(qMax(1, limits.cachedStatements))
{
    catalogue_.describe = [this](const CreateViewStatement &view) { return DescribeView(catalogue_, view); };
    database_.callFunction = [this](const QString &name, const QVariantList &arguments) {
        return CallFunction(name, arguments);
    };
}

Interpreter::~Interpreter() = default;

// ---- entry points

std::shared_ptr<Program> Interpreter::ParseCached(const QString &batch, bool keep)
{
    if (const std::shared_ptr<Program> *known = programs_.object(batch))
        return *known;
    std::shared_ptr<Program> program = Parse(batch);
    if (keep)
        programs_.insert(batch, new std::shared_ptr<Program>(program));
    return program;
}

Outcome Interpreter::Run(const QString &batch, const QVariantMap &parameters, bool keep)
{
    const std::shared_ptr<Program> program = ParseCached(batch, keep);
    Outcome outcome;
    Frame frame;
    frame.program = program.get();
    frame.outcome = &outcome;
    for (auto parameter = parameters.constBegin(); parameter != parameters.constEnd(); ++parameter) {
        const QString name = u'@' + parameter.key().toLower();
        if (!program->undeclared.contains(name))
            Fail(Error::Kind::Unknown, 8145, u"\"%1\" is not a parameter of the statement."_s.arg(parameter.key()), {},
                 parameter.key());
        frame.variables.insert(name, FromCaller(parameter.key(), parameter.value()));
    }
    if (frame.variables.size() < program->undeclared.size()) {
        for (auto used = program->undeclared.constBegin(); used != program->undeclared.constEnd(); ++used) {
            if (!frame.variables.contains(used.key()))
                Undeclared(used.key(), used.value());
        }
    }
    const int transactions = transactions_;
    try {
        RunList(frame, program->statements);
    } catch (...) {
        LeaveFrame(frame);
        AfterError(transactions);
        throw;
    }
    LeaveFrame(frame);
    outcome.identity = frame.identity.toLongLong();
    return outcome;
}

int Interpreter::Call(const QString &name, QVariantMap &parameters)
{
    QString plain = name;
    plain.remove(u'[').remove(u']');
    if (plain.startsWith("dbo."_L1, Qt::CaseInsensitive))
        plain.remove(0, 4);
    const std::shared_ptr<const ProcedureRoutine> procedure = catalogue_.FindProcedure(plain);
    if (!procedure)
        Unknown(2812, u"Could not find stored procedure '%1'."_s.arg(name), {}, name);
    Frame frame;
    frame.program = procedure->program.get();
    QHash<QString, QString> keys; // '@name' to the caller's spelling
    for (auto parameter = parameters.constBegin(); parameter != parameters.constEnd(); ++parameter)
        keys.insert(u'@' + parameter.key().toLower(), parameter.key());
    const std::vector<Parameter> &declared = procedure->definition->parameters;
    for (auto key = keys.constBegin(); key != keys.constEnd(); ++key) {
        if (std::none_of(declared.cbegin(), declared.cend(),
                         [&key](const Parameter &p) { return p.name == key.key(); }))
            Fail(Error::Kind::Unknown, 8145, u"@%1 is not a parameter for procedure %2."_s.arg(key.value(), name), {},
                 key.value());
    }
    const int transactions = transactions_;
    int returned = 0;
    try {
        for (const Parameter &parameter : declared) {
            Variable variable{parameter.type, {}};
            if (keys.contains(parameter.name))
                variable.value = Adopt(FromCaller(parameter.label, parameters[keys[parameter.name]]), parameter.type);
            else if (parameter.defaultValue)
                variable.value = Evaluate(frame, *parameter.defaultValue, parameter.type);
            else if (!parameter.output)
                Fail(Error::Kind::Unknown, 201,
                     u"Procedure or function '%1' expects parameter '@%2', which was not supplied."_s.arg(
                         name, parameter.label),
                     {}, parameter.label);
            frame.variables.insert(parameter.name, variable);
        }
        returned = RunProcedure(frame, *procedure);
    } catch (...) {
        AfterError(transactions);
        throw;
    }
    for (const Parameter &parameter : declared) {
        if (parameter.output)
            parameters[keys.value(parameter.name, parameter.label)] =
                ToCaller(frame.variables[parameter.name].value, parameter.type);
    }
    return returned;
}

QString Interpreter::Translate(const QString &batch)
{
    const std::shared_ptr<Program> program = ParseCached(batch, true);
    Frame frame;
    frame.program = program.get();
    for (auto used = program->undeclared.constBegin(); used != program->undeclared.constEnd(); ++used)
        frame.variables.insert(used.key(), {});
    if (program->statements.size() != 1)
        Refuse(u"More than one statement"_s, {1, 1});
    const Statement &statement = *program->statements.front();
    if (statement.kind == Statement::Kind::Select) {
        const auto &select = static_cast<const SelectStatement &>(statement);
        return Compile(frame, &statement, [&](Translator &translator) { return translator.Select(select); })
            .translation.sql;
    }
    if (!IsChange(statement))
        Refuse(u"The translation of this statement"_s, statement.place);
    return CompileChange(frame, statement).translation.sql;
}

void Interpreter::ClearTranslations()
{
    programs_.clear();
    catalogue_.Changed();
}

// ---- transactions

void Interpreter::Begin()
{
    if (database_.InTransaction())
        Fail(Error::Kind::Other, 3988, u"A new transaction is not allowed because there is one open already."_s);
    database_.Execute(u"BEGIN IMMEDIATE"_s);
    transactions_ = 1;
    definedInTransaction_ = false;
}

void Interpreter::Commit()
{
    if (!database_.InTransaction())
        Fail(Error::Kind::Other, 3902, u"The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."_s);
    try {
        database_.Execute(u"COMMIT"_s);
    } catch (const Error &) { // the transaction is still open, or SQLite has rolled it back
        NoticeRollback();
        throw;
    }
    transactions_ = 0;
}

void Interpreter::Rollback()
{
    if (database_.InTransaction())
        database_.Execute(u"ROLLBACK"_s);
    transactions_ = 0;
    if (definedInTransaction_)
        catalogue_.Changed();
    definedInTransaction_ = false;
}

// SQLite rolls back by itself when the disk is full or fails.
void Interpreter::NoticeRollback()
{
    if (transactions_ > 0 && !database_.InTransaction())
        Rollback();
}

void Interpreter::AfterError(int transactionsBefore)
{
    NoticeRollback();
    if (!database_.InTransaction())
        return;
    if (transactionsBefore == 0)
        Rollback(); // nobody is left who knows of it
    else
        transactions_ = transactionsBefore;
}

void Interpreter::RunTransaction(const TransactionStatement &statement)
{
    switch (statement.action) {
    case TransactionStatement::Action::Begin:
        if (transactions_ == 0)
            Begin();
        else
            ++transactions_;
        break;
    case TransactionStatement::Action::Commit:
        if (transactions_ > 1)
            --transactions_;
        else
            Commit();
        break;
    case TransactionStatement::Action::Rollback:
        if (transactions_ == 0)
            Fail(Error::Kind::Other, 3903,
                 u"The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."_s);
        Rollback();
        break;
    }
}

void Interpreter::Atomically(const std::function<void()> &work)
{
    const bool outermost = !database_.InTransaction();
    database_.Execute(outermost ? u"BEGIN IMMEDIATE"_s : u"SAVEPOINT cx_definition"_s);
    try {
        work();
        database_.Execute(outermost ? u"COMMIT"_s : u"RELEASE cx_definition"_s);
    } catch (...) {
        if (database_.InTransaction()) {
            database_.Execute(outermost ? u"ROLLBACK"_s : u"ROLLBACK TO cx_definition"_s);
            if (!outermost)
                database_.Execute(u"RELEASE cx_definition"_s);
        }
        catalogue_.Changed();
        throw;
    }
    definedInTransaction_ |= !outermost;
    catalogue_.Changed();
}

// ---- values

const Variable *Interpreter::Lookup(Frame &frame, const QString &name)
{
    if (!name.startsWith("@@"_L1)) {
        const auto variable = frame.variables.constFind(name);
        return variable == frame.variables.constEnd() ? nullptr : &*variable;
    }
    const auto number = [this](const QVariant &value, Type::Kind kind = Type::Kind::Int) {
        scratch_ = {kind, value};
        return &scratch_;
    };
    if (name == "@@rowcount"_L1)
        return number(qlonglong(rowCount_));
    if (name == "@@error"_L1)
        return number(qlonglong(lastError_));
    if (name == "@@trancount"_L1)
        return number(qlonglong(transactions_));
    if (name == "@@xact_state"_L1)
        return number(qlonglong(transactions_ > 0));
    if (name == "@@fetch_status"_L1)
        return number(qlonglong(fetchStatus_));
    if (name == "@@identity"_L1)
        return number(lastIdentity_, Type::Kind::BigInt);
    if (name == "@@scope_identity"_L1)
        return number(frame.identity, Type::Kind::BigInt);
    if (name == "@@error_message"_L1)
        return number(frame.caught ? QVariant(frame.caught->text) : QVariant(), Type::Kind::Text);
    if (name == "@@error_number"_L1)
        return number(frame.caught ? QVariant(qlonglong(frame.caught->number)) : QVariant());
    if (name == "@@error_severity"_L1)
        return number(frame.caught ? QVariant(qlonglong(16)) : QVariant());
    if (name == "@@error_state"_L1)
        return number(frame.caught ? QVariant(qlonglong(1)) : QVariant());
    return nullptr;
}

Interpreter::Compiled &Interpreter::Compile(Frame &frame, const void *node,
                                            const std::function<Translation(Translator &)> &translate)
{
    if (!frame.program->compiled)
        frame.program->compiled = std::make_shared<CompiledSet>();
    CompiledSet &set = *frame.program->compiled;
    std::vector<std::unique_ptr<Compiled>> &variants = set.entries[node];
    const auto sign = [&](const QStringList &names) {
        QByteArray signature;
        for (const QString &name : names) {
            const Variable *variable = Lookup(frame, name);
            const bool classes =
                variable && variable->value.typeId() == QMetaType::QString && variable->value.toString().contains(u'[');
            signature += char((variable ? int(variable->type.kind) : 31) + (classes ? 64 : 32));
        }
        return signature;
    };
    for (size_t i = 0; i < variants.size(); ++i) {
        Compiled &known = *variants[i];
        const bool stale =
            known.generation != catalogue_.Generation() ||
            (known.translation.temporary && known.temporaryGeneration != catalogue_.TemporaryGeneration());
        if (stale || sqlite3_stmt_busy(known.handle.get())) {
            if (!stale)
                set.replaced.push_back(std::move(variants[i])); // a function that calls itself
            variants.erase(variants.begin() + qsizetype(i--));
        } else if (known.signature == sign(known.translation.variables)) {
            return known;
        }
    }
    std::erase_if(set.replaced, [](const auto &old) { return !sqlite3_stmt_busy(old->handle.get()); });

    auto compiled = std::make_unique<Compiled>();
    const auto prepare = [&] {
        Translator translator(
            catalogue_, [&](const QString &name) { return Lookup(frame, name); },
            [&](const QString &name) { return frame.tables.value(name); });
        compiled->translation = translate(translator);
        compiled->handle = database_.Prepare(compiled->translation.sql);
    };
    try {
        prepare();
    } catch (const Error &) {
        if (!SchemaMoved())
            throw;
        prepare();
    }
    for (const Column &column : std::as_const(compiled->translation.columns))
        compiled->names.append(column.name);
    compiled->signature = sign(compiled->translation.variables);
    compiled->generation = catalogue_.Generation();
    compiled->temporaryGeneration = catalogue_.TemporaryGeneration();
    if (variants.size() >= 16)
        variants.erase(variants.begin());
    variants.push_back(std::move(compiled));
    return *variants.back();
}

// Whether another program has changed a definition since we last looked.
bool Interpreter::SchemaMoved()
{
    const qlonglong version = database_.Execute(u"PRAGMA schema_version"_s).toLongLong();
    if (std::exchange(schemaVersion_, version) == version)
        return false;
    catalogue_.Changed();
    return true;
}

void Interpreter::Bind(Frame &frame, const Compiled &compiled)
{
    const QStringList &names = compiled.translation.variables;
    for (qsizetype i = 0; i < names.size(); ++i)
        database_.Bind(compiled.handle.get(), int(i + 1), Lookup(frame, names[i])->value);
}

namespace {

// Ends a statement's work when the block is left, however that happens: it must hold no lock and no value.
class Running
{
public:
    explicit Running(sqlite3_stmt *statement)
        : statement_(statement)
    {}
    ~Running()
    {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
    Running(const Running &) = delete;
    Running &operator=(const Running &) = delete;

private:
    sqlite3_stmt *statement_;
};

} // namespace

QVariant Interpreter::Evaluate(Frame &frame, const Expr &expr, const Type &target)
{
    const Compiled &compiled =
        Compile(frame, &expr, [&](Translator &translator) { return translator.Value(expr, target); });
    const Running running(compiled.handle.get());
    Bind(frame, compiled);
    if (!database_.Step(compiled.handle.get()))
        return {};
    QVariant value = Database::Value(compiled.handle.get(), 0);
    if (value.typeId() == QMetaType::LongLong && compiled.translation.columns.front().type.IsFloat())
        value = value.toDouble();
    return value;
}

bool Interpreter::Holds(Frame &frame, const Expr &expr)
{
    const Compiled &compiled =
        Compile(frame, &expr, [&](Translator &translator) { return translator.Condition(expr); });
    const Running running(compiled.handle.get());
    Bind(frame, compiled);
    return database_.Step(compiled.handle.get()) && sqlite3_column_int64(compiled.handle.get(), 0) != 0;
}

// A value of one type as another: what needs no work here, the rest by the translator's rules.
QVariant Interpreter::Adopt(const Variable &value, const Type &target)
{
    if (!value.value.isValid())
        return {};
    const bool sameText = value.type.IsText() && target.IsText();
    if (sameText)
        return target.length < 0 ? value.value : QVariant(value.value.toString().left(target.length));
    if (value.type.IsInteger() && target.IsInteger() && target.kind != Type::Kind::Bit)
        return value.value;
    if (value.type.IsFloat() && target.kind == Type::Kind::Float)
        return value.value.toDouble();
    if (value.type.kind == target.kind && target.kind != Type::Kind::Decimal && target.kind != Type::Kind::Money)
        return value.value;
    Program program;
    Frame frame;
    frame.program = &program;
    frame.variables.insert(u"@value"_s, value);
    Expr expr;
    expr.kind = Expr::Kind::Variable;
    expr.text = u"@value"_s;
    return Evaluate(frame, expr, target);
}

Variable &Interpreter::Declared(Frame &frame, const QString &name, Place place)
{
    const auto variable = frame.variables.find(name);
    if (variable == frame.variables.end())
        Undeclared(name, place);
    return *variable;
}

void Interpreter::Compute(Frame &frame, const QString &name, const Expr &expr)
{
    Variable &variable = Declared(frame, name, expr.place);
    variable.value = Evaluate(frame, expr, variable.type);
}

void Interpreter::Assign(Frame &frame, const QString &name, const Variable &value)
{
    Variable &variable = Declared(frame, name, {});
    variable.value = Adopt(value, variable.type);
}

// ---- statements

Interpreter::Flow Interpreter::RunList(Frame &frame, const StatementList &list)
{
    for (const StatementPtr &statement : list) {
        const Flow flow = RunStatement(frame, *statement);
        if (flow != Flow::Next)
            return flow;
    }
    return Flow::Next;
}

Interpreter::Flow Interpreter::RunStatement(Frame &frame, const Statement &statement)
{
    using Kind = Statement::Kind;
    switch (statement.kind) {
    case Kind::Select:
        RunSelect(frame, static_cast<const SelectStatement &>(statement));
        break;
    case Kind::Insert:
    case Kind::Update:
    case Kind::Delete:
        RunChange(frame, statement);
        break;
    case Kind::CreateTable:
    case Kind::AlterTable:
    case Kind::CreateIndex:
    case Kind::CreateView:
    case Kind::CreateFunction:
    case Kind::CreateProcedure:
    case Kind::Drop:
        RunDefinition(frame, statement);
        break;
    case Kind::Declare:
        RunDeclare(frame, static_cast<const DeclareStatement &>(statement));
        break;
    case Kind::Set: {
        const auto &set = static_cast<const SetStatement &>(statement);
        Compute(frame, set.variable, *set.value);
        break;
    }
    case Kind::SetOption: {
        const auto &option = static_cast<const SetOptionStatement &>(statement);
        if (!option.identityInsert.isEmpty())
            identityInsert_ = option.on ? option.identityInsert : QString();
        break;
    }
    case Kind::If: {
        const auto &branch = static_cast<const IfStatement &>(statement);
        if (Holds(frame, *branch.condition))
            return RunStatement(frame, *branch.then);
        return branch.otherwise ? RunStatement(frame, *branch.otherwise) : Flow::Next;
    }
    case Kind::While: {
        const auto &loop = static_cast<const WhileStatement &>(statement);
        while (Holds(frame, *loop.condition)) {
            const Flow flow = RunStatement(frame, *loop.body);
            if (flow == Flow::Break)
                break;
            if (flow == Flow::Return)
                return flow;
        }
        break;
    }
    case Kind::Block:
        return RunList(frame, static_cast<const BlockStatement &>(statement).body);
    case Kind::Break:
        return Flow::Break;
    case Kind::Continue:
        return Flow::Continue;
    case Kind::Return: {
        const auto &result = static_cast<const ReturnStatement &>(statement);
        if (result.value)
            frame.returned = Evaluate(frame, *result.value, frame.function ? frame.returns : Type(Type::Kind::Int));
        return Flow::Return;
    }
    case Kind::Exec:
        RunExec(frame, static_cast<const ExecStatement &>(statement));
        break;
    case Kind::RaisError:
        RunRaisError(frame, static_cast<const RaisErrorStatement &>(statement));
        break;
    case Kind::Throw:
        RunThrow(frame, static_cast<const ThrowStatement &>(statement));
        break;
    case Kind::Print:
        break;
    case Kind::Try:
        return RunTry(frame, static_cast<const TryStatement &>(statement));
    case Kind::Transaction:
        RunTransaction(static_cast<const TransactionStatement &>(statement));
        break;
    case Kind::Cursor:
        RunCursor(frame, static_cast<const CursorStatement &>(statement));
        break;
    }
    lastError_ = 0;
    return Flow::Next;
}

QVariant Interpreter::ToCaller(const QVariant &value, const Type &type)
{
    if (!value.isValid())
        return value;
    const bool whole = value.typeId() == QMetaType::LongLong;
    switch (type.kind) {
    case Type::Kind::Bit:
        return whole ? QVariant(value.toLongLong() != 0) : value;
    case Type::Kind::BigInt:
        return value;
    case Type::Kind::Unknown:
    case Type::Kind::TinyInt:
    case Type::Kind::SmallInt:
    case Type::Kind::Int: {
        const qlonglong number = value.toLongLong();
        return whole && number == qlonglong(int(number)) ? QVariant(int(number)) : value;
    }
    case Type::Kind::Float:
    case Type::Kind::Money:
    case Type::Kind::Decimal:
        return whole ? QVariant(value.toDouble()) : value;
    case Type::Kind::Text:
        return whole || value.typeId() == QMetaType::Double ? QVariant(value.toString()) : value;
    case Type::Kind::DateTime:
    case Type::Kind::Date: {
        // Qt asks the system's time zone for every one; a list holds the same dates again and again
        const QString text = value.toString();
        auto moment = moments_.constFind(text);
        if (moment == moments_.constEnd()) {
            if (moments_.size() > 4000)
                moments_.clear();
            moment = moments_.insert(text, DateFromText(text));
        }
        if (!moment->isValid())
            return value;
        return type.kind == Type::Kind::Date ? QVariant(moment->date()) : QVariant(*moment);
    }
    case Type::Kind::Binary:
        return value.typeId() == QMetaType::QString ? QVariant(value.toString().toUtf8()) : value;
    }
    return value;
}

Interpreter::Selection Interpreter::ReadAll(Frame &frame, const SelectStatement &statement, bool forCaller)
{
    const Compiled &compiled =
        Compile(frame, &statement, [&](Translator &translator) { return translator.Select(statement); });
    sqlite3_stmt *const handle = compiled.handle.get();
    Selection result{compiled.translation.columns, compiled.names, {}};
    const QList<Column> &columns = result.columns;
    const Running running(handle);
    Bind(frame, compiled);
    const int count = int(columns.size());
    while (database_.Step(handle)) {
        QVariantList row;
        row.reserve(count);
        for (int i = 0; i < count; ++i)
            row.append(forCaller ? ToCaller(Database::Value(handle, i), columns.at(i).type)
                                 : Database::Value(handle, i));
        result.rows.append(std::move(row));
    }
    return result;
}

void Interpreter::RunSelect(Frame &frame, const SelectStatement &statement)
{
    const SelectCore &core = statement.query.arms.front();
    if (statement.assigns && core.from.empty() && !core.where && !core.top) {
        // one after the other, so that a later expression sees what an earlier one assigned
        for (const SelectItem &item : core.items)
            Compute(frame, item.assignedTo, *item.expr);
        rowCount_ = 1;
        return;
    }
    Selection selection = ReadAll(frame, statement, !statement.assigns);
    rowCount_ = int(selection.rows.size());
    if (statement.assigns) {
        for (qsizetype i = 0; i < selection.names.size() && !selection.rows.isEmpty(); ++i)
            frame.variables[selection.names.at(i)].value = selection.rows.constLast().at(i);
    } else if (frame.outcome) {
        frame.outcome->rows = {std::move(selection.names), std::move(selection.rows)};
        frame.outcome->hasRows = true;
    }
}

bool Interpreter::IsChange(const Statement &statement)
{
    return statement.kind == Statement::Kind::Insert || statement.kind == Statement::Kind::Update ||
           statement.kind == Statement::Kind::Delete;
}

Interpreter::Compiled &Interpreter::CompileChange(Frame &frame, const Statement &statement)
{
    return Compile(frame, &statement, [&](Translator &translator) {
        return statement.kind == Statement::Kind::Insert
                   ? translator.Insert(static_cast<const InsertStatement &>(statement))
               : statement.kind == Statement::Kind::Update
                   ? translator.Update(static_cast<const UpdateStatement &>(statement))
                   : translator.Delete(static_cast<const DeleteStatement &>(statement));
    });
}

void Interpreter::RunChange(Frame &frame, const Statement &statement)
{
    const Compiled &compiled = CompileChange(frame, statement);
    const Translation &translation = compiled.translation;
    if (!translation.identityTable.isEmpty()) {
        const bool allowed = identityInsert_.compare(translation.identityTable, Qt::CaseInsensitive) == 0;
        if (translation.identityGiven && !allowed)
            Fail(Error::Kind::Check, 544,
                 u"Cannot insert explicit value for identity column in table '%1' when IDENTITY_INSERT is set to OFF."_s
                     .arg(translation.identityTable),
                 statement.place, translation.identityTable);
        if (!translation.identityGiven && allowed)
            Fail(
                Error::Kind::Check, 545,
                u"Explicit value must be specified for identity column in table '%1' when IDENTITY_INSERT is set to ON."_s
                    .arg(translation.identityTable),
                statement.place, translation.identityTable);
    }
    {
        const Running running(compiled.handle.get());
        Bind(frame, compiled);
        while (database_.Step(compiled.handle.get())) {
        }
    }
    rowCount_ = sqlite3_changes(database_.Handle());
    if (frame.outcome)
        frame.outcome->affected = rowCount_;
    if (!translation.identityTable.isEmpty() && rowCount_ > 0)
        frame.identity = lastIdentity_ = qlonglong(sqlite3_last_insert_rowid(database_.Handle()));
}

void Interpreter::RunDeclare(Frame &frame, const DeclareStatement &statement)
{
    for (const Parameter &variable : statement.variables) {
        if (!frame.variables.contains(variable.name))
            frame.variables.insert(variable.name, {variable.type, {}});
        if (variable.defaultValue)
            Compute(frame, variable.name, *variable.defaultValue);
    }
    for (const std::unique_ptr<CreateTableStatement> &table : statement.tables) {
        if (frame.tables.contains(table->table))
            continue; // declared in a loop
        const QString name = u"%1:%2"_s.arg(table->table).arg(depth_);
        CreateTable(frame, *table, name, true);
        frame.tables.insert(table->table, name);
    }
}

void Interpreter::RunExec(Frame &frame, const ExecStatement &statement)
{
    const std::shared_ptr<const ProcedureRoutine> procedure = catalogue_.FindProcedure(statement.procedure);
    if (!procedure)
        Unknown(2812, u"Could not find stored procedure '%1'."_s.arg(statement.procedure), statement.place,
                statement.procedure);
    const std::vector<Parameter> &declared = procedure->definition->parameters;
    Frame inner;
    inner.program = procedure->program.get();
    inner.outcome = frame.outcome;
    QHash<QString, const ExecStatement::Argument *> given;
    for (size_t i = 0; i < statement.arguments.size(); ++i) {
        const ExecStatement::Argument &argument = statement.arguments[i];
        if (argument.name.isEmpty() && i >= declared.size())
            Fail(Error::Kind::Syntax, 8144,
                 u"Procedure or function %1 has too many arguments specified."_s.arg(statement.procedure),
                 statement.place, statement.procedure);
        given.insert(argument.name.isEmpty() ? declared[i].name : argument.name, &argument);
    }
    for (const Parameter &parameter : declared) {
        const ExecStatement::Argument *argument = given.take(parameter.name);
        Variable variable{parameter.type, {}};
        if (argument && argument->value)
            variable.value = Evaluate(frame, *argument->value, parameter.type);
        else if (parameter.defaultValue)
            variable.value = Evaluate(inner, *parameter.defaultValue, parameter.type);
        else
            Fail(Error::Kind::Unknown, 201,
                 u"Procedure or function '%1' expects parameter '@%2', which was not supplied."_s.arg(
                     statement.procedure, parameter.label),
                 statement.place, parameter.label);
        if (argument && argument->output && !parameter.output)
            Fail(Error::Kind::Syntax, 8162,
                 u"The formal parameter \"@%1\" was not declared as an OUTPUT parameter."_s.arg(parameter.label),
                 statement.place, parameter.label);
        inner.variables.insert(parameter.name, variable);
    }
    if (!given.isEmpty())
        Fail(Error::Kind::Unknown, 8145,
             u"%1 is not a parameter for procedure %2."_s.arg(given.constBegin().key(), statement.procedure),
             statement.place, given.constBegin().key());
    const int returned = RunProcedure(inner, *procedure);
    for (size_t i = 0; i < statement.arguments.size(); ++i) {
        const ExecStatement::Argument &argument = statement.arguments[i];
        if (argument.output)
            Assign(frame, argument.value->text,
                   inner.variables[argument.name.isEmpty() ? declared[i].name : argument.name]);
    }
    if (!statement.result.isEmpty())
        Assign(frame, statement.result, {Type::Kind::Int, qlonglong(returned)});
}

int Interpreter::RunProcedure(Frame &frame, const ProcedureRoutine &procedure)
{
    const std::shared_ptr<Program> keep = procedure.program; // it may be dropped while it runs
    const Nesting nesting(*this);
    try {
        RunList(frame, procedure.definition->body);
    } catch (...) {
        LeaveFrame(frame);
        throw;
    }
    LeaveFrame(frame);
    return frame.returned.toInt();
}

QVariant Interpreter::CallFunction(const QString &name, const QVariantList &arguments)
{
    const FunctionRoutine *found = catalogue_.FindFunction(name);
    if (!found || found->definition->query || size_t(arguments.size()) != found->definition->parameters.size())
        Unknown(4121, u"Cannot find the user-defined function or aggregate \"dbo.%1\"."_s.arg(name), {}, name);
    const FunctionRoutine function = *found;
    const Nesting nesting(*this);
    Frame frame;
    frame.program = function.program.get();
    frame.function = true;
    frame.returns = function.definition->returns;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const Parameter &parameter = function.definition->parameters[size_t(i)];
        frame.variables.insert(parameter.name, {parameter.type, arguments[i]});
    }
    const int rowCount = rowCount_;
    RunList(frame, function.definition->body);
    rowCount_ = rowCount;
    return frame.returned;
}

void Interpreter::LeaveFrame(Frame &frame)
{
    if (frame.temporaries.isEmpty())
        return;
    for (const QString &table : std::as_const(frame.temporaries)) {
        try {
            database_.Execute(u"DROP TABLE IF EXISTS temp."_s + QuoteName(table));
        } catch (const Error &) {
            // the connection is broken in a way that the next statement will report
        }
    }
    frame.temporaries.clear();
    catalogue_.TemporaryChanged();
}

// ---- errors

void Interpreter::RunRaisError(Frame &frame, const RaisErrorStatement &statement)
{
    QVariantList values;
    for (const ExprPtr &argument : statement.arguments)
        values.append(Evaluate(frame, *argument, {}));
    if (values[1].toInt() <= 10)
        return; // information, to which nobody listens
    if (values[0].typeId() != QMetaType::QString)
        Fail(Error::Kind::Raised, values[0].toInt(), u"Error %1 was raised."_s.arg(values[0].toString()),
             statement.place);
    const QString pattern = values[0].toString();
    QString message;
    qsizetype next = 3;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != u'%' || i + 1 >= pattern.size()) {
            message += pattern[i];
            continue;
        }
        const QChar form = pattern[++i];
        if (form == u'%')
            message += form;
        else if (form == u's' || form == u'd' || form == u'i' || form == u'u')
            message += next < values.size() && values[next].isValid() ? values[next].toString() : u"(null)"_s, ++next;
        else
            message += u'%', message += form;
    }
    Fail(Error::Kind::Raised, 50000, message, statement.place);
}

void Interpreter::RunThrow(Frame &frame, const ThrowStatement &statement)
{
    if (statement.arguments.empty()) {
        if (!frame.caught)
            Fail(Error::Kind::Syntax, 10704,
                 u"To rethrow an error, a THROW statement must be used inside a CATCH block."_s, statement.place);
        const Error again = *frame.caught;
        throw again;
    }
    const int number = Evaluate(frame, *statement.arguments[0], Type::Kind::Int).toInt();
    const QString message = Evaluate(frame, *statement.arguments[1], Type::Kind::Text).toString();
    Fail(Error::Kind::Raised, number, message, statement.place);
}

Interpreter::Flow Interpreter::RunTry(Frame &frame, const TryStatement &statement)
{
    const std::optional<Error> outer = frame.caught;
    try {
        return RunList(frame, statement.body);
    } catch (const Error &error) {
        // What the engine does not understand is the programmer's business, not the handler's.
        if (error.kind == Error::Kind::Syntax || error.kind == Error::Kind::Refused)
            throw;
        NoticeRollback();
        lastError_ = error.number;
        frame.caught.emplace(error);
        const Flow flow = RunList(frame, statement.handler);
        frame.caught.reset();
        if (outer)
            frame.caught.emplace(*outer);
        return flow;
    }
}

void Interpreter::RunCursor(Frame &frame, const CursorStatement &statement)
{
    using Action = CursorStatement::Action;
    const QString name = statement.name.toLower();
    if (statement.action == Action::Declare) {
        if (frame.cursors.contains(name))
            Fail(Error::Kind::Other, 16915, u"A cursor with the name '%1' already exists."_s.arg(statement.name),
                 statement.place, statement.name);
        frame.cursors[name].select = statement.select.get();
        return;
    }
    const auto cursor = frame.cursors.find(name);
    if (cursor == frame.cursors.end())
        Unknown(16916, u"A cursor with the name '%1' does not exist."_s.arg(statement.name), statement.place,
                statement.name);
    if (statement.action == Action::Deallocate) {
        frame.cursors.erase(cursor);
        return;
    }
    if (statement.action == Action::Open) {
        cursor->content = ReadAll(frame, *cursor->select, false);
        cursor->at = 0;
        cursor->open = true;
        return;
    }
    if (!cursor->open)
        Fail(Error::Kind::Other, 16917, u"Cursor '%1' is not open."_s.arg(statement.name), statement.place,
             statement.name);
    if (statement.action == Action::Close) {
        cursor->open = false;
        cursor->content.rows.clear();
        return;
    }
    if (statement.into.size() != cursor->content.columns.size())
        Fail(Error::Kind::Syntax, 16924,
             u"The number of variables declared in the INTO list must match that of selected columns."_s,
             statement.place, statement.name);
    if (cursor->at >= cursor->content.rows.size()) {
        fetchStatus_ = -1;
        return;
    }
    fetchStatus_ = 0;
    const QVariantList row = cursor->content.rows[cursor->at++];
    for (qsizetype i = 0; i < row.size(); ++i)
        Assign(frame, statement.into[i], {cursor->content.columns[i].type, row[i]});
}

// ---- definitions

void Interpreter::NeedNew(const QString &name, Place place)
{
    if (name.startsWith("sqlite_"_L1, Qt::CaseInsensitive) ||
        name.compare("_corvex_objects"_L1, Qt::CaseInsensitive) == 0)
        Refuse(name, place);
    if (catalogue_.Exists(name))
        Fail(Error::Kind::Other, 2714, u"There is already an object named '%1' in the database."_s.arg(name), place,
             name);
}

void Interpreter::RunDefinition(Frame &frame, const Statement &statement)
{
    switch (statement.kind) {
    case Statement::Kind::CreateTable: {
        const auto &create = static_cast<const CreateTableStatement &>(statement);
        CreateTable(frame, create, create.table, create.table.startsWith(u'#'));
        break;
    }
    case Statement::Kind::AlterTable:
        AlterTable(static_cast<const AlterTableStatement &>(statement));
        break;
    case Statement::Kind::CreateIndex:
        CreateIndex(static_cast<const CreateIndexStatement &>(statement));
        break;
    case Statement::Kind::CreateView: {
        const auto &create = static_cast<const CreateViewStatement &>(statement);
        NeedNew(create.name, statement.place);
        const QString sql = TranslateView(catalogue_, create);
        Atomically([&] {
            database_.Execute(sql);
            catalogue_.Remember(u"view"_s, create.name, create.source);
        });
        break;
    }
    case Statement::Kind::CreateFunction: {
        const auto &create = static_cast<const CreateFunctionStatement &>(statement);
        NeedNew(create.name, statement.place);
        CreateRoutine(u"function"_s, create.name, create.source);
        break;
    }
    case Statement::Kind::CreateProcedure: {
        const auto &create = static_cast<const CreateProcedureStatement &>(statement);
        NeedNew(create.name, statement.place);
        CreateRoutine(u"procedure"_s, create.name, create.source);
        break;
    }
    case Statement::Kind::Drop:
        Drop(frame, static_cast<const DropStatement &>(statement));
        break;
    default:
        break;
    }
}

void Interpreter::CreateTable(Frame &frame, const CreateTableStatement &statement, const QString &name, bool temporary)
{
    if (temporary) {
        if (catalogue_.FindTable(name))
            Fail(Error::Kind::Other, 2714, u"There is already an object named '%1' in the database."_s.arg(name),
                 statement.place, name);
        const Definition definition = TranslateTable(catalogue_, statement, name, true);
        database_.Execute(definition.statements.first());
        catalogue_.TemporaryChanged();
        definedInTransaction_ |= database_.InTransaction();
        // a batch's temporary tables stay until the connection ends, a procedure's end with it
        if (depth_ > 0 || name.startsWith(u'@'))
            frame.temporaries.append(name);
        return;
    }
    NeedNew(name, statement.place);
    const Definition definition = TranslateTable(catalogue_, statement, name, false);
    Atomically([&] {
        database_.Execute(definition.statements.first());
        for (const auto &[column, type] : definition.exactTypes)
            catalogue_.Remember(u"type"_s, name + u'.' + column, type);
        if (!definition.seedTable.isEmpty())
            database_.Execute(u"INSERT INTO sqlite_sequence (name, seq) VALUES (?1, ?2)"_s,
                              {definition.seedTable, definition.seed - 1});
    });
}

void Interpreter::AlterTable(const AlterTableStatement &statement)
{
    const Table *table = catalogue_.FindTable(statement.table);
    if (!table || table->view || statement.table.startsWith(u'#'))
        Unknown(4902,
                u"Cannot find the object \"%1\" because it does not exist or you do not have permissions."_s.arg(
                    statement.table),
                statement.place, statement.table);
    const QString name = table->name;
    Atomically([&] {
        const Definition definition = TranslateColumns(catalogue_, statement, *table);
        for (const QString &sql : definition.statements)
            database_.Execute(sql);
        for (const auto &[column, type] : definition.exactTypes)
            catalogue_.Remember(u"type"_s, name + u'.' + column, type);
        catalogue_.Changed();
        for (const TableConstraint &constraint : statement.constraints)
            AddConstraint(constraint, name, statement.place);
    });
}

// SQLite adds no constraint to a table: while the table is empty it is made anew, and a key of a full one is an index.
void Interpreter::AddConstraint(const TableConstraint &constraint, const QString &tableName, Place place)
{
    const Table &table = *catalogue_.FindTable(tableName);
    const QString text = TranslateConstraint(catalogue_, constraint, table);
    const bool empty = !database_.Execute(u"SELECT 1 FROM %1 LIMIT 1"_s.arg(QuoteName(tableName))).isValid();
    QString sql =
        database_.Execute(u"SELECT sql FROM main.sqlite_schema WHERE type = 'table' AND name = ?1"_s, {tableName})
            .toString()
            .trimmed();
    if (empty && sql.endsWith(u')')) {
        sql.chop(1);
        sql = sql.trimmed() + ",\n  "_L1 + text + "\n)"_L1;
        QStringList indexes;
        {
            const StatementHandle rest = database_.Prepare(
                u"SELECT sql FROM main.sqlite_schema WHERE type IN ('index', 'trigger') AND tbl_name = ?1 AND sql IS NOT NULL"_s);
            database_.Bind(rest.get(), 1, tableName);
            while (database_.Step(rest.get()))
                indexes.append(Database::Value(rest.get(), 0).toString());
        }
        database_.Execute(u"DROP TABLE "_s + QuoteName(tableName));
        database_.Execute(sql);
        for (const QString &index : std::as_const(indexes))
            database_.Execute(index);
    } else if (constraint.kind == TableConstraint::Kind::Unique && !constraint.name.isEmpty()) {
        QStringList columns;
        for (const QString &column : constraint.columns)
            columns.append(QuoteName(column));
        database_.Execute(u"CREATE UNIQUE INDEX %1 ON %2 (%3)"_s.arg(QuoteName(constraint.name), QuoteName(tableName),
                                                                     columns.join(", "_L1)));
    } else {
        Refuse(u"A new constraint on a table that holds rows"_s, place);
    }
    catalogue_.Changed();
}

void Interpreter::CreateIndex(const CreateIndexStatement &statement)
{
    const Table *table = catalogue_.FindTable(statement.table);
    if (!table || table->view)
        Unknown(1088,
                u"Cannot find the object \"%1\" because it does not exist or you do not have permissions."_s.arg(
                    statement.table),
                statement.place, statement.table);
    const bool temporary = statement.table.startsWith(u'#');
    QStringList columns;
    for (const auto &[name, descending] : statement.columns) {
        const Column *column = table->Find(name);
        if (!column)
            Unknown(1911, u"Column name '%1' does not exist in the target table or view."_s.arg(name), statement.place,
                    name);
        columns.append(QuoteName(column->name) + (descending ? " DESC"_L1 : ""_L1));
    }
    // An index's name belongs to its table on the server, to the whole file in SQLite.
    const QString schema = temporary ? u"temp"_s : u"main"_s;
    const QString count = u"SELECT count(*) FROM %1.sqlite_schema WHERE name = ?1 COLLATE NOCASE"_s.arg(schema);
    QString name = statement.name;
    if (database_.Execute(count, {name}).toInt() > 0)
        name = table->name + u'.' + name;
    if (name.startsWith("sqlite_"_L1, Qt::CaseInsensitive))
        Refuse(name, statement.place);
    if (database_.Execute(count, {name}).toInt() > 0)
        Fail(Error::Kind::Other, 1913,
             u"The operation failed because an index with name '%1' already exists on table '%2'."_s.arg(statement.name,
                                                                                                         table->name),
             statement.place, statement.name);
    const QString sql =
        u"CREATE %1INDEX %2.%3 ON %4 (%5)"_s.arg(statement.unique ? u"UNIQUE "_s : QString(), schema, QuoteName(name),
                                                 QuoteName(table->name), columns.join(", "_L1));
    if (temporary) // no plan depends on it
        database_.Execute(sql);
    else
        Atomically([&] { database_.Execute(sql); });
}

namespace {

// A function changes nothing and gives rows to nobody.
void CheckFunctionBody(const StatementList &body)
{
    for (const StatementPtr &statement : body) {
        switch (statement->kind) {
        case Statement::Kind::Declare:
            if (!static_cast<const DeclareStatement &>(*statement).tables.empty())
                Refuse(u"A table variable in a function"_s, statement->place);
            break;
        case Statement::Kind::Select:
            if (!static_cast<const SelectStatement &>(*statement).assigns)
                Fail(Error::Kind::Syntax, 444,
                     u"Select statements included within a function cannot return data to a client."_s,
                     statement->place, u"SELECT"_s);
            break;
        case Statement::Kind::Return:
            if (!static_cast<const ReturnStatement &>(*statement).value)
                SyntaxError(u"RETURN"_s, statement->place);
            break;
        case Statement::Kind::Block:
            CheckFunctionBody(static_cast<const BlockStatement &>(*statement).body);
            break;
        case Statement::Kind::If: {
            const auto &branch = static_cast<const IfStatement &>(*statement);
            for (const Statement *part : {branch.then.get(), branch.otherwise.get()}) {
                if (part && part->kind == Statement::Kind::Block)
                    CheckFunctionBody(static_cast<const BlockStatement &>(*part).body);
            }
            break;
        }
        case Statement::Kind::While:
        case Statement::Kind::Set:
        case Statement::Kind::Break:
        case Statement::Kind::Continue:
            break;
        default:
            Fail(Error::Kind::Refused, 443,
                 u"Only DECLARE, SET, SELECT, IF, WHILE and RETURN may stand in a function (line %1, column %2)."_s
                     .arg(statement->place.line)
                     .arg(statement->place.column),
                 statement->place);
        }
    }
}

} // namespace

void Interpreter::CreateRoutine(const QString &kind, const QString &name, const QString &source)
{
    const std::shared_ptr<Program> program = Parse(source); // by itself, as it will be read later
    if (!program->undeclared.isEmpty())
        Undeclared(program->undeclared.constBegin().key(), program->undeclared.constBegin().value());
    if (kind == "function"_L1) {
        const auto &function = static_cast<const CreateFunctionStatement &>(*program->statements.front());
        if (function.query) {
            CheckTableFunction(catalogue_, function);
        } else {
            CheckFunctionBody(function.body);
            if (function.body.empty() || function.body.back()->kind != Statement::Kind::Return)
                Fail(Error::Kind::Syntax, 455,
                     u"The last statement included within a function must be a return statement."_s, {}, name);
        }
    }
    Atomically([&] {
        catalogue_.Remember(kind, name, source);
        if (kind == "function"_L1)
            catalogue_.Changed();
    });
}

void Interpreter::Drop(Frame &frame, const DropStatement &statement)
{
    using Object = DropStatement::Object;
    static const QHash<Object, std::pair<QString, QString>> words = {
        {Object::Table, {u"TABLE"_s, u"table"_s}},
        {Object::View, {u"VIEW"_s, u"view"_s}},
        {Object::Procedure, {u"PROCEDURE"_s, u"procedure"_s}},
        {Object::Function, {u"FUNCTION"_s, u"function"_s}},
        {Object::Index, {u"INDEX"_s, u"index"_s}}};
    const auto &[word, kind] = words[statement.object];
    for (const QString &name : statement.names) {
        const auto missing = [&, &theWord = word] {
            if (!statement.ifExists)
                Unknown(3701,
                        u"Cannot drop the %1 '%2', because it does not exist or you do not have permission."_s.arg(
                            theWord.toLower(), name),
                        statement.place, name);
        };
        if (statement.object == Object::Procedure || statement.object == Object::Function) {
            const bool exists = statement.object == Object::Procedure ? catalogue_.FindProcedure(name) != nullptr
                                                                      : catalogue_.FindFunction(name) != nullptr;
            if (exists)
                Atomically([&, &theKind = kind] { catalogue_.Forget(theKind, name); });
            else
                missing();
            continue;
        }
        const Table *table = catalogue_.FindTable(statement.object == Object::Index ? statement.table : name);
        if (!table || (statement.object == Object::View && !table->view) ||
            (statement.object == Object::Table && table->view)) {
            missing();
            continue;
        }
        const QString tableName = table->name;
        if (statement.object == Object::Index) {
            QString index;
            for (const QString &candidate : {name, tableName + u'.' + name}) {
                if (index.isEmpty())
                    index = database_
                                .Execute(u"SELECT name FROM main.sqlite_schema WHERE type = 'index' AND name = ?1 "
                                         u"COLLATE NOCASE "
                                         "AND tbl_name = ?2"_s,
                                         {candidate, tableName})
                                .toString();
            }
            if (index.isEmpty())
                missing();
            else
                Atomically([&] { database_.Execute(u"DROP INDEX "_s + QuoteName(index)); });
        } else if (tableName.startsWith(u'#')) {
            database_.Execute(u"DROP TABLE temp."_s + QuoteName(tableName));
            frame.temporaries.removeAll(tableName);
            definedInTransaction_ |= database_.InTransaction();
            catalogue_.TemporaryChanged();
        } else {
            Atomically([&, &theWord = word, &theKind = kind] {
                database_.Execute(u"DROP %1 %2"_s.arg(theWord, QuoteName(tableName)));
                catalogue_.Forget(theKind, tableName);
                database_.Execute(
                    u"DELETE FROM main._corvex_objects WHERE kind = 'type' AND substr(name, 1, ?2) = ?1 || '.'"_s,
                    {tableName, qlonglong(tableName.size() + 1)});
            });
        }
    }
}

} // namespace embedded
