// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

#include "framework/data/Database.h"

// Which database to work with.
struct TDatabaseChoice
{
    enum class Kind { OpenFile, CreateEmpty, CreateDemonstration, Connect };
    Kind kind = Kind::OpenFile;
    QString file;                  // for all but Connect
    QString connection;            // ODBC string
    std::optional<quint8> country; // to be stored in the database's settings; not given: as they stand

    bool Creates() const { return kind == Kind::CreateEmpty || kind == Kind::CreateDemonstration; }
};

// Called before each step of a creation; false cancels it.
using TCreationProgress = std::function<bool(int step, int steps, const QString &what)>;

// A creation that its user cancelled.
struct TCreationCancelled
{};

// Creates a database file from the scripts in `scriptsFolder` (see its scripts.txt). All or nothing: the file gets its
// name when it is complete, and an existing file is never touched. Throws TDbError, std::runtime_error or
// TCreationCancelled.
void CreateDatabaseFile(const QString &file, bool demonstration, std::optional<quint8> country,
                        const QString &scriptsFolder, const TCreationProgress &progress = {});

// Creates where that is asked for, opens, checks that the tables of a payroll database are there and stores the
// country. Throws like CreateDatabaseFile.
std::unique_ptr<TDbConnection> OpenChoice(const TDatabaseChoice &choice, const QString &scriptsFolder,
                                          const TCreationProgress &progress = {});

// Sets the country with the tax year and the BSB format that its installations start with. Nothing when it is the
// country already. Throws TDbError, for a country that the database does not know too.
void SetCountry(TDbConnection &connection, quint8 country);

// "Australia", "New Zealand", "Other".
QString CountryName(quint8 country);

// The database of the last run, and how to remember one. The password of a connection is not kept.
std::optional<TDatabaseChoice> RememberedDatabase();
void RememberDatabase(const TDatabaseChoice &choice);
QString WithoutPassword(const QString &connectionString);
