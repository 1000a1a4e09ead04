// The picture of a message box, as the system draws it.
#pragma once

#include <wx/bmpbndl.h>

namespace wx_windows {

enum class MessageKind { kError, kQuestion };

wxBitmapBundle MessagePicture(MessageKind kind);

}  // namespace wx_windows
