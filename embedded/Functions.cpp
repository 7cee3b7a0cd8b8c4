// SPDX-License-Identifier: Apache-2.0
#include "embedded/Functions.h"

#include <QLocale>

#include <cmath>

#include "embedded/Database.h"
#include "embedded/Lexer.h"

namespace embedded {

using namespace Qt::StringLiterals;

namespace {

// Reads up to `digits` decimal digits at `at`, -1 when there are none.
int Digits(QStringView text, qsizetype &at, int digits)
{
    int value = 0;
    const qsizetype start = at;
    while (at < text.size() && at - start < digits && text[at] >= u'0' && text[at] <= u'9')
        value = value * 10 + text[at++].unicode() - u'0';
    return at == start ? -1 : value;
}

QTime ReadTime(QStringView text)
{
    qsizetype at = 0;
    const int hour = Digits(text, at, 2);
    if (hour < 0 || at >= text.size() || text[at++] != u':')
        return {};
    const int minute = Digits(text, at, 2);
    int second = 0;
    int milliseconds = 0;
    if (at < text.size() && text[at] == u':') {
        second = Digits(text, ++at, 2);
        if (at < text.size() && (text[at] == u'.' || text[at] == u':')) {
            const qsizetype start = ++at;
            milliseconds = Digits(text, at, 3);
            for (qsizetype digits = at - start; digits < 3; ++digits)
                milliseconds *= 10;
            qsizetype rest = at;
            Digits(text, rest, 6); // finer than a millisecond
            at = rest;
        }
    }
    return at == text.size() ? QTime(hour, minute, second, milliseconds) : QTime();
}

QDateTime ReadIso(QStringView text)
{
    qsizetype at = 0;
    const int year = Digits(text, at, 4);
    if (at != 4)
        return {};
    const bool dashes = at < text.size() && text[at] == u'-';
    if (dashes)
        ++at;
    const int month = Digits(text, at, 2);
    if (dashes && (at >= text.size() || text[at++] != u'-'))
        return {};
    const qsizetype dayStart = at;
    const int day = Digits(text, at, 2);
    if (!dashes && at - dayStart != 2)
        return {};
    const QDate date(year, month, day);
    if (!date.isValid())
        return {};
    if (at == text.size())
        return date.startOfDay();
    if (text[at] != u' ' && text[at] != u'T')
        return {};
    const QTime time = ReadTime(text.mid(at + 1));
    return time.isValid() ? QDateTime(date, time) : QDateTime();
}

// Day, month, year with any one separator, by CONVERT's styles 101 (month first) and 103 to 105.
QDateTime ReadDayFirst(QStringView text, bool monthFirst)
{
    qsizetype at = 0;
    int parts[3] = {};
    for (int i = 0; i < 3; ++i) {
        parts[i] = Digits(text, at, i == 2 ? 4 : 2);
        if (i < 2 && (at >= text.size() || !QStringView(u"/.-").contains(text[at++])))
            return {};
    }
    const QDate date(parts[2], parts[monthFirst ? 0 : 1], parts[monthFirst ? 1 : 0]);
    return date.isValid() && at == text.size() ? date.startOfDay() : QDateTime();
}

bool InRange(const QDateTime &moment)
{
    return moment.isValid() && moment.date().year() >= 1753 && moment.date().year() <= 9999;
}

} // namespace

QString DateText(const QDateTime &moment)
{
    const QDate date = moment.date();
    const QTime time = moment.time();
    QString text =
        u"%1-%2-%3"_s.arg(date.year(), 4, 10, '0'_L1).arg(date.month(), 2, 10, '0'_L1).arg(date.day(), 2, 10, '0'_L1);
    if (time.msecsSinceStartOfDay() != 0)
        text += time.toString(time.msec() ? u" HH:mm:ss.zzz" : u" HH:mm:ss");
    return text;
}

QDateTime DateFromText(const QString &text)
{
    return ReadIso(text);
}

std::optional<QString> CanonicalDate(const QString &text, int style)
{
    const QStringView trimmed = QStringView(text).trimmed();
    if (trimmed.isEmpty())
        return u"1900-01-01"_s;
    QDateTime moment;
    if (style == 101 || (style >= 103 && style <= 105))
        moment = ReadDayFirst(trimmed, style == 101);
    else
        moment = ReadIso(trimmed);
    if (!InRange(moment))
        return {};
    return DateText(moment);
}

std::optional<QString> DateFromDays(double days)
{
    if (!(std::abs(days) < 4e6))
        return {};
    const double whole = std::floor(days);
    const QDate date = QDate(1900, 1, 1).addDays(qint64(whole));
    const qint64 milliseconds = qRound64((days - whole) * 86400000.0);
    const QDateTime moment = milliseconds >= 86400000
                                 ? date.addDays(1).startOfDay()
                                 : QDateTime(date, QTime::fromMSecsSinceStartOfDay(int(milliseconds)));
    if (!InRange(moment))
        return {};
    return DateText(moment);
}

std::optional<QVariant> NumberFromText(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return QVariant(qlonglong(0)); // as the server has it
    bool ok = false;
    const qlonglong whole = trimmed.toLongLong(&ok);
    if (ok)
        return QVariant(whole);
    const double broken = trimmed.toDouble(&ok);
    if (ok && std::isfinite(broken))
        return QVariant(broken);
    return {};
}

namespace {

QVariant Argument(sqlite3_value *value)
{
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
        return qlonglong(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
        return sqlite3_value_double(value);
    case SQLITE_TEXT:
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_value_text(value)), sqlite3_value_bytes(value));
    case SQLITE_BLOB:
        return QByteArray(static_cast<const char *>(sqlite3_value_blob(value)), sqlite3_value_bytes(value));
    default:
        return {};
    }
}

