// Lists: items, what an observer hears of each, and what the user does.
#include "platform/controls/list_view.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/error_number.h"

namespace {

using controls::ListView;
using test_support::ErrorNumberOf;
using testing::ElementsAre;

// Writes down what it is told.
class Notices final : public ListView::ItemObserver {
 public:
  void ColumnsChanged() override { heard.emplace_back("columns"); }
  void ItemAdded(std::size_t index) override { heard.push_back("added " + std::to_string(index)); }
  void ItemChanged(std::size_t index) override {
    heard.push_back("changed " + std::to_string(index));
  }
  void ItemsCleared() override { heard.emplace_back("cleared"); }
  void ScrollIntoView(std::size_t index) override {
    heard.push_back("scroll " + std::to_string(index));
  }

  std::vector<std::string> Take() { return std::exchange(heard, {}); }

  std::vector<std::string> heard;
};

class ListViewTest : public testing::Test {
 protected:
  ListViewTest() {
    list.SetColumns({L"first", L"second", L"third"});
    list.SetCheckBoxes(true);
    list.AddItem({.key = L"1P", .text = L"a", .sub_items = {L"b", L"c"}});
    list.AddItem({.key = L"2P", .text = L"d"});
    list.ObserveItems(&notices);
  }

  ListView list;
  Notices notices;
};

TEST_F(ListViewTest, EachChangeIsToldOnceAndOfItsItemAlone) {
  const auto change = [&] {
    list.SetText(0, L"A");
    list.SetSubItem(1, 2, L"f");
    list.SetChecked(1, true);
    list.SetSelected(0, true);
    list.SetColour(1, controls::kRed);
    list.SetColumns({L"first", L"second"});
    return notices.Take();
  };
  EXPECT_THAT(change(), ElementsAre("changed 0", "changed 1", "changed 1", "changed 0", "changed 1",
                                    "columns"));
  EXPECT_THAT(list.Item(1).sub_items, ElementsAre(L"", L"f"));
  EXPECT_THAT(change(), testing::IsEmpty()) << "nothing is different";
  list.AddItem({.text = L"g"});
  list.EnsureVisible(2);
  list.Clear();
  list.Clear();
  EXPECT_THAT(notices.Take(), ElementsAre("added 2", "scroll 2", "cleared"));
}

TEST_F(ListViewTest, KeysAreUniqueUntilTheListIsCleared) {
  EXPECT_EQ(list.Find(L"2P"), 1U);
  EXPECT_EQ(list.Find(L"3P"), std::nullopt);
  EXPECT_EQ(ErrorNumberOf([&] { list.AddItem({.key = L"1P"}); }), ListView::kKeyNotUnique);
  EXPECT_EQ(list.Items().size(), 2U);
  list.AddItem({});
  list.AddItem({});
  EXPECT_EQ(list.Find(L""), std::nullopt) << "no key is no key";
  list.Clear();
  EXPECT_EQ(list.Find(L"1P"), std::nullopt);
  EXPECT_EQ(list.AddItem({.key = L"1P"}), 0U);
}

TEST_F(ListViewTest, PositionsOutsideAreRefused) {
  const std::size_t past = list.Items().size();
  for (const auto& action : std::initializer_list<std::function<void()>>{
           [&] { list.Item(past); }, [&] { list.SetText(past, L"x"); },
           [&] { list.SetSubItem(0, 0, L"x"); }, [&] { list.EnsureVisible(past); },
           [&] { list.Check(past, true); }})
    EXPECT_EQ(ErrorNumberOf(action), ListView::kIndexOutOfBounds);
  EXPECT_THAT(notices.Take(), testing::IsEmpty());
}

TEST_F(ListViewTest, OnlyTheUsersChecksAreEvents) {
  std::vector<std::size_t> checked;
  list.ItemCheck = [&](std::size_t index) {
    EXPECT_TRUE(list.Item(index).checked) << "the event comes after the change";
    checked.push_back(index);
  };
  list.SetChecked(0, true);
  list.Check(0, true);
  list.Check(1, true);
  EXPECT_THAT(checked, ElementsAre(1U));
  list.SetEnabled(false);
  list.Check(1, false);
  list.Select(1, true);
  EXPECT_TRUE(list.Item(1).checked);
  EXPECT_FALSE(list.Item(1).selected);
  list.SetEnabled(true);
  list.SetCheckBoxes(false);
  list.Check(1, false);
  EXPECT_TRUE(list.Item(1).checked) << "there is no box to click";
}

}  // namespace
