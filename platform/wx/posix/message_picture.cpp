// Pictures of message boxes: the desktop theme's.
#include "platform/wx/message_picture.h"

#include <wx/artprov.h>

namespace wx_windows {

wxBitmapBundle MessagePicture(MessageKind kind) {
  const wxArtID picture = kind == MessageKind::kError ? wxART_ERROR : wxART_QUESTION;
  return wxArtProvider::GetBitmapBundle(picture, wxART_MESSAGE_BOX);
}

}  // namespace wx_windows
