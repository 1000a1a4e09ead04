// Opens files once, and keeps what is known of their tables.
#include "platform/database/session.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <utility>

#include "platform/database/errors.h"
#include "platform/database/file_identity.h"
#include "platform/files/paths.h"
#include "platform/jet/database_header.h"
#include "platform/text/code_page.h"
#include "platform/text/strings.h"

namespace database {
namespace {

// The open sessions of this process. Nothing in a session refers to it, so that a session may live
// longer than it at the process's end.
using Registry = std::map<FileIdentity, std::weak_ptr<Session>>;

Registry& OpenSessions() {
  static Registry registry;
  return registry;
}

std::shared_ptr<Session> FindOpen(const std::filesystem::path& path) {
  Registry& registry = OpenSessions();
  std::erase_if(registry, [](const auto& entry) { return entry.second.expired(); });
  const std::optional<FileIdentity> identity = IdentityOf(path);
  if (!identity) return nullptr;
  const auto found = registry.find(*identity);
  return found == registry.end() ? nullptr : found->second.lock();
}

std::shared_ptr<Session> Register(std::unique_ptr<jet::Database> database,
                                  const std::filesystem::path& path, const std::wstring& text) {
  auto session = std::make_shared<Session>(std::move(database), text);
  if (const std::optional<FileIdentity> identity = IdentityOf(path))
    OpenSessions()[*identity] = session;
  return session;
}

// Whoever wants to share an open file must know its password too.
void CheckPassword(const std::filesystem::path& path, const std::wstring& password) {
  jet::PageBytes page{};
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(page.data()), static_cast<std::streamsize>(page.size()));
  if (!file) throw jet::Error(jet::ErrorKind::kIo, "page 0 cannot be read", 0);
  const jet::DatabaseHeader header = jet::DatabaseHeader::Parse(page);
  if (!header.password().empty() && header.password() != text::WideToUtf16(password))
    throw jet::Error(jet::ErrorKind::kWrongPassword);
}

std::shared_ptr<const FieldList> FieldsOf(const jet::Table& table) {
  auto fields = std::make_shared<FieldList>();
  for (const jet::ColumnDefinition& column : table.columns())
    fields->push_back({text::Utf16ToWide(column.name), column.type, column.collation});
  return fields;
}

}  // namespace

std::optional<std::size_t> FindField(const FieldList& fields, std::wstring_view name) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::wstring& candidate = fields[i].name;
    if (candidate.size() == name.size() && text::EqualsNoCase(candidate, name)) return i;
  }
  return std::nullopt;
}

SessionTable::SessionTable(jet::Table& table)
    : table_(table), name_(text::Utf16ToWide(table.name())), fields_(FieldsOf(table)) {}

std::optional<std::size_t> SessionTable::FindColumn(std::wstring_view name) const {
  return FindField(*fields_, name);
}

const ColumnHash* SessionTable::HashOn(const std::vector<std::size_t>& columns, bool repeatedly) {
  for (const auto& hash : hashes_)
    if (hash->columns() == columns) return hash.get();
  const auto wish = std::ranges::find(wished_hashes_, columns);
  if (wish == wished_hashes_.end() && !repeatedly) {
    wished_hashes_.push_back(columns);
    return nullptr;
  }
  hashes_.push_back(std::make_unique<ColumnHash>(table_, columns));
  if (wish != wished_hashes_.end()) wished_hashes_.erase(wish);
  return hashes_.back().get();
}

std::shared_ptr<Session> Session::Open(const std::wstring& path, const std::wstring& password,
                                       bool read_only) {
  return Translated(path, [&] {
    const std::filesystem::path file = files::ToPath(path);
    if (std::shared_ptr<Session> session = FindOpen(file)) {
      CheckPassword(file, password);
      return session;
    }
    return Register(jet::Database::Open(file, {text::WideToUtf16(password), read_only}), file,
                    path);
  });
}

std::shared_ptr<Session> Session::Create(const std::wstring& path, const std::wstring& password,
                                         bool encode) {
  return Translated(path, [&] {
    const std::filesystem::path file = files::ToPath(path);
    jet::CreateOptions options;
    options.password = text::WideToUtf16(password);
    options.encode = encode;
    return Register(jet::Database::Create(file, options), file, path);
  });
}

Session::Session(std::unique_ptr<jet::Database> database, std::wstring path)
    : database_(std::move(database)), path_(std::move(path)) {}

SessionTable& Session::Table(std::wstring_view name) {
  std::wstring key = text::ToUpper(name);
  const auto found = tables_.find(key);
  if (found != tables_.end()) return *found->second;

  jet::Table& table = database_->OpenTable(text::WideToUtf16(name));
  if (table.definition().system) Fail(Failure::kNoReadPermission, {name});
  auto& entry = tables_[std::move(key)];
  entry = std::make_unique<SessionTable>(table);
  return *entry;
}

}  // namespace database
