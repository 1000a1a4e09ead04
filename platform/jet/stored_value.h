// Single values inside a row being built: the half of the row codec that goes by column type.
#pragma once

#include <span>

#include "platform/jet/table_definition.h"
#include "platform/jet/value.h"

namespace jet {

// The value of a boolean column; Null is false. kTypeMismatch names the column.
bool BooleanOf(const ColumnDefinition& column, const Value& value);

// Stores a value that is not Null into the place of a fixed column, as wide as FixedSize says, and
// pads it. Errors as EncodeValue.
void StoreFixedValue(std::span<std::byte> place, const ColumnDefinition& column,
                     const Value& value);

// Appends the stored form of a value that is not Null. Errors as EncodeValue.
void AppendVariableValue(Bytes& out, const ColumnDefinition& column, const Value& value);

}  // namespace jet
