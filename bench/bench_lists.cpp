// SPDX-License-Identifier: Apache-2.0
// The bank list at 1 000, 100 000 and 1 000 000 banks: opening, jumping, searching, sorting, saving and finding one's
// place again, and what an open list costs in memory; each beside the same work in SQLite's C API.
#include <malloc.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QScrollBar>
#include <QThread>

#include <cstdio>
#include <map>
#include <memory>

#include "bench/BenchSupport.h"
#include "framework/grid/qsGrid.h"
#include "records/IPBanks.h"
#include "tests/support/TestSupport.h"

namespace {

using Kind = TGridColumn::Kind;

constexpr int kSmall = 1000, kMiddle = 100000, kLarge = 1000000;

// What the list reads, as SQLite is asked for it.
const std::string kSelect =
    "SELECT B.idBank, B.cBSBNumber, B.cCode, B.cBankName, B.cBranchName, S.cStateCode, N.idNotes FROM _iptblBanks B "
    "LEFT JOIN _iptblStates S ON S.idState = B.iStateID "
    "LEFT JOIN _btblNotes N ON N.cNOTETBLTableName = '_IPTBLBANKS' AND N.fNOTETBLTableID = B.idBank ";
const std::string kForward =
    kSelect +
    "WHERE B.cBSBNumber >= ?1 AND (B.cBSBNumber > ?1 OR B.idBank > ?2) ORDER BY B.cBSBNumber, B.idBank LIMIT 100";
const std::string kBackward = kSelect + "WHERE B.cBSBNumber <= ?1 AND (B.cBSBNumber < ?1 OR B.idBank < ?2) ORDER BY "
                                        "B.cBSBNumber DESC, B.idBank DESC LIMIT 100";

std::string Bsb(int number)
{
    char text[16];
    std::snprintf(text, sizeof text, "%03d-%03d", number / 1000 % 1000, number % 1000);
    return text;
}

// A database of `count` banks, number n of them with key n + 1 and the BSB n spread over the whole range.
class Banks
{
public:
    explicit Banks(int count)
        : count_(count)
    {
        {
            const TTemplateDatabase made;
            file_ = folder_.filePath("banks.db");
            SetMainConnection(nullptr); // its journal is now in the file
            if (!QFile::copy(made.FileName(), file_))
                throw std::runtime_error("cannot copy the database");
        }
        raw_ = std::make_unique<RawDatabase>(file_.toStdString());
        raw_->Run("PRAGMA busy_timeout = 5000");
        raw_->Run("BEGIN");
        raw_->Run("DELETE FROM _iptblBanks");
        {
            RawStatement insert(
                *raw_,
                "INSERT INTO _iptblBanks (idBank, cCode, cBankName, cBranchName, cBSBNumber, iStateID) "
                "VALUES (?1, ?2, ?3, ?4, ?5, (SELECT idState FROM _iptblStates ORDER BY idState LIMIT 1 OFFSET ?6))");
            for (int i = 0; i < count; ++i) {
                const int bank = (i / 7) % 60;
                insert.Bind(1, i + 1)
                    .Bind(2, "B" + std::to_string(bank))
                    .Bind(3, "Bank of Letter " + std::to_string(bank));
                insert.Bind(4, "Branch " + std::to_string(i) + " Street")
                    .Bind(5, Bsb(int(i * (1000000LL / count))))
                    .Bind(6, i % 8);
                insert.Read();
            }
        }
        raw_->Run("COMMIT");
    }

