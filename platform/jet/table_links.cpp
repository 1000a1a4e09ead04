// Relationships of an open table, found in the definitions of both its ends.
#include <algorithm>

#include "platform/jet/database_impl.h"
#include "platform/jet/table_impl.h"

namespace jet {

namespace {

// The logical index at the other end of a relationship; nullptr when it does not point back.
const LogicalIndex* FindPartner(const TableDefinition& table, const LogicalIndex& logical,
                                const TableDefinition& other) {
  const RelationSide expected =
      logical.side == RelationSide::kRefers ? RelationSide::kReferredTo : RelationSide::kRefers;
  const auto partner = std::find_if(
      other.logical_indexes.begin(), other.logical_indexes.end(), [&](const LogicalIndex& l) {
        return l.kind == IndexKind::kRelationship && l.number == logical.other_number &&
               l.side == expected && l.other_table == table.page &&
               l.other_number == logical.number;
      });
  if (partner == other.logical_indexes.end()) return nullptr;
  const bool same_actions =
      partner->on_update == logical.on_update && partner->on_delete == logical.on_delete;
  return same_actions ? &*partner : nullptr;
}

// Whether the columns of two indexes correspond in number and type.
bool Correspond(const TableDefinition& one, std::size_t one_index, const TableDefinition& other,
                std::size_t other_index) {
  const auto& columns = one.physical_indexes.at(one_index).columns;
  const auto& others = other.physical_indexes.at(other_index).columns;
  return std::equal(columns.begin(), columns.end(), others.begin(), others.end(),
                    [&](const IndexColumn& a, const IndexColumn& b) {
                      const ColumnDefinition* first = one.FindColumn(a.column_number);
                      const ColumnDefinition* second = other.FindColumn(b.column_number);
                      return first != nullptr && second != nullptr && first->type == second->type;
                    });
}

}  // namespace

const std::vector<ParentLink>& Table::Impl::parents() {
  PrepareLinks();
  return parents_;
}

const std::vector<ChildLink>& Table::Impl::children() {
  PrepareLinks();
  return children_;
}

void Table::Impl::PrepareLinks() {
  if (links_prepared_) return;
  parents_.clear();
  children_.clear();
  link_refusal_.clear();
  for (const LogicalIndex& logical : definition.logical_indexes)
    if (logical.kind == IndexKind::kRelationship) PrepareLink(logical);
  links_prepared_ = true;
}

void Table::Impl::PrepareLink(const LogicalIndex& logical) {
  const auto refuse = [&](const char* reason) { link_refusal_ = reason; };
  if (logical.side != RelationSide::kReferredTo && logical.side != RelationSide::kRefers)
    return refuse("the table has a relationship of an unknown kind");
  Table* const table = database.FindTable(logical.other_table);
  if (table == nullptr) return refuse("the table has a relationship to a table that is missing");

  Impl& other = table->impl();
  const LogicalIndex* const partner = FindPartner(definition, logical, other.definition);
  if (partner == nullptr) return refuse("the table has a relationship with one end only");
  if (!Correspond(definition, logical.physical, other.definition, partner->physical))
    return refuse("the table has a relationship between unlike columns");

  if (logical.side == RelationSide::kRefers) {
    parents_.push_back(
        {.parent = &other, .parent_index = partner->physical, .own_index = logical.physical});
    return;
  }
  const bool known_actions = logical.on_update <= RelationAction::kCascade &&
                             logical.on_delete <= RelationAction::kSetNull;
  if (!known_actions) return refuse("the table has a relationship with unknown actions");
  children_.push_back({.child = &other,
                       .child_index = partner->physical,
                       .own_index = logical.physical,
                       .on_update = logical.on_update,
                       .on_delete = logical.on_delete});
}

}  // namespace jet
