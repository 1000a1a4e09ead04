// Copies a file so that the target is never half of it.
#include "platform/files/file_copy.h"

#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/files/file_error.h"
#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/files/temporary_neighbour.h"

namespace files {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBufferSize = 256 * 1024;

std::ifstream OpenSource(const fs::path& path) {
  std::error_code ignored;
  std::ifstream source;
  if (fs::is_regular_file(path, ignored)) source.open(path, std::ios::binary);
  if (!source.is_open()) throw OpenError(path, true);
  return source;
}

}  // namespace

void CopyFileAtomically(const std::wstring& source, const std::wstring& target) {
  const fs::path from = ToPath(source);
  const fs::path to = FollowLink(ToPath(target));
  std::ifstream input = OpenSource(from);
  std::error_code ignored;
  if (fs::equivalent(from, to, ignored)) throw FileError(kPermissionDenied);

  FileLock lock(to, MissingFile::kHoldNothing);
  const bool replaces = lock.Holds();
  TemporaryNeighbour copy(to);
  std::vector<char> buffer(kBufferSize);
  while (input) {
    input.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    if (input.bad()) throw FileError(kDeviceIoError);
    copy.Write({buffer.data(), static_cast<std::size_t>(input.gcount())});
  }
  copy.MoveOver(std::move(lock), replaces ? to : from);
}

}  // namespace files
