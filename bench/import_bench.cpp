// How fast an update of N articles and N prices is imported, beside the same work done with SQLite.
//
// Counters: records/s (a record is an article with its dimensions, or a price), peak_MB (the
// process's peak memory during the import) and pages_written (pages of 4096 bytes written to the
// product table).
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/modShared.h"
#include "bench/sqlite_import.h"
#include "bench/synthetic_update.h"
#include "demo/product_table.h"
#include "platform/database/session.h"
#include "platform/files/paths.h"
#include "store/modProductTable.h"
#include "tests/support/temporary_folder.h"
#include "updates/modSharedPap.h"

namespace {

constexpr double kRecordsPerArticle = 2;

// The peak memory of the process since the last reset; from the system's process files.
class PeakMemory {
 public:
  static void Reset() { std::ofstream("/proc/self/clear_refs") << "5"; }

  static double Megabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024;
    }
    return 0;
  }
};

void ReportRecords(benchmark::State& state, double seconds) {
  state.SetIterationTime(seconds);
  const double records = kRecordsPerArticle * static_cast<double>(state.range(0));
  state.counters["records/s"] = records / seconds;
}

void ImportUpdate(benchmark::State& state) {
  const auto articles = static_cast<std::size_t>(state.range(0));
  for ([[maybe_unused]] auto _ : state) {
    const test_support::TemporaryFolder folder;
    const std::wstring table = folder.Text("Orv.pt");
    demo::CreateProductTable(table);
    bench::WriteSyntheticUpdate(folder / "BENCH.PRC", articles);

    PeakMemory::Reset();
    const auto start = std::chrono::steady_clock::now();
    clsOrvPap update;
    ReadPapHeader(folder.Text("BENCH.PRC"), update);
    const bool imported = update.UpdatePT(table);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;

    if (!imported) {
      state.SkipWithError("the import reported a failure");
      break;
    }
    ReportRecords(state, seconds.count());
    state.counters["peak_MB"] = PeakMemory::Megabytes();
    state.counters["pages_written"] =
        static_cast<double>(ProductConnection->Connection->session()->database().pages_written());
    ProductConnection.reset();
  }
}

void ImportWithSqlite(benchmark::State& state, bench::SqliteCommit commit) {
  for ([[maybe_unused]] auto _ : state) {
    const test_support::TemporaryFolder folder;
    PeakMemory::Reset();
    ReportRecords(state, bench::ImportWithSqlite(folder / "yardstick.db",
                                                 static_cast<std::size_t>(state.range(0)), commit));
    state.counters["peak_MB"] = PeakMemory::Megabytes();
  }
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime()->Iterations(1)->Unit(
      benchmark::kMillisecond);
}

BENCHMARK(ImportUpdate)->Apply(Sizes);
BENCHMARK_CAPTURE(ImportWithSqlite, commit_each_record, bench::SqliteCommit::kEachRecord)
    ->Apply(Sizes);
BENCHMARK_CAPTURE(ImportWithSqlite, commit_once, bench::SqliteCommit::kOnceForAll)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
