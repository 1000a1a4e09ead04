// Pictures of message boxes: the desktop theme's. It has no sounds.
#include "platform/wx/message_picture.h"

#include <wx/artprov.h>

namespace wx_windows {

wxBitmapBundle MessagePicture(MessageKind kind, const wxWindow&) {
  const wxArtID picture = kind == MessageKind::kError ? wxART_ERROR : wxART_QUESTION;
  return wxArtProvider::GetBitmapBundle(picture, wxART_MESSAGE_BOX);
}

void SoundMessage(MessageKind) {}

}  // namespace wx_windows
