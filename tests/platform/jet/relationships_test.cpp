// Rows that refer to rows: what is refused, what follows, what a change reaches through others.
#include <gmock/gmock.h>

#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum ErrorKind;
using enum ColumnType;

std::optional<Failure> Fails(ErrorKind kind, std::u16string name) {
  return Failure{kind, {std::move(name)}};
}

// Parents (Id, Name) and children (Id, Parent, Name), both with explicit keys.
void CreateFamily(TestDatabase& database, bool cascade) {
  database->CreateTable({u"Parents", {{u"Id"}, {u"Name", kMemo}}, {PrimaryKey(u"Id")}});
  database->CreateTable(
      {u"Children", {{u"Id"}, {u"Parent"}, {u"Name", kMemo}}, {PrimaryKey(u"Id")}});
  database->CreateRelationship(
      {u"Family", u"Children", {u"Parent"}, u"Parents", {u"Id"}, true, cascade, cascade});
}

// A table of rows (Id, Boss) that refers to itself.
void CreateStaff(TestDatabase& database, bool cascade) {
  database->CreateTable({u"Staff", {{u"Id"}, {u"Boss"}}, {PrimaryKey(u"Id")}});
  database->CreateRelationship(
      {u"Bosses", u"Staff", {u"Boss"}, u"Staff", {u"Id"}, true, cascade, cascade});
}

void ChangeValue(Table& table, RowId id, std::size_t column, Value value) {
  Row row = *table.Read(id);
  row[column] = std::move(value);
  table.Update(id, row);
}

std::vector<Value> ColumnOf(const Table& table, std::size_t column) {
  std::vector<Value> values;
  for (const StoredRowValues& row : RowsOf(table)) values.push_back(row.values[column]);
  return values;
}

void ChangeRelation(TestDatabase& database, std::u16string_view table,
                    const std::function<void(LogicalIndex&)>& change) {
  database.EditDefinition(table, [&](TableDefinition& definition) {
    for (LogicalIndex& index : definition.logical_indexes)
      if (index.kind == IndexKind::kRelationship) change(index);
  });
}

