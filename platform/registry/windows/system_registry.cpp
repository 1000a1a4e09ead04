// The registry of Windows.
#include <windows.h>

#include <array>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

#include "platform/files/file_error.h"
#include "platform/registry/registry.h"
#include "platform/text/windows/error_text.h"

namespace registry {
namespace {

// An open key, closed with the object.
class Key {
 public:
  explicit Key(HKEY value) : value_(value) {}
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() { RegCloseKey(value_); }
  HKEY get() const { return value_; }

 private:
  HKEY value_;
};

HKEY RootOf(RootKey root) {
  switch (root) {
    case RootKey::kClassesRoot:
      return HKEY_CLASSES_ROOT;
    case RootKey::kCurrentUser:
      return HKEY_CURRENT_USER;
    case RootKey::kLocalMachine:
      return HKEY_LOCAL_MACHINE;
    case RootKey::kUsers:
      return HKEY_USERS;
    case RootKey::kCurrentConfig:
      break;
  }
  return HKEY_CURRENT_CONFIG;
}

[[noreturn]] void ThrowFailure(LSTATUS error, const std::wstring& key) {
  std::int32_t number = files::kDeviceIoError;
  if (error == ERROR_ACCESS_DENIED) number = files::kPermissionDenied;
  if (error == ERROR_DISK_FULL || error == ERROR_NO_SYSTEM_RESOURCES) number = files::kDiskFull;
  const std::wstring reason = text::SystemErrorText(static_cast<std::uint32_t>(error));
  throw text::RuntimeError(number, files::FileError(number).description() + L": registry key '" +
                                       key + L"' (" + reason + L")");
}

bool MeansMissing(LSTATUS error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ||
         error == ERROR_KEY_DELETED;
}

Value ValueOf(DWORD type, std::span<const std::byte> data) {
  if (type == REG_SZ) {
    std::wstring text(data.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), data.data(), text.size() * sizeof(wchar_t));
    if (!text.empty() && text.back() == L'\0') text.pop_back();
    return text;
  }
  std::uint32_t number = 0;
  if (type != REG_DWORD || data.size() != sizeof(number)) return OtherKind{};
  std::memcpy(&number, data.data(), sizeof(number));
  return number;
}

std::optional<Value> ReadView(HKEY root, REGSAM view, const std::wstring& key,
                              const std::wstring& name) {
  HKEY opened = nullptr;
  LSTATUS error = RegOpenKeyExW(root, key.c_str(), 0, KEY_QUERY_VALUE | view, &opened);
  if (MeansMissing(error)) return std::nullopt;
  if (error != ERROR_SUCCESS) ThrowFailure(error, key);
  const Key guard(opened);

  std::vector<std::byte> data(512);
  DWORD type = REG_NONE;
  DWORD size = 0;
  do {  // it may grow between the question and the answer
    size = static_cast<DWORD>(data.size());
    error = RegQueryValueExW(opened, name.c_str(), nullptr, &type,
                             reinterpret_cast<BYTE*>(data.data()), &size);
    if (error == ERROR_MORE_DATA) data.resize(size);
  } while (error == ERROR_MORE_DATA);
  if (MeansMissing(error)) return std::nullopt;
  if (error != ERROR_SUCCESS) ThrowFailure(error, key);
  return ValueOf(type, std::span(data).first(size));
}

class WindowsRegistry final : public Registry {
 public:
  std::optional<Value> Read(RootKey root, const std::wstring& key,
                            const std::wstring& name) const override {
    const std::wstring path(WithoutLastBackslashes(key));
    if (root != RootKey::kLocalMachine) return ReadView(RootOf(root), 0, path, name);
    for (const REGSAM view : {KEY_WOW64_32KEY, KEY_WOW64_64KEY}) {
      if (auto value = ReadView(RootOf(root), view, path, name)) return value;
    }
    return std::nullopt;
  }

  void WriteText(RootKey root, const std::wstring& key, const std::wstring& name,
                 const std::wstring& text) override {
    const std::wstring path(WithoutLastBackslashes(key));
    const REGSAM view = root == RootKey::kLocalMachine ? KEY_WOW64_32KEY : 0;
    HKEY opened = nullptr;
    LSTATUS error = RegCreateKeyExW(RootOf(root), path.c_str(), 0, nullptr, 0, KEY_SET_VALUE | view,
                                    nullptr, &opened, nullptr);
    if (error != ERROR_SUCCESS) ThrowFailure(error, path);
    const Key guard(opened);
    const std::size_t size = (text.size() + 1) * sizeof(wchar_t);  // with the terminating zero
    error = RegSetValueExW(opened, name.c_str(), 0, REG_SZ,
                           reinterpret_cast<const BYTE*>(text.c_str()), static_cast<DWORD>(size));
    if (error != ERROR_SUCCESS) ThrowFailure(error, path);
  }
};

}  // namespace

std::unique_ptr<Registry> MakeSystemRegistry() { return std::make_unique<WindowsRegistry>(); }

}  // namespace registry
