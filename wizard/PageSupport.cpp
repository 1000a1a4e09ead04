// What the pages of the wizard share.
#include "wizard/PageSupport.h"

#include "app/modShared.h"
#include "platform/text/strings.h"

namespace {

namespace StepTexts {
constexpr std::int32_t kGoOn = 10;
}  // namespace StepTexts

}  // namespace

std::wstring ToolTipText(std::int32_t vNumber) {
  return text::ReplaceAll(Shared().objLanguage->GetToolTipText(vNumber), L"\\n", L"");
}

std::wstring StepText(const std::wstring& vAbout) {
  return vAbout + L" " + LanguageText(StepTexts::kGoOn);
}

std::wstring ListKey(std::size_t vPosition) { return std::to_wstring(vPosition) + L"P"; }
