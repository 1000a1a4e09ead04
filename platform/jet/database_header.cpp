// Page 0: recognising it, its masked fields, and the keys drawn from them.
#include "platform/jet/database_header.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <utility>

#include "platform/jet/database_header_format.h"

namespace jet {
namespace format = database_header_format;
namespace {

std::array<std::byte, 4> LittleEndian(std::uint32_t value) {
  std::array<std::byte, 4> bytes{};
  ByteEditor(bytes).SetU32(0, value);
  return bytes;
}

void ApplyHeaderMask(PageBytes& page) {
  ApplyRc4(format::kMaskKey, std::span(page).subspan(format::kMaskedAt, format::kMaskedSize));
}

// Whether the whole days of a creation date can serve as the password's mask.
bool IsCreationDate(double days) { return days >= 0 && days < 2147483648.0; }

// The password's own mask: the creation day, four bytes over and over. `page` is unmasked.
void ApplyDateMask(std::span<std::byte> password, double creation_date) {
  const auto mask = LittleEndian(static_cast<std::uint32_t>(creation_date));
  for (std::size_t i = 0; i < password.size(); ++i) password[i] ^= mask[i % mask.size()];
}

std::u16string ReadPassword(const ByteView& bytes) {
  std::u16string password;
  for (std::size_t i = 0; i < format::kPasswordUnits; ++i) {
    const char16_t unit = bytes.U16(2 * i);
    if (unit == 0) break;
    password.push_back(unit);
  }
  return password;
}

// The RC4 key of the security ids. `page` is unmasked and its password in clear.
std::array<std::byte, 4> SecurityKey(const ByteView& page) {
  std::uint32_t key = page.U32(format::kCreationDateAt);
  for (std::size_t i = 0; i < format::kSecurityKeySteps; ++i) {
    const std::uint32_t part = page.U8(format::kPasswordAt + 2 * i);
    key ^= part << (i % format::kSecurityKeyShifts);
  }
  return LittleEndian(key);
}

bool HoldsText(std::span<const std::byte> bytes, std::string_view text) {
  return std::ranges::equal(bytes, std::as_bytes(std::span(text)));
}

void CheckKind(const ByteView& page) {
  const bool is_jet_4 = std::ranges::equal(page.Slice(0, format::kMagic.size()), format::kMagic) &&
                        HoldsText(page.Slice(format::kEngineNameAt, format::kEngineName.size()),
                                  format::kEngineName) &&
                        page.U32(format::kVersionAt) == format::kVersion;
  if (!is_jet_4) throw Error(ErrorKind::kNotADatabase, "page 0 is not that of a Jet 4 database", 0);
}

// Where a new file has its maps of free and of released pages.
void SetMaps(ByteEditor& page) {
  page.SetU32(format::kFreePagesMapAt, RowPointer{1, 0}.ToStored());
  page.SetU32(format::kReleasedPagesMapAt, RowPointer{1, 1}.ToStored());
}

void SetCommitWordsIdle(ByteEditor& page) {
  for (std::size_t i = 0; i < format::kCommitWords; ++i)
    page.SetU16(format::kCommitWordsAt + 2 * i, format::kCommitIdle);
}

}  // namespace

void ApplyRc4(std::span<const std::byte> key, std::span<std::byte> bytes) {
  std::array<std::uint8_t, 256> state;
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  std::uint8_t j = 0;
  for (std::size_t i = 0; i < state.size(); ++i) {
    j = static_cast<std::uint8_t>(j + state[i] +
                                  std::to_integer<std::uint8_t>(key[i % key.size()]));
    std::swap(state[i], state[j]);
  }
  std::uint8_t i = 0;
  j = 0;
  for (std::byte& byte : bytes) {
    i = static_cast<std::uint8_t>(i + 1);
    j = static_cast<std::uint8_t>(j + state[i]);
    std::swap(state[i], state[j]);
    byte ^= std::byte{state[static_cast<std::uint8_t>(state[i] + state[j])]};
  }
}

void ApplyPageKey(std::uint32_t page_key, PageNumber number, std::span<std::byte, kPageSize> page) {
  ApplyRc4(LittleEndian(page_key ^ number), page);
}

DatabaseHeader DatabaseHeader::Parse(std::span<const std::byte, kPageSize> page) {
  CheckKind(ByteView(page, 0));
  DatabaseHeader header;
  std::ranges::copy(page, header.bytes_.begin());
  header.Decode();
  return header;
}

DatabaseHeader DatabaseHeader::New(std::u16string_view password, std::uint32_t page_key,
                                   double creation_date, Collation collation,
                                   std::uint16_t code_page) {
  if (password.size() > format::kPasswordUnits)
    throw Error(ErrorKind::kTooLong, "the password has more than 20 characters");
  if (!IsCreationDate(creation_date))
    throw Error(ErrorKind::kOutOfRange, "creation date outside what page 0 can hold");

  DatabaseHeader header;
  ByteEditor page(header.bytes_, 0);
  std::ranges::copy(format::kMagic, page.Slice(0, format::kMagic.size()).begin());
  std::ranges::copy(std::as_bytes(std::span(format::kEngineName)),
                    page.Slice(format::kEngineNameAt, format::kEngineName.size()).begin());
  page.SetU32(format::kVersionAt, format::kVersion);
  SetMaps(page);
  for (std::size_t i = 0; i < format::kSystemTables.size(); ++i)
    page.SetU32(format::kSystemTablesAt + 4 * i, format::kSystemTables[i]);
  page.SetU16(format::kCodePageAt, code_page);
  page.SetU32(format::kPageKeyAt, page_key);
  for (std::size_t i = 0; i < password.size(); ++i)
    page.SetU16(format::kPasswordAt + 2 * i, password[i]);
  ApplyDateMask(page.Slice(format::kPasswordAt, format::kPasswordSize), creation_date);
  page.SetU32(format::kBuildAt, format::kBuild);
  page.SetU16(format::kLanguageAt, collation.language);
  page.SetU8(format::kSortAt, collation.sort);
  page.SetU8(format::kCollationVersionAt, collation.version);
  page.SetU64(format::kCreationDateAt, std::bit_cast<std::uint64_t>(creation_date));
  ApplyHeaderMask(header.bytes_);
  page.SetU32(format::kConstantAt, format::kConstant);
  std::ranges::copy(std::as_bytes(std::span(format::kFormatName)),
                    page.Slice(format::kFormatNameAt, format::kFormatName.size()).begin());
  SetCommitWordsIdle(page);
  header.Decode();
  return header;
}

DatabaseHeader DatabaseHeader::ForNewFile() const {
  DatabaseHeader header = *this;
  ByteEditor page(header.bytes_, 0);
  ApplyHeaderMask(header.bytes_);
  SetMaps(page);
  ApplyHeaderMask(header.bytes_);
  SetCommitWordsIdle(page);
  header.Decode();
  return header;
}

void DatabaseHeader::Decode() {
  PageBytes clear = bytes_;
  ApplyHeaderMask(clear);
  ByteEditor editor(clear, 0);
  const ByteView view = editor.view();

  free_pages_map_ = RowPointer::FromStored(view.U32(format::kFreePagesMapAt));
  released_pages_map_ = RowPointer::FromStored(view.U32(format::kReleasedPagesMapAt));
  if (free_pages_map_ == released_pages_map_)
    throw Error(ErrorKind::kDamaged, "free and released pages share one map", 0);
  for (std::size_t i = 0; i < format::kSystemTables.size(); ++i)
    if (view.U32(format::kSystemTablesAt + 4 * i) != format::kSystemTables[i])
      throw Error(ErrorKind::kDamaged, "a system table is not on its page", 0);

  code_page_ = view.U16(format::kCodePageAt);
  page_key_ = view.U32(format::kPageKeyAt);
  collation_ = {view.U16(format::kLanguageAt), view.U8(format::kSortAt),
                view.U8(format::kCollationVersionAt)};
  const auto creation_date = std::bit_cast<double>(view.U64(format::kCreationDateAt));
  if (!IsCreationDate(creation_date))
    throw Error(ErrorKind::kDamaged, "page 0 holds no creation date", 0);

  const auto password = editor.Slice(format::kPasswordAt, format::kPasswordSize);
  ApplyDateMask(password, creation_date);
  password_ = ReadPassword(ByteView(password, 0));
  security_key_ = SecurityKey(view);
}

bool DatabaseHeader::is_suspect() const {
  const ByteView view(bytes_, 0);
  for (std::size_t i = 0; i < format::kCommitWords; ++i) {
    const std::uint16_t word = view.U16(format::kCommitWordsAt + 2 * i);
    if (word == format::kCommitWriting || word == format::kCommitMetDamage) return true;
  }
  return false;
}

Bytes DatabaseHeader::MaskSecurityId(std::span<const std::byte> id) const {
  Bytes masked(id.begin(), id.end());
  ApplyRc4(security_key_, masked);
  return masked;
}

}  // namespace jet
