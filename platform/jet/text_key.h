// The sort keys of texts under the orders that this engine knows.
#pragma once

#include <string_view>

#include "platform/jet/collation.h"
#include "platform/jet/value.h"

namespace jet {

// The part of a text that enters its key.
std::u16string_view SignificantText(std::u16string_view text);

// Whether each of these characters has a known weight.
bool HasWeights(std::u16string_view text);

// Appends the ascending key of a text, its closing byte included. False when a character has no
// known weight; `key` is then as it was. `order` is not kUnknown.
bool AppendTextKey(Bytes& key, KeyOrder order, std::u16string_view text);

}  // namespace jet
