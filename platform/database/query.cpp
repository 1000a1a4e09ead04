// Looks up the tables and columns that a statement names, and checks that they fit each other.
#include "platform/database/query.h"

#include <set>
#include <utility>

#include "platform/database/errors.h"
#include "platform/database/value_conversion.h"
#include "platform/text/strings.h"

namespace database {
namespace {

class Binder {
 public:
  Binder(Session& session, const sql::SelectStatement& statement)
      : session_(session), statement_(statement) {}

  Query Bind();

 private:
  // Part of the tables: those that one source brought in.
  struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool Holds(QueryColumn column) const { return column.table >= begin && column.table < end; }
  };

  Range AddSource(const sql::Source& source);
  void AddJoin(const sql::Source& join, Range left, Range right);
  void AddOutput(const sql::OutputColumns& output);
  void AddAllColumns(std::size_t table);
  void AddCondition(const sql::Comparison& comparison);
  void AddCondition(const sql::InQuery& in);
  void AddConstantTest(const sql::ColumnName& name, sql::Operator op, const sql::Operand& constant);
  void AddColumnTest(const sql::Comparison& comparison);

  std::optional<std::size_t> FindTable(std::wstring_view name) const;
  // Notes a name that is not found, and goes on: the error counts them all.
  std::optional<QueryColumn> Find(const sql::ColumnName& name);
  ValueKind KindOfColumn(QueryColumn column) const {
    return KindOf(DefinitionOf(query_, column).type);
  }

  Session& session_;
  const sql::SelectStatement& statement_;
  Query query_;
  std::set<std::wstring> unknown_;  // in upper case
};

Query Binder::Bind() {
  AddSource(statement_.from);
  for (const sql::OutputColumns& output : statement_.output) AddOutput(output);
  for (const sql::Condition& condition : statement_.where)
    std::visit([this](const auto& known) { AddCondition(known); }, condition);
  for (const sql::OrderColumn& order : statement_.order)
    if (const auto column = Find(order.column)) query_.order.push_back({*column, order.descending});
  if (!unknown_.empty()) Fail(Failure::kUnknownColumns, {std::to_wstring(unknown_.size())});

  query_.distinct_rows = statement_.distinct_rows;
  query_.top = statement_.top;
  return std::move(query_);
}

Binder::Range Binder::AddSource(const sql::Source& source) {
  if (source.left == nullptr) {
    // Without other names for tables, a second mention could not be told from the first.
    if (FindTable(source.table)) Fail(Failure::kJoinNotSupported);
    query_.tables.push_back(&session_.Table(source.table));
    return {query_.tables.size() - 1, query_.tables.size()};
  }
  const Range left = AddSource(*source.left);
  const Range right = AddSource(*source.right);
  AddJoin(source, left, right);
  return {left.begin, right.end};
}

void Binder::AddJoin(const sql::Source& join, Range left, Range right) {
  const auto one = Find(join.on_left);
  const auto other = Find(join.on_right);
  if (!one || !other) return;
  const bool connects =
      (left.Holds(*one) && right.Holds(*other)) || (left.Holds(*other) && right.Holds(*one));
  if (!connects) Fail(Failure::kJoinNotSupported);
  if (KindOfColumn(*one) != KindOfColumn(*other)) Fail(Failure::kJoinMismatch);
  query_.columns.push_back({*one, sql::Operator::kEqual, *other});
}

void Binder::AddOutput(const sql::OutputColumns& output) {
  if (!output.all) {
    if (const auto column = Find(output.column)) query_.output.push_back(*column);
    return;
  }
  if (output.column.table.empty()) {
    for (std::size_t table = 0; table < query_.tables.size(); ++table) AddAllColumns(table);
    return;
  }
  const auto table = FindTable(output.column.table);
  if (table) {
    AddAllColumns(*table);
  } else {
    unknown_.insert(text::ToUpper(output.column.table) + L".*");
  }
}

void Binder::AddAllColumns(std::size_t table) {
  const std::size_t count = query_.tables[table]->fields()->size();
  for (std::size_t column = 0; column < count; ++column) query_.output.push_back({table, column});
}

void Binder::AddCondition(const sql::Comparison& comparison) {
  const auto* left = std::get_if<sql::ColumnName>(&comparison.left);
  const auto* right = std::get_if<sql::ColumnName>(&comparison.right);
  if (left != nullptr && right != nullptr) {
    AddColumnTest(comparison);
  } else if (left != nullptr) {
    AddConstantTest(*left, comparison.op, comparison.right);
  } else if (right != nullptr) {
    AddConstantTest(*right, Mirrored(comparison.op), comparison.left);
  }
}

void Binder::AddColumnTest(const sql::Comparison& comparison) {
  const auto left = Find(std::get<sql::ColumnName>(comparison.left));
  const auto right = Find(std::get<sql::ColumnName>(comparison.right));
  if (!left || !right) return;
  if (KindOfColumn(*left) != KindOfColumn(*right)) Fail(Failure::kCriterionMismatch);
  query_.columns.push_back({*left, comparison.op, *right});
}

void Binder::AddConstantTest(const sql::ColumnName& name, sql::Operator op,
                             const sql::Operand& constant) {
  const auto column = Find(name);
  if (!column) return;
  if (KindOfColumn(*column) != KindOf(constant)) Fail(Failure::kCriterionMismatch);
  ConstantTest test{*column, op, ConstantValue(constant), {}};
  test.comparable = ComparableOf(test.constant, DefinitionOf(query_, *column).collation);
  query_.constants.push_back(std::move(test));
}

void Binder::AddCondition(const sql::InQuery& in) {
  const auto column = Find(in.column);
  auto query = std::make_unique<Query>(Binder(session_, *in.query).Bind());
  if (query->output.size() != 1) Fail(Failure::kSubqueryColumns);
  if (!column) return;
  if (KindOfColumn(*column) != KindOf(DefinitionOf(*query, query->output[0]).type))
    Fail(Failure::kCriterionMismatch);
  query_.members.push_back({*column, std::move(query)});
}

std::optional<std::size_t> Binder::FindTable(std::wstring_view name) const {
  for (std::size_t i = 0; i < query_.tables.size(); ++i)
    if (text::EqualsNoCase(query_.tables[i]->name(), name)) return i;
  return std::nullopt;
}

std::optional<QueryColumn> Binder::Find(const sql::ColumnName& name) {
  std::optional<QueryColumn> found;
  for (std::size_t table = 0; table < query_.tables.size(); ++table) {
    if (!name.table.empty() && !text::EqualsNoCase(query_.tables[table]->name(), name.table))
      continue;
    const auto column = query_.tables[table]->FindColumn(name.name);
    if (!column) continue;
    if (found) Fail(Failure::kAmbiguousColumn, {name.name});
    found = QueryColumn{table, *column};
  }
  if (!found) unknown_.insert(text::ToUpper(name.table) + L"." + text::ToUpper(name.name));
  return found;
}

}  // namespace

const jet::ColumnDefinition& DefinitionOf(const Query& query, QueryColumn column) {
  return query.tables[column.table]->jet().columns()[column.column];
}

Query Bind(Session& session, const sql::SelectStatement& statement) {
  return Binder(session, statement).Bind();
}

}  // namespace database
