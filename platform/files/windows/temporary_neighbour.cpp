// The temporary neighbour on Windows: a handle of its own, and a rename that replaces.
#include "platform/files/temporary_neighbour.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/windows/call_path.h"
#include "platform/files/windows/handle.h"
#include "platform/files/windows/patience.h"
#include "platform/files/windows/rights.h"

namespace files {
namespace {

// FileRenameInfoEx, which the headers show only for systems newer than the oldest we run on.
constexpr auto kFileRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);

// Renames an open file over another one that is open for us alone. Returns an error code.
DWORD RenameOpenFile(HANDLE file, const std::filesystem::path& target) {
  const std::wstring name = CallPath(FullPath(target.wstring()));
  std::vector<std::byte> buffer(offsetof(FILE_RENAME_INFO, FileName) +
                                (name.size() + 1) * sizeof(wchar_t));
  FILE_RENAME_INFO info{};
  info.Flags = FILE_RENAME_FLAG_REPLACE_IF_EXISTS | FILE_RENAME_FLAG_POSIX_SEMANTICS;
  info.FileNameLength = static_cast<DWORD>(name.size() * sizeof(wchar_t));
  std::memcpy(buffer.data(), &info, offsetof(FILE_RENAME_INFO, FileName));
  std::memcpy(buffer.data() + offsetof(FILE_RENAME_INFO, FileName), name.c_str(),
              (name.size() + 1) * sizeof(wchar_t));
  return ErrorOf(SetFileInformationByHandle(file, kFileRenameInfoEx, buffer.data(),
                                            static_cast<DWORD>(buffer.size())));
}

// Whether the file system says that it can do so. A server may say it of its disk and yet rename in
// the older way.
bool SurelyRenamesOpenFiles(HANDLE file) {
  constexpr DWORD kSupportsPosixRename = 0x400;  // not every set of headers has its name
  FILE_REMOTE_PROTOCOL_INFO server{};
  DWORD abilities = 0;
  return GetFileInformationByHandleEx(file, FileRemoteProtocolInfo, &server, sizeof(server)) == 0 &&
         GetVolumeInformationByHandleW(file, nullptr, 0, nullptr, nullptr, &abilities, nullptr,
                                       0) != 0 &&
         (abilities & kSupportsPosixRename) != 0;
}

// Whether a renaming failed because the system does not know of it.
bool IsUnknownCall(DWORD error) {
  return error == ERROR_INVALID_PARAMETER || error == ERROR_INVALID_FUNCTION ||
         error == ERROR_INVALID_LEVEL || error == ERROR_NOT_SUPPORTED ||
         error == ERROR_CALL_NOT_IMPLEMENTED;
}

}  // namespace

TemporaryNeighbour::TemporaryNeighbour(std::filesystem::path target)
    : target_(std::move(target)), path_(NeighbourOf(target_)) {
  const std::wstring name = CallPath(path_);
  HANDLE file = INVALID_HANDLE_VALUE;
  const DWORD error = Patiently(kOpeningPatience, [&] {
    // Sharing nothing: somebody else who is replacing the same target keeps us out, and we them.
    // What a killed process left may be hidden, which CREATE_ALWAYS would refuse.
    file = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
    return ErrorOf(file != INVALID_HANDLE_VALUE);
  });
  if (error != ERROR_SUCCESS) throw CallError(error, path_);
  if (const DWORD uncut = ErrorOf(SetEndOfFile(file)); uncut != ERROR_SUCCESS) {
    CloseHandle(file);
    throw CallError(uncut, path_);
  }
  native_ = FromHandle(file);
}

TemporaryNeighbour::~TemporaryNeighbour() {
  if (native_ == kClosed) return;
  // While it is still open, so that nobody else can open it first.
  FILE_DISPOSITION_INFO removal{};
  removal.DeleteFile = TRUE;
  SetFileInformationByHandle(ToHandle(native_), FileDispositionInfo, &removal, sizeof(removal));
  CloseHandle(ToHandle(native_));
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

void TemporaryNeighbour::MoveOver(FileLock target_lock, const std::filesystem::path& rights_of) {
  const HANDLE file = ToHandle(native_);
  GiveRights(path_, rights_of);
  CompressAs(file, rights_of);
  if (FlushFileBuffers(file) == 0) throw CallError(GetLastError(), path_);
  // Elsewhere our own lock may be what makes it fail, for whatever time.
  const bool sure = SurelyRenamesOpenFiles(file);
  DWORD error = Patiently(sure ? kReplacingPatience : std::chrono::milliseconds(0),
                          [&] { return RenameOpenFile(file, target_); });
  if (error != ERROR_SUCCESS && sure && !IsUnknownCall(error)) throw CallError(error, target_);
  const FileStamp known = StampOf(CallPath(target_));
  CloseHandle(file);
  native_ = kClosed;
  target_lock.Release();
  if (error == ERROR_SUCCESS) return;

  // The older way replaces closed files only. Whoever opens the target now and keeps it, or writes
  // to it, makes it fail, no more.
  error = MoveOverPatiently(path_, target_, known);
  if (error == ERROR_SUCCESS) return;
  DeleteFileW(CallPath(path_).c_str());
  throw CallError(error, target_);
}

}  // namespace files
