// A recursive-descent parser over the tokens of a statement.
#include "platform/database/sql_parser.h"

#include <array>
#include <limits>
#include <utility>

#include "platform/database/errors.h"
#include "platform/database/sql_lexer.h"
#include "platform/text/strings.h"

namespace database::sql {
namespace {

// Sub-queries and bracketed joins within each other; a bound on recursion, far above any real need.
constexpr int kMaxDepth = 40;

// An error shows no more of an expression than this: a damaged update file can make it endless.
constexpr std::size_t kLongestShown = 1000;

struct OperatorSign {
  std::wstring_view sign;
  Operator op;
};
constexpr std::array<OperatorSign, 6> kOperators = {{{L"=", Operator::kEqual},
                                                     {L"<>", Operator::kNotEqual},
                                                     {L"<", Operator::kLess},
                                                     {L"<=", Operator::kLessOrEqual},
                                                     {L">", Operator::kGreater},
                                                     {L">=", Operator::kGreaterOrEqual}}};

// Counts how deep the parser has descended.
class Descent {
 public:
  explicit Descent(int& depth) : depth_(depth) {
    if (++depth_ > kMaxDepth) {
      --depth_;
      Fail(Failure::kTooComplex);
    }
  }
  ~Descent() { --depth_; }
  Descent(const Descent&) = delete;
  Descent& operator=(const Descent&) = delete;

 private:
  int& depth_;
};

class Parser {
 public:
  explicit Parser(std::wstring_view text) : lexer_(text) { Advance(); }

  SelectStatement ParseStatement();
  Criterion ParseWholeCriterion();

 private:
  void Advance() { current_ = lexer_.Next(); }
  bool Is(Keyword keyword) const { return current_.keyword == keyword; }
  bool IsSign(std::wstring_view sign) const {
    return current_.kind == TokenKind::kSign && current_.source == sign;
  }
  bool AtEnd() const { return current_.kind == TokenKind::kEnd; }
  bool IsName() const {
    return current_.kind == TokenKind::kName && current_.keyword == Keyword::kNone;
  }
  bool Take(Keyword keyword);
  bool TakeSign(std::wstring_view sign);
  std::wstring TakeName();  // REQUIRES IsName()

  SelectStatement ParseSelectClauses();
  void ParseTop(SelectStatement& statement);
  OutputColumns ParseOutput();
  Source ParseSource();
  Source ParseJoinSide();
  std::vector<Condition> ParseConditions();
  Condition ParseCondition(std::size_t expression);
  Operand ParseOperand(std::size_t expression);
  std::optional<Operand> TakeConstant();
  std::optional<Operator> TakeOperator();
  std::vector<OrderColumn> ParseOrder();
  std::optional<ColumnName> TakeColumn();

  // Reports an error in the condition or join condition that begins at `expression`.
  [[noreturn]] void FailInExpression(std::size_t expression,
                                     Failure failure = Failure::kMissingOperator) const;
  std::wstring_view ExpressionText(std::size_t begin) const;

