// The download index of a folder of price-update files.
#include "tools/paptool/download_index.h"

#include "app/modGeneralFunctions.h"
#include "engine/clsOrvPap.h"
#include "platform/files/file_name.h"
#include "platform/files/folder.h"
#include "platform/text/code_page.h"
#include "platform/text/date.h"
#include "platform/text/runtime_error.h"
#include "platform/text/strings.h"
#include "updates/DownloadFolder.h"
#include "updates/modSharedPap.h"

namespace paptool {
namespace {

constexpr wchar_t kSeparator = L',';

// A text as a field: nothing in it ends the field or the line.
std::wstring Field(const std::wstring& text) {
  return StripControlChars(text::ReplaceAll(text::ReplaceAll(text, L",", L";"), L"\r\n", L" "));
}

bool CanBeListed(const std::wstring& name) {
  return IsPapFile(name) && files::IsPlainFileName(name) &&
         name.find(kSeparator) == std::wstring::npos;
}

std::wstring LineOf(const clsOrvPap& update) {
  return GetFileName(update.FilePath) + kSeparator + Field(update.AssortmentDescription) +
         kSeparator + Field(update.SupplierDescription) + kSeparator +
         text::FormatCompactDate(update.PapDate) + kSeparator + std::to_wstring(update.FileSize) +
         kSeparator + Field(update.Remark) + L"\r\n";
}

}  // namespace

std::string DownloadIndex(const std::wstring& folder) {
  std::wstring index = std::wstring(DownloadFolder::kIdentification) + L"\r\n";
  for (const std::wstring& path : files::FilesIn(folder)) {
    if (!CanBeListed(GetFileName(path))) continue;
    try {
      clsOrvPap update;
      ReadPapHeader(path, update);
      index += LineOf(update);
    } catch (const text::RuntimeError&) {
      continue;  // what cannot be read cannot be sent either
    }
  }
  return text::WideToAnsi(index);
}

}  // namespace paptool
