// The update files of the demo installation: those that fill its product table, and those that its
// user finds in the update folder.
#pragma once

#include <string>
#include <vector>

namespace demo {

// Write files into an existing folder and return their paths in the order in which they should be
// applied. Throw text::RuntimeError 57 when a file cannot be written (the reason was reported).

// Two suppliers, three assortments, their articles and the prices of 2025.
std::vector<std::wstring> WriteOpeningUpdates(const std::wstring& folder);

// Price rounds from 2004 to 2026: plain ones, one that brings a new supplier with its assortment,
// one with every section, and two with records that are refused.
std::vector<std::wstring> WriteUpdates(const std::wstring& folder);

// What the download server has beyond those: newer rounds, one of them for the supplier that the
// price rounds bring.
std::vector<std::wstring> WriteServerUpdates(const std::wstring& folder);

}  // namespace demo
