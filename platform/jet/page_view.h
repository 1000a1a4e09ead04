// The one checked way into the bytes of a page.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/jet/error.h"

namespace jet {

inline constexpr std::size_t kPageSize = 4096;

using PageBytes = std::array<std::byte, kPageSize>;

// Reads little-endian fields out of bytes on loan; a field outside them is damage (kDamaged, with
// the page's number). The bytes must outlive the view.
class ByteView {
 public:
  explicit ByteView(std::span<const std::byte> bytes, PageNumber number = kNoPage)
      : bytes_(bytes), number_(number) {}

  std::uint8_t U8(std::size_t at) const {
    Check(at, 1);
    return std::to_integer<std::uint8_t>(bytes_[at]);
  }
  std::uint16_t U16(std::size_t at) const { return static_cast<std::uint16_t>(Load(at, 2)); }
  std::uint32_t U32(std::size_t at) const { return static_cast<std::uint32_t>(Load(at, 4)); }
  std::int32_t I32(std::size_t at) const { return static_cast<std::int32_t>(U32(at)); }
  std::uint64_t U64(std::size_t at) const { return Load(at, 8); }

  // `length` bytes from `at` on.
  std::span<const std::byte> Slice(std::size_t at, std::size_t length) const {
    Check(at, length);
    return bytes_.subspan(at, length);
  }

  std::span<const std::byte> bytes() const { return bytes_; }
  std::size_t size() const { return bytes_.size(); }
  PageNumber number() const { return number_; }

 private:
  void Check(std::size_t at, std::size_t length) const {
    if (at > bytes_.size() || bytes_.size() - at < length)
      throw Error(ErrorKind::kDamaged, "field outside its page", number_);
  }
  std::uint64_t Load(std::size_t at, std::size_t length) const {
    Check(at, length);
    std::uint64_t value = 0;
    for (std::size_t i = length; i-- > 0;)
      value = value << 8 | std::to_integer<std::uint64_t>(bytes_[at + i]);
    return value;
  }

  std::span<const std::byte> bytes_;
  PageNumber number_;
};

// The writing counterpart; the same checks.
class ByteEditor {
 public:
  explicit ByteEditor(std::span<std::byte> bytes, PageNumber number = kNoPage)
      : bytes_(bytes), number_(number) {}

  void SetU8(std::size_t at, std::uint8_t value) { Store(at, 1, value); }
  void SetU16(std::size_t at, std::uint16_t value) { Store(at, 2, value); }
  void SetU32(std::size_t at, std::uint32_t value) { Store(at, 4, value); }
  void SetU64(std::size_t at, std::uint64_t value) { Store(at, 8, value); }

  // `length` writable bytes from `at` on.
  std::span<std::byte> Slice(std::size_t at, std::size_t length) {
    Check(at, length);
    return bytes_.subspan(at, length);
  }

  ByteView view() const { return ByteView(bytes_, number_); }
  PageNumber number() const { return number_; }

 private:
  void Check(std::size_t at, std::size_t length) const {
    if (at > bytes_.size() || bytes_.size() - at < length)
      throw Error(ErrorKind::kDamaged, "field outside its page", number_);
  }
  void Store(std::size_t at, std::size_t length, std::uint64_t value) {
    Check(at, length);
    for (std::size_t i = 0; i < length; ++i)
      bytes_[at + i] = static_cast<std::byte>(value >> (8 * i) & 0xff);
  }

  std::span<std::byte> bytes_;
  PageNumber number_;
};

// A page as it was when read: stays unchanged and alive while this object lives, whatever is
// written to the file meanwhile.
class Page {
 public:
  Page(std::shared_ptr<const PageBytes> bytes, PageNumber number)
      : bytes_(std::move(bytes)), number_(number) {}

  ByteView view() const { return ByteView(*bytes_, number_); }
  PageNumber number() const { return number_; }

 private:
  std::shared_ptr<const PageBytes> bytes_;
  PageNumber number_;
};

}  // namespace jet
