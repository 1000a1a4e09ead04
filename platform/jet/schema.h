// What a caller says to create tables, indexes and relationships.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/jet/value.h"

namespace jet {

struct ColumnSpec {
  std::u16string name{};
  ColumnType type = ColumnType::kLong;
  std::size_t size = 0;  // text: characters; binary: bytes; others ignore it
  bool autonumber = false;
  bool required = false;
  std::optional<bool> allow_zero_length{};  // text and memo; unset writes "allowed"
  bool compress = true;                     // text and memo may be stored in one byte a character
  std::uint8_t precision = 18;              // numeric
  std::uint8_t scale = 0;                   // numeric
};

struct IndexSpec {
  struct Column {
    std::u16string name{};
    bool ascending = true;
  };
  std::u16string name{};
  std::vector<Column> columns{};
  bool primary = false;
  bool unique = false;
  bool ignore_nulls = false;
  bool refuse_nulls = false;
};

struct TableSpec {
  std::u16string name{};
  std::vector<ColumnSpec> columns{};
  std::vector<IndexSpec> indexes{};
};

struct RelationshipSpec {
  std::u16string name{};
  std::u16string table{};  // refers
  std::vector<std::u16string> columns{};
  std::u16string referenced_table{};
  std::vector<std::u16string> referenced_columns{};
  bool enforced = true;
  bool cascade_updates = false;
  bool cascade_deletes = false;
};

}  // namespace jet
