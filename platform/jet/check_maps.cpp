// Reads usage maps for a file check, and compares the map of free pages with the owners found.
#include "platform/jet/check_maps.h"

#include <algorithm>

#include "platform/jet/bitmap.h"
#include "platform/jet/data_page.h"
#include "platform/jet/map_row.h"

namespace jet::check {
namespace {

constexpr PageNumber kGlobalMapOwner = 1;

// Calls with each page of the map that lies before `limit`. Returns whether there are more behind.
template <typename Take>
bool WalkBits(std::span<const std::byte> bits, PageNumber first, PageNumber limit, Take take) {
  std::size_t from = 0;
  for (;;) {
    const std::optional<std::size_t> bit = bitmap::First(bits, from);
    if (!bit) return false;
    const std::size_t page = first + *bit;
    if (page >= limit) return true;
    take(static_cast<PageNumber>(page));
    from = *bit + 1;
  }
}

struct MapContent {
  std::vector<PageNumber> pages;
  std::vector<PageNumber> map_pages;
  bool goes_beyond = false;  // names pages behind the end of the file
  // Of the map of free pages: ranges without map page are free as a whole.
  std::vector<bool> missing_ranges;
};

MapContent Read(const Pager& pager, RowPointer at) {
  const PageNumber limit = pager.page_count();
  MapContent content;
  const auto take = [&](PageNumber page) { content.pages.push_back(page); };
  const usage_map::MapRow row = usage_map::FindMapRow(pager, at);
  if (!row.is_reference()) {
    content.goes_beyond = WalkBits(row.bits(), row.first(), limit, take);
    return content;
  }
  std::vector<PageNumber> numbers(usage_map::kMapPages);
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = row.map_page(i);
  content.missing_ranges.resize(numbers.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    content.missing_ranges[i] = numbers[i] == 0;
    if (numbers[i] == 0) continue;
    content.map_pages.push_back(numbers[i]);
    const auto first = static_cast<PageNumber>(i) * usage_map::kPagesPerMapPage;
    if (WalkBits(usage_map::MapPageBits(pager, numbers[i]), first, limit, take))
      content.goes_beyond = true;
  }
  return content;
}

}  // namespace

void CheckDataPage(ByteView page, PageNumber owner) {
  if (page.U16(data_page::kTypeAt) != data_page::kType)
    throw Error(ErrorKind::kDamaged, "not a data page", page.number());
  if (page.U32(data_page::kOwnerAt) != owner)
    throw Error(ErrorKind::kDamaged, "a data page of another owner", page.number());
  data_page::FreeBytes(page);
}

std::vector<PageNumber> ReadMap(State& state, RowPointer at, std::string_view where) {
  MapContent content;
  state.Guard(where, [&] {
    content = Read(state.pager, at);
    const bool first_time = state.owners.OwnerOf(at.page) == 0;
    if (state.Claim(at.page, state.map_rows) && first_time)
      CheckDataPage(state.pager.View(at.page), data_page::kMapOwner);
  });
  if (content.goes_beyond)
    state.problems.Add(where, ": a usage map names pages behind the end of the file");
  if (!content.map_pages.empty()) {
    const PageOwners::Owner owner = state.owners.Name(Line("map pages of ", where));
    for (const PageNumber page : content.map_pages) state.Claim(page, owner);
  }
  return content.pages;
}

std::vector<PageNumber> ClaimPages(State& state, RowPointer owned, RowPointer with_room,
                                   std::string_view where) {
  std::vector<PageNumber> pages = ReadMap(state, owned, where);
  if (!with_room.is_null()) {
    const std::vector<PageNumber> room = ReadMap(state, with_room, where);
    if (!std::ranges::includes(pages, room))
      state.problems.Add(where, ": the map of pages with room has pages that are not owned");
  }
  const PageOwners::Owner owner = state.owners.Name(std::string(where));
  std::erase_if(pages, [&](PageNumber page) { return !state.Claim(page, owner); });
  return pages;
}

void CheckGlobalMaps(State& state) {
  const PageOwners::Owner owner = state.owners.Name("the map of free pages");
  MapContent free;
  MapContent released;
  const RowPointer free_at = state.header.free_pages_map();
  const RowPointer released_at = state.header.released_pages_map();
  const bool read = state.Guard("map of free pages", [&] {
    free = Read(state.pager, free_at);
    released = Read(state.pager, released_at);
    for (const PageNumber page : {free_at.page, released_at.page}) {
      state.Claim(page, owner);
      CheckDataPage(state.pager.View(page), kGlobalMapOwner);
    }
  });
  if (!read) return;
  for (const PageNumber page : free.map_pages) state.Claim(page, owner);
  for (const PageNumber page : released.map_pages) state.Claim(page, owner);
  if (!released.pages.empty())
    state.notes.Add(released.pages.size(), " pages are released but not yet free");

  std::vector<bool> is_free(state.owners.page_count());
  for (const PageNumber page : free.pages) is_free[page] = true;
  for (std::size_t page = 0; page < is_free.size() && !free.missing_ranges.empty(); ++page) {
    if (free.missing_ranges[page / usage_map::kPagesPerMapPage]) is_free[page] = true;
  }
  std::size_t leaked = 0;
  PageNumber example = 0;
  for (PageNumber page = 1; page < is_free.size(); ++page) {
    const PageOwners::Owner claimed = state.owners.OwnerOf(page);
    if (claimed != 0 && is_free[page])
      state.problems.Add("page ", page, " of ", state.owners.NameOf(claimed), " is marked free");
    if (claimed == 0 && !is_free[page]) {
      ++leaked;
      example = page;
    }
  }
  if (leaked > 0)
    state.notes.Add(leaked, " pages are neither owned nor free, for example ", example);
}

}  // namespace jet::check
