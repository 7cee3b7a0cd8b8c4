// SPDX-License-Identifier: Apache-2.0
#include "host/DatabaseSetup.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>

#include <stdexcept>

#include "framework/Kvglobal.h"
#include "host/HostSettings.h"

namespace {

const QString kLastKind = QStringLiteral("database/kind");
const QString kLastPlace = QStringLiteral("database/place");

[[noreturn]] void Fail(const QString &text)
{
    throw std::runtime_error(text.toStdString());
}

QString ReadText(const QString &name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        Fail(QStringLiteral("Cannot read %1: %2").arg(QDir::toNativeSeparators(name), file.errorString()));
    return QString::fromUtf8(file.readAll());
}

// The scripts to run, in order, of the list "kind file" a line.
QStringList ScriptNames(const QString &folder, bool demonstration)
{
    QStringList names;
    const QStringList lines = ReadText(folder + QStringLiteral("/scripts.txt")).split(QLatin1Char('\n'));
    for (const QString &raw : lines) {
        const QString line = raw.simplified();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QString kind = line.section(QLatin1Char(' '), 0, 0);
        if (kind == QLatin1String("demo") && !demonstration)
            continue;
        names.append(line.section(QLatin1Char(' '), 1));
    }
    return names;
}

void RemoveDatabaseFiles(const QString &file)
{
    for (const QString &suffix :
         {QString(), QStringLiteral("-wal"), QStringLiteral("-shm"), QStringLiteral("-journal")})
        QFile::remove(file + suffix);
}

// Creates `building` and, when that fails, speaks of the file that the user asked for.
std::unique_ptr<TDbConnection> CreateUnder(const QString &building, const QString &path)
{
    try {
        return CreateEmbeddedDatabase(building);
    } catch (const TDbError &error) {
        throw TDbError(error.kind, error.number, QString(error.message).replace(building, path), error.statement);
    }
}

// A file that opens may still hold something else, or nothing.
void CheckIsPayroll(TDbConnection &connection)
{
    bool found = false;
    try {
        found =
            !connection.Select(QStringLiteral("select top 1 Country from dbo.Defaults order by idDefaults")).isEmpty();
    } catch (const TDbError &error) {
        if (error.kind != TDbError::Kind::Statement && error.number != 208)
            throw;
    }
    if (!found)
        Fail(QStringLiteral("%1 holds no payroll tables.").arg(connection.Description()));
}

} // namespace

void CreateDatabaseFile(const QString &file, bool demonstration, std::optional<quint8> country,
                        const QString &scriptsFolder, const TCreationProgress &progress)
{
    const QString path = QFileInfo(file).absoluteFilePath();
    const auto refuseExisting = [&path] {
        if (QFileInfo::exists(path))
            Fail(QStringLiteral("%1 exists already and will not be overwritten.").arg(QDir::toNativeSeparators(path)));
    };
    refuseExisting();
    const QStringList scripts = ScriptNames(scriptsFolder, demonstration);
    const int steps = int(scripts.size()) + 1;
    const auto step = [&](int number, const QString &what) {
        if (progress && !progress(number, steps, what))
            throw TCreationCancelled{};
    };

    // Built under another name: whatever stops the work, no half-made file stands under the name that was asked for.
    const QString building = QStringLiteral("%1.new-%2").arg(path).arg(QCoreApplication::applicationPid());
    RemoveDatabaseFiles(building);
    const auto cleanUp = qScopeGuard([&building] { RemoveDatabaseFiles(building); });
    {
        const auto connection = CreateUnder(building, path);
        TDbTransaction transaction(*connection);
        for (int i = 0; i < scripts.size(); ++i) {
            step(i, scripts[i]);
            connection->RunScript(ReadText(scriptsFolder + QLatin1Char('/') + scripts[i]), scripts[i]);
        }
        if (country)
            SetCountry(*connection, *country);
        step(steps - 1, QFileInfo(path).fileName());
        transaction.Commit();
    }
    refuseExisting();
    QFile built(building);
    if (!built.rename(path))
        Fail(QStringLiteral("Cannot create %1: %2").arg(QDir::toNativeSeparators(path), built.errorString()));
}

std::unique_ptr<TDbConnection> OpenChoice(const TDatabaseChoice &choice, const QString &scriptsFolder,
                                          const TCreationProgress &progress)
{
    if (choice.Creates())
        CreateDatabaseFile(choice.file, choice.kind == TDatabaseChoice::Kind::CreateDemonstration, choice.country,
                           scriptsFolder, progress);
    auto connection = choice.kind == TDatabaseChoice::Kind::Connect
                          ? OpenOdbcDatabase(choice.connection)
                          : OpenEmbeddedDatabase(QFileInfo(choice.file).absoluteFilePath());
    CheckIsPayroll(*connection);
    if (choice.country)
        SetCountry(*connection, *choice.country);
    return connection;
}

void SetCountry(TDbConnection &connection, quint8 country)
{
    const TDbRows now = connection.Select(QStringLiteral("select top 1 Country from dbo.Defaults order by idDefaults"));
    if (!now.isEmpty() && now.Value(0, u"Country").toInt() == country)
        return;
    connection.Call(QStringLiteral("_ipspSetInstallationCountry"), {{QStringLiteral("Country"), int(country)}});
}

QString CountryName(quint8 country)
{
    switch (country) {
    case kAustralia:
        return QStringLiteral("Australia");
    case kNewZealand:
        return QStringLiteral("New Zealand");
    case kOtherCountry:
        return QStringLiteral("Other");
    default:
        return QStringLiteral("Country %1").arg(country);
    }
}

std::optional<TDatabaseChoice> RememberedDatabase()
{
    const QString place = HostSettings().value(kLastPlace).toString();
    if (place.isEmpty())
        return {};
    TDatabaseChoice choice;
    if (HostSettings().value(kLastKind).toString() == QLatin1String("connect")) {
        choice.kind = TDatabaseChoice::Kind::Connect;
        choice.connection = place;
    } else {
        choice.file = place;
    }
    return choice;
}

void RememberDatabase(const TDatabaseChoice &choice)
{
    const bool connect = choice.kind == TDatabaseChoice::Kind::Connect;
    HostSettings().setValue(kLastKind, connect ? QStringLiteral("connect") : QStringLiteral("file"));
    HostSettings().setValue(kLastPlace,
                            connect ? WithoutPassword(choice.connection) : QFileInfo(choice.file).absoluteFilePath());
}

QString WithoutPassword(const QString &connectionString)
{
    // A value in braces may hold semicolons.
    static const QRegularExpression password(
        QStringLiteral("\\b(PWD|PASSWORD)\\s*=\\s*(\\{(?:[^}]|\\}\\})*\\}|[^;]*);?"),
        QRegularExpression::CaseInsensitiveOption);
    return QString(connectionString).remove(password).trimmed();
}
