// Between the program's texts and sizes and the toolkit's.
#pragma once

#include <wx/gdicmn.h>
#include <wx/string.h>
#include <wx/window.h>

#include <cstdint>
#include <string>

#include "platform/controls/control.h"

namespace wx_windows {

// Characters that the toolkit cannot show become a replacement character, so that they do not cost
// the whole text. Line ends become single line feeds, as the toolkit has them.
wxString ToToolkit(const std::wstring& text);

// The other way; line ends become CR LF.
std::wstring FromToolkit(const wxString& text);

// Twips and pixels of the display that the window is on.
int ToPixels(const wxWindow& window, std::int32_t twips);
wxRect ToPixels(const wxWindow& window, const controls::Bounds& bounds);
std::int32_t ToTwips(const wxWindow& window, int pixels);
controls::Size ToTwips(const wxWindow& window, const wxSize& size);

}  // namespace wx_windows
