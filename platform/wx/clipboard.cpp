// The system's clipboard.
#include "platform/wx/clipboard.h"

#include <wx/clipbrd.h>
#include <wx/dataobj.h>

#include "platform/text/runtime_error.h"

namespace wx_windows {
namespace {

constexpr std::int32_t kCannotOpenClipboard = 521;

// The clipboard is ours while this lives; throws if another program does not let go of it.
class OpenClipboard {
 public:
  OpenClipboard() {
    if (!wxTheClipboard->Open()) {
      throw text::RuntimeError(kCannotOpenClipboard, L"Can't open Clipboard");
    }
  }
  ~OpenClipboard() { wxTheClipboard->Close(); }
  OpenClipboard(const OpenClipboard&) = delete;
  OpenClipboard& operator=(const OpenClipboard&) = delete;
};

}  // namespace

void Clipboard::Clear() {
  const OpenClipboard open;
  wxTheClipboard->Clear();
}

void Clipboard::SetText(const std::wstring& text) {
  const OpenClipboard open;
  // The clipboard owns the object. The text goes as it is: its line ends are the user's.
  if (!wxTheClipboard->SetData(new wxTextDataObject(wxString(text)))) {
    throw text::RuntimeError(kCannotOpenClipboard, L"Can't open Clipboard");
  }
  wxTheClipboard->Flush();  // it stays when the program ends
}

}  // namespace wx_windows
