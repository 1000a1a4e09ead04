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
  const std::filesystem::path given = files::ToPath(text::Utf8ToWide(utf8));
  return files::ToText(std::filesystem::absolute(given).lexically_normal());
}

}  // namespace paptool
