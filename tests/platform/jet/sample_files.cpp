// Reads the sample files.
#include "tests/platform/jet/sample_files.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace jet::test {
namespace {

constexpr std::uint16_t kDataPage = 0x0101;
constexpr std::uint16_t kLeafPage = 0x0104;
constexpr std::uint16_t kOffsetMask = 0x1fff;
constexpr std::uint16_t kFlagMask = 0xc000;
constexpr std::uint16_t kElsewhere = 0x4000;
constexpr std::size_t kSlotsAt = 14;
constexpr PageNumber kCatalogPage = 2;

std::vector<Page> ReadPages(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  const std::vector<char> file{std::istreambuf_iterator<char>(stream), {}};
  std::vector<Page> pages;
  std::uint32_t key = 0;
  for (std::size_t at = 0; at + kPageSize <= file.size(); at += kPageSize) {
    auto bytes = std::make_shared<PageBytes>();
    std::ranges::transform(file.begin() + static_cast<std::ptrdiff_t>(at),
                           file.begin() + static_cast<std::ptrdiff_t>(at + kPageSize),
                           bytes->begin(), [](char c) { return static_cast<std::byte>(c); });
    const auto number = static_cast<PageNumber>(pages.size());
    if (number == 0)
      key = DatabaseHeader::Parse(*bytes).page_key();
    else if (key != 0)
      ApplyPageKey(key, number, *bytes);
    pages.emplace_back(std::move(bytes), number);
  }
  return pages;
}

DatabaseHeader HeaderOf(const std::vector<Page>& pages) {
  return DatabaseHeader::Parse(pages.at(0).view().bytes().first<kPageSize>());
}

void Append(Bytes& bytes, std::span<const std::byte> part) {
  bytes.insert(bytes.end(), part.begin(), part.end());
}

}  // namespace

SampleFile::SampleFile(const std::filesystem::path& path)
    : name_(path.filename().string()), pages_(ReadPages(path)), header_(HeaderOf(pages_)) {}

Bytes SampleFile::DefinitionBytes(PageNumber first_page) const {
  Bytes bytes;
  for (PageNumber number = first_page; number != 0; number = page(number).view().U32(4)) {
    const std::size_t skipped = number == first_page ? 0 : 8;
    Append(bytes, page(number).view().Slice(skipped, kPageSize - skipped));
  }
  bytes.resize(ByteView(bytes).U32(8));
  return bytes;
}

TableDefinition SampleFile::Definition(PageNumber first_page) const {
  return ParseTableDefinition(DefinitionBytes(first_page), first_page);
}

std::map<std::u16string, PageNumber> SampleFile::Tables() const {
  const TableDefinition catalog = Definition(kCatalogPage);
  const auto column = [&catalog](const char16_t* name) {
    return *std::ranges::find(catalog.columns, name, &ColumnDefinition::name);
  };
  std::map<std::u16string, PageNumber> tables;
  for (const StoredBytes& row : Rows(kCatalogPage)) {
    const StoredRow stored(catalog, row.bytes, row.id.page);
    if (stored.Get(column(u"Type")) != Value(std::int16_t{1})) continue;
    const auto id = std::get<std::int32_t>(stored.Get(column(u"Id")));
    tables[std::get<std::u16string>(stored.Get(column(u"Name")))] = static_cast<PageNumber>(id);
  }
  return tables;
}

Bytes SampleFile::Slot(RowPointer at) const {
  const ByteView view = page(at.page).view();
  const std::size_t start = view.U16(kSlotsAt + 2u * at.row) & kOffsetMask;
  const std::size_t end =
      at.row == 0 ? kPageSize : view.U16(kSlotsAt + 2u * at.row - 2) & kOffsetMask;
  const auto bytes = view.Slice(start, end - start);
  return {bytes.begin(), bytes.end()};
}

std::vector<SampleFile::StoredBytes> SampleFile::Rows(PageNumber table) const {
  std::vector<StoredBytes> rows;
  for (const Page& data_page : pages_) {
    const ByteView view = data_page.view();
    if (view.U16(0) != kDataPage || view.U32(4) != table) continue;
    for (std::size_t row = 0; row < view.U16(12); ++row) {
      const RowPointer id{data_page.number(), static_cast<std::uint8_t>(row)};
      const unsigned flags = view.U16(kSlotsAt + 2 * row) & kFlagMask;
      if (flags == 0) rows.push_back({id, Slot(id)});
      if (flags == kElsewhere)
        rows.push_back({id, Slot(RowPointer::FromStored(ByteView(Slot(id)).U32(0)))});
    }
  }
  return rows;
}

std::vector<Bytes> SampleFile::IndexEntries(PageNumber root) const {
  std::vector<Bytes> entries;
  CollectEntries(root, 0, entries);
  return entries;
}

void SampleFile::CollectEntries(PageNumber number, int depth, std::vector<Bytes>& entries) const {
  constexpr std::size_t kBitsAt = 27;
  constexpr std::size_t kEntriesAt = 480;
  if (depth > 8) throw std::runtime_error("an index of too many levels");
  const ByteView view = page(number).view();
  const bool leaf = view.U16(0) == kLeafPage;
  const auto prefix_size = static_cast<std::ptrdiff_t>(view.U16(24));
  Bytes prefix;
  std::size_t start = kEntriesAt;
  for (std::size_t bit = 0; bit < 8 * (kEntriesAt - kBitsAt); ++bit) {
    if ((view.U8(kBitsAt + bit / 8) >> bit % 8 & 1) == 0) continue;
    Bytes entry = prefix;
    Append(entry, view.Slice(start, kEntriesAt + bit - start));
    if (prefix.empty()) prefix.assign(entry.begin(), entry.begin() + prefix_size);
    start = kEntriesAt + bit;
    if (leaf) {
      entries.push_back(std::move(entry));
      continue;
    }
    PageNumber child = 0;
    for (std::size_t i = entry.size() - 4; i < entry.size(); ++i)
      child = child << 8 | std::to_integer<PageNumber>(entry[i]);
    CollectEntries(child, depth + 1, entries);
  }
  if (!leaf) CollectEntries(view.U32(20), depth + 1, entries);
}

Bytes SampleFile::LongValue(const LongValueField& field) const {
  if (field.form == LongValueField::Form::kInline) return field.inline_bytes;
  if (field.form == LongValueField::Form::kSingle) return Slot(field.at);
  return {};
}

std::vector<SampleFile> SampleFiles() {
  const char* shared = std::getenv("ORVPAP_SHARED");
  std::vector<SampleFile> files;
  if (shared == nullptr) return files;
  for (const char* folder : {"jet/samples", "product-tables"})
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(shared) / folder))
      if (entry.path().extension() == ".mdb" || entry.path().extension() == ".pt")
        files.emplace_back(entry.path());
  return files;
}

}  // namespace jet::test
