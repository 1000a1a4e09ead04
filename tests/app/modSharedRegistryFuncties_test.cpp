// Registry values as the program sees them: which kinds count, where the user's are, what failures
// say.
#include "app/modSharedRegistryFuncties.h"

#include <gmock/gmock.h>

#include "app/modGeneralFunctions.h"
#include "tests/support/surface_test.h"

namespace {

using registry::RootKey;
using testing::ElementsAre;
using testing::HasSubstr;

class RegistryFunctiesTest : public test_support::SurfaceTest {};

TEST_F(RegistryFunctiesTest, TextsAndNumbersAreReadAndNothingElse) {
  const std::pair<registry::Value, text::Variant> cases[] = {
      {L"", L""},   {std::wstring(L"a\0b", 3), L"a"}, {std::wstring(1, L'\0'), L""},
      {5U, L"005"}, {0xFFFFFFFFU, L"4294967295"},     {registry::OtherKind{}, text::Null{}},
  };
  for (const auto& [stored, expected] : cases) {
    registry.values[{RootKey::kUsers, L"key", L"name"}] = stored;
    EXPECT_EQ(fGetstring(RootKey::kUsers, L"key", L"name"), expected);
  }
  EXPECT_EQ(fGetstring(RootKey::kUsers, L"key", L"other"), text::Null{});
}

TEST_F(RegistryFunctiesTest, TheUsersSettingsLieBelowTheVersionsKey) {
  CurrentUser_BrengWeg(L"Sub", L"x", L"y");
  CurrentUser_BrengWegBoolean(L"", L"Backup", true);
  CurrentUser_BrengWegBoolean(L"", L"CheckInet", false);
  const std::wstring key = L"Software\\Velkor Software\\Orvane\\3.2\\PAP32\\";
  const decltype(registry.values) expected = {
      {{RootKey::kCurrentUser, key + L"Sub", L"x"}, L"y"},
      {{RootKey::kCurrentUser, key, L"Backup"}, L"True"},
      {{RootKey::kCurrentUser, key, L"CheckInet"}, L"False"},
  };
  EXPECT_EQ(registry.values, expected);
  EXPECT_EQ(CurrentUser_HaalOp(L"Sub", L"x", L""), L"y");
  EXPECT_EQ(CurrentUser_HaalOp(L"", L"missing", L"default"), L"default");
}

TEST_F(RegistryFunctiesTest, OnlyTheWordFalseIsFalse) {
  EXPECT_TRUE(CurrentUser_HaalOpBoolean(L"", L"x", L""));
  EXPECT_FALSE(CurrentUser_HaalOpBoolean(L"", L"x", L"FALSE")) << "the default";
  const std::pair<registry::Value, bool> cases[] = {
      {L"false", false},
      {L"True", true},
      {L"", true},
      {L"no", true},
      {L"false ", true},
      {0U, true},
      {registry::OtherKind{}, false},
  };
  for (const auto& [stored, expected] : cases) {
    Stored(L"x") = stored;
    EXPECT_EQ(CurrentUser_HaalOpBoolean(L"", L"x", L"FALSE"), expected);
  }
}

TEST_F(RegistryFunctiesTest, AFailureIsReportedOnceAndReadsAsAbsent) {
  registry.failure = text::RuntimeError(321, L"Invalid file format: x");
  EXPECT_EQ(CurrentUser_HaalOp(L"", L"Backup", L"default"), L"default");
  CurrentUser_BrengWegBoolean(L"", L"Backup", true);
  const std::string error = "\r\nError = 321: Invalid file format: x";
  EXPECT_THAT(Boxes(),
              ElementsAre(HasSubstr("modSharedRegistryFuncties.fGetstring (Function)" + error),
                          HasSubstr("modSharedRegistryFuncties.fSaveString (Sub)" + error)));
}

// Before the version is known the key would be the host product's own.
TEST_F(RegistryFunctiesTest, WithoutAVersionNothingIsReadOrWrittenAndTheReportNamesTheSetting) {
  settings.strVersionSubKey.clear();
  registry.values[{RootKey::kCurrentUser, L"Software\\Velkor Software\\Orvane\\", L"Backup"}] =
      L"False";
  const auto before = registry.values;
  EXPECT_TRUE(CurrentUser_HaalOpBoolean(L"", L"Backup", L"True"));
  CurrentUser_BrengWegBoolean(L"Sub", L"Backup", true);
  EXPECT_EQ(registry.values, before);
  EXPECT_THAT(Boxes(),
              ElementsAre(HasSubstr("CurrentUser_HaalOp (Function)\r\nMap: \r\nKey: Backup\r\n"
                                    "Error = 5: Invalid procedure call or argument"),
                          HasSubstr("CurrentUser_BrengWeg (Sub)\r\nMap: Sub\r\nKey: Backup\r\n")));
}

}  // namespace
