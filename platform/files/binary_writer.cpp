// Writes a file of bytes.
#include "platform/files/binary_writer.h"

#include <cerrno>

#include "platform/files/file_error.h"

namespace files {
namespace {

constexpr std::size_t kBufferSize = 64 * 1024;

}  // namespace

BinaryWriter::BinaryWriter(const std::filesystem::path& path, WriteMode mode)
    : buffer_(kBufferSize) {
  file_.rdbuf()->pubsetbuf(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  file_.open(path,
             std::ios::binary | (mode == WriteMode::kAppend ? std::ios::app : std::ios::trunc));
  if (!file_.is_open()) throw OpenError(path, false);
}

void BinaryWriter::Write(std::string_view bytes) {
  errno = 0;
  file_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  ThrowIfFailed();
}

void BinaryWriter::Flush() {
  errno = 0;
  file_.flush();
  ThrowIfFailed();
}

void BinaryWriter::Close() {
  if (!file_.is_open()) return;
  errno = 0;
  file_.close();
  ThrowIfFailed();
}

// The stream keeps no cause of its own; the system's error code is that of the call just made.
void BinaryWriter::ThrowIfFailed() {
  if (!file_) throw TransferError(errno);
}

}  // namespace files
