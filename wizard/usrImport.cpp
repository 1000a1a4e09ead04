// The wizard's last page: runs the import and shows what became of it.
#include "wizard/usrImport.h"

#include <algorithm>
#include <optional>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/files/file_error.h"
#include "platform/files/paths.h"
#include "platform/text/date.h"
#include "platform/text/strings.h"
#include "store/modProductTable.h"
#include "updates/modSharedPapFolder.h"
#include "updates/modSharedPapRegister.h"
#include "wizard/PageSupport.h"

namespace {

namespace ImportPageTexts {
constexpr std::int32_t kTitle = 51;
constexpr std::int32_t kNothingChosen = 52;
// "%s" stands for the product table's path.
constexpr std::int32_t kNoProductTable = 53;
constexpr std::int32_t kOtherVersion = 54;
constexpr std::int32_t kCannotBeOpened = 56;
constexpr std::int32_t kOpened = 55;
constexpr std::int32_t kBackup = 57;
constexpr std::int32_t kCopyTip = 58;
constexpr std::int32_t kUpdate = 59;
constexpr std::int32_t kMessageColumn = 1007;
constexpr std::int32_t kDetailColumn = 1008;
constexpr std::int32_t kCopy = 1030;
// "%s" stands for the files, one a line.
constexpr std::int32_t kFailedBackups = 1071;
constexpr std::int32_t kSilentFailures = 1072;
}  // namespace ImportPageTexts

// The label is told of records no more often than anybody can see.
constexpr std::chrono::milliseconds kTellingPause{50};

constexpr wchar_t kLogFile[] = L"paplog.txt";
constexpr wchar_t kBackupExtension[] = L".pt";

// The classic error of using an object that is not there.
constexpr std::int32_t kNoObject = 91;

std::wstring OfAll(std::int32_t vCurrent, std::int32_t vAll) {
  return std::to_wstring(vCurrent) + L" / " + std::to_wstring(vAll);
}

std::wstring LogPath() {
  const std::wstring& path = Shared().strLogFile;
  return path.empty() ? AddBackslash(ProgramFolder()) + kLogFile : path;
}

// The log begins its file over, so a file that is to be read must not be it, whatever links lead
// there.
void RefuseLogOver(const std::wstring& vFile) {
  if (!files::IsSameFile(LogPath(), vFile)) return;
  const text::RuntimeError denied = files::FileError(files::kPermissionDenied);
  throw text::RuntimeError(denied.number(), denied.description() + L": '" + LogPath() + L"'");
}

// The text that says why a product table is refused; nothing for one that is accepted, which is
// then open in ProductConnection. A refused one may still be open there.
std::optional<std::int32_t> RefusalOf(const std::wstring& vPtFile) {
  const bool accepted = OpenProductTable(vPtFile);
  if (!ProductConnection || !ProductConnection->Connection) return ImportPageTexts::kCannotBeOpened;
  const clsConnection& opened = *ProductConnection;
  if (opened.DBType != kProductTableDBType || opened.AppType != kProductTableAppType) {
    return ImportPageTexts::kNoProductTable;
  }
  if (opened.VerMajor != kProductTableVerMajor || opened.VerMinor != kProductTableVerMinor) {
    return ImportPageTexts::kOtherVersion;
  }
  return accepted ? std::nullopt : std::optional(ImportPageTexts::kCannotBeOpened);
}

// The name tells which update it was made for and not when: applying the same update again replaces
// the backup.
std::wstring BackupName(const clsOrvPap& vOrvPap) {
  return vOrvPap.AssortmentCode + L"_" + vOrvPap.SupplierCode + L"_" +
         text::FormatCompactDate(vOrvPap.PrcDate) + kBackupExtension;
}

// The folder of the product table, with a separator at its end. That of a bare name is the current
// one and not, as an empty text would be, the root.
std::wstring FolderOf(const std::wstring& vPtFile) {
  return AddBackslash(
      GetFolder(files::IsAbsolute(vPtFile) ? vPtFile : files::AbsolutePath(vPtFile)));
}

// A code comes out of a file that somebody sent: it may be no way into another folder.
bool StaysInFolder(const std::wstring& vName) {
  return vName.find_first_of(L"/\\:") == std::wstring::npos;
}

// A text that the list and the log can hold: a damaged update may bring codes of millions of
// characters.
std::wstring Clipped(const std::wstring& vText) {
  constexpr std::size_t kLongest = 1000;
  return vText.size() <= kLongest ? vText : vText.substr(0, kLongest) + L"...";
}

// Ends the log of a run, however that is left.
class LogEnd {
 public:
  explicit LogEnd(std::unique_ptr<clsLogfile>& vLog) : m_log(vLog) {}
  LogEnd(const LogEnd&) = delete;
  LogEnd& operator=(const LogEnd&) = delete;
  ~LogEnd() { m_log.reset(); }

