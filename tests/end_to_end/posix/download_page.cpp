// Walks through the download page's three steps without a window, for the end-to-end scripts.
//
//   download_page SERVER FOLDER [--first-run] [--uncheck NAME]... [--trust CERTIFICATE]
//
// FOLDER is a demo installation. Trusts the certificate's owner to vouch for servers. Prints what a
// user would see, a line each: "status: ", "message: " and, for each item of the list, "offered: "
// or "unchecked: " with its sub-items.
#include <curl/curl.h>
#include <dlfcn.h>

#include <iostream>
#include <string>
#include <string_view>
#include <unordered_set>

#include "app/modShared.h"
#include "demo/installation.h"
#include "platform/files/paths.h"
#include "platform/language/language_provider.h"
#include "platform/text/code_page.h"
#include "tests/support/memory_registry.h"
#include "wizard/usrDownload.h"

namespace {

std::string trusted_certificate;  // a file

}  // namespace

// Stands before the library's own function: the program itself cannot be told whom to trust.
extern "C" CURL* curl_easy_init() {
  static const auto original = reinterpret_cast<CURL* (*)()>(dlsym(RTLD_NEXT, "curl_easy_init"));
  CURL* const easy = original();
  if (!trusted_certificate.empty())
    curl_easy_setopt(easy, CURLOPT_CAINFO, trusted_certificate.c_str());
  return easy;
}

namespace {

void Print(std::string_view vWhat, const std::wstring& vText) {
  std::cout << vWhat << ": " << text::WideToUtf8(vText) << std::endl;
}

class PrintingPrompt final : public controls::Prompt {
 public:
  void ShowMessage(const std::wstring& text, const std::wstring& /*caption*/) override {
    Print("message", text);
  }
  bool AskYesNo(const std::wstring& /*text*/, const std::wstring& /*caption*/) override {
    return false;
  }
};

struct Options {
  std::wstring Server;
  std::wstring Folder;
  bool FirstRun = false;
  std::unordered_set<std::wstring> Unchecked;
};

Options OptionsOf(int argc, char** argv) {
  Options options;
  options.Server = text::Utf8ToWide(argv[1]);
  options.Folder = text::Utf8ToWide(argv[2]);
  for (int i = 3; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--first-run") options.FirstRun = true;
    if (argument == "--uncheck" && i + 1 < argc)
      options.Unchecked.insert(text::Utf8ToWide(argv[++i]));
    if (argument == "--trust" && i + 1 < argc) trusted_certificate = argv[++i];
  }
  return options;
}

void Walk(usrDownload& vPage, const Options& vOptions) {
  vPage.SetStepText = [](const std::wstring& vText) { Print("status", vText); };
  vPage.ProductTable = vOptions.Folder + L"/" + text::Utf8ToWide(demo::kProductTableFile);
  vPage.Init(1);
  if (!vPage.CheckInet()) return;
  vPage.Init(2);
  for (std::size_t i = 0; i < vPage.lvPrc.Items().size(); ++i) {
    const controls::ListItem& item = vPage.lvPrc.Item(i);
    const bool wanted = !vOptions.Unchecked.contains(item.sub_items.at(2));
    vPage.lvPrc.Check(i, wanted);
    std::wstring line = item.text;
    for (const std::wstring& sub_item : item.sub_items) line += L"|" + sub_item;
    Print(wanted ? "offered" : "unchecked", line);
  }
  if (!vPage.SelectedDownloadFiles().empty()) vPage.Init(3);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr
        << "usage: download_page SERVER FOLDER [--first-run] [--uncheck NAME]... [--trust FILE]\n";
    return 2;
  }
  const Options options = OptionsOf(argc, argv);
  PrintingPrompt prompt;
  test_support::MemoryRegistry registry;
  language::FileLanguageProvider english(files::ToPath(options.Folder));
  english.LoadLanguageFile(L"english.lng");
  SharedSettings settings;
  settings.objPrompt = &prompt;
  settings.objRegistry = &registry;
  settings.objLanguage = &english;
  settings.strProgramFolder = options.Folder;
  settings.strVersionSubKey = L"3.2\\PAP32\\";
  const SharedSettingsScope scope(settings);
  if (!options.FirstRun) {
    registry.WriteText(registry::RootKey::kCurrentUser,
                       L"Software\\Velkor Software\\Orvane\\3.2\\PAP32\\", L"DelFilesSP1", L"True");
  }
  usrDownload page(options.Server);
  Walk(page, options);
  return 0;
}
