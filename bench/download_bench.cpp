// How fast the download page fetches a file of 50 MB from this machine, beside the command `curl`
// fetching the same file from the same server onto the same disk.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "app/modShared.h"
#include "demo/installation.h"
#include "platform/text/code_page.h"
#include "tests/support/memory_registry.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_folder.h"
#include "wizard/usrDownload.h"

namespace {

constexpr std::size_t kSize = 50'000'000;                // bytes
constexpr char kName[] = "BENCH_VELDHAVEN_PROFIEL.PRC";  // for a pair of the demo's product table

// A server with the index and the file.
class Server {
 public:
  Server()
      : file_(test_support::Response(std::string(kSize, 'x'))),
        index_(test_support::Response("OrvPapInfo\r\n" + std::string(kName) +
                                      ",Beams,First,20260105," + std::to_string(kSize) + ",\r\n")),
        server_([this](auto& peer, const std::string& head) {
          peer.Send(test_support::PathOf(head).ends_with("Info.txt") ? index_ : file_);
        }) {}

  std::wstring Address() const { return server_.Address(); }

 private:
  std::string file_;
  std::string index_;
  test_support::ScriptedServer server_;
};

// Measures one fetch into `target`, which is checked and removed.
template <class Fetch>
void Measure(benchmark::State& state, const std::filesystem::path& target, const Fetch& fetch) {
  for ([[maybe_unused]] auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    fetch();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(seconds.count());
    if (!std::filesystem::exists(target) || std::filesystem::file_size(target) != kSize) {
      state.SkipWithError("the file did not come as a whole");
      break;
    }
    std::filesystem::remove(target);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(kSize) * state.iterations());
}

void DownloadPage(benchmark::State& state) {
  const Server server;
  const test_support::TemporaryFolder folder;
  const std::filesystem::path program = folder.Write("bin/program", "");
  folder.Write("bin/lang/dutch.lng", "");
  demo::MakeInstallation(folder / "demo", program);

  test_support::MemoryRegistry registry;
  SharedSettings settings;
  settings.objRegistry = &registry;
  settings.strProgramFolder = folder.Text("demo");
  const SharedSettingsScope scope(settings);
  usrDownload page(server.Address());
  page.ProductTable = folder.Text("demo/Orv.pt");
  page.Init(2);
  if (page.SelectedDownloadFiles().size() != 1) throw std::runtime_error("nothing is offered");
  Measure(state, folder / "demo" / "PAP32" / kName, [&page] { page.Init(3); });
}

void CurlCommand(benchmark::State& state) {
  const Server server;
  const test_support::TemporaryFolder folder;
  const std::filesystem::path target = folder / kName;
  const std::string command = "curl --silent --user plovatin:plovatin --output '" +
                              target.string() + "' " + text::WideToUtf8(server.Address()) +
                              "/orv/PAP32SP7/" + kName;
  Measure(state, target, [&command] {
    if (std::system(command.c_str()) != 0) throw std::runtime_error("curl failed");
  });
}

BENCHMARK(DownloadPage)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(CurlCommand)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2);

}  // namespace

BENCHMARK_MAIN();
