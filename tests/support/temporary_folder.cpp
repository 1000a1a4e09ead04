// A fresh, empty folder for one test.
#include "tests/support/temporary_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

#include "platform/files/paths.h"

namespace test_support {

TemporaryFolder::TemporaryFolder() {
  std::random_device random;
  do {
    path_ = std::filesystem::temp_directory_path() / ("orvpap-test-" + std::to_string(random()));
  } while (!std::filesystem::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;  // a file that a test left open may keep the folder on some systems
  std::filesystem::remove_all(path_, ignored);
}

std::wstring TemporaryFolder::Text(const std::filesystem::path& name) const {
  return files::ToText(path_ / name);
}

std::filesystem::path TemporaryFolder::Write(const std::filesystem::path& name,
                                             std::string_view bytes) const {
  std::filesystem::path path = path_ / name;
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
  return path;
}

std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void KeepForOtherReaders(const std::filesystem::path& file, const std::string& name) {
  if (const char* const folder = std::getenv("ORVPAP_CHANGED_FILES"))
    std::filesystem::copy_file(file, std::filesystem::path(folder) / name,
                               std::filesystem::copy_options::overwrite_existing);
}

}  // namespace test_support
