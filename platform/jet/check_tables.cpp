// Finds tables for a file check: definition chains, data pages, slots, overflow rows.
#include "platform/jet/check_tables.h"

#include <algorithm>
#include <unordered_map>

#include "platform/jet/check_maps.h"
#include "platform/jet/data_page.h"
#include "platform/jet/row_format.h"
#include "platform/jet/table_definition_format.h"
#include "platform/jet/table_definition_store.h"

namespace jet::check {
namespace {

namespace definition_format = table_definition_format;

// Every page of the chain is full but the last, and reserve bytes count as used.
void CheckDefinitionChain(State& state, const CheckedTable& table) {
  std::size_t left = table.definition.verbatim.size() + definition_format::kReserve;
  std::size_t room = kPageSize;
  for (const PageNumber page : table.definition_pages) {
    const std::size_t used = std::min(left, room);
    const std::size_t free = state.pager.View(page).U16(definition_format::kFreeSpaceAt);
    if (free != room - used) {
      // Other writers now and then keep a chain that is longer than the definition needs.
      Lines& lines = left == 0 ? state.notes : state.problems;
      lines.Add(table.name, ": page ", page, ": ", free, " free bytes stored, ", room - used,
                " found");
    }
    left -= used;
    room = kPageSize - definition_format::kPageHeaderSize;
  }
}

// The slots of all data pages, and that moved rows and the pointers to them pair up.
class SlotCheck {
 public:
  SlotCheck(State& state, const CheckedTable& table) : state_(state), table_(table) {}

  void Look(ByteView page) {
    if (page.U32(data_page::kStampAt) != 0)
      state_.problems.Add(table_.name, ": page ", page.number(), ": a table's page with a stamp");
    for (unsigned row = 0; row < data_page::SlotCount(page); ++row) {
      const data_page::Slot slot = data_page::SlotAt(page, row);
      const RowPointer at{page.number(), static_cast<std::uint8_t>(row)};
      if (!slot.is_deleted() && slot.length > row_format::kMaxRowSize)
        state_.problems.Add(table_.name, ": ", at, ": a row of ", slot.length, " bytes");
      if (slot.is_hidden())
        hidden_.try_emplace(at, 0U);
      else if (slot.is_pointer())
        targets_.push_back({data_page::PointerAt(page, slot), at});
    }
  }

  void Finish() {
    for (const auto& [target, from] : targets_) {
      const auto found = hidden_.find(target);
      if (found == hidden_.end())
        state_.problems.Add(table_.name, ": ", from, " points to ", target,
                            ", which is no moved row of the table");
      else if (++found->second == 2)
        state_.problems.Add(table_.name, ": two rows point to ", target);
    }
    std::size_t unreferenced = 0;
    for (const auto& [at, pointers] : hidden_) unreferenced += pointers == 0 ? 1 : 0;
    if (unreferenced > 0)
      state_.notes.Add(table_.name, ": ", unreferenced, " moved rows that nothing points to");
  }

 private:
  struct Target {
    RowPointer target;
    RowPointer from;
  };
  State& state_;
  const CheckedTable& table_;
  std::vector<Target> targets_;
  std::unordered_map<RowPointer, unsigned> hidden_;
};

void CheckDataPages(State& state, CheckedTable& table) {
  table.data_pages = ClaimPages(state, table.definition.owned_pages,
                                table.definition.pages_with_room, Line("data of ", table.name));
  SlotCheck slots(state, table);
  std::erase_if(table.data_pages, [&](PageNumber page) {
    return !state.Guard(table.name, [&] {
      const ByteView view = state.pager.View(page);
      CheckDataPage(view, table.definition.page);
      slots.Look(view);
    });
  });
  slots.Finish();
}

}  // namespace

void LoadTable(State& state, PageNumber page, const std::u16string& name, bool is_user) {
  CheckedTable table;
  table.name = ToUtf8(name);
  table.catalog_name = name;
  table.is_user = is_user;
  const bool read = state.Guard(table.name, [&] {
    if (FindTable(state, page) != nullptr)
      throw Error(ErrorKind::kDamaged, "two catalog rows for one table definition", page);
    table.definition_pages = TableDefinitionPages(state.pager, page);
    table.definition = ReadTableDefinition(state.pager, page);
    const PageOwners::Owner owner = state.owners.Name("definition of " + table.name);
    for (const PageNumber part : table.definition_pages) state.Claim(part, owner);
    CheckDefinitionChain(state, table);
  });
  if (!read) return;
  CheckDataPages(state, table);
  state.places.emplace(page, state.tables.size());
  state.tables.push_back(std::move(table));
}

const CheckedTable* FindTable(const State& state, PageNumber page) {
  const auto place = state.places.find(page);
  return place == state.places.end() ? nullptr : &state.tables[place->second];
}

void ForEachRow(const Pager& pager, const CheckedTable& table,
                const std::function<void(RowId, ByteView)>& row,
                const std::function<void(RowId, const Error&)>& damaged) {
  for (const PageNumber number : table.data_pages) {
    const Page page = pager.Read(number);
    const ByteView view = page.view();
    for (unsigned i = 0; i < data_page::SlotCount(view); ++i) {
      const RowId home{number, static_cast<std::uint8_t>(i)};
      try {
        const data_page::Slot slot = data_page::SlotAt(view, i);
        if (slot.is_row()) row(home, ByteView(data_page::RowBytes(view, slot), number));
        if (!slot.is_pointer()) continue;
        const RowPointer target = data_page::PointerAt(view, slot);
        const Page other = pager.Read(target.page);
        CheckDataPage(other.view(), table.definition.page);
        const data_page::Slot moved = data_page::SlotAt(other.view(), target.row);
        if (!moved.is_hidden())
          throw Error(ErrorKind::kDamaged, "a pointer to no moved row", number);
        row(home, ByteView(data_page::RowBytes(other.view(), moved), target.page));
      } catch (const Error& error) {
        damaged(home, error);
      }
    }
  }
}

}  // namespace jet::check
