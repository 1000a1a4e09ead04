// Addresses: their parts, and names as parts of them.
#pragma once

#include <string>
#include <string_view>

namespace transfer {

// A name as it stands in an address between two slashes: everything but letters, digits and
// "-._~" as "%" and two hex digits for each byte of its UTF-8 form.
std::wstring EscapeSegment(std::wstring_view name);

// Whether the address asks for a connection that anybody on the way can read.
bool IsUnprotected(std::wstring_view url);

// Whether the address leads to this machine itself ("localhost", 127.*, [::1]).
bool IsLoopback(std::wstring_view url);

// The address that a redirect leads to from `url`: `location` is one itself, or what changes of it
// (a path from the root, a path beside the old one, another host).
std::wstring ResolveRedirect(std::wstring_view url, std::wstring_view location);

}  // namespace transfer
