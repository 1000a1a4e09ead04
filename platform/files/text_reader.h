// Reads a text file of the system's single-byte code page line by line.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace files {

// A file of any size is read through a buffer of fixed size; a line of any length takes time in
// proportion to its length. CR LF, LF and a bare CR each end a line; a last line without an end is
// a line; an end at the end of the file does not begin another. The file is closed by the
// destructor. Other processes may read and write it meanwhile.
class TextReader {
 public:
  // Throws text::RuntimeError 53, 70 or 76 (files/file_error.h) when the file cannot be opened.
  explicit TextReader(const std::filesystem::path& path);

  // True when no line is left. Throws RuntimeError 57 when the file cannot be read.
  bool AtEnd();

  // The next line without its end. Throws RuntimeError 62 when no line is left, 57 when the file
  // cannot be read.
  std::wstring ReadLine();

 private:
  bool Fill();

  std::ifstream file_;
  std::vector<char> buffer_;
  std::size_t at_ = 0;   // the next unread byte of buffer_
  std::size_t end_ = 0;  // one past the last byte read into buffer_
  std::string line_;     // the bytes of the line in hand, kept for its capacity
};

}  // namespace files
