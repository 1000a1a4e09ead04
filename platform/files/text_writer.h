// Writes a text file in the system's single-byte code page, lines ended by CR LF.
#pragma once

#include <filesystem>
#include <string_view>

#include "platform/files/binary_writer.h"

namespace files {

// Buffered, opened and closed as a BinaryWriter, with the same errors.
class TextWriter {
 public:
  explicit TextWriter(const std::filesystem::path& path, WriteMode mode = WriteMode::kReplace)
      : file_(path, mode) {}

  // Adds the text, WriteLine also the line end.
  void Write(std::wstring_view text);
  void WriteLine(std::wstring_view text);

  void Flush() { file_.Flush(); }
  void Close() { file_.Close(); }

 private:
  BinaryWriter file_;
};

}  // namespace files
