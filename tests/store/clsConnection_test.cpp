// Opening databases of every kind, and the identity that decides which of them is a product table.
#include "store/clsConnection.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "platform/database/database_engine.h"
#include "platform/database/recordset.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/surface_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ConnectionTest : public test_support::ProductTableTest {};

// What cannot be read stays at its default and hides nothing of what can.
TEST_F(ConnectionTest, MissingColumnLeavesOtherValuesReadable) {
  const std::wstring path = folder.Text("unprotected.mdb");
  {
    const auto created = database::DBEngine().CreateDatabase(path);
    created->AppendTable({L"SysDBInfo",
                          {{.Name = L"DBType", .Type = database::DataType::kText, .Size = 20},
                           {.Name = L"VerMinor", .Type = database::DataType::kLong},
                           {.Name = L"Revision", .Type = database::DataType::kLong}},
                          {}});
    const auto writer = test_support::OpenConnection(path, L"");
    database::Recordset info;
    info.Open(L"SysDBInfo", *writer, database::CursorType::kDynamic,
              database::LockType::kOptimistic);
    info.AddNew();
    info(L"DBType") = L"PT";
    info(L"Revision") = std::int32_t{64};
    info.Update();
  }
  clsConnection connection;
  EXPECT_TRUE(connection.MakenJetConnectie(path, L""));
  EXPECT_EQ(connection.AppType, L"");
  EXPECT_EQ(connection.DBType, L"PT");
  EXPECT_EQ(connection.VerMajor, 0);
  EXPECT_EQ(connection.VerMinor, 0) << "a Null";
  EXPECT_EQ(connection.Revision, 64);
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

TEST_F(ConnectionTest, FileThatCannotBeOpenedIsReportedTwice) {
  const std::wstring protected_otherwise = folder.Text("other.pt");
  database::DBEngine().CreateDatabase(protected_otherwise, L";pwd=not that one")->Close();
  const struct {
    const char* what;
    std::wstring path;
    const char* error;
  } cases[] = {
      {"missing file", folder.Text("missing.pt"), "3024: Could not find file "},
      {"no database", files::ToText(folder.Write("text.pt", std::string(9000, 'x'))),
       "3343: Unrecognized database format "},
      {"empty file", files::ToText(folder.Write("empty.pt", "")), "3343: "},
      {"other password", protected_otherwise, "3031: Not a valid password."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(OpenProductTable(c.path));
    const std::vector<std::string> boxes = Boxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_THAT(boxes[0],
                HasSubstr("Procedure = clsConnection.MakenJetConnectie (Function)\r\nError = "));
    EXPECT_THAT(boxes[0], HasSubstr(c.error));
    EXPECT_THAT(boxes[0], testing::Not(HasSubstr(text::WideToUtf8(kProductTablePassword))));
    EXPECT_EQ(boxes[1], "#56 " + text::WideToUtf8(c.path));
    EXPECT_EQ(ProductConnection->Connection, nullptr);
  }
}

TEST_F(ConnectionTest, OnlyProductTablesOfOneVersionAreAccepted) {
  const struct {
    const char* what;
    const wchar_t* column;
    text::Variant value;
    const char* refusal;
  } cases[] = {
      {"other case", L"AppType", L"orvane", "#53 "},
      {"other type", L"DBType", L"PP", "#53 "},
      {"no type", L"DBType", text::Null{}, "#53 "},
      {"minor version", L"VerMinor", std::int32_t{21}, "#54 "},
      {"major version", L"VerMajor", std::int32_t{4}, "#54 "},
      {"no version", L"VerMajor", text::Null{}, "#54 "},
  };
  const std::filesystem::path file = files::ToPath(product_table);
  const std::string accepted = test_support::ReadAll(file);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ProductConnection.reset();
    folder.Write(file.filename(), accepted);
    SetIdentity(c.column, c.value);
    EXPECT_FALSE(OpenProductTable(product_table));
    EXPECT_THAT(Boxes(), ElementsAre(c.refusal + text::WideToUtf8(product_table)));
  }
}

TEST_F(ConnectionTest, DatabaseWithoutIdentityIsNoProductTable) {
  const std::wstring path = folder.Text("other.pt");
  const auto created =
      database::DBEngine().CreateDatabase(path, std::wstring(L";pwd=") + kProductTablePassword);
  EXPECT_FALSE(OpenProductTable(path)) << "no table";
  ProductConnection.reset();
  created->AppendTable(
      {L"SysDBInfo", {{.Name = L"AppType", .Type = database::DataType::kText, .Size = 20}}, {}});
  EXPECT_FALSE(OpenProductTable(path)) << "no row";
  const std::string refusal = "#53 " + text::WideToUtf8(path);
  EXPECT_THAT(Boxes(), ElementsAre(refusal, refusal));
}

TEST_F(ConnectionTest, DroppingTheObjectClosesTheConnectionOfOthers) {
  ASSERT_TRUE(OpenProductTable(product_table));
  const std::shared_ptr<database::Connection> kept = ProductConnection->Connection;
  ASSERT_TRUE(OpenProductTable(product_table));
  EXPECT_FALSE(kept->IsOpen());
  EXPECT_TRUE(ProductConnection->Connection->IsOpen());
  ProductConnection.reset();
  std::filesystem::rename(files::ToPath(product_table), folder / "moved.pt");
  EXPECT_TRUE(OpenProductTable(folder.Text("moved.pt")));
}

}  // namespace
