// Pictures of message boxes: those of Windows' own message box, which the toolkit's art is not
// everywhere.
#include "platform/wx/message_picture.h"

#include <wx/icon.h>
#include <wx/msw/wrapwin.h>  // <windows.h> without the macros that stand in the toolkit's way

namespace wx_windows {

wxBitmapBundle MessagePicture(MessageKind kind) {
  wxIcon icon;
  // Shared by all programs, so never destroyed.
  const HICON handle = LoadIconW(nullptr, kind == MessageKind::kError ? IDI_ERROR : IDI_QUESTION);
  if (!icon.CreateFromHICON(CopyIcon(handle))) return {};
  return wxBitmapBundle(wxBitmap(icon));
}

}  // namespace wx_windows
