// The one exception of this program that carries a classic run-time error number and its text.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace text {

// A failure as the user of a classic desktop program knows it: a number and an English description.
//
// Everything below the surface throws this type or a type derived from it when the failure has such
// a number (files: 53, 57, 61, 70, 76 ...; databases: the number of their own engine). The surface
// shows both in its error report.
class RuntimeError : public std::runtime_error {
 public:
  // `number` is shown as it is; `description` is what the user reads, without the number.
  RuntimeError(std::int32_t number, std::wstring description);

  std::int32_t number() const noexcept { return number_; }
  const std::wstring& description() const noexcept { return *description_; }
  // what() is the description as UTF-8.

 private:
  std::int32_t number_;
  std::shared_ptr<const std::wstring> description_;  // shared, so that copying cannot throw
};

// Numbers and texts that more than one part of the program raises.
inline constexpr std::int32_t kInvalidProcedureCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kInternalError = 51;

// The classic English description of one of the numbers above; empty for any other number.
std::wstring DescriptionOf(std::int32_t number);

// Throws the RuntimeError of one of the numbers above with its classic description.
[[noreturn]] void Raise(std::int32_t number);

}  // namespace text
