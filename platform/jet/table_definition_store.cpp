// Definitions joined from their pages and laid out over them.
#include "platform/jet/table_definition_store.h"

#include <algorithm>
#include <span>

#include "platform/jet/table_definition_format.h"

namespace jet {

namespace format = table_definition_format;

namespace {

// Longest definition that the limits on columns, indexes and names allow, in pages, with a margin.
constexpr std::size_t kMaxChain = 64;

constexpr std::size_t kBytesOfFurtherPage = kPageSize - format::kPageHeaderSize;

// Pages that a definition of this length occupies.
std::size_t PagesFor(std::size_t length) {
  const std::size_t used = length + format::kReserve;
  if (used <= kPageSize) return 1;
  return 1 + (used - kPageSize + kBytesOfFurtherPage - 1) / kBytesOfFurtherPage;
}

[[noreturn]] void ThrowDamaged(const char* detail, PageNumber page) {
  throw Error(ErrorKind::kDamaged, detail, page);
}

void Patch(Pager& pager, PageNumber page, std::size_t at, std::uint32_t value) {
  if (pager.View(page).U32(at) != value) pager.Edit(page).SetU32(at, value);
}

}  // namespace

std::vector<PageNumber> TableDefinitionPages(const Pager& pager, PageNumber page) {
  std::vector<PageNumber> pages;
  for (PageNumber next = page; next != 0 || pages.empty();) {
    const ByteView view = pager.View(next);
    if (view.U16(format::kPageTypeAt) != format::kPageType)
      ThrowDamaged("a table definition on a page of another type", next);
    if (pages.size() == kMaxChain) ThrowDamaged("a table definition that does not end", page);
    pages.push_back(next);
    next = view.U32(format::kNextPageAt);
  }
  return pages;
}

TableDefinition ReadTableDefinition(const Pager& pager, PageNumber page) {
  const std::vector<PageNumber> pages = TableDefinitionPages(pager, page);
  Bytes bytes;
  bytes.reserve(pages.size() * kPageSize);
  for (const PageNumber number : pages) {
    const ByteView view = pager.View(number);
    const std::size_t from = bytes.empty() ? 0 : format::kPageHeaderSize;
    const auto part = view.Slice(from, kPageSize - from);
    bytes.insert(bytes.end(), part.begin(), part.end());
  }
  const std::size_t length = ByteView(bytes, page).U32(format::kLengthAt);
  if (length > bytes.size() || PagesFor(length) != pages.size())
    ThrowDamaged("a table definition whose pages do not fit its length", page);
  bytes.resize(length);
  return ParseTableDefinition(bytes, page);
}

void WriteTableDefinition(Pager& pager, PageAllocator& allocator,
                          const TableDefinition& definition) {
  const Bytes bytes = SerializeTableDefinition(definition);
  const bool is_new = pager.View(definition.page).U16(format::kPageTypeAt) != format::kPageType;
  const std::vector<PageNumber> old_pages =
      is_new ? std::vector{definition.page} : TableDefinitionPages(pager, definition.page);
  std::vector<PageNumber> pages(PagesFor(bytes.size()), definition.page);
  if (pages.size() > kMaxChain)
    throw Error(ErrorKind::kNotSupported, "a table definition beyond its limits", definition.page);
  std::generate(pages.begin() + 1, pages.end(), [&allocator] { return allocator.Take(); });

  std::span<const std::byte> left(bytes);
  std::size_t used = bytes.size() + format::kReserve;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    // The first page's own header is part of the definition's bytes.
    const std::size_t from = i == 0 ? 0 : format::kPageHeaderSize;
    const auto part = left.first(std::min(left.size(), kPageSize - from));
    left = left.subspan(part.size());
    const std::size_t used_here = std::min(used, kPageSize - from);
    used -= used_here;
    ByteEditor page = pager.Edit(pages[i]);
    std::ranges::fill(page.Slice(0, kPageSize), std::byte{0});
    std::ranges::copy(part, page.Slice(from, part.size()).begin());
    page.SetU16(format::kPageTypeAt, format::kPageType);
    page.SetU16(format::kFreeSpaceAt, static_cast<std::uint16_t>(kPageSize - from - used_here));
    page.SetU32(format::kNextPageAt, i + 1 < pages.size() ? pages[i + 1] : 0);
  }
  for (std::size_t i = 1; i < old_pages.size(); ++i) allocator.Release(old_pages[i]);
}

void PatchRowCount(Pager& pager, PageNumber page, std::uint32_t rows) {
  Patch(pager, page, RowCountOffset(), rows);
}

void PatchLastAutonumber(Pager& pager, PageNumber page, std::int32_t last) {
  Patch(pager, page, LastAutonumberOffset(), static_cast<std::uint32_t>(last));
}

void PatchDistinctCount(Pager& pager, PageNumber page, std::size_t physical_index,
                        std::uint32_t keys) {
  Patch(pager, page, DistinctCountOffset(physical_index), keys);
}

}  // namespace jet
