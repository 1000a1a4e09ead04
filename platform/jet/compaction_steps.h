// The writing of a compacted copy, in steps of bounded size.
#pragma once

#include <functional>
#include <optional>

#include "platform/jet/pager.h"

namespace jet {

// Keeps one transaction after another open on the copy, so that neither memory nor the pages to be
// written again grow with the file. The copy is nobody's yet: where a step ends means nothing.
class CompactionSteps {
 public:
  CompactionSteps(Pager& pager, const std::function<void()>& progress)
      : pager_(pager), progress_(progress) {
    transaction_.emplace(pager_);
  }

  // To be called after something of about this size was written; may end the step.
  void Wrote(std::size_t bytes) {
    static constexpr std::size_t kBytesInStep = std::size_t{1} << 20;
    unwritten_ += bytes;
    if (unwritten_ >= kBytesInStep) End();
  }

  // Ends the step, and tells that there is progress.
  void End() {
    transaction_->Commit();
    transaction_.reset();
    unwritten_ = 0;
    if (progress_) progress_();
    transaction_.emplace(pager_);
  }

 private:
  Pager& pager_;
  const std::function<void()>& progress_;
  std::optional<PageTransaction> transaction_;
  std::size_t unwritten_ = 0;
};

}  // namespace jet