TEST(RelationshipTest, ARowNeedsTheRowItRefersTo) {
  TestDatabase database;
  CreateFamily(database, false);
  Table& parents = database[u"Parents"];
  Table& children = database[u"Children"];
  const auto no_parent = Fails(kNoParentRow, u"Parents");
  const auto has_children = Fails(kHasChildRows, u"Children");
  EXPECT_EQ(FailureOf([&] { Add(children, {1, 7, Null{}}); }), no_parent);
  const RowId orphan = Add(children, {1, Null{}, Null{}});
  EXPECT_EQ(FailureOf([&] { ChangeValue(children, orphan, 1, 7); }), no_parent);
  const RowId parent = Add(parents, {7, Null{}});
  ChangeValue(children, orphan, 1, 7);
  EXPECT_EQ(FailureOf([&] { parents.Delete(parent); }), has_children);
  EXPECT_EQ(FailureOf([&] { ChangeValue(parents, parent, 0, 8); }), has_children);
  ChangeValue(parents, parent, 1, u"another name");  // not the key
  children.Delete(orphan);
  ChangeValue(parents, parent, 0, 8);
  parents.Delete(parent);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, KeysOfSeveralColumnsMatchInTheOrderOfTheParentsIndexAndNullsReferToNothing) {
  TestDatabase database;
  database->CreateTable({u"P",
                         {{u"A"}, {u"B", kText, 10}},
                         {{.name = u"Key", .columns = {{u"B", false}, {u"A"}}, .unique = true}}});
  database->CreateTable({u"C", {{u"X", kText, 30}, {u"Y"}}});
  database->CreateRelationship({u"R", u"C", {u"Y", u"X"}, u"P", {u"A", u"B"}, true, true});
  Table& children = database[u"C"];
  const RowId parent = Add(database[u"P"], {1, u"one"});
  EXPECT_EQ(FailureOf([&] { Add(children, {u"two", 1}); }), Fails(kNoParentRow, u"P"));
  Add(children, {u"ONE", 1});
  Add(children, {u"two", Null{}});
  Add(children, {Null{}, 9});
  ChangeValue(database[u"P"], parent, 1, u"uno");
  EXPECT_THAT(ColumnOf(children, 0), ElementsAre(Value(u"uno"), Value(u"two"), Value(Null{})));
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, ReferencesCanBeSetToNullByADeletion) {
  TestDatabase database;
  CreateFamily(database, false);
  for (const char16_t* table : {u"Parents", u"Children"})
    ChangeRelation(database, table,
                   [](LogicalIndex& end) { end.on_delete = RelationAction::kSetNull; });
  const RowId parent = Add(database[u"Parents"], {1, Null{}});
  Add(database[u"Children"], {1, 1, u"name"});
  database[u"Parents"].Delete(parent);
  EXPECT_EQ(RowsOf(database[u"Children"]).at(0).values, (Row{1, Null{}, u"name"}));
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, ACascadeObeysTheRulesOfTheTablesItReaches) {
  TestDatabase database;
  CreateFamily(database, true);
  database->CreateTable({u"Grandchildren", {{u"Child"}}});
  database->CreateRelationship({u"Grand", u"Grandchildren", {u"Child"}, u"Children", {u"Id"}});
  database->CreateIndex(u"Children",
                        {.name = u"OneEach", .columns = {{u"Parent"}}, .unique = true});
  Table& parents = database[u"Parents"];
  const RowId one = Add(parents, {1, Null{}});
  Add(database[u"Children"], {10, 1, Null{}});
  const RowId grandchild = Add(database[u"Grandchildren"], {10});
  const std::vector<PageBytes> before = database.disk().Snapshot();
  // The child would have to go, but something refers to it.
  EXPECT_EQ(FailureOf([&] { parents.Delete(one); }), Fails(kHasChildRows, u"Grandchildren"));
  EXPECT_TRUE(database.disk().Snapshot() == before);
  database[u"Grandchildren"].Delete(grandchild);
  ChangeValue(parents, one, 0, 2);  // its child follows, alone in its unique index
  parents.Delete(one);
  EXPECT_THAT(RowsOf(database[u"Children"]), IsEmpty());
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, TablesMayReferToThemselvesAlsoInCircles) {
  TestDatabase database;
  CreateStaff(database, true);
  Table& staff = database[u"Staff"];
  const RowId one = Add(staff, {1, 1});  // refers to itself from the first moment
  ChangeValue(staff, one, 0, 5);
  EXPECT_EQ(*staff.Read(one), (Row{5, 5}));
  const RowId two = Add(staff, {2, 5});
  const RowId three = Add(staff, {3, 2});
  ChangeValue(staff, one, 1, 3);  // 5 -> 3 -> 2 -> 5
  ChangeValue(staff, two, 0, 7);
  EXPECT_EQ(*staff.Read(three), (Row{3, 7}));
  Add(staff, {9, Null{}});
  staff.Delete(three);  // and with it the whole circle
  EXPECT_THAT(ColumnOf(staff, 0), ElementsAre(Value(9)));
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, ARowThatRefersToItselfMayGoWithoutCascades) {
  TestDatabase database;
  CreateStaff(database, false);
  Table& staff = database[u"Staff"];
  const RowId one = Add(staff, {1, 1});
  EXPECT_EQ(FailureOf([&] { ChangeValue(staff, one, 0, 2); }), Fails(kHasChildRows, u"Staff"));
  staff.Update(one, {2, 2});  // key and reference at once
  const RowId other = Add(staff, {3, 2});
  EXPECT_EQ(FailureOf([&] { staff.Delete(one); }), Fails(kHasChildRows, u"Staff"));
  staff.Delete(other);
  staff.Delete(one);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, ObserversHearOfEveryRowAChangeReaches) {
  class Log final : public TableObserver {
   public:
    void RowChanged(RowId, const Row* old_row, const Row* new_row) override {
      for (const Row* row : {old_row, new_row}) rows.push_back(row == nullptr ? Row{} : *row);
    }
    std::vector<Row> rows;
  };
  TestDatabase database;
  CreateFamily(database, true);
  Log log;
  database[u"Children"].AddObserver(&log);
  const RowId parent = Add(database[u"Parents"], {1, Null{}});
  Add(database[u"Children"], {4, 1, u"name"});
  ChangeValue(database[u"Parents"], parent, 0, 2);
  EXPECT_TRUE(FailureOf([&] { Add(database[u"Children"], {4, 2, Null{}}); }));
  database[u"Parents"].Delete(parent);
  database[u"Children"].RemoveObserver(&log);
  Add(database[u"Children"], {4, Null{}, Null{}});
  const Row first = {4, 1, u"name"};
  const Row second = {4, 2, u"name"};
  EXPECT_THAT(log.rows, ElementsAre(Row{}, first, first, second, second, Row{}));
}

TEST(RelationshipTest, HalfPresentRelationshipsRefuseChangesOfTheTable) {
  const struct {
    const char16_t* table;
    void (*change)(LogicalIndex&);
  } cases[] = {
      {u"Children", [](LogicalIndex& end) { end.other_table = 999; }},
      {u"Children", [](LogicalIndex& end) { end.other_number = 99; }},
      {u"Parents", [](LogicalIndex& end) { end.other_number = 99; }},
      {u"Children", [](LogicalIndex& end) { end.side = RelationSide::kRefersUnindexed; }},
      {u"Parents", [](LogicalIndex& end) { end.on_delete = RelationAction::kCascade; }},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(&test - cases);
    TestDatabase database;
    CreateFamily(database, false);
    Add(database[u"Parents"], {1, Null{}});
    const RowId child = Add(database[u"Children"], {1, 1, Null{}});
    ChangeRelation(database, test.table, test.change);
    const std::vector<PageBytes> before = database.disk().Snapshot();
    EXPECT_EQ(FailureOf([&] { database[u"Children"].Delete(child); }),
              Fails(kNotSupported, u"Children"));
    EXPECT_EQ(FailureOf([&] {
                Add(database[u"Parents"], {2, Null{}});
              }),
              Fails(kNotSupported, u"Parents"));
    EXPECT_TRUE(database.disk().Snapshot() == before);
    EXPECT_EQ(RowsOf(database[u"Children"]).size(), 1u);
  }
}

}  // namespace
}  // namespace jet::test
