// How long the wizard's window stands still while it works: walks through the wizard with an import
// of 20,000 records while a timer beats, and tells the largest gap between two beats, of each run
// and the median of all.
//
//     heartbeat [RUNS]
//
// Needs a display (tools/run-under-xvfb.sh). The goal is a median below 200 ms.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/modMain.h"
#include "app/modShared.h"
#include "bench/synthetic_update.h"
#include "bench/wx/beats.h"
#include "demo/installation.h"
#include "platform/files/paths.h"
#include "platform/registry/posix/system_registry.h"
#include "store/modProductTable.h"
#include "tests/support/temporary_folder.h"
#include "tests/walks/wx/robot.h"
#include "tests/walks/wx/screen.h"
#include "updates/modSharedPap.h"

namespace {

namespace fs = std::filesystem;

constexpr int kBeat = 10;                  // milliseconds
constexpr std::size_t kArticles = 10'000;  // each with a price: two records
constexpr int kRuns = 5;

// As a pipe carries it.
struct Gap {
  double milliseconds = 0;
  std::array<char, 160> at{};
};

void Apply(const fs::path& update, const fs::path& table) {
  clsOrvPap pap;
  ReadPapHeader(files::ToText(update), pap);
  if (!pap.UpdatePT(files::ToText(table))) throw std::runtime_error("the update is not applied");
  ProductConnection.reset();
}

// Finds the large update as the only one, of a supplier and an assortment that are there already.
void Prepare(const fs::path& installation, const fs::path& program) {
  demo::MakeInstallation(installation, program);
  const fs::path updates = installation / demo::kUpdateFolder;
  fs::remove_all(updates);
  fs::create_directories(updates);
  const fs::path first = installation / "FIRST.PRC";
  bench::WriteSyntheticUpdate(first, 1);
  Apply(first, installation / demo::kProductTableFile);
  bench::WriteSyntheticUpdate(updates / "BENCH.PRC", kArticles);
}

Gap Walk() {
  const test_support::TemporaryFolder folder;
  const fs::path installation = folder / "demo";
  const fs::path program = folder.Write("bin/program", "");  // any file will do
  fs::copy(ORVPAP_LANG_FOLDER, folder / "bin/lang", fs::copy_options::recursive);
  Prepare(installation, program);

  registry::FileRegistry registry([&] {
    const fs::path file = installation / demo::kRegistryFile;
    return registry::StoreLocation{.user = file, .machine = file};
  });
  registry.WriteText(registry::RootKey::kLocalMachine, kSettingsKey, L"PAPUPDATERLANGUAGE",
                     L"english.lng");
  SharedSettings settings;
  settings.strProgramFolder = files::ToText(installation);
  settings.objRegistry = &registry;
  const SharedSettingsScope scope(settings);

  Gap largest;
  walks::Play([] { Main(L"http://127.0.0.1:1"); },
              [&] {
                std::unique_ptr<bench::Beats> beats;
                walks::OnWindows([&] { beats = std::make_unique<bench::Beats>(); });
                for (int step = 0; step < 3; ++step) walks::Press("Next >>");
                walks::Switch("Do not check");
                for (int step = 0; step < 2; ++step) walks::Press("Next >>");
                walks::OnWindows([&] {
                  if (!walks::Rows().back().ends_with("|finished") || !walks::Message().empty()) {
                    throw std::runtime_error("the import failed");
                  }
                  largest.milliseconds = beats->LargestGap();
                  std::snprintf(largest.at.data(), largest.at.size(), "%s", beats->At().c_str());
                  beats.reset();
                });
                walks::Begin("Close");
              });
  return largest;
}

// A process can walk once.
Gap WalkInAProcess() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t process = fork();
  if (process == 0) {
    const Gap gap = Walk();
    _exit(write(ends[1], &gap, sizeof gap) == sizeof gap ? 0 : 1);
  }
  close(ends[1]);
  Gap gap;
  const bool whole = process > 0 && read(ends[0], &gap, sizeof gap) == sizeof gap;
  close(ends[0]);
  waitpid(process, nullptr, 0);
  if (!whole) throw std::runtime_error("the walk failed");
  return gap;
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : kRuns;
  std::vector<double> gaps;
  for (int run = 1; run <= runs; ++run) {
    const auto start = std::chrono::steady_clock::now();
    const Gap gap = WalkInAProcess();
    const std::chrono::duration<double> walk = std::chrono::steady_clock::now() - start;
    gaps.push_back(gap.milliseconds);
    std::printf("run %d: %.1f s, largest gap %.0f ms (%s)\n", run, walk.count(), gap.milliseconds,
                gap.at.data());
    std::fflush(stdout);
  }
  std::sort(gaps.begin(), gaps.end());
  std::printf("median of the largest gaps: %.0f ms\n", gaps[gaps.size() / 2]);
}
