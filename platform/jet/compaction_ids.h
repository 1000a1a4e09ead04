// The object ids of a file and of its compacted copy: a table's id is the page of its definition.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "platform/jet/row_codec.h"

namespace jet {

class ObjectIds {
 public:
  void Add(PageNumber old_page, PageNumber new_page) { pages_[old_page] = new_page; }

  // The definition page of a table in the copy. kDamaged when there is no such table.
  PageNumber NewPage(PageNumber old_page) const;

  // An id as it is in the copy; nothing for that of a table that is gone. Objects that are no
  // tables have ids that no page has, and keep them.
  std::optional<std::int32_t> NewId(std::int32_t old_id) const;

 private:
  std::map<PageNumber, PageNumber> pages_;
};

// Where the rows of a table name objects by id, and what happens to them.
class IdColumns {
 public:
  // For the table of this name; most have no such columns. kNotSupported when such a column is
  // unlike those of every file.
  IdColumns(std::u16string_view table, const TableDefinition& definition);

  bool empty() const { return columns_.empty(); }
  bool Contains(std::uint16_t column_number) const;

  // Puts the new ids into the bytes of a row of the copy, whose definition this was made for.
  // Returns whether the row stays: one that speaks of a table that is gone does not (kDamaged when
  // it is an object itself).
  bool Translate(const ObjectIds& ids, std::span<std::byte> row) const;

 private:
  const TableDefinition* definition_;
  std::vector<const ColumnDefinition*> columns_;
  bool has_objects_ = false;
};

}  // namespace jet
