// The catalog: which objects the file has, who may use them, what their properties are.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/jet/database_header.h"
#include "platform/jet/property_blob.h"
#include "platform/jet/table.h"

namespace jet {

// Object types as they stand in the catalog. Stored in files: never renumber.
enum class ObjectType : std::int16_t {
  kTable = 1,
  kDatabase = 2,
  kContainer = 3,
  kLinkedOdbcTable = 4,
  kQuery = 5,
  kLinkedTable = 6,
  kRelationship = 8,
};

namespace object_flags {
inline constexpr std::uint32_t kSystem = 0x80000000;
inline constexpr std::uint32_t kHidden = 0x8;
inline constexpr std::uint32_t kHostSystem = 0x2;  // tables that the host keeps for itself
inline constexpr std::uint32_t kNotForUsers = kSystem | kHidden | kHostSystem;
}  // namespace object_flags

// Ids of the containers, and of the object that stands for the database.
namespace object_id {
inline constexpr std::int32_t kRoot = 0x0f000000;
inline constexpr std::int32_t kTables = 0x0f000001;
inline constexpr std::int32_t kDatabases = 0x0f000002;
inline constexpr std::int32_t kRelationships = 0x0f000003;
inline constexpr std::int32_t kDatabase = 0x10000000;
}  // namespace object_id

// A right that an account has to an object.
struct AccessRight {
  std::int32_t object = 0;
  Bytes account;  // security id in clear
  std::int32_t mask = 0;
  bool inheritable = false;
};

namespace access_mask {
inline constexpr std::int32_t kOwnerOfTable = 0xffeff;
}  // namespace access_mask

struct CatalogEntry {
  std::int32_t id = 0;  // of a table: its definition page
  std::int32_t parent = 0;
  std::u16string name{};
  ObjectType type = ObjectType::kTable;
  std::uint32_t flags = 0;
  Bytes owner{};  // security id in clear
  RowId row{};    // in the table of objects
};

// Objects and rights of one file, read once and kept in step with what Add writes.
// The two tables must outlive it. Changes need a transaction; after one that failed call Reload.
class Catalog {
 public:
  // Over the tables of objects and of rights; Reload before use.
  Catalog(Table& objects, Table& rights, const DatabaseHeader& header);

  void Reload();

  const std::vector<CatalogEntry>& entries() const { return entries_; }
  // A table by name without case; nullptr when there is none.
  const CatalogEntry* FindTable(std::u16string_view name) const;
  const CatalogEntry* FindTable(PageNumber definition) const;
  // Whether a table or query of this name exists.
  bool HasTableOrQuery(std::u16string_view name) const;
  bool HasRelationship(std::u16string_view name) const;
  // Tables a user sees, by name.
  std::vector<const CatalogEntry*> UserTables() const;

  PropertyBlob Properties(const CatalogEntry& entry) const;
  std::vector<AccessRight> RightsTo(std::int32_t object) const;

  // One past the highest id of the objects that are no table.
  std::int32_t NextObjectId() const;

  // Adds an object's row. `properties` may be empty. Its row id is ignored.
  void Add(const CatalogEntry& entry, const Bytes& properties);
  void AddRight(const AccessRight& right);
  // Gives a new object the rights that its container passes on.
  void InheritRights(std::int32_t object, std::int32_t container);
  // Notes that an object's design changed now.
  void MarkChanged(std::int32_t object);

 private:
  void Remember(CatalogEntry entry);

  Table& objects_;
  Table& rights_;
  const DatabaseHeader& header_;
  std::vector<CatalogEntry> entries_;
  std::map<Bytes, std::size_t> tables_by_name_;  // folded name, place in entries_
};

}  // namespace jet
