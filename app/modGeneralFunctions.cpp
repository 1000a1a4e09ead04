// The small functions that every module of the surface uses.
#include "app/modGeneralFunctions.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <new>
#include <string_view>
#include <thread>

#include "app/modShared.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "platform/text/conversion.h"
#include "platform/text/locale.h"
#include "platform/text/runtime_error.h"
#include "platform/text/strings.h"

namespace {

constexpr wchar_t kLineEnd[] = L"\r\n";
constexpr std::int32_t kErrorHeadingText = 104;
constexpr std::chrono::milliseconds kEndlessPause{10};  // so that an endless loop wears nothing out
constexpr std::size_t kNotFound = std::wstring_view::npos;

// Position of the last separator of a path, or kNotFound.
std::size_t LastSeparator(const std::wstring& vPath) {
  const auto found = std::find_if(vPath.rbegin(), vPath.rend(), files::IsSeparator);
  return found == vPath.rend() ? kNotFound : static_cast<std::size_t>(vPath.rend() - found) - 1;
}

// Remembers where a character next occurs in a text that is consumed from the left, so that asking
// at every field reads the text once and not once a field.
class NextOccurrence {
 public:
  NextOccurrence(std::wstring_view vText, wchar_t vCharacter)
      : m_text(vText), m_character(vCharacter), m_found(vText.find(vCharacter)) {}

  // The first occurrence at or after `vFrom`, or kNotFound. Never ask for an earlier place than
  // before.
  std::size_t From(std::size_t vFrom) {
    if (m_found != kNotFound && m_found < vFrom) m_found = m_text.find(m_character, vFrom);
    return m_found;
  }

 private:
  std::wstring_view m_text;
  wchar_t m_character;
  std::size_t m_found;
};

std::wstring_view WithoutEnds(std::wstring_view vText) { return vText.substr(1, vText.size() - 2); }

// Splits `vRest`, which is not empty, and calls `vAdd` with one field after the other; what remains
// for the last field is left in `vRest`.
template <class Add>
void SplitFields(std::wstring_view& vRest, const Add& vAdd) {
  constexpr wchar_t kQuote = L'"';
  const std::wstring_view line = vRest;
  NextOccurrence commas(line, L',');
  NextOccurrence quotes(line, kQuote);
  std::size_t at = 0;             // the part of the line that is left: from here
  std::size_t end = line.size();  // to here
  for (std::size_t comma = commas.From(at); comma != kNotFound; comma = commas.From(at)) {
    const std::size_t quote = quotes.From(at);
    if (quote == kNotFound || quote > comma) {
      vAdd(line.substr(at, comma - at));
      at = comma + 1;
      continue;
    }
    const std::size_t closing = line.find(kQuote, quote + 1);
    if (closing == kNotFound) {
      // Nothing was consumed and nothing ever will be: this loop ends only by what DoEvents throws.
      for (;; std::this_thread::sleep_for(kEndlessPause)) DoEvents();
    }
    if (closing == end - 1) {
      ++at;
      --end;
      break;
    }
    vAdd(WithoutEnds(line.substr(at, closing + 1 - at)));
    at = closing + 2;  // the character after the closing quote goes too
  }
  vRest = line.substr(at, end - at);
  const std::size_t quote = vRest.find(kQuote);
  if (quote != kNotFound && vRest.find(kQuote, quote + 1) != kNotFound) vRest = WithoutEnds(vRest);
  vAdd(vRest);
}

}  // namespace

text::RuntimeError ErrorInHand() {
  using text::DescriptionOf;
  try {
    throw;
  } catch (const ProcessEnding&) {
    throw;
  } catch (const text::RuntimeError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return {text::kOutOfMemory, DescriptionOf(text::kOutOfMemory)};
  } catch (const std::exception& error) {
    return {text::kInvalidProcedureCall, text::Utf8ToWide(error.what())};
  } catch (...) {
    return {text::kInternalError, DescriptionOf(text::kInternalError)};
  }
}

std::vector<std::wstring> PSplit(std::wstring& vLine) {
  std::vector<std::wstring> fields;
  try {
    if (vLine.empty()) return fields;
    std::wstring_view rest = vLine;
    fields.emplace_back();
    SplitFields(rest, [&](std::wstring_view vField) { fields.emplace_back(vField); });
    vLine = std::wstring(rest);
  } catch (...) {
    ShowErrorMessage(L"modGeneralFunctions.PSplit (Function)");
  }
  return fields;
}

std::size_t PSplitCount(std::wstring_view vLine) {
  std::size_t count = 0;
  if (!vLine.empty()) SplitFields(vLine, [&](std::wstring_view) { ++count; });
  return count;
}

