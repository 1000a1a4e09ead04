// The machine-wide settings that the program reads once, at its start.
#include "app/modGeneralFunctions.h"
#include "app/modMain.h"
#include "app/modShared.h"
#include "app/modSharedRegistryFuncties.h"

namespace {

std::wstring MachineSetting(const std::wstring& vName) {
  return NullToString(fGetstring(registry::RootKey::kLocalMachine, kSettingsKey, vName));
}

}  // namespace

void GetOrvRegistrySettings() {
  try {
    Shared().strLanguageFile = MachineSetting(L"PAPUPDATERLANGUAGE");
    Shared().strWelcomeText = MachineSetting(L"PAPUPDATERWELCOME");
  } catch (...) {
    ShowErrorMessage(L"modMain.GetOrvRegistrySettings (Sub)");
  }
}
