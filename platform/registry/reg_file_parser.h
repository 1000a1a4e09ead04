// Splits the text of a settings file into its keys, its values and all the rest.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/reg_file_encoding.h"
#include "platform/registry/registry.h"

namespace registry {

// A piece of the file from the beginning of a line to the end of one. The raw texts of all pieces
// together are the whole file.
struct RegFilePiece {
  enum class Kind { kOther, kKey, kRemovedKey, kValue };
  Kind kind = Kind::kOther;
  std::u16string raw;          // as in the file, with its line end
  std::wstring name;           // of the key or value, in upper case
  std::optional<Value> value;  // of a value; nothing where the line removes it
  std::size_t data_begin = 0;  // where in `raw` the value's data stands
  std::size_t data_end = 0;
};

// `encoding` is told the file's version. Throws FormatError, naming the line, for a file that does
// not begin with a version line, for a zero character, and for a line that begins as a key or value
// does and is none (one cut off among them).
std::vector<RegFilePiece> ParseRegFile(std::u16string_view text, RegFileEncoding& encoding);

// What a line ends with where one begins at the front of `text`; empty when the text ends without.
std::u16string_view LineEndOf(std::u16string_view text);

}  // namespace registry
