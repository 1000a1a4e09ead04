// Numbers and texts of the run-time errors that several parts raise.
#include "platform/text/runtime_error.h"

#include <utility>

#include "platform/text/code_page.h"

namespace text {

RuntimeError::RuntimeError(std::int32_t number, std::wstring description)
    : std::runtime_error(WideToUtf8(description)),
      number_(number),
      description_(std::make_shared<const std::wstring>(std::move(description))) {}

std::wstring DescriptionOf(std::int32_t number) {
  switch (number) {
    case kInvalidProcedureCall:
      return L"Invalid procedure call or argument";
    case kOverflow:
      return L"Overflow";
    case kOutOfMemory:
      return L"Out of memory";
    case kTypeMismatch:
      return L"Type mismatch";
    case kInternalError:
      return L"Internal error";
    default:
      return {};
  }
}

void Raise(std::int32_t number) { throw RuntimeError(number, DescriptionOf(number)); }

}  // namespace text
