// SPDX-License-Identifier: Apache-2.0
#include "framework/grid/qsGridQuery.h"

#include <QDate>
#include <QDateTime>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace {

// A LIKE pattern has at most 4000 characters on SQL Server; no column of a list holds that much.
constexpr int kLongestPattern = 4000;
// Days up to 4/1/1900 stand for "no date" in the tables.
const QDate kFirstRealDate(1900, 1, 5);

// "T.cCode" and "[cCode]" give a column cCode, "a + b as cText" gives cText.
QString ResultName(const QString &expression)
{
    QString name = expression.trimmed();
    if (const qsizetype as = name.lastIndexOf(QLatin1String(" as "), -1, Qt::CaseInsensitive); as >= 0)
        name = name.mid(as + 4).trimmed();
    else
        name = name.mid(name.lastIndexOf(u'.') + 1);
    if (name.startsWith(u'[') && name.endsWith(u']'))
        name = name.mid(1, name.size() - 2);
    return name;
}

QString WithoutAlias(const QString &expression)
{
    const qsizetype as = expression.lastIndexOf(QLatin1String(" as "), -1, Qt::CaseInsensitive);
    return as < 0 ? expression.trimmed() : expression.left(as).trimmed();
}

QString EscapedPattern(const QString &text)
{
    QString pattern;
    pattern.reserve(text.size() + 8);
    pattern += u'%';
    for (const QChar c : text) {
        if (c == u'%' || c == u'_' || c == u'[' || c == u'\\')
            pattern += u'\\';
        pattern += c;
    }
    return pattern + u'%';
}

// "7/2026" and "2026" mean the whole month or year; nothing else is taken for a date.
std::optional<std::pair<QDate, QDate>> DateRange(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*(?:(?:(\\d{1,2})/)?(\\d{1,2})/)?(\\d{4})\\s*$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const int day = match.captured(1).toInt(), month = match.captured(2).toInt(), year = match.captured(3).toInt();
    const QDate from(year, month ? month : 1, day ? day : 1);
    if (!from.isValid() || from < kFirstRealDate)
        return std::nullopt;
    return std::pair(from, day ? from.addDays(1) : month ? from.addMonths(1) : from.addYears(1));
}

QDate DateOf(const QVariant &value)
{
    if (value.userType() == QMetaType::QString)
        return QDate::fromString(value.toString().left(10), Qt::ISODate);
    return value.toDate();
}

} // namespace

QString GridText(const TGridColumn &column, const QVariant &value)
{
    if (column.display)
        return column.display(value);
    for (const auto &[candidate, text] : column.displayValues) {
        if (candidate == value || (candidate.isNull() && value.isNull()))
            return text;
    }
    if (column.kind == TGridColumn::Kind::Bool)
        return value.toBool() ? QStringLiteral("Yes") : QStringLiteral("No");
    if (value.isNull())
        return {};
    switch (column.kind) {
    case TGridColumn::Kind::Notes:
        return QStringLiteral("Yes");
    case TGridColumn::Kind::Float: {
        bool isNumber = false;
        const double number = value.toDouble(&isNumber);
        if (!isNumber)
            return value.toString();
        const QString text = QString::number(number, 'f', column.decimals);
        const bool minusNothing =
            number < 0 && std::none_of(text.begin(), text.end(), [](QChar c) { return c >= u'1' && c <= u'9'; });
        return minusNothing ? text.mid(1) : text;
    }
    case TGridColumn::Kind::Date: {
        const QDate date = DateOf(value);
        return date < kFirstRealDate ? QString() : date.toString(QStringLiteral("dd/MM/yyyy"));
    }
    default:
        return value.toString();
    }
}

TGridQuery::TGridQuery(const TListSource &source, const QList<TGridColumn> &columns, const QString &sortField,
                       TGridOrder order, const QString &text, const QList<TGridColumn> &searched)
    : from_(source.from)
    , key_(source.key)
    , order_(order)
    , where_{source.where.trimmed(), source.params}
{
    const auto add = [this](const QString &field) {
        if (!field.trimmed().isEmpty() && FieldIndex(ResultName(field)) < 0) {
            exprs_ += field.trimmed();
            names_ += ResultName(field);
        }
    };
    for (const TGridColumn &column : columns)
        add(column.field);
    for (const QString &field : source.columns)
        add(field);
    add(key_);
    if (FieldIndex(sortField) < 0)
        add(sortField);
    keyIndex_ = FieldIndex(key_);
    sortIndex_ = sortField.isEmpty() ? keyIndex_ : FieldIndex(sortField);
    sortIsKey_ = sortIndex_ == keyIndex_;
    if (!text.isEmpty())
        filter_ = Holds(text, searched, QStringLiteral("qsFilter"));
}

