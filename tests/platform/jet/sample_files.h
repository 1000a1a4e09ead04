// Database files made by others, read without the engine's own paging: evidence for the codecs.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/jet/database_header.h"
#include "platform/jet/row_codec.h"
#include "platform/jet/table_definition.h"

namespace jet::test {

// A sample's pages in memory, read with the plainest means: every page of a kind is found by
// looking at all pages, so no map, chain or tree of the engine is trusted.
class SampleFile {
 public:
  explicit SampleFile(const std::filesystem::path& path);

  const std::string& name() const { return name_; }
  const DatabaseHeader& header() const { return header_; }
  const Page& page(PageNumber number) const { return pages_.at(number); }
  PageNumber page_count() const { return static_cast<PageNumber>(pages_.size()); }

  // The assembled bytes of a definition.
  Bytes DefinitionBytes(PageNumber first_page) const;
  TableDefinition Definition(PageNumber first_page) const;
  // The definition pages of all tables that the catalog lists, by name; the system's included.
  std::map<std::u16string, PageNumber> Tables() const;

  struct StoredBytes {
    RowId id;  // home slot
    Bytes bytes;
  };
  // The live rows of a table.
  std::vector<StoredBytes> Rows(PageNumber table) const;
  // The entries of an index, key and row address joined, as the leaves hold them.
  std::vector<Bytes> IndexEntries(PageNumber root) const;
  // A property blob in one row of a page of its own, or inline; nothing for other forms.
  Bytes LongValue(const LongValueField& field) const;

 private:
  Bytes Slot(RowPointer at) const;
  void CollectEntries(PageNumber number, int depth, std::vector<Bytes>& entries) const;

  std::string name_;
  std::vector<Page> pages_;
  DatabaseHeader header_;
};

// The samples under the folder that the environment variable ORVPAP_SHARED names; none when unset.
std::vector<SampleFile> SampleFiles();

}  // namespace jet::test
