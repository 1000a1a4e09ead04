// The start of the program.
#pragma once

// The key of the machine-wide settings, below HKEY_LOCAL_MACHINE and, for the product table's
// place, below HKEY_CURRENT_USER. The host product writes it; this program never does.
inline constexpr wchar_t kSettingsKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\Settings\\";

// Reads the machine-wide settings into the shared record: PAPUPDATERLANGUAGE into strLanguageFile,
// PAPUPDATERWELCOME into strWelcomeText. A value that is absent gives "".
void GetOrvRegistrySettings();
