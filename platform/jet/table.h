// A table of an open database: its columns, its rows, and changes that keep every index and rule.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/jet/index_tree.h"
#include "platform/jet/row_pointer.h"
#include "platform/jet/table_definition.h"
#include "platform/jet/value.h"

namespace jet {

class Database;

struct StoredRowValues {
  RowId id;
  Row values;
};

// Hears of every change to a table's rows after it is committed; `old_row`/`new_row` null for an
// insert or a delete. Used to keep look-up structures above the engine in step.
class TableObserver {
 public:
  virtual ~TableObserver() = default;
  virtual void RowChanged(RowId id, const Row* old_row, const Row* new_row) = 0;
};

// Belongs to its database and lives as long as that. Each change is one page transaction: it is
// done whole, with all indexes, counters and related rows, or not at all.
class Table {
 public:
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table();

  const std::u16string& name() const;
  const TableDefinition& definition() const;
  const std::vector<ColumnDefinition>& columns() const { return definition().columns; }
  std::optional<std::size_t> FindColumn(std::u16string_view name) const;  // position; without case
  // What the column's properties declare.
  bool IsRequired(std::size_t column) const;
  bool AllowsZeroLength(std::size_t column) const;

  std::uint32_t row_count() const;  // as stored

  // Nothing when no live row has this id. kDamaged.
  std::optional<Row> Read(RowId id) const;

  // Walks the live rows by page and slot. Rows may be changed meanwhile (each is seen at most
  // once).
  class Scan {
   public:
    std::optional<StoredRowValues> Next();
    Scan(Scan&&) noexcept;
    ~Scan();

   private:
    friend class Table;
    struct Impl;
    explicit Scan(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
  };
  Scan ScanRows() const;

  // A physical index that can look rows up by equality on `column`: its first column is that one.
  // Prefers a unique one-column index. Nothing when there is none whose keys this engine can make.
  std::optional<std::size_t> IndexOn(std::size_t column) const;
  // The same for several columns in any order: all of them are the leading columns of the index.
  std::optional<std::size_t> IndexOn(std::span<const std::size_t> columns) const;
  // Rows whose leading index columns (as many as values, in the index's order) equal `values`, in
  // index order. kTypeMismatch when a value is not of its column's alternative.
  std::vector<RowId> Lookup(std::size_t index, std::span<const Value> values) const;
  // All rows in the order of the index.
  std::vector<RowId> RowsInOrder(std::size_t index) const;

  // Adds a row: one value a column, Null where nothing is given; autonumbers and defaults are
  // filled in `row`. With `is_given`, one a column, a Null that was given stays (a yes/no is False
  // then) and only a column that was not gets its default. Errors: kNullInRequired, kNullInKey,
  // kZeroLength, kTooLong, kRowTooLarge, kTypeMismatch, kDuplicateKey, kNoParentRow, kNotSupported,
  // kReadOnly, kDiskFull, kIo.
  RowId Insert(Row& row);
  RowId Insert(Row& row, const std::vector<bool>& is_given);
  // Replaces the row's values; referencing rows follow where their relationship cascades.
  // Also kHasChildRows, kRecordDeleted.
  void Update(RowId id, const Row& row);
  // Deletes the row; referencing rows as their relationship says.
  void Delete(RowId id);

  // Observers are told after each committed change and must outlive their registration.
  void AddObserver(TableObserver* observer);
  void RemoveObserver(TableObserver* observer);

  struct Impl;
  explicit Table(std::unique_ptr<Impl> impl);
  Impl& impl() { return *impl_; }

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace jet