void ShowMessage(const std::wstring& vMessage, const std::wstring& vTitle) {
  const SharedSettings& shared = Shared();
  shared.objPrompt->ShowMessage(vMessage, vTitle.empty() ? shared.strApplicationTitle : vTitle);
}

void ShowErrorMessage(const std::wstring& vProcedure) {
  try {
    const text::RuntimeError error = ErrorInHand();
    const std::wstring heading = text::ReplaceAll(LanguageText(kErrorHeadingText), L"/p", kLineEnd);
    const std::wstring detail = L"Procedure = " + vProcedure + kLineEnd + L"Error = " +
                                std::to_wstring(error.number()) + L": " + error.description();
    ShowMessage(heading + kLineEnd + kLineEnd + detail, L"");
  } catch (const ProcessEnding&) {
    throw;
  } catch (...) {
    // Not even the report could be made: say so where that needs no memory.
    std::fputs("An error could not be reported.\n", stderr);
  }
}

void IgnoreError() {
  try {
    throw;
  } catch (const ProcessEnding&) {
    throw;
  } catch (...) {  // NOLINT(bugprone-empty-catch): to ignore is what the caller asks for
  }
}

std::wstring GetShortPath(const std::wstring& vLongPath) { return files::ShortPath(vLongPath); }

bool IsTrueValue(std::int16_t vValue) { return vValue == -1; }

wchar_t DecimalSeparator() { return text::CurrentLocale().decimal_mark; }

std::wstring NullToString(const text::Variant& vValue, const std::wstring& vDefault) {
  return vValue.IsNull() ? vDefault : text::ToText(vValue);
}

bool NullToBoolean(const text::Variant& vValue, bool vDefault) {
  return vValue.IsNull() ? vDefault : text::ToBoolean(vValue).value_or(false);
}

std::int32_t NullToLong(const text::Variant& vValue, std::int32_t vDefault) {
  return vValue.IsNull() ? vDefault : text::ToInt32(vValue).value_or(0);
}

double NullToDouble(const text::Variant& vValue, double vDefault) {
  return vValue.IsNull() ? vDefault : text::ToDouble(vValue).value_or(0);
}

std::int16_t NullToInteger(const text::Variant& vValue, std::int16_t vDefault) {
  return vValue.IsNull() ? vDefault : text::ToInt16(vValue).value_or(std::int16_t{0});
}

std::uint8_t NullToByte(const text::Variant& vValue, std::uint8_t vDefault) {
  return vValue.IsNull() ? vDefault : text::ToByte(vValue).value_or(std::uint8_t{0});
}

std::wstring AppendLine(const std::wstring& vText, const std::wstring& vLine) {
  return vText.empty() || vLine.empty() ? vText + vLine : vText + kLineEnd + vLine;
}

std::wstring AddBackslash(const std::wstring& vPath) {
  if (!vPath.empty() && files::IsSeparator(vPath.back())) return vPath;
  return vPath + files::Separator();
}

std::wstring GetExtension(const std::wstring& vFileName) {
  const std::size_t dot = vFileName.rfind(L'.');
  return dot == kNotFound ? L"" : vFileName.substr(dot + 1);
}

std::wstring GetFolder(const std::wstring& vPath) {
  const std::size_t separator = LastSeparator(vPath);
  return separator == kNotFound ? L"" : vPath.substr(0, separator);
}

std::wstring GetFileName(const std::wstring& vPath) {
  const std::size_t separator = LastSeparator(vPath);
  return separator == kNotFound ? L"" : vPath.substr(separator + 1);
}

std::int32_t ExtractNumber(const std::wstring& vText) {
  std::wstring digits;
  std::copy_if(vText.begin(), vText.end(), std::back_inserter(digits),
               [](wchar_t c) { return (c >= L'0' && c <= L'9') || c == L'-'; });
  return text::ToInt32(digits).value_or(0);
}

double ParseDecimal(const std::wstring& vText) {
  return NullToDouble(
      text::ReplaceAll(text::Trim(vText), L".", std::wstring(1, DecimalSeparator())));
}

std::wstring FormatDecimal(double vValue) {
  return text::ReplaceAll(text::Trim(text::FormatNumber(vValue)),
                          std::wstring(1, DecimalSeparator()), L".");
}

std::wstring FormatDecimalValue(const text::Variant& vValue) {
  return vValue.IsNull() ? L"" : FormatDecimal(NullToDouble(vValue));
}

std::wstring StripControlChars(const std::wstring& vText) {
  constexpr wchar_t kFirstPrintable = 32;
  std::wstring text = vText;
  std::erase_if(text, [](wchar_t c) { return c < kFirstPrintable; });
  return text;
}
