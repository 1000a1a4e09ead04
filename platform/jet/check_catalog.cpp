// Reads the catalog for a file check.
#include "platform/jet/check_catalog.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "platform/jet/catalog.h"
#include "platform/jet/check_tables.h"
#include "platform/jet/object_name.h"
#include "platform/jet/row_codec.h"

namespace jet::check {
namespace {

constexpr PageNumber kObjects = 2;
constexpr PageNumber kRights = 3;
constexpr PageNumber kRelationships = 5;
constexpr std::int32_t kNotEnforced = 2;  // in a relationship's grbit

// A system table's row, by column name.
class NamedRow {
 public:
  NamedRow(const CheckedTable& table, ByteView bytes)
      : definition_(table.definition), row_(definition_, bytes.bytes(), bytes.number()) {}

  template <typename T>
  T Get(std::u16string_view name) const {
    const Value value = row_.Get(Column(name));
    const T* found = std::get_if<T>(&value);
    return found == nullptr ? T{} : *found;
  }

 private:
  const ColumnDefinition& Column(std::u16string_view name) const {
    const auto found = std::ranges::find(definition_.columns, name, &ColumnDefinition::name);
    if (found == definition_.columns.end())
      throw Error(ErrorKind::kDamaged, "a system table lacks a column", definition_.page);
    return *found;
  }

  const TableDefinition& definition_;
  StoredRow row_;
};

// Calls with each row of a system table; damage becomes a problem.
void ForEachNamedRow(State& state, PageNumber page,
                     const std::function<void(const NamedRow&)>& action) {
  const CheckedTable* table = FindTable(state, page);
  if (table == nullptr) return;
  // Loading more tables moves the one at hand.
  const CheckedTable copy = *table;
  ForEachRow(
      state.pager, copy, [&](RowId, ByteView row) { action(NamedRow(copy, row)); },
      [&](RowId, const Error& error) { state.Report(copy.name, error); });
}

struct Object {
  std::int32_t id = 0;
  std::u16string name;
  ObjectType type = ObjectType::kTable;
  std::uint32_t flags = 0;
};

Object ReadObject(const NamedRow& row) {
  return {row.Get<std::int32_t>(u"Id"), row.Get<std::u16string>(u"Name"),
          static_cast<ObjectType>(row.Get<std::int16_t>(u"Type")),
          static_cast<std::uint32_t>(row.Get<std::int32_t>(u"Flags"))};
}

// Others are documents that some programs keep in the catalog.
bool NeedsRights(ObjectType type) {
  return type == ObjectType::kTable || type == ObjectType::kQuery ||
         type == ObjectType::kRelationship || type == ObjectType::kContainer;
}

void CheckRights(State& state) {
  std::set<std::int32_t> objects_with_rights;
  ForEachNamedRow(state, kRights, [&](const NamedRow& row) {
    objects_with_rights.insert(row.Get<std::int32_t>(u"ObjectId"));
  });
  ForEachNamedRow(state, kObjects, [&](const NamedRow& row) {
    const Object object = ReadObject(row);
    if (NeedsRights(object.type) && !objects_with_rights.contains(object.id))
      state.problems.Add("object ", ToUtf8(object.name), " has no rights in the catalog");
    const auto owner = row.Get<Bytes>(u"Owner");
    if (object.id == static_cast<std::int32_t>(kObjects) &&
        !std::ranges::equal(state.header.MaskSecurityId(owner), account::kEngine))
      state.problems.Add("the catalog's owner does not fit page 0");
  });
}

void CheckRelationshipRows(State& state) {
  std::set<std::pair<Bytes, Bytes>> ends;  // table, index
  for (const CheckedTable& table : state.tables) {
    for (const LogicalIndex& index : table.definition.logical_indexes) {
      if (index.kind == IndexKind::kRelationship)
        ends.emplace(FoldName(table.catalog_name), FoldName(index.name));
    }
  }
  ForEachNamedRow(state, kRelationships, [&](const NamedRow& row) {
    if ((row.Get<std::int32_t>(u"grbit") & kNotEnforced) != 0) return;
    const auto name = row.Get<std::u16string>(u"szRelationship");
    if (!ends.contains({FoldName(row.Get<std::u16string>(u"szObject")), FoldName(name)}))
      state.problems.Add("relationship ", ToUtf8(name), " has no index in the table that refers");
  });
}

}  // namespace

bool LoadCatalog(State& state) {
  LoadTable(state, kObjects, u"MSysObjects", /*is_user=*/false);
  if (FindTable(state, kObjects) == nullptr) return false;
  ForEachNamedRow(state, kObjects, [&](const NamedRow& row) {
    const Object object = ReadObject(row);
    if (object.type != ObjectType::kTable || object.id == static_cast<std::int32_t>(kObjects))
      return;
    const bool is_user = (object.flags & object_flags::kNotForUsers) == 0;
    LoadTable(state, static_cast<PageNumber>(object.id), object.name, is_user);
  });
  for (const PageNumber page : {kRights, kRelationships}) {
    if (FindTable(state, page) == nullptr)
      state.problems.Add("the system table on page ", page, " is missing");
  }
  return true;
}

void CheckCatalog(State& state) {
  CheckRights(state);
  CheckRelationshipRows(state);
}

}  // namespace jet::check
