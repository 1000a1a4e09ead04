// Turns a source text into rows: parsed, looked up, run, ordered and cut.
#include "platform/database/selection.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include "platform/database/errors.h"
#include "platform/database/query.h"
#include "platform/database/query_runner.h"
#include "platform/database/sql_parser.h"
#include "platform/text/strings.h"

namespace database {
namespace {

using SortKey = std::vector<Comparable>;

// Collects what a query finds, in its order and up to its limit.
template <class Item>
class OrderedItems {
 public:
  explicit OrderedItems(const Query& query) : query_(query) {}

  // Returns whether more are wanted.
  bool Add(std::span<const jet::StoredRowValues> rows, Item item) {
    entries_.push_back({KeyOf(rows), std::move(item)});
    return !query_.order.empty() || !query_.top || entries_.size() < *query_.top;
  }

  std::vector<Item> Take() {
    if (!query_.order.empty()) Sort();
    std::vector<Item> items;
    items.reserve(entries_.size());
    for (Entry& entry : entries_) items.push_back(std::move(entry.item));
    return items;
  }

 private:
  struct Entry {
    SortKey key;
    Item item;
  };

  SortKey KeyOf(std::span<const jet::StoredRowValues> rows) const {
    SortKey key;
    for (const QueryOrder& order : query_.order) {
      const jet::Value& value = rows[order.column.table].values[order.column.column];
      key.push_back(ComparableOf(value, DefinitionOf(query_, order.column).collation));
    }
    return key;
  }

  void Sort() {
    const auto before = [this](const Entry& one, const Entry& other) {
      for (std::size_t i = 0; i < query_.order.size(); ++i) {
        if (one.key[i] == other.key[i]) continue;
        return (one.key[i] < other.key[i]) != query_.order[i].descending;
      }
      return false;
    };
    std::ranges::stable_sort(entries_, before);
    if (!query_.top || entries_.size() <= *query_.top) return;
    // Rows that order like the last one wanted belong to it.
    auto end = entries_.begin() + *query_.top;
    const SortKey& last = std::prev(end)->key;
    while (end != entries_.end() && end->key == last) ++end;
    entries_.erase(end, entries_.end());
  }

  const Query& query_;
  std::vector<Entry> entries_;
};

const FieldInfo& InfoOf(const Query& query, QueryColumn column) {
  return (*query.tables[column.table]->fields())[column.column];
}

std::shared_ptr<const FieldList> FieldsOf(const Query& query) {
  auto fields = std::make_shared<FieldList>();
  for (const QueryColumn column : query.output) {
    FieldInfo& field = fields->emplace_back(InfoOf(query, column));
    // A name that two tables share is shown with its table.
    const auto clashes = [&](QueryColumn other) {
      return other.table != column.table &&
             text::EqualsNoCase(InfoOf(query, other).name, InfoOf(query, column).name);
    };
    if (query.tables.size() > 1 && std::ranges::any_of(query.output, clashes))
      field.name = query.tables[column.table]->name() + L"." + field.name;
  }
  return fields;
}

Selection WholeTable(SessionTable& table) {
  Selection selection;
  selection.table = &table;
  selection.fields = table.fields();
  selection.columns.resize(selection.fields->size());
  std::iota(selection.columns.begin(), selection.columns.end(), std::size_t{0});
  selection.whole_table = true;
  return selection;
}

// Whether the query shows all columns of its only table, in their order.
bool ShowsTableAsItIs(const Query& query) {
  if (query.output.size() != query.tables.front()->fields()->size()) return false;
  for (std::size_t i = 0; i < query.output.size(); ++i)
    if (query.output[i].column != i) return false;
  return true;
}

Selection SelectFromOne(const Query& query) {
  SessionTable& table = *query.tables.front();
  Selection selection = WholeTable(table);
  if (!ShowsTableAsItIs(query)) {
    selection.fields = FieldsOf(query);
    selection.columns.clear();
    for (const QueryColumn column : query.output) selection.columns.push_back(column.column);
  }
  const bool has_tests =
      !query.constants.empty() || !query.columns.empty() || !query.members.empty();
  selection.whole_table = !has_tests && query.order.empty() && !query.top;
  if (selection.whole_table) return selection;

  QueryRunner runner(query);
  if (query.order.empty() && !query.top) {
    selection.rows = runner.Rows();
    return selection;
  }
  OrderedItems<jet::RowId> found(query);
  runner.ForEach(
      [&](std::span<const jet::StoredRowValues> rows) { return found.Add(rows, rows.front().id); });
  selection.rows = found.Take();
  return selection;
}

// Rows of the tables that the output shows, to tell a combination that was there before.
class ShownRows {
 public:
  explicit ShownRows(const Query& query) {
    std::set<std::size_t> shown;
    for (const QueryColumn column : query.output) shown.insert(column.table);
    tables_.assign(shown.begin(), shown.end());
  }

  bool AddNew(std::span<const jet::StoredRowValues> rows) {
    std::vector<jet::RowId> ids;
    for (const std::size_t table : tables_) ids.push_back(rows[table].id);
    return seen_.insert(std::move(ids)).second;
  }

 private:
  std::vector<std::size_t> tables_;
  std::set<std::vector<jet::RowId>> seen_;
};

Selection SelectFromJoin(const Query& query) {
  Selection selection;
  selection.fields = FieldsOf(query);
  ShownRows shown(query);
  OrderedItems<jet::Row> found(query);
  QueryRunner(query).ForEach([&](std::span<const jet::StoredRowValues> rows) {
    if (query.distinct_rows && !shown.AddNew(rows)) return true;
    jet::Row values;
    for (const QueryColumn column : query.output)
      values.push_back(rows[column.table].values[column.column]);
    return found.Add(rows, std::move(values));
  });
  selection.values = found.Take();
  return selection;
}

Selection SelectTable(Session& session, std::wstring_view source) {
  std::wstring_view name = text::Trim(source);
  if (name.size() > 2 && name.front() == L'[' && name.back() == L']')
    name = name.substr(1, name.size() - 2);
  try {
    return WholeTable(session.Table(name));
  } catch (const jet::Error& error) {
    if (error.kind() != jet::ErrorKind::kTableNotFound) throw;
  }
  sql::FailAsSource(source);
}

}  // namespace

Selection Select(Session& session, std::wstring_view source) {
  if (!sql::IsSelect(source)) return SelectTable(session, source);
  const sql::SelectStatement statement = sql::ParseSelect(source);
  const Query query = Bind(session, statement);
  return query.tables.size() == 1 ? SelectFromOne(query) : SelectFromJoin(query);
}

}  // namespace database
