// The demo's updates applied to product tables that another program made: whatever indexes, rules
// and column orders they have, the outcome is that of a new product table.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

#include "demo/update_files.h"
#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPap.h"

namespace {

namespace fs = std::filesystem;

class OtherWritersTest : public test_support::ProductTableTest {
 protected:
  // What an import shows and the rows that the demo's updates are about, without keys that may
  // differ.
  struct Outcome {
    std::vector<std::string> shown;
    std::vector<std::string> rows;
  };

  Outcome ApplyEverything() {
    Outcome outcome;
    fs::create_directories(folder / "opening");
    fs::create_directories(folder / "PAP32");
    for (const auto& files : {demo::WriteOpeningUpdates(folder.Text("opening")),
                              demo::WriteUpdates(folder.Text("PAP32"))}) {
      for (const std::wstring& path : files) {
        clsOrvPap update;
        ReadPapHeader(path, update);
        update.ShowListMessage = [&](const std::wstring& message, const std::wstring& detail,
                                     bool show, bool error) {
          if (!show && !error) return;
          outcome.shown.push_back(text::WideToUtf8(message));
          outcome.shown.push_back(text::WideToUtf8(detail));
        };
        update.UpdatePT(product_table);
      }
    }
    ProductConnection.reset();
    for (auto& shown : outcome.shown) EraseFolder(shown);
    outcome.rows = DemoRows();
    CloseConnection();
    return outcome;
  }

  // Puts a copy of another product table in the place of the one in hand.
  void UseProductTable(const fs::path& other) {
    CloseConnection();
    const fs::path path = files::ToPath(product_table);
    fs::remove(path);
    fs::copy_file(other, path);
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
  }

 private:
  using Codes = std::map<std::string, std::string>;  // key to code

  void EraseFolder(std::string& line) const {
    const std::string path = folder.path().string();
    if (const auto at = line.find(path); at != std::string::npos) line.erase(at, path.size());
  }

  static std::vector<std::string> Split(const std::string& row) {
    std::vector<std::string> parts(1);
    for (const char c : row) {
      if (c == '|') {
        parts.emplace_back();
      } else {
        parts.back() += c;
      }
    }
    return parts;
  }

  Codes CodesOf(const std::wstring& table, const std::wstring& key, const std::wstring& code) {
    Codes codes;
    for (const std::string& row : Rows(table, {key, code})) {
      const auto parts = Split(row);
      codes[parts[0]] = parts[1];
    }
    return codes;
  }

  // The rows of a table that belong to one of the given codes, with codes for the keys in their
  // first columns.
  void Add(std::vector<std::string>& all, const std::wstring& table,
           const std::vector<std::pair<std::wstring, const Codes*>>& keys,
           const std::vector<std::wstring>& columns, const std::set<std::string>& wanted) {
    std::vector<std::wstring> all_columns;
    all_columns.reserve(keys.size() + columns.size());
    for (const auto& key : keys) all_columns.push_back(key.first);
    all_columns.insert(all_columns.end(), columns.begin(), columns.end());
    for (const std::string& row : Rows(table, all_columns)) {
      auto parts = Split(row);
      for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto code = keys[i].second->find(parts[i]);
        if (code != keys[i].second->end()) parts[i] = code->second;
      }
      if (!wanted.contains(parts[0])) continue;
      std::string line = text::WideToUtf8(table);
      for (const std::string& part : parts) line.append("|").append(part);
      all.push_back(line);
    }
  }

  std::vector<std::string> DemoRows() {
    const Codes suppliers = CodesOf(L"Supplier", L"ID", L"Code");
    const Codes series = CodesOf(L"Serie", L"SerieNr", L"SerieCode");
    const Codes articles = CodesOf(L"Article", L"ID", L"Code");
    const Codes groups = CodesOf(L"BPG", L"ID", L"Code");
    const Codes discounts = CodesOf(L"Discount", L"ID", L"Code");
    const std::set<std::string> our_suppliers = {"VELDHAVEN", "BRUGMEER", "OOSTRAND"};
    const std::set<std::string> our_series = {"HEA", "HEB", "IPE", "UNP", "L-GEL", "L-ONG", "WG",
                                              "KG",  "SZ",  "TR",  "NL",  "PR",    "VK",    "RVS"};
    std::vector<std::string> all;
    Add(all, L"Supplier", {}, {L"Code", L"Description", L"ToA", L"ToB", L"Rights"}, our_suppliers);
    Add(all, L"Serie", {}, {L"SerieCode", L"Description", L"UseOverlengthBonus"}, our_series);
    Add(all, L"Article", {{L"fkSerie", &series}}, {L"Code", L"Description", L"Description2"},
        our_series);
    Add(all, L"Discount", {{L"fkSupplier", &suppliers}},
        {L"Code", L"Description", L"DiscPercA", L"DiscPercB", L"DiscPercC"}, our_suppliers);
    Add(all, L"BPG", {{L"fkSupplier", &suppliers}},
        {L"Code", L"Description", L"DimUnit", L"PriceUnit"}, our_suppliers);
    Add(all, L"OverlengthBonus", {{L"fkSupplier", &suppliers}}, {L"Begin", L"End", L"Price"},
        our_suppliers);
    Add(all, L"ArtPrice",
        {{L"fkSupplier", &suppliers},
         {L"fkArticle", &articles},
         {L"fkBPG", &groups},
         {L"fkDiscount", &discounts}},
        {L"PriceDim", L"OverPrice", L"SawPrice", L"BlastPrice", L"CoatPrice", L"ArtNrSupplier"},
        our_suppliers);
    std::sort(all.begin(), all.end());
    return all;
  }
};

TEST_F(OtherWritersTest, UpdatesHaveTheSameOutcome) {
  const char* shared = std::getenv("ORVPAP_SHARED");
  if (shared == nullptr) GTEST_SKIP() << "ORVPAP_SHARED names no folder with product tables";
  const Outcome expected = ApplyEverything();
  ASSERT_GT(expected.rows.size(), 800u);
  for (const char* name : {"linked.pt", "loose.pt", "large.pt"}) {
    SCOPED_TRACE(name);
    UseProductTable(fs::path(shared) / "product-tables" / name);
    const Outcome outcome = ApplyEverything();
    EXPECT_EQ(outcome.shown, expected.shown);
    EXPECT_EQ(outcome.rows, expected.rows);
    EXPECT_THAT(prompt.messages, testing::IsEmpty());
  }
}

}  // namespace
