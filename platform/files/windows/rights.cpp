// What a new version of a file takes over from the old one on Windows.
#include "platform/files/windows/rights.h"

#include <aclapi.h>
#include <winioctl.h>

#include <cstring>
#include <exception>
#include <string>

#include "platform/files/windows/call_path.h"

namespace files {
namespace {

// Not write protection: what is protected is not replaced, and a copy of it is ours to write.
constexpr DWORD kMarks =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

// Takes the entries out that come from the folder: the system puts in those of the file's own one.
void RemoveInherited(ACL& list) {
  for (DWORD i = list.AceCount; i-- > 0;) {
    void* entry = nullptr;
    if (GetAce(&list, i, &entry) != 0 &&
        (static_cast<ACE_HEADER*>(entry)->AceFlags & INHERITED_ACE) != 0) {
      DeleteAce(&list, i);
    }
  }
}

// Who may do what to a file: no list when the system does not tell, or has none.
class AccessList {
 public:
  explicit AccessList(std::wstring file) {
    DWORD revision = 0;
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    if (GetNamedSecurityInfoW(file.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                              nullptr, &list_, nullptr, &descriptor_) == ERROR_SUCCESS &&
        GetSecurityDescriptorControl(descriptor_, &control, &revision) != 0) {
      is_protected_ = (control & SE_DACL_PROTECTED) != 0;
    } else {
      list_ = nullptr;
    }
  }
  AccessList(const AccessList&) = delete;
  AccessList& operator=(const AccessList&) = delete;
  ~AccessList() { LocalFree(descriptor_); }

  ACL* list() const { return list_; }
  // Whether nothing comes from the folder.
  bool is_protected() const { return is_protected_; }

  bool Equals(const AccessList& other) const {
    return is_protected_ == other.is_protected_ && list_ != nullptr && other.list_ != nullptr &&
           list_->AclSize == other.list_->AclSize &&
           std::memcmp(list_, other.list_, list_->AclSize) == 0;
  }

 private:
  PSECURITY_DESCRIPTOR descriptor_ = nullptr;
  ACL* list_ = nullptr;  // in the descriptor
  bool is_protected_ = false;
};

void GiveAccess(std::wstring file, const std::wstring& like) {
  const AccessList wanted(like);
  // Without a list everybody may do everything, which is never given on. Equal ones are left alone:
  // not every server gives back the list that it was given.
  if (wanted.list() == nullptr || wanted.Equals(AccessList(file))) return;
  if (!wanted.is_protected()) {
    RemoveInherited(*wanted.list());
    if (wanted.list()->AceCount == 0) return;  // the folder's own, which the file has
  }
  SetNamedSecurityInfoW(
      file.data(), SE_FILE_OBJECT,
      DACL_SECURITY_INFORMATION | (wanted.is_protected() ? PROTECTED_DACL_SECURITY_INFORMATION
                                                         : UNPROTECTED_DACL_SECURITY_INFORMATION),
      nullptr, nullptr, wanted.list(), nullptr);
}

}  // namespace

void GiveRights(const std::filesystem::path& file, const std::filesystem::path& like) noexcept {
  try {
    const std::wstring to = CallPath(file);
    const std::wstring from = CallPath(like);
    const DWORD attributes = GetFileAttributesW(from.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return;
    // Also without marks: what a killed process left, and is written anew, may have some.
    SetFileAttributesW(to.c_str(), (attributes & kMarks) | FILE_ATTRIBUTE_ARCHIVE);
    GiveAccess(to, from);
  } catch (const std::exception&) {
    return;
  }
}

void CompressAs(HANDLE file, const std::filesystem::path& like) noexcept {
  try {
    const DWORD attributes = GetFileAttributesW(CallPath(like).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_COMPRESSED) == 0) {
      return;
    }
    USHORT format = COMPRESSION_FORMAT_DEFAULT;
    DWORD none = 0;
    DeviceIoControl(file, FSCTL_SET_COMPRESSION, &format, sizeof(format), nullptr, 0, &none,
                    nullptr);
  } catch (const std::exception&) {
    return;
  }
}

}  // namespace files
