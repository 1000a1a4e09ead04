// Reading and searching one index page.
#include "platform/jet/index_page.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <tuple>

namespace jet {
namespace format = index_page_format;
namespace {

std::strong_ordering CompareBytes(std::span<const std::byte> left,
                                  std::span<const std::byte> right) {
  const std::size_t shared = std::min(left.size(), right.size());
  const int order = shared == 0 ? 0 : std::memcmp(left.data(), right.data(), shared);
  if (order != 0) return order <=> 0;
  return left.size() <=> right.size();
}

void AppendBigEndian(Bytes& bytes, std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8)
    bytes.push_back(static_cast<std::byte>(value >> shift & 0xff));
}

}  // namespace

Bytes LeafEntryBytes(const IndexEntry& entry) {
  Bytes bytes;
  bytes.reserve(entry.key.size() + format::kRowSize + format::kChildSize);
  bytes = entry.key;
  AppendBigEndian(bytes, entry.row.ToStored());
  return bytes;
}

Bytes NodeEntryBytes(const IndexEntry& entry, PageNumber child) {
  Bytes bytes = LeafEntryBytes(entry);
  AppendBigEndian(bytes, child);
  return bytes;
}

IndexPage::IndexPage(ByteView page)
    : page_(page),
      leaf_(page.U16(format::kTypeAt) == format::kLeaf),
      trailer_size_(format::kRowSize + (leaf_ ? 0 : format::kChildSize)),
      prefix_size_(page.U16(format::kPrefixAt)) {
  if (!leaf_ && page.U16(format::kTypeAt) != format::kNode)
    throw Error(ErrorKind::kDamaged, "not an index page", page.number());
  if (leaf_ && (page.U8(format::kLevelAt) != 0 || page.U32(format::kTailAt) != 0))
    throw Error(ErrorKind::kDamaged, "an index leaf with a level or a tail", page.number());
  ReadEnds();
}

void IndexPage::ReadEnds() {
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  static_assert(std::endian::native == std::endian::little, "lowest byte first, as in the mask");
  const std::span<const std::byte> mask = page_.Slice(format::kMaskAt, format::kMaskSize);
  // Every search of a page begins here, so this goes by words and plain pointers. The mask has
  // fewer bits than `ends_` has places and one spare byte.
  static_assert(8 * format::kMaskSize <= std::tuple_size_v<decltype(ends_)>);
  std::uint16_t* next = ends_.data();
  for (std::size_t at = 0; at < format::kMaskSize; at += kWord) {
    std::uint64_t word = 0;
    std::memcpy(&word, mask.data() + at, std::min(kWord, format::kMaskSize - at));
    for (; word != 0; word &= word - 1)
      *next++ = static_cast<std::uint16_t>(8 * at + static_cast<unsigned>(std::countr_zero(word)));
  }
  count_ = static_cast<std::size_t>(next - ends_.data());
  if (count_ == 0) prefix_size_ = 0;

  bool sound = used() <= format::kEntriesSize;
  std::size_t start = 0;
  std::size_t least = std::max(prefix_size_, trailer_size_ + 1);
  for (const std::uint16_t* end = ends_.data(); end != next; ++end) {
    sound = sound && *end >= start + least;
    start = *end;
    // All but the first omit the prefix.
    least = trailer_size_ + 1 > prefix_size_ ? trailer_size_ + 1 - prefix_size_ : 1;
  }
  if (!sound) throw Error(ErrorKind::kDamaged, "index entries that do not fit", page_.number());
  if (page_.U16(format::kFreeAt) != format::kEntriesSize - used())
    throw Error(ErrorKind::kDamaged, "an index page with wrong free space", page_.number());
}

std::span<const std::byte> IndexPage::Prefix() const {
  return page_.Slice(format::kEntriesAt, prefix_size_);
}

IndexPage::Parts IndexPage::PartsOf(std::size_t position) const {
  if (position == 0) return {{}, page_.Slice(format::kEntriesAt, ends_[0])};
  const std::size_t start = ends_[position - 1];
  return {Prefix(), page_.Slice(format::kEntriesAt + start, ends_[position] - start)};
}

std::size_t IndexPage::EntrySize(std::size_t position) const {
  return position == 0 ? ends_[0] : prefix_size_ + ends_[position] - ends_[position - 1];
}

Bytes IndexPage::EntryBytes(std::size_t position) const {
  const Parts parts = PartsOf(position);
  Bytes bytes;
  bytes.reserve(parts.size());
  bytes.insert(bytes.end(), parts.prefix.begin(), parts.prefix.end());
  bytes.insert(bytes.end(), parts.rest.begin(), parts.rest.end());
  return bytes;
}

IndexEntry IndexPage::Entry(std::size_t position) const {
  IndexEntry entry{EntryBytes(position), Row(position)};
  entry.key.resize(entry.key.size() - trailer_size_);
  return entry;
}

RowId IndexPage::Row(std::size_t position) const { return RowOf(PartsOf(position)); }

RowId IndexPage::RowOf(const Parts& parts) const {
  const std::size_t at = KeySize(parts);
  std::uint32_t stored = 0;
  for (std::size_t i = 0; i < format::kRowSize; ++i)
    stored = stored << 8 | std::to_integer<std::uint32_t>(parts.At(at + i));
  return RowPointer::FromStored(stored);
}

PageNumber IndexPage::Child(std::size_t slot) const {
  if (slot == count_) return tail();
  const Parts parts = PartsOf(slot);
  const std::size_t at = parts.size() - format::kChildSize;
  PageNumber child = 0;
  for (std::size_t i = 0; i < format::kChildSize; ++i)
    child = child << 8 | std::to_integer<PageNumber>(parts.At(at + i));
  return child;
}

std::strong_ordering IndexPage::CompareKey(const Parts& parts,
                                           std::span<const std::byte> key) const {
  // The prefix may reach beyond the key.
  const std::size_t size = KeySize(parts);
  const std::size_t in_prefix = std::min(parts.prefix.size(), size);
  const std::size_t shared = std::min(in_prefix, key.size());
  const auto order = CompareBytes(parts.prefix.first(shared), key.first(shared));
  if (order != 0) return order;
  if (shared < in_prefix) return std::strong_ordering::greater;
  return CompareBytes(parts.rest.first(size - in_prefix), key.subspan(shared));
}

std::strong_ordering IndexPage::Compare(std::size_t position, std::span<const std::byte> key,
                                        RowId row) const {
  const Parts parts = PartsOf(position);
  const auto order = CompareKey(parts, key);
  return order != 0 ? order : RowOf(parts) <=> row;
}

bool IndexPage::HasKey(std::size_t position, std::span<const std::byte> key) const {
  return CompareKey(PartsOf(position), key) == 0;
}

std::size_t IndexPage::LowerBound(std::span<const std::byte> key, RowId row) const {
  std::size_t low = 0;
  std::size_t high = count_;
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    if (Compare(middle, key, row) < 0)
      low = middle + 1;
    else
      high = middle;
  }
  return low;
}

}  // namespace jet
