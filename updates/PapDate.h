// Dates as price-update files and the download index write them.
#pragma once

#include <string>

// The day number of a date written yyyymmdd. Characters that are missing or no digits count as 0;
// months and days outside their range roll over. Throws text::RuntimeError 5 when the outcome lies
// outside the calendar (platform/text/date.h).
double PapDateOf(const std::wstring& vText);
