// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

#include <span>

#include "framework/Export.h"

class QWidget;

// A table that may refer to a record: asked before a delete, and listed as its users.
struct TInUse
{
    const char *table;
    const char *column;
    const char *user; // "EFT Parameters"
};

struct TUsage
{
    QString user;
    qlonglong records;
};

// Who refers to the record and how often, in the tables' order; users without a record are left out. Columns of one
// table that stand for the same user count a row once. Throws TDbError.
CORVEX_API QList<TUsage> CountUses(std::span<const TInUse> tables, int id);
// Whether anybody does. Throws TDbError.
CORVEX_API bool AnyUse(std::span<const TInUse> tables, int id);

// Lists them in a window of their own. Modal.
CORVEX_API void ShowWhereUsed(QWidget *owner, const QString &code, std::span<const TInUse> tables, int id);
