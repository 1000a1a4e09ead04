// Keeps the rows of a recordset.
#include "platform/database/row_list.h"

#include <utility>

namespace database {
namespace {

// Appended rows have positions of their own, behind all selected ones that may yet be found.
constexpr Position kFirstAppended = Position{1} << 62;

}  // namespace

RowList::RowList(std::vector<jet::RowId> rows)
    : selected_(std::move(rows)), present_(selected_.size()) {}

RowList::RowList(const jet::Table& whole_table) : scan_(whole_table.ScanRows()) {}

bool RowList::FindNext() {
  while (scan_) {
    std::optional<jet::StoredRowValues> row = scan_->Next();
    if (!row) {
      scan_.reset();
      not_to_find_.clear();
      return false;
    }
    if (not_to_find_.contains(row->id)) continue;
    selected_.push_back(row->id);
    found_values_ = std::move(row->values);
    ++present_;
    return true;
  }
  return false;
}

// The first row at or behind `position`.
Position RowList::Present(Position position) {
  found_values_.reset();
  for (; position < kFirstAppended; ++position) {
    if (position >= selected_.size() && !FindNext()) {
      position = kFirstAppended;
      break;
    }
    if (!selected_[position].is_null()) return position;
  }
  for (; position - kFirstAppended < appended_.size(); ++position)
    if (!appended_[position - kFirstAppended].is_null()) return position;
  return kEndPosition;
}

Position RowList::First() {
  const Position first = Present(first_present_);
  if (first < kFirstAppended) first_present_ = first;
  return first;
}

Position RowList::After(Position position) {
  return position == kEndPosition ? kEndPosition : Present(position + 1);
}

jet::RowId RowList::IdAt(Position position) const {
  return position < kFirstAppended ? selected_.at(position)
                                   : appended_.at(position - kFirstAppended);
}

std::optional<jet::Row> RowList::TakeFoundValues() { return std::exchange(found_values_, {}); }

Position RowList::Append(jet::RowId id) {
  if (scan_) not_to_find_.insert(id);
  appended_.push_back(id);
  ++present_;
  return kFirstAppended + appended_.size() - 1;
}

void RowList::Remove(Position position) {
  jet::RowId& id =
      position < kFirstAppended ? selected_.at(position) : appended_.at(position - kFirstAppended);
  if (id.is_null()) return;
  id = {};
  --present_;
}

bool RowList::IsEmpty() { return present_ == 0 && !FindNext(); }

std::size_t RowList::Count() {
  while (FindNext()) {
  }
  return present_;
}

}  // namespace database
