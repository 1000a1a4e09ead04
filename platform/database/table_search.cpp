// Chooses the cheapest way to the rows that meet some tests.
#include "platform/database/table_search.h"

#include <algorithm>
#include <utility>

#include "platform/database/comparison.h"
#include "platform/database/value_conversion.h"

namespace database {
namespace {

// A look-up by index costs about as much as this many steps of a walk through the table.
constexpr std::size_t kLookupCost = 8;

// A test for equality, with what to look for in an index of its column.
struct Equality {
  const ConstantTest* test = nullptr;
  IndexKey key;
  std::size_t column() const { return test->column.column; }
};

void Sort(std::vector<jet::RowId>& rows) {
  if (!std::ranges::is_sorted(rows)) std::ranges::sort(rows);
}

class Search {
 public:
  Search(SessionTable& table, const RowTests& tests, bool repeatedly);

  Candidates Run();

 private:
  using Rows = std::optional<std::vector<jet::RowId>>;

  bool IsEmpty() const;
  bool TryUniqueIndex();
  bool TrySets();
  bool TryIndexOnAll();
  bool TryHash();
  bool TryIndexOnOne();

  // Fills the result from rows that meet `answered`.
  bool Take(Rows rows, std::span<const Equality> answered);
  Rows LookUp(std::size_t index, std::span<const Equality> equalities) const;
  Rows LookUpMembers(const SetTest& set) const;
  // The physical index that all these columns lead, if their keys can be made.
  std::optional<std::size_t> IndexOn(std::span<const Equality> equalities) const;
  bool IsUnique(std::size_t index, std::size_t columns) const;

