// Registry values as the program sees them: which kinds count, where the user's are, what failures
// say.
#include "app/modSharedRegistryFuncties.h"

#include <gmock/gmock.h>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "tests/support/memory_registry.h"
#include "tests/support/recording_prompt.h"

namespace {

using registry::RootKey;

constexpr wchar_t kUserKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\PAP32\\";

class RegistryFunctiesTest : public testing::Test {
 protected:
  RegistryFunctiesTest() {
    m_shared.objPrompt = &m_prompt;
    m_shared.objRegistry = &m_registry;
    m_shared.strVersionSubKey = L"3.2\\PAP32\\";
  }
  void Store(RootKey vRoot, const wchar_t* vKey, const wchar_t* vName, registry::Value vValue) {
    m_registry.values[{vRoot, vKey, vName}] = std::move(vValue);
  }

  test_support::RecordingPrompt m_prompt;
  test_support::MemoryRegistry m_registry;
  SharedSettings m_shared;
  SharedSettingsScope m_scope{m_shared};
};

TEST_F(RegistryFunctiesTest, TextsAndNumbersAreReadAndNothingElse) {
  const struct {
    std::optional<registry::Value> stored;
    text::Variant expected;
  } cases[] = {
      {L"text", L"text"},
      {L"", L""},
      {std::wstring(L"a\0b", 3), L"a"},
      {std::wstring(1, L'\0'), L""},
      {5U, L"005"},
      {1234U, L"1234"},
      {0xFFFFFFFFU, L"4294967295"},
      {registry::OtherKind{}, text::Null{}},
      {std::nullopt, text::Null{}},
  };
  for (const auto& c : cases) {
    m_registry.values.clear();
    if (c.stored) Store(RootKey::kUsers, L"key", L"name", *c.stored);
    EXPECT_EQ(fGetstring(RootKey::kUsers, L"key", L"name"), c.expected);
  }
  EXPECT_TRUE(m_prompt.messages.empty());
}

TEST_F(RegistryFunctiesTest, TheUsersSettingsLieBelowTheVersionsKey) {
  CurrentUser_BrengWeg(L"", L"PTLocation", L"C:\\Orv.pt");
  CurrentUser_BrengWeg(L"Sub", L"x", L"y");
  CurrentUser_BrengWegBoolean(L"", L"Backup", true);
  CurrentUser_BrengWegBoolean(L"", L"CheckInet", false);
  const decltype(m_registry.values) expected = {
      {{RootKey::kCurrentUser, kUserKey, L"PTLocation"}, L"C:\\Orv.pt"},
      {{RootKey::kCurrentUser, std::wstring(kUserKey) + L"Sub", L"x"}, L"y"},
      {{RootKey::kCurrentUser, kUserKey, L"Backup"}, L"True"},
      {{RootKey::kCurrentUser, kUserKey, L"CheckInet"}, L"False"},
  };
  EXPECT_EQ(m_registry.values, expected);
  EXPECT_EQ(CurrentUser_HaalOp(L"", L"PTLocation", L"default"), L"C:\\Orv.pt");
  EXPECT_EQ(CurrentUser_HaalOp(L"Sub", L"x", L""), L"y");
  EXPECT_EQ(CurrentUser_HaalOp(L"", L"missing", L"default"), L"default");
}

TEST_F(RegistryFunctiesTest, OnlyTheWordFalseIsFalse) {
  const struct {
    std::optional<registry::Value> stored;
    const wchar_t* default_text;
    bool expected;
  } cases[] = {
      {std::nullopt, L"True", true}, {std::nullopt, L"FALSE", false},
      {std::nullopt, L"", true},     {L"false", L"True", false},
      {L"True", L"FALSE", true},     {L"", L"FALSE", true},
      {L"no", L"FALSE", true},       {L"false ", L"FALSE", true},
      {0U, L"FALSE", true},          {registry::OtherKind{}, L"FALSE", false},
  };
  for (const auto& c : cases) {
    m_registry.values.clear();
    if (c.stored) Store(RootKey::kCurrentUser, kUserKey, L"x", *c.stored);
    EXPECT_EQ(CurrentUser_HaalOpBoolean(L"", L"x", c.default_text), c.expected);
  }
}

TEST_F(RegistryFunctiesTest, AFailureIsReportedOnceAndReadsAsAbsent) {
  m_registry.failure = text::RuntimeError(321, L"Invalid file format: x");
  EXPECT_EQ(CurrentUser_HaalOp(L"", L"Backup", L"default"), L"default");
  CurrentUser_BrengWegBoolean(L"", L"Backup", true);
  ASSERT_EQ(m_prompt.messages.size(), 2U);
  EXPECT_EQ(m_prompt.messages[0].text,
            L"\r\n\r\nProcedure = modSharedRegistryFuncties.fGetstring (Function)\r\n"
            L"Error = 321: Invalid file format: x");
  EXPECT_EQ(m_prompt.messages[1].text,
            L"\r\n\r\nProcedure = modSharedRegistryFuncties.fSaveString (Sub)\r\n"
            L"Error = 321: Invalid file format: x");
}

// Before the version is known the key would be the host product's own.
TEST_F(RegistryFunctiesTest, WithoutAVersionNothingIsReadOrWrittenAndTheReportNamesTheSetting) {
  m_shared.strVersionSubKey.clear();
  Store(RootKey::kCurrentUser, L"Software\\Velkor Software\\Orvane\\", L"Backup", L"False");
  const auto before = m_registry.values;
  EXPECT_EQ(CurrentUser_HaalOp(L"Sub", L"Path", L"default"), L"default");
  CurrentUser_BrengWeg(L"Sub", L"Path", L"new");
  CurrentUser_BrengWegBoolean(L"", L"Backup", true);
  EXPECT_TRUE(CurrentUser_HaalOpBoolean(L"", L"Backup", L"True"));
  EXPECT_EQ(m_registry.values, before);

  ASSERT_EQ(m_prompt.messages.size(), 4U);
  EXPECT_EQ(m_prompt.messages[0].text,
            L"\r\n\r\nProcedure = modSharedRegistryFuncties.CurrentUser_HaalOp (Function)\r\n"
            L"Map: Sub\r\nKey: Path\r\nError = 5: Invalid procedure call or argument");
  EXPECT_THAT(m_prompt.messages[2].text,
              testing::HasSubstr(L"CurrentUser_BrengWeg (Sub)\r\nMap: \r\nKey: Backup\r\n"));
}

}  // namespace