    int Count() const { return count_; }
    RawDatabase &Raw() { return *raw_; }
    const QString &File() const { return file_; }
    std::string BsbOf(int key) const { return Bsb(int((key - 1) * (1000000LL / count_))); }

private:
    int count_;
    QTemporaryDir folder_;
    QString file_;
    std::unique_ptr<RawDatabase> raw_;
};

std::map<int, std::unique_ptr<Banks>> allBanks;

// Makes the database of this size the main connection.
Banks &Use(int count)
{
    static int current = 0;
    std::unique_ptr<Banks> &banks = allBanks[count];
    if (!banks)
        banks = std::make_unique<Banks>(count);
    if (current != count || !HasMainConnection())
        SetMainConnection(OpenEmbeddedDatabase(banks->File()));
    current = count;
    return *banks;
}

class List
{
public:
    List()
    {
        grid.SetColumns({{"idBank", "Bank ID", Kind::Integer, 70, false},
                         {"cBSBNumber", "BSB Number", Kind::Text, 100},
                         {"cCode", "Code", Kind::Text, 100},
                         {"cBankName", "Bank Name", Kind::Text, 280},
                         {"cBranchName", "Branch Name", Kind::Text, 260},
                         {"cStateCode", "State", Kind::Text, 60},
                         {"idNotes", "Notes", Kind::Notes, 60}},
                        "cBSBNumber");
        grid.resize(900, 600);
        grid.show();
        QCoreApplication::processEvents();
    }
    void Open() { grid.OpenList(Source()); }
    // Until nothing more is read ahead or counted.
    void Settle()
    {
        while (grid.RecordCount() < 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    static TListSource Source() { return {"_ipvBanks", {"cCode"}, "idBank", {}, {}}; }
    void RequireFocus(int key) const
    {
        if (grid.FocusedKey() != key)
            throw std::runtime_error("the list stands on " + std::to_string(grid.FocusedKey()) + ", not on " +
                                     std::to_string(key));
    }

    TqsGrid grid;
};

void BM_OpenToFirstRows(benchmark::State &state)
{
    Banks &banks = Use(int(state.range(0)));
    List list;
    SideBySide(
        state, [&] { list.Open(); },
        [&] {
            RawStatement page(banks.Raw(), kSelect + "ORDER BY B.cBSBNumber, B.idBank LIMIT 100");
            page.Read();
        });
    list.RequireFocus(1);
}

// With the rows on the screen; painting has no counterpart in the C API.
void BM_OpenToPainted(benchmark::State &state)
{
    Use(int(state.range(0)));
    List list;
    for (auto turn : state) {
        (void)turn;
        state.SetIterationTime(Seconds([&] {
            list.Open();
            list.grid.viewport()->repaint();
        }));
    }
}

void BM_JumpToEnd(benchmark::State &state)
{
    Banks &banks = Use(int(state.range(0)));
    List list;
    list.Open();
    double productTime = 0, rawTime = 0;
    for (auto turn : state) {
        (void)turn;
        list.grid.JumpToFirst();
        rawTime += Seconds([&] {
            RawStatement page(banks.Raw(), kSelect + "ORDER BY B.cBSBNumber DESC, B.idBank DESC LIMIT 100");
            page.Read();
        });
        const double seconds = Seconds([&] { list.grid.JumpToLast(); });
        list.RequireFocus(banks.Count());
        productTime += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["raw_us"] = benchmark::Counter(rawTime * 1e6, benchmark::Counter::kAvgIterations);
    state.counters["ratio"] = productTime / rawTime;
}

// For a text that only the last bank holds, from the first one: every row is looked at.
void BM_SearchWholeList(benchmark::State &state)
{
    Banks &banks = Use(int(state.range(0)));
    List list;
    const QString text = QStringLiteral("branch %1 str").arg(banks.Count() - 1);
    double productTime = 0, rawTime = 0;
    for (auto turn : state) {
        (void)turn;
        list.Open();
        rawTime += Seconds([&] {
            RawStatement find(banks.Raw(),
                              kSelect +
                                  "WHERE B.cBSBNumber >= ?1 AND (B.cBSBNumber > ?1 OR B.idBank >= ?2) AND "
                                  "(B.cBSBNumber LIKE ?3 OR B.cCode "
                                  "LIKE ?3 OR B.cBankName LIKE ?3 OR B.cBranchName LIKE ?3 OR S.cStateCode LIKE ?3) "
                                  "ORDER BY B.cBSBNumber, B.idBank LIMIT 1");
            find.Bind(1, banks.BsbOf(1)).Bind(2, 1).Bind(3, "%" + text.toStdString() + "%");
            if (find.Read() != 1)
                throw std::runtime_error("not found");
        });
        const double seconds = Seconds([&] { list.grid.Search(text, false); });
        list.RequireFocus(banks.Count());
        productTime += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["raw_us"] = benchmark::Counter(rawTime * 1e6, benchmark::Counter::kAvgIterations);
    state.counters["ratio"] = productTime / rawTime;
}

// To the first page in another order; the raw work reads the same stretch around the focused row.
void Sort(benchmark::State &state, const char *field, const std::string &column)
{
    Banks &banks = Use(int(state.range(0)));
    List list;
    const int key = banks.Count() / 2;
    double productTime = 0, rawTime = 0;
    for (auto turn : state) {
        (void)turn;
        list.grid.SortBy("cBSBNumber", TGridOrder::Ascending);
        list.Open();
        list.grid.FocusKey(key);
        rawTime += Seconds([&] {
            std::string value;
            {
                RawStatement row(banks.Raw(), kSelect + "WHERE B.idBank = ?1");
                row.Bind(1, key).Read();
            }
            sqlite3_stmt *read = nullptr;
            sqlite3_prepare_v2(
                banks.Raw().Handle(),
                ("SELECT " + column +
                 " FROM _iptblBanks B LEFT JOIN _iptblStates S ON S.idState = B.iStateID WHERE B.idBank = " +
                 std::to_string(key))
                    .c_str(),
                -1, &read, nullptr);
            if (sqlite3_step(read) == SQLITE_ROW)
                value = reinterpret_cast<const char *>(sqlite3_column_text(read, 0));
            sqlite3_finalize(read);
            RawStatement after(banks.Raw(), kSelect + "WHERE " + column + " >= ?1 AND (" + column +
                                                " > ?1 OR B.idBank > ?2) ORDER BY " + column + ", B.idBank LIMIT 100");
            RawStatement before(banks.Raw(), kSelect + "WHERE " + column + " <= ?1 AND (" + column +
                                                 " < ?1 OR B.idBank < ?2) ORDER BY " + column +
                                                 " DESC, B.idBank DESC LIMIT 100");
            if (after.Bind(1, value).Bind(2, key).Read() + before.Bind(1, value).Bind(2, key).Read() < 100)
                throw std::runtime_error("too few rows");
        });
        const double seconds = Seconds([&] { list.grid.SortBy(QString::fromLatin1(field), TGridOrder::Ascending); });
        list.RequireFocus(key);
        productTime += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["raw_us"] = benchmark::Counter(rawTime * 1e6, benchmark::Counter::kAvgIterations);
    state.counters["ratio"] = productTime / rawTime;
}
void BM_SortByIndexedColumn(benchmark::State &state)
{
    Sort(state, "cBankName", "B.cBankName");
}
void BM_SortByJoinedColumn(benchmark::State &state)
{
    Sort(state, "cStateCode", "S.cStateCode");
}

// Changes one bank's branch name and gives its key; another bank every time, all over the table.
class Saver
{
public:
    explicit Saver(Banks &banks)
        : banks_(banks)
    {}
    int NextKey()
    {
        at_ = (at_ * 1103515245u + 12345u) & 0x7fffffffu;
        return 1 + int(at_ % unsigned(banks_.Count()));
    }
    // Reads the record, changes it and posts it, as a dialog does.
    void SaveRecord(int key)
    {
        TqryIPBanks record;
        record.SelectRecords("idBank", key, false);
        record.brEdit();
        record.SetBranchName(QStringLiteral("Changed %1").arg(++turn_));
        record.Post();
    }
    // The same in plain SQL: the row read, and one transaction with its update.
    void SaveRaw(int key)
    {
        RawStatement read(
            banks_.Raw(),
            "SELECT idBank, cCode, cBankName, cBranchName, cBSBNumber, iStateID FROM _iptblBanks WHERE idBank = ?1");
        read.Bind(1, key).Read();
        banks_.Raw().Run("BEGIN IMMEDIATE");
        RawStatement update(banks_.Raw(), "UPDATE _iptblBanks SET cBranchName = ?1 WHERE idBank = ?2");
        update.Bind(1, "Changed " + std::to_string(++turn_)).Bind(2, key).Read();
        banks_.Raw().Run("COMMIT");
    }

private:
    Banks &banks_;
    // Of the whole program: the library starts a benchmark several times, and a value that stands there already is not
    // written.
    static inline unsigned at_ = 1;
    static inline int turn_ = 0;
};

void BM_Save(benchmark::State &state)
{
    Banks &banks = Use(int(state.range(0)));
    Saver saver(banks);
    SideBySide(
        state, [&] { saver.SaveRecord(saver.NextKey()); }, [&] { saver.SaveRaw(saver.NextKey()); });
}

// The list is read again after somebody's save and stands on the saved bank.
void BM_RefreshAndRelocate(benchmark::State &state)
{
    Banks &banks = Use(int(state.range(0)));
    List list;
    list.Open();
    Saver keys(banks);
    int key = 0;
    SideBySide(
        state, [&] { list.grid.ReReadList(List::Source(), true, key); },
        [&] {
            key = keys.NextKey();
            RawStatement at(banks.Raw(), kSelect + "WHERE B.idBank = ?1");
            RawStatement before(banks.Raw(), kBackward), after(banks.Raw(), kForward);
            at.Bind(1, key).Read();
            before.Bind(1, banks.BsbOf(key)).Bind(2, key).Read();
            after.Bind(1, banks.BsbOf(key)).Bind(2, key).Read();
        });
    list.RequireFocus(key);
}

void BM_SaveRefreshRelocate(benchmark::State &state)
{
    Banks &banks = Use(int(state.range(0)));
    List list;
    list.Open();
    Saver saver(banks);
    SideBySide(
        state,
        [&] {
            const int key = saver.NextKey();
            saver.SaveRecord(key);
            list.grid.ReReadList(List::Source(), true, key);
        },
        [&] {
            const int key = saver.NextKey();
            saver.SaveRaw(key);
            RawStatement at(banks.Raw(), kSelect + "WHERE B.idBank = ?1");
            RawStatement before(banks.Raw(), kBackward), after(banks.Raw(), kForward);
            at.Bind(1, key).Read();
            before.Bind(1, banks.BsbOf(key)).Bind(2, key).Read();
            after.Bind(1, banks.BsbOf(key)).Bind(2, key).Read();
        });
}

// Reading ahead and counting after a list was opened: all of it, and the longest that a user's key would have to wait.
void BM_IdleWorkAfterOpening(benchmark::State &state)
{
    Use(int(state.range(0)));
    List list;
    double longest = 0;
    for (auto turn : state) {
        (void)turn;
        list.Open();
        bool known = false;
        const auto counted = QObject::connect(&list.grid, &TqsGrid::RecordCountChanged,
                                              [&](qlonglong count) { known = known || count >= 0; });
        double busy = 0;
        while (!known) {
            const double seconds = Seconds([] { QCoreApplication::processEvents(); });
            busy += seconds;
            longest = std::max(longest, seconds);
            QThread::usleep(100); // the pause before counting is not work
        }
        QObject::disconnect(counted);
        state.SetIterationTime(busy);
    }
    state.counters["longest_ms"] = longest * 1e3;
}

double AllocatedMiB()
{
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd) / (1024 * 1024);
}

// Memory above that of the program with the database connected: open and read ahead, then scrolled until the window is
// full.
void BM_MemoryOfAnOpenList(benchmark::State &state)
{
    Banks &banks = Use(int(state.range(0)));
    SetMainConnection(nullptr);
    SetMainConnection(OpenEmbeddedDatabase(banks.File()));
    const double before = AllocatedMiB();
    for (auto turn : state) {
        (void)turn;
        auto list = std::make_unique<List>();
        list->Open();
        list->Settle();
        state.counters["open_MiB"] = AllocatedMiB() - before;
        double most = 0;
        for (int i = 0; i < 60; ++i) {
            list->grid.verticalScrollBar()->setValue(list->grid.verticalScrollBar()->maximum());
            for (int turns = 0; turns < 8; ++turns)
                QCoreApplication::processEvents();
            most = std::max(most, AllocatedMiB() - before);
        }
        state.counters["most_MiB"] = most;
    }
}

// The console's table, and afterwards what became of the aims.
class Reporter final : public benchmark::ConsoleReporter
{
public:
    using ConsoleReporter::ConsoleReporter;
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            std::string name = run.benchmark_name();
            name = name.substr(0, name.find("/manual_time"));
            name = name.substr(0, name.find("/iterations"));
            times_[name] = run.GetAdjustedRealTime();
            for (const auto &[counter, value] : run.counters)
                times_[name + " " + counter] = value.value;
        }
    }
    void Finalize() override
    {
        std::printf("\nAims\n");
        for (const char *name :
             {"BM_OpenToFirstRows", "BM_OpenToPainted", "BM_Save", "BM_RefreshAndRelocate", "BM_SaveRefreshRelocate"})
            Tell(std::string(name) + ", 1 000 000 over 1 000", Of(name, kLarge) / Of(name, kSmall), 2);
        for (const int count : {kSmall, kMiddle, kLarge})
            Tell("BM_Save over the plain transaction, " + std::to_string(count), Of("BM_Save", count, " ratio"), 1.5);
        for (const int count : {kSmall, kMiddle, kLarge})
            Tell("MiB of an open list, at most, " + std::to_string(count),
                 Of("BM_MemoryOfAnOpenList", count, " most_MiB"), 20);
    }

private:
    double Of(const std::string &name, int count, const std::string &counter = {}) const
    {
        const auto it = times_.find(name + "/" + std::to_string(count) + counter);
        return it == times_.end() ? 0 : it->second;
    }
    static void Tell(const std::string &what, double value, double aim)
    {
        if (value > 0)
            std::printf("%-60s %8.2f  (aim: below %.1f)%s\n", what.c_str(), value, aim, value > aim ? "  MISSED" : "");
    }
    std::map<std::string, double> times_;
};

} // namespace

#define SIZES ->Arg(kSmall)->Arg(kMiddle)->Arg(kLarge)->UseManualTime()->Unit(benchmark::kMicrosecond)
BENCHMARK(BM_OpenToFirstRows) SIZES;
BENCHMARK(BM_OpenToPainted) SIZES;
BENCHMARK(BM_JumpToEnd) SIZES;
BENCHMARK(BM_SearchWholeList) SIZES;
BENCHMARK(BM_SortByIndexedColumn) SIZES;
BENCHMARK(BM_SortByJoinedColumn) SIZES;
BENCHMARK(BM_Save) SIZES;
BENCHMARK(BM_RefreshAndRelocate) SIZES;
BENCHMARK(BM_SaveRefreshRelocate) SIZES;
BENCHMARK(BM_IdleWorkAfterOpening) SIZES;
BENCHMARK(BM_MemoryOfAnOpenList)->Arg(kSmall)->Arg(kMiddle)->Arg(kLarge)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    const QApplication app(argc, argv);
    Reporter reporter(benchmark::ConsoleReporter::OO_Tabular);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    SetMainConnection(nullptr);
    allBanks.clear();
    return 0;
}
