// Page 0: what kind of file it is, its password, page key, sort order and security ids.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/jet/page_view.h"
#include "platform/jet/row_pointer.h"
#include "platform/jet/table_definition.h"

namespace jet {

// RC4 of the key, XORed over the bytes in place.
void ApplyRc4(std::span<const std::byte> key, std::span<std::byte> bytes);

// Encodes or decodes page `number` (1 and up) of a file whose page key is not 0.
void ApplyPageKey(std::uint32_t page_key, PageNumber number, std::span<std::byte, kPageSize> page);

// The accounts whose security ids stand in the catalog, in clear.
namespace account {
inline constexpr std::array kAdmin = {std::byte{0x03}, std::byte{0x01}};
inline constexpr std::array kUsers = {std::byte{0x02}, std::byte{0x01}};
inline constexpr std::array kEngine = {std::byte{0x02}, std::byte{0x03}};
inline constexpr std::array kCreator = {std::byte{0x02}, std::byte{0x04}};
}  // namespace account

// Page 0, decoded. docs/jet_format.md, "Page 0".
class DatabaseHeader {
 public:
  // kNotADatabase for anything that is not Jet 4 (older and newer kinds, workgroup files, foreign
  // files; names left empty), kDamaged for a Jet 4 page 0 whose fields contradict the format.
  static DatabaseHeader Parse(std::span<const std::byte, kPageSize> page);

  // A new page 0. `creation_date` in days since 1899-12-30 (kOutOfRange for one that the format
  // cannot hold), `page_key` 0 for a plain file. kTooLong for a password above 20 UTF-16 units.
  static DatabaseHeader New(std::u16string_view password, std::uint32_t page_key,
                            double creation_date, Collation collation, std::uint16_t code_page);

  // The page 0 of a new file that takes this one's place: the same but for the maps, which are
  // where New puts them, and the commit words, which are idle.
  DatabaseHeader ForNewFile() const;

  // The page's bytes: those parsed or made.
  const PageBytes& bytes() const { return bytes_; }

  RowPointer free_pages_map() const { return free_pages_map_; }
  RowPointer released_pages_map() const { return released_pages_map_; }
  std::uint32_t page_key() const { return page_key_; }
  const std::u16string& password() const { return password_; }
  Collation collation() const { return collation_; }
  std::uint16_t code_page() const { return code_page_; }

  // Whether a commit word says that a writer was cut off or met a damaged page. Meant for the only
  // user of the file: a word in the middle of writing is then nobody's.
  bool is_suspect() const;

  // A security id as stored, from one in clear, and back (the same operation).
  Bytes MaskSecurityId(std::span<const std::byte> id) const;

 private:
  DatabaseHeader() = default;
  void Decode();

  PageBytes bytes_{};
  RowPointer free_pages_map_;
  RowPointer released_pages_map_;
  std::uint32_t page_key_ = 0;
  std::u16string password_;
  Collation collation_;
  std::uint16_t code_page_ = 1252;
  std::array<std::byte, 4> security_key_{};
};

}  // namespace jet
