// A prompt that keeps what it was asked to show and answers as the test has told it.
#pragma once

#include <string>
#include <vector>

#include "platform/controls/services.h"

namespace test_support {

class RecordingPrompt final : public controls::Prompt {
 public:
  struct Shown {
    std::wstring text;
    std::wstring caption;
    friend bool operator==(const Shown&, const Shown&) = default;
  };

  void ShowMessage(const std::wstring& text, const std::wstring& caption) override {
    messages.push_back({text, caption});
  }
  bool AskYesNo(const std::wstring& text, const std::wstring& caption) override {
    questions.push_back({text, caption});
    return answer;
  }

  std::vector<Shown> messages;
  std::vector<Shown> questions;
  bool answer = true;  // to every question
};

}  // namespace test_support
