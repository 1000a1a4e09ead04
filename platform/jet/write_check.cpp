// The check of a whole file before its first change: see the header.
#include "platform/jet/write_check.h"

#include <algorithm>
#include <array>

#include "platform/jet/error.h"
#include "platform/jet/object_name.h"
#include "platform/jet/system_tables.h"
#include "platform/jet/table_impl.h"

namespace jet {

namespace {

bool IsAccount(const Bytes& id, std::span<const std::byte> account) {
  return std::equal(id.begin(), id.end(), account.begin(), account.end());
}

std::string CheckAccounts(const Catalog& catalog) {
  const auto owner_differs = [&](std::int32_t id, std::span<const std::byte> account_id) {
    return std::any_of(catalog.entries().begin(), catalog.entries().end(),
                       [&](const CatalogEntry& entry) {
                         return entry.id == id && !IsAccount(entry.owner, account_id);
                       });
  };
  if (owner_differs(static_cast<std::int32_t>(system_table::kObjects), account::kEngine))
    return "its security ids do not fit its header";
  if (owner_differs(object_id::kDatabase, account::kAdmin)) return "it is a secured file";
  const std::vector<AccessRight> rights = catalog.RightsTo(object_id::kTables);
  const bool open_to_users = std::any_of(
      rights.begin(), rights.end(),
      [](const AccessRight& right) { return IsAccount(right.account, account::kUsers); });
  return open_to_users ? std::string() : "it is a secured file";
}

bool IsReplicationColumn(const std::u16string& name) {
  static const std::array kNames = {FoldName(u"s_GUID"), FoldName(u"s_Generation"),
                                    FoldName(u"s_Lineage")};
  constexpr std::u16string_view kPrefix = u"Gen_";
  const Bytes folded = FoldName(name);
  return std::find(kNames.begin(), kNames.end(), folded) != kNames.end() ||
         (name.size() > kPrefix.size() &&
          FoldName(std::u16string_view(name).substr(0, kPrefix.size())) == FoldName(kPrefix));
}

std::string CheckReplication(Database::Impl& database) {
  for (const std::u16string_view name : {u"MSysReplicas", u"MSysTableGuids", u"MSysGenHistory"})
    if (database.catalog->FindTable(name) != nullptr) return "it takes part in replication";
  for (const auto& [page, table] : database.tables)
    for (const ColumnDefinition& column : table->columns())
      if (IsReplicationColumn(column.name)) return "it takes part in replication";
  return {};
}

std::string CheckSystemTables(Database::Impl& database) {
  for (const SystemTable& expected : SystemTables()) {
    const Table* table = database.FindTable(expected.page);
    if (table == nullptr || !IsAsExpected(expected, table->definition()))
      return "its system tables are unlike those of other files";
  }
  return {};
}

// Whether any page that a table owns is said to be free.
bool OwnsFreePage(Database::Impl& database, const TableDefinition& table) {
  const auto has_free_page = [&](RowPointer map) {
    const UsageMap pages(database.pager, database.allocator, map, MapKind::kOwned);
    const std::vector<PageNumber> owned = pages.Pages();
    return std::any_of(owned.begin(), owned.end(),
                       [&](PageNumber page) { return database.allocator.IsFree(page); });
  };
  return database.allocator.IsFree(table.page) || has_free_page(table.owned_pages) ||
         std::any_of(table.physical_indexes.begin(), table.physical_indexes.end(),
                     [&](const PhysicalIndex& index) { return has_free_page(index.pages_map); }) ||
         std::any_of(table.long_value_maps.begin(), table.long_value_maps.end(),
                     [&](const LongValueMaps& maps) { return has_free_page(maps.owned); });
}

std::string CheckMaps(Database::Impl& database) {
  const DatabaseHeader& header = database.header;
  constexpr const char* kOdd = "its maps of pages contradict each other";
  if (header.free_pages_map() == header.released_pages_map()) return kOdd;
  try {
    for (const RowPointer at : {header.free_pages_map(), header.released_pages_map()})
      UsageMap(database.pager, database.allocator, at, MapKind::kOwned).Pages();
    constexpr PageNumber kFirstPossiblyFree = 6;
    for (PageNumber page = 0; page < kFirstPossiblyFree; ++page)
      if (database.allocator.IsFree(page)) return kOdd;
    for (const auto& [page, table] : database.tables)
      if (OwnsFreePage(database, table->definition())) return kOdd;
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::kDamaged) throw;
    return kOdd;
  }
  return {};
}

// Opens every table, so that its definition can be looked at. One that cannot be read is refused
// when it is used.
void OpenTables(Database::Impl& database) {
  for (const CatalogEntry& entry : database.catalog->entries()) {
    if (entry.type != ObjectType::kTable) continue;
    try {
      database.TableOf(entry);
    } catch (const Error& error) {
      if (error.kind() != ErrorKind::kDamaged && error.kind() != ErrorKind::kNotSupported) throw;
    }
  }
}

std::string CheckCommitWords(Database::Impl& database) {
  return database.header.is_suspect() ? "a former writer did not finish; it needs a repair" : "";
}

using Check = std::string (*)(Database::Impl&);

std::string FirstReason(Database::Impl& database, std::initializer_list<Check> checks) {
  for (const Check check : checks)
    if (std::string reason = check(database); !reason.empty()) return reason;
  return {};
}

}  // namespace

std::string FindWriteRefusal(Database::Impl& database) {
  if (database.pager.read_only()) return "it was opened for reading only";
  if (std::string reason = CheckCommitWords(database); !reason.empty()) return reason;
  OpenTables(database);
  return FirstReason(
      database, {CheckSystemTables, [](Database::Impl& d) { return CheckAccounts(*d.catalog); },
                 CheckReplication, CheckMaps});
}

std::string FindCopyRefusal(Database::Impl& database) {
  return FirstReason(database, {CheckCommitWords, CheckSystemTables, CheckReplication, CheckMaps});
}

}  // namespace jet
