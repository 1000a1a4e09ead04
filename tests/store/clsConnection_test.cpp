// Opening databases of every kind, and the identity that decides which of them is a product table.
#include "store/clsConnection.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>

#include "platform/database/database_engine.h"
#include "platform/database/recordset.h"
#include "platform/files/paths.h"
#include "store/modProductTable.h"
#include "tests/support/surface_test.h"

namespace {

using test_support::SurfaceTest;
using testing::HasSubstr;

// What a database says about itself; a value that is not set is a Null.
struct Identity {
  std::optional<std::wstring> app_type = L"ORVANE";
  std::optional<std::wstring> db_type = L"PT";
  std::optional<std::int32_t> ver_major = 3;
  std::optional<std::int32_t> ver_minor = 20;
};

template <class T>
text::Variant OrNull(const std::optional<T>& value) {
  return value ? text::Variant(*value) : text::Variant();
}

class ConnectionTest : public SurfaceTest {
 protected:
  // A database that holds the table SysDBInfo, without its column `omitted`, and nothing else.
  std::wstring MakeDatabase(const std::wstring& password, const std::wstring& omitted = L"") {
    std::wstring path = folder.Text("a.pt");
    std::filesystem::remove(files::ToPath(path));
    const auto created =
        database::DBEngine().CreateDatabase(path, password.empty() ? L"" : L";pwd=" + password);
    database::TableDef table{L"SysDBInfo", {}, {}};
    for (const wchar_t* name : {L"AppType", L"DBType"}) {
      if (name != omitted) {
        table.Fields.push_back({.Name = name, .Type = database::DataType::kText, .Size = 20});
      }
    }
    for (const wchar_t* name : {L"VerMajor", L"VerMinor", L"Revision"}) {
      table.Fields.push_back({.Name = name, .Type = database::DataType::kLong});
    }
    created->AppendTable(table);
    created->Close();
    return path;
  }

  static void AddIdentity(const std::wstring& path, const std::wstring& password,
                          const Identity& identity) {
    const auto connection = test_support::OpenConnection(path, password);
    database::Recordset info;
    info.Open(L"SysDBInfo", *connection, database::CursorType::kDynamic,
              database::LockType::kOptimistic);
    info.AddNew();
    info(L"AppType") = OrNull(identity.app_type);
    info(L"DBType") = OrNull(identity.db_type);
    info(L"VerMajor") = OrNull(identity.ver_major);
    info(L"VerMinor") = OrNull(identity.ver_minor);
    info(L"Revision") = std::int32_t{64};
    info.Update();
  }

