// Databases as a whole: opening, creating, and the design of their tables.
#include "platform/database/database_engine.h"

#include <optional>
#include <string_view>
#include <utility>

#include "platform/database/errors.h"
#include "platform/database/session.h"
#include "platform/files/paths.h"
#include "platform/jet/compaction.h"
#include "platform/text/code_page.h"
#include "platform/text/strings.h"

namespace database {
namespace {

constexpr int kDefaultTextSize = 255;

struct TypePair {
  DataType type;
  jet::ColumnType column;
};

constexpr TypePair kTypes[] = {
    {DataType::kBoolean, jet::ColumnType::kBoolean},
    {DataType::kByte, jet::ColumnType::kByte},
    {DataType::kInteger, jet::ColumnType::kInteger},
    {DataType::kLong, jet::ColumnType::kLong},
    {DataType::kCurrency, jet::ColumnType::kCurrency},
    {DataType::kSingle, jet::ColumnType::kSingle},
    {DataType::kDouble, jet::ColumnType::kDouble},
    {DataType::kDate, jet::ColumnType::kDate},
    {DataType::kBinary, jet::ColumnType::kBinary},
    {DataType::kText, jet::ColumnType::kText},
    {DataType::kLongBinary, jet::ColumnType::kOle},
    {DataType::kMemo, jet::ColumnType::kMemo},
    {DataType::kGuid, jet::ColumnType::kGuid},
    {DataType::kDecimal, jet::ColumnType::kNumeric},
    {DataType::kBinary, jet::ColumnType::kFixedBytes},
};

jet::ColumnType ColumnTypeOf(DataType type) {
  for (const TypePair& pair : kTypes)
    if (pair.type == type) return pair.column;
  Fail(Failure::kBadArgument);
}

DataType DataTypeOf(jet::ColumnType column) {
  for (const TypePair& pair : kTypes)
    if (pair.column == column) return pair.type;
  return DataType::kLongBinary;
}

bool HoldsText(jet::ColumnType type) {
  return type == jet::ColumnType::kText || type == jet::ColumnType::kMemo;
}

// The password in a connect text: parts between semicolons, the first one naming the kind of file.
std::wstring PasswordIn(std::wstring_view connect) {
  constexpr std::wstring_view kOwnKind = L"MS Access";
  constexpr std::wstring_view kPasswordKey = L"PWD";
  const std::size_t first_end = std::min(connect.find(L';'), connect.size());
  const std::wstring_view kind = text::Trim(connect.substr(0, first_end));
  if (!kind.empty() && !text::EqualsNoCase(kind, kOwnKind)) Fail(Failure::kNoInstallableDriver);

  connect.remove_prefix(first_end);
  while (!connect.empty()) {
    connect.remove_prefix(1);
    const std::wstring_view part = connect.substr(0, connect.find(L';'));
    const std::size_t mark = part.find(L'=');
    if (mark != std::wstring_view::npos &&
        text::EqualsNoCase(text::Trim(part.substr(0, mark)), kPasswordKey))
      return std::wstring(part.substr(mark + 1));
    connect.remove_prefix(part.size());
  }
  return {};
}

FieldDefinition DescribeField(const jet::Table& table, std::size_t position) {
  const jet::ColumnDefinition& column = table.columns()[position];
  FieldDefinition field;
  field.Name = text::Utf16ToWide(column.name);
  field.Type = DataTypeOf(column.type);
  const int bytes_a_unit = column.type == jet::ColumnType::kText ? 2 : 1;
  field.Size = column.length / bytes_a_unit;
  field.Required = table.IsRequired(position);
  field.AllowZeroLength = HoldsText(column.type) && table.AllowsZeroLength(position);
  field.AutoIncrement = column.is_autonumber();
  return field;
}

IndexDefinition DescribeIndex(const jet::TableDefinition& table, const jet::LogicalIndex& logical) {
  const jet::PhysicalIndex& physical = table.physical_indexes.at(logical.physical);
  IndexDefinition index;
  index.Name = text::Utf16ToWide(logical.name);
  for (const jet::IndexColumn& entry : physical.columns) {
    const jet::ColumnDefinition* column = table.FindColumn(entry.column_number);
    if (column == nullptr) continue;
    index.Fields.push_back((entry.ascending ? L"" : L"-") + text::Utf16ToWide(column->name));
  }
  index.Primary = logical.kind == jet::IndexKind::kPrimaryKey;
  index.Unique = physical.is_unique();
  index.IgnoreNulls = physical.ignores_nulls();
  index.Required = physical.refuses_nulls();
  return index;
}

TableDef DescribeTable(const jet::Table& table) {
  TableDef description;
  description.Name = text::Utf16ToWide(table.name());
  for (std::size_t i = 0; i < table.columns().size(); ++i)
    description.Fields.push_back(DescribeField(table, i));
  for (const jet::LogicalIndex& logical : table.definition().logical_indexes)
    if (logical.kind != jet::IndexKind::kRelationship)
      description.Indexes.push_back(DescribeIndex(table.definition(), logical));
  return description;
}

jet::ColumnSpec SpecOf(const FieldDefinition& field) {
  if (field.Size < 0) Fail(Failure::kBadArgument);
  jet::ColumnSpec spec;
  spec.name = text::WideToUtf16(field.Name);
  spec.type = ColumnTypeOf(field.Type);
  const bool has_size =
      spec.type == jet::ColumnType::kText || spec.type == jet::ColumnType::kBinary;
  if (has_size)
    spec.size = static_cast<std::size_t>(field.Size == 0 ? kDefaultTextSize : field.Size);
  spec.autonumber = field.AutoIncrement;
  spec.required = field.Required;
  if (HoldsText(spec.type)) spec.allow_zero_length = field.AllowZeroLength;
  return spec;
}

jet::IndexSpec SpecOf(const IndexDefinition& index) {
  jet::IndexSpec spec;
  spec.name = text::WideToUtf16(index.Name);
  for (std::wstring_view field : index.Fields) {
    const bool descending = field.starts_with(L'-');
    if (descending) field.remove_prefix(1);
    spec.columns.push_back({text::WideToUtf16(field), !descending});
  }
  spec.primary = index.Primary;
  spec.unique = index.Unique;
  spec.ignore_nulls = index.IgnoreNulls;
  spec.refuse_nulls = index.Required;
  return spec;
}

}  // namespace

Database::Database(std::shared_ptr<Session> session) : session_(std::move(session)) {}

Database::~Database() = default;

Session& Database::RequireOpen() const {
  if (session_ == nullptr) Fail(Failure::kClosed);
  return *session_;
}

std::vector<TableDef> Database::TableDefs() const {
  Session& session = RequireOpen();
  return Translated(session.path(), [&] {
    std::vector<TableDef> tables;
    for (const std::u16string& name : session.database().TableNames())
      tables.push_back(DescribeTable(session.database().OpenTable(name)));
    return tables;
  });
}

void Database::AppendTable(const TableDef& table) {
  Session& session = RequireOpen();
  Translated(session.path(), [&] {
    jet::TableSpec spec;
    spec.name = text::WideToUtf16(table.Name);
    for (const FieldDefinition& field : table.Fields) spec.columns.push_back(SpecOf(field));
    for (const IndexDefinition& index : table.Indexes) spec.indexes.push_back(SpecOf(index));
    session.database().CreateTable(spec);
  });
}

void Database::AppendRelation(const Relation& relation) {
  Session& session = RequireOpen();
  Translated(session.path(), [&] {
    jet::RelationshipSpec spec;
    spec.name = text::WideToUtf16(relation.Name);
    spec.table = text::WideToUtf16(relation.ForeignTable);
    spec.referenced_table = text::WideToUtf16(relation.Table);
    for (const auto& [referenced, referencing] : relation.Fields) {
      spec.referenced_columns.push_back(text::WideToUtf16(referenced));
      spec.columns.push_back(text::WideToUtf16(referencing));
    }
    spec.enforced = relation.Enforced;
    spec.cascade_updates = relation.CascadeUpdates;
    spec.cascade_deletes = relation.CascadeDeletes;
    session.database().CreateRelationship(spec);
  });
}

void Database::Close() { session_.reset(); }

std::unique_ptr<Database> DBEngine::OpenDatabase(const std::wstring& path, bool /*exclusive*/,
                                                 bool read_only, const std::wstring& connect) {
  auto session = Session::Open(path, PasswordIn(connect), read_only);
  return std::unique_ptr<Database>(new Database(std::move(session)));
}

std::unique_ptr<Database> DBEngine::CreateDatabase(const std::wstring& path,
                                                   const std::wstring& connect, bool encrypt) {
  auto session = Session::Create(path, PasswordIn(connect), encrypt);
  return std::unique_ptr<Database>(new Database(std::move(session)));
}

void DBEngine::CompactDatabase(const std::wstring& source, const std::wstring& target,
                               const std::wstring& connect, const std::function<void()>& progress) {
  Translated(source, [&] {
    jet::CompactFile(files::ToPath(source), files::ToPath(target),
                     {.password = text::WideToUtf16(PasswordIn(connect)), .progress = progress});
  });
}

}  // namespace database
