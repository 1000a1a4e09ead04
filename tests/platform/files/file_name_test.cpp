// Which names from elsewhere are those of a file in the folder they are put behind.
#include "platform/files/file_name.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using namespace std::string_view_literals;  // NOLINT(google-build-using-namespace): literals

TEST(FileNameTest, PlainNames) {
  for (const std::wstring_view name :
       {L"20260105_A_B.PRC"sv, L"x"sv, L".hidden"sv, L"a..b"sv, L"..a"sv, L"a b"sv, L" a"sv,
        L"Pr\u00E9\u0416.PRC"sv, L"console.txt"sv, L"COM"sv, L"COM10"sv, L"LPTX"sv,
        L"nul_A_B.PRC"sv})
    EXPECT_TRUE(files::IsPlainFileName(name)) << std::wstring(name);
}

TEST(FileNameTest, NamesThatLeadElsewhere) {
  for (const std::wstring_view name :
       {L""sv,         L"."sv,           L".."sv,        L"../a"sv,    L"..\\a"sv,
        L"/etc/a"sv,   L"\\\\host\\a"sv, L"a/b"sv,       L"C:a"sv,     L"C:\\a"sv,
        L"a:stream"sv, L"con"sv,         L"NUL"sv,       L"nul.PRC"sv, L"Aux .txt"sv,
        L"com1"sv,     L"LPT9.x.y"sv,    L"COM\u00B9"sv, L"CONIN$"sv,  L"a."sv,
        L"a "sv,       L"a*"sv,          L"a?"sv,        L"a|b"sv,     L"a\tb"sv,
        L"a\rb"sv,     L"a\0b"sv,        L"a\x7F"sv,     L"a\x85"sv})
    EXPECT_FALSE(files::IsPlainFileName(name)) << std::wstring(name);
  EXPECT_FALSE(files::IsPlainFileName(std::wstring(256, L'x')));
}

}  // namespace
