// Which type a Variant takes when it is made from a plain C++ value.
#include "platform/text/variant.h"

#include <gtest/gtest.h>

#include "platform/text/runtime_error.h"

namespace text {
namespace {

static_assert(!std::is_constructible_v<Variant, const void*>, "a pointer must not become True");
static_assert(!std::is_constructible_v<Variant, const char*>, "narrow text has no code page");
static_assert(!std::is_constructible_v<Variant, std::int64_t>, "no type of ours is that wide");

TEST(VariantTest, KeepsTheTypeItWasMadeFrom) {
  EXPECT_TRUE(Variant().IsNull());
  EXPECT_EQ(Variant(L"text").Get<std::wstring>(), L"text");
  EXPECT_EQ(Variant(std::wstring_view(L"view")).Get<std::wstring>(), L"view");
  EXPECT_TRUE(Variant(true).Is<bool>());
  EXPECT_TRUE(Variant(1).Is<std::int32_t>());
  EXPECT_TRUE(Variant(std::uint8_t{1}).Is<std::uint8_t>());
  EXPECT_TRUE(Variant(1.0F).Is<float>());
  EXPECT_EQ(Variant(1).GetIf<double>(), nullptr);
  EXPECT_FALSE(Variant(1) == Variant(1.0));
  EXPECT_TRUE(Variant() == Variant(Null{}));
}

TEST(RuntimeErrorTest, CarriesItsTextInBothForms) {
  const RuntimeError error(53, L"Caf\u00E9");
  EXPECT_EQ(error.number(), 53);
  EXPECT_EQ(error.description(), L"Caf\u00E9");
  EXPECT_STREQ(error.what(), "Caf\xC3\xA9");
}

}  // namespace
}  // namespace text
