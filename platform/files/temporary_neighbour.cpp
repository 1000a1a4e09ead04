// The name of the temporary neighbour; the rest is the system's.
#include "platform/files/temporary_neighbour.h"

#include <array>
#include <cstddef>

namespace files {

std::filesystem::path NeighbourOf(const std::filesystem::path& target) {
  // FNV-1a over the name: two targets of one folder practically never share a neighbour, and if
  // they ever do, one of them is refused while the other is being replaced.
  std::uint32_t hash = 2166136261u;
  const std::filesystem::path file_name = target.filename();
  for (const auto unit : file_name.native()) {
    hash = (hash ^ static_cast<std::uint32_t>(unit)) * 16777619u;
  }
  constexpr std::array<char, 16> kDigits = {'0', '1', '2', '3', '4', '5', '6', '7',
                                            '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
  std::string name = "~pap";
  for (int shift = 28; shift >= 0; shift -= 4) name += kDigits[hash >> shift & 0xf];
  return target.parent_path() / (name + ".tmp");
}

}  // namespace files
