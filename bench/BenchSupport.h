// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <chrono>
#include <stdexcept>
#include <string>

// The plain C API beside which the product's ways are measured. Errors end the program: a benchmark has nobody to tell.
class RawDatabase
{
public:
    explicit RawDatabase(const std::string &file)
    {
        if (sqlite3_open(file.c_str(), &handle_) != SQLITE_OK)
            throw std::runtime_error("cannot open " + file);
    }
    ~RawDatabase() { sqlite3_close(handle_); }
    RawDatabase(const RawDatabase &) = delete;
    RawDatabase &operator=(const RawDatabase &) = delete;

    void Run(const std::string &sql)
    {
        char *message = nullptr;
        if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK)
            throw std::runtime_error(sql + ": " + (message ? message : "?"));
    }
    sqlite3 *Handle() const { return handle_; }

private:
    sqlite3 *handle_ = nullptr;
};

// A prepared statement; values are bound by position from 1.
class RawStatement
{
public:
    RawStatement(const RawDatabase &database, const std::string &sql)
        : handle_(database.Handle())
    {
        if (sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement_, nullptr) != SQLITE_OK)
            throw std::runtime_error(sql + ": " + sqlite3_errmsg(handle_));
    }
    ~RawStatement() { sqlite3_finalize(statement_); }
    RawStatement(const RawStatement &) = delete;
    RawStatement &operator=(const RawStatement &) = delete;

    RawStatement &Bind(int position, const std::string &text)
    {
        sqlite3_bind_text(statement_, position, text.c_str(), int(text.size()), SQLITE_TRANSIENT);
        return *this;
    }
    RawStatement &Bind(int position, int number)
    {
        sqlite3_bind_int(statement_, position, number);
        return *this;
    }
    // Reads every row to the end, each value as text, and gives the number of rows. Ready to run again afterwards.
    int Read()
    {
        int rows = 0, code = SQLITE_ROW;
        for (; (code = sqlite3_step(statement_)) == SQLITE_ROW; ++rows) {
            for (int i = 0; i < sqlite3_column_count(statement_); ++i)
                benchmark::DoNotOptimize(
                    std::string(sqlite3_column_bytes(statement_, i)
                                    ? reinterpret_cast<const char *>(sqlite3_column_text(statement_, i))
                                    : ""));
        }
        if (code != SQLITE_DONE)
            throw std::runtime_error(sqlite3_errmsg(handle_));
        sqlite3_reset(statement_);
        return rows;
    }

private:
    sqlite3 *handle_;
    sqlite3_stmt *statement_ = nullptr;
};

// Seconds that a piece of work takes.
template <class Work> double Seconds(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// One turn after another of the product's work and of the same work in the C API: the first is the benchmark's time,
// the second its counter "raw_us", both per turn, and "ratio" is the first over the second.
template <class Product, class Raw> void SideBySide(benchmark::State &state, Product product, Raw raw)
{
    double productTime = 0, rawTime = 0;
    for (auto turn : state) {
        (void)turn;
        rawTime += Seconds(raw);
        const double seconds = Seconds(product);
        productTime += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["raw_us"] = benchmark::Counter(rawTime * 1e6, benchmark::Counter::kAvgIterations);
    state.counters["ratio"] = productTime / rawTime;
}
