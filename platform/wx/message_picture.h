// The picture and the sound of a message box, as the system has them.
#pragma once

#include <wx/bmpbndl.h>
#include <wx/window.h>

namespace wx_windows {

enum class MessageKind { kError, kQuestion };

// For this window, at the scale of the display that it is on.
wxBitmapBundle MessagePicture(MessageKind kind, const wxWindow& window);

// The sound that goes with it, where the system has one.
void SoundMessage(MessageKind kind);

}  // namespace wx_windows
