// Runs a query: combines the rows of its tables that meet all its tests.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "platform/database/query.h"
#include "platform/database/table_search.h"

namespace database {

// The query must outlive it. Its sub-queries are run once, when it is made.
class QueryRunner {
 public:
  explicit QueryRunner(const Query& query);
  QueryRunner(const QueryRunner&) = delete;
  QueryRunner& operator=(const QueryRunner&) = delete;

  // One row of each table, in the order of the query's tables. Returns whether to go on.
  using Sink = std::function<bool(std::span<const jet::StoredRowValues> rows)>;
  void ForEach(const Sink& sink);

  // The rows of a query over one table, in table order, without reading them where the search
  // alone can tell. REQUIRES one table.
  std::vector<jet::RowId> Rows();

 private:
  // One table's part of the nested search.
  struct Step {
    std::size_t table = 0;
    RowTests tests;
    std::vector<const ColumnTest*> links;   // equalities with tables of earlier steps
    std::vector<const ColumnTest*> checks;  // other tests that can be made here
  };

  void RunSubqueries();
  void PlanSteps();
  std::size_t NextTable(const std::vector<bool>& done) const;
  Step PlanStep(std::size_t table, std::vector<bool>& done) const;
  int Selectivity(std::size_t table) const;
  // The table of the test's other side; nothing when the test does not link two tables by equality.
  static std::optional<std::size_t> LinkedTable(const ColumnTest& test, std::size_t table);

  bool RunStep(std::size_t number, const Sink& sink);
  bool VisitCandidates(std::size_t number, const Candidates& candidates, const Sink& sink);
  bool Visit(std::size_t number, const RowTests& open, const Sink& sink);
  bool ChecksHold(const Step& step) const;
  Comparable ComparableAt(QueryColumn column) const;

  const Query& query_;
  std::vector<ValueSet> sets_;  // one a member test
  std::vector<Step> steps_;
  std::vector<jet::StoredRowValues> rows_;  // the combination in hand
};

}  // namespace database
