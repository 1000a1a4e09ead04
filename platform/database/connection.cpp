// Opening and closing a database file through a provider's properties.
#include "platform/database/connection.h"

#include "platform/database/errors.h"
#include "platform/database/session.h"
#include "platform/text/strings.h"

namespace database {
namespace {

constexpr std::wstring_view kProvider = L"Microsoft.Jet.OLEDB.4.0";
constexpr std::wstring_view kDataSource = L"Data Source";
constexpr std::wstring_view kPassword = L"Jet OLEDB:Database Password";

}  // namespace

std::wstring& Properties::operator[](const std::wstring& name) {
  if (text::EqualsNoCase(name, kDataSource)) return data_source_;
  if (text::EqualsNoCase(name, kPassword)) return password_;
  Fail(Failure::kNoSuchItem, {name});
}

Connection::Connection() : state_(std::make_shared<ConnectionState>()) {
  state_->connection = this;
}

Connection::~Connection() {
  state_->connection = nullptr;
  Close();
}

void Connection::Open(const std::wstring& connection_string, const std::wstring& user,
                      const std::wstring& password, int /*options*/) {
  if (IsOpen()) Fail(Failure::kAlreadyOpen);
  if (!text::EqualsNoCase(Provider, kProvider)) Fail(Failure::kNoProvider);
  if (!connection_string.empty() || !user.empty() || !password.empty()) Fail(Failure::kBadArgument);
  state_->session = Session::Open(Properties.data_source_, Properties.password_);
}

void Connection::Close() { state_->session.reset(); }

bool Connection::IsOpen() const { return state_->session != nullptr; }

std::shared_ptr<Session> Connection::session() const {
  if (!IsOpen()) Fail(Failure::kClosed);
  return state_->session;
}

}  // namespace database
