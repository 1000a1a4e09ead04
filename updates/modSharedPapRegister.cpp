// The register of processed updates: the table PriceUpdates in the product table that they were
// applied to.
#include "updates/modSharedPapRegister.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/database/database_engine.h"
#include "platform/database/errors.h"
#include "platform/database/recordset.h"
#include "store/modProductTable.h"
#include "updates/PriceUpdatesTable.h"

namespace {

namespace names = PriceUpdatesTable;

constexpr int kTextSize = 50;  // characters

// What was read last, and the same file names for look-ups: an update folder may hold thousands.
struct Register {
  PapCollection Paps;
  std::unordered_set<std::wstring> FileNames;
};

Register m_register;

bool IsMissingTable(const text::RuntimeError& vError) {
  return vError.number() == database::ErrorOf(database::Failure::kTableNotFound).number();
}

// A register row without a date is as wrong as one with a text in its place.
double DateOf(const text::Variant& vValue) {
  const auto* date = vValue.GetIf<text::Date>();
  if (date == nullptr) text::Raise(text::kTypeMismatch);
  return date->days;
}

std::vector<std::shared_ptr<clsOrvPap>> ReadRegister(database::Connection& vConnection) {
  std::vector<std::shared_ptr<clsOrvPap>> paps;
  database::Recordset rows;
  rows.Open(L"SELECT * FROM PriceUpdates ORDER BY DateProcessed", vConnection,
            database::CursorType::kStatic, database::LockType::kReadOnly);
  for (; !rows.Eof(); rows.MoveNext()) {
    auto pap = std::make_shared<clsOrvPap>();
    pap->FilePath = NullToString(rows(names::kFileName).Value());
    pap->PapDate = DateOf(rows(names::kDate).Value());
    pap->AssortmentDescription = NullToString(rows(names::kAssortiment).Value());
    pap->SupplierDescription = NullToString(rows(names::kSupplier).Value());
    pap->DateProcessed = DateOf(rows(names::kDateProcessed).Value());
    paps.push_back(std::move(pap));
    DoEvents();
  }
  return paps;
}

database::FieldDefinition TextField(const wchar_t* vName, bool vRequired) {
  return {.Name = vName,
          .Type = database::DataType::kText,
          .Size = kTextSize,
          .Required = vRequired,
          .AllowZeroLength = false};
}

database::FieldDefinition DateField(const wchar_t* vName) {
  return {.Name = vName, .Type = database::DataType::kDate};
}

database::TableDef RegisterTable() {
  return {.Name = names::kTable,
          .Fields = {TextField(names::kFileName, true), DateField(names::kDate),
                     TextField(names::kAssortiment, false), TextField(names::kSupplier, false),
                     DateField(names::kDateProcessed)},
          .Indexes = {{.Name = names::kPrimaryKey,
                       .Fields = {names::kFileName},
                       .Primary = true,
                       .Unique = true}}};
}

// A table whose name differs in case is another one here, though not to the database, which then
// refuses ours.
void EnsureRegisterTable(const std::wstring& vPath) {
  database::DBEngine engine;
  const auto database =
      engine.OpenDatabase(vPath, false, false, L"MS Access;PWD=" + ProductTablePassword);
  const std::vector<database::TableDef> tables = database->TableDefs();
  const bool exists =
      std::any_of(tables.begin(), tables.end(),
                  [](const database::TableDef& table) { return table.Name == names::kTable; });
  if (!exists) database->AppendTable(RegisterTable());
  database->Close();
}

void WriteRegister(database::Connection& vConnection, const clsOrvPap& vPap, bool vProcessed) {
  database::Recordset rows;
  rows.Open(names::kTable, vConnection, database::CursorType::kDynamic,
            database::LockType::kOptimistic);
  const std::wstring name = GetFileName(vPap.FilePath);
  rows.Find(L"FileName='" + name + L"'");
  if (!vProcessed) {
    if (!rows.Eof()) rows.Delete();
    return;
  }
  if (rows.Eof()) {
    rows.AddNew();
    rows(names::kFileName) = name;
    rows(names::kDate) = text::Date{vPap.PrcDate};
    rows(names::kAssortiment) = vPap.AssortmentDescription;
    rows(names::kSupplier) = vPap.SupplierDescription;
  }
  rows(names::kDateProcessed) = text::Date{Shared().objClock->Now()};
  rows.Update();
}

}  // namespace

const PapCollection& ProcessedPaps() { return m_register.Paps; }

bool GetProcessedCollection(const std::wstring& vPath) {
  const ProductConnectionGuard guard;
  try {
    if (!OpenProductTable(vPath)) return false;
    Register found;
    m_register = {};
    auto paps = ReadRegister(*ProductConnection->Connection);
    if (paps.empty()) return false;
    for (const auto& pap : paps) found.FileNames.insert(pap->FilePath);
    found.Paps = std::move(paps);
    m_register = std::move(found);
    return true;
  } catch (const text::RuntimeError& error) {
    if (!IsMissingTable(error)) ShowErrorMessage(L"modSharedPap.GetProcessedCollection (Function)");
    return false;
  } catch (...) {
    ShowErrorMessage(L"modSharedPap.GetProcessedCollection (Function)");
    return false;
  }
}

bool IsPapProcessed(const std::wstring& vFileName) {
  return m_register.FileNames.contains(vFileName);
}

bool SetPapProcessed(const std::wstring& vPath, const clsOrvPap& vPap, bool vProcessed) {
  const ProductConnectionGuard guard;
  try {
    // Checked before the table is made, so that a database that is no product table stays as it is.
    if (!OpenProductTable(vPath)) return false;
    EnsureRegisterTable(vPath);
    WriteRegister(*ProductConnection->Connection, vPap, vProcessed);
    return true;
  } catch (...) {
    ShowErrorMessage(L"modSharedPap.SetPapProcessed (Function)");
    return false;
  }
}