void Give(sqlite3_context *context, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        sqlite3_result_null(context);
        break;
    case QMetaType::LongLong:
        sqlite3_result_int64(context, value.toLongLong());
        break;
    case QMetaType::Double:
        sqlite3_result_double(context, value.toDouble());
        break;
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        sqlite3_result_blob64(context, bytes.constData(), sqlite3_uint64(bytes.size()), SQLITE_TRANSIENT);
        break;
    }
    default: {
        const QByteArray text = value.toString().toUtf8();
        sqlite3_result_text64(context, text.constData() ? text.constData() : "", sqlite3_uint64(text.size()),
                              SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    }
}

// Every function takes values and gives one; what it throws reaches the caller of the statement.
using Function = QVariant (*)(Database &, const QVariantList &);

template <Function F> void Trampoline(sqlite3_context *context, int count, sqlite3_value **values)
{
    Database &database = *static_cast<Database *>(sqlite3_user_data(context));
    try {
        QVariantList arguments;
        arguments.reserve(count);
        for (int i = 0; i < count; ++i)
            arguments.append(Argument(values[i]));
        Give(context, F(database, arguments));
    } catch (const Error &error) {
        database.Defer(error);
        sqlite3_result_error(context, error.what(), -1);
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    }
}

QVariant Date(Database &, const QVariantList &arguments)
{
    const QVariant &value = arguments[0];
    std::optional<QString> result;
    if (value.typeId() == QMetaType::QString)
        result = CanonicalDate(value.toString(), arguments.value(1).toInt());
    else if (value.isValid())
        result = DateFromDays(value.toDouble());
    else
        return {};
    if (!result)
        Fail(Error::Kind::Check, 241, u"Conversion failed when converting date and/or time from character string."_s);
    return *result;
}

QVariant DateAsText(Database &, const QVariantList &arguments)
{
    const QDateTime moment = DateFromText(arguments[0].toString());
    if (!moment.isValid())
        return {};
    const QLocale english(QLocale::C);
    return u"%1 %2 %3 %4"_s.arg(english.toString(moment.date(), u"MMM"_s))
        .arg(moment.date().day(), 2)
        .arg(moment.date().year())
        .arg(english.toString(moment.time(), u"h:mmAP"_s), 7);
}