  // The texts of the message boxes so far, which are forgotten.
  std::vector<std::wstring> Messages() {
    std::vector<std::wstring> shown;
    for (const auto& message : prompt.messages) shown.push_back(message.text);
    prompt.messages.clear();
    return shown;
  }
};

TEST_F(ConnectionTest, ReadsIdentityOfUnprotectedDatabase) {
  const std::wstring path = MakeDatabase(L"");
  AddIdentity(path, L"", {});
  clsConnection connection;
  EXPECT_TRUE(connection.MakenJetConnectie(path, L""));
  EXPECT_TRUE(connection.Connection->IsOpen());
  EXPECT_EQ(connection.AppType, L"ORVANE");
  EXPECT_EQ(connection.DBType, L"PT");
  EXPECT_EQ(connection.VerMajor, 3);
  EXPECT_EQ(connection.VerMinor, 20);
  EXPECT_EQ(connection.Revision, 64);
  EXPECT_TRUE(Messages().empty());
}

// What cannot be read stays at its default and hides nothing of what can.
TEST_F(ConnectionTest, MissingColumnLeavesOtherValuesReadable) {
  const std::wstring path = MakeDatabase(L"", L"AppType");
  {
    const auto writer = test_support::OpenConnection(path, L"");
    database::Recordset info;
    info.Open(L"SysDBInfo", *writer, database::CursorType::kDynamic,
              database::LockType::kOptimistic);
    info.AddNew();
    info(L"DBType") = L"PT";
    info(L"VerMinor") = std::int32_t{20};
    info.Update();
  }
  clsConnection connection;
  EXPECT_TRUE(connection.MakenJetConnectie(path, L""));
  EXPECT_EQ(connection.AppType, L"");
  EXPECT_EQ(connection.DBType, L"PT");
  EXPECT_EQ(connection.VerMajor, 0);
  EXPECT_EQ(connection.VerMinor, 20);
  EXPECT_TRUE(Messages().empty());
}

TEST_F(ConnectionTest, FileThatCannotBeOpenedIsReportedTwice) {
  const std::wstring other = L"not that password";
  const struct {
    const char* what;
    std::wstring path;
    const wchar_t* error;
  } cases[] = {
      {"missing file", folder.Text("missing.pt"), L"3024: Could not find file "},
      {"missing folder", folder.Text(std::filesystem::path("missing") / "a.pt"), L"3044: "},
      {"no database", files::ToText(folder.Write("text.pt", std::string(9000, 'x'))),
       L"3343: Unrecognized database format "},
      {"empty file", files::ToText(folder.Write("empty.pt", "")), L"3343: "},
      {"other password", MakeDatabase(other), L"3031: Not a valid password."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(OpenProductTable(c.path));
    const std::vector<std::wstring> messages = Messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_THAT(messages[0],
                HasSubstr(L"Procedure = clsConnection.MakenJetConnectie (Function)\r\nError = "));
    EXPECT_THAT(messages[0], HasSubstr(c.error));
    EXPECT_THAT(messages[0], testing::Not(HasSubstr(kProductTablePassword)));
    EXPECT_EQ(messages[1], L"#56 " + c.path);
    EXPECT_EQ(ProductConnection->Connection, nullptr);
  }
}

TEST_F(ConnectionTest, OnlyProductTablesOfOneVersionAreAccepted) {
  const struct {
    const char* what;
    std::optional<Identity> identity;  // none: no row
    std::wstring refusal;              // empty: accepted
  } cases[] = {
      {"product table", Identity{}, L""},
      {"no row", std::nullopt, L"#53 "},
      {"other case", Identity{.app_type = L"orvane"}, L"#53 "},
      {"other type", Identity{.db_type = L"PP"}, L"#53 "},
      {"no type", Identity{.db_type = std::nullopt}, L"#53 "},
      {"minor version", Identity{.ver_minor = 21}, L"#54 "},
      {"major version", Identity{.ver_major = 4}, L"#54 "},
      {"no version", Identity{.ver_major = std::nullopt}, L"#54 "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ProductConnection.reset();
    const std::wstring path = MakeDatabase(kProductTablePassword);
    if (c.identity) AddIdentity(path, kProductTablePassword, *c.identity);
    EXPECT_EQ(OpenProductTable(path), c.refusal.empty());
    const std::vector<std::wstring> messages = Messages();
    if (c.refusal.empty()) {
      EXPECT_TRUE(messages.empty());
    } else {
      EXPECT_THAT(messages, testing::ElementsAre(c.refusal + path));
    }
  }
}

TEST_F(ConnectionTest, DatabaseWithoutIdentityTableIsNoProductTable) {
  const std::wstring path = folder.Text("other.pt");
  database::DBEngine()
      .CreateDatabase(path, std::wstring(L";pwd=") + kProductTablePassword)
      ->Close();
  EXPECT_FALSE(OpenProductTable(path));
  EXPECT_THAT(Messages(), testing::ElementsAre(L"#53 " + path));
}

// An engine object may keep its reference; the file must be free all the same.
TEST_F(ConnectionTest, DroppingTheObjectClosesTheConnectionOfOthers) {
  const std::wstring path = MakeDatabase(kProductTablePassword);
  AddIdentity(path, kProductTablePassword, {});
  ASSERT_TRUE(OpenProductTable(path));
  const std::shared_ptr<database::Connection> kept = ProductConnection->Connection;
  ASSERT_TRUE(OpenProductTable(path));
  EXPECT_FALSE(kept->IsOpen());
  EXPECT_TRUE(ProductConnection->Connection->IsOpen());
  ProductConnection.reset();
  std::filesystem::rename(files::ToPath(path), folder / "moved.pt");
  EXPECT_TRUE(OpenProductTable(folder.Text("moved.pt")));
}

}  // namespace
