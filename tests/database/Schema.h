// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFile>
#include <QStringList>

#include <stdexcept>

#include "framework/data/Database.h"

inline QString ReadScript(const QString &name)
{
    QFile file(QStringLiteral(QP_SOURCE_DIR "/database/") + name);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(file.errorString().toStdString());
    return QString::fromUtf8(file.readAll());
}

// Makes the product's tables and rows in an empty database, by the list of its scripts.
inline void RunSchema(TDbConnection &connection, bool demonstration)
{
    const QStringList lines = ReadScript(QStringLiteral("scripts.txt")).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    TDbTransaction transaction(connection);
    for (const QString &line : lines) {
        const QString kind = line.section(QLatin1Char(' '), 0, 0);
        const QString script = line.section(QLatin1Char(' '), 1);
        if (kind != QLatin1String("#") && (demonstration || kind != QLatin1String("demo")))
            connection.RunScript(ReadScript(script), script);
    }
    transaction.Commit();
}

inline int Count(TDbConnection &connection, const QString &from, const TDbParams &params = {})
{
    return connection.Select(QStringLiteral("select count(*) as n from ") + from, params).Value(0, u"n").toInt();
}