 private:
  std::unique_ptr<clsLogfile>& m_log;
};

}  // namespace

// While it lives, an update is the page's tmpOrvPap and its events come to the page.
class usrImport::UpdateInHand {
 public:
  UpdateInHand(usrImport& vPage, std::shared_ptr<clsOrvPap> vOrvPap) : m_page(vPage) {
    m_page.tmpOrvPap = std::move(vOrvPap);
    clsOrvPap& update = *m_page.tmpOrvPap;
    update.ProgressInit = [&vPage](std::int32_t vMax) { vPage.tmpOrvPap_ProgressInit(vMax); };
    update.ProgressCurrent = [&vPage](std::int32_t vCurrent) {
      vPage.tmpOrvPap_ProgressCurrent(vCurrent);
    };
    update.ShowListMessage = [&vPage](const std::wstring& vMessage, const std::wstring& vMessageSub,
                                      bool vShowInList, bool vError) {
      vPage.tmpOrvPap_ShowListMessage(vMessage, vMessageSub, vShowInList, vError);
    };
  }
  UpdateInHand(const UpdateInHand&) = delete;
  UpdateInHand& operator=(const UpdateInHand&) = delete;
  ~UpdateInHand() {
    clsOrvPap& update = *m_page.tmpOrvPap;
    update.ProgressInit = nullptr;
    update.ProgressCurrent = nullptr;
    update.ShowListMessage = nullptr;
    m_page.tmpOrvPap.reset();
  }

 private:
  usrImport& m_page;
};

usrImport::usrImport() {
  Contain({&lvResults, &lblProgress, &ProgressBarTotal, &pBar, &cmdCopyToClipboard});
  cmdCopyToClipboard.Click = [this] { cmdCopyToClipboard_Click(); };
}

controls::Layout usrImport::Arrangement() {
  using controls::Column, controls::Row, controls::Show, controls::Stretched;
  return Column({Stretched(Show(&lvResults)), Show(&lblProgress), Show(&ProgressBarTotal),
                 Show(&pBar), Row({controls::Space(), Show(&cmdCopyToClipboard)})});
}

bool usrImport::StartImport(const std::wstring& vPtFile,
                            const std::vector<std::shared_ptr<clsOrvPap>>& vColOrvPap,
                            bool vMakeBackup) {
  const ProductConnectionGuard connection_end;
  const LogEnd log_end(m_log);
  try {
    m_errors = 0;
    m_silentFailures.clear();
    m_failedBackups.clear();
    m_logged = false;
    setupLanguage();
    RaiseEvent(SetStepText, StepText(LanguageText(ImportPageTexts::kTitle)));
    lvResults.Clear();
    if (vColOrvPap.empty()) {
      // There is no log yet for this line, which is reported.
      tmpOrvPap_ShowListMessage(LanguageText(ImportPageTexts::kNothingChosen), L"", true, true);
      return false;
    }
    RefuseLogOver(vPtFile);
    for (const auto& orv_pap : vColOrvPap) RefuseLogOver(orv_pap->FilePath);
    m_log = std::make_unique<clsLogfile>();
    m_logged = m_log->StartLog(LogPath());
    if (!CheckProductTable(vPtFile)) return false;
    ProductConnection.reset();  // each update opens it for itself

    ProgressBarTotal.SetMax(static_cast<std::int32_t>(vColOrvPap.size()));
    std::int32_t number = 0;
    for (const std::shared_ptr<clsOrvPap>& orv_pap : vColOrvPap) {
      ProgressBarTotal.SetValue(++number);
      const UpdateInHand in_hand(*this, orv_pap);
      ApplyUpdate(vPtFile, vMakeBackup);
    }
    lblProgress.SetCaption(L"");
    ShowFirstError();
    TellShortcomings();
    RaiseEvent(AanzettenVolgende, true);
    RaiseEvent(AanzettenVorige, true);
    return m_errors == 0;
  } catch (...) {
    ShowErrorMessage(L"usrImport.StartImport (Function)");
    return false;
  }
}

void usrImport::setupLanguage() {
  lvResults.SetColumns({LanguageText(ImportPageTexts::kMessageColumn),
                        LanguageText(ImportPageTexts::kDetailColumn)});
  cmdCopyToClipboard.SetCaption(LanguageText(ImportPageTexts::kCopy));
  cmdCopyToClipboard.SetToolTip(ToolTipText(ImportPageTexts::kCopyTip));
}

bool usrImport::CheckProductTable(const std::wstring& vPtFile) {
  if (const std::optional<std::int32_t> refusal = RefusalOf(vPtFile)) {
    tmpOrvPap_ShowListMessage(text::ReplaceAll(LanguageText(*refusal), L"%s", vPtFile), L"", true,
                              true);
    return false;
  }
  tmpOrvPap_ShowListMessage(LanguageText(ImportPageTexts::kOpened), vPtFile, false, false);
  return true;
}

