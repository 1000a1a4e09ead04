// Decodes every row of a table for a file check.
#include "platform/jet/check_rows.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>

#include "platform/jet/check_long_values.h"
#include "platform/jet/check_tables.h"
#include "platform/jet/key_encoding.h"
#include "platform/jet/property_blob.h"
#include "platform/jet/row_codec.h"

namespace jet::check {
namespace {

constexpr PageNumber kCatalog = 2;
constexpr std::u16string_view kProperties = u"LvProp";

class RowCheck {
 public:
  RowCheck(State& state, const CheckedTable& table)
      : state_(state),
        table_(table),
        definition_(table.definition),
        values_(definition_.columns.size()),
        expected_(definition_.physical_indexes.size()) {
    for (const LongValueMaps& maps : definition_.long_value_maps) {
      const ColumnDefinition* column = definition_.FindColumn(maps.column_number);
      long_values_.try_emplace(maps.column_number, state, maps,
                               table.name + "." + ToUtf8(column->name));
    }
    for (const PhysicalIndex& index : definition_.physical_indexes) PlanIndex(index);
    if (definition_.page == kCatalog) {
      const auto found =
          std::ranges::find(definition_.columns, kProperties, &ColumnDefinition::name);
      if (found != definition_.columns.end()) properties_ = &*found;
    }
  }

  std::vector<ExpectedEntries> Run() {
    ForEachRow(
        state_.pager, table_, [this](RowId id, ByteView row) { Look(id, row); },
        [this](RowId id, const Error& error) {
          state_.Report(Line(table_.name, ": ", id), error);
          ++rows_;
          for (ExpectedEntries& index : expected_) index.AddOptional(id);
        });
    for (auto& [number, values] : long_values_) values.Finish();
    if (rows_ != definition_.row_count)
      state_.notes.Add(table_.name, ": ", definition_.row_count, " rows stored, ", rows_, " found");
    if (highest_autonumber_ && *highest_autonumber_ > definition_.last_autonumber)
      state_.notes.Add(table_.name, ": autonumber ", definition_.last_autonumber, " stored, ",
                       *highest_autonumber_, " used");
    if (table_.is_user) state_.rows += rows_;
    return std::move(expected_);
  }

 private:
  // Where the columns of an index stand among those of the table.
  struct IndexPlan {
    std::vector<std::size_t> positions;
    std::vector<const ColumnDefinition*> columns;
    bool refuses_nulls = false;
  };

  void PlanIndex(const PhysicalIndex& index) {
    IndexPlan& plan = plans_.emplace_back();
    for (const IndexColumn& column : index.columns) {
      const ColumnDefinition* found = definition_.FindColumn(column.column_number);
      plan.columns.push_back(found);
      plan.positions.push_back(static_cast<std::size_t>(found - definition_.columns.data()));
    }
    plan.refuses_nulls = index.refuses_nulls();
    const std::size_t physical = plans_.size() - 1;
    for (const LogicalIndex& logical : definition_.logical_indexes)
      plan.refuses_nulls |= logical.physical == physical && logical.kind == IndexKind::kPrimaryKey;
  }

  void Look(RowId id, ByteView bytes) {
    const StoredRow row(definition_, bytes.bytes(), bytes.number());
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const ColumnDefinition& column = definition_.columns[i];
      if (column.is_long_value())
        values_[i] = ReadLong(row, column);
      else
        values_[i] = row.Get(column);
      const auto* number = std::get_if<std::int32_t>(&values_[i]);
      if (column.is_autonumber() && number != nullptr)
        highest_autonumber_ = std::max(highest_autonumber_.value_or(*number), *number);
    }
    ++rows_;
    for (std::size_t i = 0; i < plans_.size(); ++i) Expect(i, id);
  }

  Value ReadLong(const StoredRow& row, const ColumnDefinition& column) {
    const std::optional<LongValueField> field = row.GetLongValue(column);
    if (!field) return Null{};
    Bytes bytes = long_values_.at(column.number).Read(*field);
    if (column.type == ColumnType::kMemo) return DecodeText(bytes, field->at.page);
    if (&column == properties_ && !bytes.empty()) CheckProperties(bytes);
    return bytes;
  }

  void CheckProperties(const Bytes& blob) {
    try {
      PropertyBlob::Parse(blob);
    } catch (const Error& error) {
      if (error.kind() == ErrorKind::kDamaged) state_.Report(table_.name + " properties", error);
    }
  }

  // Adds the entry that the row at hand asks of an index.
  void Expect(std::size_t physical, RowId id) {
    const IndexPlan& plan = plans_[physical];
    const PhysicalIndex& index = definition_.physical_indexes[physical];
    index_values_.clear();
    for (const std::size_t position : plan.positions) index_values_.push_back(&values_[position]);
    const auto nulls = static_cast<std::size_t>(
        std::ranges::count_if(index_values_, [](const Value* value) { return IsNull(*value); }));
    if (nulls > 0 && plan.refuses_nulls)
      state_.problems.Add(table_.name, ": ", id, ": Null in a column whose index refuses it");
    if (index.ignores_nulls() && nulls == index_values_.size()) return;
    try {
      expected_[physical].Add(id, EncodeKey(index_values_, plan.columns, index.columns), nulls > 0);
    } catch (const Error& error) {
      if (error.kind() == ErrorKind::kNotSupported) {
        expected_[physical].AddWithoutKey(id, nulls > 0);
      } else {
        state_.Report(Line(table_.name, ": ", id), error);
        expected_[physical].AddOptional(id);
      }
    }
  }

  State& state_;
  const CheckedTable& table_;
  const TableDefinition& definition_;
  std::map<std::uint16_t, LongValueCheck> long_values_;
  const ColumnDefinition* properties_ = nullptr;  // the catalog's column of property blobs
  std::vector<IndexPlan> plans_;
  Row values_;                              // of the row at hand
  std::vector<const Value*> index_values_;  // of the index at hand
  std::vector<ExpectedEntries> expected_;
  std::size_t rows_ = 0;
  std::optional<std::int32_t> highest_autonumber_;
};

}  // namespace

std::vector<ExpectedEntries> CheckRows(State& state, const CheckedTable& table) {
  return RowCheck(state, table).Run();
}

}  // namespace jet::check
