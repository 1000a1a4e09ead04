// How wide the columns of a list must be for what stands in them.
#pragma once

#include <wx/window.h>

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace wx_windows {

// Adds up the widths of characters, each measured once: measuring every text of a long list would
// cost more than showing it. One list's.
class ColumnWidths {
 public:
  // `window` is the one to measure in, which must outlive this.
  explicit ColumnWidths(const wxWindow& window) : window_(window) {}

  // The font is another one, or the display's scale. Begin must follow.
  void ForgetCharacters() { characters_.clear(); }
  // Begins anew with these headings. `check_boxes`: in front of the first column's texts.
  void Begin(const std::vector<std::wstring>& headings, bool check_boxes);
  // A text stands in this column.
  void Add(std::size_t column, const std::wstring& text);

  // What the text needs there, in the same measure as Widths; it may be more than those
  // can be.
  int WidthOf(std::size_t column, const std::wstring& text);

  // In pixels, with the room around the text, but never more than a window can be asked to hold.
  const std::vector<int>& Widths() const { return widths_; }

 private:
  int WidthOf(wchar_t character);

  const wxWindow& window_;
  std::unordered_map<wchar_t, int> characters_;
  std::vector<int> widths_;
  int check_box_ = 0;
};

}  // namespace wx_windows
