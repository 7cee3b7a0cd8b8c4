// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include "framework/Kvglobal.h"
#include "tests/support/TestSupport.h"

namespace {

struct TScript
{
    QString kind;
    QString name;
    QByteArray text;
};

QByteArray ReadFile(const QString &name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(("Cannot read " + name).toStdString());
    return file.readAll();
}

QList<TScript> ReadScripts(bool demo)
{
    const QString folder = QStringLiteral(QP_SOURCE_DIR "/database/");
    QList<TScript> scripts;
    for (const QString &line : QString::fromUtf8(ReadFile(folder + "scripts.txt")).split(u'\n')) {
        const QStringList words = line.simplified().split(u' ', Qt::SkipEmptyParts);
        if (words.size() != 2 || words[0].startsWith(u'#') || (words[0] == "demo" && !demo))
            continue;
        scripts.append({words[0], words[1], ReadFile(folder + words[1])});
    }
    return scripts;
}

// The file depends on the scripts and on the engine that runs them.
QString Fingerprint(const QList<TScript> &scripts)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const TScript &script : scripts)
        hash.addData(script.text);
    const QFileInfo engine(QCoreApplication::applicationDirPath() + "/libcorvex.so");
    hash.addData(QByteArray::number(engine.lastModified().toMSecsSinceEpoch()));
    return QString::fromLatin1(hash.result().toHex().left(16));
}

// The made file; programs that run at the same time make it once.
QString TemplateFile(bool demo)
{
    const QList<TScript> scripts = ReadScripts(demo);
    const QString variant = demo ? QStringLiteral("demo") : QStringLiteral("empty");
    QDir folder(QStringLiteral(QP_BINARY_DIR "/test-databases"));
    folder.mkpath(".");
    const QString file = folder.filePath(QStringLiteral("%1-%2.db").arg(variant, Fingerprint(scripts)));
    if (QFile::exists(file))
        return file;

    QLockFile lock(folder.filePath(variant + ".lock"));
    lock.setStaleLockTime(0);
    if (!lock.lock())
        throw std::runtime_error("Cannot lock the folder of test databases.");
    if (QFile::exists(file))
        return file;
    for (const QString &old : folder.entryList({variant + "-*"}))
        folder.remove(old);
    const QString making = file + ".making";
    {
        const std::unique_ptr<TDbConnection> connection = CreateEmbeddedDatabase(making);
        TDbTransaction transaction(*connection);
        for (const TScript &script : scripts)
            connection->RunScript(QString::fromUtf8(script.text), script.name);
        transaction.Commit();
    }
    if (!QFile::rename(making, file))
        throw std::runtime_error(("Cannot make " + file).toStdString());
    return file;
}

} // namespace

TTemplateDatabase::TTemplateDatabase(Content content, int country)
    : file_(folder_.filePath("test.db"))
{
    if (!QFile::copy(TemplateFile(content == Content::Demo), file_))
        throw std::runtime_error("Cannot copy the test database.");
    QFile::setPermissions(file_, QFile::ReadOwner | QFile::WriteOwner);
    SetMainConnection(OpenEmbeddedDatabase(file_));
    MainConnection().Call("_ipspSetInstallationCountry", {{"Country", country, false}});
    LoadInstallation();
}

TTemplateDatabase::~TTemplateDatabase()
{
    SetMainConnection(nullptr);
}

void TTemplateDatabase::SetDefault(const QString &column, const QVariant &value)
{
    MainConnection().Execute(QStringLiteral("update Defaults set %1 = :value").arg(column), {{"value", value}});
    LoadInstallation();
}

QList<QStringList> RowsOf(const QString &select, const TDbParams &params)
{
    QList<QStringList> texts;
    for (const QVariantList &row : MainConnection().Select(select, params).rows) {
        QStringList line;
        for (const QVariant &value : row) {
            if (value.isNull())
                line += "NULL";
            else if (value.userType() == QMetaType::Bool)
                line += value.toBool() ? "1" : "0";
            else
                line += value.toString();
        }
        texts += line;
    }
    return texts;
}

QVariant ValueOf(const QString &select, const TDbParams &params)
{
    const TDbRows rows = MainConnection().Select(select, params);
    if (rows.size() != 1)
        throw std::runtime_error(QStringLiteral("%1 rows: %2").arg(rows.size()).arg(select).toStdString());
    return rows.rows[0].value(0);
}
