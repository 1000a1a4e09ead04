// The connection to a product table together with what the database says about itself.
#include "store/clsConnection.h"

#include "app/modGeneralFunctions.h"
#include "platform/database/recordset.h"
#include "store/ProductTableSchema.h"

namespace {

namespace columns = ProductTable::SysDBInfo;

constexpr wchar_t kProvider[] = L"Microsoft.Jet.OLEDB.4.0";
constexpr wchar_t kDataSource[] = L"Data Source";
constexpr wchar_t kPassword[] = L"Jet OLEDB:Database Password";

// Runs one statement; an error in it is ignored.
template <class Statement>
void OnErrorResumeNext(const Statement& vStatement) {
  try {
    vStatement();
  } catch (...) {
    IgnoreError();
  }
}

}  // namespace

clsConnection::~clsConnection() {
  if (!Connection) return;
  OnErrorResumeNext([this] { Connection->Close(); });
}

bool clsConnection::MakenJetConnectie(const std::wstring& vPath, const std::wstring& vPassword) {
  try {
    Connection = std::make_shared<database::Connection>();
    Connection->Provider = kProvider;
    Connection->Properties[kDataSource] = vPath;
    if (!vPassword.empty()) Connection->Properties[kPassword] = vPassword;
    Connection->Open();
    ReadSysDBInfo();
    return true;
  } catch (...) {
    ShowErrorMessage(L"clsConnection.MakenJetConnectie (Function)");
    Connection = nullptr;
    return false;
  }
}

// A database that is no product table lacks the table, its row or a column: whatever cannot be read
// leaves its value at the default, and the caller refuses the database for that.
void clsConnection::ReadSysDBInfo() {
  database::Recordset info;
  OnErrorResumeNext([&] {
    info.Open(L"SELECT TOP 1 * FROM SysDBInfo", *Connection, database::CursorType::kStatic,
              database::LockType::kReadOnly);
  });
  OnErrorResumeNext([&] { AppType = NullToString(info(columns::kAppType).Value()); });
  OnErrorResumeNext([&] { DBType = NullToString(info(columns::kDBType).Value()); });
  OnErrorResumeNext([&] { VerMajor = NullToLong(info(columns::kVerMajor).Value()); });
  OnErrorResumeNext([&] { VerMinor = NullToLong(info(columns::kVerMinor).Value()); });
  OnErrorResumeNext([&] { Revision = NullToLong(info(columns::kRevision).Value()); });
}
