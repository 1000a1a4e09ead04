// The start of the program.
#pragma once

#include <string>

#include "platform/language/language_provider.h"

// The key of the machine-wide settings, below HKEY_LOCAL_MACHINE and, for the product table's
// place, below HKEY_CURRENT_USER. The host product writes it; this program never does.
inline constexpr wchar_t kSettingsKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\Settings\\";

// The program from its start to its end: prepares the shared record, shows the wizard and waits
// until it is closed. `vServer` is the address of the download server. A record that is installed
// already stays, but for the services that windows bring: a test runs in a folder of its own.
// Returns the exit status: 0; 1 when the wizard could not be shown, after a message. Only in
// programs with windows.
int Main(const std::wstring& vServer);

// Fills the shared record (app/modShared) before the wizard's window is made: application title,
// the user's key, language provider, machine-wide settings, texts. False after a message when the
// language file cannot be loaded: the program must end then, without a window. Any other status of
// the provider is a success. What the provider throws passes. `vLanguage` must outlive the record.
bool PrepareWizard(language::LanguageProvider& vLanguage);

// Reads the machine-wide settings into the shared record: PAPUPDATERLANGUAGE into strLanguageFile,
// PAPUPDATERWELCOME into strWelcomeText. A value that is absent gives "".
void GetOrvRegistrySettings();
