// The small functions that every module of the surface uses: the comma splitter, the message and
// error boxes, Null-safe conversions, path and number texts. They keep no state; one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/runtime_error.h"
#include "platform/text/variant.h"

// Splits a record line at its commas; a field may stand in double quotes and then hold commas.
// Fields occupy the indexes from 1, index 0 is always empty; an empty line gives no elements at
// all. Nothing is trimmed and a doubled quote has no meaning of its own; the character after a
// closing quote is dropped. `vLine` is left holding the last field. A line whose first quoted field
// is never closed splits without end: every turn runs DoEvents, so that the program can be closed
// meanwhile.
std::vector<std::wstring> PSplit(std::wstring& vLine);

// How many fields PSplit finds, without keeping them: a damaged line may have millions. Does not
// come back from a line that PSplit does not come back from.
std::size_t PSplitCount(std::wstring_view vLine);

// A message box with the critical icon and OK. An empty title means the application title.
void ShowMessage(const std::wstring& vMessage, const std::wstring& vTitle);

// The error in hand as number and description: call it inside a catch (...) only. An error without
// a number of its own counts as 5 (std::exception, with its text), 7 (out of memory) or 51
// (anything else). Throws nothing, except that a ProcessEnding in hand is passed on.
text::RuntimeError ErrorInHand();

// Reports the error in hand: call it inside a catch (...) only. `vProcedure` is the module or
// class, ".", the procedure, and " (Sub)" or " (Function)". Shows number and description as
// ErrorInHand tells them. Throws nothing, except that a ProcessEnding in hand is passed on.
void ShowErrorMessage(const std::wstring& vProcedure);

// For a catch (...) that goes on in silence: passes a ProcessEnding in hand on and does nothing
// else.
void IgnoreError();

// The operating system's short (8.3) form of a path, or the path itself (platform/files/paths.h).
std::wstring GetShortPath(const std::wstring& vLongPath);

// True only for -1 (all bits set).
bool IsTrueValue(std::int16_t vValue);

// The user's decimal mark.
wchar_t DecimalSeparator();

// Null gives the default; anything else is converted, and what cannot be converted (or does not
// fit) gives False or 0. They never raise an error.
std::wstring NullToString(const text::Variant& vValue, const std::wstring& vDefault = L"");
bool NullToBoolean(const text::Variant& vValue, bool vDefault = false);
std::int32_t NullToLong(const text::Variant& vValue, std::int32_t vDefault = 0);
double NullToDouble(const text::Variant& vValue, double vDefault = 0);
std::int16_t NullToInteger(const text::Variant& vValue, std::int16_t vDefault = 0);
std::uint8_t NullToByte(const text::Variant& vValue, std::uint8_t vDefault = 0);

// The text so far and a line to add, with CR LF between them when neither is empty.
std::wstring AppendLine(const std::wstring& vText, const std::wstring& vLine);

// Paths may be separated by a backslash everywhere and by the system's own separator; what
// AddBackslash appends, unless there is a separator already, is the system's own.
std::wstring AddBackslash(const std::wstring& vPath);
// After the last "."; empty when there is none.
std::wstring GetExtension(const std::wstring& vFileName);
// Before and after the last separator; both empty when there is none.
std::wstring GetFolder(const std::wstring& vPath);
std::wstring GetFileName(const std::wstring& vPath);

// The whole number spelt by all digits and minus signs of the text in their order; 0 when they
// spell none.
std::int32_t ExtractNumber(const std::wstring& vText);

// Numbers in files have "." as decimal mark whatever the user's locale. A text that is no number,
// or empty, reads as 0. FormatDecimalValue gives an empty text for Null.
double ParseDecimal(const std::wstring& vText);
std::wstring FormatDecimal(double vValue);
std::wstring FormatDecimalValue(const text::Variant& vValue);

// Without the characters whose code is below 32 (tabs and line ends among them).
std::wstring StripControlChars(const std::wstring& vText);
