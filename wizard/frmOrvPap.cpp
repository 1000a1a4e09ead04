// The wizard's walk: what each step does, in which order, and what stands where.
#include "wizard/frmOrvPap.h"

#include <utility>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "app/modSharedRegistryFuncties.h"
#include "platform/database/database_engine.h"
#include "platform/files/paths.h"
#include "platform/text/strings.h"
#include "store/modProductTable.h"
#include "updates/modSharedPapFolder.h"

namespace {

namespace FormTexts {
constexpr std::int32_t kWizard = 0;
constexpr std::int32_t kNext = 1;
constexpr std::int32_t kPrevious = 2;
constexpr std::int32_t kCancel = 3;
constexpr std::int32_t kDownload = 6;
constexpr std::int32_t kGoOn = 10;
constexpr std::int32_t kSelect = 41;
constexpr std::int32_t kTarget = 42;
constexpr std::int32_t kImport = 47;
constexpr std::int32_t kImportFailed = 50;
constexpr std::int32_t kProcessed = 132;
constexpr std::int32_t kProcessedStatus = 133;
constexpr std::int32_t kCompacting = 1070;
}  // namespace FormTexts

// The steps of the walk. Going back from the select page passes over the transfer.
namespace Steps {
constexpr std::int32_t kWelcome = 1;
constexpr std::int32_t kTarget = 2;
constexpr std::int32_t kProcessed = 3;
constexpr std::int32_t kDownloadChoice = 4;
constexpr std::int32_t kDownloadList = 5;
constexpr std::int32_t kDownloadTransfer = 6;
constexpr std::int32_t kSelect = 7;
constexpr std::int32_t kImport = 8;
}  // namespace Steps

// The form in twips.
constexpr controls::Size kOuter{.width = 9690, .height = 7800};
constexpr std::int32_t kEdge = 60;
constexpr std::int32_t kBetweenButtons = 120;
constexpr std::int32_t kPageTop = 1140;  // below the header with title and status line
constexpr std::int32_t kAbovePageEnd = 120;
constexpr controls::Bounds kButton{.left = 0, .top = 0, .width = 1650, .height = 375};
constexpr controls::Bounds kTitle{.left = 240, .top = 165, .width = 9210, .height = 450};
constexpr controls::Bounds kStatus{.left = 240, .top = 690, .width = 9210, .height = 300};
constexpr controls::Bounds kVersion{.left = kEdge, .top = 0, .width = 1200, .height = 285};

constexpr wchar_t kCompactedSuffix[] = L"_tmp";

// Does a part of a step that the step goes on without.
template <class Work>
void WithoutErrors(const Work& vWork) {
  try {
    vWork();
  } catch (...) {
    IgnoreError();
  }
}

// A file that a block makes and takes away again, unless the block ends with Keep.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::wstring vPath) : m_path(std::move(vPath)) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!m_kept) DeletePapFile(m_path);
  }

  void Keep() { m_kept = true; }

 private:
  const std::wstring m_path;
  bool m_kept = false;
};

}  // namespace

frmOrvPap::frmOrvPap(const std::wstring& vServer, const DownloadPatience& vPatience)
    : Form(kOuter), usrDownload1(vServer, vPatience) {
  const auto status = [this](const std::wstring& caption) { lbStap.SetCaption(caption); };
  const auto next = [this](bool vAan) { cmdVolgende.SetEnabled(vAan); };
  usrWelkom1.SetStepText = status;
  usrTarget1.SetStepText = status;
  usrDownload1.SetStepText = status;
  usrSelectPap1.SetStepText = status;
  // The status line keeps its text during the import, whose own one nobody listens to.
  usrWelkom1.AanzettenVolgende = next;
  usrTarget1.AanzettenVolgende = next;
  usrSelectPap1.AanzettenVolgende = next;
  usrImport1.AanzettenVolgende = next;
  usrImport1.AanzettenVorige = [this](bool vAan) { cmdVorige.SetEnabled(vAan); };
  cmdVolgende.Click = [this] { NextStep(); };
  cmdVorige.Click = [this] { PreviousStep(); };
  cmdAnnuleren.Click = [this] { Unload(); };
  // Cancel is disabled while files are fetched.
  MayClose = [this] { return cmdAnnuleren.Enabled(); };
  Resize = [this] { LayOut(); };

  lbTitle.SetHeading(true);
  lbTitle.SetPlace(kTitle);
  lbStap.SetPlace(kStatus);
  txtVersion.SetPlace(kVersion);
  for (controls::Button* button : {&cmdVorige, &cmdVolgende, &cmdAnnuleren}) {
    button->SetPlace(kButton);
  }
  ShowPage(nullptr);
}

