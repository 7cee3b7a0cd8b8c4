// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include "tests/data/Engines.h"

// What every engine must do alike, asked through TDbConnection alone. The database is empty before and after.
class TDatabaseConformance final : public QObject
{
    Q_OBJECT

public:
    explicit TDatabaseConformance(TConnect connect)
        : connect_(std::move(connect))
    {}

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void values_data();
    void values();
    void textsAreFoundAgain_data();
    void textsAreFoundAgain();
    void columnsOfResults();
    void namedValues();
    void identity();
    void counts();
    void expressions_data();
    void expressions();
    void queries_data();
    void queries();
    void statements();
    void errors_data();
    void errors();
    void commitAndRollback();
    void transactionsDoNotNest();
    void errorInsideTransaction();
    void procedureArguments();
    void procedureNulls();
    void procedureThatWrites();
    void procedureErrors_data();
    void procedureErrors();
    void scripts();

private:
    int Count(const QString &table) const;
    void DropAll();

    const TConnect connect_;
    std::unique_ptr<TDbConnection> db_;
};
