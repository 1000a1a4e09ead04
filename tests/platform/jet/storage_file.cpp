// A hand-made file image, and a check of its pages that shares no code with the engine.
#include "tests/platform/jet/storage_file.h"

#include <map>
#include <string_view>

namespace jet::test {
namespace {

constexpr std::size_t kMapRow = 69;

std::size_t U16(const PageBytes& page, std::size_t at) {
  return std::to_integer<std::size_t>(page.at(at)) | std::to_integer<std::size_t>(page.at(at + 1))
                                                         << 8;
}

std::size_t U32(const PageBytes& page, std::size_t at) {
  return U16(page, at) | U16(page, at + 2) << 16;
}

void SetU16(PageBytes& page, std::size_t at, std::size_t value) {
  page.at(at) = static_cast<std::byte>(value & 0xff);
  page.at(at + 1) = static_cast<std::byte>(value >> 8 & 0xff);
}

// A data page whose rows are all usage maps of the usual size, empty.
void MakeMapPage(PageBytes& page, std::size_t owner, std::size_t maps) {
  SetU16(page, 0, 0x0101);
  SetU16(page, 2, kPageSize - 14 - maps * (kMapRow + 2));
  SetU16(page, 4, owner);
  SetU16(page, 12, maps);
  for (std::size_t i = 0; i < maps; ++i) SetU16(page, 14 + 2 * i, kPageSize - kMapRow * (i + 1));
}

// Reads the disk for itself: a file that the engine misreads as it miswrites it is caught.
class Inspection {
 public:
  Inspection(const std::vector<PageBytes>& pages, bool leaks) : pages_(pages) {
    const std::set<PageNumber> free = Map(1, 0);
    if (!Map(1, 1).empty()) Fault("pages are left in the map of released pages");
    for (const PageNumber page : {0, 1, 2, 3, 4, 5, 6}) Own(page, "the frame");
    const std::set<PageNumber> owned = Map(6, 0);
    const std::set<PageNumber> values = Map(6, 2);
    for (const PageNumber page : Map(6, 1)) {
      if (!owned.contains(page)) Fault("page with room is not owned", page);
    }
    for (const PageNumber page : Map(6, 3)) {
      if (!values.contains(page)) Fault("long-value page with room is not owned", page);
    }
    for (const PageNumber page : owned) {
      Own(page, "the table");
      if (page < pages_.size()) CheckTablePage(page);
    }
    for (const PageNumber page : values) {
      Own(page, "the column");
      if (page < pages_.size()) CheckSlots(page, 0x4c41564c);
    }
    CheckSlots(1, 1);
    CheckSlots(6, 0);
    for (const auto& [target, home] : pointers_) {
      if (!hidden_.contains(target)) Fault("pointer to no hidden row", home >> 8);
    }
    if (leaks && pointers_.size() != hidden_.size()) Fault("hidden rows without pointer");
    for (PageNumber page = 0; page < pages_.size(); ++page) {
      if (owners_.contains(page) && free.contains(page)) Fault("owned and free", page);
      if (leaks && !owners_.contains(page) && !free.contains(page)) Fault("leaked", page);
    }
  }

  std::vector<std::string> faults;

 private:
  void Fault(std::string_view text, std::size_t page = kNoPage) {
    faults.push_back(std::string(text) + " (page " + std::to_string(page) + ")");
  }

  void Own(PageNumber page, const std::string& owner) {
    if (page >= pages_.size()) Fault("owned behind the end", page);
    const auto [at, is_new] = owners_.emplace(page, owner);
    if (!is_new) Fault("owned by " + at->second + " and by " + owner, page);
  }

  static void AddBits(std::set<PageNumber>& to, std::span<const std::byte> bits,
                      std::size_t first) {
    for (std::size_t i = 0; i < bits.size() * 8; ++i) {
      if ((std::to_integer<unsigned>(bits[i / 8]) >> (i % 8) & 1U) != 0)
        to.insert(static_cast<PageNumber>(first + i));
    }
  }

