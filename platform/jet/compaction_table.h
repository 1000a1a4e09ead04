// One table on its way into a compacted copy.
#pragma once

#include <optional>
#include <vector>

#include "platform/jet/compaction_ids.h"
#include "platform/jet/compaction_index.h"
#include "platform/jet/compaction_steps.h"
#include "platform/jet/database_impl.h"
#include "platform/jet/table_impl.h"

namespace jet {

// Writes a table's rows, long values, indexes and definition. Everything passed must outlive it.
class TableCopier {
 public:
  // The copy's definition begins on the page that `ids` has for the table; it must be taken.
  TableCopier(Table::Impl& source, Database::Impl& target, const ObjectIds& ids,
              CompactionSteps& steps);

  void Copy();

 private:
  // Rows in the order of the primary key, then those that its index does not have.
  void CopyRows();
  void CopyRow(const RawRow& raw);
  std::vector<LongValueField> CopyLongValues(const StoredRow& stored);
  void FollowAutonumber(const Row& row);
  void FillIndexes();
  bool HasTranslatedColumn(const PhysicalIndex& index) const;

  Table::Impl& source_;
  Database::Impl& target_;
  const ObjectIds& ids_;
  CompactionSteps& steps_;
  TableDefinition definition_;  // the copy's
  std::optional<RowStore> rows_;
  std::vector<std::optional<LongValueStore>> long_values_;  // by column position
  IdColumns id_columns_;
  LongValues indexed_values_ = LongValues::kSkip;
  std::vector<ExpectedIndex> expected_;  // by position of the physical index
  std::vector<bool> copied_;             // by stored address
  RowPlaces places_;
};

}  // namespace jet
