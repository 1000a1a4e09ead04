// Long values: single rows on shared pages, and chains of rows on pages of their own.
#include "platform/jet/long_value_store.h"

#include <algorithm>
#include <random>

#include "platform/jet/long_value_format.h"

namespace jet {
namespace {

// Shared pages looked at for a value before a new one is taken. They stay in the map although one
// value did not fit, so there may be many of them.
constexpr int kPageTries = 8;

// A chain's stamp: new for each chain, so that a pointer left over from an old one does not fit.
std::uint32_t NewStamp() {
  static std::mt19937 generator{std::random_device{}()};
  const auto stamp = static_cast<std::uint32_t>(generator());
  return stamp == 0 ? 1 : stamp;
}

[[noreturn]] void ThrowDamaged(const char* detail, PageNumber page) {
  throw Error(ErrorKind::kDamaged, detail, page);
}

}  // namespace

LongValueStore::LongValueStore(Pager& pager, PageAllocator& allocator, const LongValueMaps& maps)
    : pager_(pager),
      allocator_(allocator),
      maps_(maps),
      owned_(pager, allocator, maps.owned, MapKind::kOwned) {}

std::optional<UsageMap> LongValueStore::with_room() const {
  if (maps_.with_room.is_null()) return std::nullopt;
  return UsageMap(pager_, allocator_, maps_.with_room, MapKind::kHint);
}

std::span<const std::byte> LongValueStore::RowAt(RowPointer at) const {
  const ByteView page = pager_.View(at.page);
  const data_page::Slot slot = data_page::SlotAt(page, at.row);
  if (!data_page::IsOwnedBy(page, data_page::kLongValueOwner) || !slot.is_row())
    ThrowDamaged("a long value that is not where it should be", at.page);
  return data_page::RowBytes(page, slot);
}

template <typename Take>
void LongValueStore::WalkChain(const LongValueField& field, Take take) const {
  // A value longer than the file runs in a circle; so the walk ends in time on any file.
  if (field.length / kPageSize > pager_.page_count())
    ThrowDamaged("a long value longer than the file", field.at.page);
  std::size_t left = field.length;
  RowPointer at = field.at;
  RowAt(at);
  if (pager_.View(at.page).U32(data_page::kStampAt) != field.stamp)
    ThrowDamaged("a long value with another stamp than its page", at.page);
  while (!at.is_null()) {
    const ByteView row(RowAt(at), at.page);
    const RowPointer next = RowPointer::FromStored(row.U32(long_value::kNextAt));
    const std::size_t length = row.size() - long_value::kDataAt;
    if (length == 0 || length > left)
      ThrowDamaged("a long value whose chain does not fit its length", at.page);
    left -= length;
    take(at, row.Slice(long_value::kDataAt, length));
    at = next;
  }
  if (left != 0) ThrowDamaged("a long value whose chain ends early", field.at.page);
}

Bytes LongValueStore::Read(const LongValueField& field) const {
  if (field.form == LongValueField::Form::kInline) {
    if (field.inline_bytes.size() != field.length)
      ThrowDamaged("a long value that does not fit its length", kNoPage);
    return field.inline_bytes;
  }
  if (field.form == LongValueField::Form::kSingle) {
    const std::span<const std::byte> row = RowAt(field.at);
    if (row.size() != field.length)
      ThrowDamaged("a long value that does not fit its length", field.at.page);
    return Bytes(row.begin(), row.end());
  }
  Bytes bytes;
  WalkChain(field, [&bytes](RowPointer, std::span<const std::byte> data) {
    bytes.insert(bytes.end(), data.begin(), data.end());
  });
  return bytes;
}

LongValueField LongValueStore::WriteCopy(std::span<const std::byte> bytes,
                                         LongValueField::Form form) {
  // Other writers put up to a whole page into a single row.
  if (form == LongValueField::Form::kSingle && bytes.size() > long_value::kMaxSingle)
    return WriteSingle(bytes);
  return Write(bytes, bytes.size(), form == LongValueField::Form::kInline);
}

LongValueField LongValueStore::Write(std::span<const std::byte> bytes,
                                     std::size_t uncompressed_length, bool may_inline) {
  if (bytes.size() > long_value::kMaxLength)
    throw Error(ErrorKind::kTooLong, "a long value beyond the largest");
  const std::size_t length = std::max(bytes.size(), uncompressed_length);
  if (bytes.empty() || (may_inline && length <= long_value::kMaxInline)) {
    LongValueField field;
    field.length = static_cast<std::uint32_t>(bytes.size());
    field.inline_bytes.assign(bytes.begin(), bytes.end());
    return field;
  }
  return length <= long_value::kMaxSingle ? WriteSingle(bytes) : WriteChain(bytes);
}

LongValueField LongValueStore::WriteSingle(std::span<const std::byte> bytes) {
  const PageNumber number = PageFor(bytes.size());
  ByteEditor page = pager_.Edit(number, WriteOrder::kAdditions);
  LongValueField field;
  field.form = LongValueField::Form::kSingle;
  field.length = static_cast<std::uint32_t>(bytes.size());
  field.at = {number, data_page::AddRow(page, bytes)};
  if (auto shared = with_room()) {
    if (data_page::FreeBytes(page.view()) <= long_value::kFewFreeBytes) {
      shared->Remove(number);
    } else {
      shared->Add(number);
    }
  }
  return field;
}

LongValueField LongValueStore::WriteChain(std::span<const std::byte> bytes) {
  const std::size_t rows =
      (bytes.size() + long_value::kMaxChainData - 1) / long_value::kMaxChainData;
  std::vector<PageNumber> pages(rows);
  std::ranges::generate(pages, [this] { return TakePage(); });
  LongValueField field;
  field.form = LongValueField::Form::kChain;
  field.length = static_cast<std::uint32_t>(bytes.size());
  field.at = {pages.front(), 0};
  field.stamp = NewStamp();
  Bytes row;
  for (std::size_t i = 0; i < rows; ++i) {
    const std::size_t from = i * long_value::kMaxChainData;
    const auto data = bytes.subspan(from, std::min(long_value::kMaxChainData, bytes.size() - from));
    const RowPointer next = i + 1 < rows ? RowPointer{pages[i + 1], 0} : RowPointer{};
    row.assign(long_value::kDataAt, std::byte{0});
    ByteEditor(row).SetU32(long_value::kNextAt, next.ToStored());
    row.insert(row.end(), data.begin(), data.end());
    ByteEditor page = pager_.Edit(pages[i]);
    data_page::AddRow(page, row);
    if (i == 0) page.SetU32(data_page::kStampAt, field.stamp);
  }
  return field;
}

PageNumber LongValueStore::PageFor(std::size_t length) {
  const auto shared = with_room();
  std::optional<PageNumber> page;
  if (shared) page = shared->Last();
  for (int tries = kPageTries; page && tries > 0; --tries, page = shared->LastBelow(*page)) {
    if (*page >= pager_.page_count() || !owned_.Contains(*page)) continue;
    const ByteView view = pager_.View(*page);
    if (!data_page::IsOwnedBy(view, data_page::kLongValueOwner))
      ThrowDamaged("a column's map names a page without long values", *page);
    // The first page of a chain has a stamp: it belongs to that chain alone.
    if (view.U16(data_page::kTypeAt) == data_page::kType && view.U32(data_page::kStampAt) == 0 &&
        data_page::HasRoomFor(view, length))
      return *page;
  }
  return TakePage();
}

PageNumber LongValueStore::TakePage() {
  const PageNumber taken = allocator_.Take();
  ByteEditor page = pager_.Edit(taken);
  data_page::Format(page, data_page::kLongValueOwner);
  owned_.Add(taken);
  return taken;
}

void LongValueStore::Free(const LongValueField& field) {
  if (field.form == LongValueField::Form::kInline) return;
  std::vector<RowPointer> rows;
  if (field.form == LongValueField::Form::kSingle) {
    if (RowAt(field.at).size() != field.length)
      ThrowDamaged("a long value that does not fit its length", field.at.page);
    rows.push_back(field.at);
  } else {
    WalkChain(field, [&rows](RowPointer at, std::span<const std::byte>) { rows.push_back(at); });
  }
  for (const RowPointer& at : rows) {
    if (!owned_.Contains(at.page))
      ThrowDamaged("a long value on a page that is not its column's", at.page);
  }
  pager_.Defer(CleanUp::kUnreferenced,
               [store = *this, rows = std::move(rows), form = field.form]() mutable {
                 for (const RowPointer& at : rows) store.RemoveRow(at, form);
               });
}

void LongValueStore::RemoveRow(RowPointer at, LongValueField::Form form) {
  if (!owned_.Contains(at.page) || data_page::SlotAt(pager_.View(at.page), at.row).is_deleted())
    return;
  auto shared = with_room();
  const bool alone = data_page::RowCount(pager_.View(at.page)) == 1;
  if (!alone || form == LongValueField::Form::kSingle) {
    ByteEditor page = pager_.Edit(at.page);
    data_page::RemoveRow(page, at.row);
    if (!alone) {
      if (shared && data_page::FreeBytes(page.view()) > long_value::kFewFreeBytes &&
          page.view().U32(data_page::kStampAt) == 0)
        shared->Add(at.page);
      return;
    }
  }
  owned_.Remove(at.page);
  if (shared) shared->Remove(at.page);
  // A chain's page is given back as it is.
  if (form == LongValueField::Form::kSingle) {
    allocator_.Release(at.page, data_page::kReleasedMark);
  } else {
    allocator_.Release(at.page);
  }
}

}  // namespace jet
