// SPDX-License-Identifier: Apache-2.0
#include "embedded/Translator.h"

#include <QLocale>

#include <cmath>
#include <limits>

#include "embedded/Functions.h"

namespace embedded {

using namespace Qt::StringLiterals;

QString QuoteName(const QString &name)
{
    QString quoted = name;
    quoted.replace(u'"', "\"\""_L1);
    return u'"' + quoted + u'"';
}

QString QuoteText(const QString &text)
{
    QString quoted = text;
    quoted.replace(u'\'', "''"_L1);
    return u'\'' + quoted + u'\'';
}

namespace {

using Kind = Expr::Kind;

constexpr qsizetype kMaxSql = 200'000; // functions written out in place can grow without end
constexpr int kMaxExpansion = 16;      // functions within functions

// SQLite's order of operators.
enum Precedence { kOr = 1, kAnd, kNot, kEqual, kLess, kBits, kSum, kProduct, kConcat, kUnary, kAtom };

// A piece of SQLite text and what is known about its value.
struct Fragment {
    QString sql;
    Type type;
    int precedence = kAtom;
    bool trimmed = false; // a text without trailing blanks
    bool noCase = false;  // a text that compares without regard to case by itself
    std::optional<QVariant> literal; // known now; an invalid value is NULL
    bool classes = false; // a bound text in which LIKE would find '['

