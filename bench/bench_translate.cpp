// SPDX-License-Identifier: Apache-2.0
// What the T-SQL subset costs: translating a list's page statement and a save, seen for the first time and again, and
// running them beside the C API.
#include <QTemporaryDir>

#include "bench/BenchSupport.h"
#include "embedded/Engine.h"
#include "tests/support/TestSupport.h"

namespace {

const QString kPage = QStringLiteral(
    "select top 100 cBSBNumber, cCode, cBankName, cBranchName, cStateCode, idNotes, idBank from _ipvBanks "
    "where (cBSBNumber >= :qsSort and (cBSBNumber > :qsSort or idBank > :qsKey)) order by cBSBNumber, idBank");
const QString kRow =
    QStringLiteral("select cCode, cBankName, cBranchName, cBSBNumber, iStateID from _iptblBanks where idBank = :id");
const QString kUpdate = QStringLiteral("update _iptblBanks set cBranchName = :branch where idBank = :id");

struct Fixture
{
    Fixture()
    {
        {
            const TTemplateDatabase made(TTemplateDatabase::Content::Demo);
            SetMainConnection(nullptr);
            if (!QFile::copy(made.FileName(), folder.filePath("banks.db")))
                throw std::runtime_error("cannot copy the database");
        }
        engine = embedded::Engine::Open(folder.filePath("banks.db"));
        raw = std::make_unique<RawDatabase>(folder.filePath("banks.db").toStdString());
        raw->Run("PRAGMA busy_timeout = 5000");
        const embedded::Outcome banks =
            engine->Run("select top 1 idBank, cBSBNumber from _iptblBanks order by cBSBNumber, idBank");
        id = banks.rows.rows.at(0).at(0).toInt();
        bsb = banks.rows.rows.at(0).at(1).toString();
    }
    QTemporaryDir folder;
    std::unique_ptr<embedded::Engine> engine;
    std::unique_ptr<RawDatabase> raw;
    int id = 0;
    QString bsb;
};

Fixture &TheFixture()
{
    static Fixture fixture;
    return fixture;
}

const QString &Statement(int number)
{
    return number == 0 ? kPage : number == 1 ? kRow : kUpdate;
}
const char *Label(int number)
{
    return number == 0 ? "page" : number == 1 ? "row" : "update";
}

void BM_TranslateCold(benchmark::State &state)
{
    embedded::Engine &engine = *TheFixture().engine;
    const QString &statement = Statement(int(state.range(0)));
    state.SetLabel(Label(int(state.range(0))));
    for (auto turn : state) {
        (void)turn;
        engine.ClearTranslations();
        benchmark::DoNotOptimize(engine.Translate(statement));
    }
}

void BM_TranslateCached(benchmark::State &state)
{
    embedded::Engine &engine = *TheFixture().engine;
    const QString &statement = Statement(int(state.range(0)));
    state.SetLabel(Label(int(state.range(0))));
    engine.Translate(statement);
    for (auto turn : state) {
        (void)turn;
        benchmark::DoNotOptimize(engine.Translate(statement));
    }
}

QVariantMap Parameters(int number)
{
    const Fixture &fixture = TheFixture();
    if (number == 0)
        return {{"qsSort", fixture.bsb}, {"qsKey", fixture.id}};
    if (number == 1)
        return {{"id", fixture.id}};
    return {{"id", fixture.id}, {"branch", "Changed"}};
}

// The same statement in SQLite's words, kept prepared by both.
void BM_RunCached(benchmark::State &state)
{
    Fixture &fixture = TheFixture();
    const int number = int(state.range(0));
    state.SetLabel(Label(number));
    const QVariantMap parameters = Parameters(number);
    RawStatement raw(
        *fixture.raw,
        number == 0
            ? "SELECT B.cBSBNumber, B.cCode, B.cBankName, B.cBranchName, S.cStateCode, N.idNotes, B.idBank FROM "
              "_iptblBanks B LEFT JOIN _iptblStates S ON S.idState = B.iStateID LEFT JOIN _btblNotes N ON "
              "N.cNOTETBLTableName = '_IPTBLBANKS' AND N.fNOTETBLTableID = B.idBank WHERE B.cBSBNumber >= ?1 AND "
              "(B.cBSBNumber > ?1 OR B.idBank > ?2) ORDER BY B.cBSBNumber, B.idBank LIMIT 100"
        : number == 1 ? "SELECT cCode, cBankName, cBranchName, cBSBNumber, iStateID FROM _iptblBanks WHERE idBank = ?2"
                      : "UPDATE _iptblBanks SET cBranchName = ?1 WHERE idBank = ?2");
    SideBySide(
        state, [&] { benchmark::DoNotOptimize(fixture.engine->Run(Statement(number), parameters)); },
        [&] {
            if (number != 1)
                raw.Bind(1, number == 0 ? fixture.bsb.toStdString() : std::string("Changed"));
            raw.Bind(2, fixture.id).Read();
        });
}

} // namespace

BENCHMARK(BM_TranslateCold)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TranslateCached)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RunCached)->DenseRange(0, 2)->UseManualTime()->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    const QCoreApplication app(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
