// Settings files of every form: what they say, what a change does to them, and what is refused.
#include "platform/registry/reg_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/text/code_page.h"

namespace registry {
namespace {

constexpr wchar_t kKey[] = L"HKEY_CURRENT_USER\\Software\\X";

std::string Utf16(std::u16string_view text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

// A file as the registry editor exports it.
const std::u16string kExported =
    u"Windows Registry Editor Version 5.00\r\n"
    u"\r\n"
    u"[HKEY_CURRENT_USER\\Software]\r\n"
    u"\r\n"
    u"[HKEY_CURRENT_USER\\Software\\X]\r\n"
    u"@=\"default\"\r\n"
    u"\"Path\"=\"C:\\\\Orv \\\"3\\\"\\\\new\\\\Pr\u00E9 \u20AC.pt\"\r\n"
    u"\"Number\"=dword:000004d2\r\n"
    u"\"Many\"=hex(7):61,00,00,00,\\\r\n"
    u"  62,00,00,00,00,00\r\n"
    u"\"Binary\"=hex:\r\n"
    u"\"Expand\"=hex(2):25,00,00,00\r\n"
    u"\"Lines\"=hex(1):61,00,0d,00,0a,00,62,00,00,00\r\n"
    u"\"Unterminated\"=hex(1):61,00,62,00\r\n"
    u"\"AsHex\"=hex(4):01,00,00,80\r\n"
    u"\"Huge\"=hex(b):01,00,00,00,00,00,00,00\r\n"
    u"\r\n"
    u"[HKEY_LOCAL_MACHINE\\Software\\Y]\r\n"
    u"\"Path\"=\"of another key \xD800 with half a character\"\r\n"
    u"\r\n";

TEST(RegFileTest, ReadsEveryKindOfValue) {
  const RegFile file(Utf16(kExported));
  const struct {
    const wchar_t* name;
    std::optional<Value> value;
  } cases[] = {
      {L"", L"default"},          {L"path", L"C:\\Orv \"3\"\\new\\Pr\u00E9 \u20AC.pt"},
      {L"NUMBER", 1234U},         {L"Many", OtherKind{}},
      {L"Binary", OtherKind{}},   {L"Expand", OtherKind{}},
      {L"Lines", L"a\r\nb"},      {L"Unterminated", L"ab"},
      {L"AsHex", 0x80000001U},    {L"Huge", OtherKind{}},
      {L"Missing", std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(file.Find(kKey, c.name), c.value) << text::WideToUtf8(c.name);
  }
  EXPECT_EQ(file.Find(L"hkey_current_user\\SOFTWARE\\x\\", L"number"), Value(1234U));
  EXPECT_EQ(file.Find(L"HKEY_CURRENT_USER\\Software", L"Path"), std::nullopt);
}

// The same text in every encoding that such files come in.
TEST(RegFileTest, EncodingsComeBackAsTheyWere) {
  const std::u16string body =
      u"\r\n\r\n[HKEY_CURRENT_USER\\Software\\X]\r\n\"a\"=\"Pr\u00E9 \u20AC\"\r\n";
  const std::wstring wide = text::Utf16ToWide(body);
  const std::string version_5 = "Windows Registry Editor Version 5.00";
  const struct {
    const char* what;
    std::string bytes;
    bool takes_cyrillic;
  } cases[] = {
      {"UTF-16", Utf16(u"Windows Registry Editor Version 5.00" + body), true},
      {"UTF-8", version_5 + text::WideToUtf8(wide), true},
      {"UTF-8 with a mark", "\xEF\xBB\xBF" + version_5 + text::WideToUtf8(wide), true},
      {"ANSI", version_5 + text::WideToAnsi(wide), false},
      {"old version, ANSI", "REGEDIT4" + text::WideToAnsi(wide), false},
      {"old version, UTF-8", "REGEDIT4" + text::WideToUtf8(wide), true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    RegFile file(c.bytes);
    EXPECT_EQ(file.Bytes(), c.bytes);
    EXPECT_EQ(file.Find(kKey, L"a"), Value(L"Pr\u00E9 \u20AC"));
    file.SetText(kKey, L"a", L"\u00DF");
    EXPECT_EQ(RegFile(file.Bytes()).Find(kKey, L"a"), Value(L"\u00DF"));
    file.SetText(kKey, L"a", L"\u0416");
    if (c.takes_cyrillic) {
      EXPECT_EQ(RegFile(file.Bytes()).Find(kKey, L"a"), Value(L"\u0416"));
    } else {
      EXPECT_THROW(static_cast<void>(file.Bytes()), FormatError);
    }
  }
}

TEST(RegFileTest, BytesOfTextsFollowTheVersion) {
  const RegFile old("REGEDIT4\n[HKEY_CURRENT_USER\\Software\\X]\n\"a\"=hex(1):e9,62,00\n");
  EXPECT_EQ(old.Find(kKey, L"a"), Value(L"\u00E9b"));
  // An old file that is still all ASCII stays one that an old editor can read.
  RegFile ascii("REGEDIT4\n");
  ascii.SetText(kKey, L"a", L"\u00E9");
  ascii.SetText(kKey, L"b", L"\u00E9\n");
  EXPECT_EQ(
      ascii.Bytes(),
      "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\X]\n\"a\"=\"\xE9\"\n\"b\"=hex(1):e9,0a,00\n");
}

TEST(RegFileTest, AChangeTouchesNothingElse) {
  using Replacement = std::pair<std::u16string, std::u16string>;
  const struct {
    const wchar_t* name;
    const wchar_t* text;
    Replacement replacement;
  } cases[] = {
      {L"NUMBER", L"7", {u"\"Number\"=dword:000004d2", u"\"Number\"=\"7\""}},
      {L"", L"\"", {u"@=\"default\"", u"@=\"\\\"\""}},
      {L"many", L"", {u"hex(7):61,00,00,00,\\\r\n  62,00,00,00,00,00", u"\"\""}},
      {L"AsHex", L"a\tb", {u"hex(4):01,00,00,80", u"hex(1):61,00,09,00,62,00,00,00"}},
      {L"New \\\"",
       L"C:\\",
       {u"hex(b):01,00,00,00,00,00,00,00\r\n",
        u"hex(b):01,00,00,00,00,00,00,00\r\n\"New \\\\\\\"\"=\"C:\\\\\"\r\n"}},
  };
  for (const auto& c : cases) {
    RegFile file(Utf16(kExported));
    file.SetText(kKey, c.name, c.text);
    std::u16string expected = kExported;
    expected.replace(expected.find(c.replacement.first), c.replacement.first.size(),
                     c.replacement.second);
    EXPECT_EQ(file.Bytes(), Utf16(expected));
    EXPECT_EQ(file.Find(kKey, c.name), Value(c.text));
  }
}

TEST(RegFileTest, KeysAreMadeWhereTheyAreMissing) {
  RegFile file("");
  EXPECT_EQ(file.Find(kKey, L"a"), std::nullopt);
  file.SetText(L"HKEY_CURRENT_USER\\A\\", L"a", L"1");
  file.SetText(L"HKEY_CURRENT_USER\\B", L"", L"2");
  file.SetText(L"hkey_current_user\\a", L"b", L"3");
  EXPECT_EQ(file.Bytes(), Utf16(u"Windows Registry Editor Version 5.00\r\n\r\n"
                                u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n\"b\"=\"3\"\r\n\r\n"
                                u"[HKEY_CURRENT_USER\\B]\r\n@=\"2\"\r\n"));
}

// Lines are taken in the order in which an import would take them.
TEST(RegFileTest, LaterLinesWinAndRemove) {
  const std::string version = "REGEDIT4\n";
  const std::string section = "[HKEY_CURRENT_USER\\Software\\X]\n";
  const struct {
    const char* what;
    std::string body;
    std::optional<Value> value;
    std::string after;  // the body once "a" was set to "new"
  } cases[] = {
      {"twice in a section", section + "\"a\"=\"1\"\n\"A\"=\"2\"\n", L"2",
       section + "\"a\"=\"1\"\n\"A\"=\"new\"\n"},
      {"in two sections", section + "\"a\"=\"1\"\n[K]\n" + section + "\"a\"=\"2\"\n", L"2",
       section + "\"a\"=\"1\"\n[K]\n" + section + "\"a\"=\"new\"\n"},
      {"removed value", section + "\"a\"=\"1\"\n\"a\"=-\n;c\n", std::nullopt,
       section + "\"a\"=\"1\"\n\"a\"=-\n\"a\"=\"new\"\n;c\n"},
      {"removed key", section + "\"a\"=\"1\"\n[-HKEY_CURRENT_USER\\Software]\n\"a\"=\"2\"\n",
       std::nullopt,
       section + "\"a\"=\"1\"\n[-HKEY_CURRENT_USER\\Software]\n\"a\"=\"2\"\n\n" + section +
           "\"a\"=\"new\"\n"},
      {"a neighbour removed", section + "\"a\"=\"1\"\n[-HKEY_CURRENT_USER\\Soft]\n", L"1",
       section + "\"a\"=\"new\"\n[-HKEY_CURRENT_USER\\Soft]\n"},
      {"no line end at the end", section + "\"b\"=\"1\"", std::nullopt,
       section + "\"b\"=\"1\"\n\"a\"=\"new\"\n"},
      {"blanks and comments", "; c\n\n" + section + " \"a\" = \"1\" ; why\n", L"1",
       "; c\n\n" + section + " \"a\" = \"new\" ; why\n"},
      {"brackets in a key", "[HKEY_CURRENT_USER\\[b]]\n" + section + "\"a\"=\"1\"\n", L"1",
       "[HKEY_CURRENT_USER\\[b]]\n" + section + "\"a\"=\"new\"\n"},
      {"a text over two lines", section + "\"b\"=\"1\n\"\n\"a\"=\"2\n3\"\n", L"2\n3",
       section + "\"b\"=\"1\n\"\n\"a\"=\"new\"\n"},
      {"backslashes of a hasty hand", section + "\"a\"=\"C:\\new\\table\"\n", L"C:\\new\\table",
       section + "\"a\"=\"new\"\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    RegFile file(version + c.body);
    EXPECT_EQ(file.Find(kKey, L"a"), c.value);
    file.SetText(kKey, L"a", L"new");
    EXPECT_EQ(file.Bytes(), version + c.after);
  }
}

TEST(RegFileTest, DamageIsNamed) {
  const std::string head = "REGEDIT4\n[HKEY_CURRENT_USER\\X]\n";
  const struct {
    std::string bytes;
    const char* reason;
  } cases[] = {
      {"hello", "line 1: no settings file of a known version"},
      {std::string(4096, '\0'), "line 1: a zero character"},
      {"\xFF\xFEW", "half a character at the end"},
      {"\xFE\xFF\0W", "its bytes are in swapped order"},
      {"\xEF\xBB\xBFREGEDIT4\n; \xE9\n", "bytes that are no UTF-8"},
      {"REGEDIT4\n\"a\"=\"b\"\n", "line 2: a value before the first key"},
      {head + "[HKEY_CURRENT_USER\n", "line 3: a key without its closing bracket"},
      {head + "\"a\"", "line 3: a name without a value"},
      {head + "\"a\"=\"b\n\n", "line 3: a text without its closing quote"},
      {head + "\"a\"=\"b\"\"\n", "line 3: something behind the value"},
      {head + "\"a\"=\n", "line 3: a value of no known form"},
      {head + "\"a\"=dword:\n", "line 3: a number without digits"},
      {head + "\"a\"=dword:123456789\n", "line 3: a number of too many digits"},
      {head + "\"a\"=hex(2:01\n", "line 3: a value of no known form"},
      {head + "\"a\"=hex:01,zz\n", "line 3: bytes that are no pairs of digits"},
      {head + "\"a\"=hex:01,\\", "line 3: a value that is cut off"},
  };
  for (const auto& c : cases) {
    EXPECT_THAT([&] { RegFile file(c.bytes); }, testing::ThrowsMessage<FormatError>(c.reason));
  }
}

// A file cut off anywhere is refused, or the texts that are left of it are whole.
TEST(RegFileTest, EveryCutIsRefusedOrLeavesWholeTexts) {
  const std::string whole = Utf16(kExported);
  const RegFile original(whole);
  int refused = 0;
  for (std::size_t size = 1; size < whole.size(); ++size) {
    try {
      const RegFile cut(std::string_view(whole).substr(0, size));
      for (const wchar_t* name : {L"", L"Path"}) {
        const auto value = cut.Find(kKey, name);
        EXPECT_TRUE(!value || *value == original.Find(kKey, name)) << size;
      }
    } catch (const FormatError&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, static_cast<int>(whole.size() / 2)) << "every odd size at least";
}

}  // namespace
}  // namespace registry
