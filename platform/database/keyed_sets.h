// Sets of row addresses or positions by a key, each set in ascending order.
#pragma once

#include <set>
#include <string>
#include <unordered_map>

namespace database {

// Adding, removing and finding take constant time on average, and logarithmic time in the number of
// members that share a key.
template <class Member>
class KeyedSets {
 public:
  using Set = std::set<Member>;

  void Add(const std::string& key, Member member) {
    Set& members = sets_[key];
    members.insert(members.end(), member);  // most additions are the greatest so far
  }

  void Remove(const std::string& key, Member member) {
    const auto found = sets_.find(key);
    if (found == sets_.end()) return;
    found->second.erase(member);
    if (found->second.empty()) sets_.erase(found);
  }

  // nullptr when no member has this key.
  const Set* Find(const std::string& key) const {
    const auto found = sets_.find(key);
    return found == sets_.end() ? nullptr : &found->second;
  }

 private:
  std::unordered_map<std::string, Set> sets_;
};

}  // namespace database
