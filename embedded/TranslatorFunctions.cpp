// SPDX-License-Identifier: Apache-2.0
#include "embedded/TranslatorWorker.h"

namespace embedded {

using Kind = Expr::Kind;

const QHash<QString, Worker::Builtin> &Worker::Builtins()
{
    static const QHash<QString, Builtin> table = {{u"isnull"_s, {2, 2, &Worker::IsNullCall}},
                                                  {u"coalesce"_s, {1, 100, &Worker::Coalesce}},
                                                  {u"nullif"_s, {2, 2, &Worker::NullIf}},
                                                  {u"left"_s, {2, 2, &Worker::Left}},
                                                  {u"right"_s, {2, 2, &Worker::Right}},
                                                  {u"len"_s, {1, 1, &Worker::Len}},
                                                  {u"substring"_s, {3, 3, &Worker::Substring}},
                                                  {u"charindex"_s, {2, 3, &Worker::CharIndex}},
                                                  {u"replace"_s, {3, 3, &Worker::Replace}},
                                                  {u"upper"_s, {1, 1, &Worker::TextCall}},
                                                  {u"lower"_s, {1, 1, &Worker::TextCall}},
                                                  {u"ltrim"_s, {1, 1, &Worker::TextCall}},
                                                  {u"rtrim"_s, {1, 1, &Worker::TextCall}},
                                                  {u"str"_s, {1, 3, &Worker::Str}},
                                                  {u"char"_s, {1, 1, &Worker::Char}},
                                                  {u"space"_s, {1, 1, &Worker::Replicate}},
                                                  {u"replicate"_s, {2, 2, &Worker::Replicate}},
                                                  {u"abs"_s, {1, 1, &Worker::Abs}},
                                                  {u"sign"_s, {1, 1, &Worker::Abs}},
                                                  {u"round"_s, {2, 2, &Worker::Round}},
                                                  {u"floor"_s, {1, 1, &Worker::Floor}},
                                                  {u"ceiling"_s, {1, 1, &Worker::Floor}},
                                                  {u"getdate"_s, {0, 0, &Worker::GetDate}},
                                                  {u"dateadd"_s, {3, 3, &Worker::DateAdd}},
                                                  {u"datediff"_s, {3, 3, &Worker::DateDiff}},
                                                  {u"datepart"_s, {2, 2, &Worker::DatePart}},
                                                  {u"year"_s, {1, 1, &Worker::DatePart}},
                                                  {u"month"_s, {1, 1, &Worker::DatePart}},
                                                  {u"day"_s, {1, 1, &Worker::DatePart}},
                                                  {u"count"_s, {1, 1, &Worker::Aggregate}},
                                                  {u"sum"_s, {1, 1, &Worker::Aggregate}},
                                                  {u"min"_s, {1, 1, &Worker::Aggregate}},
                                                  {u"max"_s, {1, 1, &Worker::Aggregate}},
                                                  {u"avg"_s, {1, 1, &Worker::Aggregate}},
                                                  {u"row_number"_s, {0, 0, &Worker::RowNumber}},
                                                  {u"object_id"_s, {1, 2, &Worker::ObjectId}},
                                                  {u"scope_identity"_s, {0, 0, &Worker::Special}},
                                                  {u"error_message"_s, {0, 0, &Worker::Special}},
                                                  {u"error_number"_s, {0, 0, &Worker::Special}},
                                                  {u"error_severity"_s, {0, 0, &Worker::Special}},
                                                  {u"error_state"_s, {0, 0, &Worker::Special}},
                                                  {u"xact_state"_s, {0, 0, &Worker::Special}}};
    return table;
}

Fragment Worker::Call(const Expr &expr)
{
    if (!expr.qualifier.isEmpty())
        return UserCall(expr);
    const auto builtin = Builtins().constFind(expr.text.toLower());
    if (builtin == Builtins().constEnd())
        Unknown(195, u"'%1' is not a recognized function name."_s.arg(expr.text), expr.place, expr.text);
    if (int(expr.args.size()) < builtin->least || int(expr.args.size()) > builtin->most)
        Fail(Error::Kind::Syntax, 174,
             u"The %1 function requires %2 argument(s)."_s.arg(expr.text.toLower(), QString::number(builtin->least)),
             expr.place, expr.text);
    const bool aggregate = builtin->handler == &Worker::Aggregate;
    const bool window = builtin->handler == &Worker::RowNumber;
    if (window != bool(expr.over))
        Refuse(window ? u"ROW_NUMBER without OVER"_s : u"OVER"_s, expr.place);
    if (expr.distinct && !aggregate)
        SyntaxError(u"DISTINCT"_s, expr.place);
    return (this->*builtin->handler)(expr);
}

Fragment Worker::NumberArgument(const Expr &expr, size_t index)
{
    const Fragment value = Argument(expr, index);
    return value.type.IsUnknown() ? value : ToNumber(value);
}

Fragment Worker::IntegerArgument(const Expr &expr, size_t index)
{
    const Fragment value = Argument(expr, index);
    return value.type.IsInteger() || value.IsNull() ? value : ToInteger(value, Type::Kind::Int);
}

Fragment Worker::DateArgument(const Expr &expr, size_t index)
{
    return ToDate(Argument(expr, index), Type::Kind::DateTime, -1, expr.place);
}

Fragment Worker::IsNullCall(const Expr &expr)
{
    const Fragment value = Argument(expr, 0);
    Fragment other = Argument(expr, 1);
    const Type type = value.type.IsUnknown() ? other.type : value.type;
    if (!value.type.IsUnknown())
        other = Convert(other, type, Purpose::Compare, expr.place);
    Fragment fragment = Atom(u"ifnull(%1, %2)"_s.arg(value.sql, other.sql), type);
    fragment.trimmed = value.trimmed && (other.trimmed || other.IsNull());
    return fragment;
}

Fragment Worker::Coalesce(const Expr &expr)
{
    QList<Fragment> values;
    Type type;
    for (size_t i = 0; i < expr.args.size(); ++i) {
        values.append(Argument(expr, i));
        type = Unify(type, values.last().type);
    }
    QStringList texts;
    for (const Fragment &value : std::as_const(values))
        texts.append(Harmonise(value, type, expr.place).sql);
    return Atom(texts.size() == 1 ? u'(' + texts.first() + u')' : u"coalesce(%1)"_s.arg(texts.join(", "_L1)), type);
}

Fragment Worker::NullIf(const Expr &expr)
{
    const Fragment value = Argument(expr, 0);
    const Fragment same = Compare(u"="_s, value, Argument(expr, 1), expr.place);
    return Atom(u"CASE WHEN %1 THEN NULL ELSE %2 END"_s.arg(same.sql, value.sql), value.type);
}

Fragment Worker::Left(const Expr &expr)
{
    return Atom(u"substr(%1, 1, %2)"_s.arg(TextArgument(expr, 0).sql, IntegerArgument(expr, 1).sql), Type::Kind::Text);
}

Fragment Worker::Right(const Expr &expr)
{
    const Fragment text = TextArgument(expr, 0);
    Fragment fragment =
        Atom(u"substr(%1, max(length(%1) - %2, 0) + 1)"_s.arg(text.sql, Wrap(IntegerArgument(expr, 1), kSum + 1)),
             Type::Kind::Text);
    fragment.trimmed = text.trimmed;
    return fragment;
}

Fragment Worker::Len(const Expr &expr)
{
    return Atom(u"length(%1)"_s.arg(Trimmed(TextArgument(expr, 0)).sql), Type::Kind::Int);
}

Fragment Worker::Substring(const Expr &expr)
{
    const Fragment text = TextArgument(expr, 0);
    const Fragment start = IntegerArgument(expr, 1);
    const Fragment length = IntegerArgument(expr, 2);
    if (start.literal && start.literal->toLongLong() >= 1)
        return Atom(u"substr(%1, %2, %3)"_s.arg(text.sql, start.sql, length.sql), Type::Kind::Text);
    // SQLite counts a start before the text from its end
    return Atom(
        u"substr(%1, max(%2, 1), max(%3 + min(%2 - 1, 0), 0))"_s.arg(text.sql, Wrap(start, kSum), Wrap(length, kSum)),
        Type::Kind::Text);
}

Fragment Worker::CharIndex(const Expr &expr)
{
    const QString needle = TextArgument(expr, 0).sql;
    const QString text = TextArgument(expr, 1).sql;
    if (expr.args.size() == 2)
        return Atom(u"instr(lower(%1), lower(%2))"_s.arg(text, needle), Type::Kind::Int);
    const QString start = u"max(%1, 1)"_s.arg(IntegerArgument(expr, 2).sql);
    const QString found = u"instr(lower(substr(%1, %2)), lower(%3))"_s.arg(text, start, needle);
    return Atom(u"CASE %1 WHEN 0 THEN 0 ELSE %1 + %2 - 1 END"_s.arg(found, start), Type::Kind::Int);
}

Fragment Worker::Replace(const Expr &expr)
{
    const Fragment from = TextArgument(expr, 1);
    const QString text = from.literal ? from.literal->toString() : QString();
    const bool caseMatters = !from.literal || text.toLower() != text.toUpper();
    if (caseMatters && definition)
        RefuseInDefinition(u"REPLACE of letters"_s, expr.place);
    return Atom(u"%1(%2, %3, %4)"_s.arg(caseMatters ? u"cx_replace"_s : u"replace"_s, TextArgument(expr, 0).sql,
                                        from.sql, TextArgument(expr, 2).sql),
                Type::Kind::Text);
}

Fragment Worker::TextCall(const Expr &expr)
{
    const Fragment text = TextArgument(expr, 0);
    const QString name = expr.text.toLower();
    const bool trims = name.endsWith("trim"_L1);
    Fragment fragment = Atom(u"%1(%2%3)"_s.arg(name, text.sql, trims ? u", ' '"_s : QString()), Type::Kind::Text);
    fragment.type.length = text.type.length;
    fragment.trimmed = text.trimmed || name == "rtrim"_L1;
    return fragment;
}

Fragment Worker::Str(const Expr &expr)
{
    const Fragment number = NumberArgument(expr, 0);
    const QString width = expr.args.size() > 1 ? IntegerArgument(expr, 1).sql : u"10"_s;
    const QString decimals = expr.args.size() > 2 ? IntegerArgument(expr, 2).sql : u"0"_s;
    const QString text = u"format('%*.*f', %1, %2, %3)"_s.arg(width, decimals, number.sql);
    // a number that does not fit becomes stars
    return Atom(
        u"CASE WHEN %1 IS NOT NULL THEN CASE WHEN length(%2) > %3 THEN substr('**********', 1, %3) ELSE %2 END END"_s
            .arg(Wrap(number, kEqual + 1), text, width),
        Type::Kind::Text);
}

Fragment Worker::Replicate(const Expr &expr)
{
    const bool space = expr.args.size() == 1;
    const QString text = space ? u"' '"_s : TextArgument(expr, 0).sql;
    const QString count = IntegerArgument(expr, space ? 0 : 1).sql;
    // as many zero bytes in hexadecimal, each replaced by the text
    return Atom(u"replace(hex(zeroblob(%1)), '00', %2)"_s.arg(count, text), Type::Kind::Text);
}

Fragment Worker::Abs(const Expr &expr)
{
    const Fragment number = NumberArgument(expr, 0);
    return Atom(u"%1(%2)"_s.arg(expr.text.toLower(), number.sql), number.type);
}

Fragment Worker::Round(const Expr &expr)
{
    const Fragment number = NumberArgument(expr, 0);
    const Fragment digits = IntegerArgument(expr, 1);
    if (!digits.literal || !digits.literal->isValid()) {
        if (number.type.IsInteger())
            Refuse(u"ROUND of a whole number to a computed place"_s, expr.place);
        return Atom(u"round(%1, %2)"_s.arg(number.sql, digits.sql), number.type);
    }
    const int places = int(qBound(qlonglong(-15), digits.literal->toLongLong(), qlonglong(15)));
    if (places >= 0)
        return number.type.IsInteger() ? number
                                       : Atom(u"round(%1, %2)"_s.arg(number.sql, QString::number(places)), number.type);
    const QString unit = u'1' + QString(-places, u'0');
    const QString rounded = u"round(%1 / %2.0) * %2"_s.arg(Wrap(number, kProduct), unit);
    return Atom(number.type.IsInteger() ? u"CAST(%1 AS INTEGER)"_s.arg(rounded) : u'(' + rounded + u')', number.type);
}

// Without SQLite's optional mathematical functions: definitions use it too.
Fragment Worker::Floor(const Expr &expr)
{
    const Fragment number = NumberArgument(expr, 0);
    if (number.type.IsInteger())
        return number;
    const bool up = Same(expr.text, "ceiling"_L1);
    return Atom(u"(CAST(%1 AS INTEGER) %2 (%3 %4 CAST(%1 AS INTEGER)))"_s.arg(
                    number.sql, up ? u"+"_s : u"-"_s, Wrap(number, kLess + 1), up ? u">"_s : u"<"_s),
                number.type);
}

Fragment Worker::GetDate(const Expr &expr)
{
    if (constant)
        RefuseInDefinition(u"GETDATE()"_s, expr.place);
    return Atom(StoredDate(u"'now', 'localtime'"_s), Type::Kind::DateTime);
}

Worker::Unit Worker::DateUnit(const Expr &expr)
{
    static const QHash<QString, Unit> units = {{u"year"_s, Unit::Year},
                                               {u"yy"_s, Unit::Year},
                                               {u"yyyy"_s, Unit::Year},
                                               {u"quarter"_s, Unit::Quarter},
                                               {u"qq"_s, Unit::Quarter},
                                               {u"month"_s, Unit::Month},
                                               {u"mm"_s, Unit::Month},
                                               {u"m"_s, Unit::Month},
                                               {u"week"_s, Unit::Week},
                                               {u"wk"_s, Unit::Week},
                                               {u"ww"_s, Unit::Week},
                                               {u"day"_s, Unit::Day},
                                               {u"dd"_s, Unit::Day},
                                               {u"d"_s, Unit::Day},
                                               {u"hour"_s, Unit::Hour},
                                               {u"hh"_s, Unit::Hour},
                                               {u"minute"_s, Unit::Minute},
                                               {u"mi"_s, Unit::Minute},
                                               {u"n"_s, Unit::Minute},
                                               {u"second"_s, Unit::Second},
                                               {u"ss"_s, Unit::Second},
                                               {u"s"_s, Unit::Second},
                                               {u"weekday"_s, Unit::WeekDay},
                                               {u"dw"_s, Unit::WeekDay},
                                               {u"dayofyear"_s, Unit::DayOfYear},
                                               {u"dy"_s, Unit::DayOfYear}};
    const auto unit = units.constFind(expr.text.toLower());
    if (expr.kind != Kind::Name || !expr.qualifier.isEmpty() || unit == units.constEnd())
        Fail(Error::Kind::Syntax, 155, u"'%1' is not a recognized datepart option."_s.arg(expr.text), expr.place,
             expr.text);
    return *unit;
}

Fragment Worker::DateAdd(const Expr &expr)
{
    const Unit unit = DateUnit(*expr.args[0]);
    const QString count = Wrap(IntegerArgument(expr, 1), kUnary);
    const Fragment date = DateArgument(expr, 2);
    switch (unit) {
    case Unit::Day:
    case Unit::DayOfYear:
    case Unit::WeekDay:
        return AddToDate(date, count, {}, u"days"_s);
    case Unit::Week:
        return AddToDate(date, count, u"7 * "_s, u"days"_s);
    case Unit::Hour:
        return AddToDate(date, count, {}, u"hours"_s);
    case Unit::Minute:
        return AddToDate(date, count, {}, u"minutes"_s);
    case Unit::Second:
        return AddToDate(date, count, {}, u"seconds"_s);
    case Unit::Year:
    case Unit::Quarter:
    case Unit::Month:
        break;
    }
    // SQLite runs over into the next month where the server stays at the month's last day.
    const QString months = (unit == Unit::Year ? u"12 * "_s : unit == Unit::Quarter ? u"3 * "_s : QString()) + count;
    return Atom(u"(min(date(%1, (%2) || ' months'), date(%1, 'start of month', (%2 + 1) || ' months', '-1 day')) || "
                "substr(%1, 11))"_s.arg(date.sql, months),
                Type::Kind::DateTime);
}

Fragment Worker::DateDiff(const Expr &expr)
{
    const Unit unit = DateUnit(*expr.args[0]);
    const QString from = DateArgument(expr, 1).sql;
    const QString to = DateArgument(expr, 2).sql;
    QString form; // counts the unit's boundaries from a fixed day on
    switch (unit) {
    case Unit::Year:
        form = u"CAST(strftime('%Y', %1) AS INTEGER)"_s;
        break;
    case Unit::Quarter:
        form = u"(strftime('%Y', %1) * 4 + (strftime('%m', %1) - 1) / 3)"_s;
        break;
    case Unit::Month:
        form = u"(strftime('%Y', %1) * 12 + strftime('%m', %1))"_s;
        break;
    case Unit::Week:
        form = u"CAST((julianday(date(%1)) + 1.5) / 7 AS INTEGER)"_s;
        break;
    case Unit::Hour:
        form = u"((strftime('%s', %1) + 210866760000) / 3600)"_s;
        break;
    case Unit::Minute:
        form = u"((strftime('%s', %1) + 210866760000) / 60)"_s;
        break;
    case Unit::Second:
        form = u"CAST(strftime('%s', %1) AS INTEGER)"_s;
        break;
    case Unit::Day:
    case Unit::DayOfYear:
    case Unit::WeekDay:
        form = u"CAST(julianday(date(%1)) + 0.5 AS INTEGER)"_s;
        break;
    }
    const QString last = form.arg(to);
    Fragment fragment = Atom(last + " - "_L1 + form.arg(from), Type::Kind::Int);
    fragment.precedence = kSum;
    return fragment;
}

Fragment Worker::DatePart(const Expr &expr)
{
    const bool named = expr.args.size() == 1; // YEAR(d), MONTH(d), DAY(d)
    const Unit unit = named ? (Same(expr.text, "year"_L1)    ? Unit::Year
                               : Same(expr.text, "month"_L1) ? Unit::Month
                                                             : Unit::Day)
                            : DateUnit(*expr.args[0]);
    const QString date = DateArgument(expr, named ? 0 : 1).sql;
    const auto part = [&date](QLatin1StringView format) {
        return u"CAST(strftime('"_s + format + "', "_L1 + date + ") AS INTEGER)"_L1;
    };
    switch (unit) {
    case Unit::Year:
        return Atom(part("%Y"_L1), Type::Kind::Int);
    case Unit::Month:
        return Atom(part("%m"_L1), Type::Kind::Int);
    case Unit::Day:
        return Atom(part("%d"_L1), Type::Kind::Int);
    case Unit::Hour:
        return Atom(part("%H"_L1), Type::Kind::Int);
    case Unit::Minute:
        return Atom(part("%M"_L1), Type::Kind::Int);
    case Unit::Second:
        return Atom(part("%S"_L1), Type::Kind::Int);
    case Unit::DayOfYear:
        return Atom(part("%j"_L1), Type::Kind::Int);
    case Unit::WeekDay: // Sunday is 1
        return Atom(u'(' + part("%w"_L1) + " + 1)"_L1, Type::Kind::Int);
    case Unit::Quarter:
        return Atom(u"(("_s + part("%m"_L1) + " + 2) / 3)"_L1, Type::Kind::Int);
    case Unit::Week: // week 1 holds the first of January, weeks begin on Sunday
        return Atom(u"(("_s + part("%j"_L1) + " - 1 + strftime('%w', "_L1 + date + ", 'start of year')) / 7 + 1)"_L1,
                    Type::Kind::Int);
    }
    return {};
}

Fragment Worker::Aggregate(const Expr &expr)
{
    const QString name = expr.text.toLower();
    if (!scope || (scope->clause == Clause::Other) || scope->inAggregate > 0)
        Fail(Error::Kind::Syntax, 147,
             u"An aggregate may not appear here (line %1, column %2)."_s.arg(expr.place.line).arg(expr.place.column),
             expr.place, expr.text);
    scope->aggregated = true;
    if (expr.args[0]->kind == Kind::Star) {
        if (expr.distinct)
            SyntaxError(u"*"_s, expr.args[0]->place);
        return Atom(u"count(*)"_s, Type::Kind::Int);
    }
    ++scope->inAggregate;
    Fragment value = Argument(expr, 0);
    --scope->inAggregate;
    if (name == "count"_L1) {
        if (expr.distinct)
            value = Distinct(value);
        return Atom(u"count(%1%2)"_s.arg(expr.distinct ? u"DISTINCT "_s : QString(), value.sql), Type::Kind::Int);
    }
    if (name == "min"_L1 || name == "max"_L1) {
        Fragment fragment = Atom(u"%1(%2)"_s.arg(name, Distinct(value).sql), value.type);
        fragment.trimmed = value.trimmed;
        return fragment;
    }
    value = ToNumber(value);
    const QString distinct = expr.distinct ? u"DISTINCT "_s : QString();
    if (name == "avg"_L1 && value.type.IsInteger())
        return Atom(u"CAST(avg(%1%2) AS INTEGER)"_s.arg(distinct, value.sql), Type::Kind::Int);
    Type type = value.type;
    if (type.IsInteger() && type.kind < Type::Kind::Int)
        type = Type::Kind::Int;
    return Atom(u"%1(%2%3)"_s.arg(name, distinct, value.sql), type);
}

// The value with a collation of its own, where texts are told apart or put into order.
Fragment Worker::Distinct(const Fragment &value)
{
    if (!value.type.IsText() || value.noCase)
        return value;
    Fragment collated = value;
    collated.sql = Wrap(value, kUnary) + " COLLATE NOCASE"_L1;
    collated.precedence = kUnary;
    collated.noCase = true;
    return collated;
}

Fragment Worker::RowNumber(const Expr &expr)
{
    if (!scope || scope->clause == Clause::Other || scope->inAggregate > 0)
        Fail(Error::Kind::Syntax, 4108, u"Windowed functions can only appear in the SELECT or ORDER BY clauses."_s,
             expr.place, expr.text);
    if (expr.over->order.empty())
        SyntaxError(u"OVER"_s, expr.place);
    QStringList partition;
    const Clause clause = std::exchange(scope->clause, Clause::Other);
    for (const ExprPtr &part : expr.over->partition)
        partition.append(Distinct(Translate(*part)).sql);
    QStringList order;
    for (const OrderItem &item : expr.over->order)
        order.append(Distinct(Translate(*item.expr)).sql + (item.descending ? " DESC"_L1 : ""_L1));
    scope->clause = clause;
    return Atom(
        u"row_number() OVER (%1ORDER BY %2)"_s.arg(
            partition.isEmpty() ? QString() : u"PARTITION BY "_s + partition.join(", "_L1) + u' ', order.join(", "_L1)),
        Type::Kind::BigInt);
}

Fragment Worker::ObjectId(const Expr &expr)
{
    if (definition)
        RefuseInDefinition(u"OBJECT_ID"_s, expr.place);
    return Atom(u"cx_object(%1%2)"_s.arg(TextArgument(expr, 0).sql,
                                         expr.args.size() > 1 ? u", "_s + TextArgument(expr, 1).sql : QString()),
                Type::Kind::Int);
}

// What the interpreter knows, bound as a variable: SCOPE_IDENTITY() is "@@scope_identity".
Fragment Worker::Special(const Expr &expr)
{
    Expr variable;
    variable.kind = Kind::Variable;
    variable.place = expr.place;
    variable.text = "@@"_L1 + expr.text.toLower();
    return VariableReference(variable);
}

const CreateFunctionStatement &Worker::FindFunction(const QString &name, bool table, Place place)
{
    const FunctionRoutine *function = catalogue.FindFunction(name);
    if (!function || (function->definition->query != nullptr) != table) {
        if (table)
            Unknown(208, u"Invalid object name '%1'."_s.arg(name), place, name);
        Unknown(4121, u"Cannot find the user-defined function or aggregate \"dbo.%1\"."_s.arg(name), place, name);
    }
    return *function->definition;
}

QHash<QString, Fragment> Worker::Arguments(const CreateFunctionStatement &function, const std::vector<ExprPtr> &values,
                                           Place place)
{
    if (values.size() != function.parameters.size())
        Fail(Error::Kind::Syntax, values.size() < function.parameters.size() ? 313 : 8144,
             u"%1 arguments were supplied for the procedure or function dbo.%2."_s.arg(
                 values.size() < function.parameters.size() ? u"Not enough"_s : u"Too many"_s, function.name),
             place, function.name);
    QHash<QString, Fragment> arguments;
    for (size_t i = 0; i < values.size(); ++i) {
        const Parameter &parameter = function.parameters[i];
        const Expr *value = values[i] ? values[i].get() : parameter.defaultValue.get();
        if (!value)
            Fail(Error::Kind::Syntax, 201,
                 u"Function '%1' expects parameter '%2', which was not supplied."_s.arg(function.name, parameter.name),
                 place, parameter.name);
        arguments.insert(parameter.name, Convert(Translate(*value), parameter.type, Purpose::Assign, place));
    }
    return arguments;
}

Fragment Worker::UserCall(const Expr &expr)
{
    if (!Same(expr.qualifier, "dbo"_L1))
        Refuse(expr.qualifier + u'.' + expr.text, expr.place);
    const CreateFunctionStatement &function = FindFunction(expr.text, false, expr.place);
    QHash<QString, Fragment> arguments = Arguments(function, expr.args, expr.place);
    const Statement &first = *function.body.front();
    if (function.body.size() == 1 && first.kind == Statement::Kind::Return) {
        const Enter enter(*this, function.name, expr.place, std::move(arguments));
        Fragment value = Translate(*static_cast<const ReturnStatement &>(first).value);
        value = Convert(value, function.returns, Purpose::Assign, expr.place);
        value.noCase = false;
        if (value.literal)
            return value;
        value.sql = u'(' + value.sql + u')';
        value.precedence = kAtom;
        return value;
    }
    if (definition)
        RefuseInDefinition(u"A function of several statements"_s, expr.place);
    QString texts = QuoteText(function.name);
    for (const Parameter &parameter : function.parameters)
        texts += u", "_s + arguments[parameter.name].sql;
    return Atom(u"cx_call(%1)"_s.arg(texts), function.returns);
}

} // namespace embedded
