// SPDX-License-Identifier: Apache-2.0
// From the start of a process to its first painted window: the host on databases of different sizes, beside a program
// that shows an empty window of the same toolkit.
#include <QApplication>
#include <QMainWindow>
#include <QProcess>
#include <QTemporaryDir>

#include <cstring>

#include "bench/BenchSupport.h"
#include "tests/support/TestSupport.h"

namespace {

constexpr char kEmptyWindow[] = "--empty-window";

class EmptyWindow final : public QMainWindow
{
protected:
    void paintEvent(QPaintEvent *event) override
    {
        QMainWindow::paintEvent(event);
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    }
};

double MillisecondsOf(const QString &program, const QStringList &arguments)
{
    const auto start = std::chrono::steady_clock::now();
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        throw std::runtime_error((program + ": " + QString::fromUtf8(process.readAllStandardError())).toStdString());
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// A database with this many banks.
QString Database(const QTemporaryDir &folder, int banks)
{
    const QString file = folder.filePath(QStringLiteral("banks%1.db").arg(banks));
    {
        const TTemplateDatabase made(TTemplateDatabase::Content::Demo);
        SetMainConnection(nullptr);
        if (!QFile::copy(made.FileName(), file))
            throw std::runtime_error("cannot copy the database");
    }
    RawDatabase writable(file.toStdString());
    writable.Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(banks) +
                 ") INSERT INTO _iptblBanks (cCode, cBankName, cBSBNumber) "
                 "SELECT 'C' || i, 'Bank ' || (i % 60), printf('%03d-%03d', i / 1000, i % 1000) FROM n");
    return file;
}

void BM_StartToPainted(benchmark::State &state)
{
    static const QTemporaryDir folder;
    const QString database = Database(folder, int(state.range(0)));
    const QStringList arguments{"--settings", folder.filePath("settings.ini"), "--database", database,
                                "--until-painted"};
    double host = 0;
    double empty = 0;
    for ([[maybe_unused]] auto turn : state) {
        const double milliseconds = MillisecondsOf(QStringLiteral(QP_BINARY_DIR "/bin/corvexhost"), arguments);
        state.SetIterationTime(milliseconds / 1000);
        host += milliseconds;
        empty += MillisecondsOf(QCoreApplication::applicationFilePath(), {kEmptyWindow});
    }
    state.counters["empty_ms"] = empty / double(state.iterations());
    state.counters["ratio"] = host / empty;
    QFile::remove(database);
}
BENCHMARK(BM_StartToPainted)
    ->Arg(1000)
    ->Arg(100000)
    ->Arg(1000000)
    ->UseManualTime()
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (argc > 1 && std::strcmp(argv[1], kEmptyWindow) == 0) {
        EmptyWindow window;
        window.show();
        return QApplication::exec();
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
