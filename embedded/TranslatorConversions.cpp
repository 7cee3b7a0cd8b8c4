// SPDX-License-Identifier: Apache-2.0
#include "embedded/TranslatorWorker.h"

namespace embedded {

namespace {

QString TrimmedRight(QString text)
{
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

} // namespace

void Worker::ConversionError(const QVariant &value, const QString &type)
{
    Fail(Error::Kind::Check, 245,
         u"Conversion failed when converting the varchar value '%1' to data type %2."_s.arg(value.toString(), type));
}

void Worker::DateError()
{
    Fail(Error::Kind::Check, 241, u"Conversion failed when converting date and/or time from character string."_s);
}

void Worker::RefuseInDefinition(const QString &what, Place place) const
{
    Refuse(what + u" in a view, a default or a check"_s, place);
}

Fragment Worker::Trimmed(const Fragment &fragment) const
{
    if (fragment.trimmed || !(fragment.type.IsText() || fragment.type.IsUnknown()) || fragment.IsNull())
        return fragment;
    if (fragment.literal)
        return TextLiteral(TrimmedRight(fragment.literal->toString()));
    Fragment trimmed = Atom(u"rtrim(%1, ' ')"_s.arg(fragment.sql), fragment.type);
    trimmed.trimmed = true;
    return trimmed;
}

Fragment Worker::ToNumber(const Fragment &value)
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

double Worker::Days(const Fragment &date)
{
    const QDateTime moment = DateFromText(date.literal->toString());
    return double(QDate(1900, 1, 1).daysTo(moment.date())) + moment.time().msecsSinceStartOfDay() / 86400000.0;
}

Fragment Worker::ToInteger(const Fragment &value, const Type &type)
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

Fragment Worker::ToBit(const Fragment &value)
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
        return Atom(
            u"CASE lower(trim(%1)) WHEN 'true' THEN 1 WHEN 'false' THEN 0 ELSE CAST(%1 AS NUMERIC) <> 0 END"_s.arg(
                value.sql),
            Type::Kind::Bit);
    }
    if (value.literal)
        return Bit(value.literal->toDouble() != 0);
    Fragment bit = Atom(Wrap(value, kEqual + 1) + " <> 0"_L1, Type::Kind::Bit);
    bit.precedence = kEqual;
    return bit;
}

Fragment Worker::Bit(bool on)
{
    Fragment bit = NumberLiteral(qlonglong(on));
    bit.type = Type::Kind::Bit;
    return bit;
}

Fragment Worker::ToFloat(const Fragment &value, const Type &type, Purpose purpose)
{
    if (value.IsNull())
        return NullLiteral(type);
    Fragment number = value.type.IsUnknown() ? value : ToNumber(value);
    const bool wasFloat = number.type.IsFloat();
    const bool scaled = type.kind == Type::Kind::Decimal || type.kind == Type::Kind::Money;
    if (purpose != Purpose::Compare && scaled &&
        !(wasFloat && number.type.kind == type.kind && number.type.scale <= type.scale) && !number.type.IsInteger())
        number = Atom(u"round(%1, %2)"_s.arg(number.sql, QString::number(type.scale)), type);
    else if (purpose == Purpose::Explicit && !wasFloat)
        number = Atom(u"CAST(%1 AS REAL)"_s.arg(number.sql), type);
    else
        number.literal.reset(); // its text stays the whole number's
    number.type = type;
    return number;
}

Fragment Worker::ToText(const Fragment &value, const Type &type, Purpose purpose, int style, Place place)
{
    Fragment text = AsText(value, style, place);
    if (purpose == Purpose::Store)
        text = Trimmed(text);
    const bool cuts = (purpose == Purpose::Explicit || purpose == Purpose::Assign) && type.length >= 0 &&
                      !(value.type.IsText() && value.type.length >= 0 && value.type.length <= type.length);
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

Fragment Worker::AsText(const Fragment &value, int style, Place place)
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
        const QString format = value.type.kind == Type::Kind::Money     ? u"%.2f"_s
                               : value.type.kind == Type::Kind::Decimal ? u"%.%1f"_s.arg(value.type.scale)
                                                                        : u"%.6g"_s;
        text = Atom(
            u"CASE WHEN %1 IS NOT NULL THEN format('%2', %3) END"_s.arg(Wrap(value, kEqual + 1), format, value.sql),
            Type::Kind::Text);
        if (value.literal && value.type.kind == Type::Kind::Float)
            text = TextLiteral(QString::asprintf("%.6g", value.literal->toDouble()));
    } else {
        text = Atom(u"CAST(%1 AS TEXT)"_s.arg(value.sql), Type::Kind::Text);
    }
    text.trimmed = true;
    return text;
}

Fragment Worker::DateAsText(const Fragment &value, int style, Place place) const
{
    static const QHash<int, QString> formats = {{101, u"%m/%d/%Y"_s},
                                                {103, u"%d/%m/%Y"_s},
                                                {104, u"%d.%m.%Y"_s},
                                                {105, u"%d-%m-%Y"_s},
                                                {108, u"%H:%M:%S"_s},
                                                {111, u"%Y/%m/%d"_s},
                                                {112, u"%Y%m%d"_s},
                                                {20, u"%Y-%m-%d %H:%M:%S"_s},
                                                {23, u"%Y-%m-%d"_s},
                                                {120, u"%Y-%m-%d %H:%M:%S"_s},
                                                {121, u"%Y-%m-%d %H:%M:%f"_s},
                                                {126, u"%Y-%m-%dT%H:%M:%S"_s},
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

Fragment Worker::ToDate(const Fragment &value, const Type &type, int style, Place place)
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
    const QString date =
        style > 0 ? u"cx_date(%1, %2)"_s.arg(value.sql, QString::number(style)) : u"cx_date(%1)"_s.arg(value.sql);
    return Atom(type.kind == Type::Kind::Date ? u"substr(%1, 1, 10)"_s.arg(date) : date, type);
}

Fragment Worker::Convert(const Fragment &value, const Type &type, Purpose purpose, Place place, int style)
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

} // namespace embedded
