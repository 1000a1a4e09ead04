// Reads an update file of any bytes, header and sections, and writes what was read as a file again.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "app/modShared.h"
#include "engine/clsOrvPap.h"
#include "platform/controls/services.h"
#include "platform/files/paths.h"
#include "platform/text/runtime_error.h"
#include "tests/support/temporary_folder.h"
#include "updates/modSharedPap.h"

namespace {

// The splitter turns for ever on a line whose first quoted field is not closed; this ends it.
class BoundedEventPump final : public controls::EventPump {
 public:
  void DoEvents() override {
    if (++turns_ > kMostTurns) throw ProcessEnding{};
  }

 private:
  static constexpr int kMostTurns = 20000;
  int turns_ = 0;
};

class SilentPrompt final : public controls::Prompt {
 public:
  void ShowMessage(const std::wstring&, const std::wstring&) override {}
  bool AskYesNo(const std::wstring&, const std::wstring&) override { return true; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const test_support::TemporaryFolder folder;
  const std::wstring path =
      files::ToText(folder.Write("UPDATE.PRC", {reinterpret_cast<const char*>(data), size}));
  std::filesystem::create_directories(folder / "written");

  BoundedEventPump pump;
  SilentPrompt prompt;
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
