// SPDX-License-Identifier: Apache-2.0
#include "embedded/TranslatorWorker.h"

namespace embedded {

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

Fragment NullLiteral(const Type &type)
{
    Fragment fragment = Atom(u"NULL"_s, type);
    fragment.literal = QVariant();
    return fragment;
}

QString StoredDate(const QString &arguments)
{
    return u"replace(replace(strftime('%Y-%m-%d %H:%M:%f', %1), ' 00:00:00.000', ''), '.000', '')"_s.arg(arguments);
}

bool Same(const QString &a, QLatin1StringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

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

Translator::Translator(Catalogue &catalogue, Lookup variables, TableLookup tables)
    : worker_(std::make_unique<Worker>(catalogue, std::move(variables), std::move(tables), false))
{}

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

} // namespace embedded
