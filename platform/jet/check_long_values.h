// The part of a file check that reads memo and OLE values and accounts for the pages they lie on.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "platform/jet/check_state.h"
#include "platform/jet/row_codec.h"

namespace jet::check {

// The long values of one column. Each of its pages is claimed when it is made; each row of them may
// be used by one value.
class LongValueCheck {
 public:
  // `where` names table and column.
  LongValueCheck(State& state, const LongValueMaps& maps, std::string where);

  // The stored bytes of a value. Throws kDamaged.
  Bytes Read(const LongValueField& field);
  // Once all values are read: the pages themselves, and what no value uses.
  void Finish();

 private:
  // The row, noted as used.
  Page Use(RowPointer at);

  State& state_;
  std::string where_;
  std::vector<PageNumber> pages_;
  std::unordered_set<RowPointer> used_;
};

}  // namespace jet::check
