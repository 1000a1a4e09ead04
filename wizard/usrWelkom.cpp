// The wizard's first page: a welcome text.
#include "wizard/usrWelkom.h"

#include <cstdint>
#include <filesystem>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/files/paths.h"
#include "platform/files/text_reader.h"
#include "platform/text/runtime_error.h"
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

// More than anybody reads before a wizard, and than a text box should be given.
constexpr std::uint64_t kLargestFile = 1024 * 1024;

// A bare name is that of a file beside the program, so that a folder may be carried around.
std::filesystem::path WelcomeFile() {
  return files::ToPath(ProgramFolder()) / files::ToPath(Shared().strWelcomeText);
}

// Throws text::RuntimeError (platform/files/text_reader.h), also where there is no second line, and
// names the file.
Welcome ReadWelcome(const std::wstring& vPath) {
  try {
    if (files::FileSize(vPath) > kLargestFile) text::Raise(text::kOutOfMemory);
    files::TextReader file(files::ToPath(vPath));
    Welcome welcome{.heading = file.ReadLine(), .body = {}};
    do {
      welcome.body += file.ReadLine() + L"\r\n";
    } while (!file.AtEnd());
    return welcome;
  } catch (const text::RuntimeError& error) {
    throw text::RuntimeError(error.number(), error.description() + L": '" + vPath + L"'");
  }
}

}  // namespace

usrWelkom::usrWelkom() {
  Contain({&Text1});
  Text1.SetMultiLine(true);
  Text1.SetLocked(true);
}

controls::Layout usrWelkom::Arrangement() {
  return controls::Column({controls::Stretched(controls::Show(&Text1))});
}

void usrWelkom::Init() {
  LadenWelkomText();
  RaiseEvent(AanzettenVolgende, true);
}

void usrWelkom::LadenWelkomText() {
  try {
    const std::wstring path = files::ToText(WelcomeFile());
    Welcome welcome;
    if (files::FileExists(path)) welcome = ReadWelcome(path);
    if (text::Trim(welcome.heading).empty()) {
      welcome = {.heading = LanguageText(WelcomeTexts::kWizard),
                 .body = text::ReplaceAll(LanguageText(WelcomeTexts::kNoWelcomeFile), L"%s",
                                          Shared().strWelcomeText)};
    }
    RaiseEvent(SetStepText, StepText(welcome.heading));
    Text1.SetText(welcome.body);
  } catch (...) {
    ShowErrorMessage(L"usrWelkom.LadenWelkomText (Sub)");
  }
}
