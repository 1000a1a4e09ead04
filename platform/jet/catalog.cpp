// The catalog: see the header.
#include "platform/jet/catalog.h"

#include <algorithm>
#include <limits>

#include "platform/jet/default_value.h"
#include "platform/jet/error.h"
#include "platform/jet/named_row.h"
#include "platform/jet/object_name.h"
#include "platform/jet/table_impl.h"

namespace jet {

namespace {

bool IsTableOrQuery(ObjectType type) {
  return type == ObjectType::kTable || type == ObjectType::kQuery ||
         type == ObjectType::kLinkedTable || type == ObjectType::kLinkedOdbcTable;
}

bool IsAccount(const Bytes& id, std::span<const std::byte> account) {
  return std::equal(id.begin(), id.end(), account.begin(), account.end());
}

Bytes ToBytes(std::span<const std::byte> bytes) { return {bytes.begin(), bytes.end()}; }

}  // namespace

Catalog::Catalog(Table& objects, Table& rights, const DatabaseHeader& header)
    : objects_(objects), rights_(rights), header_(header) {}

void Catalog::Reload() {
  entries_.clear();
  tables_by_name_.clear();
  Table::Impl& table = objects_.impl();
  RowStore::Scan scan(*table.rows);
  while (const auto raw = scan.Next()) {
    const Row row = table.Decode(*raw, LongValues::kSkip).values;
    Remember({.id = Get<std::int32_t>(objects_, row, u"Id"),
              .parent = Get<std::int32_t>(objects_, row, u"ParentId"),
              .name = Get<std::u16string>(objects_, row, u"Name"),
              .type = static_cast<ObjectType>(Get<std::int16_t>(objects_, row, u"Type")),
              .flags = static_cast<std::uint32_t>(Get<std::int32_t>(objects_, row, u"Flags")),
              .owner = header_.MaskSecurityId(Get<Bytes>(objects_, row, u"Owner")),
              .row = raw->id});
  }
}

void Catalog::Remember(CatalogEntry entry) {
  if (entry.type == ObjectType::kTable)
    tables_by_name_.emplace(FoldName(entry.name), entries_.size());
  entries_.push_back(std::move(entry));
}

const CatalogEntry* Catalog::FindTable(std::u16string_view name) const {
  const auto found = tables_by_name_.find(FoldName(name));
  return found == tables_by_name_.end() ? nullptr : &entries_[found->second];
}

const CatalogEntry* Catalog::FindTable(PageNumber definition) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const CatalogEntry& e) {
    return e.type == ObjectType::kTable && static_cast<PageNumber>(e.id) == definition;
  });
  return found == entries_.end() ? nullptr : &*found;
}

bool Catalog::HasTableOrQuery(std::u16string_view name) const {
  const Bytes folded = FoldName(name);
  return std::any_of(entries_.begin(), entries_.end(), [&](const CatalogEntry& e) {
    return IsTableOrQuery(e.type) && FoldName(e.name) == folded;
  });
}

bool Catalog::HasRelationship(std::u16string_view name) const {
  const Bytes folded = FoldName(name);
  return std::any_of(entries_.begin(), entries_.end(), [&](const CatalogEntry& e) {
    return e.type == ObjectType::kRelationship && FoldName(e.name) == folded;
  });
}

std::vector<const CatalogEntry*> Catalog::UserTables() const {
  std::vector<const CatalogEntry*> tables;
  for (const auto& [name, place] : tables_by_name_)
    if ((entries_[place].flags & object_flags::kNotForUsers) == 0)
      tables.push_back(&entries_[place]);
  return tables;
}

PropertyBlob Catalog::Properties(const CatalogEntry& entry) const {
  const Table::Impl& table = objects_.impl();
  const auto raw = table.rows->Read(entry.row);
  if (!raw) throw Error(ErrorKind::kDamaged, "an object's row is missing", entry.row.page);
  const std::size_t column = ColumnAt(objects_, u"LvProp");
  const StoredRow stored(table.definition, raw->bytes, raw->page.number());
  const auto field = stored.GetLongValue(table.definition.columns[column]);
  if (!field) return {};
  return PropertyBlob::Parse(table.long_values[column]->Read(*field));
}

std::vector<AccessRight> Catalog::RightsTo(std::int32_t object) const {
  std::vector<AccessRight> rights;
  Table::Scan scan = rights_.ScanRows();
  while (const auto row = scan.Next()) {
    if (Get<std::int32_t>(rights_, row->values, u"ObjectId") != object) continue;
    rights.push_back({.object = object,
                      .account = header_.MaskSecurityId(Get<Bytes>(rights_, row->values, u"SID")),
                      .mask = Get<std::int32_t>(rights_, row->values, u"ACM"),
                      .inheritable = Get<bool>(rights_, row->values, u"FInheritable")});
  }
  return rights;
}

std::int32_t Catalog::NextObjectId() const {
  std::int32_t next = std::numeric_limits<std::int32_t>::min();
  for (const CatalogEntry& entry : entries_)
    if (entry.id < 0) next = std::max(next, entry.id + 1);
  return next;
}

void Catalog::Add(const CatalogEntry& entry, const Bytes& properties) {
  const Date now{CurrentDays()};
  Row row = NamedRow(objects_, {{u"Id", entry.id},
                                {u"ParentId", entry.parent},
                                {u"Name", entry.name},
                                {u"Type", static_cast<std::int16_t>(entry.type)},
                                {u"DateCreate", now},
                                {u"DateUpdate", now},
                                {u"Owner", header_.MaskSecurityId(entry.owner)},
                                {u"Flags", static_cast<std::int32_t>(entry.flags)}});
  if (!properties.empty()) row[ColumnAt(objects_, u"LvProp")] = properties;
  CatalogEntry added = entry;
  added.row = objects_.impl().Insert(row);
  Remember(std::move(added));
}

void Catalog::AddRight(const AccessRight& right) {
  Row row = NamedRow(rights_, {{u"ObjectId", right.object},
                               {u"SID", header_.MaskSecurityId(right.account)},
                               {u"ACM", right.mask},
                               {u"FInheritable", right.inheritable}});
  rights_.impl().Insert(row);
}

void Catalog::InheritRights(std::int32_t object, std::int32_t container) {
  const Bytes owner = ToBytes(account::kAdmin);
  std::vector<AccessRight> inherited;
  for (const AccessRight& right : RightsTo(container)) {
    if (!right.inheritable) continue;
    AccessRight own{.object = object, .account = right.account, .mask = right.mask};
    if (IsAccount(right.account, account::kCreator)) {
      own.account = owner;
      if (container == object_id::kTables) own.mask = access_mask::kOwnerOfTable;
    }
    const auto same = std::find_if(inherited.begin(), inherited.end(),
                                   [&](const AccessRight& r) { return r.account == own.account; });
    if (same == inherited.end()) {
      inherited.push_back(own);
    } else {
      same->mask |= own.mask;
    }
  }
  for (const AccessRight& right : inherited) AddRight(right);
}

void Catalog::MarkChanged(std::int32_t object) {
  const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const CatalogEntry& e) { return e.id == object; });
  if (entry == entries_.end()) return;
  std::optional<Row> row = objects_.Read(entry->row);
  if (!row) throw Error(ErrorKind::kDamaged, "an object's row is missing", entry->row.page);
  (*row)[ColumnAt(objects_, u"DateUpdate")] = Date{CurrentDays()};
  objects_.impl().Update(entry->row, *row);
}

}  // namespace jet
