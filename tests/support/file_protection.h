// Takes the right to write or to read a file away for a while, from an administrator as well.
#pragma once

#include <filesystem>
#include <memory>

namespace test_support {

// While it lives, this process may read the file and not write to it. On some systems the whole
// process acts for an ordinary user meanwhile, who needs rights of his own to everything else.
class WriteProtection {
 public:
  explicit WriteProtection(std::filesystem::path file);
  ~WriteProtection();  // everything may be done with the file
  WriteProtection(const WriteProtection&) = delete;
  WriteProtection& operator=(const WriteProtection&) = delete;

  // False where this account may write to any file, which a test cannot help.
  bool Holds() const;

 private:
  struct Impl;
  std::filesystem::path file_;
  std::unique_ptr<Impl> impl_;
};

// While it lives, this process may not read the file. The same holds for everything else.
class ReadProtection {
 public:
  explicit ReadProtection(std::filesystem::path file);
  ~ReadProtection();  // everything may be done with the file
  ReadProtection(const ReadProtection&) = delete;
  ReadProtection& operator=(const ReadProtection&) = delete;

 private:
  struct Impl;
  std::filesystem::path file_;
  std::unique_ptr<Impl> impl_;
};

}  // namespace test_support
