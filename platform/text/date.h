// Day numbers as databases and classic programs count them, and their calendar dates and texts.
//
// A date is a double: whole days since 1899-12-30 in the proleptic Gregorian calendar; the fraction
// is the time of day. Before day zero the fraction still counts forward from midnight: -1.25 is
// 1899-12-29 06:00. 0.0 is the unset date (and shows as 1899-12-30).
#pragma once

#include <cstdint>
#include <string>

namespace text {

inline constexpr double kUnsetDate = 0.0;

struct CalendarTime {
  std::int32_t year = 1899;
  std::int32_t month = 12;  // 1..12
  std::int32_t day = 30;    // 1..31
  std::int32_t hour = 0;
  std::int32_t minute = 0;
  std::int32_t second = 0;
  friend bool operator==(const CalendarTime&, const CalendarTime&) = default;
};

// The day number of a date given by its parts. Months and days outside their range roll over into
// the neighbouring years and months (month 13 is January of the next year, day 0 the last day of
// the month before). Years 0..29 mean 2000..2029, 30..99 mean 1930..1999. Throws RuntimeError 5
// when the result lies outside the years 100..9999.
double DateSerial(std::int32_t year, std::int32_t month, std::int32_t day);

// The day number of a moment whose parts are in range (hour 0..23 and so on).
double ToDayNumber(const CalendarTime& time);

// The calendar date and the time to the nearest second. A date outside the years 100..9999, or one
// that is not a number, is taken as the nearest of the two ends (not a number: as unset).
CalendarTime ToCalendarTime(double date);

// "yyyymmdd", "yyyy-MM-dd", "yyyy-MM-dd hh:mm" and "yyyy-MM-dd hh:mm:ss", always with these marks.
std::wstring FormatCompactDate(double date);
std::wstring FormatDate(double date);
std::wstring FormatDateMinute(double date);
std::wstring FormatDateTime(double date);

}  // namespace text
