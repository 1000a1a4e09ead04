// What the program does before it has a window.
#include "app/modGeneralFunctions.h"
#include "app/modMain.h"
#include "app/modShared.h"
#include "app/modSharedRegistryFuncties.h"

namespace {

constexpr wchar_t kVersionSubKey[] = L"3.2\\PAP32\\";
constexpr std::int32_t kWizardTitle = 0;

// Built in: they are needed where there is no language file.
constexpr wchar_t kFirstTitle[] = L"Orvane Wizard Prijsaanpassingen";
constexpr wchar_t kNoLanguage[] = L"Languagefile could not be loaded!";

std::wstring MachineSetting(const std::wstring& vName) {
  return NullToString(fGetstring(registry::RootKey::kLocalMachine, kSettingsKey, vName));
}

}  // namespace

bool PrepareWizard(language::LanguageProvider& vLanguage) {
  SharedSettings& shared = Shared();
  shared.strApplicationTitle = kFirstTitle;
  shared.strVersionSubKey = kVersionSubKey;
  shared.objLanguage = &vLanguage;
  GetOrvRegistrySettings();
  if (vLanguage.LoadLanguageFile(shared.strLanguageFile) == language::kNotLoaded) {
    ShowMessage(kNoLanguage, L"");
    return false;
  }
  shared.strApplicationTitle = LanguageText(kWizardTitle);
  return true;
}

void GetOrvRegistrySettings() {
  try {
    Shared().strLanguageFile = MachineSetting(L"PAPUPDATERLANGUAGE");
    Shared().strWelcomeText = MachineSetting(L"PAPUPDATERWELCOME");
  } catch (...) {
    ShowErrorMessage(L"modMain.GetOrvRegistrySettings (Sub)");
  }
}
