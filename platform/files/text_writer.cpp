// Writes a text file in the system's single-byte code page.
#include "platform/files/text_writer.h"

#include <cerrno>

#include "platform/files/file_error.h"
#include "platform/text/code_page.h"

namespace files {

TextWriter::TextWriter(const std::filesystem::path& path, WriteMode mode)
    : file_(path,
            std::ios::binary | (mode == WriteMode::kAppend ? std::ios::app : std::ios::trunc)) {
  if (!file_.is_open()) throw OpenError(path, false);
}

void TextWriter::Write(std::wstring_view text) {
  errno = 0;
  const std::string bytes = text::WideToAnsi(text);
  file_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  ThrowIfFailed();
}

void TextWriter::WriteLine(std::wstring_view text) {
  Write(text);
  Write(L"\r\n");
}

void TextWriter::Flush() {
  errno = 0;
  file_.flush();
  ThrowIfFailed();
}

void TextWriter::Close() {
  if (!file_.is_open()) return;
  errno = 0;
  file_.close();
  ThrowIfFailed();
}

// The stream keeps no cause of its own; the system's error code is that of the call just made.
void TextWriter::ThrowIfFailed() {
  if (!file_) throw TransferError(errno);
}

}  // namespace files