void usrImport::ApplyUpdate(const std::wstring& vPtFile, bool vMakeBackup) {
  if (vMakeBackup) {
    const std::wstring name = BackupName(*tmpOrvPap);
    const std::wstring path = FolderOf(vPtFile) + name;
    if (!StaysInFolder(name) || !CopyPapFile(vPtFile, path)) m_failedBackups.push_back(path);
    // Whatever became of it.
    tmpOrvPap_ShowListMessage(LanguageText(ImportPageTexts::kBackup), path, true, false);
  }
  const std::size_t errors = m_errors;
  const bool result = tmpOrvPap->UpdatePT(vPtFile);
  const bool recorded = SetPapProcessed(vPtFile, *tmpOrvPap, result);
  if ((!result && m_errors == errors) || !recorded) m_silentFailures.push_back(tmpOrvPap->FilePath);
}

bool usrImport::Complete() const {
  return m_logged && m_silentFailures.empty() && m_failedBackups.empty();
}

// What the list does not tell, or tells as if it were well.
void usrImport::TellShortcomings() const {
  for (const auto& [text, files] :
       {std::pair(ImportPageTexts::kFailedBackups, &m_failedBackups),
        std::pair(ImportPageTexts::kSilentFailures, &m_silentFailures)}) {
    if (files->empty()) continue;
    std::wstring lines;
    for (const std::wstring& file : *files) lines += (lines.empty() ? L"" : L"\r\n") + file;
    const std::wstring message =
        text::ReplaceAll(Shared().objLanguage->GetMessageText(text), L"/p", L"\r\n\r\n");
    ShowMessage(text::ReplaceAll(message, L"%s", lines), L"");
  }
}

// Of the update in hand: its position, its name and the record that its step has come to.
void usrImport::ShowProgress() {
  m_told = std::chrono::steady_clock::now();
  lblProgress.SetCaption(LanguageText(ImportPageTexts::kUpdate) + L" " +
                         OfAll(ProgressBarTotal.Value(), ProgressBarTotal.Max()) + L": " +
                         GetFileName(tmpOrvPap->FilePath) + L" (" +
                         OfAll(pBar.Value(), pBar.Max()) + L")");
}

// The list stands at its end, where the lines that matter may be out of sight.
void usrImport::ShowFirstError() {
  const std::vector<controls::ListItem>& items = lvResults.Items();
  const auto red = std::find_if(items.begin(), items.end(), [](const controls::ListItem& item) {
    return item.colour == controls::kRed;
  });
  if (red != items.end()) lvResults.EnsureVisible(static_cast<std::size_t>(red - items.begin()));
}

void usrImport::tmpOrvPap_ProgressInit(std::int32_t vMax) {
  try {
    pBar.SetMax(std::max(vMax, 1));
    pBar.SetValue(1);
    ShowProgress();
    DoEvents();
  } catch (...) {
    ShowErrorMessage(L"tmpOrvPap_ProgressInit (Sub)");
  }
}

void usrImport::tmpOrvPap_ProgressCurrent(std::int32_t vCurrent) {
  try {
    pBar.SetValue(vCurrent);
    if (std::chrono::steady_clock::now() - m_told >= kTellingPause) ShowProgress();
  } catch (...) {
    ShowErrorMessage(L"tmpOrvPap_ProgressCurrent (Sub)");
  }
}

void usrImport::tmpOrvPap_ShowListMessage(const std::wstring& vMessage,
                                          const std::wstring& vMessageSub, bool vShowInList,
                                          bool vError) {
  try {
    const std::wstring message = Clipped(vMessage);
    const std::wstring detail = Clipped(vMessageSub);
    if (vShowInList || vError) {
      const std::size_t item = lvResults.AddItem({.text = message, .sub_items = {detail}});
      lvResults.EnsureVisible(item);
      if (vError) {
        ++m_errors;
        lvResults.SetColour(item, controls::kRed);
      }
    }
    DoEvents();
    if (!m_log)
      throw text::RuntimeError(kNoObject, L"Object variable or With block variable not set");
    m_log->WriteLog(message + L": " + detail);
  } catch (...) {
    ShowErrorMessage(L"tmpOrvPap_ShowListMessage (Sub)");
  }
}

void usrImport::cmdCopyToClipboard_Click() const {
  try {
    std::wstring lines;
    for (const controls::ListItem& item : lvResults.Items()) {
      lines += item.text + L'\t' + item.sub_items.front() + L"\r\n";
    }
    Shared().objClipboard->Clear();
    Shared().objClipboard->SetText(lines);
  } catch (...) {
    ShowErrorMessage(L"usrImport.cmdCopyToClipboard_Click (Sub)");
  }
}
