// Exact decimals as text: currency amounts and the 128-bit decimals of databases.
#pragma once

#include <string>

#include "platform/text/variant.h"

namespace text {

// All digits with "." as decimal mark, without trailing zeros after it; "0" for zero.
std::string PlainDecimal(const Currency& value);
std::string PlainDecimal(const Decimal& value);

}  // namespace text