    bool IsNull() const { return literal && !literal->isValid(); }
};

struct Source {
    QString alias;    // as the statement names it
    QString sqlAlias; // as SQLite does: different where functions are written out in place
    QList<Column> columns;
};

enum class Clause { Items, OrderBy, Other };

struct Scope {
    Scope *outer = nullptr;
    QList<Source> sources;
    Clause clause = Clause::Other;
    QStringList groups; // translated GROUP BY expressions
    bool aggregated = false;
    int inAggregate = 0;
    QList<std::pair<QString, Place>> ungrouped;
};

QString Wrap(const Fragment &fragment, int precedence)
{
    return fragment.precedence < precedence ? u'(' + fragment.sql + u')' : fragment.sql;
}

Fragment Atom(const QString &sql, const Type &type)
{
    Fragment fragment;
    fragment.sql = sql;
    fragment.type = type;
    return fragment;
}

Fragment NumberLiteral(const QVariant &value)
{
    Fragment fragment;
    fragment.literal = value;
    const bool whole = value.typeId() == QMetaType::LongLong;
    const qlonglong number = value.toLongLong();
    if (whole) {
        fragment.type = number == qlonglong(int(number)) ? Type::Kind::Int : Type::Kind::BigInt;
        fragment.sql = QString::number(number);
    } else {
        fragment.type = Type::Kind::Float;
        fragment.sql = QString::number(value.toDouble(), 'g', 17);
        if (!fragment.sql.contains(u'.') && !fragment.sql.contains(u'e'))
            fragment.sql += ".0"_L1;
    }
    if (fragment.sql.startsWith(u'-'))
        fragment.precedence = kUnary;
    return fragment;
}

Fragment TextLiteral(const QString &text)
{
    Fragment fragment = Atom(QuoteText(text), Type::Kind::Text);
    fragment.literal = text;
    fragment.trimmed = !text.endsWith(u' ');
    return fragment;
}

Fragment DateLiteral(const QString &text, const Type &type)
{
    Fragment fragment = TextLiteral(type.kind == Type::Kind::Date ? text.left(10) : text);
    fragment.type = type;
    return fragment;
}

Fragment NullLiteral(const Type &type = {})
{
    Fragment fragment = Atom(u"NULL"_s, type);
    fragment.literal = QVariant();
    return fragment;
}

QString TrimmedRight(QString text)
{
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

const QString kDateFormat = u"'%Y-%m-%d %H:%M:%f'"_s;

// The stored form of SQLite's strftime with these arguments.
QString StoredDate(const QString &arguments)
{
    return u"replace(replace(strftime(%1, %2), ' 00:00:00.000', ''), '.000', '')"_s.arg(kDateFormat, arguments);
}

bool Same(const QString &a, QLatin1StringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// The type of a value that may come from either side.
Type Unify(const Type &a, const Type &b)
{
    if (a.IsUnknown())
        return b;
    if (b.IsUnknown())
        return a;
    if (a.IsDate() || b.IsDate())
        return a.kind == b.kind ? a : Type(Type::Kind::DateTime);
    if (a.kind == Type::Kind::Binary || b.kind == Type::Kind::Binary)
        return Type::Kind::Binary;
    if (a.IsText() && b.IsText())
        return Type::Kind::Text;
    if (a.IsText())
        return b;
    if (b.IsText())
        return a;
    if (a.kind == b.kind)
        return a.scale == b.scale ? a : a.scale > b.scale ? a : b;
    if (a.IsFloat() || b.IsFloat())
        return a.IsFloat() && b.IsFloat() ? Type(Type::Kind::Float) : a.IsFloat() ? a : b;
    return a.kind > b.kind ? a : b;
}

} // namespace

struct Translator::Worker {
    using Handler = Fragment (Worker::*)(const Expr &);
    enum class Purpose { Compare, Assign, Explicit, Store };
    enum class Use { Result, Derived, Single, Exists, Insert };

    // What a function's parameters stand for where its body is written out in place.
    struct Expansion {
        QHash<QString, Fragment> arguments;
        Expansion *outer = nullptr;
        int depth = 1;
        int serial = 0;
    };

    struct QueryText {
        QString sql;
        QList<Column> columns;
    };

    struct Core {
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
    {
    }

    Catalogue &catalogue;
    const Lookup variables;
    const TableLookup tables;
    const bool definition; // SQLite's own functions only, no variables
    bool constant = false; // a check: SQLite wants the same answer every time
    Translation result;
    Scope *scope = nullptr;
    Expansion *expansion = nullptr;
    int expansions = 0;

    // ---- conversions

    [[noreturn]] static void ConversionError(const QVariant &value, const QString &type)
    {
        throw Error(Error::Kind::Check, 245,
                    u"Conversion failed when converting the varchar value '%1' to data type %2."_s.arg(value.toString(), type));
    }
    [[noreturn]] static void DateError()
    {
        throw Error(Error::Kind::Check, 241,
                    u"Conversion failed when converting date and/or time from character string."_s);
    }
    [[noreturn]] void RefuseInDefinition(const QString &what, Place place) const
    {
        Refuse(what + u" in a view, a default or a check"_s, place);
    }

    Fragment Trimmed(const Fragment &fragment) const
    {
        if (fragment.trimmed || !(fragment.type.IsText() || fragment.type.IsUnknown()) || fragment.IsNull())
            return fragment;
        if (fragment.literal)
            return TextLiteral(TrimmedRight(fragment.literal->toString()));
        Fragment trimmed = Atom(u"rtrim(%1, ' ')"_s.arg(fragment.sql), fragment.type);
        trimmed.trimmed = true;
        return trimmed;
    }

    Fragment ToNumber(const Fragment &value)
    {
        if (value.type.IsNumber() || value.IsNull())
            return value;
        if (value.type.IsDate()) {
            return value.literal ? NumberLiteral(Days(value))
                                 : Atom(u"(julianday(%1) - 2415020.5)"_s.arg(value.sql), Type::Kind::Float);
        }
        if (value.literal) {
            const std::optional<QVariant> number = NumberFromText(value.literal->toString());
            if (!number)
                ConversionError(*value.literal, u"int"_s);
            return NumberLiteral(*number);
        }
        if (definition)
            return Atom(u"CAST(%1 AS NUMERIC)"_s.arg(value.sql), Type::Kind::Float);
        return Atom(u"cx_number(%1)"_s.arg(value.sql), Type::Kind::Float);
    }
    static double Days(const Fragment &date)
    {
        const QDateTime moment = DateFromText(date.literal->toString());
        return double(QDate(1900, 1, 1).daysTo(moment.date())) + moment.time().msecsSinceStartOfDay() / 86400000.0;
    }

    Fragment ToInteger(const Fragment &value, const Type &type)
    {
        if (value.IsNull())
            return NullLiteral(type);
        if (value.type.IsInteger()) {
            Fragment same = value;
            same.type = type;
            return same;
        }
        if (value.type.IsDate()) // the server rounds here
            return Atom(u"CAST(round(julianday(%1) - 2415020.5) AS INTEGER)"_s.arg(value.sql), type);
        if (value.type.kind == Type::Kind::Money)
            return Atom(u"CAST(round(%1) AS INTEGER)"_s.arg(value.sql), type);
        if (value.type.IsText()) {
            if (!value.literal)
                return Atom((definition ? u"CAST(%1 AS INTEGER)"_s : u"cx_int(%1)"_s).arg(value.sql), type);
            Fragment number = ToNumber(value);
            if (!number.type.IsInteger())
                ConversionError(*value.literal, u"int"_s);
            number.type = type;
            return number;
        }
        return Atom(u"CAST(%1 AS INTEGER)"_s.arg(value.sql), type);
    }

    Fragment ToBit(const Fragment &value)
    {
        if (value.IsNull())
            return NullLiteral(Type::Kind::Bit);
        if (value.type.kind == Type::Kind::Bit)
            return value;
        if (value.type.IsText()) {
            if (value.literal) {
                const QString text = value.literal->toString().trimmed();
                if (Same(text, "true"_L1) || Same(text, "false"_L1))
                    return Bit(Same(text, "true"_L1));
                return Bit(NumberFromText(text).value_or(QVariant(qlonglong(0))).toDouble() != 0);
            }
            return Atom(u"CASE lower(trim(%1)) WHEN 'true' THEN 1 WHEN 'false' THEN 0 ELSE CAST(%1 AS NUMERIC) <> 0 END"_s.arg(
                            value.sql),
                        Type::Kind::Bit);
        }
        if (value.literal)
            return Bit(value.literal->toDouble() != 0);
        Fragment bit = Atom(Wrap(value, kEqual + 1) + " <> 0"_L1, Type::Kind::Bit);
        bit.precedence = kEqual;
        return bit;
    }
    static Fragment Bit(bool on)
    {
        Fragment bit = NumberLiteral(qlonglong(on));
        bit.type = Type::Kind::Bit;
        return bit;
    }

    Fragment ToFloat(const Fragment &value, const Type &type, Purpose purpose)
    {
        if (value.IsNull())
            return NullLiteral(type);
        Fragment number = value.type.IsUnknown() ? value : ToNumber(value);
        const bool wasFloat = number.type.IsFloat();
        const bool scaled = type.kind == Type::Kind::Decimal || type.kind == Type::Kind::Money;
        if (purpose != Purpose::Compare && scaled && !(wasFloat && number.type.kind == type.kind && number.type.scale <= type.scale)
            && !number.type.IsInteger())
            number = Atom(u"round(%1, %2)"_s.arg(number.sql, QString::number(type.scale)), type);
        else if (purpose == Purpose::Explicit && !wasFloat)
            number = Atom(u"CAST(%1 AS REAL)"_s.arg(number.sql), type);
        else
            number.literal.reset(); // its text stays the whole number's
        number.type = type;
        return number;
    }

    Fragment ToText(const Fragment &value, const Type &type, Purpose purpose, int style, Place place)
    {
        Fragment text = AsText(value, style, place);
        if (purpose == Purpose::Store)
            text = Trimmed(text);
        const bool cuts = (purpose == Purpose::Explicit || purpose == Purpose::Assign) && type.length >= 0
            && !(value.type.IsText() && value.type.length >= 0 && value.type.length <= type.length);
        if (cuts && !text.IsNull()) {
            if (text.literal)
                text = TextLiteral(text.literal->toString().left(type.length));
            else
                text = Atom(u"substr(%1, 1, %2)"_s.arg(text.sql, QString::number(type.length)), Type::Kind::Text);
        }
        const Type kept = text.type;
        text.type = type;
        if (purpose == Purpose::Compare && kept.IsText())
            text.type = kept;
        return text;
    }

    Fragment AsText(const Fragment &value, int style, Place place)
    {
        if (value.IsNull())
            return NullLiteral(Type::Kind::Text);
        if (value.type.IsText())
            return value;
        if (value.type.IsDate())
            return DateAsText(value, style, place);
        Fragment text;
        if (value.type.IsInteger() && value.literal) {
            text = TextLiteral(QString::number(value.literal->toLongLong()));
        } else if (value.type.IsFloat()) {
            const QString format = value.type.kind == Type::Kind::Money ? u"%.2f"_s
                : value.type.kind == Type::Kind::Decimal                ? u"%.%1f"_s.arg(value.type.scale)
                                                                        : u"%.6g"_s;
            text = Atom(u"CASE WHEN %1 IS NOT NULL THEN format('%2', %3) END"_s.arg(Wrap(value, kEqual + 1), format, value.sql),
                        Type::Kind::Text);
            if (value.literal && value.type.kind == Type::Kind::Float)
                text = TextLiteral(QString::asprintf("%.6g", value.literal->toDouble()));
        } else {
            text = Atom(u"CAST(%1 AS TEXT)"_s.arg(value.sql), Type::Kind::Text);
        }
        text.trimmed = true;
        return text;
    }

    Fragment DateAsText(const Fragment &value, int style, Place place) const
    {
        static const QHash<int, QString> formats = {
            {101, u"%m/%d/%Y"_s}, {103, u"%d/%m/%Y"_s},          {104, u"%d.%m.%Y"_s},          {105, u"%d-%m-%Y"_s},
            {108, u"%H:%M:%S"_s}, {111, u"%Y/%m/%d"_s},          {112, u"%Y%m%d"_s},            {20, u"%Y-%m-%d %H:%M:%S"_s},
            {23, u"%Y-%m-%d"_s},  {120, u"%Y-%m-%d %H:%M:%S"_s}, {121, u"%Y-%m-%d %H:%M:%f"_s}, {126, u"%Y-%m-%dT%H:%M:%S"_s},
            {21, u"%Y-%m-%d %H:%M:%f"_s}};
        Fragment text;
        if (formats.contains(style)) {
            text = Atom(u"strftime('%1', %2)"_s.arg(formats[style], value.sql), Type::Kind::Text);
        } else if (style > 0) {
            Refuse(u"CONVERT with style %1"_s.arg(style), place);
        } else {
            if (definition)
                RefuseInDefinition(u"CONVERT of a date without a style"_s, place);
            text = Atom(u"cx_datetext(%1)"_s.arg(value.sql), Type::Kind::Text);
        }
        text.trimmed = true;
        return text;
    }

    Fragment ToDate(const Fragment &value, const Type &type, int style, Place place)
    {
        if (value.IsNull())
            return NullLiteral(type);
        if (value.type.IsDate()) {
            if (type.kind == value.type.kind)
                return value;
            if (value.literal)
                return DateLiteral(value.literal->toString(), type);
            if (type.kind == Type::Kind::Date)
                return Atom(u"substr(%1, 1, 10)"_s.arg(value.sql), type);
            Fragment same = value;
            same.type = type;
            return same;
        }
        if (value.literal) {
            const std::optional<QString> date = value.type.IsText() ? CanonicalDate(value.literal->toString(), style)
                                                                    : DateFromDays(value.literal->toDouble());
            if (!date)
                DateError();
            return DateLiteral(*date, type);
        }
        if (value.type.IsNumber()) {
            const QString moment = StoredDate(Wrap(value, kSum) + " + 2415020.5"_L1);
            return Atom(type.kind == Type::Kind::Date ? u"substr(%1, 1, 10)"_s.arg(moment) : moment, type);
        }
        if (definition)
            RefuseInDefinition(u"A conversion from text to date"_s, place);
        const QString date = style > 0 ? u"cx_date(%1, %2)"_s.arg(value.sql, QString::number(style)) : u"cx_date(%1)"_s.arg(value.sql);
        return Atom(type.kind == Type::Kind::Date ? u"substr(%1, 1, 10)"_s.arg(date) : date, type);
    }

    Fragment Convert(const Fragment &value, const Type &type, Purpose purpose, Place place, int style = -1)
    {
        switch (type.kind) {
        case Type::Kind::Bit:
            return ToBit(value);
        case Type::Kind::TinyInt:
        case Type::Kind::SmallInt:
        case Type::Kind::Int:
        case Type::Kind::BigInt:
            return ToInteger(value, type);
        case Type::Kind::Float:
        case Type::Kind::Money:
        case Type::Kind::Decimal:
            return ToFloat(value, type, purpose);
        case Type::Kind::Text:
            return ToText(value, type, purpose, style, place);
        case Type::Kind::DateTime:
        case Type::Kind::Date:
            return ToDate(value, type, style, place);
        case Type::Kind::Unknown:
        case Type::Kind::Binary:
            break;
        }
        return value;
    }

    // ---- names

    Fragment ColumnReference(Scope &owner, const Source &source, const Column &column, Place place)
    {
        // a CHECK knows its table's columns by their names alone
        const QString qualifier = source.sqlAlias.isEmpty() ? QString() : QuoteName(source.sqlAlias) + u'.';
        Fragment fragment = Atom(qualifier + QuoteName(column.name), column.type);
        fragment.trimmed = column.trimmed;
        fragment.noCase = column.noCase;
        if (owner.inAggregate == 0 && !owner.groups.contains(fragment.sql) && (owner.clause == Clause::Items || owner.clause == Clause::OrderBy))
            owner.ungrouped.append({column.name, place});
        return fragment;
    }

    Fragment Name(const Expr &expr)
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
            Unknown(4104, u"The multi-part identifier \"%1.%2\" could not be bound."_s.arg(expr.qualifier, expr.text), expr.place,
                    expr.qualifier);
        Unknown(207, u"Invalid column name '%1'."_s.arg(expr.text), expr.place, expr.text);
    }

    Fragment VariableReference(const Expr &expr)
    {
        const bool global = expr.text.startsWith("@@"_L1);
        if (expansion && !global) {
            const auto argument = expansion->arguments.constFind(expr.text);
            if (argument == expansion->arguments.constEnd())
                Undeclared(expr);
            return *argument;
        }
        if (definition)
            RefuseInDefinition(expr.text, expr.place);
        const Variable *variable = variables(expr.text);
        if (!variable) {
            if (global)
                Refuse(expr.text, expr.place);
            Undeclared(expr);
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
    [[noreturn]] static void Undeclared(const Expr &expr)
    {
        Unknown(137, u"Must declare the scalar variable \"%1\"."_s.arg(expr.text), expr.place, expr.text);
    }

    // ---- expressions

    Fragment Translate(const Expr &expr)
    {
        const qsizetype before = scope ? scope->ungrouped.size() : 0;
        Fragment fragment = TranslateKind(expr);
        if (fragment.sql.size() > kMaxSql)
            Refuse(u"An expression this large"_s, expr.place);
        if (scope && scope->groups.contains(fragment.sql))
            scope->ungrouped.resize(before);
        return fragment;
    }

    Fragment TranslateKind(const Expr &expr)
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
            Fragment fragment = Atom(Wrap(Translate(*expr.args[0]), kEqual + 1)
                                         + (expr.negated ? " IS NOT NULL"_L1 : " IS NULL"_L1),
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

    static Fragment Number(const Expr &expr)
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

    Fragment Unary(const Expr &expr)
    {
        const Fragment operand = ToNumber(Translate(*expr.args[0]));
        Fragment fragment = operand;
        fragment.literal.reset();
        // "--" would begin a comment
        fragment.sql = (expr.kind == Kind::Negate ? u'-' : u'~') + Wrap(operand, kAtom);
        fragment.precedence = kUnary;
        return fragment;
    }

    Fragment Binary(const Expr &expr)
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
                throw Error(Error::Kind::Other, 8134, u"Divide by zero error encountered."_s, expr.place.line,
                            expr.place.column);
            if (!right.literal && !definition)
                right = Atom(u"cx_nonzero(%1)"_s.arg(right.sql), right.type);
        }
        const int precedence = plus || expr.text == "-"_L1 ? kSum : expr.text == "&"_L1 || expr.text == "|"_L1 ? kBits : kProduct;
        Fragment fragment = Atom(Wrap(left, precedence) + u' ' + expr.text + u' ' + Wrap(right, precedence + 1), type);
        fragment.precedence = precedence;
        return fragment;
    }

    static Fragment Concatenate(const Fragment &left, const Fragment &right)
    {
        Fragment fragment = Atom(Wrap(left, kConcat) + " || "_L1 + Wrap(right, kConcat + 1), Type::Kind::Text);
        fragment.precedence = kConcat;
        // a text that ends with nothing may end with the blanks of what comes before
        fragment.trimmed = right.literal && right.trimmed && !right.literal->toString().isEmpty();
        return fragment;
    }

    Fragment DateSum(const Expr &expr, const Fragment &left, const Fragment &right)
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
    static Fragment AddToDate(const Fragment &date, const QString &count, const QString &sign, const QString &unit)
    {
        return Atom(StoredDate(u"%1, (%2%3) || ' %4'"_s.arg(date.sql, sign, count, unit)), Type::Kind::DateTime);
    }

    // Gives both sides the form in which they can be compared. True when one of them has to be told to ignore case.
    bool Align(Fragment &left, Fragment &right, Place place)
    {
        if (left.type.IsDate() || right.type.IsDate()) {
            const Type type = left.type.IsDate() && right.type.IsDate() ? Unify(left.type, right.type)
                : left.type.IsDate()                                    ? left.type
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

    Fragment Compare(const QString &op, Fragment left, Fragment right, Place place)
    {
        const bool collate = Align(left, right, place);
        const int precedence = op == "="_L1 || op == "<>"_L1 ? kEqual : kLess;
        Fragment fragment = Atom(Wrap(left, precedence + 1) + u' ' + op + u' '
                                     + (collate ? Wrap(right, kUnary) + " COLLATE NOCASE"_L1 : Wrap(right, precedence + 1)),
                                 Type::Kind::Bit);
        fragment.precedence = precedence;
        return fragment;
    }

    Fragment Chain(const Expr &expr, QLatin1StringView word, int precedence)
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

    Fragment Like(const Expr &expr)
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

    Fragment Between(const Expr &expr)
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

    Fragment InList(const Expr &expr)
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
        Fragment fragment = Atom(Wrap(value, kUnary) + (collate ? " COLLATE NOCASE"_L1 : ""_L1)
                                     + (expr.negated ? " NOT IN ("_L1 : " IN ("_L1) + texts.join(", "_L1) + u')',
                                 Type::Kind::Bit);
        fragment.precedence = kEqual;
        return fragment;
    }

    Fragment InQuery(const Expr &expr)
    {
        Fragment value = Translate(*expr.args[0]);
        const QueryText query = TranslateQuery(*expr.query, Use::Single);
        Fragment other = Atom(QString(), query.columns.front().type);
        other.trimmed = query.columns.front().trimmed;
        if (other.type.IsDate() || other.type.IsNumber()) {
            value = other.type.IsDate() ? ToDate(value, other.type, -1, expr.place)
                : value.type.IsText()   ? ToNumber(value)
                                        : value;
        }
        const bool text = !value.type.IsNumber() && !value.type.IsDate();
        value = Trimmed(value);
        Fragment fragment = Atom(Wrap(value, kUnary) + (text && !value.noCase ? " COLLATE NOCASE"_L1 : ""_L1)
                                     + (expr.negated ? " NOT IN ("_L1 : " IN ("_L1) + query.sql + u')',
                                 Type::Kind::Bit);
        fragment.precedence = kEqual;
        return fragment;
    }

    Fragment Case(const Expr &expr)
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
    Fragment Harmonise(const Fragment &value, const Type &type, Place place)
    {
        if (value.IsNull())
            return value;
        if (type.IsDate())
            return ToDate(value, type, -1, place);
        if (type.IsNumber() && (value.type.IsText() || value.type.IsDate()))
            return ToNumber(value);
        return value;
    }

    Fragment Cast(const Expr &expr)
    {
        const Fragment value = Translate(*expr.args[0]);
        if (expr.style > 0 && !expr.type.IsDate() && !(expr.type.IsText() && value.type.IsDate()))
            Refuse(u"CONVERT with style %1"_s.arg(expr.style), expr.place);
        if (expr.type.IsDate() && expr.style > 0 && value.type.IsUnknown())
            return ToDate(value, expr.type, expr.style, expr.place);
        return Convert(value, expr.type, Purpose::Explicit, expr.place, expr.style);
    }

    // ---- functions

    struct Builtin {
        int least;
        int most;
        Handler handler;
    };
    static const QHash<QString, Builtin> &Builtins()
    {
        static const QHash<QString, Builtin> table = {
            {u"isnull"_s, {2, 2, &Worker::IsNullCall}},       {u"coalesce"_s, {1, 100, &Worker::Coalesce}},
            {u"nullif"_s, {2, 2, &Worker::NullIf}},           {u"left"_s, {2, 2, &Worker::Left}},
            {u"right"_s, {2, 2, &Worker::Right}},             {u"len"_s, {1, 1, &Worker::Len}},
            {u"substring"_s, {3, 3, &Worker::Substring}},     {u"charindex"_s, {2, 3, &Worker::CharIndex}},
            {u"replace"_s, {3, 3, &Worker::Replace}},         {u"upper"_s, {1, 1, &Worker::TextCall}},
            {u"lower"_s, {1, 1, &Worker::TextCall}},          {u"ltrim"_s, {1, 1, &Worker::TextCall}},
            {u"rtrim"_s, {1, 1, &Worker::TextCall}},          {u"str"_s, {1, 3, &Worker::Str}},
            {u"char"_s, {1, 1, &Worker::Char}},               {u"space"_s, {1, 1, &Worker::Replicate}},
            {u"replicate"_s, {2, 2, &Worker::Replicate}},     {u"abs"_s, {1, 1, &Worker::Abs}},
            {u"sign"_s, {1, 1, &Worker::Abs}},                {u"round"_s, {2, 2, &Worker::Round}},
            {u"floor"_s, {1, 1, &Worker::Floor}},             {u"ceiling"_s, {1, 1, &Worker::Floor}},
            {u"getdate"_s, {0, 0, &Worker::GetDate}},         {u"dateadd"_s, {3, 3, &Worker::DateAdd}},
            {u"datediff"_s, {3, 3, &Worker::DateDiff}},       {u"datepart"_s, {2, 2, &Worker::DatePart}},
            {u"year"_s, {1, 1, &Worker::DatePart}},           {u"month"_s, {1, 1, &Worker::DatePart}},
            {u"day"_s, {1, 1, &Worker::DatePart}},            {u"count"_s, {1, 1, &Worker::Aggregate}},
            {u"sum"_s, {1, 1, &Worker::Aggregate}},           {u"min"_s, {1, 1, &Worker::Aggregate}},
            {u"max"_s, {1, 1, &Worker::Aggregate}},           {u"avg"_s, {1, 1, &Worker::Aggregate}},
            {u"row_number"_s, {0, 0, &Worker::RowNumber}},    {u"object_id"_s, {1, 2, &Worker::ObjectId}},
            {u"scope_identity"_s, {0, 0, &Worker::Special}},  {u"error_message"_s, {0, 0, &Worker::Special}},
            {u"error_number"_s, {0, 0, &Worker::Special}},    {u"error_severity"_s, {0, 0, &Worker::Special}},
            {u"error_state"_s, {0, 0, &Worker::Special}},     {u"xact_state"_s, {0, 0, &Worker::Special}}};
        return table;
    }

    Fragment Call(const Expr &expr)
    {
        if (!expr.qualifier.isEmpty())
            return UserCall(expr);
        const auto builtin = Builtins().constFind(expr.text.toLower());
        if (builtin == Builtins().constEnd())
            Unknown(195, u"'%1' is not a recognized function name."_s.arg(expr.text), expr.place, expr.text);
        if (int(expr.args.size()) < builtin->least || int(expr.args.size()) > builtin->most)
            throw Error(Error::Kind::Syntax, 174,
                        u"The %1 function requires %2 argument(s)."_s.arg(expr.text.toLower(),
                                                                       QString::number(builtin->least)),
                        expr.place.line, expr.place.column, expr.text);
        const bool aggregate = builtin->handler == &Worker::Aggregate;
        const bool window = builtin->handler == &Worker::RowNumber;
        if (window != bool(expr.over))
            Refuse(window ? u"ROW_NUMBER without OVER"_s : u"OVER"_s, expr.place);
        if (expr.distinct && !aggregate)
            SyntaxError(u"DISTINCT"_s, expr.place);
        return (this->*builtin->handler)(expr);
    }

    Fragment Argument(const Expr &expr, size_t index) { return Translate(*expr.args[index]); }
    Fragment TextArgument(const Expr &expr, size_t index) { return AsText(Argument(expr, index), 0, expr.place); }
    Fragment NumberArgument(const Expr &expr, size_t index)
    {
        const Fragment value = Argument(expr, index);
        return value.type.IsUnknown() ? value : ToNumber(value);
    }
    Fragment IntegerArgument(const Expr &expr, size_t index)
    {
        const Fragment value = Argument(expr, index);
        return value.type.IsInteger() || value.IsNull() ? value : ToInteger(value, Type::Kind::Int);
    }
    Fragment DateArgument(const Expr &expr, size_t index)
    {
        return ToDate(Argument(expr, index), Type::Kind::DateTime, -1, expr.place);
    }

    Fragment IsNullCall(const Expr &expr)
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

    Fragment Coalesce(const Expr &expr)
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

    Fragment NullIf(const Expr &expr)
    {
        const Fragment value = Argument(expr, 0);
        const Fragment same = Compare(u"="_s, value, Argument(expr, 1), expr.place);
        return Atom(u"CASE WHEN %1 THEN NULL ELSE %2 END"_s.arg(same.sql, value.sql), value.type);
    }

    Fragment Left(const Expr &expr)
    {
        return Atom(u"substr(%1, 1, %2)"_s.arg(TextArgument(expr, 0).sql, IntegerArgument(expr, 1).sql), Type::Kind::Text);
    }
    Fragment Right(const Expr &expr)
    {
        const Fragment text = TextArgument(expr, 0);
        Fragment fragment = Atom(u"substr(%1, max(length(%1) - %2, 0) + 1)"_s.arg(text.sql, Wrap(IntegerArgument(expr, 1), kSum + 1)),
                                 Type::Kind::Text);
        fragment.trimmed = text.trimmed;
        return fragment;
    }
    Fragment Len(const Expr &expr)
    {
        return Atom(u"length(%1)"_s.arg(Trimmed(TextArgument(expr, 0)).sql), Type::Kind::Int);
    }
    Fragment Substring(const Expr &expr)
    {
        const Fragment text = TextArgument(expr, 0);
        const Fragment start = IntegerArgument(expr, 1);
        const Fragment length = IntegerArgument(expr, 2);
        if (start.literal && start.literal->toLongLong() >= 1)
            return Atom(u"substr(%1, %2, %3)"_s.arg(text.sql, start.sql, length.sql), Type::Kind::Text);
        // SQLite counts a start before the text from its end
        return Atom(u"substr(%1, max(%2, 1), max(%3 + min(%2 - 1, 0), 0))"_s.arg(text.sql, Wrap(start, kSum), Wrap(length, kSum)),
                    Type::Kind::Text);
    }
    Fragment CharIndex(const Expr &expr)
    {
        const QString needle = TextArgument(expr, 0).sql;
        const QString text = TextArgument(expr, 1).sql;
        if (expr.args.size() == 2)
            return Atom(u"instr(lower(%1), lower(%2))"_s.arg(text, needle), Type::Kind::Int);
        const QString start = u"max(%1, 1)"_s.arg(IntegerArgument(expr, 2).sql);
        const QString found = u"instr(lower(substr(%1, %2)), lower(%3))"_s.arg(text, start, needle);
        return Atom(u"CASE %1 WHEN 0 THEN 0 ELSE %1 + %2 - 1 END"_s.arg(found, start), Type::Kind::Int);
    }
    Fragment Replace(const Expr &expr)
    {
        const Fragment from = TextArgument(expr, 1);
        const QString text = from.literal ? from.literal->toString() : QString();
        const bool caseMatters = !from.literal || text.toLower() != text.toUpper();
        if (caseMatters && definition)
            RefuseInDefinition(u"REPLACE of letters"_s, expr.place);
        return Atom(u"%1(%2, %3, %4)"_s.arg(caseMatters ? u"cx_replace"_s : u"replace"_s, TextArgument(expr, 0).sql, from.sql,
                                         TextArgument(expr, 2).sql),
                    Type::Kind::Text);
    }
    Fragment TextCall(const Expr &expr)
    {
        const Fragment text = TextArgument(expr, 0);
        const QString name = expr.text.toLower();
        const bool trims = name.endsWith("trim"_L1);
        Fragment fragment = Atom(u"%1(%2%3)"_s.arg(name, text.sql, trims ? u", ' '"_s : QString()), Type::Kind::Text);
        fragment.type.length = text.type.length;
        fragment.trimmed = text.trimmed || name == "rtrim"_L1;
        return fragment;
    }
    Fragment Str(const Expr &expr)
    {
        const Fragment number = NumberArgument(expr, 0);
        const QString width = expr.args.size() > 1 ? IntegerArgument(expr, 1).sql : u"10"_s;
        const QString decimals = expr.args.size() > 2 ? IntegerArgument(expr, 2).sql : u"0"_s;
        const QString text = u"format('%*.*f', %1, %2, %3)"_s.arg(width, decimals, number.sql);
        // a number that does not fit becomes stars
        return Atom(u"CASE WHEN %1 IS NOT NULL THEN CASE WHEN length(%2) > %3 THEN substr('**********', 1, %3) ELSE %2 END END"_s
                        .arg(Wrap(number, kEqual + 1), text, width),
                    Type::Kind::Text);
    }
    Fragment Char(const Expr &expr) { return Atom(u"char(%1)"_s.arg(IntegerArgument(expr, 0).sql), Type::Kind::Text); }
    Fragment Replicate(const Expr &expr)
    {
        const bool space = expr.args.size() == 1;
        const QString text = space ? u"' '"_s : TextArgument(expr, 0).sql;
        const QString count = IntegerArgument(expr, space ? 0 : 1).sql;
        // as many zero bytes in hexadecimal, each replaced by the text
        return Atom(u"replace(hex(zeroblob(%1)), '00', %2)"_s.arg(count, text),
                    Type::Kind::Text);
    }

    Fragment Abs(const Expr &expr)
    {
        const Fragment number = NumberArgument(expr, 0);
        return Atom(u"%1(%2)"_s.arg(expr.text.toLower(), number.sql), number.type);
    }
    Fragment Round(const Expr &expr)
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
            return number.type.IsInteger() ? number : Atom(u"round(%1, %2)"_s.arg(number.sql, QString::number(places)), number.type);
        const QString unit = u'1' + QString(-places, u'0');
        const QString rounded = u"round(%1 / %2.0) * %2"_s.arg(Wrap(number, kProduct), unit);
        return Atom(number.type.IsInteger() ? u"CAST(%1 AS INTEGER)"_s.arg(rounded) : u'(' + rounded + u')', number.type);
    }
    // Without SQLite's optional mathematical functions: definitions use it too.
    Fragment Floor(const Expr &expr)
    {
        const Fragment number = NumberArgument(expr, 0);
        if (number.type.IsInteger())
            return number;
        const bool up = Same(expr.text, "ceiling"_L1);
        return Atom(u"(CAST(%1 AS INTEGER) %2 (%3 %4 CAST(%1 AS INTEGER)))"_s.arg(
                        number.sql, up ? u"+"_s : u"-"_s, Wrap(number, kLess + 1), up ? u">"_s : u"<"_s),
                    number.type);
    }

    Fragment GetDate(const Expr &expr)
    {
        if (constant)
            RefuseInDefinition(u"GETDATE()"_s, expr.place);
        return Atom(StoredDate(u"'now', 'localtime'"_s), Type::Kind::DateTime);
    }

    enum class Unit { Year, Quarter, Month, Week, Day, Hour, Minute, Second, WeekDay, DayOfYear };
    static Unit DateUnit(const Expr &expr)
    {
        static const QHash<QString, Unit> units = {
            {u"year"_s, Unit::Year},     {u"yy"_s, Unit::Year},      {u"yyyy"_s, Unit::Year},       {u"quarter"_s, Unit::Quarter},
            {u"qq"_s, Unit::Quarter},    {u"month"_s, Unit::Month},  {u"mm"_s, Unit::Month},        {u"m"_s, Unit::Month},
            {u"week"_s, Unit::Week},     {u"wk"_s, Unit::Week},      {u"ww"_s, Unit::Week},         {u"day"_s, Unit::Day},
            {u"dd"_s, Unit::Day},        {u"d"_s, Unit::Day},        {u"hour"_s, Unit::Hour},       {u"hh"_s, Unit::Hour},
            {u"minute"_s, Unit::Minute}, {u"mi"_s, Unit::Minute},    {u"n"_s, Unit::Minute},        {u"second"_s, Unit::Second},
            {u"ss"_s, Unit::Second},     {u"s"_s, Unit::Second},     {u"weekday"_s, Unit::WeekDay}, {u"dw"_s, Unit::WeekDay},
            {u"dayofyear"_s, Unit::DayOfYear}, {u"dy"_s, Unit::DayOfYear}};
        const auto unit = units.constFind(expr.text.toLower());
        if (expr.kind != Kind::Name || !expr.qualifier.isEmpty() || unit == units.constEnd())
            throw Error(Error::Kind::Syntax, 155, u"'%1' is not a recognized datepart option."_s.arg(expr.text),
                        expr.place.line, expr.place.column, expr.text);
        return *unit;
    }

    Fragment DateAdd(const Expr &expr)
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

    Fragment DateDiff(const Expr &expr)
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

    Fragment DatePart(const Expr &expr)
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

    Fragment Aggregate(const Expr &expr)
    {
        const QString name = expr.text.toLower();
        if (!scope || (scope->clause == Clause::Other) || scope->inAggregate > 0)
            throw Error(Error::Kind::Syntax, 147,
                        u"An aggregate may not appear here (line %1, column %2)."_s.arg(expr.place.line).arg(expr.place.column),
                        expr.place.line, expr.place.column, expr.text);
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
    static Fragment Distinct(const Fragment &value)
    {
        if (!value.type.IsText() || value.noCase)
            return value;
        Fragment collated = value;
        collated.sql = Wrap(value, kUnary) + " COLLATE NOCASE"_L1;
        collated.precedence = kUnary;
        collated.noCase = true;
        return collated;
    }

    Fragment RowNumber(const Expr &expr)
    {
        if (!scope || scope->clause == Clause::Other || scope->inAggregate > 0)
            throw Error(Error::Kind::Syntax, 4108,
                        u"Windowed functions can only appear in the SELECT or ORDER BY clauses."_s, expr.place.line,
                        expr.place.column, expr.text);
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
        return Atom(u"row_number() OVER (%1ORDER BY %2)"_s.arg(
                        partition.isEmpty() ? QString() : u"PARTITION BY "_s + partition.join(", "_L1) + u' ',
                        order.join(", "_L1)),
                    Type::Kind::BigInt);
    }

    Fragment ObjectId(const Expr &expr)
    {
        if (definition)
            RefuseInDefinition(u"OBJECT_ID"_s, expr.place);
        return Atom(u"cx_object(%1%2)"_s.arg(TextArgument(expr, 0).sql,
                                          expr.args.size() > 1 ? u", "_s + TextArgument(expr, 1).sql : QString()),
                    Type::Kind::Int);
    }

    // What the interpreter knows, bound as a variable: SCOPE_IDENTITY() is "@@scope_identity".
    Fragment Special(const Expr &expr)
    {
        Expr variable;
        variable.kind = Kind::Variable;
        variable.place = expr.place;
        variable.text = "@@"_L1 + expr.text.toLower();
        return VariableReference(variable);
    }

    // ---- functions of the database

    struct Enter {
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

    const CreateFunctionStatement &FindFunction(const QString &name, bool table, Place place)
    {
        const FunctionRoutine *function = catalogue.FindFunction(name);
        if (!function || (function->definition->query != nullptr) != table) {
            if (table)
                Unknown(208, u"Invalid object name '%1'."_s.arg(name), place, name);
            Unknown(4121, u"Cannot find the user-defined function or aggregate \"dbo.%1\"."_s.arg(name), place, name);
        }
        return *function->definition;
    }

    QHash<QString, Fragment> Arguments(const CreateFunctionStatement &function, const std::vector<ExprPtr> &values, Place place)
    {
        if (values.size() != function.parameters.size())
            throw Error(Error::Kind::Syntax, values.size() < function.parameters.size() ? 313 : 8144,
                        u"%1 arguments were supplied for the procedure or function dbo.%2."_s.arg(
                            values.size() < function.parameters.size() ? u"Not enough"_s : u"Too many"_s, function.name),
                        place.line, place.column, function.name);
        QHash<QString, Fragment> arguments;
        for (size_t i = 0; i < values.size(); ++i) {
            const Parameter &parameter = function.parameters[i];
            const Expr *value = values[i] ? values[i].get() : parameter.defaultValue.get();
            if (!value)
                throw Error(Error::Kind::Syntax, 201,
                            u"Function '%1' expects parameter '%2', which was not supplied."_s.arg(function.name, parameter.name),
                            place.line, place.column, parameter.name);
            arguments.insert(parameter.name, Convert(Translate(*value), parameter.type, Purpose::Assign, place));
        }
        return arguments;
    }

    Fragment UserCall(const Expr &expr)
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

    // ---- FROM

    QString SqlAlias(const QString &alias) const
    {
        return expansion ? u"%1~%2"_s.arg(alias, QString::number(expansion->serial)) : alias;
    }

    const Table &ResolveTable(const QString &name, Place place)
    {
        QString actual = name;
        if (name.startsWith(u'@'))
            actual = tables ? tables(name) : QString();
        const Table *table = actual.isEmpty() ? nullptr : catalogue.FindTable(actual);
        if (!table) {
            if (name.startsWith(u'@'))
                Unknown(1087, u"Must declare the table variable \"%1\"."_s.arg(name), place, name);
            Unknown(208, u"Invalid object name '%1'."_s.arg(name), place, name);
        }
        if (name.startsWith(u'@') || name.startsWith(u'#')) {
            if (definition || expansion)
                Refuse(name + u" in a definition"_s, place);
            result.temporary = true;
        }
        return *table;
    }

    void AddSource(const QString &alias, const QList<Column> &columns, Place place)
    {
        for (const Source &source : std::as_const(scope->sources)) {
            if (source.alias.compare(alias, Qt::CaseInsensitive) == 0)
                throw Error(Error::Kind::Syntax, 1013,
                            u"The object name \"%1\" stands more than once in the FROM clause. Use correlation names to "
                            "distinguish them."_s.arg(alias),
                            place.line, place.column, alias);
        }
        scope->sources.append({alias, SqlAlias(alias), columns});
    }

    static QString TableName(const Table &table)
    {
        return (table.name.startsWith(u'#') || table.name.startsWith(u'@') ? u"temp."_s : QString()) + QuoteName(table.name);
    }

    QString From(const TableRef &ref)
    {
        switch (ref.kind) {
        case TableRef::Kind::Table: {
            const Table &table = ResolveTable(ref.name, ref.place);
            const QString alias = ref.alias.isEmpty() ? ref.name : ref.alias;
            AddSource(alias, table.columns, ref.place);
            const QString sqlAlias = SqlAlias(alias);
            return TableName(table) + (sqlAlias == table.name ? QString() : " AS "_L1 + QuoteName(sqlAlias));
        }
        case TableRef::Kind::Derived: {
            Scope *const outer = std::exchange(scope, nullptr); // a derived table sees nothing of its neighbours
            const QueryText query = TranslateQuery(*ref.query, Use::Derived);
            scope = outer;
            AddSource(ref.alias, query.columns, ref.place);
            return u'(' + query.sql + ") AS "_L1 + QuoteName(SqlAlias(ref.alias));
        }
        case TableRef::Kind::Function: {
            const CreateFunctionStatement &function = FindFunction(ref.name, true, ref.place);
            Scope *const outer = std::exchange(scope, nullptr);
            QHash<QString, Fragment> arguments = Arguments(function, ref.args, ref.place);
            scope = outer;
            QueryText query;
            {
                const Enter enter(*this, function.name, ref.place, std::move(arguments));
                query = TranslateQuery(*function.query, Use::Derived);
            }
            const QString alias = ref.alias.isEmpty() ? ref.name : ref.alias;
            AddSource(alias, query.columns, ref.place);
            return u'(' + query.sql + ") AS "_L1 + QuoteName(SqlAlias(alias));
        }
        case TableRef::Kind::Join:
            break;
        }
        static const QLatin1StringView words[] = {" JOIN "_L1, " JOIN "_L1, " LEFT JOIN "_L1, " RIGHT JOIN "_L1, " FULL JOIN "_L1};
        QString text = From(*ref.left) + words[int(ref.join)];
        const QString right = From(*ref.right);
        text += ref.right->kind == TableRef::Kind::Join ? u'(' + right + u')' : right;
        if (ref.on)
            text += " ON "_L1 + Translate(*ref.on).sql;
        return text;
    }

    QString FromList(const std::vector<std::unique_ptr<TableRef>> &list)
    {
        QStringList texts;
        for (const std::unique_ptr<TableRef> &ref : list)
            texts.append(From(*ref));
        return texts.join(" JOIN "_L1);
    }

    // ---- queries

    Core TranslateCore(const SelectCore &core, Use use)
    {
        if (scope && scope->inAggregate > 0)
            throw Error(Error::Kind::Syntax, 130,
                        u"Cannot perform an aggregate function on an expression containing an aggregate or a subquery."_s, 0, 0);
        Core text;
        text.scope->outer = scope;
        scope = text.scope.get();
        if (!core.from.empty())
            text.tail += " FROM "_L1 + FromList(core.from);
        if (core.where)
            text.tail += " WHERE "_L1 + Translate(*core.where).sql;
        QStringList groups;
        for (const ExprPtr &expr : core.groupBy) {
            const Fragment group = Translate(*expr);
            if (group.literal || group.sql.startsWith(u'?'))
                throw Error(Error::Kind::Syntax, 164, u"Each GROUP BY expression must contain at least one column."_s,
                            expr->place.line, expr->place.column, expr->text);
            groups.append(Distinct(group).sql);
            scope->groups.append(group.sql);
        }
        scope->clause = Clause::Items;
        for (const SelectItem &item : core.items)
            AddItem(text, item, use);
        if (!groups.isEmpty()) {
            text.tail += " GROUP BY "_L1 + groups.join(", "_L1);
            scope->aggregated = true;
        }
        if (core.having) {
            const QString having = Translate(*core.having).sql;
            text.tail += (scope->aggregated ? " HAVING "_L1 : " GROUP BY NULL HAVING "_L1) + having;
            scope->aggregated = true;
        }
        if (core.top) {
            scope = nullptr; // no column can decide how many rows there are
            const Fragment count = IntegerArgumentOf(*core.top);
            if (count.literal && count.literal->toLongLong() < 0)
                SyntaxError(core.top->text, core.top->place);
            // a negative LIMIT would be none at all
            text.limit = count.literal ? count.sql : u"max(ifnull(%1, 0), 0)"_s.arg(count.sql);
        }
        scope = text.scope->outer;
        return text;
    }
    Fragment IntegerArgumentOf(const Expr &expr) { return ToInteger(Translate(expr), Type::Kind::Int); }

    void AddItem(Core &text, const SelectItem &item, Use use)
    {
        if (use == Use::Exists && item.star)
            return; // what it selects does not matter
        if (!item.star) {
            text.items.append(Translate(*item.expr));
            text.names.append(!item.alias.isEmpty()           ? item.alias
                                  : item.expr->kind == Kind::Name ? item.expr->text
                                                                  : QString());
            return;
        }
        bool found = false;
        const QList<Source> sources = scope->sources;
        for (const Source &source : sources) {
            if (!item.alias.isEmpty() && source.alias.compare(item.alias, Qt::CaseInsensitive) != 0)
                continue;
            found = true;
            for (const Column &column : source.columns) {
                text.items.append(ColumnReference(*scope, source, column, item.place));
                text.names.append(column.name);
            }
        }
        if (!found && !item.alias.isEmpty())
            Unknown(107, u"The column prefix '%1' does not match with a table name or alias name used in the query."_s.arg(
                             item.alias), item.place, item.alias);
        if (!found)
            throw Error(Error::Kind::Syntax, 263, u"Must specify table to select from."_s, item.place.line, item.place.column);
        if (text.items.size() > 1500)
            Refuse(u"A list of columns this long"_s, item.place);
    }

    static void CheckGroups(const Core &core)
    {
        if (!core.scope->aggregated || core.scope->ungrouped.isEmpty())
            return;
        const auto &[name, place] = core.scope->ungrouped.first();
        throw Error(Error::Kind::Syntax, 8120,
                    u"Column '%1' is invalid in the select list because it is not contained in either an aggregate function or "
                    "the GROUP BY clause."_s.arg(name),
                    place.line, place.column, name);
    }

    // `store`: the columns of `storeTable` into which INSERT puts the items, or variables when there is no such table.
    QueryText TranslateQuery(const Query &query, Use use, const QList<const Column *> &store = {}, const QString &storeTable = {})
    {
        std::vector<Core> cores;
        bool top = false;
        for (const SelectCore &core : query.arms) {
            cores.push_back(TranslateCore(core, use == Use::Exists && query.arms.size() > 1 ? Use::Result : use));
            top |= core.top != nullptr;
            const qsizetype count = cores.back().items.size();
            if (count != cores.front().items.size())
                throw Error(Error::Kind::Syntax, 205,
                            u"All queries combined using a UNION operator must have an equal number of expressions in their "
                            "target lists."_s,
                            query.place.line, query.place.column);
        }
        if (use == Use::Single && cores.front().items.size() != 1)
            throw Error(Error::Kind::Syntax, 116,
                        u"Only one expression can be specified in the select list when the subquery is not introduced with "
                        "EXISTS."_s,
                        query.place.line, query.place.column);
        if (!store.isEmpty() && cores.front().items.size() != store.size())
            throw Error(Error::Kind::Syntax, store.size() < cores.front().items.size() ? 121 : 120,
                        u"The select list for the INSERT statement does not have as many items as the insert list."_s,
                        query.place.line, query.place.column);
        if (!query.orderBy.empty() && use != Use::Result && use != Use::Insert && !top)
            throw Error(Error::Kind::Syntax, 1033,
                        u"The ORDER BY clause is invalid in views, inline functions, derived tables and subqueries, unless TOP is "
                        "also specified."_s,
                        query.orderBy.front().expr->place.line, query.orderBy.front().expr->place.column);

        QueryText text;
        const bool exists = use == Use::Exists;
        if (!exists || cores.size() > 1)
            text.columns = Columns(query, cores, use, store, storeTable);
        for (size_t i = 0; i < cores.size(); ++i) {
            const SelectCore &core = query.arms[i];
            QString arm = core.distinct ? u"SELECT DISTINCT "_s : u"SELECT "_s;
            QStringList items;
            for (qsizetype column = 0; column < cores[i].items.size(); ++column) {
                Fragment item = cores[i].items[column];
                // Where rows are told apart, or the text is compared further out, it needs a collation.
                if (use == Use::Derived || core.distinct || cores.size() > 1)
                    item = Distinct(item);
                items.append(use == Use::Derived ? item.sql + " AS "_L1 + QuoteName(text.columns[column].name) : item.sql);
            }
            arm += items.isEmpty() || (exists && cores.size() == 1) ? ExistsItems(cores[i]) : items.join(", "_L1);
            arm += cores[i].tail;
            if (!cores[i].limit.isEmpty() && cores.size() > 1)
                arm = u"SELECT * FROM (%1 LIMIT %2)"_s.arg(arm, cores[i].limit);
            if (i > 0)
                text.sql += query.all[i - 1] ? " UNION ALL "_L1 : " UNION "_L1;
            text.sql += arm;
        }
        if (!query.orderBy.empty())
            text.sql += OrderBy(query, cores);
        for (const Core &core : cores)
            CheckGroups(core);
        if (cores.size() == 1 && !cores.front().limit.isEmpty())
            text.sql += " LIMIT "_L1 + cores.front().limit;
        if (text.sql.size() > kMaxSql)
            Refuse(u"A query this large"_s, query.place);
        return text;
    }

    // EXISTS needs a row, whatever it holds; an aggregate makes a row of its own.
    static QString ExistsItems(const Core &core)
    {
        QStringList items;
        for (const Fragment &item : core.items)
            items.append(item.sql);
        return items.isEmpty() || !core.scope->aggregated ? u"1"_s : items.join(", "_L1);
    }

    QList<Column> Columns(const Query &query, std::vector<Core> &cores, Use use, const QList<const Column *> &store,
                          const QString &storeTable)
    {
        QList<Column> columns;
        for (qsizetype i = 0; i < cores.front().items.size(); ++i) {
            Column column;
            column.name = cores.front().names[i];
            column.trimmed = column.noCase = true;
            for (const Core &core : cores)
                column.type = Unify(column.type, core.items[i].type);
            for (Core &core : cores) {
                Fragment &item = core.items[i];
                if (!store.isEmpty())
                    item = storeTable.isEmpty() ? Convert(item, store[i]->type, Purpose::Assign, query.place)
                                                : Store(item, *store[i], storeTable, query.place);
                else if (cores.size() > 1)
                    item = Harmonise(item, column.type, query.place);
                column.trimmed &= item.trimmed || item.IsNull();
                if (item.IsNull())
                    item.type = column.type;
            }
            column.noCase = (use == Use::Derived && column.type.IsText()) || cores.front().items[i].noCase;
            if (use == Use::Derived) {
                const auto same = [&column](const Column &other) {
                    return other.name.compare(column.name, Qt::CaseInsensitive) == 0;
                };
                if (column.name.isEmpty())
                    throw Error(Error::Kind::Syntax, 8155, u"No column name was specified for column %1."_s.arg(i + 1),
                                query.place.line, query.place.column);
                if (std::any_of(columns.cbegin(), columns.cend(), same))
                    throw Error(Error::Kind::Syntax, 8156, u"The column '%1' was specified multiple times."_s.arg(column.name),
                                query.place.line, query.place.column, column.name);
            }
            columns.append(column);
        }
        return columns;
    }

    QString OrderBy(const Query &query, std::vector<Core> &cores)
    {
        QStringList texts;
        Core &first = cores.front();
        for (const OrderItem &item : query.orderBy) {
            const Expr &expr = *item.expr;
            qsizetype position = -1;
            if (expr.kind == Kind::Integer) {
                position = expr.text.toLongLong() - 1;
                if (position < 0 || position >= first.items.size())
                    throw Error(Error::Kind::Syntax, 108,
                                u"The ORDER BY position number %1 is out of range of the number of items in the select list."_s
                                    .arg(expr.text),
                                expr.place.line, expr.place.column, expr.text);
            } else if (expr.kind == Kind::Name && expr.qualifier.isEmpty()) {
                for (qsizetype i = 0; i < first.names.size() && position < 0; ++i) {
                    if (first.names[i].compare(expr.text, Qt::CaseInsensitive) == 0)
                        position = i;
                }
            }
            QString text;
            if (position >= 0) {
                const Fragment &target = first.items[position];
                text = QString::number(position + 1);
                if (target.type.IsText() && !target.noCase)
                    text += " COLLATE NOCASE"_L1;
            } else if (cores.size() > 1) {
                throw Error(Error::Kind::Syntax, 104,
                            u"ORDER BY items must appear in the select list if the statement contains a UNION operator."_s,
                            expr.place.line, expr.place.column, expr.text);
            } else {
                Scope *const outer = std::exchange(scope, first.scope.get());
                scope->clause = Clause::OrderBy;
                const Fragment value = Translate(expr);
                scope = outer;
                if (value.literal || value.sql.startsWith(u'?'))
                    throw Error(Error::Kind::Syntax, 408,
                                u"A constant expression was encountered in the ORDER BY list, position %1."_s.arg(
                                    texts.size() + 1),
                                expr.place.line, expr.place.column, expr.text);
                text = Distinct(value).sql;
            }
            texts.append(text + (item.descending ? " DESC"_L1 : ""_L1));
        }
        return " ORDER BY "_L1 + texts.join(", "_L1);
    }

    // ---- changes

    // A value on its way into a column.
    Fragment Store(const Fragment &value, const Column &column, const QString &table, Place place)
    {
        if (column.rowId && !column.identity) {
            if (value.IsNull())
                throw Error(Error::Kind::NullValue, 515,
                            u"Cannot insert the value NULL into column '%1', table '%2'; column does not allow nulls."_s.arg(
                                column.name, table),
                            place.line, place.column, column.name);
            const Fragment stored = ToInteger(value, column.type);
            if (stored.literal)
                return stored;
            return Atom(u"cx_required(%1, %2, %3)"_s.arg(stored.sql, QuoteText(column.name), QuoteText(table)), column.type);
        }
        if (column.type.IsInteger() && value.type.IsUnknown())
            return value; // NULL, or a value of another tool's table: the column's check decides
        return Convert(value, column.type, Purpose::Store, place);
    }

    const Table &Target(const QString &name, Place place)
    {
        const Table &table = ResolveTable(name, place);
        if (table.view)
            Refuse(u"A change through the view %1"_s.arg(table.name), place);
        return table;
    }
    static const Column &TargetColumn(const Table &table, const QString &name, Place place)
    {
        const Column *column = table.Find(name);
        if (!column)
            Unknown(207, u"Invalid column name '%1'."_s.arg(name), place, name);
        return *column;
    }

    void Insert(const InsertStatement &statement)
    {
        const Table &table = Target(statement.table, statement.place);
        QList<const Column *> columns;
        for (const QString &name : statement.columns) {
            const Column &column = TargetColumn(table, name, statement.place);
            if (columns.contains(&column))
                throw Error(Error::Kind::Syntax, 264, u"The column name '%1' is specified more than once in the SET clause or "
                            "column list of an INSERT."_s.arg(name), statement.place.line, statement.place.column, name);
            columns.append(&column);
        }
        const bool defaults = statement.rows.empty() && !statement.query;
        if (columns.isEmpty() && !defaults) {
            for (const Column &column : table.columns) {
                if (!column.identity)
                    columns.append(&column);
            }
        }
        for (const Column &column : table.columns) {
            const bool given = columns.contains(&column);
            if (column.identity) {
                result.identityTable = table.name;
                result.identityGiven = given;
            } else if (column.rowId && !given) {
                throw Error(Error::Kind::NullValue, 515,
                            u"Cannot insert the value NULL into column '%1', table '%2'; column does not allow nulls."_s.arg(
                                column.name, table.name),
                            statement.place.line, statement.place.column, column.name);
            }
        }
        QString values;
        if (defaults) {
            result.sql = u"INSERT INTO %1 DEFAULT VALUES"_s.arg(TableName(table));
            return;
        }
        if (statement.query) {
            values = TranslateQuery(*statement.query, Use::Insert, columns, table.name).sql;
        } else {
            values = "VALUES "_L1 + Rows(statement, columns, table.name);
        }
        if (columns.isEmpty()) { // every value was DEFAULT
            result.sql = u"INSERT INTO %1 DEFAULT VALUES"_s.arg(TableName(table));
            return;
        }
        QStringList names;
        for (const Column *column : std::as_const(columns))
            names.append(QuoteName(column->name));
        result.sql = u"INSERT INTO %1 (%2) %3"_s.arg(TableName(table), names.join(", "_L1), values);
    }

    QString Rows(const InsertStatement &statement, QList<const Column *> &columns, const QString &table)
    {
        QStringList rows;
        QList<const Column *> kept = columns;
        for (const std::vector<ExprPtr> &row : statement.rows) {
            if (qsizetype(row.size()) != columns.size())
                throw Error(Error::Kind::Syntax, qsizetype(row.size()) < columns.size() ? 109 : 110,
                            u"There are %1 columns in the INSERT statement than values specified in the VALUES clause."_s.arg(
                                qsizetype(row.size()) < columns.size() ? u"more"_s : u"fewer"_s),
                            statement.place.line, statement.place.column);
            QStringList values;
            for (qsizetype i = 0; i < columns.size(); ++i) {
                const Expr *value = row[size_t(i)].get();
                if (value) {
                    values.append(Store(Translate(*value), *columns[i], table, value->place).sql);
                    continue;
                }
                if (statement.rows.size() > 1)
                    Refuse(u"DEFAULT among several rows"_s, statement.place);
                kept.removeOne(columns[i]); // SQLite has no word for it: the column is left out
            }
            rows.append(u'(' + values.join(", "_L1) + u')');
        }
        columns = kept;
        return rows.join(", "_L1);
    }

    // The position of the table to change among the sources; it is added when FROM does not name it.
    QString PrepareFrom(const QString &target, const std::vector<std::unique_ptr<TableRef>> &from, const Table *&table,
                        Place place, QString &alias)
    {
        const TableRef *found = nullptr;
        for (const std::unique_ptr<TableRef> &ref : from)
            found = found ? found : FindTarget(*ref, target);
        if (!found) {
            table = &Target(target, place);
            AddSource(target, table->columns, place);
            alias = SqlAlias(target);
            return u"%1 AS %2 JOIN %3"_s.arg(TableName(*table), QuoteName(alias), FromList(from));
        }
        table = &Target(found->name, place);
        alias = SqlAlias(found->alias.isEmpty() ? found->name : found->alias);
        return FromList(from);
    }
    static const TableRef *FindTarget(const TableRef &ref, const QString &target)
    {
        if (ref.kind == TableRef::Kind::Join) {
            const TableRef *left = FindTarget(*ref.left, target);
            return left ? left : FindTarget(*ref.right, target);
        }
        const bool same = (ref.alias.isEmpty() ? ref.name : ref.alias).compare(target, Qt::CaseInsensitive) == 0
            || (ref.kind == TableRef::Kind::Table && ref.name.compare(target, Qt::CaseInsensitive) == 0);
        return ref.kind == TableRef::Kind::Table && same ? &ref : nullptr;
    }

    Fragment AssignedValue(const Assignment &assignment, const Table &table, const Column *&column)
    {
        column = &TargetColumn(table, assignment.column, assignment.place);
        if (column->identity)
            throw Error(Error::Kind::Check, 8102, u"Cannot update identity column '%1'."_s.arg(column->name),
                        assignment.place.line, assignment.place.column, column->name);
        if (!assignment.value)
            Refuse(u"DEFAULT in an UPDATE"_s, assignment.place);
        return Store(Translate(*assignment.value), *column, table.name, assignment.place);
    }

    void Update(const UpdateStatement &statement)
    {
        Scope local;
        scope = &local;
        const Table *table = nullptr;
        QStringList assignments;
        if (statement.from.empty()) {
            table = &Target(statement.target, statement.place);
            scope->sources.append({statement.target, table->name, table->columns});
            for (const Assignment &assignment : statement.assignments) {
                const Column *column = nullptr;
                const QString value = AssignedValue(assignment, *table, column).sql;
                assignments.append(QuoteName(column->name) + " = "_L1 + value);
            }
            result.sql = u"UPDATE %1 SET %2"_s.arg(TableName(*table), assignments.join(", "_L1));
            if (statement.where)
                result.sql += " WHERE "_L1 + Translate(*statement.where).sql;
            return;
        }
        // The joined rows are worked out first, with the values; SQLite's UPDATE then finds its rows by number.
        QString alias;
        const QString from = PrepareFrom(statement.target, statement.from, table, statement.place, alias);
        QString values;
        for (const Assignment &assignment : statement.assignments) {
            const Column *column = nullptr;
            const QString value = AssignedValue(assignment, *table, column).sql;
            const QString name = u"\"#%1\""_s.arg(assignments.size() + 1);
            values += u", "_s + value + " AS "_L1 + name;
            assignments.append(QuoteName(column->name) + " = \"#u\"."_L1 + name);
        }
        const QString where = statement.where ? " WHERE "_L1 + Translate(*statement.where).sql : QString();
        result.sql = u"UPDATE %1 SET "_s.arg(TableName(*table)) + assignments.join(", "_L1) + " FROM (SELECT "_L1
            + QuoteName(alias) + "._rowid_ AS \"#0\""_L1 + values + " FROM "_L1 + from + where + ") AS \"#u\" WHERE "_L1
            + QuoteName(table->name) + "._rowid_ = \"#u\".\"#0\""_L1;
    }

    void Delete(const DeleteStatement &statement)
    {
        Scope local;
        scope = &local;
        const Table *table = nullptr;
        if (statement.from.empty()) {
            table = &Target(statement.target, statement.place);
            scope->sources.append({statement.target, table->name, table->columns});
            result.sql = "DELETE FROM "_L1 + TableName(*table);
            if (statement.where)
                result.sql += " WHERE "_L1 + Translate(*statement.where).sql;
            return;
        }
        QString alias;
        const QString from = PrepareFrom(statement.target, statement.from, table, statement.place, alias);
        const QString where = statement.where ? " WHERE "_L1 + Translate(*statement.where).sql : QString();
        result.sql = "DELETE FROM "_L1 + TableName(*table) + " WHERE _rowid_ IN (SELECT "_L1 + QuoteName(alias)
            + "._rowid_ FROM "_L1 + from + where + u')';
    }

    void Select(const SelectStatement &statement)
    {
        if (!statement.assigns) {
            QueryText text = TranslateQuery(statement.query, Use::Result);
            result.sql = text.sql;
            result.columns = text.columns;
            return;
        }
        // SELECT @x = ...: the values are converted to their variables' types here.
        const SelectCore &core = statement.query.arms.front();
        QList<Column> targets;
        QList<const Column *> store;
        for (const SelectItem &item : core.items) {
            const Variable *variable = variables(item.assignedTo);
            if (!variable)
                Unknown(137, u"Must declare the scalar variable \"%1\"."_s.arg(item.assignedTo), item.place, item.assignedTo);
            Column column;
            column.name = item.assignedTo;
            column.type = variable->type;
            targets.append(column);
            if (!core.from.empty() && Mentions(*item.expr, core))
                Refuse(u"A variable gathered over several rows"_s, item.place);
        }
        for (const Column &column : targets)
            store.append(&column);
        QueryText text = TranslateQuery(statement.query, Use::Result, store);
        result.sql = text.sql;
        result.columns = targets;
    }

    // Whether an expression reads a variable that the same SELECT assigns.
    static bool Mentions(const Expr &expr, const SelectCore &core)
    {
        if (expr.kind == Kind::Variable) {
            return std::any_of(core.items.cbegin(), core.items.cend(),
                               [&expr](const SelectItem &item) { return item.assignedTo == expr.text; });
        }
        return std::any_of(expr.args.cbegin(), expr.args.cend(),
                           [&core](const ExprPtr &arg) { return arg && Mentions(*arg, core); });
    }
};

Translator::Translator(Catalogue &catalogue, Lookup variables, TableLookup tables)
    : worker_(std::make_unique<Worker>(catalogue, std::move(variables), std::move(tables), false))
{
}

Translator::~Translator() = default;

Translation Translator::Select(const SelectStatement &statement)
{
    worker_->Select(statement);
    return worker_->result;
}

Translation Translator::Insert(const InsertStatement &statement)
{
    worker_->Insert(statement);
    return worker_->result;
}

Translation Translator::Update(const UpdateStatement &statement)
{
    worker_->Update(statement);
    return worker_->result;
}

Translation Translator::Delete(const DeleteStatement &statement)
{
    worker_->Delete(statement);
    return worker_->result;
}

Translation Translator::Value(const Expr &expr, const Type &target)
{
    Fragment value = worker_->Translate(expr);
    if (!target.IsUnknown())
        value = worker_->Convert(value, target, Worker::Purpose::Assign, expr.place);
    Column column;
    column.type = value.type;
    worker_->result.sql = "SELECT "_L1 + value.sql;
    worker_->result.columns = {column};
    return worker_->result;
}

Translation Translator::Condition(const Expr &expr)
{
    worker_->result.sql = "SELECT "_L1 + worker_->Translate(expr).sql;
    return worker_->result;
}

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

} // namespace

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
            throw Error(Error::Kind::Syntax, 2705,
                        u"Column names in each table must be unique. Column name '%1' in table '%2' is specified more than "
                        "once."_s.arg(definition.name, table_),
                        definition.place.line, definition.place.column, definition.name);
        Column column;
        column.name = definition.name;
        column.type = definition.type;
        Know(column);
    }

    QString Constraint(const TableConstraint &constraint)
    {
        for (const QString &column : constraint.columns) {
            if (!Knows(column))
                Unknown(1911, u"Column name '%1' does not exist in the target table."_s.arg(column), constraint.place, column);
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
            return name + " INTEGER "_L1 + NamedConstraint(keyName, u"PRIMARY KEY"_s)
                + (column.identity ? " AUTOINCREMENT"_L1 : ""_L1);
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
                                                   Translator::Worker::Purpose::Store, column.place);
            const bool constant = column.defaultValue->kind == Kind::Integer || column.defaultValue->kind == Kind::Decimal
                || column.defaultValue->kind == Kind::String || column.defaultValue->kind == Kind::Null;
            if (adding && !constant)
                Refuse(u"A computed default for a new column"_s, column.place);
            text += " DEFAULT "_L1 + (adding ? value.sql : u'(' + value.sql + u')');
        }
        text += TypeCheck(column);
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

    QList<std::pair<QString, QString>> exactTypes;

private:
    bool Knows(const QString &name) const
    {
        const QList<Column> &columns = scope_.sources.first().columns;
        return std::any_of(columns.cbegin(), columns.cend(), [&name](const Column &column) {
            return column.name.compare(name, Qt::CaseInsensitive) == 0;
        });
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
                    Unknown(1770, u"Foreign key references invalid column '%1' in referenced table '%2'."_s.arg(
                                      column, reference.table), constraint.place, column);
            }
        }
        return u"REFERENCES "_s + QuoteName(reference.table)
            + (reference.columns.isEmpty() ? QString() : u" ("_s + NameList(reference.columns) + u')') + reference.actions;
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
            return column.type.length < 0 ? QString()
                                          : check(kLengthCheck, u"length(%1) <= %2"_s.arg(name, QString::number(column.type.length)));
        case Type::Kind::Unknown:
        case Type::Kind::Binary:
            break;
        }
        return {};
    }

