// Paths as the command line gives them.
#include "tools/paptool/paths.h"

#include <filesystem>

#include "platform/files/paths.h"
#include "platform/text/code_page.h"

namespace paptool {

std::string PathProblem(const std::string& utf8) {
  return utf8.empty() ? "an empty text is no path" : "";
}

std::wstring AbsolutePath(const std::string& utf8) {
  std::wstring path = files::AbsolutePath(text::Utf8ToWide(utf8));
  if constexpr (files::Separator() == L'\\') {
    return path;  // is without . and .. already
  } else {
    return files::ToText(files::ToPath(path).lexically_normal());
  }
}

}  // namespace paptool