std::vector<controls::AnyControl> frmOrvPap::Controls() {
  std::vector<controls::AnyControl> all = {&lbTitle, &lbStap};
  for (controls::Page* page : Pages()) all.emplace_back(page);
  all.insert(all.end(), {&txtVersion, &cmdVorige, &cmdVolgende, &cmdAnnuleren});
  return all;
}

std::array<controls::Page*, 6> frmOrvPap::Pages() {
  return {&usrWelkom1, &usrTarget1, &usrPapProcessed1, &usrDownload1, &usrSelectPap1, &usrImport1};
}

void frmOrvPap::Load() {
  setupLanguage();
  txtVersion.SetCaption(ORVPAP_VERSION);
}

void frmOrvPap::setupLanguage() {
  try {
    SetCaption(LanguageText(FormTexts::kWizard));
    cmdVorige.SetCaption(LanguageText(FormTexts::kPrevious));
    cmdAnnuleren.SetCaption(LanguageText(FormTexts::kCancel));
  } catch (...) {
    ShowErrorMessage(L"frmOrvPap.setupLanguage (Sub)");
  }
}

void frmOrvPap::InitForm() {
  lngStep = 0;
  NextStep();
  SetState(WindowState::kNormal);
  Move((Screen().width - Inner().width) / 2, (Screen().height - Inner().height) / 2);
}

void frmOrvPap::NextStep() {
  ++lngStep;
  ShowStep();
}

void frmOrvPap::PreviousStep() {
  --lngStep;
  if (lngStep == Steps::kDownloadTransfer) lngStep = Steps::kDownloadChoice;
  ShowStep();
}

void frmOrvPap::ShowStep() {
  // The host product must not find the product table taken while the user reads a page.
  const ProductConnectionGuard released;
  const std::wstring& product_table = usrTarget1.ptLocation();
  switch (lngStep) {
    case Steps::kWelcome:
      return StepWelcome();
    case Steps::kTarget:
      return StepTarget();
    case Steps::kProcessed:
      if (OpenProductTable(product_table)) return StepProcessed();
      lngStep = Steps::kTarget;
      return StepTarget();
    case Steps::kDownloadChoice:
      usrDownload1.ProductTable = product_table;
      return StepDownload(1);
    case Steps::kDownloadList:
      if (usrDownload1.CheckInet()) return StepDownload(2);
      lngStep = Steps::kSelect;
      return StepSelect();
    case Steps::kDownloadTransfer:
      if (!usrDownload1.SelectedDownloadFiles().empty()) return StepDownload(3);
      lngStep = Steps::kSelect;
      return StepSelect();
    case Steps::kSelect:
      return StepSelect();
    case Steps::kImport:
      return StepImport();
    default:
      return Finish();
  }
}

void frmOrvPap::StepWelcome() {
  cmdVorige.SetEnabled(false);
  cmdVolgende.SetEnabled(false);
  WithoutErrors([this] { usrWelkom1.Init(); });
  ShowPage(&usrWelkom1);
  ShowTexts(FormTexts::kWizard, FormTexts::kNext);
  cmdVorige.SetEnabled(false);
}

void frmOrvPap::StepTarget() {
  cmdVorige.SetEnabled(true);
  cmdVolgende.SetEnabled(false);
  WithoutErrors([this] { usrTarget1.Init(); });
  ShowPage(&usrTarget1);
  ShowTexts(FormTexts::kTarget, FormTexts::kNext);
}

void frmOrvPap::StepProcessed() {
  cmdVorige.SetEnabled(true);
  cmdVolgende.SetEnabled(false);
  WithoutErrors([this] { usrPapProcessed1.Init(usrTarget1.ptLocation()); });
  ShowPage(&usrPapProcessed1);
  ShowTexts(FormTexts::kProcessed, FormTexts::kNext);
  lbStap.SetCaption(LanguageText(FormTexts::kProcessedStatus) + L" " +
                    LanguageText(FormTexts::kGoOn));
  cmdVorige.SetEnabled(true);
  cmdVolgende.SetEnabled(true);
}

