// Names of objects: see the header.
#include "platform/jet/object_name.h"

#include <algorithm>
#include <string>

#include "platform/jet/error.h"
#include "platform/jet/key_encoding.h"

namespace jet {

Bytes FoldName(std::u16string_view name) { return TextSortKey(Collation{}, name); }

void CheckName(std::u16string_view name) {
  constexpr std::u16string_view kForbidden = u".![]`";
  constexpr char16_t kFirstPrintable = 0x20;
  const bool sound =
      !name.empty() && name.size() <= kMaxNameLength && name.front() != u' ' &&
      std::none_of(name.begin(), name.end(), [&](char16_t c) {
        return c < kFirstPrintable || kForbidden.find(c) != std::u16string_view::npos;
      });
  if (!sound) throw Error(ErrorKind::kBadName, {std::u16string(name)}, "name not allowed");
}

}  // namespace jet
