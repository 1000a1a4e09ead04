// Index keys: how the values of an index's columns become bytes that compare in index order.
// docs/jet_format.md, "Keys".
#pragma once

#include <span>
#include <string_view>

#include "platform/jet/table_definition.h"
#include "platform/jet/value.h"

namespace jet {

// Whether keys of texts under this collation can be made by this engine.
bool CanEncode(const Collation& collation);

// Whether the collation is known and every character that enters a key has a weight.
bool CanEncodeText(const Collation& collation, std::u16string_view text);

// Appends the key part of one column: flag byte and value. Null in a boolean column is false.
// kNotSupported for a collation, a character or a type (OLE, descending numeric) that this engine
// does not encode; kTypeMismatch and kOutOfRange (numeric) name the column. When it throws, `key`
// may hold a piece of the part.
void AppendKeyPart(Bytes& key, const Value& value, const ColumnDefinition& column, bool ascending);

// Cuts a key that is longer than an entry may have, and ends it with the checksum of what it lost.
void LimitKey(Bytes& key);

// The whole key of one row: parts in index order, limited.
// `values` are those of the index's columns, in index order; `columns` and `order` likewise, at
// least as many.
Bytes EncodeKey(std::span<const Value* const> values,
                std::span<const ColumnDefinition* const> columns,
                std::span<const IndexColumn> order);

// The sort key of a text, without flag byte: two texts are equal in the database when these are.
// Only the first 255 units count, and no trailing spaces. Under a collation this engine does not
// know, that of the general order. A text with characters without known weight sorts behind all
// others and equals only itself, case included, trailing spaces aside; so comparing never fails.
Bytes TextSortKey(const Collation& collation, std::u16string_view text);

}  // namespace jet
