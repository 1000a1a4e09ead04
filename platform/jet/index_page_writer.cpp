// Changing one index page: entries in and out, prefixes shortened and recomputed.
#include <algorithm>
#include <optional>

#include "platform/jet/index_page.h"

namespace jet {
namespace format = index_page_format;
namespace {

std::size_t SharedSize(std::span<const std::byte> left, std::span<const std::byte> right) {
  const std::size_t limit = std::min(left.size(), right.size());
  const auto end = left.begin() + static_cast<std::ptrdiff_t>(limit);
  return static_cast<std::size_t>(std::mismatch(left.begin(), end, right.begin()).first -
                                  left.begin());
}

// Where the entries of a page end, to be put down as its bit mask.
class EntryEnds {
 public:
  EntryEnds() = default;
  explicit EntryEnds(const IndexPage& page) : count_(page.count()) {
    std::ranges::copy(page.ends(), ends_.begin());
  }

  std::size_t count() const { return count_; }
  std::size_t used() const { return count_ == 0 ? 0 : ends_[count_ - 1]; }
  std::size_t StartOf(std::size_t position) const {
    return position == 0 ? 0 : ends_[position - 1];
  }
  std::size_t EndOf(std::size_t position) const { return ends_[position]; }

  void Append(std::size_t end) { ends_[count_++] = static_cast<std::uint16_t>(end); }

  // A new entry that ends at `end`; those that follow it move by `size`.
  void Insert(std::size_t position, std::size_t end, std::size_t size) {
    std::uint16_t* const place = ends_.data() + position;
    std::copy_backward(place, ends_.data() + count_, ends_.data() + count_ + 1);
    ++count_;
    *place = static_cast<std::uint16_t>(end);
    Shift(position + 1, static_cast<int>(size));
  }

  // The entry goes, and `size` bytes with it.
  void Erase(std::size_t position, std::size_t size) {
    std::uint16_t* const place = ends_.data() + position;
    std::copy(place + 1, ends_.data() + count_, place);
    --count_;
    Shift(position, -static_cast<int>(size));
  }

  // Puts down mask, free space and prefix length.
  void Store(ByteEditor& page, std::size_t prefix_size) const {
    const std::span<std::byte> mask = page.Slice(format::kMaskAt, format::kMaskSize);
    std::ranges::fill(mask, std::byte{0});
    std::byte* const bits = mask.data();
    for (const std::uint16_t* end = ends_.data(); end != ends_.data() + count_; ++end)
      bits[*end / 8] |= static_cast<std::byte>(1U << *end % 8);
    page.SetU16(format::kFreeAt, static_cast<std::uint16_t>(format::kEntriesSize - used()));
    page.SetU16(format::kPrefixAt, static_cast<std::uint16_t>(count_ > 1 ? prefix_size : 0));
  }

 private:
  void Shift(std::size_t from, int by) {
    for (std::uint16_t* end = ends_.data() + from; end != ends_.data() + count_; ++end)
      *end = static_cast<std::uint16_t>(*end + by);
  }

  std::size_t count_ = 0;
  std::array<std::uint16_t, 8 * format::kMaskSize + 1> ends_{};
};

// The prefix under which a page's entries and one more fit the page, nothing when there is none.
// Tried in this order: the page's own, what the new entry shares of it, the longest common one.
std::optional<std::size_t> PrefixWithRoom(const IndexPage& page, std::span<const std::byte> entry) {
  const std::size_t count = page.count();
  if (count == 0)
    return entry.size() <= format::kEntriesSize ? std::optional{std::size_t{0}} : std::nullopt;
  // An entry that omitted all of its bytes would have no end of its own.
  const std::size_t kept =
      std::min({SharedSize(page.Prefix(), entry), entry.size() - 1, page.EntrySize(0) - 1});
  const std::size_t old_size = page.used() + (count - 1) * page.prefix_size();
  const auto fits = [&](std::size_t prefix) {
    return old_size + entry.size() - count * prefix <= format::kEntriesSize;
  };
  if (fits(kept)) return kept;

  const Bytes first = page.EntryBytes(0);
  std::size_t longest = std::min(SharedSize(first, entry), entry.size() - 1);
  for (std::size_t i = 0; i < count && longest > kept; ++i) {
    const Bytes other = page.EntryBytes(i);
    longest = std::min({longest, SharedSize(first, other), other.size() - 1});
  }
  if (longest > kept && fits(longest)) return longest;
  return std::nullopt;
}

}  // namespace

// Writes a run of entries, stored under a prefix of some length, as a page's content.
class EntryPacker {
 public:
  explicit EntryPacker(std::size_t prefix_size) : prefix_size_(prefix_size) {}

