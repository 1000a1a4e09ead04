// Chooses between the user's locale and the one a scope has put in its place.
#include "platform/text/locale.h"

#include "platform/text/system_locale.h"

namespace text {
namespace {

const ScopedLocale* innermost_scope = nullptr;

Locale SystemLocale() {
  const SystemMarks marks = AskSystemMarks();
  Locale locale;
  if (!marks.decimal.empty()) locale.decimal_mark = marks.decimal.front();
  locale.thousands_mark = locale.decimal_mark == L',' ? L'.' : L',';
  if (!marks.thousands.empty() && marks.thousands.front() != locale.decimal_mark) {
    locale.thousands_mark = marks.thousands.front();
  }
  return locale;
}

}  // namespace

Locale CurrentLocale() {
  if (innermost_scope != nullptr) return innermost_scope->locale_;
  static const Locale system_locale = SystemLocale();
  return system_locale;
}

ScopedLocale::ScopedLocale(Locale locale) : locale_(locale), outer_(innermost_scope) {
  innermost_scope = this;
}

ScopedLocale::~ScopedLocale() { innermost_scope = outer_; }

}  // namespace text
