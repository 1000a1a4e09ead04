// Reads memo and OLE values for a file check.
#include "platform/jet/check_long_values.h"

#include <algorithm>
#include <utility>

#include "platform/jet/check_maps.h"
#include "platform/jet/data_page.h"
#include "platform/jet/long_value_format.h"

namespace jet::check {
namespace {

[[noreturn]] void Damaged(const char* what, PageNumber page) {
  throw Error(ErrorKind::kDamaged, what, page);
}

std::span<const std::byte> RowAt(const Page& page, RowPointer at) {
  const data_page::Slot slot = data_page::SlotAt(page.view(), at.row);
  if (!slot.is_row()) Damaged("a long value whose row is deleted", at.page);
  return data_page::RowBytes(page.view(), slot);
}

}  // namespace

LongValueCheck::LongValueCheck(State& state, const LongValueMaps& maps, std::string where)
    : state_(state),
      where_(std::move(where)),
      pages_(ClaimPages(state, maps.owned, maps.with_room, "long values of " + where_)) {}

Page LongValueCheck::Use(RowPointer at) {
  if (!std::ranges::binary_search(pages_, at.page))
    Damaged("a long value on a page that its column does not own", at.page);
  if (!used_.insert(at).second) Damaged("a row of long values that is used twice", at.page);
  Page page = state_.pager.Read(at.page);
  CheckDataPage(page.view(), data_page::kLongValueOwner);
  return page;
}

Bytes LongValueCheck::Read(const LongValueField& field) {
  Bytes bytes;
  if (field.form == LongValueField::Form::kInline) {
    bytes = field.inline_bytes;
  } else if (field.form == LongValueField::Form::kSingle) {
    const Page page = Use(field.at);
    const std::span<const std::byte> row = RowAt(page, field.at);
    bytes.assign(row.begin(), row.end());
  } else {
    // No row is used twice, so the walk ends.
    for (RowPointer at = field.at; !at.is_null();) {
      const Page page = Use(at);
      if (at == field.at && page.view().U32(data_page::kStampAt) != field.stamp)
        Damaged("a long value with another stamp than its page", at.page);
      const ByteView row(RowAt(page, at), at.page);
      const std::span<const std::byte> rest =
          row.bytes().subspan(std::min(row.size(), long_value::kDataAt));
      bytes.insert(bytes.end(), rest.begin(), rest.end());
      at = RowPointer::FromStored(row.U32(long_value::kNextAt));
    }
  }
  if (bytes.size() != field.length)
    Damaged("a long value of another length than its row says", field.at.page);
  return bytes;
}

void LongValueCheck::Finish() {
  std::size_t unused = 0;
  RowPointer example;
  for (const PageNumber number : pages_) {
    state_.Guard(where_, [&] {
      const ByteView page = state_.pager.View(number);
      CheckDataPage(page, data_page::kLongValueOwner);
      for (unsigned row = 0; row < data_page::SlotCount(page); ++row) {
        const RowPointer at{number, static_cast<std::uint8_t>(row)};
        if (!data_page::SlotAt(page, row).is_row() || used_.contains(at)) continue;
        ++unused;
        example = at;
      }
    });
  }
  if (unused > 0)
    state_.notes.Add(where_, ": ", unused, " long values that no row uses, for example ", example);
}

}  // namespace jet::check
