// One settings file that several programs share.
#include "platform/registry/posix/text_store.h"

#include <chrono>
#include <fstream>
#include <string>
#include <system_error>

#include "platform/files/file_error.h"
#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/files/temporary_neighbour.h"
#include "platform/text/code_page.h"

namespace registry {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kPatience{5};  // with another program that changes the same file

// The settings of one program are a few KB; what is larger than this is something else.
constexpr std::size_t kLargestFile = 64 * 1024 * 1024;

std::string ReadBytes(const fs::path& path) {
  std::error_code ignored;
  std::ifstream file;
  if (fs::is_regular_file(path, ignored)) file.open(path, std::ios::binary);
  if (!file.is_open()) throw files::OpenError(path, true);
  std::string bytes;
  std::string buffer(64 * 1024, '\0');
  while (file && bytes.size() <= kLargestFile) {
    file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    bytes.append(buffer, 0, static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) throw files::FileError(files::kDeviceIoError);
  if (bytes.size() > kLargestFile) throw FormatError("too large for settings");
  return bytes;
}

// Runs `work` and adds the file's name to what it throws.
auto WithName(const fs::path& path, const wchar_t* what, const auto& work) {
  const auto sentence = [&](const std::wstring& reason) {
    return reason + L": " + what + L" '" + files::ToText(path) + L"'";
  };
  try {
    return work();
  } catch (const FormatError& error) {
    throw text::RuntimeError(kInvalidFileFormat, sentence(L"Invalid file format") + L" (" +
                                                     text::Utf8ToWide(error.what()) + L")");
  } catch (const text::RuntimeError& error) {
    throw text::RuntimeError(error.number(), sentence(error.description()));
  }
}

void MakeFolderOf(const fs::path& path) {
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  if (error) throw files::TransferError(error.value());
}

}  // namespace

std::optional<RegFile> TextStore::Read() const {
  return WithName(path_, L"reading the settings in", [&]() -> std::optional<RegFile> {
    std::error_code error;
    if (!fs::exists(path_, error) && !error) return std::nullopt;
    return RegFile(ReadBytes(path_));
  });
}

void TextStore::Change(const std::function<void(RegFile&)>& change) const {
  WithName(path_, L"writing the settings in", [&] {
    MakeFolderOf(path_);
    const fs::path path = files::FollowLink(path_);
    files::FileLock lock(path, files::MissingFile::kCreateEmpty, kPatience);
    RegFile content(ReadBytes(path));
    change(content);
    const std::string bytes = content.Bytes();
    files::TemporaryNeighbour changed(path);
    changed.Write(bytes);
    changed.MoveOver(std::move(lock), path);
  });
}

}  // namespace registry
