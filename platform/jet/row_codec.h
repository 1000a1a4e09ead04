// Rows as bytes: column count, fixed area, variable area, offsets and null mask.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/jet/page_view.h"
#include "platform/jet/row_format.h"
#include "platform/jet/row_pointer.h"
#include "platform/jet/table_definition.h"
#include "platform/jet/value.h"

namespace jet {

inline constexpr std::size_t kMaxRowSize = row_format::kMaxRowSize;

// A memo or OLE field as it stands in the row: twelve bytes, then the value when it is inline.
struct LongValueField {
  enum class Form : std::uint8_t { kChain = 0, kSingle = 1, kInline = 2 };
  Form form = Form::kInline;
  std::uint32_t length = 0;  // stored bytes
  RowPointer at;             // single, chain
  std::uint32_t stamp = 0;   // chain
  Bytes inline_bytes;        // inline
};

// A stored row, decoded as far as the row's own bytes go. Rows older than a column read as Null.
// Checks every offset; kDamaged with `page` otherwise. `bytes` must outlive it, `table` need not.
class StoredRow {
 public:
  StoredRow(const TableDefinition& table, std::span<const std::byte> bytes, PageNumber page);

  // A boolean is never null.
  bool IsNull(const ColumnDefinition& column) const;
  // The value of a column that is not a long value (kTypeMismatch).
  Value Get(const ColumnDefinition& column) const;
  // The field of a long-value column; nothing when Null.
  std::optional<LongValueField> GetLongValue(const ColumnDefinition& column) const;
  // The bytes a column has in this row, before decoding by type. REQUIRES that it is not Null, and
  // no boolean.
  std::span<const std::byte> StoredBytes(const ColumnDefinition& column) const;

 private:
  bool MaskBit(const ColumnDefinition& column) const;
  // Where a slot's value starts; for the slot behind the last one, where the values end.
  std::size_t SlotStart(std::size_t slot) const;

  ByteView view_;
  std::uint16_t column_count_ = 0;
  std::uint16_t slot_count_ = 0;
  std::size_t mask_at_ = 0;
  std::size_t fixed_end_ = 0;  // the fixed area lies before
};

// Builds the bytes of a row. `values` hold one value a column in stored order; `long_values` the
// fields of the long-value columns by position (ignored for others, and where the value is Null).
// Null in a boolean column is false. kRowTooLarge above kMaxRowSize; kTooLong, kOutOfRange,
// kTypeMismatch name the column.
Bytes BuildRow(const TableDefinition& table, std::span<const Value> values,
               std::span<const LongValueField> long_values);

// Builds the same row for another table, `to`, whose columns correspond to those of `from` in
// stored order and differ in number and place only. Values are taken over byte by byte, but for
// those of long-value columns, whose fields are given as above. kRowTooLarge.
Bytes RebuildRow(const TableDefinition& from, const StoredRow& stored, const TableDefinition& to,
                 std::span<const LongValueField> long_values);

// A value of one type stored alone, as fixed and variable columns hold it (not boolean, not long).
// Fixed texts are padded with spaces, fixed binaries with 00. kTooLong, kOutOfRange, kTypeMismatch
// name the column.
Bytes EncodeValue(const ColumnDefinition& column, const Value& value);
// kDamaged for bytes that are no value of the column's type.
Value DecodeValue(const ColumnDefinition& column, std::span<const std::byte> bytes,
                  PageNumber page);

// The stored bytes of a text, and back. `compress` allows the form of one byte a unit where that is
// shorter than plain UTF-16. Byte order marks in front are dropped: plain, the first of them would
// read as the mark of compressed text.
Bytes EncodeText(std::u16string_view text, bool compress);
std::u16string DecodeText(std::span<const std::byte> bytes, PageNumber page = kNoPage);
// The same, put behind what `out` holds.
void AppendText(Bytes& out, std::u16string_view text, bool compress);

// The number with as many digits behind the mark as the column has. kOutOfRange when digits would
// be lost or it has more than the column's precision.
Numeric FitNumeric(const ColumnDefinition& column, const Numeric& value);

}  // namespace jet
