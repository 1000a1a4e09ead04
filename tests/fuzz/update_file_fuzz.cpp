// Reads an update file of any bytes, header and sections, and writes what was read as a file again.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "app/modShared.h"
#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/text/runtime_error.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/scripted_event_pump.h"
#include "tests/support/temporary_folder.h"
#include "updates/modSharedPap.h"

namespace {

// The splitter turns for ever on a line whose first quoted field is not closed. Otherwise there is
// one turn a line and a few more.
int MostTurns(std::span<const std::uint8_t> data) {
  constexpr std::ptrdiff_t kOthers = 100;
  const auto ends_line = [](std::uint8_t byte) { return byte == '\r' || byte == '\n'; };
  return static_cast<int>(std::ranges::count_if(data, ends_line) + kOthers);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const test_support::TemporaryFolder folder;
  const std::wstring path =
      files::ToText(folder.Write("UPDATE.PRC", {reinterpret_cast<const char*>(data), size}));
  std::filesystem::create_directories(folder / "written");

  test_support::ScriptedEventPump pump;
  pump.meanwhile = [&pump, most = MostTurns({data, size})] {
    if (pump.calls > most) throw ProcessEnding{};
  };
  test_support::RecordingPrompt prompt;
  SharedSettings settings;
  settings.objEventPump = &pump;
  settings.objPrompt = &prompt;
  const SharedSettingsScope scope(settings);
  try {
    clsOrvPap update;
    try {
      ReadPapHeader(path, update);
    } catch (const text::RuntimeError&) {
      update.FilePath = path;  // an impossible date; the sections are read all the same
    }
    if (update.GetPrcData()) update.SavePrcFile(folder.Text("written"));
  } catch (const ProcessEnding&) {
    return 0;
  }
  return 0;
}
