// The whole check of a file: opening it, then every part in turn.
#include "platform/jet/check.h"

#include <algorithm>
#include <utility>

#include "platform/jet/check_catalog.h"
#include "platform/jet/check_indexes.h"
#include "platform/jet/check_maps.h"
#include "platform/jet/check_relations.h"
#include "platform/jet/check_rows.h"
#include "platform/jet/check_state.h"
#include "platform/jet/undo_journal.h"

namespace jet {
namespace {

void CheckTable(check::State& state, const check::CheckedTable& table) {
  state.Guard(table.name, [&] {
    std::vector<check::ExpectedEntries> expected = check::CheckRows(state, table);
    for (std::size_t i = 0; i < expected.size(); ++i)
      check::CheckIndex(state, table, i, expected[i]);
  });
}

}  // namespace

CheckReport CheckPages(std::unique_ptr<PageStore> store, const OpenOptions& options) {
  if (store->page_count() == 0) throw Error(ErrorKind::kNotADatabase, "an empty file");
  PageBytes page_0;
  store->Read(0, page_0);
  const DatabaseHeader header = DatabaseHeader::Parse(page_0);
  if (!header.password().empty() && header.password() != options.password)
    throw Error(ErrorKind::kWrongPassword);

  const Pager pager(std::move(store), header.page_key());
  check::State state(pager, header);
  if (header.is_suspect()) state.problems.Add("a writer of this file was cut off, or met damage");
  if (check::LoadCatalog(state)) {
    for (const check::CheckedTable& table : state.tables) CheckTable(state, table);
    check::CheckRelations(state);
    check::CheckCatalog(state);
    check::CheckGlobalMaps(state);
  }

  CheckReport report;
  report.tables =
      static_cast<std::size_t>(std::ranges::count_if(state.tables, &check::CheckedTable::is_user));
  report.rows = state.rows;
  report.index_entries = state.index_entries;
  report.problems = state.problems.Take();
  report.notes = state.notes.Take();
  return report;
}

CheckReport CheckFile(const std::filesystem::path& path, const OpenOptions& options) {
  return CheckPages(OpenRecovered(path, OpenMode::kReadOnly), options);
}

}  // namespace jet
