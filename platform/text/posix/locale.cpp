// The numeric locale of the environment, read without touching the locale of the process.
#include <langinfo.h>
#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale is not in <clocale>

#include <climits>
#include <cwchar>

#include "platform/text/system_locale.h"

namespace text {
namespace {

// The first character of a text in the encoding of the locale that is in use on this thread.
std::wstring FirstCharacter(const char* bytes) {
  wchar_t character = 0;
  std::mbstate_t state{};
  const std::size_t used = std::mbrtowc(&character, bytes, MB_LEN_MAX, &state);
  const bool found =
      used != 0 && used != static_cast<std::size_t>(-1) && used != static_cast<std::size_t>(-2);
  return found ? std::wstring(1, character) : std::wstring();
}

}  // namespace

SystemMarks AskSystemMarks() {
  const locale_t user = newlocale(LC_NUMERIC_MASK | LC_CTYPE_MASK, "", nullptr);
  if (user == nullptr) return {};
  const locale_t before = uselocale(user);
  SystemMarks marks{FirstCharacter(nl_langinfo(RADIXCHAR)), FirstCharacter(nl_langinfo(THOUSEP))};
  uselocale(before);
  freelocale(user);
  return marks;
}

}  // namespace text