QVariant Number(Database &, const QVariantList &arguments)
{
    if (arguments[0].typeId() != QMetaType::QString)
        return arguments[0];
    const std::optional<QVariant> number = NumberFromText(arguments[0].toString());
    if (!number)
        Fail(Error::Kind::Check, 245,
             u"Conversion failed when converting the varchar value '%1' to a number."_s.arg(arguments[0].toString()));
    return *number;
}

QVariant WholeNumber(Database &database, const QVariantList &arguments)
{
    const QVariant number = Number(database, arguments);
    if (number.typeId() == QMetaType::Double && arguments[0].typeId() == QMetaType::QString)
        Fail(Error::Kind::Check, 245,
             u"Conversion failed when converting the varchar value '%1' to data type int."_s.arg(
                 arguments[0].toString()));
    return number.isValid() ? QVariant(number.toLongLong()) : number;
}

// LIKE with the character classes of T-SQL.
class Pattern
{
public:
    Pattern(const QString &pattern, const QString &text, QChar escape)
        : pattern_(pattern)
        , text_(text)
        , escape_(escape)
    {}

    bool Matches() const
    {
        // One level of backtracking is enough: a later '%' takes over from an earlier one.
        qsizetype p = 0;
        qsizetype t = 0;
        qsizetype star = -1;
        qsizetype starText = 0;
        while (t < text_.size()) {
            if (p < pattern_.size() && pattern_[p] == u'%' && pattern_[p] != escape_) {
                star = ++p;
                starText = t;
                continue;
            }
            qsizetype next = p;
            if (p < pattern_.size() && MatchOne(next, text_[t])) {
                p = next;
                ++t;
            } else if (star >= 0) {
                p = star;
                t = ++starText;
            } else {
                return false;
            }
        }
        while (p < pattern_.size() && pattern_[p] == u'%')
            ++p;
        return p == pattern_.size();
    }

private:
    // Moves `p` behind the element that stands there.
    bool MatchOne(qsizetype &p, QChar c) const
    {
        QChar element = pattern_[p++];
        if (element == escape_ && !escape_.isNull() && p < pattern_.size()) {
            element = pattern_[p++];
            return element.toLower() == c.toLower();
        }
        if (element == u'_')
            return true;
        if (element != u'[')
            return element.toLower() == c.toLower();
        const qsizetype close = pattern_.indexOf(u']', p);
        if (close < 0)
            return false;
        const bool negated = pattern_[p] == u'^' && p + 1 < close;
        bool found = false;
        for (qsizetype i = p + (negated ? 1 : 0); i < close; ++i) {
            const QChar low = pattern_[i].toLower();
            if (i + 2 < close && pattern_[i + 1] == u'-') {
                found |= c.toLower() >= low && c.toLower() <= pattern_[i + 2].toLower();
                i += 2;
            } else {
                found |= low == c.toLower();
            }
        }
        p = close + 1;
        return found != negated;
    }

    const QString pattern_;
    const QString text_;
    const QChar escape_;
};

QVariant Like(Database &, const QVariantList &arguments)
{
    if (!arguments[0].isValid() || !arguments[1].isValid())
        return {};
    const QString escape = arguments.value(2).toString();
    return qlonglong(
        Pattern(arguments[0].toString(), arguments[1].toString(), escape.isEmpty() ? QChar() : escape[0]).Matches());
}

QVariant Replace(Database &, const QVariantList &arguments)
{
    for (const QVariant &argument : arguments) {
        if (!argument.isValid())
            return {};
    }
    const QString from = arguments[1].toString();
    return from.isEmpty() ? arguments[0]
                          : arguments[0].toString().replace(from, arguments[2].toString(), Qt::CaseInsensitive);
}

