// Writes a text file in the system's single-byte code page, lines ended by CR LF.
#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

namespace files {

enum class WriteMode { kReplace, kAppend };

// Buffered: what was written is certainly in the file only after Close() (or Flush()). The
// destructor closes without reporting errors, so a caller that cares calls Close().
class TextWriter {
 public:
  // Creates the file, or empties or continues an existing one. Throws text::RuntimeError 70 or 76
  // (files/file_error.h) when that fails.
  explicit TextWriter(const std::filesystem::path& path, WriteMode mode = WriteMode::kReplace);

  // Adds the text, WriteLine also the line end. Throw RuntimeError 61 (disk full) or 57, perhaps
  // for text of an earlier call.
  void Write(std::wstring_view text);
  void WriteLine(std::wstring_view text);

  // Hands everything to the operating system. Throw as Write does. A second Close does nothing.
  void Flush();
  void Close();

 private:
  void ThrowIfFailed();

  std::ofstream file_;
};

}  // namespace files
