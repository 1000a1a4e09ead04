// A text file of settings in the format that the registry editor of Windows writes and reads.
// Explained in docs/settings.md.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/reg_file_encoding.h"
#include "platform/registry/reg_file_parser.h"
#include "platform/registry/registry.h"

namespace registry {

// The whole file in memory. Everything that no one asks for (comments, blank lines, values of other
// kinds, foreign keys) is written back exactly as it was read, in the file's own encoding.
//
// Key paths here begin with the root's full name ("HKEY_CURRENT_USER\Software\..."). As when the
// file is imported, later lines win: a key may come several times, a value may be given again, and
// "[-key]" and "name"=- remove what stands before them.
class RegFile {
 public:
  // Reads the bytes of a file; no bytes at all are a file without values. Throws FormatError.
  explicit RegFile(std::string_view bytes);

  std::optional<Value> Find(std::wstring_view key, std::wstring_view name) const;

  // Replaces the value in its place, or adds it to the key's last section, or adds a section at the
  // end. Throws FormatError when the file's encoding lacks a character of `key`, `name` or `text`.
  void SetText(std::wstring_view key, std::wstring_view name, std::wstring_view text);

  // The bytes of the file as it is now.
  std::string Bytes() const;

 private:
  // Where the value stands, and where in the key's last section a new one would.
  struct Place {
    std::optional<std::size_t> value;
    std::optional<std::size_t> end_of_section;
  };
  Place Locate(std::wstring_view key, std::wstring_view name) const;
  std::u16string DataOf(std::wstring_view text) const;
  void InsertLine(std::size_t at, RegFilePiece::Kind kind, std::wstring_view name,
                  std::u16string_view line);

  RegFileEncoding encoding_;
  std::u16string line_end_ = u"\r\n";
  std::vector<RegFilePiece> pieces_;
};

}  // namespace registry
