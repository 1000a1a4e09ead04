// Day numbers and calendar dates.
#include "platform/text/date.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cwchar>
#include <iterator>

#include "platform/text/runtime_error.h"

namespace text {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kDayZero = std::chrono::December / 30 / 1899;
constexpr sys_days kFirstDay = std::chrono::January / 1 / 100;
constexpr sys_days kLastDay = std::chrono::December / 31 / 9999;
constexpr std::int64_t kFirstYear = 100;
constexpr std::int64_t kLastYear = 9999;
constexpr std::int64_t kMonthsPerYear = 12;
constexpr std::int32_t kSecondsPerDay = 24 * 60 * 60;

// Two-digit years up to this one belong to the 2000s.
constexpr std::int32_t kLastYearOf2000s = 29;

std::int32_t CenturyFor(std::int32_t year) {
  if (year < 0 || year > 99) return 0;
  return year <= kLastYearOf2000s ? 2000 : 1900;
}

std::wstring Format(const wchar_t* pattern, double date) {
  const CalendarTime t = ToCalendarTime(date);
  wchar_t buffer[32];
  const int size = std::swprintf(buffer, std::size(buffer), pattern, t.year, t.month, t.day, t.hour,
                                 t.minute, t.second);
  return {buffer, static_cast<std::size_t>(std::max(size, 0))};
}

}  // namespace

double DateSerial(std::int32_t year, std::int32_t month, std::int32_t day) {
  const std::int64_t months = (std::int64_t{year} + CenturyFor(year)) * kMonthsPerYear + month - 1;
  std::int64_t whole_year = months / kMonthsPerYear;
  std::int64_t month_index = months % kMonthsPerYear;
  if (month_index < 0) {
    month_index += kMonthsPerYear;
    --whole_year;
  }
  // A day number may still lead back into the range from a year or so outside; anything further is
  // an error anyway, and this keeps the calendar arithmetic inside its own range.
  constexpr std::int64_t kSlack = 200;
  if (whole_year < kFirstYear - kSlack || whole_year > kLastYear + kSlack) {
    Raise(kInvalidProcedureCall);
  }
  const sys_days first_of_month = std::chrono::year(static_cast<int>(whole_year)) /
                                  std::chrono::month(static_cast<unsigned>(month_index + 1)) / 1;
  const std::int64_t number = (first_of_month - kDayZero).count() + std::int64_t{day} - 1;
  if (number < (kFirstDay - kDayZero).count() || number > (kLastDay - kDayZero).count()) {
    Raise(kInvalidProcedureCall);
  }
  return static_cast<double>(number);
}

double ToDayNumber(const CalendarTime& time) {
  const sys_days day = std::chrono::year(time.year) /
                       std::chrono::month(static_cast<unsigned>(time.month)) /
                       std::chrono::day(static_cast<unsigned>(time.day));
  const auto number = static_cast<double>((day - kDayZero).count());
  const double fraction =
      static_cast<double>((time.hour * 60 + time.minute) * 60 + time.second) / kSecondsPerDay;
  return number < 0 ? number - fraction : number + fraction;
}

CalendarTime ToCalendarTime(double date) {
  if (std::isnan(date)) date = kUnsetDate;
  const auto first = static_cast<double>((kFirstDay - kDayZero).count());
  const auto last = static_cast<double>((kLastDay - kDayZero).count());
  double whole = std::trunc(date);
  auto seconds = static_cast<std::int32_t>(std::lround(std::abs(date - whole) * kSecondsPerDay));
  if (seconds == kSecondsPerDay) {
    seconds = 0;
    ++whole;
  }
  if (whole < first || whole > last) {
    whole = std::clamp(whole, first, last);
    seconds = 0;
  }
  const year_month_day day(kDayZero + days(static_cast<int>(whole)));
  return {.year = static_cast<int>(day.year()),
          .month = static_cast<std::int32_t>(static_cast<unsigned>(day.month())),
          .day = static_cast<std::int32_t>(static_cast<unsigned>(day.day())),
          .hour = seconds / 3600,
          .minute = seconds / 60 % 60,
          .second = seconds % 60};
}

std::wstring FormatCompactDate(double date) { return Format(L"%04d%02d%02d", date); }
std::wstring FormatDate(double date) { return Format(L"%04d-%02d-%02d", date); }
std::wstring FormatDateMinute(double date) { return Format(L"%04d-%02d-%02d %02d:%02d", date); }
std::wstring FormatDateTime(double date) { return Format(L"%04d-%02d-%02d %02d:%02d:%02d", date); }

}  // namespace text
