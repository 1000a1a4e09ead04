// Between the program's texts and sizes and the toolkit's.
#include "platform/wx/conversion.h"

#include <cmath>

#include "platform/text/code_page.h"

namespace wx_windows {
namespace {

constexpr int kTwipsOfPixel = 15;  // at the normal scale
constexpr int kManyPixels = 960;   // a scale in whole pixels of one would be rounded

constexpr wchar_t kReplacement = 0xFFFD;

double PixelsOfTwip(const wxWindow& window) {
  return window.FromDIP(kManyPixels) / static_cast<double>(kManyPixels * kTwipsOfPixel);
}

}  // namespace

// By way of UTF-8, which has no place for what is no character.
wxString ToToolkit(const std::wstring& text) {
  std::wstring shown;
  shown.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const wchar_t character = text[at];
    if (character == L'\r') {
      if (at + 1 == text.size() || text[at + 1] != L'\n') shown += L'\n';
    } else {
      shown += character == 0 ? kReplacement : character;
    }
  }
  return wxString::FromUTF8(text::WideToUtf8(shown));
}

std::wstring FromToolkit(const wxString& text) {
  std::wstring result;
  for (const wchar_t character : text.ToStdWstring()) {
    if (character == L'\n') result += L'\r';
    result += character;
  }
  return result;
}

int ToPixels(const wxWindow& window, std::int32_t twips) {
  return static_cast<int>(std::lround(twips * PixelsOfTwip(window)));
}

wxRect ToPixels(const wxWindow& window, const controls::Bounds& bounds) {
  return {ToPixels(window, bounds.left), ToPixels(window, bounds.top),
          ToPixels(window, bounds.width), ToPixels(window, bounds.height)};
}

std::int32_t ToTwips(const wxWindow& window, int pixels) {
  return static_cast<std::int32_t>(std::lround(pixels / PixelsOfTwip(window)));
}

controls::Size ToTwips(const wxWindow& window, const wxSize& size) {
  return {.width = ToTwips(window, size.x), .height = ToTwips(window, size.y)};
}

}  // namespace wx_windows
