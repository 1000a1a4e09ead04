// Every text that the user sees comes from here, by its number.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "platform/language/language_file.h"

namespace language {

// What LoadLanguageFile reports. Callers compare with kNotLoaded; any other status is a success.
inline constexpr std::int16_t kLoaded = 0;
inline constexpr std::int16_t kNotLoaded = 1;      // missing or unreadable
inline constexpr std::int16_t kUnknownFormat = 2;  // there, but no language file of ours

// Gives texts in the language that was loaded. A number has up to three texts: the text itself, a
// tool tip and a message. Texts hold "%s" and "/p" as they stand in the file; filling and breaking
// them is the caller's. Not synchronised: use from one thread.
class LanguageProvider {
 public:
  virtual ~LanguageProvider() = default;

  // Makes the named file's texts the current ones and returns one of the statuses above; it throws
  // nothing. An empty name means the default language. After kNotLoaded the texts are as before.
  virtual std::int16_t LoadLanguageFile(const std::wstring& name) = 0;

  // Empty for a number without such a text.
  virtual std::wstring GetText(std::int32_t number) const = 0;
  virtual std::wstring GetToolTipText(std::int32_t number) const = 0;
  virtual std::wstring GetMessageText(std::int32_t number) const = 0;
};

// Reads language files (docs/language-files.md). A relative name is sought in the program's folder,
// then in its folder `lang`. A text that the loaded language lacks is taken from Dutch, the default
// language, whose file is dutch.lng in the folder `lang`. After kUnknownFormat the Dutch texts are
// used; where that file cannot be read either, the status is kNotLoaded.
class FileLanguageProvider final : public LanguageProvider {
 public:
  explicit FileLanguageProvider(std::filesystem::path program_folder);

  std::int16_t LoadLanguageFile(const std::wstring& name) override;
  std::wstring GetText(std::int32_t number) const override;
  std::wstring GetToolTipText(std::int32_t number) const override;
  std::wstring GetMessageText(std::int32_t number) const override;

 private:
  std::filesystem::path Locate(const std::wstring& name) const;
  std::wstring Find(std::int32_t number, std::wstring Entry::*kind) const;

  std::filesystem::path program_folder_;
  LanguageTexts current_;
  LanguageTexts dutch_;
};

}  // namespace language
