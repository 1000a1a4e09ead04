// Rows that refer to rows: what is refused, what follows, what a change reaches through others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using enum ErrorKind;

std::optional<Failure> Fails(ErrorKind kind, std::u16string name) {
  return Failure{kind, {std::move(name)}};
}

// Parents (Id, Name) and children (Id, Parent, Name), both with explicit keys.
void CreateFamily(TestDatabase& database, const RelationshipSpec& options) {
  const std::vector<IndexSpec> key = {
      {.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true}};
  database->CreateTable({.name = u"Parents",
                         .columns = {{.name = u"Id"}, {.name = u"Name", .type = ColumnType::kMemo}},
                         .indexes = key});
  database->CreateTable({.name = u"Children",
                         .columns = {{.name = u"Id"},
                                     {.name = u"Parent"},
                                     {.name = u"Name", .type = ColumnType::kMemo}},
                         .indexes = key});
  RelationshipSpec spec = options;
  spec.name = u"Family";
  spec.table = u"Children";
  spec.columns = {u"Parent"};
  spec.referenced_table = u"Parents";
  spec.referenced_columns = {u"Id"};
  database->CreateRelationship(spec);
}

RowId Add(Table& table, Row row) { return table.Insert(row); }

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

TEST(RelationshipTest, ARowNeedsTheRowItRefersTo) {
  TestDatabase database;
  CreateFamily(database, {});
  Table& parents = database[u"Parents"];
  Table& children = database[u"Children"];
  const auto refused = Fails(kNoParentRow, u"Parents");

  EXPECT_EQ(FailureOf([&] { Add(children, {1, 7, Null{}}); }), refused);
  const RowId orphan = Add(children, {1, Null{}, Null{}});
  EXPECT_EQ(FailureOf([&] { ChangeValue(children, orphan, 1, 7); }), refused);
  const RowId parent = Add(parents, {7, Null{}});
  ChangeValue(children, orphan, 1, 7);

  EXPECT_EQ(FailureOf([&] { parents.Delete(parent); }), Fails(kHasChildRows, u"Children"));
  EXPECT_EQ(FailureOf([&] { ChangeValue(parents, parent, 0, 8); }),
            Fails(kHasChildRows, u"Children"));
  ChangeValue(parents, parent, 1, u"another name");  // not the key
  children.Delete(orphan);
  ChangeValue(parents, parent, 0, 8);
  parents.Delete(parent);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, KeysOfSeveralColumnsMatchInTheOrderOfTheParentsIndexAndNullsReferToNothing) {
  TestDatabase database;
  database->CreateTable(
      {.name = u"P",
       .columns = {{.name = u"A"}, {.name = u"B", .type = ColumnType::kText, .size = 10}},
       .indexes = {{.name = u"Key", .columns = {{u"B", false}, {u"A"}}, .unique = true}}});
  database->CreateTable(
      {.name = u"C",
       .columns = {{.name = u"X", .type = ColumnType::kText, .size = 30}, {.name = u"Y"}}});
  database->CreateRelationship({.name = u"R",
                                .table = u"C",
                                .columns = {u"Y", u"X"},
                                .referenced_table = u"P",
                                .referenced_columns = {u"A", u"B"},
                                .cascade_updates = true});
  Table& parents = database[u"P"];
  Table& children = database[u"C"];
  const RowId parent = Add(parents, {1, u"one"});
  EXPECT_EQ(FailureOf([&] { Add(children, {u"two", 1}); }), Fails(kNoParentRow, u"P"));
  Add(children, {u"ONE", 1});
  Add(children, {u"two", Null{}});
  Add(children, {Null{}, 9});
  ChangeValue(parents, parent, 1, u"uno");
  EXPECT_THAT(ColumnOf(children, 0), ElementsAre(Value(u"uno"), Value(u"two"), Value(Null{})));
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, CascadesReachAllReferencingRowsAndTheirLongValuesStay) {
  TestDatabase database;
  CreateFamily(database, {.cascade_updates = true, .cascade_deletes = true});
  Table& parents = database[u"Parents"];
  Table& children = database[u"Children"];
  const std::u16string long_name(3000, u'n');
  const RowId parent = Add(parents, {1, long_name});
  Add(parents, {2, Null{}});
  for (int i = 0; i < 300; ++i) Add(children, {i, i % 2 + 1, long_name});

  ChangeValue(parents, parent, 0, 3);
  for (const StoredRowValues& child : RowsOf(children)) {
    EXPECT_EQ(child.values[1], Value(std::get<int>(child.values[0]) % 2 == 0 ? 3 : 2));
    EXPECT_EQ(child.values[2], Value(long_name));
  }
  parents.Delete(parent);
  EXPECT_EQ(RowsOf(children).size(), 150u);
  EXPECT_EQ(children.row_count(), 150u);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, ReferencesCanBeSetToNullByADeletion) {
  TestDatabase database;
  CreateFamily(database, {});
  for (const char16_t* table : {u"Parents", u"Children"})
    database.EditDefinition(table, [](TableDefinition& definition) {
      for (LogicalIndex& index : definition.logical_indexes)
        if (index.kind == IndexKind::kRelationship) index.on_delete = RelationAction::kSetNull;
    });
  const RowId parent = Add(database[u"Parents"], {1, Null{}});
  Add(database[u"Children"], {1, 1, u"name"});
  database[u"Parents"].Delete(parent);
  EXPECT_THAT(RowsOf(database[u"Children"]).at(0).values,
              ElementsAre(Value(1), Value(Null{}), Value(u"name")));
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(RelationshipTest, ACascadeObeysTheRulesOfTheTablesItReaches) {
  TestDatabase database;
  CreateFamily(database, {.cascade_updates = true, .cascade_deletes = true});
  database->CreateTable({.name = u"Grandchildren", .columns = {{.name = u"Child"}}, .indexes = {}});
  database->CreateRelationship({.name = u"Grand",
                                .table = u"Grandchildren",
                                .columns = {u"Child"},
                                .referenced_table = u"Children",
                                .referenced_columns = {u"Id"}});
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

// A table of rows (Id, Boss) that refers to itself.
void CreateStaff(TestDatabase& database, bool cascade) {
  database->CreateTable(
      {.name = u"Staff",
       .columns = {{.name = u"Id"}, {.name = u"Boss"}},
       .indexes = {{.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true}}});
  database->CreateRelationship({.name = u"Bosses",
                                .table = u"Staff",
                                .columns = {u"Boss"},
                                .referenced_table = u"Staff",
                                .referenced_columns = {u"Id"},
                                .cascade_updates = cascade,
                                .cascade_deletes = cascade});
}

TEST(RelationshipTest, TablesMayReferToThemselvesAlsoInCircles) {
  TestDatabase database;
  CreateStaff(database, true);
  Table& staff = database[u"Staff"];
  const RowId one = Add(staff, {1, 1});  // refers to itself from the first moment
  ChangeValue(staff, one, 0, 5);
  EXPECT_THAT(*staff.Read(one), ElementsAre(Value(5), Value(5)));

  const RowId two = Add(staff, {2, 5});
  const RowId three = Add(staff, {3, 2});
  ChangeValue(staff, one, 1, 3);  // 5 -> 3 -> 2 -> 5
  ChangeValue(staff, two, 0, 7);
  EXPECT_THAT(*staff.Read(three), ElementsAre(Value(3), Value(7)));
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
  Row both = {2, 2};
  staff.Update(one, both);  // key and reference at once
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
      lines.push_back(
          {old_row == nullptr ? Row{} : *old_row, new_row == nullptr ? Row{} : *new_row});
    }
    std::vector<std::pair<Row, Row>> lines;
  };
  TestDatabase database;
  CreateFamily(database, {.cascade_updates = true, .cascade_deletes = true});
  Log log;
  database[u"Children"].AddObserver(&log);
  const RowId parent = Add(database[u"Parents"], {1, Null{}});
  Add(database[u"Children"], {4, 1, u"name"});
  ChangeValue(database[u"Parents"], parent, 0, 2);
  EXPECT_TRUE(FailureOf([&] { Add(database[u"Children"], {4, 2, Null{}}); }));
  database[u"Parents"].Delete(parent);
  const Row first = {4, 1, u"name"};
  const Row second = {4, 2, u"name"};
  EXPECT_THAT(log.lines, ElementsAre(std::pair(Row{}, first), std::pair(first, second),
                                     std::pair(second, Row{})));
  database[u"Children"].RemoveObserver(&log);
  Add(database[u"Children"], {4, Null{}, Null{}});
  EXPECT_EQ(log.lines.size(), 3u);
}

TEST(RelationshipTest, HalfPresentRelationshipsRefuseChangesOfTheTable) {
  struct Case {
    const char* what;
    const char16_t* table;
    void (*change)(LogicalIndex&);
  };
  const std::vector<Case> cases = {
      {"points nowhere", u"Children", [](LogicalIndex& end) { end.other_table = 999; }},
      {"no partner", u"Children", [](LogicalIndex& end) { end.other_number = 99; }},
      {"parent points elsewhere", u"Parents", [](LogicalIndex& end) { end.other_number = 99; }},
      {"without index", u"Children",
       [](LogicalIndex& end) { end.side = RelationSide::kRefersUnindexed; }},
      {"ends differ", u"Parents",
       [](LogicalIndex& end) { end.on_delete = RelationAction::kCascade; }},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    TestDatabase database;
    CreateFamily(database, {});
    Add(database[u"Parents"], {1, Null{}});
    const RowId child = Add(database[u"Children"], {1, 1, Null{}});
    database.EditDefinition(test.table, [&](TableDefinition& definition) {
      for (LogicalIndex& index : definition.logical_indexes)
        if (index.kind == IndexKind::kRelationship) test.change(index);
    });
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
