// The files of a folder, and deleting a file.
#include "platform/files/folder.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/files/file_error.h"
#include "platform/files/paths.h"
#include "platform/text/strings.h"

namespace files {
namespace {

namespace fs = std::filesystem;

constexpr bool kSystemHasItsOrder = Separator() == L'\\';

void SortByName(std::vector<std::wstring>& names) {
  std::vector<std::pair<std::wstring, std::wstring>> keyed;
  keyed.reserve(names.size());
  for (std::wstring& name : names) keyed.emplace_back(text::ToUpper(name), std::move(name));
  std::sort(keyed.begin(), keyed.end());
  std::transform(keyed.begin(), keyed.end(), names.begin(),
                 [](auto& pair) { return std::move(pair.second); });
}

text::RuntimeError FolderError(const std::error_code& error) {
  return FileError(error == std::errc::permission_denied ? kPermissionDenied : kPathNotFound);
}

}  // namespace

std::vector<std::wstring> FilesIn(const std::wstring& folder) {
  std::error_code error;
  fs::directory_iterator entry(ToPath(AbsolutePath(folder)), error);
  if (error) throw FolderError(error);

  std::vector<std::wstring> paths;
  while (entry != fs::directory_iterator()) {
    std::error_code gone;  // a file that vanished since, or a link that leads nowhere
    if (entry->is_regular_file(gone)) paths.push_back(ToText(entry->path()));
    entry.increment(error);
    if (error) throw FileError(kDeviceIoError);
  }
  // All paths begin alike, so sorting them is sorting the names.
  if constexpr (!kSystemHasItsOrder) SortByName(paths);
  return paths;
}

void RemoveFile(const std::wstring& path) {
  const fs::path file = ToPath(path);
  std::error_code error;
  const fs::file_status status = fs::symlink_status(file, error);
  if (!fs::exists(status)) throw OpenError(file, true);
  if (fs::is_directory(status)) throw FileError(kFileNotFound);
  if constexpr (kSystemHasItsOrder) {
    // There the mark on the file forbids it, elsewhere only the rights on the folder.
    fs::permissions(file, fs::perms::owner_write, fs::perm_options::add, error);
  }
  if (!fs::remove(file, error)) throw FileError(error ? kPermissionDenied : kFileNotFound);
}

}  // namespace files
