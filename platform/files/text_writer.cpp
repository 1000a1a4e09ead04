// Writes a text file in the system's single-byte code page.
#include "platform/files/text_writer.h"

#include "platform/text/code_page.h"

namespace files {

void TextWriter::Write(std::wstring_view text) { file_.Write(text::WideToAnsi(text)); }

void TextWriter::WriteLine(std::wstring_view text) {
  Write(text);
  Write(L"\r\n");
}

}  // namespace files
