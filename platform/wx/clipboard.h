// The system's clipboard.
#pragma once

#include "platform/controls/services.h"

namespace wx_windows {

class Clipboard final : public controls::Clipboard {
 public:
  void Clear() override;
  void SetText(const std::wstring& text) override;
};

}  // namespace wx_windows
