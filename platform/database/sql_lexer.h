// Cuts a statement into names, numbers, texts and signs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace database::sql {

enum class TokenKind {
  kEnd,
  kName,           // a keyword too
  kNumber,         //
  kText,           //
  kSign,           // one of ( ) , . ; * = < > <= >= <> -
  kTextNotClosed,  // a quote that nothing answers
  kUnknown,        // a character that begins nothing
};

// The words that are no names unless they stand in brackets; some belong to statements that are not
// understood and are known so that they are not taken for columns.
enum class Keyword {
  kNone,
  kAll,
  kAnd,
  kAs,
  kAscending,
  kBetween,
  kBy,
  kDescending,
  kDistinct,
  kDistinctRow,
  kExists,
  kFalse,
  kFrom,
  kGroup,
  kHaving,
  kIn,
  kInner,
  kInsert,
  kIs,
  kJoin,
  kLeft,
  kLike,
  kNot,
  kNull,
  kOn,
  kOr,
  kOrder,
  kRight,
  kSelect,
  kTop,
  kTrue,
  kUnion,
  kUpdate,
  kWhere,
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::wstring_view source;  // as it stands in the statement
  std::size_t at = 0;        // where in the statement it begins
  std::wstring text;         // kName without brackets, kText without quotes
  double number = 0;         // kNumber
  Keyword keyword = Keyword::kNone;
};

// Reads one token after the other; never fails and ends with kEnd, again and again. What is wrong
// is said by the parser, which knows where it matters. The statement must outlive it.
class Lexer {
 public:
  explicit Lexer(std::wstring_view statement) : statement_(statement) {}

  Token Next();
  std::wstring_view statement() const { return statement_; }

 private:
  wchar_t At(std::size_t position) const;
  void ReadQuoted(Token& token);
  void ReadBracketed(Token& token);
  void ReadNumber(Token& token);
  void ReadName(Token& token);
  void ReadSign(Token& token);

  std::wstring_view statement_;
  std::size_t position_ = 0;
};

}  // namespace database::sql
