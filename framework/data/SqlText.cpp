// SPDX-License-Identifier: Apache-2.0
#include "framework/data/SqlText.h"

#include <QDate>
#include <QDateTime>
#include <QRegularExpression>

#include <cmath>

#include "framework/data/Database.h"

namespace sqltext {
namespace {

struct TPart
{
    enum class Kind { Code, Quoted, Comment };
    Kind kind = Kind::Code;
    qsizetype start = 0;
    qsizetype end = 0;
    bool closed = true;
};

bool StartsComment(QStringView sql, qsizetype at)
{
    return sql.mid(at, 2) == u"--" || sql.mid(at, 2) == u"/*";
}

bool StartsQuoted(QChar ch)
{
    return ch == u'\'' || ch == u'"' || ch == u'[';
}

TPart QuotedPart(QStringView sql, qsizetype from)
{
    const QChar close = sql[from] == u'[' ? QChar(u']') : sql[from];
    for (qsizetype at = from + 1; at < sql.size(); ++at) {
        if (sql[at] != close)
            continue;
        if (at + 1 < sql.size() && sql[at + 1] == close)
            ++at; // doubled: stands for itself
        else
            return {TPart::Kind::Quoted, from, at + 1, true};
    }
    return {TPart::Kind::Quoted, from, sql.size(), false};
}

TPart CommentPart(QStringView sql, qsizetype from)
{
    if (sql[from] == u'-') {
        const qsizetype end = sql.indexOf(u'\n', from);
        return {TPart::Kind::Comment, from, end < 0 ? sql.size() : end, true};
    }
    int depth = 0; // block comments nest in T-SQL
    for (qsizetype at = from; at < sql.size(); ++at) {
        const QStringView two = sql.mid(at, 2);
        if (two == u"/*") {
            ++depth;
            ++at;
        } else if (two == u"*/") {
            ++at;
            if (--depth == 0)
                return {TPart::Kind::Comment, from, at + 1, true};
        }
    }
    return {TPart::Kind::Comment, from, sql.size(), false};
}

TPart PartAt(QStringView sql, qsizetype from)
{
    if (StartsQuoted(sql[from]))
        return QuotedPart(sql, from);
    if (StartsComment(sql, from))
        return CommentPart(sql, from);
    qsizetype at = from + 1;
    while (at < sql.size() && !StartsQuoted(sql[at]) && !StartsComment(sql, at))
        ++at;
    return {TPart::Kind::Code, from, at, true};
}

bool IsNameStart(QChar ch)
{
    return ch.isLetter() || ch == u'_';
}

bool IsNameChar(QChar ch)
{
    return ch.isLetterOrNumber() || ch == u'_';
}

} // namespace

QList<TPiece> CutAtParameters(const QString &sql)
{
    QList<TPiece> pieces;
    QString text;
    const QStringView view(sql);
    for (qsizetype from = 0; from < view.size();) {
        const TPart part = PartAt(view, from);
        from = part.end;
        if (!part.closed)
            throw TDbError(
                TDbError::Kind::Statement, 105,
                QStringLiteral("A quoted text or a comment does not end, from position %1 on.").arg(part.start + 1),
                sql);
        if (part.kind == TPart::Kind::Comment) {
            text += u' ';
            continue;
        }
        if (part.kind == TPart::Kind::Quoted) {
            text += view.mid(part.start, part.end - part.start);
            continue;
        }
        for (qsizetype at = part.start; at < part.end;) {
            const QChar ch = view[at];
            if (ch == u'?')
                throw TDbError(TDbError::Kind::Statement, 102,
                               QStringLiteral("\"?\" at position %1: values are passed by name.").arg(at + 1), sql);
            if (ch != u':' || at + 1 >= part.end || !IsNameStart(view[at + 1])) {
                text += ch;
                ++at;
                continue;
            }
            qsizetype end = at + 1;
            while (end < part.end && IsNameChar(view[end]))
                ++end;
            pieces.append({text, view.mid(at + 1, end - at - 1).toString()});
            text.clear();
            at = end;
        }
    }
    pieces.append({text, {}});
    return pieces;
}

QList<TBatch> CutAtGo(const QString &script)
{
    const QStringView view(script);
    QList<TBatch> batches;
    qsizetype batchStart = 0;
    int batchLine = 1;
    const auto finish = [&](qsizetype end) {
        QStringView text = view.mid(batchStart, end - batchStart);
        int line = batchLine;
        // The line of an error is counted from the first line that says something.
        while (!text.isEmpty() && text.front().isSpace()) {
            line += text.front() == u'\n';
            text = text.mid(1);
        }
        if (!text.isEmpty())
            batches.append({text.trimmed().toString(), line});
    };

    TPart part;
    int lineNumber = 0;
    for (qsizetype start = 0; start < view.size();) {
        ++lineNumber;
        const qsizetype newline = view.indexOf(u'\n', start);
        const qsizetype end = newline < 0 ? view.size() : newline + 1;
        while (part.end <= start)
            part = PartAt(view, part.end);
        const bool outside = part.kind == TPart::Kind::Code || part.start == start;
        if (outside && view.mid(start, end - start).trimmed().compare(u"go", Qt::CaseInsensitive) == 0) {
            finish(start);
            batchStart = end;
            batchLine = lineNumber + 1;
        }
        start = end;
    }
    finish(view.size());
    return batches;
}

QVariant DbValue(const QVariant &value)
{
    if (!value.isValid() || value.isNull())
        return {};
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
        return value;
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::UChar:
    case QMetaType::SChar:
        return value.toInt();
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::Float:
    case QMetaType::Double:
        if (!std::isfinite(value.toDouble()))
            throw TDbError(TDbError::Kind::Check, 0, QStringLiteral("The value is not a number that can be stored."));
        return value.toDouble();
    case QMetaType::QString: {
        // A null text is an empty one: only a value without content is NULL.
        const QString text = value.toString();
        return text.isNull() ? QStringLiteral("") : text;
    }
    case QMetaType::QDate:
        return value.toDate().isValid() ? QVariant(QDateTime(value.toDate(), QTime(0, 0))) : QVariant();
    case QMetaType::QDateTime:
        return value.toDateTime().isValid() ? value : QVariant();
    default:
        throw TDbError(TDbError::Kind::Statement, 0,
                       QStringLiteral("A value of type %1 cannot be stored.").arg(QLatin1String(value.typeName())));
    }
}

bool IsObjectName(QStringView name)
{
    static const QRegularExpression pattern(QStringLiteral(R"(\A(?:(?:\[\w+\]|\w+)\.){0,2}(?:\[\w+\]|\w+)\z)"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern.match(name.toString()).hasMatch();
}

} // namespace sqltext
