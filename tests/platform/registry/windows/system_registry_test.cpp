// The real registry: both views of the machine's part, and values of every kind.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "platform/registry/registry.h"

namespace registry {
namespace {

// Keys of the test's own, removed at the end.
class SystemRegistryTest : public testing::Test {
 protected:
  ~SystemRegistryTest() override {
    RegDeleteKeyExW(HKEY_CURRENT_USER, key_.c_str(), 0, 0);
    RegDeleteKeyExW(HKEY_LOCAL_MACHINE, key_.c_str(), KEY_WOW64_32KEY, 0);
    RegDeleteKeyExW(HKEY_LOCAL_MACHINE, key_.c_str(), KEY_WOW64_64KEY, 0);
  }

  void Store(HKEY root, REGSAM view, const wchar_t* name, DWORD type, const void* data,
             std::size_t size) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(root, key_.c_str(), 0, nullptr, 0, KEY_SET_VALUE | view, nullptr,
                              &key, nullptr),
              ERROR_SUCCESS);
    ASSERT_EQ(RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data),
                             static_cast<DWORD>(size)),
              ERROR_SUCCESS);
    RegCloseKey(key);
  }
  void StoreMachine(REGSAM view, const wchar_t* name, const std::wstring& text) {
    Store(HKEY_LOCAL_MACHINE, view, name, REG_SZ, text.c_str(),
          (text.size() + 1) * sizeof(wchar_t));
  }
  std::optional<Value> ReadUser(const wchar_t* name) const {
    return registry_->Read(RootKey::kCurrentUser, key_ + L"\\", name);
  }
  std::optional<Value> ReadMachine(const wchar_t* name) const {
    return registry_->Read(RootKey::kLocalMachine, key_ + L"\\", name);
  }

  const std::wstring key_ = L"Software\\orvpap-test-" + std::to_wstring(GetCurrentProcessId());
  std::unique_ptr<Registry> registry_ = MakeSystemRegistry();
};

TEST_F(SystemRegistryTest, ReadsEveryKindOfValue) {
  EXPECT_EQ(ReadUser(L"missing key"), std::nullopt);
  const std::wstring number(L"\x0001\x8000", 2);  // 0x80000001
  // Without a terminating zero, and long enough to need a second attempt.
  const std::wstring unterminated(1000, L'\u20AC');
  const struct {
    const wchar_t* name;
    DWORD type;
    std::wstring data;
    std::size_t size;  // in bytes
    Value value;
  } cases[] = {
      {L"number", REG_DWORD, number, 4, 0x80000001U},
      {L"short number", REG_DWORD, number, 2, OtherKind{}},
      {L"unterminated", REG_SZ, unterminated, 2000, unterminated},
      {L"inner zero", REG_SZ, {L"a\0b", 4}, 8, std::wstring(L"a\0b", 3)},
      {L"empty", REG_SZ, L"", 0, std::wstring()},
      {L"expand", REG_EXPAND_SZ, L"x", 4, OtherKind{}},
      {L"binary", REG_BINARY, number, 4, OtherKind{}},
      {L"several", REG_MULTI_SZ, {L"a\0", 3}, 6, OtherKind{}},
      {L"long number", REG_QWORD, L"1234", 8, OtherKind{}},
      {L"half a character", REG_SZ, L"ab", 3, L"a"},
      {L"", REG_SZ, L"default", 16, L"default"},
  };
  for (const auto& c : cases) Store(HKEY_CURRENT_USER, 0, c.name, c.type, c.data.data(), c.size);
  for (const auto& c : cases) EXPECT_EQ(ReadUser(c.name), c.value) << std::wstring(c.name);
  EXPECT_EQ(ReadUser(L"NUMBER"), Value(0x80000001U));
  EXPECT_EQ(ReadUser(L"missing"), std::nullopt);
}

// What the host product and the registry editor find: a terminated text, whatever was there before.
TEST_F(SystemRegistryTest, WhatIsWrittenIsATextForOthers) {
  registry_->WriteText(RootKey::kCurrentUser, key_ + L"\\", L"a", L"");  // makes the key
  EXPECT_EQ(ReadUser(L"A"), Value(std::wstring()));
  const DWORD number = 7;
  Store(HKEY_CURRENT_USER, 0, L"a", REG_DWORD, &number, sizeof(number));
  registry_->WriteText(RootKey::kCurrentUser, key_, L"a", L"\u0416");
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, key_.c_str(), 0, KEY_QUERY_VALUE, &key),
            ERROR_SUCCESS);
  DWORD type = 0;
  wchar_t data[4] = {};
  DWORD size = sizeof(data);
  EXPECT_EQ(RegQueryValueExW(key, L"a", nullptr, &type, reinterpret_cast<BYTE*>(data), &size),
            ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(std::wstring(data, size / sizeof(wchar_t)), std::wstring(L"\u0416\0", 2));
}

TEST_F(SystemRegistryTest, TheViewOf32BitProgramsGoesFirst) {
  StoreMachine(KEY_WOW64_64KEY, L"a", L"64");
  EXPECT_EQ(ReadMachine(L"a"), Value(L"64"));
  StoreMachine(KEY_WOW64_32KEY, L"a", L"32");
  EXPECT_EQ(ReadMachine(L"a"), Value(L"32"));
  StoreMachine(KEY_WOW64_64KEY, L"b", L"64");
  EXPECT_EQ(ReadMachine(L"b"), Value(L"64")) << "the key is in both views, the value in one";
  registry_->WriteText(RootKey::kLocalMachine, key_, L"b", L"written");
  EXPECT_EQ(ReadMachine(L"b"), Value(L"written"));
}

}  // namespace
}  // namespace registry
