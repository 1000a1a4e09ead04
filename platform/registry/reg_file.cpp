// A text file of settings in the format that the registry editor of Windows writes and reads.
#include "platform/registry/reg_file.h"

#include <algorithm>
#include <utility>

#include "platform/text/code_page.h"
#include "platform/text/strings.h"

namespace registry {
namespace {

using Kind = RegFilePiece::Kind;

std::u16string Quoted(std::wstring_view text) {
  const std::wstring backslashes = text::ReplaceAll(text, L"\\", L"\\\\");
  return text::WideToUtf16(L'"' + text::ReplaceAll(backslashes, L"\"", L"\\\"") + L'"');
}

// Whether `key` is the key `root` or below it.
bool IsWithin(std::wstring_view key, std::wstring_view root) {
  return key.substr(0, root.size()) == root &&
         (key.size() == root.size() || key[root.size()] == L'\\');
}

}  // namespace

RegFile::RegFile(std::string_view bytes) {
  const std::u16string text = bytes.empty()
                                  ? std::u16string(RegFileEncoding::NewVersionLine()) + line_end_
                                  : encoding_.Decode(bytes);
  pieces_ = ParseRegFile(text, encoding_);
  const std::u16string_view first = pieces_.front().raw;
  const std::size_t end = first.find_last_not_of(u"\r\n") + 1;
  if (end < first.size()) line_end_ = first.substr(end);
}

RegFile::Place RegFile::Locate(std::wstring_view key, std::wstring_view name) const {
  const std::wstring wanted_key = text::ToUpper(WithoutLastBackslashes(key));
  const std::wstring wanted_name = text::ToUpper(name);
  Place place;
  bool inside = false;
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    const RegFilePiece& piece = pieces_[i];
    if (piece.kind == Kind::kKey) {
      inside = piece.name == wanted_key;
    } else if (piece.kind == Kind::kRemovedKey) {
      inside = false;
      if (IsWithin(wanted_key, piece.name)) place = Place();
    }
    if (!inside || piece.kind == Kind::kOther) continue;
    place.end_of_section = i + 1;
    if (piece.kind == Kind::kValue && piece.name == wanted_name) {
      place.value = piece.value ? std::optional(i) : std::nullopt;
    }
  }
  return place;
}

std::optional<Value> RegFile::Find(std::wstring_view key, std::wstring_view name) const {
  const Place place = Locate(key, name);
  return place.value ? pieces_[*place.value].value : std::nullopt;
}

// What stands behind the "=": the text in quotes or, where a quoted one would not come back from
// the registry editor as it was, its bytes.
std::u16string RegFile::DataOf(std::wstring_view text) const {
  const bool plain = std::none_of(text.begin(), text.end(), [](wchar_t c) { return c < L' '; });
  if (plain) return Quoted(text);
  constexpr std::u16string_view kDigits = u"0123456789abcdef";
  std::u16string data = u"hex(1):";
  for (const char character : encoding_.BytesOfText(std::wstring(text) + L'\0')) {
    const auto byte = static_cast<unsigned char>(character);
    if (data.back() != u':') data += u',';
    data += kDigits[byte >> 4];
    data += kDigits[byte & 0xF];
  }
  return data;
}

void RegFile::InsertLine(std::size_t at, Kind kind, std::wstring_view name,
                         std::u16string_view line) {
  std::u16string& before = pieces_[at - 1].raw;
  if (before.find_last_of(u"\r\n") != before.size() - 1) before += line_end_;
  RegFilePiece piece;
  piece.kind = kind;
  piece.name = text::ToUpper(name);
  piece.raw = std::u16string(line) + line_end_;
  pieces_.insert(pieces_.begin() + static_cast<std::ptrdiff_t>(at), std::move(piece));
}

void RegFile::SetText(std::wstring_view key, std::wstring_view name, std::wstring_view text) {
  Place place = Locate(key, name);
  const std::u16string data = DataOf(text);
  if (!place.value && !place.end_of_section) {
    const std::wstring_view path = WithoutLastBackslashes(key);
    InsertLine(pieces_.size(), Kind::kOther, {}, {});
    InsertLine(pieces_.size(), Kind::kKey, path,
               text::WideToUtf16(L'[' + std::wstring(path) + L']'));
    place.end_of_section = pieces_.size();
  }
  if (!place.value) {
    const std::u16string label = name.empty() ? u"@" : Quoted(name);
    InsertLine(*place.end_of_section, Kind::kValue, name, label + u'=');
    RegFilePiece& piece = pieces_[*place.end_of_section];
    piece.data_begin = piece.data_end = label.size() + 1;
    place.value = place.end_of_section;
  }
  RegFilePiece& piece = pieces_[*place.value];
  piece.raw.replace(piece.data_begin, piece.data_end - piece.data_begin, data);
  piece.data_end = piece.data_begin + data.size();
  piece.value = std::wstring(text);
}

std::string RegFile::Bytes() const {
  std::u16string text;
  for (const RegFilePiece& piece : pieces_) text += piece.raw;
  return encoding_.Encode(text);
}

}  // namespace registry
