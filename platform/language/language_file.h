// Reads one language file into memory. The format is explained in docs/language-files.md.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

namespace language {

// The texts of one number; a text that the file does not give is empty.
struct Entry {
  std::wstring text;
  std::wstring tool_tip;
  std::wstring message;
};

struct LanguageTexts {
  std::wstring name;  // the language's own name for itself, from the header line
  std::unordered_map<std::int32_t, Entry> entries;
  // Lines that were skipped because they break the format, as "line 12: reason".
  std::vector<std::string> problems;
};

// The file was read, but it does not begin as a language file of ours does (or is far too large).
class FormatError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws FormatError for a file that is no language file, text::RuntimeError for one that is
// missing or cannot be read. A bad line inside a language file costs only that line.
LanguageTexts ReadLanguageFile(const std::filesystem::path& path);

}  // namespace language
