// The entries of an index on their way into a compacted copy.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "platform/jet/compaction_steps.h"
#include "platform/jet/index_loader.h"
#include "platform/jet/row_store.h"
#include "platform/jet/table_impl.h"
#include "platform/jet/table_index.h"

namespace jet {

// Where each row of a table stands in the copy.
class RowPlaces {
 public:
  void Add(RowId from, RowId to) { places_.emplace_back(from.ToStored(), to.ToStored()); }
  // REQUIRED between the last Add and the first Find.
  void Sort();
  std::optional<RowId> Find(RowId from) const;

 private:
  std::vector<std::pair<std::uint32_t, std::uint32_t>> places_;
};

// A sum over entries that does not depend on their order, to tell whether an index has exactly the
// entries that the rows ask for without sorting either.
class EntrySum {
 public:
  void Add(RowId row, std::span<const std::byte> key);
  bool operator==(const EntrySum&) const = default;

 private:
  std::uint64_t count_ = 0;
  std::uint64_t sum_ = 0;
};

// What the rows of a table ask of one of its indexes, gathered while they are copied.
class ExpectedIndex {
 public:
  explicit ExpectedIndex(const TableIndex& index)
      : index_(&index), makes_keys_(index.is_understood()) {}

  void Add(RowId id, const Row& row);

  // Whether the tree has one entry for each of the rows, in order, with the key that belongs to it
  // where this engine can make all of them. Reads the whole tree.
  bool IsMetBy(const IndexTree& tree) const;

 private:
  bool IsMetByWhole(const IndexTree& tree) const;  // kDamaged

  const TableIndex* index_;
  bool makes_keys_;  // so far
  EntrySum with_keys_;
  EntrySum without_keys_;
};

// Adds entries, which come in order, to a new index, and counts them.
class IndexFiller {
 public:
  IndexFiller(IndexLoader loader, PhysicalIndex& counters, CompactionSteps& steps)
      : loader_(std::move(loader)), counters_(counters), steps_(steps) {}

  // `rows` are those with this key, in any order.
  void Add(const Bytes& key, std::vector<RowId>& rows);
  void Finish() { loader_.Finish(); }

 private:
  IndexLoader loader_;
  PhysicalIndex& counters_;
  CompactionSteps& steps_;
};

// Takes the entries over from the source's tree, rows translated.
void FillFromTree(const IndexTree& from, const RowPlaces& places, IndexFiller& filler);

// Makes the entries from rows of the copy: `index` is one of theirs, as `rows`, `definition` and
// `long_values` (by column position) are. kNotSupported when the keys cannot be made,
// kDuplicateKey.
void FillFromRows(const TableIndex& index, const RowStore& rows, const TableDefinition& definition,
                  const std::vector<std::optional<LongValueStore>>& long_values,
                  IndexFiller& filler);

}  // namespace jet
