// The folder of price-update files, copying and deleting single files, and the product table's
// place.
#include "updates/modSharedPapFolder.h"

#include <utility>

#include "app/modGeneralFunctions.h"
#include "app/modMain.h"
#include "app/modShared.h"
#include "app/modSharedRegistryFuncties.h"
#include "platform/files/file_copy.h"
#include "platform/files/folder.h"
#include "platform/files/paths.h"
#include "platform/text/runtime_error.h"
#include "updates/modSharedPap.h"

namespace {

constexpr wchar_t kFolderNotFound[] = L"De folder met prijsaanpassingen is niet gevonden!";
constexpr wchar_t kUpdateFolder[] = L"PAP32";
constexpr wchar_t kProductTableFile[] = L"Orv.pt";

std::shared_ptr<clsOrvPap> PapWithHeader(const std::wstring& vPath) {
  try {
    auto orv_pap = std::make_shared<clsOrvPap>();
    ReadPapHeader(vPath, *orv_pap);
    return orv_pap;
  } catch (const text::RuntimeError& error) {
    throw text::RuntimeError(error.number(), error.description() + L": '" + vPath + L"'");
  }
}

}  // namespace

PapCollection AvailablePaps;

std::wstring PapFolder() { return AddBackslash(ProgramFolder()) + kUpdateFolder; }

bool GetPapCollection(std::wstring& vFolder) {
  vFolder = GetShortPath(vFolder);
  if (vFolder.empty() || !files::FolderExists(vFolder)) {
    ShowMessage(kFolderNotFound, L"");
    return false;
  }
  std::vector<std::shared_ptr<clsOrvPap>> found;
  for (const std::wstring& path : files::FilesIn(vFolder)) {
    if (!IsPapFile(path)) continue;
    auto orv_pap = PapWithHeader(path);
    if (IsPapVersion(orv_pap->Version)) found.push_back(std::move(orv_pap));
  }
  const bool any = !found.empty();
  AvailablePaps = any ? PapCollection(std::move(found)) : std::nullopt;
  return any;
}

bool DelPapFiles(const std::wstring& vFolder) {
  try {
    if (!files::FolderExists(vFolder)) {
      ShowMessage(kFolderNotFound, L"");
      return false;
    }
    for (const std::wstring& path : files::FilesIn(vFolder)) {
      if (IsPapFile(path)) files::RemoveFile(path);
    }
    return true;
  } catch (...) {
    ShowErrorMessage(L"modSharedPap.DelPapFiles (Function)");
    return false;
  }
}

bool CopyPapFile(const std::wstring& vSource, const std::wstring& vTarget) {
  try {
    files::CopyFileAtomically(vSource, vTarget);
    return true;
  } catch (...) {
    IgnoreError();
    return false;
  }
}

bool DeletePapFile(const std::wstring& vPath) {
  try {
    files::RemoveFile(vPath);
  } catch (...) {
    IgnoreError();
  }
  return true;
}

std::wstring GetProductTablePath() {
  using registry::RootKey;
  try {
    for (const RootKey root : {RootKey::kCurrentUser, RootKey::kLocalMachine}) {
      const text::Variant path = fGetstring(root, kSettingsKey, L"ProductTable");
      if (!path.IsNull()) return NullToString(path);
    }
    return AddBackslash(ProgramFolder()) + kProductTableFile;
  } catch (...) {
    ShowErrorMessage(L"modSharedPap.GetProductTablePath (Function)");
    return {};
  }
}
