// The start of the program.
#pragma once

#include "platform/language/language_provider.h"

// The key of the machine-wide settings, below HKEY_LOCAL_MACHINE and, for the product table's
// place, below HKEY_CURRENT_USER. The host product writes it; this program never does.
inline constexpr wchar_t kSettingsKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\Settings\\";

// Fills the shared record (app/modShared) before the wizard's window is made: application title,
// the user's key, language provider, machine-wide settings, texts. False after a message when the
// language file cannot be loaded: the program must end then, without a window. Any other status of
// the provider is a success. What the provider throws passes. `vLanguage` must outlive the record.
bool PrepareWizard(language::LanguageProvider& vLanguage);

// Reads the machine-wide settings into the shared record: PAPUPDATERLANGUAGE into strLanguageFile,
// PAPUPDATERWELCOME into strWelcomeText. A value that is absent gives "".
void GetOrvRegistrySettings();
