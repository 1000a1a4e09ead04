// The temporary neighbour on Windows: a handle of its own, and a rename that replaces.
#include "platform/files/temporary_neighbour.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "platform/files/windows/handle.h"

namespace files {
namespace {

// FileRenameInfoEx, which the headers show only for systems newer than the oldest we run on.
constexpr auto kFileRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);

// Renames an open file over another one that is open for us alone. False where the file system or
// the system is too old for it.
bool RenameOpenFile(HANDLE file, const std::filesystem::path& target) {
  std::error_code error;
  const std::wstring name = std::filesystem::absolute(target, error).wstring();
  if (error) return false;
  std::vector<std::byte> buffer(offsetof(FILE_RENAME_INFO, FileName) +
                                (name.size() + 1) * sizeof(wchar_t));
  FILE_RENAME_INFO info{};
  info.Flags = FILE_RENAME_FLAG_REPLACE_IF_EXISTS | FILE_RENAME_FLAG_POSIX_SEMANTICS;
  info.FileNameLength = static_cast<DWORD>(name.size() * sizeof(wchar_t));
  std::memcpy(buffer.data(), &info, offsetof(FILE_RENAME_INFO, FileName));
  std::memcpy(buffer.data() + offsetof(FILE_RENAME_INFO, FileName), name.c_str(),
              (name.size() + 1) * sizeof(wchar_t));
  return SetFileInformationByHandle(file, kFileRenameInfoEx, buffer.data(),
                                    static_cast<DWORD>(buffer.size())) != 0;
}

}  // namespace

TemporaryNeighbour::TemporaryNeighbour(std::filesystem::path target)
    : target_(std::move(target)), path_(NeighbourOf(target_)) {
  // Sharing nothing: somebody else who is replacing the same target keeps us out, and we them.
  const HANDLE file = CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) throw CallError(GetLastError(), path_);
  native_ = FromHandle(file);
}

TemporaryNeighbour::~TemporaryNeighbour() {
  if (native_ == kClosed) return;
  CloseHandle(ToHandle(native_));
  DeleteFileW(path_.c_str());
}

void TemporaryNeighbour::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    constexpr std::size_t kMost = std::numeric_limits<DWORD>::max();
    DWORD put = 0;
    if (WriteFile(ToHandle(native_), bytes.data(),
                  static_cast<DWORD>(std::min(bytes.size(), kMost)), &put, nullptr) == 0) {
      throw CallError(GetLastError(), path_);
    }
    if (put == 0) throw FileError(kDiskFull);
    bytes.remove_prefix(put);
  }
}

void TemporaryNeighbour::MoveOver(FileLock target_lock, const std::filesystem::path&) {
  const HANDLE file = ToHandle(native_);
  if (FlushFileBuffers(file) == 0) throw CallError(GetLastError(), path_);
  if (RenameOpenFile(file, target_)) {
    CloseHandle(file);
    native_ = kClosed;
    target_lock.Release();
    return;
  }
  // The older way replaces closed files only. Whoever opens the target now makes it fail, no more.
  target_lock.Release();
  CloseHandle(file);
  native_ = kClosed;
  if (MoveFileExW(path_.c_str(), target_.c_str(),
                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
    const DWORD error = GetLastError();
    DeleteFileW(path_.c_str());
    throw CallError(error, target_);
  }
}

}  // namespace files
