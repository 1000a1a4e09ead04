// Settings in the real registry, filled by the system's own program `reg`.
#include "tests/walks/settings.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace walks {

std::unique_ptr<registry::Registry> FreshSettings(const std::filesystem::path& registry_file) {
  for (const std::string root : {"HKCU", "HKLM"}) {
    const std::string key = '"' + root + R"(\Software\Velkor Software")";
    static_cast<void>(std::system(("reg delete " + key + " /f >nul 2>&1").c_str()));
  }
  const std::string import = "reg import \"" + registry_file.string() + "\" >nul 2>&1";
  if (std::system(import.c_str()) != 0) throw std::runtime_error("reg import failed");
  return registry::MakeSystemRegistry();
}

}  // namespace walks
