// What the whole surface of the program shares: the settings filled once at start-up and the
// services of the process.
#pragma once

#include <string>

#include "platform/controls/services.h"
#include "platform/language/language_provider.h"
#include "platform/registry/registry.h"

// Thrown through everything when the process is to end from inside DoEvents. Deliberately no
// std::exception: no error report may swallow it. A catch-all at the surface calls ShowErrorMessage
// or IgnoreError (modGeneralFunctions), and both pass it on.
struct ProcessEnding {};

// The stand-ins used where a program or a test has installed nothing: messages and questions go to
// standard error (a question is answered No), nobody chooses a file, the clipboard keeps nothing,
// DoEvents does nothing, the machine's clock, the system's registry, no texts.
language::LanguageProvider& DefaultLanguage();
controls::Prompt& DefaultPrompt();
controls::FileDialog& DefaultFileDialog();
controls::Clipboard& DefaultClipboard();
controls::EventPump& DefaultEventPump();
controls::Clock& DefaultClock();
registry::Registry& DefaultRegistry();

// The settings record and the services. Texts start empty; filled before the first page exists,
// read-only afterwards. The services are not owned, never null, and outlive the record.
struct SharedSettings {
  std::wstring strVersionSubKey;     // "3.2\PAP32\", appended to the per-user root key
  std::wstring strLanguageFile;      // name of the language file to load
  std::wstring strWelcomeText;       // path of the welcome text file
  std::wstring strApplicationTitle;  // caption of every message box without one of its own
  std::wstring strProgramFolder;     // where the program runs from; "" asks the system
  std::wstring strLogFile;           // path of the import log; "" for that in the program's folder
  language::LanguageProvider* objLanguage = &DefaultLanguage();
  controls::Prompt* objPrompt = &DefaultPrompt();
  controls::FileDialog* objFileDialog = &DefaultFileDialog();
  controls::Clipboard* objClipboard = &DefaultClipboard();
  controls::EventPump* objEventPump = &DefaultEventPump();
  controls::Clock* objClock = &DefaultClock();
  registry::Registry* objRegistry = &DefaultRegistry();
};

// The record installed by the innermost SharedSettingsScope; a record of defaults when there is
// none.
SharedSettings& Shared();

// Installs a record while it lives. The record must outlive the scope; scopes nest and end in the
// opposite order. One thread.
class SharedSettingsScope {
 public:
  explicit SharedSettingsScope(SharedSettings& vSettings);
  ~SharedSettingsScope();
  SharedSettingsScope(const SharedSettingsScope&) = delete;
  SharedSettingsScope& operator=(const SharedSettingsScope&) = delete;

 private:
  SharedSettings* m_outer;
};

// Shorthand for the shared services.
void DoEvents();                                  // may throw ProcessEnding
std::wstring LanguageText(std::int32_t vNumber);  // GetText of the shared language

// The folder that the program runs from, without a separator at its end unless it is a root. Throws
// text::RuntimeError 76 when the system does not tell.
std::wstring ProgramFolder();
