// Builds the small product table.
#include "tests/platform/database/test_database.h"

#include "platform/text/conversion.h"

namespace database {
namespace {

FieldDefinition Number(const std::wstring& name) { return {.Name = name}; }

FieldDefinition Autonumber(const std::wstring& name) {
  return {.Name = name, .AutoIncrement = true};
}

FieldDefinition Text(const std::wstring& name, int size = 20, bool required = false) {
  return {.Name = name, .Type = DataType::kText, .Size = size, .Required = required};
}

FieldDefinition OfType(const std::wstring& name, DataType type) {
  return {.Name = name, .Type = type};
}

IndexDefinition Index(const std::wstring& name, std::vector<std::wstring> fields, bool unique) {
  return {.Name = name, .Fields = std::move(fields), .Unique = unique};
}

std::vector<TableDef> Tables(TestDatabase::Indexes indexes) {
  std::vector<TableDef> tables = {
      {L"Serie", {Autonumber(L"SerieNr"), Number(L"AssNr"), Text(L"SerieCode")}, {}},
      {L"Article",
       {Autonumber(L"ID"), Number(L"fkSerie"), Text(L"Code", 20, true), Text(L"Description", 10)},
       {}},
      {L"ArtPrice",
       {Number(L"fkSupplier"), Number(L"fkArticle"), OfType(L"PriceDim", DataType::kDouble)},
       {}},
      {L"Kinds",
       {Autonumber(L"ID"), OfType(L"Yes", DataType::kBoolean), OfType(L"Small", DataType::kByte),
        OfType(L"Short", DataType::kInteger), OfType(L"Long", DataType::kLong),
        OfType(L"Money", DataType::kCurrency), OfType(L"Single", DataType::kSingle),
        OfType(L"Double", DataType::kDouble), OfType(L"When", DataType::kDate), Text(L"Text", 5),
        OfType(L"Memo", DataType::kMemo)},
       {}}};
  if (indexes == TestDatabase::Indexes::kNone) return tables;
  tables[0].Indexes = {Index(L"Nr", {L"SerieNr"}, true), Index(L"Code", {L"SerieCode"}, true),
                       Index(L"AssNr", {L"AssNr"}, false)};
  tables[1].Indexes = {Index(L"ID", {L"ID"}, true), Index(L"Code", {L"Code"}, true),
                       Index(L"fkSerie", {L"fkSerie"}, false)};
  tables[2].Indexes = {Index(L"Pair", {L"fkSupplier", L"fkArticle"}, false),
                       Index(L"fkArticle", {L"fkArticle"}, false)};
  return tables;
}

}  // namespace

TestDatabase::TestDatabase(Indexes indexes) : path_(folder_.Text("product.pt")) {
  const auto database = DBEngine().CreateDatabase(path_, L";PWD=" + std::wstring(kPassword));
  for (const TableDef& table : Tables(indexes)) database->AppendTable(table);
  OpenConnection(connection_, path_);
}

void TestDatabase::Add(const std::wstring& table, const Values& values) {
  AddRow(connection_, table, values);
}

void AddRow(Connection& connection, const std::wstring& table, const TestDatabase::Values& values) {
  Recordset rows;
  rows.Open(table, connection, CursorType::kDynamic, LockType::kOptimistic);
  rows.AddNew();
  for (const auto& [name, value] : values) rows(name) = value;
  rows.Update();
}

std::wstring TestDatabase::Column(const std::wstring& source, const std::wstring& column) {
  Recordset rows;
  rows.Open(source, connection_);
  std::wstring texts;
  for (; !rows.Eof(); rows.MoveNext()) {
    const text::Variant value = rows(column).Value();
    texts += (texts.empty() ? L"" : L",") + (value.IsNull() ? L"-" : text::ToText(value));
  }
  return texts;
}

void OpenConnection(Connection& connection, const std::wstring& path,
                    const std::wstring& password) {
  connection.Provider = L"Microsoft.Jet.OLEDB.4.0";
  connection.Properties[L"Data Source"] = path;
  connection.Properties[L"Jet OLEDB:Database Password"] = password;
  connection.Open(L"", L"", L"", -1);
}

}  // namespace database
