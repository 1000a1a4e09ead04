// Property blobs: what a table and its columns declare beyond the definition (required, default
// ...).
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/jet/page_view.h"
#include "platform/jet/value.h"

namespace jet {

struct Property {
  std::u16string name;
  std::uint8_t type = 0;  // a column type code
  std::uint8_t flag = 0;  // 1: part of the definition, 0: appearance
  Bytes value;            // as stored: texts UTF-16LE, booleans one byte
};

// The properties of the object itself (kind 0, no name) or of one of its columns (kind 1).
struct PropertyGroup {
  std::uint16_t kind = 0;
  std::u16string name;
  std::vector<Property> properties;

  const Property* Find(std::u16string_view property) const;  // names without case
  bool IsFalse(std::u16string_view property) const;          // present, boolean and false
  bool IsTrue(std::u16string_view property) const;           // present, boolean and true
  std::u16string Text(std::u16string_view property) const;   // "" when missing or no text
};

// Everything a blob says, unknown properties included, in the order in which it says it.
struct PropertyBlob {
  std::vector<PropertyGroup> groups;
  // The list of names as read: real blobs list some that nothing uses any more. Serialize keeps it
  // and adds what is missing.
  std::vector<std::u16string> names;

  // kDamaged when lengths contradict each other, kNotSupported for a chunk of unknown kind.
  static PropertyBlob Parse(std::span<const std::byte> bytes);
  // kTooLong, naming the property, for a name or value whose length needs more than 16 bits.
  Bytes Serialize() const;

  const PropertyGroup* FindColumn(std::u16string_view column) const;  // names without case
  const PropertyGroup* Object() const;
};

// Properties that are part of the definition (flag 1), as rules and defaults are.
Property BooleanProperty(std::u16string name, bool value);
Property TextProperty(std::u16string name, std::u16string_view value,
                      ColumnType type = ColumnType::kMemo);

}  // namespace jet
