// Which file a path leads to, however the path is written.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace database {

// Two paths lead to one file exactly when these are equal; a file that was replaced by a rename has
// another one. Good while the file exists or is open.
struct FileIdentity {
  std::uint64_t volume = 0;
  std::array<std::uint64_t, 2> file = {};  // some file systems number their files with 128 bits,
  std::wstring path;                       // and some not at all: the path takes the number's place
  auto operator<=>(const FileIdentity&) const = default;
};

// Nothing when the system does not show the file (it is missing, or may not be looked at).
std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path);

}  // namespace database
