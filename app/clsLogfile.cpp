// The plain-text log of one import run.
#include "app/clsLogfile.h"

#include "app/modGeneralFunctions.h"
#include "platform/files/paths.h"

namespace {

constexpr wchar_t kSeparatorLine[] = L"=========================";

}  // namespace

clsLogfile::~clsLogfile() { EndLog(); }

bool clsLogfile::StartLog(const std::wstring& vPath) {
  try {
    m_stream.emplace(files::ToPath(vPath));
    m_stream->WriteLine(kSeparatorLine);
    m_stream->Flush();
    return true;
  } catch (...) {
    ShowErrorMessage(L"StartLog");
    return false;
  }
}

void clsLogfile::WriteLog(const std::wstring& vText) {
  try {
    if (!m_stream) return;
    m_stream->WriteLine(vText);
    m_stream->Flush();
  } catch (...) {
    IgnoreError();
  }
}

void clsLogfile::EndLog() {
  try {
    if (!m_stream) return;
    m_stream->WriteLine(kSeparatorLine);
    m_stream->Close();
  } catch (...) {
    IgnoreError();
  }
  m_stream.reset();
}
