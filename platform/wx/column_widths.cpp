// How wide the columns of a list must be for what stands in them.
#include "platform/wx/column_widths.h"

#include <algorithm>

#include "platform/wx/conversion.h"

namespace wx_windows {
namespace {

// In pixels at the normal scale.
constexpr int kAround = 20;
constexpr int kCheckBox = 24;
constexpr int kWidest = 1600;

}  // namespace

void ColumnWidths::Begin(const std::vector<std::wstring>& headings, bool check_boxes) {
  check_box_ = check_boxes ? window_.FromDIP(kCheckBox) : 0;
  widths_.assign(headings.size(), 0);
  for (std::size_t column = 0; column < headings.size(); ++column) Add(column, headings[column]);
}

void ColumnWidths::Add(std::size_t column, const std::wstring& text) {
  if (column >= widths_.size()) return;
  const int width = std::min(WidthOf(column, text), window_.FromDIP(kWidest));
  widths_[column] = std::max(widths_[column], width);
}

int ColumnWidths::WidthOf(std::size_t column, const std::wstring& text) {
  const int widest = window_.FromDIP(kWidest);
  int width = window_.FromDIP(kAround) + (column == 0 ? check_box_ : 0);
  for (const wchar_t character : text) {
    width += WidthOf(character);
    if (width >= widest) break;
  }
  return width;
}

int ColumnWidths::WidthOf(wchar_t character) {
  const auto [place, added] = characters_.try_emplace(character, 0);
  if (added) place->second = window_.GetTextExtent(ToToolkit(std::wstring(1, character))).x;
  return place->second;
}

}  // namespace wx_windows
