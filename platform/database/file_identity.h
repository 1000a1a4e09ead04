// Which file a path leads to, however the path is written.
#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace database {

// Two paths lead to one file exactly when these are equal; a file that was replaced by a rename has
// another one. Good while the file exists or is open.
struct FileIdentity {
  std::uint64_t volume = 0;
  std::uint64_t file = 0;
  auto operator<=>(const FileIdentity&) const = default;
};

// Nothing when the system does not show the file (it is missing, or may not be looked at).
std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path);

}  // namespace database
