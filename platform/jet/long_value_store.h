// Memo and OLE values on pages of their own: single rows on shared pages, and chains.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "platform/jet/data_page.h"
#include "platform/jet/pager.h"
#include "platform/jet/row_codec.h"
#include "platform/jet/usage_map.h"

namespace jet {

// The long values of one column. A light handle; pager and allocator must outlive it, and the
// transactions it took part in. Writing and freeing need a transaction. What is freed goes when
// that commits, after the rows that pointed to it have been written.
class LongValueStore {
 public:
  LongValueStore(Pager& pager, PageAllocator& allocator, const LongValueMaps& maps);

  // The stored bytes of a value, whatever its form. kDamaged for a chain that is too long, too
  // short, circular, or whose stamps differ.
  Bytes Read(const LongValueField& field) const;

  // Writes the bytes and returns the field for the row. `uncompressed_length` decides the form
  // (inline up to 64 bytes unless `may_inline` is false; single up to 3816; else a chain).
  // kTooLong above 2^30 - 1 bytes, kDiskFull.
  LongValueField Write(std::span<const std::byte> bytes, std::size_t uncompressed_length,
                       bool may_inline = true);

  // Writes the stored bytes of a value that had this form elsewhere, for good: inline and single
  // ones keep it where the rules allow, what is short enough leaves its chain. kDiskFull.
  LongValueField WriteCopy(std::span<const std::byte> bytes, LongValueField::Form form);

  // Gives back what a value occupies, the whole chain checked first (kDamaged). Inline: nothing.
  void Free(const LongValueField& field);

 private:
  // The row at an address: good until the next call of the pager. kDamaged when there is none.
  std::span<const std::byte> RowAt(RowPointer at) const;
  // Calls `take` with each row's address and data. Checks length, stamp and that it ends.
  template <typename Take>
  void WalkChain(const LongValueField& field, Take take) const;
  LongValueField WriteSingle(std::span<const std::byte> bytes);
  LongValueField WriteChain(std::span<const std::byte> bytes);
  // A page with room for a row of a shared page, perhaps a new one.
  PageNumber PageFor(std::size_t length);
  PageNumber TakePage();
  void RemoveRow(RowPointer at, LongValueField::Form form);

  std::optional<UsageMap> with_room() const;

  Pager& pager_;
  PageAllocator& allocator_;
  LongValueMaps maps_;
  UsageMap owned_;
};

}  // namespace jet
