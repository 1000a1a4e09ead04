// The wizard's first page: a welcome text.
#include "wizard/usrWelkom.h"

#include <cstdint>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/files/paths.h"
#include "platform/files/text_reader.h"
#include "platform/text/strings.h"
#include "wizard/PageSupport.h"

namespace {

namespace WelcomeTexts {
constexpr std::int32_t kWizard = 0;
constexpr std::int32_t kNoWelcomeFile = 5;  // "%s" stands for its path
}  // namespace WelcomeTexts

struct Welcome {
  std::wstring heading;
  std::wstring body;
};

// Throws text::RuntimeError (platform/files/text_reader.h), also where there is no second line.
Welcome ReadWelcome(const std::wstring& vPath) {
  files::TextReader file(files::ToPath(vPath));
  Welcome welcome{.heading = file.ReadLine(), .body = {}};
  do {
    welcome.body += file.ReadLine() + L"\r\n";
  } while (!file.AtEnd());
  return welcome;
}

}  // namespace

usrWelkom::usrWelkom() {
  Text1.SetMultiLine(true);
  Text1.SetLocked(true);
}

void usrWelkom::Init() {
  LadenWelkomText();
  RaiseEvent(AanzettenVolgende, true);
}

void usrWelkom::LadenWelkomText() {
  try {
    const std::wstring& path = Shared().strWelcomeText;
    Welcome welcome;
    if (files::FileExists(path)) welcome = ReadWelcome(path);
    if (text::Trim(welcome.heading).empty()) {
      welcome = {.heading = LanguageText(WelcomeTexts::kWizard),
                 .body = text::ReplaceAll(LanguageText(WelcomeTexts::kNoWelcomeFile), L"%s", path)};
    }
    RaiseEvent(SetStepText, StepText(welcome.heading));
    Text1.SetText(welcome.body);
  } catch (...) {
    ShowErrorMessage(L"usrWelkom.LadenWelkomText (Sub)");
  }
}
