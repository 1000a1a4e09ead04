// Object ids and where they stand: see the header.
#include "platform/jet/compaction_ids.h"

#include <algorithm>
#include <array>

#include "platform/jet/error.h"
#include "platform/jet/object_name.h"
#include "platform/jet/system_tables.h"
#include "platform/jet/usage_map_format.h"

namespace jet {

namespace {

struct IdColumn {
  std::u16string_view table;
  std::u16string_view column;
};

// The system's own, and two that the host of newer files keeps for its list of objects. Ids of
// tables stand nowhere else in rows.
constexpr std::array kIdColumns = {
    IdColumn{u"MSysObjects", u"Id"},          IdColumn{u"MSysObjects", u"ParentId"},
    IdColumn{u"MSysACEs", u"ObjectId"},       IdColumn{u"MSysQueries", u"ObjectId"},
    IdColumn{u"MSysNavPaneObjectIDs", u"Id"}, IdColumn{u"MSysNavPaneGroupToObjects", u"ObjectID"},
};

}  // namespace

PageNumber ObjectIds::NewPage(PageNumber old_page) const {
  const auto found = pages_.find(old_page);
  if (found == pages_.end())
    throw Error(ErrorKind::kDamaged, "a relationship with a table that is not there", old_page);
  return found->second;
}

std::optional<std::int32_t> ObjectIds::NewId(std::int32_t old_id) const {
  if (old_id <= 0 || static_cast<PageNumber>(old_id) >= usage_map::kMaxPages) return old_id;
  const auto found = pages_.find(static_cast<PageNumber>(old_id));
  if (found == pages_.end()) return std::nullopt;
  return static_cast<std::int32_t>(found->second);
}

IdColumns::IdColumns(std::u16string_view table, const TableDefinition& definition)
    : definition_(&definition), has_objects_(definition.page == system_table::kObjects) {
  const Bytes table_name = FoldName(table);
  for (const IdColumn& known : kIdColumns) {
    if (FoldName(known.table) != table_name) continue;
    const Bytes column_name = FoldName(known.column);
    const auto column =
        std::find_if(definition.columns.begin(), definition.columns.end(),
                     [&](const ColumnDefinition& c) { return FoldName(c.name) == column_name; });
    if (column == definition.columns.end()) continue;
    if (column->type != ColumnType::kLong)
      throw Error(ErrorKind::kNotSupported, {std::u16string(table)},
                  "a column of object ids unlike those of other files");
    columns_.push_back(&*column);
  }
}

bool IdColumns::Contains(std::uint16_t column_number) const {
  return std::any_of(columns_.begin(), columns_.end(), [&](const ColumnDefinition* column) {
    return column->number == column_number;
  });
}

bool IdColumns::Translate(const ObjectIds& ids, std::span<std::byte> row) const {
  ByteEditor editor(row);
  const StoredRow stored(*definition_, row, kNoPage);
  for (const ColumnDefinition* column : columns_) {
    if (stored.IsNull(*column)) continue;
    // Such columns stand in the fixed area of some files and behind it in others.
    const auto at = static_cast<std::size_t>(stored.StoredBytes(*column).data() - row.data());
    const std::optional<std::int32_t> id =
        ids.NewId(static_cast<std::int32_t>(editor.view().U32(at)));
    if (!id && has_objects_)
      throw Error(ErrorKind::kDamaged, "an object whose table is not there", definition_->page);
    if (!id) return false;
    editor.SetU32(at, static_cast<std::uint32_t>(*id));
  }
  return true;
}

}  // namespace jet
