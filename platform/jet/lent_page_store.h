// A page store on loan: its user may drop it, the file stays open.
#pragma once

#include <cstddef>
#include <functional>
#include <utility>

#include "platform/jet/page_store.h"

namespace jet {

enum class Lent { kAsItIs, kForReading };

// The pages of another store, which must outlive it. Calls `while_reading`, if there is one, now
// and then while it is read from; what that throws ends the reading.
class LentPageStore final : public PageStore {
 public:
  LentPageStore(PageStore& store, Lent how, std::function<void()> while_reading = {})
      : store_(store),
        read_only_(how == Lent::kForReading || store.read_only()),
        while_reading_(std::move(while_reading)) {}

  PageNumber page_count() const override { return store_.page_count(); }
  bool read_only() const override { return read_only_; }
  void Read(PageNumber number, std::span<std::byte, kPageSize> into) const override {
    static constexpr std::size_t kReadsBetween = 64;
    if (while_reading_ && ++reads_ % kReadsBetween == 0) while_reading_();
    store_.Read(number, into);
  }
  void Write(PageNumber number, std::span<const std::byte, kPageSize> page) override {
    store_.Write(number, page);
  }
  void Truncate(PageNumber page_count) override { store_.Truncate(page_count); }
  void Sync() override { store_.Sync(); }

 private:
  PageStore& store_;
  bool read_only_;
  std::function<void()> while_reading_;
  mutable std::size_t reads_ = 0;
};

}  // namespace jet
