// The services of the program for a test of its surface, and a product table to work on.
#include "tests/support/surface_test.h"

#include <filesystem>

#include "app/modMain.h"
#include "demo/product_table.h"
#include "platform/database/recordset.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "platform/text/conversion.h"
#include "platform/text/locale.h"
#include "store/modProductTable.h"

namespace test_support {
namespace {

// Made once: a copy is quicker than another new one.
std::filesystem::path EmptyProductTable() {
  static const TemporaryFolder folder;
  std::filesystem::path path = folder / "empty.pt";
  if (!std::filesystem::exists(path)) demo::CreateProductTable(files::ToText(path));
  return path;
}

std::wstring NewProductTable(const std::filesystem::path& path) {
  std::filesystem::copy_file(EmptyProductTable(), path);
  return files::ToText(path);
}

}  // namespace

SurfaceTest::SurfaceTest() : scope_(settings) {
  settings.objPrompt = &prompt;
  settings.objLanguage = &texts;
  settings.objRegistry = &registry;
  settings.objEventPump = &pump;
  settings.objClock = &clock;
  settings.strVersionSubKey = L"3.2\\PAP32\\";
  settings.strApplicationTitle = L"Title";
}

SurfaceTest::~SurfaceTest() { ProductConnection.reset(); }

std::vector<std::string> SurfaceTest::Boxes() {
  std::vector<std::string> shown;
  for (const auto& message : prompt.messages) shown.push_back(text::WideToUtf8(message.text));
  prompt.messages.clear();
  return shown;
}

registry::Value& SurfaceTest::Stored(const std::wstring& name) {
  return registry.values[{registry::RootKey::kCurrentUser,
                          L"Software\\Velkor Software\\Orvane\\3.2\\PAP32\\", name}];
}

registry::Value& SurfaceTest::MachineSetting(const std::wstring& name) {
  return registry.values[{registry::RootKey::kLocalMachine, kSettingsKey, name}];
}

ProductTableTest::ProductTableTest() : product_table(NewProductTable(folder / "Orv.pt")) {}

database::Connection& ProductTableTest::Connection() {
  if (!connection_) connection_ = OpenConnection(product_table, kProductTablePassword);
  return *connection_;
}

void ProductTableTest::CloseConnection() { connection_.reset(); }

void ProductTableTest::AddRow(const std::wstring& table, const Values& values) {
  database::Recordset rows;
  rows.Open(table, Connection(), database::CursorType::kDynamic, database::LockType::kOptimistic);
  rows.AddNew();
  for (const auto& [column, value] : values) rows(column) = value;
  rows.Update();
}

void ProductTableTest::AddSupplierOf(const std::vector<std::wstring>& assortments) {
  AddRow(L"Supplier", {{L"Code", L"S"}});
  for (std::int32_t number = 1; const std::wstring& code : assortments) {
    AddRow(L"Assortment", {{L"AssCode", code}});
    AddRow(L"Ass_Suppl", {{L"fkAssNr", number++}, {L"fkSupplierID", std::int32_t{1}}});
  }
  CloseConnection();
}

void ProductTableTest::SetIdentity(const std::wstring& column, const text::Variant& value) {
  {
    database::Recordset info;
    info.Open(L"SysDBInfo", Connection(), database::CursorType::kDynamic,
              database::LockType::kOptimistic);
    info(column) = value;
    info.Update();
  }
  CloseConnection();
}

std::vector<std::string> ProductTableTest::Rows(const std::wstring& statement,
                                                const std::vector<std::wstring>& columns) {
  const text::ScopedLocale neutral({.decimal_mark = L'.', .thousands_mark = L','});
  std::vector<std::string> rows;
  database::Recordset selected;
  selected.Open(statement, Connection(), database::CursorType::kStatic,
                database::LockType::kReadOnly);
  for (; !selected.Eof(); selected.MoveNext()) {
    std::wstring row;
    for (const std::wstring& column : columns) {
      const text::Variant value = selected(column).Value();
      row += (row.empty() ? L"" : L"|") + (value.IsNull() ? L"Null" : text::ToText(value));
    }
    rows.push_back(text::WideToUtf8(row));
  }
  return rows;
}

std::unique_ptr<database::Connection> OpenConnection(const std::wstring& path,
                                                     const std::wstring& password) {
  auto connection = std::make_unique<database::Connection>();
  connection->Provider = L"Microsoft.Jet.OLEDB.4.0";
  connection->Properties[L"Data Source"] = path;
  connection->Properties[L"Jet OLEDB:Database Password"] = password;
  connection->Open();
  return connection;
}

}  // namespace test_support
