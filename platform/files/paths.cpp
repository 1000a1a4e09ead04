// Path texts and simple questions about files.
#include "platform/files/paths.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/files/file_error.h"
#include "platform/text/code_page.h"

namespace files {
namespace {

// A byte of a name that is not valid UTF-8 becomes the lone surrogate of this base plus the byte:
// a character that no valid name contains, so that the way back is certain.
constexpr wchar_t kStrayByteBase = 0xDC00;
constexpr wchar_t kFirstStrayByte = 0xDC80;
constexpr wchar_t kLastStrayByte = 0xDCFF;

bool IsStrayByte(wchar_t character) {
  return character >= kFirstStrayByte && character <= kLastStrayByte;
}

// The character at the front of a name and the number of its bytes.
std::pair<std::wstring, std::size_t> FrontCharacter(std::string_view name) {
  constexpr std::size_t kLongestCharacter = 4;
  for (std::size_t size = 1; size <= std::min(kLongestCharacter, name.size()); ++size) {
    const std::string_view bytes = name.substr(0, size);
    std::wstring character = text::Utf8ToWide(bytes);
    if (character.size() == 1 && text::WideToUtf8(character) == bytes) return {character, size};
  }
  const auto byte = static_cast<unsigned char>(name.front());
  return {std::wstring(1, static_cast<wchar_t>(kStrayByteBase + byte)), 1};
}

std::wstring NameToText(const std::string& name) {
  std::wstring text = text::Utf8ToWide(name);
  if (text::WideToUtf8(text) == name) return text;
  text.clear();
  for (std::string_view rest = name; !rest.empty();) {
    const auto [character, size] = FrontCharacter(rest);
    text += character;
    rest.remove_prefix(size);
  }
  return text;
}

std::string TextToName(const std::wstring& text) {
  if (std::none_of(text.begin(), text.end(), IsStrayByte)) return text::WideToUtf8(text);
  std::string name;
  for (const wchar_t character : text) {
    if (IsStrayByte(character)) {
      name += static_cast<char>(character - kStrayByteBase);
    } else {
      name += text::WideToUtf8({&character, 1});
    }
  }
  return name;
}

}  // namespace

std::filesystem::path ToPath(const std::wstring& text) {
  if constexpr (Separator() == L'\\') {
    return {text};
  } else {
    return {TextToName(text)};
  }
}

std::wstring ToText(const std::filesystem::path& path) {
  if constexpr (Separator() == L'\\') {
    return path.wstring();
  } else {
    return NameToText(path.string());
  }
}

bool FileExists(const std::wstring& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(ToPath(path), ignored);
}

bool FolderExists(const std::wstring& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(ToPath(path), ignored);
}

bool IsSameFile(const std::wstring& left, const std::wstring& right) {
  std::error_code ignored;
  return std::filesystem::equivalent(ToPath(left), ToPath(right), ignored);
}

std::uint64_t FileSize(const std::wstring& path) {
  const std::filesystem::path file = ToPath(path);
  std::error_code error;
  const std::uint64_t size = std::filesystem::file_size(file, error);
  if (error) throw OpenError(file, true);
  return size;
}

}  // namespace files
