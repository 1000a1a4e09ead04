// The registry for the whole program: two operations on any root key, and the settings of the user.
#pragma once

#include <string>

#include "platform/registry/registry.h"
#include "platform/text/variant.h"

// All of them use the shared registry (modShared) and report their errors in a message box; a read
// then returns Null or its default, a write has changed nothing.

// The value as text: a text up to its first zero character, a 32-bit number in decimal with at
// least three digits ("007"). Null for a value of another kind and for one that is missing.
text::Variant fGetstring(registry::RootKey vRootKey, const std::wstring& vKeyPath,
                         const std::wstring& vName);

// Stores a text; the key is created where it is missing.
void fSaveString(registry::RootKey vRootKey, const std::wstring& vKeyPath,
                 const std::wstring& vName, const std::wstring& vText);

// The user's settings. Their key is the program's own, for this version, with `vSubKey` (mostly "")
// below it; while strVersionSubKey (app/modShared) is empty that is error 5. Truth values are
// stored as the words True and False; everything but the word FALSE, in any case, reads as true.
std::wstring CurrentUser_HaalOp(const std::wstring& vSubKey, const std::wstring& vName,
                                const std::wstring& vDefault);
void CurrentUser_BrengWeg(const std::wstring& vSubKey, const std::wstring& vName,
                          const std::wstring& vText);
void CurrentUser_BrengWegBoolean(const std::wstring& vSubKey, const std::wstring& vName,
                                 bool vValue);
bool CurrentUser_HaalOpBoolean(const std::wstring& vSubKey, const std::wstring& vName,
                               const std::wstring& vDefault);
