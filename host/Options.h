// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <stdexcept>

// A message to send once the program has started.
struct TOpenRequest
{
    uint message = 0;
    qlonglong param1 = 0;
    qlonglong param2 = 0;
};

struct TExportRequest
{
    uint message = 0;
    QString file;
};

// What the command line asks for.
struct THostOptions
{
    bool help = false;
    QString database;   // an embedded database file to open
    QString connection; // an ODBC connection string
    QString newFile;    // a file to create
    bool demonstration = false;
    std::optional<quint8> country;
    std::optional<int> agent;
    QList<TOpenRequest> open;
    QString tourFolder;
    QList<TExportRequest> exports;
    QString scriptsFolder = QStringLiteral(":/database"); // where the database scripts stand
    QString packageFolder;
    QString settingsFile; // instead of the user's own settings
    QString colours;      // "light", "dark", "system"; "" as remembered
    bool untilPainted = false;

    // Runs without anybody to answer questions, and ends by itself.
    bool IsBatch() const { return !tourFolder.isEmpty() || !exports.isEmpty() || untilPainted; }
};

// A command line that cannot be understood; what() is for the user.
class TUsageError : public std::runtime_error
{
public:
    explicit TUsageError(const QString &text)
        : std::runtime_error(text.toStdString())
    {}
};

// `arguments` without the program's name. Words of the form NAME=VALUE are left to the screens. Throws TUsageError.
THostOptions ParseOptions(const QStringList &arguments);
// The text of --help.
QString OptionsHelp();
// Whether the program must run without showing anything: asked before the application object exists, because that
// object chooses the platform. `hasDisplay`: a display server is there.
bool NeedsOffscreen(const QStringList &arguments, bool hasDisplay);
