// Whole rows: where each column's bytes lie in a stored row, and building a row from values.
#include "platform/jet/row_codec.h"

#include <algorithm>
#include <array>

#include "platform/jet/stored_value.h"
#include "platform/jet/table_definition_format.h"

namespace jet {
namespace format = row_format;
namespace {

constexpr std::size_t kMaxColumns = table_definition_format::kMaxColumnNumbers;

void AppendU16(Bytes& out, std::size_t value) {
  out.push_back(static_cast<std::byte>(value & 0xff));
  out.push_back(static_cast<std::byte>(value >> 8 & 0xff));
}

void AppendLongValue(Bytes& out, const LongValueField& field) {
  const std::size_t at = out.size();
  out.resize(at + format::kLongFieldSize);
  ByteEditor editor{std::span(out).subspan(at)};
  const auto form = static_cast<std::uint32_t>(field.form);
  editor.SetU32(format::kLongLengthAt, field.length | form << format::kLongFormShift);
  editor.SetU32(format::kLongPointerAt, field.at.ToStored());
  editor.SetU32(format::kLongStampAt, field.stamp);
  out.insert(out.end(), field.inline_bytes.begin(), field.inline_bytes.end());
}

// What a row is built from, by column position: values.
class ValueSource {
 public:
  ValueSource(const TableDefinition& table, std::span<const Value> values)
      : table_(table), values_(values) {}

  std::size_t size() const { return values_.size(); }
  bool IsNull(std::size_t position) const { return jet::IsNull(values_[position]); }
  bool Boolean(std::size_t position) const {
    return BooleanOf(table_.columns[position], values_[position]);
  }
  void StoreFixed(std::span<std::byte> place, std::size_t position) const {
    StoreFixedValue(place, table_.columns[position], values_[position]);
  }
  void AppendVariable(Bytes& row, std::size_t position) const {
    AppendVariableValue(row, table_.columns[position], values_[position]);
  }

 private:
  const TableDefinition& table_;
  std::span<const Value> values_;
};

// The same: the bytes of a row that is there, of a table whose columns correspond in order.
class StoredSource {
 public:
  StoredSource(const TableDefinition& from, const StoredRow& stored)
      : from_(from), stored_(stored) {}

  std::size_t size() const { return from_.columns.size(); }
  bool IsNull(std::size_t position) const { return stored_.IsNull(from_.columns[position]); }
  bool Boolean(std::size_t position) const {
    return std::get<bool>(stored_.Get(from_.columns[position]));
  }
  void StoreFixed(std::span<std::byte> place, std::size_t position) const {
    std::ranges::copy(stored_.StoredBytes(from_.columns[position]), place.begin());
  }
  void AppendVariable(Bytes& row, std::size_t position) const {
    const std::span<const std::byte> bytes = stored_.StoredBytes(from_.columns[position]);
    row.insert(row.end(), bytes.begin(), bytes.end());
  }

 private:
  const TableDefinition& from_;
  const StoredRow& stored_;
};

// The bytes of one row, put together from front to back.
template <typename Source>
class RowBuilder {
 public:
  RowBuilder(const TableDefinition& table, const Source& source,
             std::span<const LongValueField> long_values)
      : table_(table), source_(source), long_values_(long_values) {
    CheckShape();
  }

  Bytes Build() {
    row_.reserve(kUsualRowSize);
    AppendU16(row_, column_count_);
    AppendFixedArea();
    if (table_.variable_slots > 0) AppendVariableArea();
    AppendNullMask();
    if (row_.size() > kMaxRowSize)
      throw Error(ErrorKind::kRowTooLarge, "a row of more than 4060 bytes");
    return std::move(row_);
  }

 private:
  static constexpr std::size_t kUsualRowSize = 256;
  static constexpr std::uint16_t kNoPosition = 0xffff;

