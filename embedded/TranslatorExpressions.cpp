// SPDX-License-Identifier: Apache-2.0
#include <cmath>

#include "embedded/TranslatorWorker.h"

namespace embedded {

using Kind = Expr::Kind;

Fragment Worker::ColumnReference(Scope &owner, const Source &source, const Column &column, Place place)
{
    // a CHECK knows its table's columns by their names alone
    const QString qualifier = source.sqlAlias.isEmpty() ? QString() : QuoteName(source.sqlAlias) + u'.';
    Fragment fragment = Atom(qualifier + QuoteName(column.name), column.type);
    fragment.trimmed = column.trimmed;
    fragment.noCase = column.noCase;
    if (owner.inAggregate == 0 && !owner.groups.contains(fragment.sql) &&
        (owner.clause == Clause::Items || owner.clause == Clause::OrderBy))
        owner.ungrouped.append({column.name, place});
    return fragment;
}

Fragment Worker::Name(const Expr &expr)
{
    for (Scope *at = scope; at; at = at->outer) {
        const Source *found = nullptr;
        const Column *column = nullptr;
        bool qualifierKnown = false;
        for (const Source &source : std::as_const(at->sources)) {
            if (!expr.qualifier.isEmpty() && source.alias.compare(expr.qualifier, Qt::CaseInsensitive) != 0)
                continue;
            qualifierKnown = !expr.qualifier.isEmpty();
            for (const Column &candidate : source.columns) {
                if (candidate.name.compare(expr.text, Qt::CaseInsensitive) != 0)
                    continue;
                if (found)
                    Unknown(209, u"Ambiguous column name '%1'."_s.arg(expr.text), expr.place, expr.text);
                found = &source;
                column = &candidate;
                break;
            }
        }
        if (found) {
            if (at != scope && scope->inAggregate > 0) // it would be an aggregate of the outer query
                Refuse(u"An outer query's column in an aggregate"_s, expr.place);
            return ColumnReference(*at, *found, *column, expr.place);
        }
        if (qualifierKnown)
            Unknown(207, u"Invalid column name '%1'."_s.arg(expr.text), expr.place, expr.text);
    }
    if (!expr.qualifier.isEmpty())
        Unknown(4104, u"The multi-part identifier \"%1.%2\" could not be bound."_s.arg(expr.qualifier, expr.text),
                expr.place, expr.qualifier);
    Unknown(207, u"Invalid column name '%1'."_s.arg(expr.text), expr.place, expr.text);
}

Fragment Worker::VariableReference(const Expr &expr)
{
    const bool global = expr.text.startsWith("@@"_L1);
    if (expansion && !global) {
        const auto argument = expansion->arguments.constFind(expr.text);
        if (argument == expansion->arguments.constEnd())
            Undeclared(expr.text, expr.place);
        return *argument;
    }
    if (definition)
        RefuseInDefinition(expr.text, expr.place);
    const Variable *variable = variables(expr.text);
    if (!variable) {
        if (global)
            Refuse(expr.text, expr.place);
        Undeclared(expr.text, expr.place);
    }
    qsizetype index = result.variables.indexOf(expr.text);
    if (index < 0) {
        index = result.variables.size();
        result.variables.append(expr.text);
    }
    Fragment fragment = Atom(u'?' + QString::number(index + 1), variable->type);
    fragment.classes = variable->value.typeId() == QMetaType::QString && variable->value.toString().contains(u'[');
    return fragment;
}

Fragment Worker::Translate(const Expr &expr)
{
    const qsizetype before = scope ? scope->ungrouped.size() : 0;
    Fragment fragment = TranslateKind(expr);
    if (fragment.sql.size() > kMaxSql)
        Refuse(u"An expression this large"_s, expr.place);
    if (scope && scope->groups.contains(fragment.sql))
        scope->ungrouped.resize(before);
    return fragment;
}

Fragment Worker::TranslateKind(const Expr &expr)
{
    switch (expr.kind) {
    case Kind::Null:
        return NullLiteral();
    case Kind::Integer:
    case Kind::Decimal:
        return Number(expr);
    case Kind::String:
        return TextLiteral(expr.text);
    case Kind::Name:
        return Name(expr);
    case Kind::Star:
        SyntaxError(u"*"_s, expr.place);
    case Kind::Variable:
        return VariableReference(expr);
    case Kind::Negate:
    case Kind::Complement:
        return Unary(expr);
    case Kind::Binary:
        return Binary(expr);
    case Kind::Compare:
        return Compare(expr.text, Translate(*expr.args[0]), Translate(*expr.args[1]), expr.place);
    case Kind::And:
        return Chain(expr, " AND "_L1, kAnd);
    case Kind::Or:
        return Chain(expr, " OR "_L1, kOr);
    case Kind::Not: {
        Fragment fragment = Atom("NOT "_L1 + Wrap(Translate(*expr.args[0]), kNot), Type::Kind::Bit);
        fragment.precedence = kNot;
        return fragment;
    }
    case Kind::Like:
        return Like(expr);
    case Kind::Between:
        return Between(expr);
    case Kind::InList:
        return InList(expr);
    case Kind::InQuery:
        return InQuery(expr);
    case Kind::IsNull: {
        Fragment fragment =
            Atom(Wrap(Translate(*expr.args[0]), kEqual + 1) + (expr.negated ? " IS NOT NULL"_L1 : " IS NULL"_L1),
                 Type::Kind::Bit);
        fragment.precedence = kEqual;
        return fragment;
    }
    case Kind::Exists:
        return Atom(u"EXISTS (%1)"_s.arg(TranslateQuery(*expr.query, Use::Exists).sql), Type::Kind::Bit);
    case Kind::Case:
        return Case(expr);
    case Kind::Cast:
        return Cast(expr);
    case Kind::Call:
        return Call(expr);
    case Kind::Query: {
        const QueryText query = TranslateQuery(*expr.query, Use::Single);
        Fragment fragment = Atom(u'(' + query.sql + u')', query.columns.front().type);
        fragment.trimmed = query.columns.front().trimmed;
        return fragment;
    }
    }
    return {};
}

Fragment Worker::Number(const Expr &expr)
{
    bool ok = false;
    if (expr.kind == Kind::Integer) {
        const qlonglong whole = expr.text.toLongLong(&ok);
        if (ok)
            return NumberLiteral(whole);
    }
    const double broken = expr.text.toDouble(&ok);
    if (!ok || !std::isfinite(broken))
        SyntaxError(expr.text, expr.place);
    return NumberLiteral(broken);
}

Fragment Worker::Unary(const Expr &expr)
{
    const Fragment operand = ToNumber(Translate(*expr.args[0]));
    Fragment fragment = operand;
    fragment.literal.reset();
    // "--" would begin a comment
    fragment.sql = (expr.kind == Kind::Negate ? u'-' : u'~') + Wrap(operand, kAtom);
    fragment.precedence = kUnary;
    return fragment;
}

Fragment Worker::Binary(const Expr &expr)
{
    Fragment left = Translate(*expr.args[0]);
    Fragment right = Translate(*expr.args[1]);
    const bool plus = expr.text == "+"_L1;
    if ((plus || expr.text == "-"_L1) && (left.type.IsDate() || right.type.IsDate()))
        return DateSum(expr, left, right);
    const auto joins = [](const Fragment &side) { return side.type.IsText() || side.type.IsUnknown(); };
    if (plus && (left.type.IsText() || right.type.IsText()) && joins(left) && joins(right))
        return Concatenate(left, right);
    if (!left.type.IsUnknown())
        left = ToNumber(left);
    if (!right.type.IsUnknown())
        right = ToNumber(right);
    Type type = Unify(left.type, right.type);
    if (type.IsInteger() && type.kind < Type::Kind::Int)
        type = Type::Kind::Int;
    if (type.IsFloat() && left.type.kind != right.type.kind)
        type = Type::Kind::Float; // a decimal's scale changes with every operation
    if (expr.text == "/"_L1 || expr.text == "%"_L1) {
        // money and decimals may be stored as whole numbers, of which a division would make another one
        if (type.IsFloat() && expr.text == "/"_L1)
            left = Atom(u"CAST(%1 AS REAL)"_s.arg(left.sql), type);
        if (right.literal && right.literal->isValid() && right.literal->toDouble() == 0.0)
            Fail(Error::Kind::Other, 8134, u"Divide by zero error encountered."_s, expr.place);
        if (!right.literal && !definition)
            right = Atom(u"cx_nonzero(%1)"_s.arg(right.sql), right.type);
    }
    const int precedence = plus || expr.text == "-"_L1                  ? kSum
                           : expr.text == "&"_L1 || expr.text == "|"_L1 ? kBits
                                                                        : kProduct;
    Fragment fragment = Atom(Wrap(left, precedence) + u' ' + expr.text + u' ' + Wrap(right, precedence + 1), type);
    fragment.precedence = precedence;
    return fragment;
}

Fragment Worker::Concatenate(const Fragment &left, const Fragment &right)
{
    Fragment fragment = Atom(Wrap(left, kConcat) + " || "_L1 + Wrap(right, kConcat + 1), Type::Kind::Text);
    fragment.precedence = kConcat;
    // a text that ends with nothing may end with the blanks of what comes before
    fragment.trimmed = right.literal && right.trimmed && !right.literal->toString().isEmpty();
    return fragment;
}

Fragment Worker::DateSum(const Expr &expr, const Fragment &left, const Fragment &right)
{
    const bool minus = expr.text == "-"_L1;
    if (minus && left.type.IsDate() && right.type.IsDate()) {
        Fragment days = Atom(u"julianday(%1) - julianday(%2)"_s.arg(left.sql, right.sql), Type::Kind::Float);
        days.precedence = kSum;
        return days;
    }
    const Fragment &date = left.type.IsDate() ? left : right;
    const Fragment &other = left.type.IsDate() ? right : left;
    if (minus && right.type.IsDate())
        SyntaxError(expr.text, expr.place);
    if (other.type.IsDate() || other.type.IsText()) // the server reads the text as a date and adds that
        SyntaxError(expr.text, expr.place);
    return AddToDate(date, Wrap(other, kUnary), minus ? u"-1 * "_s : QString(), u"days"_s);
}

Fragment Worker::AddToDate(const Fragment &date, const QString &count, const QString &sign, const QString &unit)
{
    return Atom(StoredDate(u"%1, (%2%3) || ' %4'"_s.arg(date.sql, sign, count, unit)), Type::Kind::DateTime);
}

// Gives both sides the form in which they can be compared. True when one of them has to be told to ignore case.
bool Worker::Align(Fragment &left, Fragment &right, Place place)
{
    if (left.type.IsDate() || right.type.IsDate()) {
        const Type type = left.type.IsDate() && right.type.IsDate() ? Unify(left.type, right.type)
                          : left.type.IsDate()                      ? left.type
                                                                    : right.type;
        const Type common = type.kind == Type::Kind::Date && !(left.type.IsDate() && right.type.IsDate())
                                ? Type(Type::Kind::DateTime)
                                : type;
        left = Convert(left, common, Purpose::Compare, place);
        right = Convert(right, common, Purpose::Compare, place);
        return false;
    }
    if (left.type.IsNumber() || right.type.IsNumber()) {
        if (left.type.IsText())
            left = ToNumber(left);
        if (right.type.IsText())
            right = ToNumber(right);
        return false;
    }
    if (left.type.kind == Type::Kind::Binary || right.type.kind == Type::Kind::Binary)
        return false;
    if (left.type.IsText() || right.type.IsText()) {
        left = Trimmed(left);
        right = Trimmed(right);
    }
    return !left.noCase && !right.noCase;
}

Fragment Worker::Compare(const QString &op, Fragment left, Fragment right, Place place)
{
    const bool collate = Align(left, right, place);
    const int precedence = op == "="_L1 || op == "<>"_L1 ? kEqual : kLess;
    Fragment fragment = Atom(Wrap(left, precedence + 1) + u' ' + op + u' ' +
                                 (collate ? Wrap(right, kUnary) + " COLLATE NOCASE"_L1 : Wrap(right, precedence + 1)),
                             Type::Kind::Bit);
    fragment.precedence = precedence;
    return fragment;
}

Fragment Worker::Chain(const Expr &expr, QLatin1StringView word, int precedence)
{
    Fragment fragment;
    fragment.type = Type::Kind::Bit;
    fragment.precedence = precedence;
    for (const ExprPtr &operand : expr.args) {
        if (!fragment.sql.isEmpty())
            fragment.sql += word;
        fragment.sql += Wrap(Translate(*operand), precedence + 1);
    }
    return fragment;
}

Fragment Worker::Like(const Expr &expr)
{
    const Fragment text = AsText(Translate(*expr.args[0]), 121, expr.place);
    Fragment pattern = Translate(*expr.args[1]);
    if (!pattern.type.IsUnknown())
        pattern = AsText(pattern, 121, expr.place);
    QString escape;
    if (expr.args.size() > 2) {
        const Fragment mark = Translate(*expr.args[2]);
        if (!mark.literal || mark.literal->toString().size() != 1)
            SyntaxError(u"ESCAPE"_s, expr.args[2]->place);
        escape = mark.sql;
    }
    const bool parameter = pattern.sql.startsWith(u'?');
    const bool classes = pattern.literal ? pattern.literal->toString().contains(u'[') : !parameter || pattern.classes;
    Fragment fragment;
    fragment.type = Type::Kind::Bit;
    if (classes && !definition) {
        fragment.sql = u"%1cx_like(%2, %3%4)"_s.arg(expr.negated ? u"NOT "_s : QString(), pattern.sql, text.sql,
                                                    escape.isEmpty() ? QString() : u", "_s + escape);
        fragment.precedence = expr.negated ? int(kNot) : int(kAtom);
        return fragment;
    }
    if (classes && pattern.literal)
        RefuseInDefinition(u"LIKE with a character class"_s, expr.args[1]->place);
    fragment.sql = Wrap(text, kEqual + 1) + (expr.negated ? " NOT LIKE "_L1 : " LIKE "_L1) + Wrap(pattern, kEqual + 1);
    if (!escape.isEmpty())
        fragment.sql += " ESCAPE "_L1 + escape;
    fragment.precedence = kEqual;
    return fragment;
}

Fragment Worker::Between(const Expr &expr)
{
    const Fragment value = Translate(*expr.args[0]);
    const Fragment low = Compare(u">="_s, value, Translate(*expr.args[1]), expr.place);
    const Fragment high = Compare(u"<="_s, value, Translate(*expr.args[2]), expr.place);
    Fragment fragment = Atom(low.sql + " AND "_L1 + high.sql, Type::Kind::Bit);
    fragment.precedence = kAnd;
    if (expr.negated) {
        fragment.sql = u"NOT (%1)"_s.arg(fragment.sql);
        fragment.precedence = kNot;
    }
    return fragment;
}

Fragment Worker::InList(const Expr &expr)
{
    Fragment value = Translate(*expr.args[0]);
    QList<Fragment> members;
    Type type = value.type;
    for (size_t i = 1; i < expr.args.size(); ++i) {
        members.append(Translate(*expr.args[i]));
        type = Unify(type, members.last().type);
    }
    QStringList texts;
    bool collate = false;
    Fragment probe = NullLiteral(type);
    Align(value, probe, expr.place);
    for (Fragment &member : members) {
        Fragment side = value;
        collate |= Align(side, member, expr.place);
        texts.append(member.sql);
    }
    Fragment fragment = Atom(Wrap(value, kUnary) + (collate ? " COLLATE NOCASE"_L1 : ""_L1) +
                                 (expr.negated ? " NOT IN ("_L1 : " IN ("_L1) + texts.join(", "_L1) + u')',
                             Type::Kind::Bit);
    fragment.precedence = kEqual;
    return fragment;
}

Fragment Worker::InQuery(const Expr &expr)
{
    Fragment value = Translate(*expr.args[0]);
    const QueryText query = TranslateQuery(*expr.query, Use::Single);
    Fragment other = Atom(QString(), query.columns.front().type);
    other.trimmed = query.columns.front().trimmed;
    if (other.type.IsDate() || other.type.IsNumber()) {
        value = other.type.IsDate()   ? ToDate(value, other.type, -1, expr.place)
                : value.type.IsText() ? ToNumber(value)
                                      : value;
    }
    const bool text = !value.type.IsNumber() && !value.type.IsDate();
    value = Trimmed(value);
    Fragment fragment = Atom(Wrap(value, kUnary) + (text && !value.noCase ? " COLLATE NOCASE"_L1 : ""_L1) +
                                 (expr.negated ? " NOT IN ("_L1 : " IN ("_L1) + query.sql + u')',
                             Type::Kind::Bit);
    fragment.precedence = kEqual;
    return fragment;
}

Fragment Worker::Case(const Expr &expr)
{
    const size_t pairs = (expr.args.size() - 2) / 2;
    QList<Fragment> conditions;
    QList<Fragment> values;
    Type type;
    for (size_t i = 0; i < pairs; ++i) {
        const Expr &when = *expr.args[1 + 2 * i];
        conditions.append(expr.args[0] ? Compare(u"="_s, Translate(*expr.args[0]), Translate(when), when.place)
                                       : Translate(when));
        values.append(Translate(*expr.args[2 + 2 * i]));
        type = Unify(type, values.last().type);
    }
    const Expr *otherwise = expr.args.back().get();
    if (otherwise) {
        values.append(Translate(*otherwise));
        type = Unify(type, values.last().type);
    }
    Fragment fragment = Atom(u"CASE"_s, type);
    fragment.trimmed = true;
    for (size_t i = 0; i <= pairs; ++i) {
        if (i == pairs && !otherwise)
            break;
        const Fragment value = Harmonise(values[qsizetype(i)], type, expr.place);
        fragment.trimmed &= value.trimmed || value.IsNull();
        if (i < pairs)
            fragment.sql += " WHEN "_L1 + conditions[qsizetype(i)].sql + " THEN "_L1 + value.sql;
        else
            fragment.sql += " ELSE "_L1 + value.sql;
    }
    fragment.sql += " END"_L1;
    return fragment;
}

// One branch of several that give one value.
Fragment Worker::Harmonise(const Fragment &value, const Type &type, Place place)
{
    if (value.IsNull())
        return value;
    if (type.IsDate())
        return ToDate(value, type, -1, place);
    if (type.IsNumber() && (value.type.IsText() || value.type.IsDate()))
        return ToNumber(value);
    return value;
}

Fragment Worker::Cast(const Expr &expr)
{
    const Fragment value = Translate(*expr.args[0]);
    if (expr.style > 0 && !expr.type.IsDate() && !(expr.type.IsText() && value.type.IsDate()))
        Refuse(u"CONVERT with style %1"_s.arg(expr.style), expr.place);
    if (expr.type.IsDate() && expr.style > 0 && value.type.IsUnknown())
        return ToDate(value, expr.type, expr.style, expr.place);
    return Convert(value, expr.type, Purpose::Explicit, expr.place, expr.style);
}

} // namespace embedded