void frmOrvPap::StepDownload(std::int32_t vDownloadStep) {
  // In its first step the page only asks a question; in the others it waits for the server.
  const bool may_cancel = vDownloadStep == 1;
  cmdVorige.SetEnabled(false);
  cmdVolgende.SetEnabled(false);
  if (!may_cancel) cmdAnnuleren.SetEnabled(false);
  WithoutErrors([&] { usrDownload1.Init(vDownloadStep); });
  ShowPage(&usrDownload1);
  ShowTexts(FormTexts::kDownload, FormTexts::kNext);
  cmdVorige.SetEnabled(true);
  cmdVolgende.SetEnabled(true);
  if (!may_cancel) cmdAnnuleren.SetEnabled(true);
}

void frmOrvPap::StepSelect() {
  cmdVorige.SetEnabled(true);
  cmdVolgende.SetEnabled(false);
  WithoutErrors([this] { usrSelectPap1.Init(usrTarget1.ptLocation()); });
  ShowPage(&usrSelectPap1);
  ShowTexts(FormTexts::kSelect, FormTexts::kNext);
}

void frmOrvPap::StepImport() {
  cmdVorige.SetEnabled(false);
  cmdVolgende.SetEnabled(false);
  cmdAnnuleren.SetVisible(false);
  ShowPage(&usrImport1);
  ShowTexts(FormTexts::kImport, FormTexts::kCancel);
  WithoutErrors([this] {
    if (usrImport1.StartImport(usrTarget1.ptLocation(), usrSelectPap1.SelectedPAP(),
                               usrTarget1.MakeBackup())) {
      usrImport1.lblProgress.SetCaption(LanguageText(FormTexts::kCompacting));
      WithoutErrors([this] { CompactProductTable(); });
      usrImport1.lblProgress.SetCaption(L"");
    } else {
      const std::wstring message = Shared().objLanguage->GetMessageText(FormTexts::kImportFailed);
      ShowMessage(text::ReplaceAll(message, L"/p", L"\r\n"), L"");
    }
  });
  cmdVorige.SetEnabled(true);
  cmdVolgende.SetEnabled(true);
}

void frmOrvPap::CompactProductTable() const {
  const std::wstring& product_table = usrTarget1.ptLocation();
  const std::wstring compacted_path = product_table + kCompactedSuffix;
  if (files::FileExists(compacted_path)) DeletePapFile(compacted_path);
  // Never over a file that is there: one that could not be deleted is none of this run's, and must
  // not become the product table.
  database::DBEngine().CompactDatabase(product_table, compacted_path,
                                       std::wstring(L";pwd=") + kProductTablePassword, DoEvents);
  TemporaryFile compacted(compacted_path);
  ProductConnection.reset();
  DoEvents();
  if (CopyPapFile(compacted_path, product_table)) {
    DoEvents();
  } else {
    compacted.Keep();
  }
}

void frmOrvPap::Finish() {
  CurrentUser_BrengWeg(L"", L"PTLocation", usrTarget1.ptLocation());
  CurrentUser_BrengWegBoolean(L"", L"Backup", usrTarget1.MakeBackup());
  CurrentUser_BrengWegBoolean(L"", L"CheckInet", usrDownload1.CheckInet());
  Unload();
}

void frmOrvPap::ShowPage(controls::Page* vPage) {
  for (controls::Page* page : Pages()) page->SetVisible(page == vPage);
}

void frmOrvPap::ShowTexts(std::int32_t vTitle, std::int32_t vNext) {
  lbTitle.SetCaption(LanguageText(vTitle));
  cmdVolgende.SetCaption(LanguageText(vNext));
}

void frmOrvPap::LayOut() {
  SetWidth(kOuter.width);
  const controls::Size inner = Inner();
  std::int32_t right = inner.width - kEdge;
  for (controls::Button* button : {&cmdVolgende, &cmdVorige, &cmdAnnuleren}) {
    controls::Bounds place = button->Place();
    place.left = right - place.width;
    place.top = inner.height - place.height - kEdge;
    button->SetPlace(place);
    right = place.left - kBetweenButtons;
  }
  const std::int32_t page_height =
      inner.height - cmdVolgende.Place().height - kPageTop - kAbovePageEnd;
  for (const controls::AnyControl control : Controls()) {
    if (controls::Page* const* page = std::get_if<controls::Page*>(&control)) {
      (*page)->SetPlace({.left = 0, .top = kPageTop, .width = inner.width, .height = page_height});
    }
  }
  controls::Bounds version = txtVersion.Place();
  version.top = inner.height - version.height - kEdge;
  version.width = cmdAnnuleren.Place().left - kBetweenButtons;
  txtVersion.SetPlace(version);
}
