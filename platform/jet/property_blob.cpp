// Reads and writes property blobs.
#include "platform/jet/property_blob.h"

#include <algorithm>
#include <limits>
#include <map>

#include "platform/jet/object_name.h"
#include "platform/jet/property_blob_format.h"
#include "platform/jet/row_codec.h"

namespace jet {
namespace format = property_blob_format;
namespace {

[[noreturn]] void Damaged(const char* what) { throw Error(ErrorKind::kDamaged, what); }

std::u16string ReadName(const ByteView& bytes, std::size_t at) {
  const std::size_t size = bytes.U16(at);
  if (size % 2 != 0) Damaged("half a character in the name of a property");
  std::u16string name(size / 2, u'\0');
  const ByteView text(bytes.Slice(at + format::kNameTextAt, size));
  for (std::size_t i = 0; i < name.size(); ++i) name[i] = text.U16(2 * i);
  return name;
}

std::vector<std::u16string> ReadNames(const ByteView& content) {
  std::vector<std::u16string> names;
  for (std::size_t at = 0; at < content.size();) {
    names.push_back(ReadName(content, at));
    at += format::kNameTextAt + 2 * names.back().size();
  }
  return names;
}

Property ReadProperty(const ByteView& part, const std::vector<std::u16string>& names) {
  namespace at = format::value;
  const std::size_t name = part.U16(at::kNameAt);
  const std::size_t size = part.U16(at::kByteCountAt);
  if (name >= names.size()) Damaged("a property without name");
  if (at::kBytesAt + size != part.size()) Damaged("a property of another length than it says");
  const auto value = part.Slice(at::kBytesAt, size);
  return {.name = names[name],
          .type = part.U8(at::kTypeAt),
          .flag = part.U8(at::kFlagAt),
          .value = Bytes(value.begin(), value.end())};
}

PropertyGroup ReadGroup(const ByteView& content, std::uint16_t kind,
                        const std::vector<std::u16string>& names) {
  PropertyGroup group;
  group.kind = kind;
  group.name = ReadName(content, format::group::kNameAt);
  std::size_t at = content.U32(format::group::kHeadSizeAt);
  if (at != format::group::kHeadSize + 2 * group.name.size())
    Damaged("a group of properties with a wrong head");
  while (at < content.size()) {
    const std::size_t length = content.U16(at + format::value::kLengthAt);
    group.properties.push_back(ReadProperty(ByteView(content.Slice(at, length)), names));
    at += length;
  }
  return group;
}

void AppendU16(Bytes& out, std::size_t value, const std::u16string& property) {
  if (value > std::numeric_limits<std::uint16_t>::max())
    throw Error(ErrorKind::kTooLong, {property}, "a property too long for its blob");
  out.push_back(static_cast<std::byte>(value & 0xff));
  out.push_back(static_cast<std::byte>(value >> 8));
}

void AppendName(Bytes& out, const std::u16string& name) {
  AppendU16(out, 2 * name.size(), name);
  for (const char16_t unit : name) AppendU16(out, unit, name);
}

// Appends a chunk without its length and returns where it begins; EndChunk fills the length in.
std::size_t BeginChunk(Bytes& out, std::uint16_t kind) {
  const std::size_t start = out.size();
  out.resize(start + format::chunk::kContentAt);
  ByteEditor(out).SetU16(start + format::chunk::kKindAt, kind);
  return start;
}

void EndChunk(Bytes& out, std::size_t start) {
  ByteEditor(out).SetU32(start + format::chunk::kLengthAt,
                         static_cast<std::uint32_t>(out.size() - start));
}

using NamePlaces = std::map<std::u16string, std::size_t, std::less<>>;

// The names listed before, then others in order of first use.
NamePlaces AppendNames(Bytes& out, const PropertyBlob& blob) {
  NamePlaces places;
  const std::size_t start = BeginChunk(out, format::chunk::kNames);
  for (std::size_t i = 0; i < blob.names.size(); ++i) {
    places.try_emplace(blob.names[i], i);
    AppendName(out, blob.names[i]);
  }
  std::size_t next = blob.names.size();
  for (const PropertyGroup& group : blob.groups)
    for (const Property& property : group.properties) {
      if (!places.try_emplace(property.name, next).second) continue;
      AppendName(out, property.name);
      ++next;
    }
  EndChunk(out, start);
  return places;
}

void AppendGroup(Bytes& out, const PropertyGroup& group, const NamePlaces& places) {
  const std::size_t start = BeginChunk(out, group.kind);
  const std::size_t head = out.size();
  out.resize(head + format::group::kNameAt);
  AppendName(out, group.name);
  ByteEditor(out).SetU32(head + format::group::kHeadSizeAt,
                         static_cast<std::uint32_t>(out.size() - head));
  for (const Property& property : group.properties) {
    AppendU16(out, format::value::kBytesAt + property.value.size(), property.name);
    out.push_back(std::byte{property.flag});
    out.push_back(std::byte{property.type});
    AppendU16(out, places.at(property.name), property.name);
    AppendU16(out, property.value.size(), property.name);
    out.insert(out.end(), property.value.begin(), property.value.end());
  }
  EndChunk(out, start);
}

bool IsBoolean(const Property* property, bool value) {
  return property != nullptr && property->type == static_cast<std::uint8_t>(ColumnType::kBoolean) &&
         property->value.size() == 1 && (property->value.front() != std::byte{0}) == value;
}

}  // namespace

const Property* PropertyGroup::Find(std::u16string_view property) const {
  const Bytes wanted = FoldName(property);
  const auto found = std::ranges::find_if(properties, [&wanted](const Property& candidate) {
    return FoldName(candidate.name) == wanted;
  });
  return found == properties.end() ? nullptr : &*found;
}

bool PropertyGroup::IsFalse(std::u16string_view property) const {
  return IsBoolean(Find(property), false);
}

bool PropertyGroup::IsTrue(std::u16string_view property) const {
  return IsBoolean(Find(property), true);
}

std::u16string PropertyGroup::Text(std::u16string_view property) const {
  const Property* found = Find(property);
  if (found == nullptr || (found->type != static_cast<std::uint8_t>(ColumnType::kText) &&
                           found->type != static_cast<std::uint8_t>(ColumnType::kMemo)))
    return {};
  return DecodeText(found->value);
}

PropertyBlob PropertyBlob::Parse(std::span<const std::byte> bytes) {
  const ByteView view(bytes);
  if (!std::ranges::equal(view.Slice(0, format::kMark.size()), format::kMark))
    Damaged("properties without their mark");
  PropertyBlob blob;
  for (std::size_t at = format::kMark.size(); at < bytes.size();) {
    const std::size_t length = view.U32(at + format::chunk::kLengthAt);
    const std::uint16_t kind = view.U16(at + format::chunk::kKindAt);
    if (length < format::chunk::kContentAt) Damaged("a chunk of properties shorter than its head");
    const ByteView content(
        ByteView(view.Slice(at, length))
            .Slice(format::chunk::kContentAt, length - format::chunk::kContentAt));
    if (kind == format::chunk::kNames)
      blob.names = ReadNames(content);
    else if (kind <= format::chunk::kLastGroupKind)
      blob.groups.push_back(ReadGroup(content, kind, blob.names));
    else
      throw Error(ErrorKind::kNotSupported, "properties of unknown kind");
    at += length;
  }
  return blob;
}

Bytes PropertyBlob::Serialize() const {
  Bytes out(format::kMark.begin(), format::kMark.end());
  const NamePlaces places = AppendNames(out, *this);
  for (const PropertyGroup& group : groups) AppendGroup(out, group, places);
  return out;
}

const PropertyGroup* PropertyBlob::FindColumn(std::u16string_view column) const {
  const Bytes wanted = FoldName(column);
  const auto found = std::ranges::find_if(groups, [&wanted](const PropertyGroup& group) {
    return group.kind != format::chunk::kObject && FoldName(group.name) == wanted;
  });
  return found == groups.end() ? nullptr : &*found;
}

const PropertyGroup* PropertyBlob::Object() const {
  const auto found = std::ranges::find(groups, format::chunk::kObject, &PropertyGroup::kind);
  return found == groups.end() ? nullptr : &*found;
}

Property BooleanProperty(std::u16string name, bool value) {
  return {.name = std::move(name),
          .type = static_cast<std::uint8_t>(ColumnType::kBoolean),
          .flag = format::value::kPartOfDefinition,
          .value = Bytes(1, value ? std::byte{1} : std::byte{0})};
}

Property TextProperty(std::u16string name, std::u16string_view value, ColumnType type) {
  constexpr bool kCompress = false;
  return {.name = std::move(name),
          .type = static_cast<std::uint8_t>(type),
          .flag = format::value::kPartOfDefinition,
          .value = EncodeText(value, kCompress)};
}

}  // namespace jet
