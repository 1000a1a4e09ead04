// Nested look-ups from the most selective table outwards.
#include "platform/database/query_runner.h"

#include <algorithm>
#include <utility>

#include "platform/database/comparison.h"

namespace database {

QueryRunner::QueryRunner(const Query& query) : query_(query), rows_(query.tables.size()) {
  RunSubqueries();
  PlanSteps();
}

void QueryRunner::RunSubqueries() {
  for (const MemberTest& test : query_.members) {
    ValueSet& values = sets_.emplace_back();
    const QueryColumn output = test.query->output.front();
    const jet::Collation collation = DefinitionOf(query_, test.column).collation;
    QueryRunner(*test.query).ForEach([&](std::span<const jet::StoredRowValues> rows) {
      const jet::Value& value = rows[output.table].values[output.column];
      std::string key;
      if (AppendEqualityKey(key, ComparableOf(value, collation)))
        values.emplace(std::move(key), value);
      return true;
    });
  }
}

void QueryRunner::PlanSteps() {
  std::vector<bool> done(query_.tables.size(), false);
  while (steps_.size() < query_.tables.size()) steps_.push_back(PlanStep(NextTable(done), done));
}

std::size_t QueryRunner::NextTable(const std::vector<bool>& done) const {
  std::size_t best = 0;
  int best_score = -1;
  for (std::size_t table = 0; table < done.size(); ++table) {
    if (done[table]) continue;
    const bool linked = std::ranges::any_of(query_.columns, [&](const ColumnTest& test) {
      const auto other = LinkedTable(test, table);
      return other && done[*other];
    });
    // A table that is linked to those before is always better than one that is not.
    constexpr int kLinked = 100;
    const int score = Selectivity(table) + (linked ? kLinked : 0);
    if (score > best_score) {
      best = table;
      best_score = score;
    }
  }
  return best;
}

QueryRunner::Step QueryRunner::PlanStep(std::size_t table, std::vector<bool>& done) const {
  Step step;
  step.table = table;
  for (const ConstantTest& test : query_.constants)
    if (test.column.table == table) step.tests.constants.push_back(&test);
  for (std::size_t i = 0; i < query_.members.size(); ++i)
    if (query_.members[i].column.table == table)
      step.tests.sets.push_back({query_.members[i].column.column, &sets_[i]});
  done[table] = true;
  for (const ColumnTest& test : query_.columns) {
    if (test.left.table != table && test.right.table != table) continue;
    if (!done[test.left.table] || !done[test.right.table]) continue;
    (LinkedTable(test, table) ? step.links : step.checks).push_back(&test);
  }
  return step;
}

int QueryRunner::Selectivity(std::size_t table) const {
  int best = 0;
  for (const ConstantTest& test : query_.constants)
    if (test.column.table == table) best = std::max(best, test.op == sql::Operator::kEqual ? 3 : 1);
  for (const MemberTest& test : query_.members)
    if (test.column.table == table) best = std::max(best, 2);
  return best;
}

std::optional<std::size_t> QueryRunner::LinkedTable(const ColumnTest& test, std::size_t table) {
  if (test.op != sql::Operator::kEqual || test.left.table == test.right.table) return std::nullopt;
  if (test.left.table == table) return test.right.table;
  if (test.right.table == table) return test.left.table;
  return std::nullopt;
}

void QueryRunner::ForEach(const Sink& sink) { RunStep(0, sink); }

std::vector<jet::RowId> QueryRunner::Rows() {
  const Step& step = steps_.front();
  Candidates candidates = FindCandidates(*query_.tables[step.table], step.tests, false);
  const bool is_answer = !candidates.whole_table && candidates.open.empty() && step.checks.empty();
  if (is_answer) return std::move(candidates.rows);

  std::vector<jet::RowId> ids;
  VisitCandidates(0, candidates, [&ids](std::span<const jet::StoredRowValues> rows) {
    ids.push_back(rows.front().id);
    return true;
  });
  return ids;
}

bool QueryRunner::RunStep(std::size_t number, const Sink& sink) {
  if (number == steps_.size()) return sink(rows_);
  const Step& step = steps_[number];
  SessionTable& table = *query_.tables[step.table];

  // What a linked table's row asks for is a constant here.
  std::vector<ConstantTest> linked;
  linked.reserve(step.links.size());
  RowTests tests = step.tests;
  for (const ColumnTest* link : step.links) {
    const bool own_left = link->left.table == step.table;
    const QueryColumn own = own_left ? link->left : link->right;
    const QueryColumn other = own_left ? link->right : link->left;
    const jet::Value& value = rows_[other.table].values[other.column];
    if (jet::IsNull(value)) return true;
    const Comparable comparable = ComparableOf(value, DefinitionOf(query_, own).collation);
    linked.push_back({own, sql::Operator::kEqual, value, comparable});
    tests.constants.push_back(&linked.back());
  }

  const bool repeatedly = number > 0;
  return VisitCandidates(number, FindCandidates(table, tests, repeatedly), sink);
}

bool QueryRunner::VisitCandidates(std::size_t number, const Candidates& candidates,
                                  const Sink& sink) {
  const Step& step = steps_[number];
  const jet::Table& table = query_.tables[step.table]->jet();
  jet::StoredRowValues& current = rows_[step.table];
  if (candidates.whole_table) {
    jet::Table::Scan scan = table.ScanRows();
    while (std::optional<jet::StoredRowValues> row = scan.Next()) {
      current = *std::move(row);
      if (!Visit(number, candidates.open, sink)) return false;
    }
    return true;
  }
  for (const jet::RowId id : candidates.rows) {
    std::optional<jet::Row> values = table.Read(id);
    if (!values) continue;
    current = {id, *std::move(values)};
    if (!Visit(number, candidates.open, sink)) return false;
  }
  return true;
}

bool QueryRunner::Visit(std::size_t number, const RowTests& open, const Sink& sink) {
  const Step& step = steps_[number];
  const bool passes =
      Passes(rows_[step.table].values, open, *query_.tables[step.table]) && ChecksHold(step);
  return !passes || RunStep(number + 1, sink);
}

bool QueryRunner::ChecksHold(const Step& step) const {
  return std::ranges::all_of(step.checks, [this](const ColumnTest* test) {
    return Holds(ComparableAt(test->left), test->op, ComparableAt(test->right));
  });
}

Comparable QueryRunner::ComparableAt(QueryColumn column) const {
  return ComparableOf(rows_[column.table].values[column.column],
                      DefinitionOf(query_, column).collation);
}

}  // namespace database
