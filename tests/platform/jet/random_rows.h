// Rows of any table with values of every type and length, the same ones on every run.
#pragma once

#include "platform/jet/table.h"
#include "tests/platform/jet/test_random.h"

namespace jet::test {

class RowMaker {
 public:
  explicit RowMaker(std::uint32_t seed) : random_(seed) {}

  std::uint32_t Below(std::uint32_t limit) { return random_() % limit; }

  // A value that the column can hold, now and then Null; most are short.
  Value ValueFor(const ColumnDefinition& column);
  // The row with about a third of its values replaced, all but autonumbers.
  Row Changed(const Table& table, Row row);
  // A row to add: like the other one, but for a third of its values and what numbers itself.
  Row New(const Table& table, Row like);
  // A row to add with each value made anew.
  Row New(const Table& table);

 private:
  Bytes BytesOf(std::size_t size);
  std::u16string TextOf(std::size_t length);

  Random random_;
};

}  // namespace jet::test
