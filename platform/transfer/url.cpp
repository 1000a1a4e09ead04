// Addresses: their parts, and names as parts of them.
#include "platform/transfer/url.h"

#include <algorithm>

#include "platform/text/code_page.h"
#include "platform/text/strings.h"

namespace transfer {
namespace {

bool StandsForItself(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == '_' || byte == '~';
}

// Between "://" and the port or path, without a user's name.
std::wstring_view HostOf(std::wstring_view url) {
  const std::size_t scheme = url.find(L"://");
  if (scheme == std::wstring_view::npos) return {};
  url.remove_prefix(scheme + 3);
  url = url.substr(0, url.find_first_of(L"/?#"));
  if (const std::size_t user = url.rfind(L'@'); user != std::wstring_view::npos)
    url.remove_prefix(user + 1);
  if (url.starts_with(L'[')) return url.substr(0, url.find(L']') + 1);
  return url.substr(0, url.find(L':'));
}

}  // namespace

std::wstring EscapeSegment(std::wstring_view name) {
  constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
  std::wstring escaped;
  for (const char byte : text::WideToUtf8(name)) {
    if (StandsForItself(byte)) {
      escaped += static_cast<wchar_t>(byte);
    } else {
      const auto value = static_cast<unsigned char>(byte);
      escaped += {L'%', kDigits[value / 16], kDigits[value % 16]};
    }
  }
  return escaped;
}

bool IsUnprotected(std::wstring_view url) {
  constexpr std::wstring_view kScheme = L"http:";
  return text::EqualsNoCase(url.substr(0, kScheme.size()), kScheme);
}

bool IsLoopback(std::wstring_view url) {
  const std::wstring_view host = HostOf(url);
  return text::EqualsNoCase(host, L"localhost") || host.starts_with(L"127.") || host == L"[::1]";
}

std::wstring ResolveRedirect(std::wstring_view url, std::wstring_view location) {
  const std::size_t scheme = location.find(L':');
  if (scheme != std::wstring_view::npos && scheme < location.find_first_of(L"/?#")) {
    return std::wstring(location);
  }
  const std::size_t host = url.find(L"://") + 3;
  if (location.starts_with(L"//")) {
    return std::wstring(url.substr(0, host - 2)) + std::wstring(location);
  }
  const std::size_t path = std::min(url.find_first_of(L"/?#", host), url.size());
  if (location.starts_with(L'/')) {
    return std::wstring(url.substr(0, path)) + std::wstring(location);
  }
  const std::wstring_view whole = url.substr(0, url.find_first_of(L"?#", path));
  const std::size_t last = whole.rfind(L'/');
  const bool has_path = last != std::wstring_view::npos && last >= path;
  return std::wstring(has_path ? whole.substr(0, last) : whole) + L'/' + std::wstring(location);
}

}  // namespace transfer