  // Also fills what the parts of the row are built from.
  void CheckShape() {
    if (source_.size() != table_.columns.size())
      throw Error(ErrorKind::kTypeMismatch, "a row needs one value for each column");
    if (table_.variable_slots > kMaxColumns)
      throw Error(ErrorKind::kTooManyColumns, "more variable columns than a row can have");
    position_of_slot_.fill(kNoPosition);
    for (std::size_t i = 0; i < source_.size(); ++i) {
      const ColumnDefinition& column = table_.columns[i];
      column_count_ = std::max<std::size_t>(column_count_, column.number + std::size_t{1});
      if (column.is_long_value() && !source_.IsNull(i) && i >= long_values_.size())
        throw Error(ErrorKind::kTypeMismatch, {column.name}, "a long value without its field");
      if (column.is_fixed() || column.type == ColumnType::kBoolean) continue;
      if (column.slot >= table_.variable_slots)
        throw Error(ErrorKind::kDamaged, "a column beyond the last slot", table_.page);
      position_of_slot_[column.slot] = static_cast<std::uint16_t>(i);
    }
  }

  void AppendFixedArea() {
    std::size_t size = table_.FixedAreaSize();
    if (table_.variable_slots == 0) size = std::max(size, format::kLeastFixedArea);
    if (size > kMaxRowSize)
      throw Error(ErrorKind::kRowTooLarge, "a fixed area of more than 4060 bytes");
    row_.resize(format::kFixedAreaAt + size);
    for (std::size_t i = 0; i < source_.size(); ++i) {
      const ColumnDefinition& column = table_.columns[i];
      if (!column.is_fixed() || column.type == ColumnType::kBoolean || source_.IsNull(i)) continue;
      source_.StoreFixed(
          std::span(row_).subspan(format::kFixedAreaAt + column.fixed_offset, FixedSize(column)),
          i);
    }
  }

  void AppendVariableArea() {
    std::array<std::size_t, kMaxColumns> starts;
    for (std::size_t slot = 0; slot < table_.variable_slots; ++slot) {
      starts[slot] = row_.size();
      const std::uint16_t position = position_of_slot_[slot];
      if (position == kNoPosition || source_.IsNull(position)) continue;
      const ColumnDefinition& column = table_.columns[position];
      if (column.is_long_value())
        AppendLongValue(row_, long_values_[position]);
      else
        source_.AppendVariable(row_, position);
      // Before offsets of two bytes could not tell where a value lies.
      if (row_.size() > kMaxRowSize)
        throw Error(ErrorKind::kRowTooLarge, "a row of more than 4060 bytes");
    }
    AppendU16(row_, row_.size());
    for (std::size_t slot = table_.variable_slots; slot-- > 0;) AppendU16(row_, starts[slot]);
    AppendU16(row_, table_.variable_slots);
  }

  void AppendNullMask() {
    const std::size_t at = row_.size();
    row_.resize(at + format::NullMaskSize(column_count_));
    for (std::size_t i = 0; i < source_.size(); ++i) {
      const ColumnDefinition& column = table_.columns[i];
      const bool bit =
          column.type == ColumnType::kBoolean ? source_.Boolean(i) : !source_.IsNull(i);
      if (bit) row_[at + column.number / 8u] |= std::byte{1} << column.number % 8;
    }
  }

