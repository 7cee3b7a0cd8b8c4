// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDateTime>
#include <QTemporaryDir>
#include <QTest>

#include "embedded/Engine.h"

// Values as the data rows of the tests write them: NULL, 1, 1.5, true, text, 2020-01-31, 2020-01-31T10:30:00.
inline QString Shown(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return QStringLiteral("NULL");
    case QMetaType::Double: {
        const QString text = QString::number(value.toDouble(), 'g', 12);
        return text.contains(u'.') || text.contains(u'e') ? text : text + QStringLiteral(".0");
    }
    case QMetaType::QDateTime: {
        const QDateTime moment = value.toDateTime();
        return moment.time() == QTime(0, 0) ? moment.date().toString(Qt::ISODate) : moment.toString(Qt::ISODateWithMs);
    }
    default:
        return value.toString();
    }
}

// Rows parted by "; ", their values by "|".
inline QString Shown(const embedded::Rows &rows)
{
    QStringList lines;
    for (const QVariantList &row : rows.rows) {
        QStringList values;
        for (const QVariant &value : row)
            values.append(Shown(value));
        lines.append(values.join(u'|'));
    }
    return lines.join(QStringLiteral("; "));
}

// What a piece of work throws, "number kind text", or "no error".
template <typename Work> QString ErrorOf(Work work)
{
    try {
        work();
    } catch (const embedded::Error &error) {
        return QStringLiteral("%1 %2 %3").arg(error.number).arg(int(error.kind)).arg(error.text);
    }
    return QStringLiteral("no error");
}

// The same without the text, for comparison with one number and kind.
template <typename Work> std::pair<int, embedded::Error::Kind> FaultOf(Work work)
{
    try {
        work();
    } catch (const embedded::Error &error) {
        return {error.number, error.kind};
    }
    return {0, embedded::Error::Kind::Other};
}

#define QP_FAULT(work, errorNumber, errorKind)                                                                         \
    do {                                                                                                               \
        const auto [number_, kind_] = FaultOf([&] { work; });                                                          \
        QVERIFY2(number_ == (errorNumber) && kind_ == (errorKind), qPrintable(ErrorOf([&] { work; })));                \
    } while (false)
