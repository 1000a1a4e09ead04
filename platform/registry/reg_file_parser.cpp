// Splits the text of a settings file into its keys, its values and all the rest.
#include "platform/registry/reg_file_parser.h"

#include <algorithm>
#include <utility>

#include "platform/text/code_page.h"
#include "platform/text/strings.h"

namespace registry {
namespace {

using Kind = RegFilePiece::Kind;

constexpr std::u16string_view kLineEnds = u"\r\n";
constexpr std::size_t kNone = std::u16string_view::npos;

// The kinds of values, as the number in "hex(number):" tells them.
constexpr unsigned kTextKind = 1;
constexpr unsigned kBinaryKind = 3;
constexpr unsigned kNumberKind = 4;

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

std::optional<unsigned> HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10u;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10u;
  return std::nullopt;
}

// Reads on from a place in the text. What it cannot read is a FormatError with the line's number.
class Parser {
 public:
  Parser(std::u16string_view text, RegFileEncoding& encoding) : text_(text), encoding_(encoding) {}

  std::vector<RegFilePiece> Pieces() {
    if (text_.find(u'\0') != kNone) Fail("a zero character", text_.find(u'\0'));
    if (!encoding_.SetVersion(text_.substr(0, LineEnd(0))))
      Fail("no settings file of a known version", 0);
    std::vector<RegFilePiece> pieces;
    SkipLine();
    pieces.push_back(PieceFrom(0, Kind::kOther));
    while (at_ < text_.size()) pieces.push_back(NextPiece());
    return pieces;
  }

 private:
  [[noreturn]] void Fail(const char* reason, std::size_t where) const {
    const auto line =
        1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(where), u'\n');
    throw FormatError("line " + std::to_string(line) + ": " + reason);
  }
  [[noreturn]] void Fail(const char* reason) const { Fail(reason, at_); }

  // Where the line that goes on at `from` ends, without its line end.
  std::size_t LineEnd(std::size_t from) const {
    return std::min(text_.find_first_of(kLineEnds, from), text_.size());
  }

  void SkipLine() {
    at_ = LineEnd(at_);
    at_ += LineEndOf(text_.substr(at_)).size();
  }

  void SkipBlanks() {
    while (at_ < text_.size() && IsBlank(text_[at_])) ++at_;
  }

  bool Take(std::u16string_view wanted) {
    if (text_.substr(at_, wanted.size()) != wanted) return false;
    at_ += wanted.size();
    return true;
  }

  bool AtLineEnd() const { return at_ == LineEnd(at_); }

  RegFilePiece PieceFrom(std::size_t begin, Kind kind) const {
    RegFilePiece piece;
    piece.kind = kind;
    piece.raw = text_.substr(begin, at_ - begin);
    return piece;
  }

  RegFilePiece NextPiece() {
    const std::size_t begin = at_;
    SkipBlanks();
    const char16_t first = AtLineEnd() ? u'\n' : text_[at_];
    if (first == u'[') return Key(begin);
    if (first == u'"' || first == u'@') return ValueLine(begin);
    SkipLine();
    return PieceFrom(begin, Kind::kOther);
  }

  RegFilePiece Key(std::size_t begin) {
    ++at_;
    const Kind kind = Take(u"-") ? Kind::kRemovedKey : Kind::kKey;
    // The path itself may hold such brackets.
    const std::u16string_view line = text_.substr(at_, LineEnd(at_) - at_);
    const std::size_t closing = line.rfind(u']');
    if (closing == kNone) Fail("a key without its closing bracket");
    const std::wstring path = text::Utf16ToWide(line.substr(0, closing));
    SkipLine();
    RegFilePiece piece = PieceFrom(begin, kind);
    piece.name = text::ToUpper(WithoutLastBackslashes(path));
    key_seen_ = true;
    return piece;
  }

