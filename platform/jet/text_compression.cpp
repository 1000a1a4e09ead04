// Texts as stored: UTF-16LE, or one byte a unit where that is possible.
#include <algorithm>

#include "platform/jet/row_codec.h"

namespace jet {
namespace format = row_format;
namespace {

constexpr char16_t kByteOrderMark = 0xfeff;

bool FitsOneByte(char16_t unit) { return unit <= 0xff; }

// Whether no byte of the unit's stored form would read as a switch.
bool IsCompressible(char16_t unit) { return (unit & 0xff) != 0; }

// Stores a unit and returns the place behind it.
std::byte* StoreUnit(std::byte* to, char16_t unit) {
  *to++ = static_cast<std::byte>(unit & 0xff);
  *to++ = static_cast<std::byte>(unit >> 8);
  return to;
}

// How many bytes the compressed form has; more than plain when there is none.
std::size_t CompressedSize(std::u16string_view text) {
  std::size_t size = format::kCompressedMark.size();
  bool one_byte = true;
  for (const char16_t unit : text) {
    if (!IsCompressible(unit)) return 2 * text.size() + 1;
    if (FitsOneByte(unit) != one_byte) {
      ++size;
      one_byte = !one_byte;
    }
    size += one_byte ? 1 : 2;
  }
  return size;
}

void AppendPlain(Bytes& out, std::u16string_view text) {
  const std::size_t at = out.size();
  out.resize(at + 2 * text.size());
  std::byte* to = out.data() + at;
  for (const char16_t unit : text) to = StoreUnit(to, unit);
}

// `size` is CompressedSize of the text.
void AppendCompressed(Bytes& out, std::u16string_view text, std::size_t size) {
  const std::size_t at = out.size();
  out.resize(at + size);
  std::byte* to = std::ranges::copy(format::kCompressedMark, out.data() + at).out;
  bool one_byte = true;
  for (const char16_t unit : text) {
    if (FitsOneByte(unit) != one_byte) {
      *to++ = format::kCompressionSwitch;
      one_byte = !one_byte;
    }
    if (one_byte)
      *to++ = static_cast<std::byte>(unit);
    else
      to = StoreUnit(to, unit);
  }
}

void DecodePlain(std::u16string& text, std::span<const std::byte> bytes, PageNumber page) {
  if (bytes.size() % 2 != 0) throw Error(ErrorKind::kDamaged, "half a character in a text", page);
  for (std::size_t i = 0; i < bytes.size(); i += 2)
    text.push_back(static_cast<char16_t>(std::to_integer<unsigned>(bytes[i]) |
                                         std::to_integer<unsigned>(bytes[i + 1]) << 8));
}

// `bytes` are those behind the mark.
std::u16string DecodeCompressed(std::span<const std::byte> bytes, PageNumber page) {
  std::u16string text;
  text.reserve(bytes.size());
  bool one_byte = true;
  while (!bytes.empty()) {
    const auto run_end = std::ranges::find(bytes, format::kCompressionSwitch);
    const auto run = bytes.first(static_cast<std::size_t>(run_end - bytes.begin()));
    if (one_byte) {
      for (const std::byte byte : run) text.push_back(std::to_integer<char16_t>(byte));
    } else {
      DecodePlain(text, run, page);
    }
    if (run_end == bytes.end()) break;
    bytes = bytes.subspan(run.size() + 1);
    one_byte = !one_byte;
  }
  return text;
}

}  // namespace

void AppendText(Bytes& out, std::u16string_view text, bool compress) {
  text.remove_prefix(std::min(text.find_first_not_of(kByteOrderMark), text.size()));
  const std::size_t compressed_size = compress ? CompressedSize(text) : 2 * text.size();
  if (compressed_size < 2 * text.size())
    AppendCompressed(out, text, compressed_size);
  else
    AppendPlain(out, text);
}

Bytes EncodeText(std::u16string_view text, bool compress) {
  Bytes out;
  out.reserve(2 * text.size());
  AppendText(out, text, compress);
  return out;
}

std::u16string DecodeText(std::span<const std::byte> bytes, PageNumber page) {
  constexpr auto& kMark = format::kCompressedMark;
  if (bytes.size() >= kMark.size() && std::ranges::equal(bytes.first(kMark.size()), kMark))
    return DecodeCompressed(bytes.subspan(kMark.size()), page);
  std::u16string text;
  text.reserve(bytes.size() / 2);
  DecodePlain(text, bytes, page);
  return text;
}

}  // namespace jet
