// A clipboard in memory, which can be told to fail.
#pragma once

#include <optional>
#include <string>

#include "platform/controls/services.h"
#include "platform/text/runtime_error.h"

namespace test_support {

class RecordingClipboard final : public controls::Clipboard {
 public:
  void Clear() override {
    if (failure) throw text::RuntimeError(*failure);
    text.reset();
  }
  // What was there must have been cleared: a second text beside the first is nobody's wish.
  void SetText(const std::wstring& new_text) override { text = text.value_or(L"") + new_text; }

  std::optional<std::wstring> text;
  std::optional<text::RuntimeError> failure;  // thrown by Clear
};

}  // namespace test_support
