// Makes the demo installation: a folder that runs by itself, with a product table, update files,
// settings, texts and the program that made it.
#include "demo/installation.h"

#include <fstream>
#include <string>

#include "app/modMain.h"
#include "demo/product_table.h"
#include "demo/update_files.h"
#include "engine/clsOrvPap.h"
#include "platform/files/file_error.h"
#include "platform/files/paths.h"
#include "platform/files/text_writer.h"
#include "platform/registry/reg_file.h"
#include "store/modProductTable.h"
#include "updates/modSharedPap.h"

namespace demo {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOpeningFolder = "opening.tmp";  // only while the product table is filled

// Applies updates that are known to be good.
void Apply(const std::vector<std::wstring>& updates, const std::wstring& product_table) {
  for (const std::wstring& path : updates) {
    clsOrvPap update;
    ReadPapHeader(path, update);
    const bool applied = update.UpdatePT(product_table);
    ProductConnection.reset();
    if (!applied) throw files::FileError(files::kDeviceIoError);
  }
}

void MakeProductTable(const fs::path& folder) {
  const fs::path path = folder / kProductTableFile;
  fs::remove(path);
  CreateProductTable(files::ToText(path));

  const fs::path opening = folder / kOpeningFolder;
  fs::remove_all(opening);
  fs::create_directories(opening);
  Apply(WriteOpeningUpdates(files::ToText(opening)), files::ToText(path));
  fs::remove_all(opening);
}

void MakeUpdateFolder(const fs::path& folder) {
  const fs::path path = folder / kUpdateFolder;
  fs::create_directories(path);
  WriteUpdates(files::ToText(path));
}

// For `paptool serve`, and so for the wizard's download page.
void MakeServerFolder(const fs::path& folder) {
  const fs::path path = folder / kServerFolder;
  fs::create_directories(path);
  WriteServerUpdates(files::ToText(path));
}

// The folder may be carried around: the welcome text is named without a folder, and ProductTable is
// left out, so that the program takes both from beside itself.
void WriteRegistry(const fs::path& folder) {
  const std::wstring settings = std::wstring(L"HKEY_LOCAL_MACHINE\\") + kSettingsKey;
  const std::wstring user = L"HKEY_CURRENT_USER\\Software\\Velkor Software\\Orvane\\3.2\\PAP32\\";
  registry::RegFile registry("");
  registry.SetText(settings, L"PAPUPDATERLANGUAGE", L"dutch.lng");
  registry.SetText(settings, L"PAPUPDATERWELCOME", files::ToText(kWelcomeFile));
  registry.SetText(user, L"Backup", L"True");
  registry.SetText(user, L"CheckInet", L"True");
  // Otherwise the first download step would clear the update folder, once.
  registry.SetText(user, L"DelFilesSP1", L"True");

  std::ofstream file(folder / kRegistryFile, std::ios::binary | std::ios::trunc);
  file << registry.Bytes();
  file.close();
  if (!file) throw files::FileError(files::kDeviceIoError);
}

// The first line is the heading.
void WriteWelcome(const fs::path& folder) {
  files::TextWriter file(folder / kWelcomeFile);
  for (const wchar_t* line :
       {L"Welkom bij de demo-installatie",
        L"Met deze wizard brengt u prijsaanpassingen van uw "
        L"leveranciers in de productentabel.",
        L"",
        L"Er zijn enkele prijsaanpassingen om mee te oefenen. Twee daarvan bevatten opzettelijk "
        L"fouten, zodat u ziet hoe die gemeld worden.",
        L"", L"De leveranciers en hun prijzen zijn verzonnen; de afmetingen van het staal niet."}) {
    file.WriteLine(line);
  }
  file.Close();
}

void CopyPrograms(const fs::path& folder, const fs::path& program) {
  const fs::path target = folder / program.filename();
  if (fs::exists(target) && fs::equivalent(program, target)) return;  // it runs from there
  fs::copy_file(program, target, fs::copy_options::overwrite_existing);
  fs::path wizard_file(kWizardFile);
  wizard_file += program.extension();
  const fs::path wizard = program.parent_path() / wizard_file;
  if (fs::exists(wizard)) {
    fs::copy_file(wizard, folder / wizard_file, fs::copy_options::overwrite_existing);
  }
  fs::copy(program.parent_path() / kLanguageFolder, folder / kLanguageFolder,
           fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

}  // namespace

void MakeInstallation(const fs::path& folder, const fs::path& program) {
  fs::create_directories(folder);
  const fs::path absolute = files::ToPath(files::AbsolutePath(files::ToText(folder)));
  CopyPrograms(absolute, program);
  MakeUpdateFolder(absolute);
  MakeServerFolder(absolute);
  WriteRegistry(absolute);
  WriteWelcome(absolute);
  MakeProductTable(absolute);
}

}  // namespace demo
