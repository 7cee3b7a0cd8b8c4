// SPDX-License-Identifier: Apache-2.0
#include "embedded/Engine.h"
#include "framework/data/Database.h"
#include "framework/data/SqlText.h"

namespace {

TDbError::Kind KindOf(embedded::Error::Kind kind)
{
    using From = embedded::Error::Kind;
    using To = TDbError::Kind;
    switch (kind) {
    case From::Syntax:
    case From::Refused:
    case From::Unknown:
        return To::Statement;
    case From::Duplicate:
        return To::Duplicate;
    case From::Referenced:
        return To::Referenced;
    case From::TooLong:
        return To::TooLong;
    case From::NullValue:
        return To::NullValue;
    case From::Check:
        return To::Check;
    case From::Locked:
        return To::Busy;
    case From::ReadOnly:
        return To::ReadOnly;
    case From::DiskFull:
        return To::DiskFull;
    case From::Damaged:
        return To::Damaged;
    case From::ForeignFile:
        return To::ForeignFile;
    case From::NewerFile:
        return To::NewerFile;
    case From::Raised:
        return To::Raised;
    case From::Other:
        break;
    }
    return To::Other;
}

template <class Operation> auto Translated(Operation operation)
{
    try {
        return operation();
    } catch (const embedded::Error &error) {
        throw TDbError(KindOf(error.kind), error.number, error.text, error.statement);
    }
}

QVariantMap DbValues(const TDbParams &params)
{
    QVariantMap values;
    for (auto it = params.cbegin(); it != params.cend(); ++it)
        values.insert(it.key(), sqltext::DbValue(it.value()));
    return values;
}

class TEmbeddedConnection final : public TDbConnection
{
public:
    explicit TEmbeddedConnection(std::unique_ptr<embedded::Engine> engine)
        : engine_(std::move(engine))
    {}

    TDbRows Select(const QString &sql, const TDbParams &params) override
    {
        embedded::Outcome outcome = Run(sql, params);
        if (!outcome.hasRows)
            throw TDbError(TDbError::Kind::Statement, 0, QStringLiteral("The statement gives no rows."), sql);
        return {std::move(outcome.rows.columns), std::move(outcome.rows.rows)};
    }

    int Execute(const QString &sql, const TDbParams &params) override { return qMax(0, Run(sql, params).affected); }

    int Insert(const QString &sql, const TDbParams &params) override { return int(Run(sql, params).identity); }

    TDbCallResult Call(const QString &procedure, const QList<TDbArgument> &arguments) override
    {
        QVariantMap values;
        for (const TDbArgument &argument : arguments)
            values.insert(argument.name, sqltext::DbValue(argument.value));
        TDbCallResult result;
        result.returnValue = Translated([&] { return engine_->Call(procedure, values); });
        for (const TDbArgument &argument : arguments) {
            if (argument.inOut)
                result.outputs.insert(argument.name, values.value(argument.name));
        }
        return result;
    }

    void RunScript(const QString &script, const QString &title) override
    {
        // Cut here rather than by the engine, so that a script is the same batches on every engine. The blank lines
        // make the place of an error one of the script's own.
        const QList<sqltext::TBatch> batches = sqltext::CutAtGo(script);
        for (const sqltext::TBatch &batch : batches) {
            try {
                Run(QString(batch.line - 1, u'\n') + batch.text, {});
            } catch (const TDbError &error) {
                throw TDbError(error.kind, error.number, title + QStringLiteral(": ") + error.message, batch.text);
            }
        }
    }

    void Begin() override
    {
        Translated([&] { engine_->Begin(); });
    }
    void Commit() override
    {
        Translated([&] { engine_->Commit(); });
    }
    void Rollback() override
    {
        Translated([&] { engine_->Rollback(); });
    }
    bool InTransaction() const override { return engine_->InTransaction(); }
    QString Description() const override { return engine_->FileName(); }

private:
    embedded::Outcome Run(const QString &sql, const TDbParams &params)
    {
        const QVariantMap values = DbValues(params);
        return Translated([&] { return engine_->Run(sql, values); });
    }

    std::unique_ptr<embedded::Engine> engine_;
};

} // namespace

std::unique_ptr<TDbConnection> CreateEmbeddedDatabase(const QString &file)
{
    return std::make_unique<TEmbeddedConnection>(Translated([&] { return embedded::Engine::Create(file); }));
}

std::unique_ptr<TDbConnection> OpenEmbeddedDatabase(const QString &file)
{
    return std::make_unique<TEmbeddedConnection>(Translated([&] { return embedded::Engine::Open(file); }));
}
