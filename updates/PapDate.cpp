// Dates as price-update files and the download index write them.
#include "updates/PapDate.h"

#include <cstddef>
#include <cstdint>

#include "app/modGeneralFunctions.h"
#include "platform/text/date.h"

namespace {

// The number in the characters from `vStart` (from 0) on; a text that is too short gives 0.
std::int32_t NumberIn(const std::wstring& vText, std::size_t vStart, std::size_t vLength) {
  return vStart < vText.size() ? ExtractNumber(vText.substr(vStart, vLength)) : 0;
}

}  // namespace

double PapDateOf(const std::wstring& vText) {
  return text::DateSerial(NumberIn(vText, 0, 4), NumberIn(vText, 4, 2), NumberIn(vText, 6, 2));
}