  const TableDefinition& table_;
  const Source& source_;
  std::span<const LongValueField> long_values_;
  std::size_t column_count_ = 0;
  std::array<std::uint16_t, kMaxColumns> position_of_slot_;
  Bytes row_;
};

}  // namespace

StoredRow::StoredRow(const TableDefinition& table, std::span<const std::byte> bytes,
                     PageNumber page)
    : view_(bytes, page) {
  const auto damaged = [page](const char* what) { throw Error(ErrorKind::kDamaged, what, page); };
  column_count_ = view_.U16(format::kColumnCountAt);
  if (column_count_ == 0 || column_count_ > table.next_column_number)
    damaged("a row with more columns than its table, or none");
  const std::size_t mask_size = format::NullMaskSize(column_count_);
  if (bytes.size() < format::kFixedAreaAt + mask_size) damaged("a row too short for its null mask");
  mask_at_ = bytes.size() - mask_size;
  fixed_end_ = mask_at_;
  if (table.variable_slots == 0) return;

  if (mask_at_ < format::kFixedAreaAt + format::kSlotCountSize)
    damaged("a row too short for its slot count");
  slot_count_ = view_.U16(mask_at_ - format::kSlotCountSize);
  const std::size_t offsets_size =
      format::kSlotCountSize + format::kOffsetSize * (slot_count_ + std::size_t{1});
  if (slot_count_ > table.variable_slots || mask_at_ < format::kFixedAreaAt + offsets_size)
    damaged("a row with more slots than its table, or too short for them");

  const std::size_t offsets_at = mask_at_ - offsets_size;
  fixed_end_ = SlotStart(0);
  std::size_t previous = format::kFixedAreaAt;
  for (std::size_t slot = 0; slot <= slot_count_; ++slot) {
    const std::size_t start = SlotStart(slot);
    if (start < previous || start > offsets_at) damaged("a row with slots out of order");
    previous = start;
  }
}

std::size_t StoredRow::SlotStart(std::size_t slot) const {
  return view_.U16(mask_at_ - format::kSlotCountSize - format::kOffsetSize * (slot + 1));
}

bool StoredRow::MaskBit(const ColumnDefinition& column) const {
  return column.number < column_count_ &&
         (view_.U8(mask_at_ + column.number / 8u) >> column.number % 8 & 1) != 0;
}

bool StoredRow::IsNull(const ColumnDefinition& column) const {
  return column.type != ColumnType::kBoolean && !MaskBit(column);
}

std::span<const std::byte> StoredRow::StoredBytes(const ColumnDefinition& column) const {
  if (column.is_fixed()) {
    const std::size_t start = format::kFixedAreaAt + column.fixed_offset;
    const std::size_t size = FixedSize(column);
    if (start + size > fixed_end_)
      throw Error(ErrorKind::kDamaged, "a row too short for a fixed column", view_.number());
    return view_.Slice(start, size);
  }
  if (column.slot >= slot_count_)
    throw Error(ErrorKind::kDamaged, "a row without the slot of a value", view_.number());
  const std::size_t start = SlotStart(column.slot);
  return view_.Slice(start, SlotStart(column.slot + std::size_t{1}) - start);
}

Value StoredRow::Get(const ColumnDefinition& column) const {
  if (column.type == ColumnType::kBoolean) return MaskBit(column);
  if (IsNull(column)) return Null{};
  return DecodeValue(column, StoredBytes(column), view_.number());
}

std::optional<LongValueField> StoredRow::GetLongValue(const ColumnDefinition& column) const {
  if (IsNull(column)) return std::nullopt;
  const ByteView bytes(StoredBytes(column), view_.number());
  const std::uint32_t stored = bytes.U32(format::kLongLengthAt);
  const std::uint32_t form = stored >> format::kLongFormShift;
  if (form > static_cast<std::uint32_t>(LongValueField::Form::kInline))
    throw Error(ErrorKind::kDamaged, "a long value of unknown form", view_.number());

  LongValueField field;
  field.form = static_cast<LongValueField::Form>(form);
  field.length = stored & format::kLongLengthMask;
  field.at = RowPointer::FromStored(bytes.U32(format::kLongPointerAt));
  field.stamp = bytes.U32(format::kLongStampAt);
  if (field.form == LongValueField::Form::kInline) {
    const auto value = bytes.Slice(format::kLongFieldSize, bytes.size() - format::kLongFieldSize);
    if (value.size() != field.length)
      throw Error(ErrorKind::kDamaged, "an inline long value of another length", view_.number());
    field.inline_bytes.assign(value.begin(), value.end());
  }
  return field;
}

Bytes BuildRow(const TableDefinition& table, std::span<const Value> values,
               std::span<const LongValueField> long_values) {
  return RowBuilder(table, ValueSource(table, values), long_values).Build();
}

Bytes RebuildRow(const TableDefinition& from, const StoredRow& stored, const TableDefinition& to,
                 std::span<const LongValueField> long_values) {
  return RowBuilder(to, StoredSource(from, stored), long_values).Build();
}

}  // namespace jet