  Lexer lexer_;
  Token current_;
  std::size_t last_expression_ = 0;  // where the last WHERE began
  int depth_ = 0;
};

bool Parser::Take(Keyword keyword) {
  if (!Is(keyword)) return false;
  Advance();
  return true;
}

bool Parser::TakeSign(std::wstring_view sign) {
  if (!IsSign(sign)) return false;
  Advance();
  return true;
}

std::wstring Parser::TakeName() {
  std::wstring name = std::move(current_.text);
  Advance();
  return name;
}

SelectStatement Parser::ParseStatement() {
  SelectStatement statement = ParseSelectClauses();
  if (TakeSign(L";")) {
    if (!AtEnd()) Fail(Failure::kTextBehindStatement);
  } else if (!AtEnd()) {
    // Each clause takes all it can, so what follows belongs to the last one written.
    if (!statement.order.empty()) Fail(Failure::kSyntaxInOrderBy);
    if (!statement.where.empty()) FailInExpression(last_expression_);
    Fail(Failure::kSyntaxInFrom);
  }
  return statement;
}

SelectStatement Parser::ParseSelectClauses() {
  const Descent descent(depth_);
  SelectStatement statement;
  if (!Take(Keyword::kSelect)) Fail(Failure::kNotAStatement);
  statement.distinct_rows = Take(Keyword::kDistinctRow);
  if (Take(Keyword::kTop)) ParseTop(statement);
  do {
    statement.output.push_back(ParseOutput());
  } while (TakeSign(L","));

  if (!Take(Keyword::kFrom)) {
    const bool ends = AtEnd() || IsSign(L";") || IsSign(L")");
    Fail(ends ? Failure::kNoTable : Failure::kSyntaxInColumns);
  }
  statement.from = ParseSource();
  if (Take(Keyword::kWhere)) statement.where = ParseConditions();
  if (Take(Keyword::kOrder)) {
    if (!Take(Keyword::kBy)) Fail(Failure::kSyntaxInOrderBy);
    statement.order = ParseOrder();
  }
  return statement;
}

void Parser::ParseTop(SelectStatement& statement) {
  const double count = current_.kind == TokenKind::kNumber ? current_.number : 0;
  const bool is_count = count >= 1 && count <= std::numeric_limits<std::int32_t>::max() &&
                        current_.source.find_first_not_of(L"0123456789") == std::wstring_view::npos;
  if (!is_count) Fail(Failure::kSyntaxInColumns);
  statement.top = static_cast<std::uint32_t>(count);
  Advance();
}

OutputColumns Parser::ParseOutput() {
  if (TakeSign(L"*")) return {{}, true};
  if (!IsName()) Fail(Failure::kSyntaxInColumns);
  std::wstring first = TakeName();
  if (!TakeSign(L".")) return {{{}, std::move(first)}, false};
  if (TakeSign(L"*")) return {{std::move(first), {}}, true};
  if (!IsName()) Fail(Failure::kSyntaxInColumns);
  return {{std::move(first), TakeName()}, false};
}

Source Parser::ParseSource() {
  Source left = ParseJoinSide();
  if (!Take(Keyword::kInner)) return left;
  if (!Take(Keyword::kJoin)) Fail(Failure::kSyntaxInFrom);

  Source join;
  join.left = std::make_unique<Source>(std::move(left));
  join.right = std::make_unique<Source>(ParseJoinSide());
  if (!Take(Keyword::kOn)) Fail(Failure::kSyntaxInFrom);

  const std::size_t condition = current_.at;
  std::optional<ColumnName> on_left = TakeColumn();
  if (!on_left || !TakeSign(L"=")) Fail(Failure::kSyntaxInJoin);
  std::optional<ColumnName> on_right = TakeColumn();
  if (!on_right) Fail(Failure::kSyntaxInJoin);
  // Further joins need brackets.
  if (Is(Keyword::kInner) || Is(Keyword::kAnd)) FailInExpression(condition);
  join.on_left = *std::move(on_left);
  join.on_right = *std::move(on_right);
  return join;
}

Source Parser::ParseJoinSide() {
  const Descent descent(depth_);
  if (TakeSign(L"(")) {
    Source inner = ParseSource();
    if (!TakeSign(L")")) Fail(Failure::kSyntaxInFrom);
    return inner;
  }
  if (!IsName()) Fail(Failure::kSyntaxInFrom);
  Source table;
  table.table = TakeName();
  return table;
}

std::vector<Condition> Parser::ParseConditions() {
  const std::size_t expression = current_.at;
  std::vector<Condition> conditions;
  do {
    conditions.push_back(ParseCondition(expression));
  } while (Take(Keyword::kAnd));
  const bool ends = AtEnd() || IsSign(L";") || IsSign(L")") || Is(Keyword::kOrder);
  if (!ends) FailInExpression(expression);
  last_expression_ = expression;
  return conditions;
}

Condition Parser::ParseCondition(std::size_t expression) {
  Operand left = ParseOperand(expression);
  auto* column = std::get_if<ColumnName>(&left);
  if (column != nullptr && Take(Keyword::kIn)) {
    if (!TakeSign(L"(") || !Is(Keyword::kSelect)) FailInExpression(expression);
    auto query = std::make_unique<SelectStatement>(ParseSelectClauses());
    if (!TakeSign(L")")) FailInExpression(expression);
    return InQuery{std::move(*column), std::move(query)};
  }
  const std::optional<Operator> op = TakeOperator();
  if (!op) FailInExpression(expression);
  Operand right = ParseOperand(expression);
  if (column == nullptr && !std::holds_alternative<ColumnName>(right)) FailInExpression(expression);
  return Comparison{std::move(left), *op, std::move(right)};
}

Operand Parser::ParseOperand(std::size_t expression) {
  if (IsName()) {
    std::optional<ColumnName> column = TakeColumn();
    if (!column) FailInExpression(expression);
    return *std::move(column);
  }
  std::optional<Operand> constant = TakeConstant();
  if (!constant) {
    const bool cut_off = current_.kind == TokenKind::kTextNotClosed;
    FailInExpression(expression, cut_off ? Failure::kTextNotClosed : Failure::kMissingOperator);
  }
  return *std::move(constant);
}

std::optional<Operand> Parser::TakeConstant() {
  const bool negative = TakeSign(L"-");
  if (current_.kind == TokenKind::kNumber) {
    const double number = current_.number;
    Advance();
    return negative ? -number : number;
  }
  if (current_.kind != TokenKind::kText || negative) return std::nullopt;
  std::wstring text = std::move(current_.text);
  Advance();
  return text;
}

std::optional<Operator> Parser::TakeOperator() {
  for (const OperatorSign& candidate : kOperators)
    if (TakeSign(candidate.sign)) return candidate.op;
  return std::nullopt;
}

std::vector<OrderColumn> Parser::ParseOrder() {
  std::vector<OrderColumn> order;
  do {
    std::optional<ColumnName> column = TakeColumn();
    if (!column) Fail(Failure::kSyntaxInOrderBy);
    OrderColumn entry{*std::move(column), Take(Keyword::kDescending)};
    if (!entry.descending) Take(Keyword::kAscending);
    order.push_back(std::move(entry));
  } while (TakeSign(L","));
  return order;
}

std::optional<ColumnName> Parser::TakeColumn() {
  if (!IsName()) return std::nullopt;
  ColumnName column{{}, TakeName()};
  if (!TakeSign(L".")) return column;
  if (!IsName()) return std::nullopt;
  column.table = std::exchange(column.name, {});
  column.name = TakeName();
  return column;
}

Criterion Parser::ParseWholeCriterion() {
  if (!IsName()) Fail(Failure::kBadArgument);
  Criterion criterion;
  criterion.column = TakeName();
  const std::optional<Operator> op = TakeOperator();
  if (!op) Fail(Failure::kBadArgument);
  criterion.op = *op;
  std::optional<Operand> constant = TakeConstant();
  if (!constant || !AtEnd()) Fail(Failure::kBadArgument);
  criterion.constant = *std::move(constant);
  return criterion;
}

void Parser::FailInExpression(std::size_t expression, Failure failure) const {
  Fail(failure, {ExpressionText(expression).substr(0, kLongestShown)});
}

std::wstring_view Parser::ExpressionText(std::size_t begin) const {
  const std::wstring_view rest = lexer_.statement().substr(begin);
  Lexer lexer(rest);
  int brackets = 0;
  Token token = lexer.Next();
  for (; token.kind != TokenKind::kEnd; token = lexer.Next()) {
    const std::wstring_view sign = token.kind == TokenKind::kSign ? token.source : L"";
    if (sign == L"(") ++brackets;
    if (sign == L")" && --brackets < 0) break;
    if (brackets == 0 && (sign == L";" || token.keyword == Keyword::kOrder)) break;
  }
  return text::Trim(rest.substr(0, token.at));
}

}  // namespace

bool IsSelect(std::wstring_view text) { return Lexer(text).Next().keyword == Keyword::kSelect; }

SelectStatement ParseSelect(std::wstring_view text) { return Parser(text).ParseStatement(); }

void FailAsSource(std::wstring_view text) {
  Lexer lexer(text);
  const Token first = lexer.Next();
  if (first.keyword == Keyword::kInsert) Fail(Failure::kSyntaxInInsert);
  if (first.keyword == Keyword::kUpdate) Fail(Failure::kSyntaxInUpdate);
  const bool is_name = first.kind == TokenKind::kName && lexer.Next().kind == TokenKind::kEnd;
  if (is_name) Fail(Failure::kTableNotFound, {first.text});
  Fail(Failure::kNotAStatement);
}

Criterion ParseCriterion(std::wstring_view text) { return Parser(text).ParseWholeCriterion(); }

}  // namespace database::sql
