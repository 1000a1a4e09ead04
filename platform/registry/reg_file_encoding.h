// The encodings and version lines of settings files.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace registry {

// The file breaks the format; what() says where and how. A text that the file cannot hold is one
// too.
class FormatError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// How the bytes of one file spell its text, and how its texts in hexadecimal are to be read.
class RegFileEncoding {
 public:
  // What a new file gets: UTF-16 with a mark, version 5.00.
  RegFileEncoding() = default;

  // Recognises the encoding of a file's bytes and returns the text without the mark. Without a mark
  // it is UTF-8 where all bytes are, the ANSI code page otherwise. Throws FormatError.
  std::u16string Decode(std::string_view bytes);

  // The bytes of the text, with the mark. Throws FormatError for a character that the encoding
  // lacks.
  std::string Encode(std::u16string_view text) const;

  // Looks at the file's first line. False when it is no version line. A file of the old version
  // that holds nothing but ASCII so far counts as ANSI.
  bool SetVersion(std::u16string_view first_line);
  // The first line of a new file.
  static std::u16string_view NewVersionLine();

  // The text that bytes stand for, and back, in a value given byte by byte. Throws as Encode does.
  std::wstring TextOfBytes(std::string_view bytes) const;
  std::string BytesOfText(std::wstring_view text) const;

 private:
  enum class Form { kUtf16, kUtf8, kAnsi };
  Form form_ = Form::kUtf16;
  bool has_mark_ = true;
  bool ascii_only_ = false;
  bool old_version_ = false;  // REGEDIT4: bytes of texts are ANSI
};

}  // namespace registry