int TGridQuery::FieldIndex(QStringView name) const
{
    const QString wanted = ResultName(name.toString());
    for (int i = 0; i < names_.size(); ++i) {
        if (names_[i].compare(wanted, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QString TGridQuery::Expression(QStringView field) const
{
    const int index = FieldIndex(field);
    return index < 0 ? field.toString() : WithoutAlias(exprs_[index]);
}

TGridQuery::Condition TGridQuery::Statement(const QString &head, const QList<Condition> &conditions,
                                            const QString &tail) const
{
    Condition statement;
    QStringList parts;
    for (const Condition &condition : conditions) {
        if (condition.sql.isEmpty())
            continue;
        parts += u'(' + condition.sql + u')';
        statement.params.insert(condition.params);
    }
    statement.sql = head + QStringLiteral(" from ") + from_;
    if (!parts.isEmpty())
        statement.sql += QStringLiteral(" where ") + parts.join(QStringLiteral(" and "));
    statement.sql += tail;
    return statement;
}

QList<TGridRow> TGridQuery::Read(int top, const QList<Condition> &conditions, const QString &tail) const
{
    const QString head = top ? QStringLiteral("select top %1 ").arg(top) : QStringLiteral("select ");
    const Condition statement = Statement(head + exprs_.join(QStringLiteral(", ")), conditions, tail);
    TDbRows result = MainConnection().Select(statement.sql, statement.params);
    QList<TGridRow> rows;
    rows.reserve(result.rows.size());
    for (QVariantList &values : result.rows) {
        const int key = values.value(keyIndex_).toInt();
        rows.append({key, std::move(values)});
    }
    return rows;
}

QList<TGridRow> TGridQuery::Walk(bool forward, const TGridRow *from, bool inclusive, int limit,
                                 const Condition &extra) const
{
    const bool growing = forward == (order_ == TGridOrder::Ascending); // values grow on the way
    const QString than = growing ? QStringLiteral(" > ") : QStringLiteral(" < ");
    const QString keyThan = (inclusive ? than.chopped(1) + u'=' : than.chopped(1)) + QStringLiteral(" :qsKey");
    const QString sort = WithoutAlias(exprs_[sortIndex_]);

    // A comparison never holds for NULL, so the rows without a sort value are a stretch of their own.
    QList<Condition> stretches;
    if (!from) {
        stretches.append(Condition{});
    } else if (sortIsKey_) {
        stretches.append({key_ + keyThan, {{QStringLiteral("qsKey"), from->key}}});
    } else if (const QVariant value = from->values.value(sortIndex_); value.isNull()) {
        stretches.append(
            {sort + QStringLiteral(" is null and ") + key_ + keyThan, {{QStringLiteral("qsKey"), from->key}}});
        if (growing)
            stretches.append({sort + QStringLiteral(" is not null"), {}});
    } else {
        stretches.append({sort + than.chopped(1) + QStringLiteral("= :qsSort and (") + sort + than +
                              QStringLiteral(":qsSort or ") + key_ + keyThan + u')',
                          {{QStringLiteral("qsSort"), value}, {QStringLiteral("qsKey"), from->key}}});
        if (!growing)
            stretches.append({sort + QStringLiteral(" is null"), {}});
    }

    const QString direction = growing ? QString() : QStringLiteral(" desc");
    const QString tail = QStringLiteral(" order by ") +
                         (sortIsKey_ ? QString() : sort + direction + QStringLiteral(", ")) + key_ + direction;
    QList<TGridRow> rows;
    for (const Condition &stretch : std::as_const(stretches)) {
        const int wanted = limit - int(rows.size());
        if (wanted <= 0)
            break;
        rows += Read(wanted, {where_, filter_, extra, stretch}, tail);
    }
    if (!forward)
        std::reverse(rows.begin(), rows.end());
    return rows;
}

std::optional<TGridRow> TGridQuery::At(int key) const
{
    const QList<TGridRow> rows =
        Read(0, {where_, filter_, {key_ + QStringLiteral(" = :qsKey"), {{QStringLiteral("qsKey"), key}}}}, {});
    return rows.isEmpty() ? std::nullopt : std::optional(rows.first());
}

std::optional<TGridRow> TGridQuery::Find(const QString &text, const QList<TGridColumn> &searched, const TGridRow *from,
                                         bool inclusive, bool backwards) const
{
    const QList<TGridRow> rows = Walk(!backwards, from, inclusive, 1, Holds(text, searched, QStringLiteral("qsFind")));
    return rows.isEmpty() ? std::nullopt : std::optional(rows.first());
}

TGridQuery::Slice TGridQuery::Count(std::optional<int> after, int limit) const
{
    Condition further;
    if (after)
        further = {key_ + QStringLiteral(" > :qsKey"), {{QStringLiteral("qsKey"), *after}}};
    const QString name = names_[keyIndex_];
    const Condition inner = Statement(QStringLiteral("select top %1 ").arg(limit) + key_, {where_, filter_, further},
                                      QStringLiteral(" order by ") + key_);
    const TDbRows rows =
        MainConnection().Select(QStringLiteral("select count(*) as nRows, max(") + name +
                                    QStringLiteral(") as nLast from (") + inner.sql + QStringLiteral(") as T"),
                                inner.params);
    return {rows.Value(0, u"nRows").toInt(), rows.Value(0, u"nLast").toInt()};
}

QList<int> TGridQuery::Existing(const QList<int> &keys) const
{
    constexpr int kChunk = 200;
    QSet<int> found;
    for (int start = 0; start < keys.size(); start += kChunk) {
        QStringList list;
        for (const int key : keys.mid(start, kChunk))
            list += QString::number(key);
        const Condition chosen{key_ + QStringLiteral(" in (") + list.join(u',') + u')', {}};
        for (const TGridRow &row : Read(0, {where_, chosen}, {}))
            found.insert(row.key);
    }
    QList<int> kept;
    std::copy_if(keys.begin(), keys.end(), std::back_inserter(kept), [&](int key) { return found.contains(key); });
    return kept;
}

std::optional<TGridRow> TGridQuery::Adopt(const TGridRow &row, const TGridQuery &other) const
{
    TGridRow adopted{row.key, QVariantList(names_.size())};
    for (int i = 0; i < names_.size(); ++i) {
        const int theirs = other.FieldIndex(names_[i]);
        if (theirs >= 0)
            adopted.values[i] = row.values.value(theirs);
        else if (i == sortIndex_)
            return std::nullopt;
    }
    return adopted;
}

// Columns whose values are shown by another text are searched by the values whose text fits. Ticks and notes hold no
// text.
TGridQuery::Condition TGridQuery::Holds(const QString &text, const QList<TGridColumn> &searched,
                                        const QString &prefix) const
{
    using Kind = TGridColumn::Kind;
    const Condition nothing{QStringLiteral("1 = 0"), {}};
    const QString pattern = EscapedPattern(text);
    if (pattern.size() > kLongestPattern)
        return nothing;

    Condition condition;
    QStringList parts;
    bool patternUsed = false;
    const auto bind = [&](const QVariant &value) {
        const QString name = prefix + QString::number(condition.params.size());
        condition.params.insert(name, value);
        return u':' + name;
    };
    const QString patternName = prefix + QStringLiteral("Like");
    for (const TGridColumn &column : searched) {
        const QString field = Expression(column.field);
        if (!column.displayValues.isEmpty()) {
            for (const auto &[value, shown] : column.displayValues) {
                if (shown.contains(text, Qt::CaseInsensitive))
                    parts += value.isNull() ? field + QStringLiteral(" is null")
                                            : field + QStringLiteral(" = ") + bind(value);
            }
            continue;
        }
        switch (column.kind) {
        case Kind::Text:
            parts += field + QStringLiteral(" like :") + patternName + QStringLiteral(" escape '\\'");
            patternUsed = true;
            break;
        case Kind::Integer:
        case Kind::Float: {
            if (column.display)
                break;
            // A float as text would be "1.23457e+006"; with its decimals it is what the screen shows.
            const QString number =
                column.kind == Kind::Integer
                    ? field
                    : QStringLiteral("cast(%1 as decimal(19,%2))").arg(field).arg(std::clamp(column.decimals, 0, 6));
            parts += QStringLiteral("cast(") + number + QStringLiteral(" as nvarchar(50)) like :") + patternName +
                     QStringLiteral(" escape '\\'");
            patternUsed = true;
            break;
        }
        case Kind::Date:
            if (const auto range = DateRange(text); range && !column.display)
                parts += u'(' + field + QStringLiteral(" >= ") + bind(range->first.startOfDay()) +
                         QStringLiteral(" and ") + field + QStringLiteral(" < ") + bind(range->second.startOfDay()) +
                         u')';
            break;
        case Kind::Bool:
        case Kind::Notes:
            break;
        }
    }
    if (parts.isEmpty())
        return nothing;
    if (patternUsed)
        condition.params.insert(patternName, pattern);
    condition.sql = parts.join(QStringLiteral(" or "));
    return condition;
}
