// Settings in the real registry, filled and read by the system's own program `reg`.
#include "tests/walks/settings.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace walks {
namespace {

constexpr char kKey[] = R"(Software\Velkor Software)";
constexpr char kText[] = "    REG_SZ    ";

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

}  // namespace

Settings::Settings(const std::filesystem::path& registry_file)
    : registry_(registry::MakeSystemRegistry()) {
  for (const std::string root : {R"(HKCU\)", R"(HKLM\)"}) {
    static_cast<void>(std::system(("reg delete " + Quoted(root + kKey) + " /f >nul 2>&1").c_str()));
  }
  const std::string import = "reg import " + Quoted(registry_file.string()) + " >nul 2>&1";
  if (std::system(import.c_str()) != 0) throw std::runtime_error("reg import failed");
}

std::optional<std::string> Settings::UserText(const std::string& key,
                                              const std::string& name) const {
  const std::string query = "reg query " + Quoted(R"(HKCU\)" + key) + " /v " + Quoted(name);
  std::FILE* const output = _popen((query + " 2>nul").c_str(), "r");
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