  std::set<PageNumber> Map(PageNumber number, std::size_t row) {
    const PageBytes& page = pages_.at(number);
    const std::size_t start = U16(page, 14 + 2 * row);
    const std::size_t end = row == 0 ? kPageSize : U16(page, 12 + 2 * row);
    std::set<PageNumber> set;
    if (page.at(start) == std::byte{0}) {
      AddBits(set, std::span(page).subspan(start + 5, end - start - 5), U32(page, start + 1));
      return set;
    }
    if (end - start != kMapRow) Fault("map in reference form of another size", number);
    for (std::size_t i = 0; i < 17; ++i) {
      const auto map_page = static_cast<PageNumber>(U32(page, start + 1 + 4 * i));
      if (map_page == 0) continue;
      if (map_page >= pages_.size() || U32(pages_[map_page], 0) != 0x0105) {
        Fault("no map page", map_page);
        continue;
      }
      Own(map_page, "a map");
      AddBits(set, std::span(pages_[map_page]).subspan(4), 32736 * i);
    }
    return set;
  }

  void CheckSlots(PageNumber number, std::size_t owner) {
    const PageBytes& page = pages_.at(number);
    if (U16(page, 0) != 0x0101) Fault("no data page", number);
    if (U32(page, 4) != owner) Fault("another's page", number);
    const std::size_t count = U16(page, 12);
    if (count > 255) Fault("too many slots", number);
    std::size_t lowest = kPageSize;
    for (std::size_t row = 0; row < count && row <= 255; ++row) {
      const std::size_t start = U16(page, 14 + 2 * row) & 0x1fff;
      if (start > lowest) Fault("offsets rise", number);
      if ((U16(page, 14 + 2 * row) & 0xc000) == 0xc000 && start != lowest)
        Fault("a deleted row has bytes", number);
      lowest = start;
    }
    if (lowest < 14 + 2 * count) Fault("rows over slots", number);
    if (U16(page, 2) != lowest - 14 - 2 * count) Fault("wrong free bytes", number);
  }

  void CheckTablePage(PageNumber number) {
    CheckSlots(number, StorageFile::kTable);
    const PageBytes& page = pages_.at(number);
    for (std::size_t row = 0; row < U16(page, 12); ++row) {
      const std::size_t slot = U16(page, 14 + 2 * row);
      const auto at = static_cast<std::uint32_t>(number << 8 | row);
      if ((slot & 0xe000) == 0x8000) hidden_.insert(at);
      if ((slot & 0xe000) != 0x4000) continue;
      const auto target = static_cast<std::uint32_t>(U32(page, slot & 0x1fff));
      if (!pointers_.emplace(target, at).second) Fault("two pointers to one row", number);
      if (target >> 8 == number) Fault("a row moved within its page", number);
    }
  }

  const std::vector<PageBytes>& pages_;
  std::map<PageNumber, std::string> owners_;
  std::map<std::uint32_t, std::uint32_t> pointers_;  // target, home
  std::set<std::uint32_t> hidden_;
};

}  // namespace

StorageFile::StorageFile() : disk_(std::make_shared<MemoryDisk>()) {
  disk_->Resize(kFirstFreePage);
  MakeMapPage(disk_->Page(1), 1, 2);
  MakeMapPage(disk_->Page(6), 0, 4);
  PageBytes& global = disk_->Page(1);
  for (std::size_t i = 0; i < 64; ++i)
    global[kPageSize - 64 + i] = i == 0 ? std::byte{0x80} : std::byte{0xff};
  Reopen();
}

void StorageFile::Reopen() {
  constexpr std::size_t kCachePages = 16;
  allocator_.reset();
  pager_.reset();
  pager_ = std::make_unique<Pager>(std::make_unique<MemoryPageStore>(disk_), 0, kCachePages);
  allocator_ = std::make_unique<PageAllocator>(*pager_);
}

std::vector<std::string> StorageFile::Faults(bool leaks) const {
  const std::vector<PageBytes> pages = disk_->Snapshot();
  return Inspection(pages, leaks).faults;
}

void StorageFile::Load(const std::vector<PageBytes>& pages) {
  disk_->Heal();
  disk_->Resize(static_cast<PageNumber>(pages.size()));
  for (PageNumber page = 0; page < pages.size(); ++page) disk_->Page(page) = pages[page];
  Reopen();
}

Bytes TestBytes(std::uint32_t number, std::size_t length) {
  Bytes bytes(length);
  for (std::size_t i = 0; i < length; ++i)
    bytes[i] = static_cast<std::byte>(i < 4 ? number >> (8 * i) & 0xff : (number + i) * 37 & 0xff);
  return bytes;
}

}  // namespace jet::test
