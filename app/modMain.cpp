// The start of the program and its window.
#include "app/modMain.h"

#include <cstdint>
#include <memory>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "embedded/kProgramIcon.h"
#include "platform/files/paths.h"
#include "platform/files/standard_streams.h"
#include "platform/wx/window_system.h"
#include "wizard/frmOrvPap.h"

namespace {

constexpr char kProgramName[] = "orvpap";

namespace MainTexts {
constexpr std::int32_t kYes = 1040;
constexpr std::int32_t kNo = 1041;
constexpr std::int32_t kOk = 1042;
constexpr std::int32_t kReadOnlyFile = 1043;
}  // namespace MainTexts

}  // namespace

int Main(const std::wstring& vServer) {
  files::ReserveStandardStreams();
  wx_windows::WindowSystem windows(
      {.name = kProgramName,
       .icon = kProgramIcon,
       .end_work = [] { throw ProcessEnding(); },
       .report_error = [] { ShowErrorMessage(L"modMain.Main (Function)"); }});
  SharedSettings shared = Shared();
  language::FileLanguageProvider language{files::ToPath(ProgramFolder())};
  shared.objPrompt = &windows.Prompt();
  shared.objFileDialog = &windows.FileDialog();
  shared.objClipboard = &windows.Clipboard();
  shared.objEventPump = &windows.EventPump();
  const SharedSettingsScope scope(shared);
  std::unique_ptr<frmOrvPap> wizard;
  return windows.Run([&] {
    if (!PrepareWizard(language)) return false;
    windows.SetTexts({.ok = LanguageText(MainTexts::kOk),
                      .yes = LanguageText(MainTexts::kYes),
                      .no = LanguageText(MainTexts::kNo),
                      .read_only_file = LanguageText(MainTexts::kReadOnlyFile)});
    wizard = std::make_unique<frmOrvPap>(vServer);
    wizard->Load();
    windows.Load(*wizard);
    wizard->SetState(controls::Form::WindowState::kMinimized);
    wizard->Show();
    wizard->InitForm();
    return true;
  });
}
