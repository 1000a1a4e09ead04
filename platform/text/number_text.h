// The characters of numbers, free of any locale: digits and exponent on one side, double on the
// other. conversion.h puts the user's marks in.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace text {

// The classic form of a number with at most `digits` significant digits and "." as decimal mark;
// scientific where the whole part or the decimals would need more than `digits` digits.
std::string PlainNumber(double value, int digits);
std::string PlainNumber(float value, int digits);

// The number that "[-]digits[.digits][e[+-]digits]" spells (at least one digit before the
// exponent); too small a number is 0. Nothing when it does not follow that form to its end or is
// too large.
std::optional<double> ReadPlainNumber(std::string_view text);

}  // namespace text
