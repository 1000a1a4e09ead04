// Names of tables, columns, indexes and relationships: which are allowed, and when two are the
// same.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/jet/value.h"

namespace jet {

inline constexpr std::size_t kMaxNameLength = 64;  // UTF-16 units

// Bytes that two names share exactly when they mean the same object (case counts for nothing), and
// that compare in the order in which names are listed.
Bytes FoldName(std::u16string_view name);

// kBadName unless the name is 1 to 64 characters without . ! [ ] ` and control characters, and
// without a space in front.
void CheckName(std::u16string_view name);

}  // namespace jet
