// Lines, page owners and the reporting of damage during a file check.
#include "platform/jet/check_state.h"

#include <utility>

namespace jet::check {
namespace {

constexpr char32_t kReplacement = 0xfffd;

bool IsHigh(char16_t unit) { return unit >= 0xd800 && unit < 0xdc00; }
bool IsLow(char16_t unit) { return unit >= 0xdc00 && unit < 0xe000; }

void AppendUtf8(std::string& line, char32_t character) {
  const auto tail = [&](int shift) {
    line += static_cast<char>(0x80 | (character >> shift & 0x3f));
  };
  if (character < 0x80) {
    line += static_cast<char>(character);
  } else if (character < 0x800) {
    line += static_cast<char>(0xc0 | character >> 6);
    tail(0);
  } else if (character < 0x10000) {
    line += static_cast<char>(0xe0 | character >> 12);
    tail(6);
    tail(0);
  } else {
    line += static_cast<char>(0xf0 | character >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace

std::string ToUtf8(std::u16string_view text) {
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (IsHigh(text[i]) && i + 1 < text.size() && IsLow(text[i + 1])) {
      character = 0x10000 + ((character - 0xd800) << 10) + (text[i + 1] - 0xdc00U);
      ++i;
    } else if (IsHigh(text[i]) || IsLow(text[i]) || character < 0x20 || character == 0x7f) {
      character = kReplacement;
    }
    AppendUtf8(line, character);
  }
  return line;
}

std::vector<std::string> Lines::Take() {
  if (more_ > 0) lines_.push_back(Line("... and ", more_, " more"));
  more_ = 0;
  return std::exchange(lines_, {});
}

PageOwners::Owner PageOwners::Name(std::string name) {
  names_.push_back(std::move(name));
  return static_cast<Owner>(names_.size() - 1);
}

bool State::Claim(PageNumber page, PageOwners::Owner owner) {
  if (page == 0 || page >= owners.page_count()) {
    problems.Add(owners.NameOf(owner), ": page ", page, " lies outside the file");
    return false;
  }
  const PageOwners::Owner other = owners.OwnerOf(page);
  if (other != 0 && other != owner) {
    problems.Add("page ", page, " belongs to ", owners.NameOf(other), " and to ",
                 owners.NameOf(owner));
    return false;
  }
  owners.Set(page, owner);
  return true;
}

void State::Report(std::string_view where, const Error& error) {
  if (error.kind() == ErrorKind::kIo) throw error;
  if (error.page() == kNoPage)
    problems.Add(where, ": ", std::string_view(error.what()));
  else
    problems.Add(where, ": page ", error.page(), ": ", std::string_view(error.what()));
}

}  // namespace jet::check
