// The registry for the whole program: two operations on any root key, and the settings of the user.
#include "app/modSharedRegistryFuncties.h"

#include <algorithm>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/text/strings.h"

namespace {

// Throws before the version is known: the key would be the host product's own.
std::wstring UserKey(const std::wstring& vSubKey) {
  if (Shared().strVersionSubKey.empty()) text::Raise(text::kInvalidProcedureCall);
  return L"Software\\Velkor Software\\Orvane\\" + Shared().strVersionSubKey + vSubKey;
}

// The lines that tell in an error report which setting it was about.
std::wstring Setting(const std::wstring& vSubKey, const std::wstring& vName) {
  return L"\r\nMap: " + vSubKey + L"\r\nKey: " + vName;
}

std::wstring NumberText(std::uint32_t vNumber) {
  constexpr std::size_t kFewestDigits = 3;
  const std::wstring digits = std::to_wstring(vNumber);
  return std::wstring(kFewestDigits - std::min(kFewestDigits, digits.size()), L'0') + digits;
}

}  // namespace

text::Variant fGetstring(registry::RootKey vRootKey, const std::wstring& vKeyPath,
                         const std::wstring& vName) {
  try {
    const auto value = Shared().objRegistry->Read(vRootKey, vKeyPath, vName);
    if (!value) return text::Null{};
    if (const auto* text = std::get_if<std::wstring>(&*value)) {
      return text->substr(0, text->find(L'\0'));
    }
    if (const auto* number = std::get_if<std::uint32_t>(&*value)) return NumberText(*number);
  } catch (...) {
    ShowErrorMessage(L"modSharedRegistryFuncties.fGetstring (Function)");
  }
  return text::Null{};
}

void fSaveString(registry::RootKey vRootKey, const std::wstring& vKeyPath,
                 const std::wstring& vName, const std::wstring& vText) {
  try {
    Shared().objRegistry->WriteText(vRootKey, vKeyPath, vName, vText);
  } catch (...) {
    ShowErrorMessage(L"modSharedRegistryFuncties.fSaveString (Sub)");
  }
}

std::wstring CurrentUser_HaalOp(const std::wstring& vSubKey, const std::wstring& vName,
                                const std::wstring& vDefault) {
  try {
    return NullToString(fGetstring(registry::RootKey::kCurrentUser, UserKey(vSubKey), vName),
                        vDefault);
  } catch (...) {
    ShowErrorMessage(L"modSharedRegistryFuncties.CurrentUser_HaalOp (Function)" +
                     Setting(vSubKey, vName));
    return vDefault;
  }
}

void CurrentUser_BrengWeg(const std::wstring& vSubKey, const std::wstring& vName,
                          const std::wstring& vText) {
  try {
    fSaveString(registry::RootKey::kCurrentUser, UserKey(vSubKey), vName, vText);
  } catch (...) {
    ShowErrorMessage(L"modSharedRegistryFuncties.CurrentUser_BrengWeg (Sub)" +
                     Setting(vSubKey, vName));
  }
}

void CurrentUser_BrengWegBoolean(const std::wstring& vSubKey, const std::wstring& vName,
                                 bool vValue) {
  try {
    CurrentUser_BrengWeg(vSubKey, vName, vValue ? L"True" : L"False");
  } catch (...) {
    ShowErrorMessage(L"modSharedRegistryFuncties.CurrentUser_BrengWegBoolean (Sub)" +
                     Setting(vSubKey, vName));
  }
}

bool CurrentUser_HaalOpBoolean(const std::wstring& vSubKey, const std::wstring& vName,
                               const std::wstring& vDefault) {
  try {
    return text::ToUpper(CurrentUser_HaalOp(vSubKey, vName, vDefault)) != L"FALSE";
  } catch (...) {
    ShowErrorMessage(L"modSharedRegistryFuncties.CurrentUser_HaalOpBoolean (Function)" +
                     Setting(vSubKey, vName));
    return false;
  }
}
