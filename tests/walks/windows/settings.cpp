// Settings in the real registry, filled and read by the system's own program `reg`.
#include "tests/walks/settings.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace walks {
namespace {

constexpr char kText[] = "    REG_SZ    ";

}  // namespace

std::unique_ptr<registry::Registry> FreshSettings(const std::filesystem::path& registry_file) {
  for (const std::string root : {"HKCU", "HKLM"}) {
    const std::string key = '"' + root + R"(\Software\Velkor Software")";
    static_cast<void>(std::system(("reg delete " + key + " /f >nul 2>&1").c_str()));
  }
  const std::string import = "reg import \"" + registry_file.string() + "\" >nul 2>&1";
  if (std::system(import.c_str()) != 0) throw std::runtime_error("reg import failed");
  return registry::MakeSystemRegistry();
}

std::optional<std::string> UserSetting(const registry::Registry&, const std::string& key,
                                       const std::string& name) {
  const std::string query = "reg query \"HKCU\\" + key + "\" /v \"" + name + "\" 2>nul";
  std::FILE* const output = _popen(query.c_str(), "r");
  if (output == nullptr) throw std::runtime_error("reg query failed");
  std::string all;
  std::array<char, 512> part{};
  while (std::fgets(part.data(), part.size(), output) != nullptr) all += part.data();
  _pclose(output);
  const std::size_t found = all.find(kText);
  if (found == std::string::npos) return std::nullopt;
  const std::size_t begin = found + sizeof(kText) - 1;
  return all.substr(begin, all.find_first_of("\r\n", begin) - begin);
}

}  // namespace walks
