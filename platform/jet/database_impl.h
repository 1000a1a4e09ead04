// The parts of an open database file, as its tables and creators use them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/jet/catalog.h"
#include "platform/jet/database.h"
#include "platform/jet/database_header.h"
#include "platform/jet/pager.h"
#include "platform/jet/table.h"
#include "platform/jet/usage_map.h"

namespace jet {

struct Database::Impl {
  Impl(std::unique_ptr<PageStore> store, DatabaseHeader file_header,
       std::unique_ptr<UndoJournal> journal = nullptr);

  // Opens the tables that hold the catalog. Their definitions must be in place.
  void OpenCatalog();

  // The open table of a catalog entry; loads it when it is not open yet.
  Table& TableOf(const CatalogEntry& entry);
  // The table whose definition stands on this page; nullptr when the catalog has none.
  Table* FindTable(PageNumber definition);
  // kTableNotFound.
  Table& FindTable(std::u16string_view name);

  // kReadOnly or kNotSupported with write_refusal when nothing can be written.
  void RequireWritable() const;

  // Does a change of the design as one page transaction. When it fails, what is remembered of
  // tables and catalog is read anew.
  void ChangeDesign(const std::function<void()>& change);

  // Reads a table anew if it is open.
  void Reload(PageNumber definition);

  DatabaseHeader header;
  Pager pager;
  PageAllocator allocator;
  std::map<PageNumber, std::unique_ptr<Table>> tables;  // by definition page
  std::optional<Catalog> catalog;
  std::string write_refusal;
};

}  // namespace jet
