// What the parts of a file check share: the lists they add to, who owns which page, the tables.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "platform/jet/database_header.h"
#include "platform/jet/pager.h"
#include "platform/jet/table_definition.h"

namespace jet::check {

// UTF-8 for one line of text: control characters and lone surrogates are replaced.
std::string ToUtf8(std::u16string_view text);

inline void AppendPart(std::string& line, std::string_view part) { line += part; }
template <typename Number>
requires std::is_integral_v<Number>
void AppendPart(std::string& line, Number number) { line += std::to_string(number); }
inline void AppendPart(std::string& line, RowPointer at) {
  line += "page " + std::to_string(at.page) + " row " + std::to_string(at.row);
}

// Texts, numbers and row addresses, one behind the other.
template <typename... Parts>
std::string Line(const Parts&... parts) {
  std::string line;
  (AppendPart(line, parts), ...);
  return line;
}

// Lines for the reader, up to a number; the rest is counted.
class Lines {
 public:
  static constexpr std::size_t kMost = 200;

  template <typename... Parts>
  void Add(const Parts&... parts) {
    if (lines_.size() < kMost)
      lines_.push_back(Line(parts...));
    else
      ++more_;
  }
  // The lines, and a last one that tells how many are missing.
  std::vector<std::string> Take();

 private:
  std::vector<std::string> lines_;
  std::size_t more_ = 0;
};

// Who has claimed each page of the file.
class PageOwners {
 public:
  using Owner = std::uint32_t;  // 0: nobody

  explicit PageOwners(PageNumber page_count) : owners_(page_count), names_(1) {}

  Owner Name(std::string name);
  const std::string& NameOf(Owner owner) const { return names_[owner]; }
  PageNumber page_count() const { return static_cast<PageNumber>(owners_.size()); }
  Owner OwnerOf(PageNumber page) const { return owners_[page]; }
  void Set(PageNumber page, Owner owner) { owners_[page] = owner; }

 private:
  std::vector<Owner> owners_;
  std::vector<std::string> names_;
};

// A table whose definition could be read.
struct CheckedTable {
  std::string name;
  std::u16string catalog_name;
  bool is_user = false;
  TableDefinition definition;
  std::vector<PageNumber> definition_pages;
  std::vector<PageNumber> data_pages;  // ascending; all are data pages of this table
};

struct State {
  State(const Pager& file, const DatabaseHeader& page_0)
      : pager(file), header(page_0), owners(file.page_count()) {}

  // Notes that the page belongs to the owner; a problem when it lies outside the file or belongs to
  // another. Returns whether the page may be read as the owner's.
  bool Claim(PageNumber page, PageOwners::Owner owner);

  // Runs `action`; damage that ends it becomes a problem of `where`. Returns whether it ran
  // through.
  template <typename Action>
  bool Guard(std::string_view where, Action action) {
    try {
      action();
      return true;
    } catch (const Error& error) {
      Report(where, error);
      return false;
    }
  }
  // Adds the error as a problem; throws it on when the machine failed and not the file.
  void Report(std::string_view where, const Error& error);

  const Pager& pager;
  const DatabaseHeader& header;
  Lines problems;
  Lines notes;
  PageOwners owners;
  PageOwners::Owner map_rows = owners.Name("usage maps");
  std::vector<CheckedTable> tables;
  std::unordered_map<PageNumber, std::size_t> places;  // in `tables`, by definition page
  std::size_t rows = 0;
  std::size_t index_entries = 0;
};

}  // namespace jet::check
