// The registry of the system as the program uses it: read a value of any kind, write a text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace registry {

enum class RootKey { kClassesRoot, kCurrentUser, kLocalMachine, kUsers, kCurrentConfig };

// A value that is neither a text nor a 32-bit number; what it holds does not matter here.
struct OtherKind {
  friend bool operator==(OtherKind, OtherKind) = default;
};

// A text is all that is stored, zero characters among it; one terminating zero, if any, is left
// out.
using Value = std::variant<std::wstring, std::uint32_t, OtherKind>;

// Keys are paths below a root, separated by backslashes; a backslash at the end means nothing. Keys
// and names are found whatever their letter case. The name "" is the key's default value. Not
// synchronised within a process; other processes may read and write the same settings at any time.
class Registry {
 public:
  virtual ~Registry() = default;

  // Nothing when there is no such key or value. Throws text::RuntimeError 70 when it may not be
  // read, 321 when what holds it is damaged, 57 otherwise.
  //
  // Below kLocalMachine the view of 32-bit programs goes before that of 64-bit programs: the host
  // product is a 32-bit program.
  virtual std::optional<Value> Read(RootKey root, const std::wstring& key,
                                    const std::wstring& name) const = 0;

  // Creates the key where it is missing and stores the text, in place of a value of any kind.
  // Throws as Read does, 61 when the disk is full and 76 when there is no place for settings; what
  // was stored before is then still there.
  virtual void WriteText(RootKey root, const std::wstring& key, const std::wstring& name,
                         const std::wstring& text) = 0;
};

// The registry of Windows; elsewhere text files (docs/settings.md), found anew at every access.
std::unique_ptr<Registry> MakeSystemRegistry();

// The number of the error for a damaged store.
inline constexpr std::int32_t kInvalidFileFormat = 321;

// The key without backslashes at its end.
inline std::wstring_view WithoutLastBackslashes(std::wstring_view key) {
  return key.substr(0, key.find_last_not_of(L'\\') + 1);
}

}  // namespace registry
