// Reads a text file of the system's single-byte code page line by line.
#include "platform/files/text_reader.h"

#include <algorithm>
#include <system_error>

#include "platform/files/file_error.h"
#include "platform/text/code_page.h"

namespace files {
namespace {

constexpr std::size_t kBufferSize = 64 * 1024;

bool EndsLine(char byte) { return byte == '\r' || byte == '\n'; }

}  // namespace

TextReader::TextReader(const std::filesystem::path& path) : buffer_(kBufferSize) {
  // A folder could be opened on some systems, and a pipe or a device be read for ever.
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored)) file_.open(path, std::ios::binary);
  if (!file_.is_open()) throw OpenError(path, true);
}

bool TextReader::AtEnd() { return at_ == end_ && !Fill(); }

std::wstring TextReader::ReadLine() {
  if (AtEnd()) throw FileError(kInputPastEnd);
  line_.clear();
  do {
    const char* const begin = buffer_.data() + at_;
    const char* const end = buffer_.data() + end_;
    const char* const line_end = std::find_if(begin, end, EndsLine);
    line_.append(begin, line_end);
    at_ += static_cast<std::size_t>(line_end - begin);
    if (line_end != end) {
      ++at_;
      const bool may_continue = *line_end == '\r' && !AtEnd();
      if (may_continue && buffer_[at_] == '\n') ++at_;
      break;
    }
  } while (Fill());
  return text::AnsiToWide(line_);
}

bool TextReader::Fill() {
  if (file_.eof()) return false;
  file_.read(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  if (file_.bad()) throw FileError(kDeviceIoError);
  at_ = 0;
  end_ = static_cast<std::size_t>(file_.gcount());
  return end_ > 0;
}

}  // namespace files
