// Makes the demo installation: a folder that runs by itself, with a product table, update files,
// settings, texts and the program that made it.
#pragma once

#include <filesystem>

namespace demo {

// The names in the folder.
inline constexpr const char* kProductTableFile = "Orv.pt";
inline constexpr const char* kUpdateFolder = "PAP32";
inline constexpr const char* kServerFolder = "server";  // what its download server offers
inline constexpr const char* kRegistryFile = "registry.reg";
inline constexpr const char* kWelcomeFile = "welkom.txt";
inline constexpr const char* kLanguageFolder = "lang";
inline constexpr const char* kWizardFile = "orvpap-demo";  // on Windows with its extension

// Fills `folder`, which is made where it is missing; files of an earlier demo installation are
// replaced. `program` is the file to copy into it, together with the folder `lang` and, if it is
// there, the demo's wizard beside that file.
//
// Throws text::RuntimeError or std::filesystem::filesystem_error when something cannot be read or
// written; the folder is then incomplete.
void MakeInstallation(const std::filesystem::path& folder, const std::filesystem::path& program);

}  // namespace demo
