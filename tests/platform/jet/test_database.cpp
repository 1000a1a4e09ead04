// A whole database on a disk in memory: see the header.
#include "tests/platform/jet/test_database.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "platform/jet/catalog.h"
#include "platform/jet/check.h"
#include "platform/jet/compaction.h"
#include "platform/jet/database_creator.h"
#include "platform/jet/database_impl.h"
#include "platform/jet/table_definition_store.h"
#include "platform/jet/table_impl.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {

TestDatabase::TestDatabase(const CreateOptions& options) : options_{.password = options.password} {
  CreateDatabase(std::make_unique<MemoryPageStore>(disk_), options);
  Reopen();
}

TestDatabase::TestDatabase(const std::filesystem::path& file, const OpenOptions& options)
    : options_(options) {
  const std::string bytes = test_support::ReadAll(file);
  disk_->Resize(static_cast<PageNumber>(bytes.size() / kPageSize));
  for (PageNumber number = 0; number < disk_->pages.size(); ++number)
    std::transform(bytes.begin() + static_cast<std::ptrdiff_t>(number * kPageSize),
                   bytes.begin() + static_cast<std::ptrdiff_t>((number + 1) * kPageSize),
                   disk_->Page(number).begin(), [](char c) { return static_cast<std::byte>(c); });
  Reopen();
}

void TestDatabase::Reopen() {
  database_.reset();
  database_ = Database::Open(std::make_unique<MemoryPageStore>(disk_), options_);
}

void TestDatabase::Restore(const std::vector<PageBytes>& pages) {
  database_.reset();
  disk_->Heal();
  disk_->Resize(static_cast<PageNumber>(pages.size()));
  for (PageNumber number = 0; number < pages.size(); ++number) disk_->Page(number) = pages[number];
  Reopen();
}

std::vector<std::string> TestDatabase::Problems() const {
  CheckReport report = CheckPages(std::make_unique<MemoryPageStore>(disk_), options_);
  std::ranges::move(report.notes, std::back_inserter(report.problems));
  return report.problems;
}

std::vector<PageBytes> TestDatabase::Compacted(std::optional<std::size_t> failing_write) const {
  const auto copy = std::make_shared<MemoryDisk>();
  copy->fail_at_write = failing_write;
  MemoryPageStore target(copy);
  MemoryPageStore source(disk_);
  CompactPages(source, target, {.password = options_.password});
  return copy->Snapshot();
}

void TestDatabase::Save(const std::filesystem::path& path) const {
  std::ofstream file(path, std::ios::binary);
  std::string bytes(kPageSize, '\0');
  for (const PageBytes& page : disk_->Snapshot()) {
    std::ranges::transform(page, bytes.begin(),
                           [](std::byte byte) { return static_cast<char>(byte); });
    file << bytes;
  }
}

void TestDatabase::SaveForOtherReaders(const std::string& name) const {
  if (const char* const folder = std::getenv("ORVPAP_CHANGED_FILES"))
    Save(std::filesystem::path(folder) / (name + ".mdb"));
}

void TestDatabase::EditDefinition(std::u16string_view table,
                                  const std::function<void(TableDefinition&)>& change) {
  Database::Impl& impl = database_->impl();
  PageTransaction transaction(impl.pager);
  TableDefinition definition = database_->OpenTable(table).definition();
  change(definition);
  WriteTableDefinition(impl.pager, impl.allocator, definition);
  transaction.Commit();
  Reopen();
}

void TestDatabase::EditPage(PageNumber page, const std::function<void(ByteEditor&)>& change) {
  Database::Impl& impl = database_->impl();
  PageTransaction transaction(impl.pager);
  ByteEditor editor = impl.pager.Edit(page);
  change(editor);
  transaction.Commit();
  Reopen();
}

void TestDatabase::SetProperties(std::u16string_view table, const PropertyBlob& properties) {
  Table& objects = database_->OpenTable(u"MSysObjects");
  const RowId id = database_->impl().catalog->FindTable(table)->row;
  Row row = *objects.Read(id);
  row[*objects.FindColumn(u"LvProp")] = properties.Serialize();
  objects.impl().Update(id, row);
  Reopen();
}

IndexSpec PrimaryKey(std::u16string column) {
  return {.name = u"PrimaryKey", .columns = {{std::move(column)}}, .primary = true};
}

RowId Add(Table& table, Row row) { return table.Insert(row); }

std::vector<StoredRowValues> RowsOf(const Table& table) {
  std::vector<StoredRowValues> rows;
  Table::Scan scan = table.ScanRows();
  while (auto row = scan.Next()) rows.push_back(*std::move(row));
  return rows;
}

std::u16string Text(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

void PrintTo(const Failure& failure, std::ostream* out) {
  *out << "error kind " << static_cast<int>(failure.kind);
  for (const std::u16string& name : failure.names) {
    *out << " '";
    for (const char16_t c : name) *out << static_cast<char>(c < 0x80 ? c : u'?');
    *out << "'";
  }
}

std::optional<Failure> FailureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return Failure{error.kind(), error.names()};
  }
  return std::nullopt;
}

std::vector<SharedFile> SharedFiles() {
  std::vector<SharedFile> files;
  const char* const shared = std::getenv("ORVPAP_SHARED");
  if (shared == nullptr) return files;
  const auto add_all = [&](const char* folder, const char* extension, const char16_t* password) {
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(shared) / folder))
      if (entry.path().extension() == extension)
        files.push_back({entry.path(), {.password = password}});
  };
  add_all("jet/samples", ".mdb", u"");
  add_all("product-tables", ".pt", u"quorbelintax");
  return files;
}

std::optional<std::string> IndependentCheck(const std::filesystem::path& file,
                                            const std::u16string& password) {
  const char* const checker = std::getenv("ORVPAP_JETCHECK");
  if (checker == nullptr) return std::nullopt;
  const test_support::TemporaryFolder folder;
  const std::filesystem::path output = folder / "output";
  std::string command =
      "python3 -B \"" + std::string(checker) + "\" --strict \"" + file.string() + "\"";
  if (!password.empty())
    command += " --password \"" + std::string(password.begin(), password.end()) + "\"";
  command += " > \"" + output.string() + "\" 2>&1";
  std::system(command.c_str());  // NOLINT(cert-env33-c)
  return test_support::ReadAll(output);
}

}  // namespace jet::test
