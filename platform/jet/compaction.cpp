// Compaction: see the header.
#include "platform/jet/compaction.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "platform/jet/check.h"
#include "platform/jet/compaction_ids.h"
#include "platform/jet/compaction_steps.h"
#include "platform/jet/compaction_table.h"
#include "platform/jet/database_creator.h"
#include "platform/jet/database_impl.h"
#include "platform/jet/error.h"
#include "platform/jet/file_steps.h"
#include "platform/jet/lent_page_store.h"
#include "platform/jet/new_file.h"
#include "platform/jet/system_tables.h"
#include "platform/jet/undo_journal.h"
#include "platform/jet/write_check.h"

namespace jet {

namespace {

constexpr PageNumber kFirstUserPage = 6;  // behind the definitions of the system tables

// All tables of the file in the order of their definitions, so the system tables first. Throws when
// one of them cannot be told whole.
std::vector<Table::Impl*> OpenTables(Database::Impl& source) {
  std::vector<const CatalogEntry*> entries;
  for (const CatalogEntry& entry : source.catalog->entries())
    if (entry.type == ObjectType::kTable) entries.push_back(&entry);
  std::sort(entries.begin(), entries.end(),
            [](const CatalogEntry* a, const CatalogEntry* b) { return a->id < b->id; });
  const auto twice = std::adjacent_find(
      entries.begin(), entries.end(),
      [](const CatalogEntry* a, const CatalogEntry* b) { return a->id == b->id; });
  if (twice != entries.end())
    throw Error(ErrorKind::kDamaged, "two tables with one definition",
                static_cast<PageNumber>((*twice)->id));
  std::vector<Table::Impl*> tables;
  tables.reserve(entries.size());
  for (const CatalogEntry* entry : entries) tables.push_back(&source.TableOf(*entry).impl());
  if (const std::string reason = FindCopyRefusal(source); !reason.empty())
    throw Error(ErrorKind::kNotSupported, "the file cannot be compacted: " + reason);
  return tables;
}

// Gives each table a page for its definition, next to one another behind those of the system.
ObjectIds TakeDefinitionPages(const std::vector<Table::Impl*>& tables, Database::Impl& target) {
  ObjectIds ids;
  for (const SystemTable& table : SystemTables()) {
    target.pager.EditNew(table.page);
    ids.Add(table.page, table.page);
  }
  for (const Table::Impl* table : tables)
    if (table->definition.page >= kFirstUserPage)
      ids.Add(table->definition.page, target.allocator.Take());
  return ids;
}

void Copy(Database::Impl& source, std::unique_ptr<PageStore> pages,
          const std::function<void()>& progress) {
  const std::vector<Table::Impl*> tables = OpenTables(source);
  DatabaseHeader header = source.header.ForNewFile();
  pages->Write(0, header.bytes());
  Database::Impl target(std::move(pages), std::move(header));
  CompactionSteps steps(target.pager, progress);
  WriteGlobalMaps(target.pager);
  const ObjectIds ids = TakeDefinitionPages(tables, target);
  steps.End();
  for (Table::Impl* table : tables) TableCopier(*table, target, ids, steps).Copy();
}

// Damage in the source that does not keep its parts from being read shows in the copy.
void Check(std::unique_ptr<PageStore> copy, const std::u16string& password) {
  const CheckReport report = CheckPages(std::move(copy), {.password = password});
  if (!report.problems.empty()) throw Error(ErrorKind::kDamaged, report.problems.front());
}

// An error as whoever named the file wants to read it.
template <typename Action>
auto OnFile(const std::filesystem::path& path, Action action) {
  try {
    return action();
  } catch (const Error& error) {
    const bool lacks_path = error.names().empty() && (error.kind() == ErrorKind::kNotADatabase ||
                                                      error.kind() == ErrorKind::kDamaged);
    if (!lacks_path) throw;
    throw Error(error.kind(), {path.u16string()}, error.what(), error.page());
  }
}

}  // namespace

void CompactPages(PageStore& source, PageStore& target, const CompactOptions& options) {
  {
    const auto database =
        Database::Open(std::make_unique<LentPageStore>(source, Lent::kForReading, options.progress),
                       {.password = options.password, .read_only = true});
    Copy(database->impl(), std::make_unique<LentPageStore>(target, Lent::kAsItIs, options.progress),
         options.progress);
  }
  Check(std::make_unique<LentPageStore>(target, Lent::kAsItIs, options.progress), options.password);
}

void CompactFile(const std::filesystem::path& source, const std::filesystem::path& target,
                 const CompactOptions& options) {
  const std::unique_ptr<PageStore> pages = OpenRecovered(source, OpenMode::kReadOnly);
  std::error_code ignored;
  if (std::filesystem::exists(std::filesystem::symlink_status(target, ignored)))
    throw Error(ErrorKind::kDatabaseExists, {target.u16string()});
  NewFile file(target);
  file.TakeRightsOf(source);
  OnFile(source, [&] { CompactPages(*pages, file.pages(), options); });
  file.Appear();
}

void CompactInPlace(const std::filesystem::path& file, const CompactOptions& options) {
  const std::filesystem::path place = FileItself(file);
  // Only a file that may be written to is replaced.
  std::unique_ptr<PageStore> pages = OpenRecovered(place, OpenMode::kReadWrite);
  if (pages->read_only()) throw Error(ErrorKind::kReadOnly, "the file is write-protected");
  NewFile copy(place);
  copy.TakeRightsOf(place);
  OnFile(file, [&] { CompactPages(*pages, copy.pages(), options); });
  copy.Replace(std::move(pages));
}

}  // namespace jet
