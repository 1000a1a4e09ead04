// What Windows says about its error codes.
#pragma once

#include <cstdint>
#include <string>

namespace text {

// The system's description of an error code (GetLastError, LSTATUS), without a line end; "error "
// and the number for a code that it does not know. Throws nothing but std::bad_alloc.
std::wstring SystemErrorText(std::uint32_t code);

}  // namespace text
