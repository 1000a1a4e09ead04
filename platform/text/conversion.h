// Conversions between Variant, numbers and texts with the rules of classic data access.
//
// Texts are read and written by the user's locale (text/locale.h). Nothing here throws for a value
// that does not convert: that is an expected answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text/variant.h"

namespace text {

// The number that a text spells, or nothing. Blanks around it are ignored; it may have one sign
// before or after its digits or stand in round brackets (negative), and an exponent after E or D.
// The locale's thousands mark is skipped wherever it stands between the whole digits, so "1.5" is
// 15 where "." is the thousands mark. Nothing for a number beyond the range of double.
std::optional<double> ParseNumber(std::wstring_view text);

// The text of a number as classic programs print it: at most 15 significant digits without trailing
// zeros, the locale's decimal mark, a leading zero; in scientific form ("1E+15",
// "3.33333333333333E-02") from 1E+15 on and where more than 15 decimals were needed.
std::wstring FormatNumber(double value);
// The same for a single: at most 7 significant digits, scientific from 1E+07 on.
std::wstring FormatSingle(float value);

// Nothing for Null, binary, GUID, and texts that are no number. True is -1.
std::optional<double> ToDouble(const Variant& value);

// As ToDouble, rounded to the nearest whole number, halves to the even one. Nothing when the result
// does not fit the type.
std::optional<std::int32_t> ToInt32(const Variant& value);
std::optional<std::int16_t> ToInt16(const Variant& value);
std::optional<std::uint8_t> ToByte(const Variant& value);

// A text is "True" or "False" in any case, or a number; a number is true unless it is zero.
std::optional<bool> ToBoolean(const Variant& value);

// The text form of any value. Null gives an empty text; truth values "True" and "False"; currency
// and decimals exactly, with the locale's decimal mark; dates "yyyy-MM-dd", with " hh:mm:ss" when
// they have a time; binary lower-case hex; a GUID "{8-4-4-4-12}" in lower case.
std::wstring ToText(const Variant& value);

}  // namespace text
