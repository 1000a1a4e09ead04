// Writes a file of bytes.
#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace files {

enum class WriteMode { kReplace, kAppend };

// Buffered: what was written is certainly in the file only after Close() (or Flush()). The
// destructor closes without reporting errors, so a caller that cares calls Close().
class BinaryWriter {
 public:
  // Creates the file, or empties or continues an existing one. Throws text::RuntimeError 70 or 76
  // (files/file_error.h) when that fails.
  explicit BinaryWriter(const std::filesystem::path& path, WriteMode mode = WriteMode::kReplace);
  BinaryWriter(const BinaryWriter&) = delete;
  BinaryWriter& operator=(const BinaryWriter&) = delete;

  // Adds bytes. Throws RuntimeError 61 (disk full) or 57, perhaps for bytes of an earlier call.
  void Write(std::string_view bytes);

  // Hands everything to the operating system. Throw as Write does. A second Close does nothing.
  void Flush();
  void Close();

 private:
  void ThrowIfFailed();

  std::vector<char> buffer_;  // the stream's; outlives it
  std::ofstream file_;
};

}  // namespace files
