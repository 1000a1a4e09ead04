// Index entries on their way into a copy: see the header.
#include "platform/jet/compaction_index.h"

#include <algorithm>
#include <utility>

#include "platform/jet/error.h"

namespace jet {

namespace {

// Spreads every bit of the input over the output (the finishing step of a 64-bit generator).
std::uint64_t Mix(std::uint64_t value) {
  value = (value ^ value >> 30) * 0xbf58476d1ce4e5b9u;
  value = (value ^ value >> 27) * 0x94d049bb133111ebu;
  return value ^ value >> 31;
}

std::uint64_t HashOf(std::span<const std::byte> bytes) {
  std::uint64_t hash = 0xcbf29ce484222325u;  // FNV-1a
  for (const std::byte byte : bytes)
    hash = (hash ^ std::to_integer<std::uint64_t>(byte)) * 0x100000001b3u;
  return hash;
}

std::size_t SizeOf(const IndexEntry& entry) {
  return entry.key.size() + index_page_format::kRowSize;
}

// The values of an index's columns, Null in all others.
Row IndexedValues(const RawRow& raw, const TableIndex& index, const TableDefinition& definition,
                  const std::vector<std::optional<LongValueStore>>& long_values) {
  const StoredRow stored(definition, raw.bytes, raw.page.number());
  Row row(definition.columns.size());
  for (const std::size_t position : index.columns()) {
    const ColumnDefinition& column = definition.columns[position];
    if (!column.is_long_value())
      row[position] = stored.Get(column);
    else if (const auto field = stored.GetLongValue(column))
      row[position] = DecodeText(long_values[position]->Read(*field));
  }
  return row;
}

}  // namespace

void RowPlaces::Sort() { std::sort(places_.begin(), places_.end()); }

std::optional<RowId> RowPlaces::Find(RowId from) const {
  const auto found = std::lower_bound(places_.begin(), places_.end(),
                                      std::pair{from.ToStored(), std::uint32_t{0}});
  if (found == places_.end() || found->first != from.ToStored()) return std::nullopt;
  return RowId::FromStored(found->second);
}

void EntrySum::Add(RowId row, std::span<const std::byte> key) {
  ++count_;
  sum_ += Mix(HashOf(key) ^ Mix(row.ToStored()));
}

void ExpectedIndex::Add(RowId id, const Row& row) {
  if (!index_->HasEntry(row)) return;
  without_keys_.Add(id, {});
  if (!makes_keys_) return;
  try {
    with_keys_.Add(id, index_->Key(row));
  } catch (const Error& error) {
    // A text whose weights are not known.
    if (error.kind() != ErrorKind::kNotSupported) throw;
    makes_keys_ = false;
  }
}

bool ExpectedIndex::IsMetBy(const IndexTree& tree) const {
  try {
    return IsMetByWhole(tree);
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::kDamaged) throw;
    return false;
  }
}

bool ExpectedIndex::IsMetByWhole(const IndexTree& tree) const {
  EntrySum found;
  std::optional<IndexEntry> previous;
  for (IndexTree::Cursor at = tree.First(); !at.at_end(); at.Next()) {
    const IndexEntry& entry = at.entry();
    if (previous && *previous >= entry) return false;
    if (entry.key.empty() || entry.key.size() > index_page_format::kMaxKeySize) return false;
    found.Add(entry.row,
              makes_keys_ ? std::span<const std::byte>(entry.key) : std::span<const std::byte>());
    previous = entry;
  }
  return found == (makes_keys_ ? with_keys_ : without_keys_);
}

void IndexFiller::Add(const Bytes& key, std::vector<RowId>& rows) {
  std::sort(rows.begin(), rows.end());
  for (const RowId row : rows) {
    const IndexEntry entry{key, row};
    loader_.Add(entry);
    ++counters_.entry_count;
    steps_.Wrote(SizeOf(entry));
  }
  if (!rows.empty()) ++counters_.distinct_count;
}

void FillFromTree(const IndexTree& from, const RowPlaces& places, IndexFiller& filler) {
  Bytes key;
  std::vector<RowId> rows;
  for (IndexTree::Cursor at = from.First(); !at.at_end(); at.Next()) {
    const IndexEntry& entry = at.entry();
    if (entry.key != key) {
      filler.Add(key, rows);
      rows.clear();
      key = entry.key;
    }
    const std::optional<RowId> place = places.Find(entry.row);
    if (!place) throw Error(ErrorKind::kDamaged, "an index entry of no row", entry.row.page);
    rows.push_back(*place);
  }
  filler.Add(key, rows);
}

void FillFromRows(const TableIndex& index, const RowStore& rows, const TableDefinition& definition,
                  const std::vector<std::optional<LongValueStore>>& long_values,
                  IndexFiller& filler) {
  if (!index.is_understood())
    throw Error(ErrorKind::kNotSupported, {index.name()},
                "the entries of " + index.refusal() + " do not fit the rows");
  struct NewEntry {
    IndexEntry entry;
    bool has_null = false;
  };
  std::vector<NewEntry> entries;
  RowStore::Scan scan(rows);
  while (const auto raw = scan.Next()) {
    const Row row = IndexedValues(*raw, index, definition, long_values);
    if (index.HasEntry(row)) entries.push_back({{index.Key(row), raw->id}, index.HasNull(row)});
  }
  std::sort(entries.begin(), entries.end(),
            [](const NewEntry& a, const NewEntry& b) { return a.entry < b.entry; });

  std::vector<RowId> equal;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    equal.push_back(entries[i].entry.row);
    const bool is_last =
        i + 1 == entries.size() || entries[i + 1].entry.key != entries[i].entry.key;
    if (!is_last) continue;
    if (equal.size() > 1 && index.is_unique() && !entries[i].has_null)
      throw Error(ErrorKind::kDuplicateKey, {index.name()});
    filler.Add(entries[i].entry.key, equal);
    equal.clear();
  }
}

}  // namespace jet
