// Finding rows of an open table by the values of an index.
#include <algorithm>
#include <unordered_set>

#include "platform/jet/error.h"
#include "platform/jet/key_encoding.h"
#include "platform/jet/table_impl.h"

namespace jet {

namespace {

// Entries keep this much of a long key unchanged; what lies behind can only be compared by row.
constexpr std::size_t kComparableKeySize = 508;

bool SameInOrder(const ColumnDefinition& column, const Value& one, const Value& other) {
  if (Identical(one, other)) return true;
  const auto* text = std::get_if<std::u16string>(&one);
  const auto* other_text = std::get_if<std::u16string>(&other);
  return text != nullptr && other_text != nullptr &&
         TextSortKey(column.collation, *text) == TextSortKey(column.collation, *other_text);
}

}  // namespace

std::vector<RowId> Table::Impl::Find(std::size_t index_position,
                                     std::span<const Value* const> values) const {
  const TableIndex& index = indexes.at(index_position);
  const bool may_be_left_out =
      index.ignores_nulls() &&
      std::all_of(values.begin(), values.end(), [](const Value* value) { return IsNull(*value); });
  if (may_be_left_out) return FindByScan(index, values);

  Bytes prefix;
  try {
    prefix = index.Prefix(values);
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::kNotSupported) throw;
    return FindByScan(index, values);  // a text whose place in the order is unknown
  }
  const auto comparable =
      std::span<const std::byte>(prefix).first(std::min(prefix.size(), kComparableKeySize));
  // A change that was cut off may have left a row with two entries under one prefix.
  const bool may_repeat = values.size() < index.columns().size();
  std::unordered_set<RowId> seen;
  std::vector<RowId> found;
  for (auto cursor = index.tree().LowerBound(comparable); !cursor.at_end(); cursor.Next()) {
    const IndexEntry& candidate = cursor.entry();
    if (candidate.key.size() < comparable.size() ||
        !std::equal(comparable.begin(), comparable.end(), candidate.key.begin()))
      break;
    if (may_repeat && !seen.insert(candidate.row).second) continue;
    if (HoldsValues(candidate.row, index, values)) found.push_back(candidate.row);
  }
  return found;
}

bool Table::Impl::HoldsValues(RowId id, const TableIndex& index,
                              std::span<const Value* const> values) const {
  const std::optional<RawRow> raw = rows->Read(id);
  if (!raw) return false;
  const StoredRow stored(definition, raw->bytes, raw->page.number());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t column = index.columns()[i];
    if (!SameInOrder(definition.columns[column], ColumnValue(stored, column), *values[i]))
      return false;
  }
  return true;
}

std::vector<RowId> Table::Impl::FindByScan(const TableIndex& index,
                                           std::span<const Value* const> values) const {
  std::vector<RowId> found;
  RowStore::Scan scan(*rows);
  while (const std::optional<RawRow> raw = scan.Next()) {
    if (HoldsValues(raw->id, index, values)) found.push_back(raw->id);
  }
  return found;
}

}  // namespace jet
