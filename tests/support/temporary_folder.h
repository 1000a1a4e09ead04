// A fresh, empty folder for one test, removed with everything in it at the end.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace test_support {

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }
  // The same as the program's path text.
  std::wstring Text(const std::filesystem::path& name) const;

  // Writes a file with exactly these bytes and returns its path; missing folders are made.
  std::filesystem::path Write(const std::filesystem::path& name, std::string_view bytes) const;

 private:
  std::filesystem::path path_;
};

// All bytes of a file. Throws std::runtime_error when it cannot be read.
std::string ReadAll(const std::filesystem::path& path);

// Leaves a copy of a database file for the independent readers, in the folder that the variable
// ORVPAP_CHANGED_FILES names; without it, does nothing.
void KeepForOtherReaders(const std::filesystem::path& file, const std::string& name);

}  // namespace test_support
