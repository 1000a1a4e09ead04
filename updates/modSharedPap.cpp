// Price-update files on disk: which files are any, and what their headers say.
#include "updates/modSharedPap.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/files/paths.h"
#include "platform/files/text_reader.h"
#include "platform/text/strings.h"
#include "updates/PapHeaderReader.h"

bool IsPapFile(const std::wstring& vFileName) {
  return text::ToUpper(GetExtension(vFileName)) == PrcFileFormat::kExtension;
}

bool IsPapVersion(const std::wstring& vVersion) { return vVersion == PrcFileFormat::kVersion; }

void ReadPapHeader(const std::wstring& vPath, clsOrvPap& vOrvPap) {
  files::TextReader file(files::ToPath(vPath));
  PapHeaderReader header(vOrvPap);
  while (!header.AtEnd() && !file.AtEnd()) {
    header.ReadLine(file.ReadLine());
    DoEvents();
  }
  vOrvPap.FilePath = vPath;
  vOrvPap.FileSize = files::FileSize(vPath);
}
