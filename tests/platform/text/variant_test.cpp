// Which type a Variant takes when it is made from a plain C++ value.
#include "platform/text/variant.h"

#include <gtest/gtest.h>

#include "platform/text/runtime_error.h"

namespace text {
namespace {

static_assert(!std::is_constructible_v<Variant, const void*>, "a pointer must not become True");
static_assert(!std::is_constructible_v<Variant, const char*>, "narrow text has no code page");
static_assert(!std::is_constructible_v<Variant, std::int64_t>, "no type of ours is that wide");

TEST(RuntimeErrorTest, CarriesItsTextInBothForms) {
  const RuntimeError error(53, L"Caf\u00E9");
  EXPECT_EQ(error.number(), 53);
  EXPECT_EQ(error.description(), L"Caf\u00E9");
  EXPECT_STREQ(error.what(), "Caf\xC3\xA9");
}

}  // namespace
}  // namespace text
