// A file dialog that keeps what it was asked and answers as the test has told it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/controls/services.h"

namespace test_support {

class ScriptedFileDialog final : public controls::FileDialog {
 public:
  std::optional<std::wstring> ChooseFile(const Request& request) override {
    requests.push_back(request);
    return answer;
  }

  std::vector<Request> requests;
  std::optional<std::wstring> answer;  // to every request; nothing for a cancelled dialog
};

}  // namespace test_support
