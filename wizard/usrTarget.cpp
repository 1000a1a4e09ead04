// The wizard's second page: which product table to update, and whether to back it up.
#include "wizard/usrTarget.h"

#include <cstdint>
#include <optional>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "app/modSharedRegistryFuncties.h"
#include "platform/files/paths.h"
#include "updates/modSharedPapFolder.h"
#include "wizard/PageSupport.h"

namespace {

namespace TargetTexts {
constexpr std::int32_t kTitle = 42;
constexpr std::int32_t kFileFilter = 48;
constexpr std::int32_t kChooseFile = 49;
// The captions, and the tool tips of the same numbers.
constexpr std::int32_t kLocation = 1010;
constexpr std::int32_t kBrowse = 1011;
constexpr std::int32_t kReset = 1012;
constexpr std::int32_t kBackup = 1013;
}  // namespace TargetTexts

void SetTexts(controls::CaptionedControl& vControl, std::int32_t vNumber) {
  vControl.SetCaption(LanguageText(vNumber));
  vControl.SetToolTip(ToolTipText(vNumber));
}

}  // namespace

usrTarget::usrTarget() {
  Contain({&lblPTLocation, &txt_PTLocation, &cmdSelPT, &cmdReset, &chkBackup});
  cmdSelPT.Click = [this] { cmdSelPT_Click(); };
  cmdReset.Click = [this] { cmdReset_Click(); };
}

controls::Layout usrTarget::Arrangement() {
  using controls::Column, controls::Row, controls::Show, controls::Stretched;
  return Column({Show(&lblPTLocation),
                 Row({Stretched(Show(&txt_PTLocation)), Show(&cmdSelPT), Show(&cmdReset)}),
                 Show(&chkBackup), controls::Space()});
}

void usrTarget::Init() {
  try {
    setupLanguage();
    RaiseEvent(SetStepText, StepText(LanguageText(TargetTexts::kTitle)));
    if (!m_visited) LoadChoices();
    m_visited = true;
    RaiseEvent(AanzettenVolgende, true);
  } catch (...) {
    ShowErrorMessage(L"usrTarget.Init (Sub)");
  }
}

void usrTarget::setupLanguage() {
  try {
    lblPTLocation.SetCaption(LanguageText(TargetTexts::kLocation));
    SetTexts(cmdSelPT, TargetTexts::kBrowse);
    SetTexts(cmdReset, TargetTexts::kReset);
    SetTexts(chkBackup, TargetTexts::kBackup);
  } catch (...) {
    ShowErrorMessage(L"usrTarget.setupLanguage (Sub)");
  }
}

void usrTarget::LoadChoices() {
  txt_PTLocation.SetText(GetProductTablePath());
  const std::wstring stored = CurrentUser_HaalOp(L"", L"PTLocation", L"");
  if (!stored.empty()) txt_PTLocation.SetText(stored);
  chkBackup.SetValue(CurrentUser_HaalOpBoolean(L"", L"Backup", L"True"));
}

void usrTarget::cmdSelPT_Click() {
  try {
    const std::wstring& current = txt_PTLocation.Text();
    const std::optional<std::wstring> chosen = Shared().objFileDialog->ChooseFile(
        {.title = LanguageText(TargetTexts::kChooseFile),
         .filter = LanguageText(TargetTexts::kFileFilter),
         .file = files::FileExists(current) ? current : std::wstring()});
    if (chosen) txt_PTLocation.SetText(*chosen);
  } catch (...) {
    ShowErrorMessage(L"usrTarget.cmdSelPT_Click (Sub)");
  }
}

void usrTarget::cmdReset_Click() {
  try {
    txt_PTLocation.SetText(GetProductTablePath());
  } catch (...) {
    ShowErrorMessage(L"usrTarget.cmdReset_Click (Sub)");
  }
}