  void Add(const IndexPage& source, std::size_t position) {
    const IndexPage::Parts parts = source.PartsOf(position);
    const std::size_t omitted = Omitted();
    const std::size_t of_prefix = std::min(omitted, parts.prefix.size());
    Append(parts.prefix.subspan(of_prefix));
    Append(parts.rest.subspan(omitted - of_prefix));
    ends_.Append(used_);
  }

  void Add(std::span<const std::byte> entry) {
    Append(entry.subspan(Omitted()));
    ends_.Append(used_);
  }

  void Store(ByteEditor& page) const {
    std::ranges::copy(entries_, page.Slice(format::kEntriesAt, format::kEntriesSize).begin());
    ends_.Store(page, prefix_size_);
  }

 private:
  std::size_t Omitted() const { return ends_.count() == 0 ? 0 : prefix_size_; }

  void Append(std::span<const std::byte> bytes) {
    if (bytes.size() > entries_.size() - used_)
      throw Error(ErrorKind::kDamaged, "index entries too large for their page");
    std::ranges::copy(bytes, entries_.begin() + static_cast<std::ptrdiff_t>(used_));
    used_ += bytes.size();
  }

  std::size_t prefix_size_;
  std::size_t used_ = 0;
  std::array<std::byte, format::kEntriesSize> entries_{};
  EntryEnds ends_;
};

void InitializeIndexPage(ByteEditor page, bool leaf, PageNumber owner, std::uint8_t level) {
  std::ranges::fill(page.Slice(0, kPageSize), std::byte{0});
  page.SetU16(format::kTypeAt, leaf ? format::kLeaf : format::kNode);
  page.SetU16(format::kFreeAt, static_cast<std::uint16_t>(format::kEntriesSize));
  page.SetU32(format::kOwnerAt, owner);
  page.SetU8(format::kLevelAt, level);
}

bool HasRoomFor(const IndexPage& page, std::span<const std::byte> entry) {
  return PrefixWithRoom(page, entry).has_value();
}

bool InsertEntry(ByteEditor page, std::size_t position, std::span<const std::byte> entry) {
  const IndexPage old(page.view());
  const std::optional<std::size_t> prefix = PrefixWithRoom(old, entry);
  if (!prefix) return false;

  if (*prefix != old.prefix_size()) {
    EntryPacker packer(*prefix);
    for (std::size_t i = 0; i < position; ++i) packer.Add(old, i);
    packer.Add(entry);
    for (std::size_t i = position; i < old.count(); ++i) packer.Add(old, i);
    packer.Store(page);
    return true;
  }

  // The first entry holds the prefix for all: a new first one goes in behind it.
  EntryEnds ends(old);
  const std::size_t at = position == 0 ? *prefix : ends.StartOf(position);
  const std::span<const std::byte> rest = entry.subspan(*prefix);
  const std::span<std::byte> entries = page.Slice(format::kEntriesAt, format::kEntriesSize);
  const std::span<std::byte> behind = entries.subspan(at, ends.used() - at);
  std::ranges::copy_backward(
      behind, entries.begin() + static_cast<std::ptrdiff_t>(at + behind.size() + rest.size()));
  std::ranges::copy(rest, entries.begin() + static_cast<std::ptrdiff_t>(at));
  ends.Insert(position, at + rest.size(), rest.size());
  ends.Store(page, *prefix);
  return true;
}

void EraseEntry(ByteEditor page, std::size_t position) {
  const IndexPage old(page.view());
  EntryEnds ends(old);
  // The prefix stays in its place when the first of several entries goes.
  const std::size_t start =
      position == 0 && ends.count() > 1 ? old.prefix_size() : ends.StartOf(position);
  const std::size_t end = ends.EndOf(position);
  const std::span<std::byte> entries = page.Slice(format::kEntriesAt, format::kEntriesSize);
  const std::span<std::byte> behind = entries.subspan(end, ends.used() - end);
  std::ranges::copy(behind, entries.begin() + static_cast<std::ptrdiff_t>(start));
  std::ranges::fill(entries.subspan(start + behind.size(), end - start), std::byte{0});
  ends.Erase(position, end - start);
  ends.Store(page, old.prefix_size());
}

void CopyEntries(const IndexPage& source, std::size_t from, std::size_t to, ByteEditor target) {
  std::size_t longest = 0;
  if (from < to) {
    const Bytes first = source.EntryBytes(from);
    longest = first.size() - 1;
    for (std::size_t i = from + 1; i < to; ++i) {
      const Bytes other = source.EntryBytes(i);
      longest = std::min({longest, SharedSize(first, other), other.size() - 1});
    }
  }
  EntryPacker packer(longest);
  for (std::size_t i = from; i < to; ++i) packer.Add(source, i);
  packer.Store(target);
}

void StoreEntries(ByteEditor page, std::span<const Bytes> entries, std::size_t prefix_size) {
  EntryPacker packer(prefix_size);
  for (const Bytes& entry : entries) packer.Add(entry);
  packer.Store(page);
}

}  // namespace jet
