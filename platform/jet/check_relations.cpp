// Follows enforced relationships for a file check.
#include "platform/jet/check_relations.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

#include "platform/jet/check_tables.h"
#include "platform/jet/key_encoding.h"
#include "platform/jet/row_codec.h"

namespace jet::check {
namespace {

constexpr std::uint32_t kNoNumber = 0xffffffff;

bool IsRelationEnd(const LogicalIndex& index) {
  return index.kind == IndexKind::kRelationship && index.other_number != kNoNumber;
}

// Keys of rows by some columns, as the referred index orders them.
class KeyReader {
 public:
  KeyReader(const CheckedTable& table, const PhysicalIndex& columns, const PhysicalIndex& order)
      : definition_(table.definition), order_(order.columns), values_(columns.columns.size()) {
    for (const IndexColumn& column : columns.columns)
      columns_.push_back(definition_.FindColumn(column.column_number));
    for (const Value& value : values_) pointers_.push_back(&value);
  }

  // Nothing when a column is Null. Throws kNotSupported when the key cannot be made.
  std::optional<std::string> Read(ByteView bytes) {
    const StoredRow row(definition_, bytes.bytes(), bytes.number());
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (columns_[i]->is_long_value())
        throw Error(ErrorKind::kNotSupported, "a relationship by a long value");
      values_[i] = row.Get(*columns_[i]);
      if (IsNull(values_[i])) return std::nullopt;
    }
    const Bytes key = EncodeKey(pointers_, columns_, order_);
    std::string text;
    for (const std::byte byte : key) text += static_cast<char>(byte);
    return text;
  }

 private:
  const TableDefinition& definition_;
  const std::vector<IndexColumn>& order_;
  std::vector<const ColumnDefinition*> columns_;
  Row values_;
  std::vector<const Value*> pointers_;
};

class RelationCheck {
 public:
  explicit RelationCheck(State& state) : state_(state) {}

  void Run() {
    for (const CheckedTable& table : state_.tables) {
      for (const LogicalIndex& index : table.definition.logical_indexes) {
        if (IsRelationEnd(index)) CheckEnd(table, index);
      }
    }
  }

 private:
  // The keys of a table's rows under one of its indexes; nothing when one of them cannot be made.
  using Keys = std::optional<std::unordered_set<std::string>>;

  void CheckEnd(const CheckedTable& table, const LogicalIndex& end) {
    const std::string where = table.name + " relationship " + ToUtf8(end.name);
    const CheckedTable* other = FindTable(state_, end.other_table);
    const LogicalIndex* partner = nullptr;
    if (other != nullptr) {
      for (const LogicalIndex& index : other->definition.logical_indexes) {
        if (IsRelationEnd(index) && index.number == end.other_number &&
            index.other_table == table.definition.page && index.other_number == end.number)
          partner = &index;
      }
    }
    if (partner == nullptr) {
      state_.problems.Add(where, ": the other table has no end that points back");
      return;
    }
    const auto refers = [](const LogicalIndex& index) {
      return index.side == RelationSide::kRefers || index.side == RelationSide::kRefersUnindexed;
    };
    const bool sides_fit = refers(end) ? partner->side == RelationSide::kReferredTo
                                       : end.side == RelationSide::kReferredTo && refers(*partner);
    if (!sides_fit || end.on_update != partner->on_update || end.on_delete != partner->on_delete)
      state_.problems.Add(where, ": its two ends do not agree");
    else if (refers(end))
      CheckReferences(table, end, *other, *partner, where);
  }

  void CheckReferences(const CheckedTable& child, const LogicalIndex& end,
                       const CheckedTable& parent, const LogicalIndex& partner,
                       const std::string& where) {
    const PhysicalIndex& child_index = child.definition.physical_indexes[end.physical];
    const PhysicalIndex& parent_index = parent.definition.physical_indexes[partner.physical];
    const auto same_type = [&](const IndexColumn& left, const IndexColumn& right) {
      return child.definition.FindColumn(left.column_number)->type ==
             parent.definition.FindColumn(right.column_number)->type;
    };
    if (!std::ranges::equal(child_index.columns, parent_index.columns, same_type)) {
      state_.problems.Add(where, ": its two ends have columns of different types");
      return;
    }
    const Keys& keys = KeysOf(parent, partner.physical);
    if (!keys) return;
    std::size_t lost = 0;
    RowId example;
    KeyReader reader(child, child_index, parent_index);
    ForEachRow(
        state_.pager, child,
        [&](RowId id, ByteView row) {
          const std::optional<std::string> key = reader.Read(row);
          if (!key || keys->contains(*key)) return;
          ++lost;
          example = id;
        },
        // Damaged rows are reported where all columns are read.
        [](RowId, const Error&) {});
    if (lost > 0)
      state_.problems.Add(where, ": ", lost, " rows without the row they refer to, for example ",
                          example);
  }

  const Keys& KeysOf(const CheckedTable& table, std::uint32_t physical) {
    const auto [at, is_new] = keys_.try_emplace({table.definition.page, physical});
    if (!is_new) return at->second;
    Keys& keys = at->second;
    keys.emplace();
    bool complete = true;
    const PhysicalIndex& index = table.definition.physical_indexes[physical];
    KeyReader reader(table, index, index);
    ForEachRow(
        state_.pager, table,
        [&](RowId, ByteView row) {
          if (std::optional<std::string> key = reader.Read(row)) keys->insert(std::move(*key));
        },
        [&](RowId, const Error&) { complete = false; });
    if (!complete) keys.reset();
    return keys;
  }

  State& state_;
  std::map<std::pair<PageNumber, std::uint32_t>, Keys> keys_;
};

}  // namespace

void CheckRelations(State& state) { RelationCheck(state).Run(); }

}  // namespace jet::check