  RegFilePiece ValueLine(std::size_t begin) {
    if (!key_seen_) Fail("a value before the first key");
    const std::wstring name = Take(u"@") ? std::wstring() : Quoted();
    SkipBlanks();
    if (!Take(u"=")) Fail("a name without a value");
    SkipBlanks();
    const std::size_t data_begin = at_;
    std::optional<Value> value = Data();
    const std::size_t data_end = at_;
    SkipBlanks();
    if (!AtLineEnd() && text_[at_] != u';') Fail("something behind the value");
    SkipLine();
    RegFilePiece piece = PieceFrom(begin, Kind::kValue);
    piece.name = text::ToUpper(name);
    piece.value = std::move(value);
    piece.data_begin = data_begin - begin;
    piece.data_end = data_end - begin;
    return piece;
  }

  // A text in quotes, which may go on over several lines. A backslash before a quote or another
  // backslash hides it; before anything else it is a character like others.
  std::wstring Quoted() {
    const std::size_t begin = at_++;
    std::u16string content;
    while (!Take(u"\"")) {
      if (at_ == text_.size()) Fail("a text without its closing quote", begin);
      const bool escape = text_[at_] == u'\\' && at_ + 1 < text_.size() &&
                          (text_[at_ + 1] == u'\\' || text_[at_ + 1] == u'"');
      if (escape) ++at_;
      content += text_[at_++];
    }
    return text::Utf16ToWide(content);
  }

  std::optional<Value> Data() {
    if (at_ < text_.size() && text_[at_] == u'"') return Value(Quoted());
    if (Take(u"-")) return std::nullopt;
    if (Take(u"dword:")) return Value(Number());
    if (Take(u"hex:")) return HexValue(kBinaryKind);
    if (Take(u"hex(")) {
      const std::uint32_t kind = Number();
      if (!Take(u"):")) Fail("a value of no known form");
      return HexValue(kind);
    }
    Fail("a value of no known form");
  }

  std::uint32_t Number() {
    constexpr int kMostDigits = 8;
    SkipBlanks();
    std::uint32_t number = 0;
    int digits = 0;
    for (; at_ < text_.size(); ++at_, ++digits) {
      const auto digit = HexDigit(text_[at_]);
      if (!digit) break;
      if (digits == kMostDigits) Fail("a number of too many digits");
      number = number << 4 | *digit;
    }
    if (digits == 0) Fail("a number without digits");
    return number;
  }

  Value HexValue(std::uint32_t kind) {
    const std::string bytes = HexBytes();
    if (kind == kTextKind) {
      std::wstring text = encoding_.TextOfBytes(bytes);
      if (!text.empty() && text.back() == L'\0') text.pop_back();
      return text;
    }
    if (kind == kNumberKind && bytes.size() == sizeof(std::uint32_t)) {
      std::uint32_t number = 0;
      for (std::size_t i = bytes.size(); i-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
      }
      return number;
    }
    return OtherKind{};
  }

  // Pairs of digits with commas between them; a backslash at the end of a line makes it go on.
  std::string HexBytes() {
    std::string bytes;
    while (true) {
      SkipBlanks();
      if (Take(u"\\")) {
        SkipBlanks();
        if (!AtLineEnd() || at_ == text_.size()) Fail("a value that is cut off");
        SkipLine();
        continue;
      }
      if (AtLineEnd() || text_[at_] == u';') return bytes;
      unsigned byte = 0;
      int digits = 0;
      for (; at_ < text_.size() && HexDigit(text_[at_]); ++at_, ++digits) {
        byte = byte << 4 | *HexDigit(text_[at_]);
      }
      if (digits < 1 || digits > 2) Fail("bytes that are no pairs of digits");
      bytes += static_cast<char>(byte);
      SkipBlanks();
      Take(u",");
    }
  }

  std::u16string_view text_;
  RegFileEncoding& encoding_;
  std::size_t at_ = 0;
  bool key_seen_ = false;
};

}  // namespace

std::vector<RegFilePiece> ParseRegFile(std::u16string_view text, RegFileEncoding& encoding) {
  return Parser(text, encoding).Pieces();
}

std::u16string_view LineEndOf(std::u16string_view text) {
  if (text.substr(0, 2) == u"\r\n") return text.substr(0, 2);
  const bool ends = !text.empty() && (text.front() == u'\r' || text.front() == u'\n');
  return text.substr(0, ends ? 1 : 0);
}

}  // namespace registry
