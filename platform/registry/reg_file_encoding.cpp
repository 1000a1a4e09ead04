// The encodings and version lines of settings files.
#include "platform/registry/reg_file_encoding.h"

#include <algorithm>

#include "platform/text/code_page.h"

namespace registry {
namespace {

constexpr std::string_view kUtf16Mark = "\xFF\xFE";  // low byte first
constexpr std::string_view kUtf16SwappedMark = "\xFE\xFF";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

constexpr std::u16string_view kVersion5 = u"Windows Registry Editor Version 5.00";
constexpr std::u16string_view kVersion4 = u"REGEDIT4";

bool BeginsWith(std::string_view bytes, std::string_view mark) {
  return bytes.substr(0, mark.size()) == mark;
}

std::u16string UnitsOf(std::string_view bytes) {
  if (bytes.size() % 2 != 0) throw FormatError("half a character at the end");
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto low = static_cast<unsigned char>(bytes[2 * i]);
    const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
    units[i] = static_cast<char16_t>(low | high << 8);
  }
  return units;
}

std::string BytesOf(std::u16string_view units) {
  std::string bytes;
  bytes.reserve(2 * units.size());
  for (const char16_t unit : units) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

std::string AnsiBytes(std::wstring_view text) {
  std::string bytes = text::WideToAnsi(text);
  if (text::AnsiToWide(bytes) != text) {
    throw FormatError("an ANSI file cannot hold every character of the text");
  }
  return bytes;
}

}  // namespace

std::u16string RegFileEncoding::Decode(std::string_view bytes) {
  if (BeginsWith(bytes, kUtf16Mark)) return UnitsOf(bytes.substr(kUtf16Mark.size()));
  if (BeginsWith(bytes, kUtf16SwappedMark)) throw FormatError("its bytes are in swapped order");
  has_mark_ = BeginsWith(bytes, kUtf8Mark);
  if (has_mark_) bytes.remove_prefix(kUtf8Mark.size());
  std::wstring text = text::Utf8ToWide(bytes);
  form_ = Form::kUtf8;
  if (text::WideToUtf8(text) != bytes) {
    if (has_mark_) throw FormatError("bytes that are no UTF-8");
    form_ = Form::kAnsi;
    text = text::AnsiToWide(bytes);
  }
  ascii_only_ = std::all_of(bytes.begin(), bytes.end(),
                            [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
  return text::WideToUtf16(text);
}

std::string RegFileEncoding::Encode(std::u16string_view text) const {
  if (form_ == Form::kUtf16) return std::string(kUtf16Mark) + BytesOf(text);
  const std::wstring wide = text::Utf16ToWide(text);
  if (form_ == Form::kAnsi) return AnsiBytes(wide);
  return (has_mark_ ? std::string(kUtf8Mark) : std::string()) + text::WideToUtf8(wide);
}

bool RegFileEncoding::SetVersion(std::u16string_view first_line) {
  const std::size_t end = first_line.find_last_not_of(u" \t\r\n");
  const std::u16string_view version = first_line.substr(0, end + 1);
  old_version_ = version == kVersion4;
  if (old_version_ && ascii_only_ && !has_mark_) form_ = Form::kAnsi;
  return old_version_ || version == kVersion5;
}

std::u16string_view RegFileEncoding::NewVersionLine() { return kVersion5; }

std::wstring RegFileEncoding::TextOfBytes(std::string_view bytes) const {
  return old_version_ ? text::AnsiToWide(bytes)
                      : text::Utf16ToWide(UnitsOf(bytes.substr(0, bytes.size() / 2 * 2)));
}

std::string RegFileEncoding::BytesOfText(std::wstring_view text) const {
  return old_version_ ? AnsiBytes(text) : BytesOf(text::WideToUtf16(text));
}

}  // namespace registry
