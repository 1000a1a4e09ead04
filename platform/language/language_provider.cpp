// Finds language files and answers with their texts.
#include "platform/language/language_provider.h"

#include <system_error>
#include <utility>

#include "platform/files/paths.h"

namespace language {
namespace {

constexpr const char* kLanguageFolder = "lang";
constexpr const char* kDefaultFile = "dutch.lng";

}  // namespace

FileLanguageProvider::FileLanguageProvider(std::filesystem::path program_folder)
    : program_folder_(std::move(program_folder)) {}

std::int16_t FileLanguageProvider::LoadLanguageFile(const std::wstring& name) {
  const std::filesystem::path dutch_path = program_folder_ / kLanguageFolder / kDefaultFile;
  LanguageTexts dutch;
  bool dutch_loaded = true;
  try {
    dutch = ReadLanguageFile(dutch_path);
  } catch (const std::exception&) {
    dutch_loaded = false;  // the language asked for may still be complete
  }
  LanguageTexts wanted;
  std::int16_t status = kLoaded;
  if (name.empty()) {
    if (!dutch_loaded) return kNotLoaded;
  } else {
    try {
      wanted = ReadLanguageFile(Locate(name));
    } catch (const FormatError&) {
      if (!dutch_loaded) return kNotLoaded;  // there would be no text at all
      status = kUnknownFormat;
    } catch (const std::exception&) {
      return kNotLoaded;
    }
  }
  current_ = std::move(wanted);
  dutch_ = std::move(dutch);
  return status;
}

std::wstring FileLanguageProvider::GetText(std::int32_t number) const {
  return Find(number, &Entry::text);
}

std::wstring FileLanguageProvider::GetToolTipText(std::int32_t number) const {
  return Find(number, &Entry::tool_tip);
}

std::wstring FileLanguageProvider::GetMessageText(std::int32_t number) const {
  return Find(number, &Entry::message);
}

std::filesystem::path FileLanguageProvider::Locate(const std::wstring& name) const {
  std::filesystem::path path = files::ToPath(name);
  if (files::IsAbsolute(name)) return path;
  std::filesystem::path beside_program = program_folder_ / path;
  std::error_code ignored;
  if (std::filesystem::is_regular_file(beside_program, ignored)) return beside_program;
  return program_folder_ / kLanguageFolder / path;
}

std::wstring FileLanguageProvider::Find(std::int32_t number, std::wstring Entry::*kind) const {
  for (const LanguageTexts* texts : {&current_, &dutch_}) {
    const auto found = texts->entries.find(number);
    if (found != texts->entries.end() && !(found->second.*kind).empty()) return found->second.*kind;
  }
  return {};
}

}  // namespace language
