// What Windows says about its errors, as a text of ours.
#include "platform/text/windows/error_text.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cwctype>

namespace {

TEST(SystemErrorTextTest, IsOneLineInTheSystemsLanguage) {
  for (const DWORD code : {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_DISK_FULL}) {
    const std::wstring text = text::SystemErrorText(code);
    EXPECT_GT(text.size(), 5U) << code;
    EXPECT_EQ(text.find_first_of(L"\r\n"), std::wstring::npos) << code;
    EXPECT_TRUE(std::iswalnum(text.back())) << code;
  }
  EXPECT_NE(text::SystemErrorText(ERROR_FILE_NOT_FOUND),
            text::SystemErrorText(ERROR_ACCESS_DENIED));
}

TEST(SystemErrorTextTest, AnUnknownCodeIsANumber) {
  EXPECT_EQ(text::SystemErrorText(0x2000FFFF), L"error 536936447");
}

}  // namespace
