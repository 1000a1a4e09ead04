// The registry of systems that have none: settings files.
#include "platform/registry/posix/system_registry.h"

#include <cstdlib>
#include <vector>

#include "platform/files/file_error.h"
#include "platform/files/program_folder.h"
#include "platform/registry/posix/text_store.h"
#include "platform/text/strings.h"

namespace registry {
namespace {

const wchar_t* NameOf(RootKey root) {
  switch (root) {
    case RootKey::kClassesRoot:
      return L"HKEY_CLASSES_ROOT";
    case RootKey::kCurrentUser:
      return L"HKEY_CURRENT_USER";
    case RootKey::kLocalMachine:
      return L"HKEY_LOCAL_MACHINE";
    case RootKey::kUsers:
      return L"HKEY_USERS";
    case RootKey::kCurrentConfig:
      break;
  }
  return L"HKEY_CURRENT_CONFIG";
}

std::wstring FullKey(RootKey root, const std::wstring& key) {
  return std::wstring(NameOf(root)) + L'\\' + key;
}

// The keys to look at, in this order. A file exported on a 64-bit Windows names the view of its
// 32-bit programs as a folder of its own.
std::vector<std::wstring> KeysToRead(RootKey root, const std::wstring& key) {
  constexpr std::wstring_view kSoftware = L"Software\\";
  std::vector<std::wstring> keys;
  const std::wstring_view front = std::wstring_view(key).substr(0, kSoftware.size());
  if (root == RootKey::kLocalMachine && text::EqualsNoCase(front, kSoftware)) {
    keys.push_back(FullKey(root, L"Software\\WOW6432Node\\" + key.substr(kSoftware.size())));
  }
  keys.push_back(FullKey(root, key));
  return keys;
}

}  // namespace

std::optional<Value> FileRegistry::Read(RootKey root, const std::wstring& key,
                                        const std::wstring& name) const {
  const StoreLocation location = locate_();
  std::vector<std::filesystem::path> paths;
  if (!location.user.empty()) paths.push_back(location.user);
  if (location.machine != location.user) paths.push_back(location.machine);
  for (const std::filesystem::path& path : paths) {
    const std::optional<RegFile> file = TextStore(path).Read();
    if (!file) continue;
    for (const std::wstring& full_key : KeysToRead(root, key)) {
      if (std::optional<Value> value = file->Find(full_key, name)) return value;
    }
  }
  return std::nullopt;
}

void FileRegistry::WriteText(RootKey root, const std::wstring& key, const std::wstring& name,
                             const std::wstring& text) {
  const StoreLocation location = locate_();
  const auto& path = root == RootKey::kCurrentUser ? location.user : location.machine;
  if (path.empty()) {
    throw text::RuntimeError(files::kPathNotFound,
                             L"Path not found: the user has no home folder to keep settings in");
  }
  TextStore(path).Change([&](RegFile& file) { file.SetText(FullKey(root, key), name, text); });
}

std::unique_ptr<Registry> MakeSystemRegistry() {
  return std::make_unique<FileRegistry>([] {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the environment
    return LocateStores(files::ProgramFolder(), std::getenv("XDG_CONFIG_HOME"),
                        std::getenv("HOME"));  // NOLINT(concurrency-mt-unsafe): as above
  });
}

}  // namespace registry