    Catalogue &catalogue_;
    Translator::Worker worker_;
    Scope scope_;
    const QString table_;
    const bool temporary_;
};

Definition TranslateTable(Catalogue &catalogue, const CreateTableStatement &statement, const QString &name, bool temporary)
{
    TableWriter writer(catalogue, name, temporary);
    const TableConstraint *key = nullptr;
    QList<const TableConstraint *> others;
    const auto sort = [&](const TableConstraint &constraint, bool atColumn) {
        if (constraint.kind == TableConstraint::Kind::PrimaryKey) {
            if (key)
                throw Error(Error::Kind::Syntax, 8110, u"Cannot add multiple PRIMARY KEY constraints to table '%1'."_s.arg(name),
                            constraint.place.line, constraint.place.column);
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

    // A whole number that is the key becomes SQLite's row number, and so does an identity column, which is unique anyway.
    const ColumnDefinition *rowId = key ? nullptr : identity;
    for (const ColumnDefinition &column : statement.columns) {
        if (key && key->columns.size() == 1 && key->columns.first().compare(column.name, Qt::CaseInsensitive) == 0
            && column.type.IsInteger() && column.type.kind != Type::Kind::Bit)
            rowId = &column;
    }
    if (identity && identity != rowId)
        Refuse(u"An identity column beside another primary key"_s, identity->place);

    QStringList parts;
    for (const ColumnDefinition &column : statement.columns) {
        const bool inKey = key && key->columns.contains(column.name, Qt::CaseInsensitive);
        parts.append(writer.ColumnText(column, &column == rowId, key ? key->name : QString(), column.notNull || inKey, false));
    }
    if (key && !rowId)
        parts.append(writer.Constraint(*key));
    for (const TableConstraint *constraint : std::as_const(others))
        parts.append(writer.Constraint(*constraint));
    Definition definition;
    definition.statements.append(
        u"CREATE %1TABLE %2 (\n  "_s.arg(temporary ? u"TEMP "_s : QString(), QuoteName(name)) + parts.join(",\n  "_L1) + "\n)"_L1);
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
            throw Error(Error::Kind::NullValue, 4901,
                        u"Column '%1' cannot be added to table '%2' because it does not allow nulls and has no default."_s.arg(
                            column.name, table.name),
                        column.place.line, column.place.column, column.name);
        definition.statements.append("ALTER TABLE "_L1 + QuoteName(table.name) + " ADD COLUMN "_L1
                                     + writer.ColumnText(column, false, {}, column.notNull, true));
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
    Translator::Worker worker(catalogue, nullptr, nullptr, true);
    return u"CREATE VIEW %1 AS\n"_s.arg(QuoteName(statement.name))
        + worker.TranslateQuery(statement.query, Translator::Worker::Use::Derived).sql;
}

QList<Column> DescribeView(Catalogue &catalogue, const CreateViewStatement &statement)
{
    Translator::Worker worker(catalogue, nullptr, nullptr, true);
    return worker.TranslateQuery(statement.query, Translator::Worker::Use::Derived).columns;
}

} // namespace embedded
