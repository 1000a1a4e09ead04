// The shared record in use, and the stand-ins for services that nobody installed.
#include "app/modShared.h"

#include <cstdio>
#include <memory>
#include <optional>

#include "platform/files/paths.h"
#include "platform/files/program_folder.h"
#include "platform/text/code_page.h"

namespace {

// A program that shows nothing must still not swallow what it has to say.
class StandardErrorPrompt final : public controls::Prompt {
 public:
  void ShowMessage(const std::wstring& vText, const std::wstring&) override { Print(vText); }
  bool AskYesNo(const std::wstring& vText, const std::wstring&) override {
    Print(vText);
    return false;
  }

 private:
  static void Print(const std::wstring& vText) {
    std::fprintf(stderr, "%s\n", text::WideToUtf8(vText).c_str());
  }
};

class NoFileDialog final : public controls::FileDialog {
 public:
  std::optional<std::wstring> ChooseFile(const Request&) override { return std::nullopt; }
};

class NoClipboard final : public controls::Clipboard {
 public:
  void Clear() override {}
  void SetText(const std::wstring&) override {}
};

class NoLanguage final : public language::LanguageProvider {
 public:
  std::int16_t LoadLanguageFile(const std::wstring&) override { return language::kNotLoaded; }
  std::wstring GetText(std::int32_t) const override { return {}; }
  std::wstring GetToolTipText(std::int32_t) const override { return {}; }
  std::wstring GetMessageText(std::int32_t) const override { return {}; }
};

SharedSettings* m_installed = nullptr;

}  // namespace

language::LanguageProvider& DefaultLanguage() {
  static NoLanguage language;
  return language;
}

controls::Prompt& DefaultPrompt() {
  static StandardErrorPrompt prompt;
  return prompt;
}

controls::FileDialog& DefaultFileDialog() {
  static NoFileDialog dialog;
  return dialog;
}

controls::Clipboard& DefaultClipboard() {
  static NoClipboard clipboard;
  return clipboard;
}

controls::EventPump& DefaultEventPump() {
  static controls::NoEventPump pump;
  return pump;
}

controls::Clock& DefaultClock() {
  static controls::SystemClock clock;
  return clock;
}

registry::Registry& DefaultRegistry() {
  static const std::unique_ptr<registry::Registry> registry = registry::MakeSystemRegistry();
  return *registry;
}

SharedSettings& Shared() {
  static SharedSettings defaults;
  return m_installed != nullptr ? *m_installed : defaults;
}

SharedSettingsScope::SharedSettingsScope(SharedSettings& vSettings) : m_outer(m_installed) {
  m_installed = &vSettings;
}

SharedSettingsScope::~SharedSettingsScope() { m_installed = m_outer; }

void DoEvents() { Shared().objEventPump->DoEvents(); }

std::wstring LanguageText(std::int32_t vNumber) { return Shared().objLanguage->GetText(vNumber); }

std::wstring ProgramFolder() {
  const std::wstring& folder = Shared().strProgramFolder;
  return folder.empty() ? files::ToText(files::ProgramFolder()) : folder;
}
