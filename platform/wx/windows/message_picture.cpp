// Pictures and sounds of message boxes: those of Windows' own message box. The toolkit's art is not
// everywhere the same pictures.
#include "platform/wx/message_picture.h"

#include <wx/icon.h>
#include <wx/msw/wrapwin.h>  // <windows.h> without the macros that stand in the toolkit's way

#include <commctrl.h>

namespace wx_windows {
namespace {

constexpr int kSize = 32;  // in pixels at the normal scale

// A picture of the system, which knows it in several sizes. LoadIcon would load that of the main
// display's scale; its successor is not in every set of import libraries. nullptr if there is none.
HICON LoadPicture(LPCWSTR name, int size) {
  HICON picture = nullptr;
  const auto load = reinterpret_cast<decltype(&LoadIconWithScaleDown)>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"comctl32.dll"), "LoadIconWithScaleDown")));
  if (load != nullptr && SUCCEEDED(load(nullptr, name, size, size, &picture))) return picture;
  return static_cast<HICON>(CopyImage(LoadIconW(nullptr, name), IMAGE_ICON, size, size, 0));
}

}  // namespace

wxBitmapBundle MessagePicture(MessageKind kind, const wxWindow& window) {
  const HICON handle =
      LoadPicture(kind == MessageKind::kError ? IDI_ERROR : IDI_QUESTION, window.FromDIP(kSize));
  if (handle == nullptr) return {};
  wxIcon icon;
  if (!icon.CreateFromHICON(handle)) {
    DestroyIcon(handle);
    return {};
  }
  wxBitmap picture(icon);
  picture.SetScaleFactor(window.GetDPIScaleFactor());
  return wxBitmapBundle(picture);
}

void SoundMessage(MessageKind kind) {
  MessageBeep(kind == MessageKind::kError ? MB_ICONERROR : MB_ICONQUESTION);
}

}  // namespace wx_windows