  SessionTable& table_;
  const RowTests& tests_;
  bool repeatedly_;
  std::vector<Equality> equalities_;  // one a column
  Candidates result_;
};

Search::Search(SessionTable& table, const RowTests& tests, bool repeatedly)
    : table_(table), tests_(tests), repeatedly_(repeatedly) {
  for (const ConstantTest* test : tests_.constants) {
    const auto has_column = [&](const Equality& other) {
      return other.column() == test->column.column;
    };
    if (test->op != sql::Operator::kEqual || std::ranges::any_of(equalities_, has_column)) continue;
    const jet::ColumnDefinition& column = table_.jet().columns()[test->column.column];
    equalities_.push_back({test, IndexKeyFor(test->constant, column)});
  }
}

Candidates Search::Run() {
  if (IsEmpty()) return {};
  const bool found =
      TryUniqueIndex() || TrySets() || TryIndexOnAll() || TryHash() || TryIndexOnOne();
  if (!found) return {true, {}, tests_};
  return std::move(result_);
}

bool Search::IsEmpty() const {
  const auto equals_nothing = [](const Equality& equality) {
    return equality.key.kind == IndexKey::Kind::kEqualsNothing;
  };
  const auto has_no_member = [](const SetTest& set) { return set.values->empty(); };
  return std::ranges::any_of(equalities_, equals_nothing) ||
         std::ranges::any_of(tests_.sets, has_no_member);
}

bool Search::TryUniqueIndex() {
  if (const auto index = IndexOn(equalities_); index && IsUnique(*index, equalities_.size()))
    return Take(LookUp(*index, equalities_), equalities_);
  for (const Equality& equality : equalities_) {
    const std::span<const Equality> one(&equality, 1);
    if (const auto index = IndexOn(one); index && IsUnique(*index, 1))
      return Take(LookUp(*index, one), one);
  }
  return false;
}

bool Search::TrySets() {
  for (const SetTest& set : tests_.sets) {
    if (set.values->size() >= table_.jet().row_count() / kLookupCost) continue;
    if (!Take(LookUpMembers(set), {})) continue;
    std::erase_if(result_.open.sets, [&](const SetTest& open) {
      return open.column == set.column && open.values == set.values;
    });
    return true;
  }
  return false;
}

bool Search::TryIndexOnAll() {
  const auto index = IndexOn(equalities_);
  return index && Take(LookUp(*index, equalities_), equalities_);
}

bool Search::TryHash() {
  if (equalities_.empty()) return false;
  std::vector<std::size_t> columns;
  for (const Equality& equality : equalities_) columns.push_back(equality.column());
  const ColumnHash* hash = table_.HashOn(columns, repeatedly_);
  if (hash == nullptr) return false;
  std::string key;
  for (const Equality& equality : equalities_)
    if (!AppendEqualityKey(key, equality.test->comparable)) return Take(Rows(std::in_place), {});
  return Take(hash->Find(key), equalities_);
}

bool Search::TryIndexOnOne() {
  for (const Equality& equality : equalities_) {
    const std::span<const Equality> one(&equality, 1);
    if (const auto index = IndexOn(one)) return Take(LookUp(*index, one), one);
  }
  return false;
}

bool Search::Take(Rows rows, std::span<const Equality> answered) {
  if (!rows) return false;
  result_.rows = *std::move(rows);
  result_.open = tests_;
  std::erase_if(result_.open.constants, [&](const ConstantTest* test) {
    return std::ranges::any_of(answered, [&](const Equality& one) { return one.test == test; });
  });
  return true;
}

Search::Rows Search::LookUp(std::size_t index, std::span<const Equality> equalities) const {
  // The values go in the order of the index's columns.
  const auto& definition = table_.jet().definition();
  const auto& order = definition.physical_indexes[index].columns;
  std::vector<jet::Value> values;
  for (std::size_t i = 0; i < equalities.size(); ++i) {
    const auto equality = std::ranges::find_if(equalities, [&](const Equality& candidate) {
      return definition.columns[candidate.column()].number == order[i].column_number;
    });
    if (equality == equalities.end()) return std::nullopt;
    values.push_back(equality->key.value);
  }
  Rows rows = table_.jet().Lookup(index, values);
  Sort(*rows);
  return rows;
}

Search::Rows Search::LookUpMembers(const SetTest& set) const {
  const auto index = table_.jet().IndexOn(set.column);
  if (!index) return std::nullopt;
  const jet::ColumnDefinition& column = table_.jet().columns()[set.column];
  Rows rows(std::in_place);
  for (const auto& [unused, member] : *set.values) {
    const IndexKey key = IndexKeyFor(member, column);
    if (key.kind == IndexKey::Kind::kNotByIndex) return std::nullopt;
    if (key.kind == IndexKey::Kind::kEqualsNothing) continue;
    const auto found = table_.jet().Lookup(*index, std::span(&key.value, 1));
    rows->insert(rows->end(), found.begin(), found.end());
  }
  Sort(*rows);
  return rows;
}

std::optional<std::size_t> Search::IndexOn(std::span<const Equality> equalities) const {
  std::vector<std::size_t> columns;
  for (const Equality& equality : equalities) {
    if (equality.key.kind != IndexKey::Kind::kValue) return std::nullopt;
    columns.push_back(equality.column());
  }
  if (columns.empty()) return std::nullopt;
  return columns.size() == 1 ? table_.jet().IndexOn(columns.front())
                             : table_.jet().IndexOn(columns);
}

bool Search::IsUnique(std::size_t index, std::size_t columns) const {
  const jet::PhysicalIndex& physical = table_.jet().definition().physical_indexes[index];
  return physical.is_unique() && physical.columns.size() == columns;
}

}  // namespace

bool Passes(const jet::Row& row, const RowTests& tests, const SessionTable& table) {
  const auto comparable = [&](std::size_t column) {
    return ComparableOf(row[column], table.jet().columns()[column].collation);
  };
  for (const ConstantTest* test : tests.constants)
    if (!Holds(comparable(test->column.column), test->op, test->comparable)) return false;
  for (const SetTest& set : tests.sets) {
    std::string key;
    if (!AppendEqualityKey(key, comparable(set.column)) || !set.values->contains(key)) return false;
  }
  return true;
}

Candidates FindCandidates(SessionTable& table, const RowTests& tests, bool repeatedly) {
  return Search(table, tests, repeatedly).Run();
}

}  // namespace database
