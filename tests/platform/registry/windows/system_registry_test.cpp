// The real registry: both views of the machine's part, and values of every kind.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>

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
  const DWORD number = 0x80000001;
  // Without a terminating zero, and long enough to need a second attempt.
  const std::wstring unterminated(1000, L'\u20AC');
  const std::wstring inner(L"a\0b", 4);
  Store(HKEY_CURRENT_USER, 0, L"number", REG_DWORD, &number, sizeof(number));
  Store(HKEY_CURRENT_USER, 0, L"short number", REG_DWORD, &number, 2);
  Store(HKEY_CURRENT_USER, 0, L"unterminated", REG_SZ, unterminated.data(),
        unterminated.size() * sizeof(wchar_t));
  Store(HKEY_CURRENT_USER, 0, L"inner zero", REG_SZ, inner.data(), inner.size() * sizeof(wchar_t));
  Store(HKEY_CURRENT_USER, 0, L"empty", REG_SZ, nullptr, 0);
  Store(HKEY_CURRENT_USER, 0, L"expand", REG_EXPAND_SZ, L"x", 4);
  Store(HKEY_CURRENT_USER, 0, L"binary", REG_BINARY, &number, sizeof(number));
  Store(HKEY_CURRENT_USER, 0, L"several", REG_MULTI_SZ, L"a\0", 3 * sizeof(wchar_t));
  Store(HKEY_CURRENT_USER, 0, L"long number", REG_QWORD, L"1234", 8);
  Store(HKEY_CURRENT_USER, 0, L"half a character", REG_SZ, L"ab", 3);
  Store(HKEY_CURRENT_USER, 0, L"", REG_SZ, L"default", 8 * sizeof(wchar_t));
  EXPECT_EQ(ReadUser(L"NUMBER"), Value(0x80000001U));
  EXPECT_EQ(ReadUser(L"short number"), Value(OtherKind{}));
  EXPECT_EQ(ReadUser(L"unterminated"), Value(unterminated));
  EXPECT_EQ(ReadUser(L"inner zero"), Value(std::wstring(L"a\0b", 3)));
  EXPECT_EQ(ReadUser(L"empty"), Value(std::wstring()));
  EXPECT_EQ(ReadUser(L"expand"), Value(OtherKind{}));
  EXPECT_EQ(ReadUser(L"binary"), Value(OtherKind{}));
  EXPECT_EQ(ReadUser(L"several"), Value(OtherKind{}));
  EXPECT_EQ(ReadUser(L"long number"), Value(OtherKind{}));
  EXPECT_EQ(ReadUser(L"half a character"), Value(L"a"));
  EXPECT_EQ(ReadUser(L""), Value(L"default"));
  EXPECT_EQ(ReadUser(L"missing"), std::nullopt);
}

TEST_F(SystemRegistryTest, WritesCreateTheKey) {
  registry_->WriteText(RootKey::kCurrentUser, key_ + L"\\", L"a", L"Pr\u00E9 \u20AC");
  EXPECT_EQ(ReadUser(L"A"), Value(L"Pr\u00E9 \u20AC"));
  registry_->WriteText(RootKey::kCurrentUser, key_, L"a", L"");
  EXPECT_EQ(ReadUser(L"a"), Value(std::wstring()));
}

// What the host product and the registry editor find: a terminated text, whatever was there before.
TEST_F(SystemRegistryTest, WhatIsWrittenIsATextForOthers) {
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

// Two programs that write different values at the same moment lose nothing of each other.
TEST_F(SystemRegistryTest, SeveralWritersLoseNothing) {
  constexpr int kValues = 50;
  const auto write = [this](const std::wstring& prefix) {
    const auto own = MakeSystemRegistry();
    for (int i = 0; i < kValues; ++i)
      own->WriteText(RootKey::kCurrentUser, key_, prefix + std::to_wstring(i), prefix);
  };
  std::thread other([&] { write(L"x"); });
  write(L"y");
  other.join();
  for (int i = 0; i < kValues; ++i) {
    EXPECT_EQ(ReadUser((L"x" + std::to_wstring(i)).c_str()), Value(L"x"));
    EXPECT_EQ(ReadUser((L"y" + std::to_wstring(i)).c_str()), Value(L"y"));
  }
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
