// Day numbers and calendar dates, at the edges where they go wrong.
#include "platform/text/date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/text/runtime_error.h"
#include "tests/support/error_number.h"

namespace text {
namespace {

TEST(DateSerialTest, RollsOverAndKnowsShortYears) {
  const struct {
    int year, month, day;
    const wchar_t* date;
  } cases[] = {
      {2004, 3, 15, L"20040315"}, {1899, 12, 30, L"18991230"}, {2024, 2, 30, L"20240301"},
      {2023, 2, 29, L"20230301"}, {2000, 2, 29, L"20000229"},  {1900, 2, 29, L"19000301"},
      {2004, 13, 1, L"20050101"}, {2004, 0, 1, L"20031201"},   {2004, -11, 1, L"20030101"},
      {2004, 1, 0, L"20031231"},  {2004, 1, -30, L"20031201"}, {0, 0, 0, L"19991130"},
      {29, 1, 1, L"20290101"},    {30, 1, 1, L"19300101"},     {99, 12, 31, L"19991231"},
      {100, 1, 1, L"01000101"},   {9999, 12, 31, L"99991231"}, {2004, 99, 99, L"20120607"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FormatCompactDate(DateSerial(c.year, c.month, c.day)), c.date);
  }
  EXPECT_EQ(DateSerial(1899, 12, 30), kUnsetDate);
  EXPECT_EQ(DateSerial(2004, 3, 15), 38061);
}

TEST(DateSerialTest, RefusesWhatNoDateCanHold) {
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
  const int cases[][3] = {{9999, 12, 32}, {100, 1, 0},           {-1, 1, 1},
                          {10000, 1, 1},  {kMost, kMost, kMost}, {kLeast, kLeast, kLeast}};
  for (const auto& c : cases) {
    EXPECT_EQ(test_support::ErrorNumberOf([&] { DateSerial(c[0], c[1], c[2]); }),
              kInvalidProcedureCall)
        << c[0] << '/' << c[1] << '/' << c[2];
  }
}

TEST(CalendarTimeTest, KeepsTheTimeOnBothSidesOfDayZero) {
  const CalendarTime cases[] = {{2004, 3, 15, 23, 59, 59},
                                {1899, 12, 29, 6, 0, 0},
                                {1600, 2, 29, 0, 0, 1},
                                {1899, 12, 30, 18, 30, 0}};
  for (const CalendarTime& time : cases) EXPECT_EQ(ToCalendarTime(ToDayNumber(time)), time);
  EXPECT_EQ(FormatDateTime(-1.25), L"1899-12-29 06:00:00");
}

TEST(CalendarTimeTest, RoundsUpIntoTheNextDayAndStaysInRange) {
  EXPECT_EQ(FormatDateTime(std::nextafter(38062.0, 0)), L"2004-03-16 00:00:00");
  EXPECT_EQ(FormatDateMinute(38061 + 59.0 / 86400), L"2004-03-15 00:00");
  EXPECT_EQ(FormatDate(1e300), L"9999-12-31");
  EXPECT_EQ(FormatDate(-std::numeric_limits<double>::infinity()), L"0100-01-01");
  EXPECT_EQ(FormatDate(std::numeric_limits<double>::quiet_NaN()), L"1899-12-30");
}

}  // namespace
}  // namespace text
