// Reads one language file into memory.
#include "platform/language/language_file.h"

#include <array>
#include <charconv>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/files/file_error.h"
#include "platform/text/code_page.h"

namespace language {
namespace {

constexpr std::string_view kHeader = "language file:";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr char kComment = '#';
constexpr std::string_view kBlanks = " \t\r";

// Ours have some 15 KB; a file of another kind is not worth more memory than this.
constexpr std::size_t kLargestFile = 4 * 1024 * 1024;

struct Kind {
  std::string_view word;
  std::wstring Entry::*member;
};
constexpr std::array<Kind, 3> kKinds = {Kind{"text", &Entry::text},
                                        Kind{"tooltip", &Entry::tool_tip},
                                        Kind{"message", &Entry::message}};

std::string_view Trim(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string ReadBytes(const std::filesystem::path& path) {
  std::error_code ignored;
  std::ifstream file;
  if (!std::filesystem::is_directory(path, ignored)) file.open(path, std::ios::binary);
  if (!file.is_open()) throw files::OpenError(path, true);
  std::string bytes(kLargestFile + 1, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (file.bad()) throw files::FileError(files::kDeviceIoError);
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  if (bytes.size() > kLargestFile) throw FormatError("too large for a language file");
  return bytes;
}

// "NUMBER KIND: the text". The reason is returned when the line breaks that form.
std::optional<std::string> ReadEntry(std::string_view line, LanguageTexts& texts) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return "no colon";
  const std::string_view key = Trim(line.substr(0, colon));
  std::int32_t number = 0;
  const auto read = std::from_chars(key.data(), key.data() + key.size(), number);
  if (read.ec != std::errc() || number < 0) return "no number";
  const std::string_view word = Trim(key.substr(static_cast<std::size_t>(read.ptr - key.data())));
  for (const Kind& kind : kKinds) {
    if (kind.word != word) continue;
    std::wstring& text = texts.entries[number].*kind.member;
    if (!text.empty()) return "given twice; the first one stands";
    text = text::Utf8ToWide(Trim(line.substr(colon + 1)));
    return std::nullopt;
  }
  return "neither text, tooltip nor message";
}

}  // namespace

LanguageTexts ReadLanguageFile(const std::filesystem::path& path) {
  const std::string bytes = ReadBytes(path);
  std::string_view rest = bytes;
  if (rest.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    rest.remove_prefix(kByteOrderMark.size());
  }

  LanguageTexts texts;
  bool header_found = false;
  for (int line_number = 1; !rest.empty(); ++line_number) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = Trim(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.empty() || line.front() == kComment) continue;
    if (!header_found) {
      if (line.substr(0, kHeader.size()) != kHeader) throw FormatError("no language file");
      header_found = true;
      texts.name = text::Utf8ToWide(Trim(line.substr(kHeader.size())));
    } else if (const auto reason = ReadEntry(line, texts)) {
      texts.problems.push_back("line " + std::to_string(line_number) + ": " + *reason);
    }
  }
  if (!header_found) throw FormatError("no language file");
  return texts;
}

}  // namespace language
