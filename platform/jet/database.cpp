// A database file: opening, finding tables, changing the design.
#include "platform/jet/database.h"

#include <algorithm>

#include "platform/jet/database_creator.h"
#include "platform/jet/database_impl.h"
#include "platform/jet/error.h"
#include "platform/jet/index_creator.h"
#include "platform/jet/relationship_creator.h"
#include "platform/jet/system_tables.h"
#include "platform/jet/table_creator.h"
#include "platform/jet/table_impl.h"
#include "platform/jet/write_check.h"

namespace jet {

namespace {

DatabaseHeader ReadHeader(const PageStore& store) {
  PageBytes page;
  store.Read(0, page);
  return DatabaseHeader::Parse(page);
}

// The entry of a table that is opened before the catalog can be read.
CatalogEntry EntryOf(const SystemTable& table) {
  return {.id = static_cast<std::int32_t>(table.page),
          .parent = object_id::kTables,
          .name = std::u16string(table.name),
          .flags = object_flags::kSystem};
}

std::unique_ptr<Database> OpenPages(std::unique_ptr<PageStore> store,
                                    std::unique_ptr<UndoJournal> journal,
                                    const OpenOptions& options) {
  DatabaseHeader header = ReadHeader(*store);
  if (!header.password().empty() && header.password() != options.password)
    throw Error(ErrorKind::kWrongPassword);
  auto impl =
      std::make_unique<Database::Impl>(std::move(store), std::move(header), std::move(journal));
  impl->OpenCatalog();
  impl->write_refusal = FindWriteRefusal(*impl);
  return std::make_unique<Database>(std::move(impl));
}

}  // namespace

Database::Impl::Impl(std::unique_ptr<PageStore> store, DatabaseHeader file_header,
                     std::unique_ptr<UndoJournal> journal)
    : header(std::move(file_header)),
      pager(std::move(store), header.page_key(), Pager::kDefaultCachePages, std::move(journal)),
      allocator(pager, header.free_pages_map(), header.released_pages_map()) {}

void Database::Impl::OpenCatalog() {
  for (const SystemTable& table : SystemTables())
    if (table.page == system_table::kObjects || table.page == system_table::kRights)
      TableOf(EntryOf(table));
  catalog.emplace(*tables.at(system_table::kObjects), *tables.at(system_table::kRights), header);
  catalog->Reload();
}

Table& Database::Impl::TableOf(const CatalogEntry& entry) {
  std::unique_ptr<Table>& table = tables[static_cast<PageNumber>(entry.id)];
  if (table == nullptr) {
    try {
      table = std::make_unique<Table>(std::make_unique<Table::Impl>(*this, entry));
    } catch (...) {
      tables.erase(static_cast<PageNumber>(entry.id));
      throw;
    }
  }
  return *table;
}

Table* Database::Impl::FindTable(PageNumber definition) {
  const CatalogEntry* const entry = catalog->FindTable(definition);
  return entry == nullptr ? nullptr : &TableOf(*entry);
}

Table& Database::Impl::FindTable(std::u16string_view name) {
  const CatalogEntry* const entry = catalog->FindTable(name);
  if (entry == nullptr) throw Error(ErrorKind::kTableNotFound, {std::u16string(name)});
  return TableOf(*entry);
}

void Database::Impl::RequireWritable() const {
  if (write_refusal.empty()) return;
  throw Error(pager.read_only() ? ErrorKind::kReadOnly : ErrorKind::kNotSupported,
              "the file cannot be changed: " + write_refusal);
}

void Database::Impl::ChangeDesign(const std::function<void()>& change) {
  RequireWritable();
  try {
    PageTransaction transaction(pager);
    change();
    transaction.Commit();
  } catch (...) {
    for (const auto& [page, table] : tables) table->impl().Load();
    catalog->Reload();
    throw;
  }
}

void Database::Impl::Reload(PageNumber definition) {
  const auto table = tables.find(definition);
  if (table != tables.end()) table->second->impl().Load();
}

std::unique_ptr<Database> Database::Open(const std::filesystem::path& path,
                                         const OpenOptions& options) {
  try {
    return OpenPages(
        OpenRecovered(path, options.read_only ? OpenMode::kReadOnly : OpenMode::kReadWrite),
        std::make_unique<UndoJournal>(path), options);
  } catch (const Error& error) {
    const bool lacks_path = error.names().empty() && (error.kind() == ErrorKind::kNotADatabase ||
                                                      error.kind() == ErrorKind::kDamaged);
    if (!lacks_path) throw;
    throw Error(error.kind(), {path.u16string()}, error.what(), error.page());
  }
}

std::unique_ptr<Database> Database::Open(std::unique_ptr<PageStore> store,
                                         const OpenOptions& options) {
  return OpenPages(std::move(store), nullptr, options);
}

std::unique_ptr<Database> Database::Create(const std::filesystem::path& path,
                                           const CreateOptions& options) {
  CreateDatabaseFile(path, options);
  return Open(path, {.password = options.password});
}

Database::Database(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Database::~Database() = default;

const std::string& Database::write_refusal() const { return impl_->write_refusal; }

std::vector<std::u16string> Database::TableNames() const {
  std::vector<std::u16string> names;
  for (const CatalogEntry* entry : impl_->catalog->UserTables()) names.push_back(entry->name);
  return names;
}

Table& Database::OpenTable(std::u16string_view name) { return impl_->FindTable(name); }

void Database::CreateTable(const TableSpec& spec) {
  impl_->ChangeDesign([&] { jet::CreateTable(*impl_, spec); });
}

void Database::CreateIndex(std::u16string_view table, const IndexSpec& spec) {
  Table::Impl& changed = impl_->FindTable(table).impl();
  impl_->ChangeDesign([&] { jet::CreateIndex(*impl_, changed, spec); });
  impl_->Reload(changed.definition.page);
}

void Database::CreateRelationship(const RelationshipSpec& spec) {
  Table::Impl& child = impl_->FindTable(spec.table).impl();
  Table::Impl& parent = impl_->FindTable(spec.referenced_table).impl();
  impl_->ChangeDesign([&] { jet::CreateRelationship(*impl_, child, parent, spec); });
  impl_->Reload(child.definition.page);
  impl_->Reload(parent.definition.page);
}

std::vector<Database::Relationship> Database::Relationships() const {
  std::vector<Relationship> relationships;
  for (RelationshipSpec& spec : ReadRelationships(*impl_))
    relationships.push_back({std::move(spec)});
  return relationships;
}

std::uint64_t Database::pages_written() const { return impl_->pager.pages_written(); }

}  // namespace jet
