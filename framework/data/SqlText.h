// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

// What both connections need to know about T-SQL text and values, without an engine. Internal to the data layer.
namespace sqltext {

// Text up to and including the place of one named parameter; the last piece has no name.
struct TPiece
{
    QString text;
    QString name;
};

// Cuts a statement at its ":name" parameters. Strings, quoted and bracketed names are skipped, comments are dropped
// (a driver that looks for parameters itself would find them there). Throws TDbError for a string that does not end and
// for a bare "?", which would take the place of a named value.
QList<TPiece> CutAtParameters(const QString &sql);

struct TBatch
{
    QString text;
    int line = 1; // where it begins in the script, from 1
};

// Cuts a script at the lines that hold GO alone; a GO inside a string or a comment does not count. Blank batches are
// left out.
QList<TBatch> CutAtGo(const QString &script);

// A value as the connections carry it: invalid for NULL, else int, qlonglong, bool, double, QString (never null) or
// QDateTime. Throws TDbError for any other type and for a number that no column can hold (NaN, infinity).
QVariant DbValue(const QVariant &value);

// True for a plain or dotted name ("dbo.T", "[dbo].[T]"): what may stand in a text where no parameter can.
bool IsObjectName(QStringView name);

} // namespace sqltext