QVariant NonZero(Database &, const QVariantList &arguments)
{
    if (arguments[0].isValid() && arguments[0].toDouble() == 0.0)
        Fail(Error::Kind::Other, 8134, u"Divide by zero error encountered."_s);
    return arguments[0];
}

// A key that is SQLite's row number would be made up for a NULL.
QVariant Required(Database &, const QVariantList &arguments)
{
    if (!arguments[0].isValid())
        Fail(Error::Kind::NullValue, 515,
             u"Cannot insert the value NULL into column '%1', table '%2'; column does not allow nulls."_s.arg(
                 arguments[1].toString(), arguments[2].toString()),
             {}, arguments[1].toString());
    return arguments[0];
}

QVariant ObjectId(Database &database, const QVariantList &arguments)
{
    QString name = arguments[0].toString().trimmed();
    name.remove(u'[').remove(u']').remove(u'"');
    if (name.startsWith("dbo."_L1, Qt::CaseInsensitive))
        name.remove(0, 4);
    if (name.startsWith("tempdb.."_L1, Qt::CaseInsensitive))
        name.remove(0, 8);
    const QString type = arguments.value(1).toString().trimmed().toUpper();
    const QString wanted = type == "U"_L1                                          ? u"table"_s
                           : type == "V"_L1                                        ? u"view"_s
                           : type == "P"_L1                                        ? u"procedure"_s
                           : type == "FN"_L1 || type == "IF"_L1 || type == "TF"_L1 ? u"function"_s
                                                                                   : QString();
    return database.Execute(
        u"SELECT id FROM (SELECT type AS kind, name, rowid AS id FROM main.sqlite_schema WHERE name NOT LIKE "
        u"'sqlite!_%' "
        "ESCAPE '!' AND name <> '_corvex_objects' UNION ALL SELECT type, name, 2000000 + rowid FROM temp.sqlite_schema "
        "UNION ALL "
        "SELECT kind, name, 1000000 + rowid FROM main._corvex_objects WHERE kind IN ('procedure', 'function')) WHERE "
        "kind IN "
        "('table', 'view', 'procedure', 'function') AND name = ?1 COLLATE NOCASE AND (?2 IS NULL OR kind = ?2)"_s,
        {name, wanted.isEmpty() && !type.isEmpty() ? QVariant(type)
               : wanted.isEmpty()                  ? QVariant()
                                                   : QVariant(wanted)});
}

QVariant Call(Database &database, const QVariantList &arguments)
{
    return database.callFunction(arguments[0].toString(), arguments.mid(1));
}

} // namespace

void RegisterFunctions(Database &database)
{
    using Entry = void (*)(sqlite3_context *, int, sqlite3_value **);
    const struct
    {
        const char *name;
        int arguments;
        Entry entry;
        bool constant; // the same arguments give the same value: SQLite may call it once
    } functions[] = {
        {"cx_date", 1, Trampoline<Date>, true},           {"cx_date", 2, Trampoline<Date>, true},
        {"cx_datetext", 1, Trampoline<DateAsText>, true}, {"cx_number", 1, Trampoline<Number>, true},
        {"cx_int", 1, Trampoline<WholeNumber>, true},     {"cx_like", 2, Trampoline<Like>, true},
        {"cx_like", 3, Trampoline<Like>, true},           {"cx_replace", 3, Trampoline<Replace>, true},
        {"cx_nonzero", 1, Trampoline<NonZero>, true},     {"cx_required", 3, Trampoline<Required>, true},
        {"cx_object", 1, Trampoline<ObjectId>, false},    {"cx_object", 2, Trampoline<ObjectId>, false},
        {"cx_call", -1, Trampoline<Call>, false},
    };
    for (const auto &function : functions) {
        sqlite3_create_function_v2(database.Handle(), function.name, function.arguments,
                                   SQLITE_UTF8 | SQLITE_DIRECTONLY | (function.constant ? SQLITE_DETERMINISTIC : 0),
                                   &database, function.entry, nullptr, nullptr, nullptr);
    }
}

} // namespace embedded
