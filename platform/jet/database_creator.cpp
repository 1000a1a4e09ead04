// Creating an empty database: see the header.
#include "platform/jet/database_creator.h"

#include <algorithm>
#include <array>
#include <random>
#include <system_error>

#include "platform/jet/data_page.h"
#include "platform/jet/database_impl.h"
#include "platform/jet/default_value.h"
#include "platform/jet/error.h"
#include "platform/jet/index_creator.h"
#include "platform/jet/lent_page_store.h"
#include "platform/jet/new_file.h"
#include "platform/jet/system_tables.h"
#include "platform/jet/table_creator.h"
#include "platform/jet/table_definition_store.h"
#include "platform/jet/usage_map_format.h"

namespace jet {

namespace {

constexpr std::uint16_t kCodePage = 1252;
constexpr PageNumber kGlobalMapsPage = 1;
constexpr PageNumber kFirstFreePage = 6;  // behind the definitions of the system tables

Bytes ToBytes(std::span<const std::byte> bytes) { return {bytes.begin(), bytes.end()}; }

std::uint32_t RandomPageKey() {
  std::random_device random;
  std::uint32_t key = 0;
  while (key == 0) key = random();
  return key;
}

void WriteSystemTables(Database::Impl& database) {
  for (const SystemTable& table : SystemTables()) database.pager.EditNew(table.page);
  for (const SystemTable& table : SystemTables()) {
    TableDefinition definition = DefinitionOf(table, database.header.collation());
    AddMaps(database, definition);
    for (PhysicalIndex& index : definition.physical_indexes)
      AddTree(database, definition.page, index);
    WriteTableDefinition(database.pager, database.allocator, definition);
  }
}

void AddObjects(Catalog& catalog) {
  const auto add = [&](std::int32_t id, std::int32_t parent, std::u16string_view name,
                       ObjectType type, std::span<const std::byte> owner) {
    catalog.Add({.id = id,
                 .parent = parent,
                 .name = std::u16string(name),
                 .type = type,
                 .flags = object_flags::kSystem,
                 .owner = ToBytes(owner)},
                {});
  };
  const auto add_container = [&](std::int32_t id, std::u16string_view name) {
    add(id, object_id::kRoot, name, ObjectType::kContainer, account::kEngine);
  };
  add_container(object_id::kTables, u"Tables");
  add_container(object_id::kDatabases, u"Databases");
  add_container(object_id::kRelationships, u"Relationships");
  add(object_id::kDatabase, object_id::kDatabases, u"MSysDb", ObjectType::kDatabase,
      account::kAdmin);
  for (const SystemTable& table : SystemTables())
    add(static_cast<std::int32_t>(table.page), object_id::kTables, table.name, ObjectType::kTable,
        account::kEngine);
}

void AddRights(Catalog& catalog) {
  const auto add = [&](auto object, std::span<const std::byte> account_id, std::int32_t mask,
                       bool inheritable = false) {
    catalog.AddRight({.object = static_cast<std::int32_t>(object),
                      .account = ToBytes(account_id),
                      .mask = mask,
                      .inheritable = inheritable});
  };
  add(system_table::kObjects, account::kAdmin, 0x60000);
  add(system_table::kRights, account::kAdmin, 0x60000);
  add(system_table::kQueries, account::kAdmin, 0x60000);
  add(system_table::kRelationships, account::kAdmin, 0xe0000);
  add(object_id::kTables, account::kCreator, 0xf00fe, true);
  add(object_id::kTables, account::kAdmin, 0x60001);
  add(object_id::kRelationships, account::kCreator, 0xf00fe, true);
  add(object_id::kRelationships, account::kAdmin, 0x60001);
  add(object_id::kDatabases, account::kAdmin, 0x60000);
  add(object_id::kDatabase, account::kAdmin, 0x6000e);
  add(object_id::kDatabase, account::kUsers, 0x0e);
  add(system_table::kQueries, account::kUsers, 0x14);
  add(system_table::kRelationships, account::kUsers, 0x14);
  add(system_table::kObjects, account::kUsers, 0x14);
  add(object_id::kTables, account::kUsers, 0xffeff, true);
  add(object_id::kRelationships, account::kUsers, 0xfffff, true);
}

}  // namespace

void WriteGlobalMaps(Pager& pager) {
  std::array<std::byte, usage_map::kRowSize> none{};
  std::array<std::byte, usage_map::kRowSize> free = none;
  const auto bits = std::span(free).subspan(usage_map::kBitsAt);
  std::fill(bits.begin(), bits.end(), std::byte{0xff});
  bits[0] = std::byte{0xff} << kFirstFreePage;

  ByteEditor page = pager.EditNew(kGlobalMapsPage);
  data_page::Format(page, kGlobalMapsPage);
  data_page::AddRow(page, free);
  data_page::AddRow(page, none);
}

void CreateDatabase(std::unique_ptr<PageStore> store, const CreateOptions& options) {
  DatabaseHeader header =
      DatabaseHeader::New(options.password, options.encode ? RandomPageKey() : 0, CurrentDays(),
                          options.collation, kCodePage);
  store->Write(0, header.bytes());
  Database::Impl database(std::move(store), std::move(header));
  PageTransaction transaction(database.pager);
  WriteGlobalMaps(database.pager);
  WriteSystemTables(database);
  database.OpenCatalog();
  AddObjects(*database.catalog);
  AddRights(*database.catalog);
  transaction.Commit();
}

void CreateDatabaseFile(const std::filesystem::path& path, const CreateOptions& options) {
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored))
    throw Error(ErrorKind::kDatabaseExists, {path.u16string()});
  NewFile file(path);
  CreateDatabase(std::make_unique<LentPageStore>(file.pages(), Lent::kAsItIs), options);
  file.Appear();
}

}  // namespace jet
