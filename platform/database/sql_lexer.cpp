// Cuts a statement into tokens.
#include "platform/database/sql_lexer.h"

#include <charconv>
#include <string>

#include "platform/text/strings.h"

namespace database::sql {
namespace {

constexpr wchar_t kFirstLetterBeyondAscii = 0xaa;

bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsLetter(wchar_t c) {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_' ||
         c >= kFirstLetterBeyondAscii;
}
bool IsNamePart(wchar_t c) { return IsLetter(c) || IsDigit(c); }

struct KeywordText {
  std::wstring_view text;
  Keyword keyword;
};

constexpr KeywordText kKeywords[] = {
    {L"ALL", Keyword::kAll},
    {L"AND", Keyword::kAnd},
    {L"AS", Keyword::kAs},
    {L"ASC", Keyword::kAscending},
    {L"BETWEEN", Keyword::kBetween},
    {L"BY", Keyword::kBy},
    {L"DESC", Keyword::kDescending},
    {L"DISTINCT", Keyword::kDistinct},
    {L"DISTINCTROW", Keyword::kDistinctRow},
    {L"EXISTS", Keyword::kExists},
    {L"FALSE", Keyword::kFalse},
    {L"FROM", Keyword::kFrom},
    {L"GROUP", Keyword::kGroup},
    {L"HAVING", Keyword::kHaving},
    {L"IN", Keyword::kIn},
    {L"INNER", Keyword::kInner},
    {L"INSERT", Keyword::kInsert},
    {L"IS", Keyword::kIs},
    {L"JOIN", Keyword::kJoin},
    {L"LEFT", Keyword::kLeft},
    {L"LIKE", Keyword::kLike},
    {L"NOT", Keyword::kNot},
    {L"NULL", Keyword::kNull},
    {L"ON", Keyword::kOn},
    {L"OR", Keyword::kOr},
    {L"ORDER", Keyword::kOrder},
    {L"RIGHT", Keyword::kRight},
    {L"SELECT", Keyword::kSelect},
    {L"TOP", Keyword::kTop},
    {L"TRUE", Keyword::kTrue},
    {L"UNION", Keyword::kUnion},
    {L"UPDATE", Keyword::kUpdate},
    {L"WHERE", Keyword::kWhere},
};

Keyword KeywordOf(std::wstring_view name) {
  const wchar_t first = text::ToUpper(name.front());
  for (const KeywordText& candidate : kKeywords) {
    if (candidate.text.front() == first && candidate.text.size() == name.size() &&
        text::EqualsNoCase(candidate.text, name))
      return candidate.keyword;
  }
  return Keyword::kNone;
}

}  // namespace

wchar_t Lexer::At(std::size_t position) const {
  return position < statement_.size() ? statement_[position] : L'\0';
}

Token Lexer::Next() {
  while (IsBlank(At(position_))) ++position_;
  Token token;
  token.at = position_;
  if (position_ >= statement_.size()) return token;

  const wchar_t first = At(position_);
  if (first == L'\'' || first == L'"') {
    ReadQuoted(token);
  } else if (first == L'[') {
    ReadBracketed(token);
  } else if (IsDigit(first) || (first == L'.' && IsDigit(At(position_ + 1)))) {
    ReadNumber(token);
  } else if (IsLetter(first)) {
    ReadName(token);
  } else {
    ReadSign(token);
  }
  token.source = statement_.substr(token.at, position_ - token.at);
  return token;
}

void Lexer::ReadQuoted(Token& token) {
  const wchar_t quote = At(position_++);
  token.kind = TokenKind::kTextNotClosed;
  while (position_ < statement_.size()) {
    const wchar_t c = At(position_++);
    if (c != quote) {
      token.text += c;
    } else if (At(position_) == quote) {
      token.text += quote;
      ++position_;
    } else {
      token.kind = TokenKind::kText;
      return;
    }
  }
}

void Lexer::ReadBracketed(Token& token) {
  const std::size_t end = statement_.find(L']', position_);
  if (end == std::wstring_view::npos || end == position_ + 1) {
    token.kind = TokenKind::kUnknown;
    ++position_;
    return;
  }
  token.kind = TokenKind::kName;
  token.text = statement_.substr(position_ + 1, end - position_ - 1);
  position_ = end + 1;
}

void Lexer::ReadNumber(Token& token) {
  std::string digits;
  const auto take = [&] { digits += static_cast<char>(At(position_++)); };
  while (IsDigit(At(position_))) take();
  if (At(position_) == L'.') {
    take();
    while (IsDigit(At(position_))) take();
  }
  if (At(position_) == L'E' || At(position_) == L'e') {
    const bool has_sign = At(position_ + 1) == L'+' || At(position_ + 1) == L'-';
    if (IsDigit(At(position_ + (has_sign ? 2 : 1)))) {
      take();
      if (has_sign) take();
      while (IsDigit(At(position_))) take();
    }
  }
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), token.number);
  // A number too large for a double is nothing that a column could be compared with.
  token.kind = error == std::errc() ? TokenKind::kNumber : TokenKind::kUnknown;
}

void Lexer::ReadName(Token& token) {
  const std::size_t begin = position_;
  while (IsNamePart(At(position_))) ++position_;
  token.kind = TokenKind::kName;
  token.text = statement_.substr(begin, position_ - begin);
  token.keyword = KeywordOf(token.text);
}

void Lexer::ReadSign(Token& token) {
  constexpr std::wstring_view kSigns = L"(),.;*=<>-";
  const wchar_t first = At(position_++);
  token.kind =
      kSigns.find(first) == std::wstring_view::npos ? TokenKind::kUnknown : TokenKind::kSign;
  const wchar_t second = At(position_);
  const bool is_pair =
      (first == L'<' && (second == L'=' || second == L'>')) || (first == L'>' && second == L'=');
  if (is_pair) ++position_;
}

}  // namespace database::sql
