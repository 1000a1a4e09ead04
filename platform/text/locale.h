// The two characters of the user's locale that number texts depend on.
#pragma once

namespace text {

struct Locale {
  wchar_t decimal_mark = L'.';
  wchar_t thousands_mark = L',';  // never equal to decimal_mark
};

// The user's locale, asked from the system once and kept: on Windows the regional settings,
// elsewhere the numeric locale of the environment (LC_ALL, LC_NUMERIC, LANG). A system locale
// without a thousands mark counts as having "," (or "." when the decimal mark is ","). The C
// library's locale of this process is neither used nor changed. A ScopedLocale overrides it.
Locale CurrentLocale();

// Replaces the user's locale while it lives, for tests and for output that must not depend on the
// user. Scopes nest; they must end in the opposite order. Process-wide: use from one thread.
class ScopedLocale {
 public:
  explicit ScopedLocale(Locale locale);
  ~ScopedLocale();
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;

 private:
  Locale locale_;
  const ScopedLocale* outer_;
  friend Locale CurrentLocale();
};

}  // namespace text
