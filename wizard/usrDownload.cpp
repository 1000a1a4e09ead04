// The steps of the download page, the index and the list; the transfers are in
// usrDownloadTransfer.cpp.
#include "wizard/usrDownload.h"

#include <cmath>
#include <cstddef>
#include <utility>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "app/modSharedRegistryFuncties.h"
#include "platform/files/file_name.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "platform/text/conversion.h"
#include "platform/text/date.h"
#include "platform/text/strings.h"
#include "updates/DownloadFolder.h"
#include "updates/modSharedPapFolder.h"
#include "wizard/PageSupport.h"

namespace {

namespace DownloadTexts {
constexpr std::int32_t kChoice = 7;
constexpr std::int32_t kList = 8;
constexpr std::int32_t kTransfer = 9;
constexpr std::int32_t kNoIndex = 26;
constexpr std::int32_t kWrongIndex = 27;
constexpr std::int32_t kConnecting = 28;
constexpr std::int32_t kReceived = 29;
constexpr std::int32_t kDateColumn = 1000;
constexpr std::int32_t kAssortmentColumn = 1001;
constexpr std::int32_t kSupplierColumn = 1002;
constexpr std::int32_t kRemarkColumn = 1004;
constexpr std::int32_t kFileColumn = 1005;
constexpr std::int32_t kSizeColumn = 1006;
constexpr std::int32_t kCheck = 1020;
constexpr std::int32_t kDoNotCheck = 1021;
constexpr std::int32_t kEmptyIndex = 1022;
constexpr std::int32_t kNothingNew = 1023;
}  // namespace DownloadTexts

constexpr wchar_t kCleanedUp[] = L"DelFilesSP1";
constexpr wchar_t kCheckInet[] = L"CheckInet";

// A server that offers more than this is out of its mind: what its index may take here is bounded.
constexpr std::size_t kMostIndexBytes = 32U << 20;
constexpr std::size_t kMostEntries = 500'000;

// The status lines that the page keeps at least, in characters: those of some hundred files.
constexpr std::size_t kMostStatusText = 100'000;

constexpr int kStatusOk = 200;

// Takes the next line off the text, without its line feed.
std::wstring_view TakeLine(std::wstring_view& vText) {
  const std::size_t end = vText.find(L'\n');
  const std::wstring_view line = vText.substr(0, end);
  vText.remove_prefix(end == std::wstring_view::npos ? vText.size() : end + 1);
  return line;
}

bool IsIdentification(std::wstring_view vLine) {
  const std::wstring_view line = text::Trim(vLine);
  return line == DownloadFolder::kIdentification ||
         line == std::wstring(DownloadFolder::kIdentification) + L'\r';
}

// In kilobytes with two decimals at most, a half rounded to the even one.
std::wstring SizeText(double vBytes) {
  return text::FormatNumber(std::nearbyint(vBytes / 1024 * 100) / 100) + L" KB";
}

std::wstring WithoutSlash(std::wstring vAddress) {
  while (vAddress.ends_with(L'/')) vAddress.pop_back();
  return vAddress;
}

}  // namespace

usrDownload::usrDownload(const std::wstring& vServer, const DownloadPatience& vPatience)
    : optCheckDownload{controls::OptionButton(m_checkDownload),
                       controls::OptionButton(m_checkDownload)},
      Inet1(vPatience.Server),
      m_baseUrl(WithoutSlash(vServer) + DownloadFolder::kPath),
      m_retry(vPatience.Retry) {
  Contain({&frStep1, &frStep2, &frStep3});
  frStep1.Contain({&optCheckDownload[0], &optCheckDownload[1]});
  frStep2.Contain({&lvPrc});
  frStep3.Contain({&lblProgress, &ProgressBar1, &txtStatus});
  lvPrc.SetCheckBoxes(true);
  lvPrc.ItemCheck = [this](std::size_t index) { lvPrc_ItemCheck(index); };
  txtStatus.SetMultiLine(true);
  txtStatus.SetLocked(true);
}

controls::Layout usrDownload::Arrangement() {
  using controls::Column, controls::Group, controls::Show, controls::Stretched;
  return Column({Stretched(Group(frStep1, {Show(&optCheckDownload[0]), Show(&optCheckDownload[1]),
                                           controls::Space()})),
                 Stretched(Group(frStep2, {Stretched(Show(&lvPrc))})),
                 Stretched(Group(frStep3, {Show(&lblProgress), Show(&ProgressBar1),
                                           Stretched(Show(&txtStatus))}))});
}

void usrDownload::Init(std::int32_t vStep) {
  try {
    setupLanguage();
    ShowFrame(vStep);
    if (vStep == 1) InitChoice();
    if (vStep == 2) InitList();
    if (vStep == 3) InitTransfer();
  } catch (...) {
    ShowErrorMessage(L"usrDownload.Init (Sub)");
  }
}

void usrDownload::setupLanguage() {
  try {
    optCheckDownload[0].SetCaption(LanguageText(DownloadTexts::kCheck));
    optCheckDownload[1].SetCaption(LanguageText(DownloadTexts::kDoNotCheck));
    lvPrc.SetColumns(
        {LanguageText(DownloadTexts::kDateColumn), LanguageText(DownloadTexts::kAssortmentColumn),
         LanguageText(DownloadTexts::kSupplierColumn), LanguageText(DownloadTexts::kFileColumn),
         LanguageText(DownloadTexts::kSizeColumn), LanguageText(DownloadTexts::kRemarkColumn)});
  } catch (...) {
    ShowErrorMessage(L"usrDownload.setupLanguage (Sub)");
  }
}

std::vector<std::shared_ptr<clsDownloadFileInfo>> usrDownload::SelectedDownloadFiles() {
  try {
    FillList();
    return CheckedEntries();
  } catch (...) {
    ShowErrorMessage(L"usrDownload.SelectedDownloadFiles (Function)");
    return {};
  }
}

void usrDownload::ShowFrame(std::int32_t vStep) {
  frStep1.SetVisible(vStep == 1);
  frStep2.SetVisible(vStep == 2);
  frStep3.SetVisible(vStep == 3);
}

// The oldest lines go when there are too many. They go, and the box is told, many at a time: each
// copies what remains.
void usrDownload::Status(const std::wstring& vText) {
  if (!m_status.empty()) m_status += L"\r\n";
  m_status += vText;
  if (m_status.size() > 2 * kMostStatusText) {
    const std::size_t end = m_status.find(L'\n', m_status.size() - kMostStatusText);
    m_status.erase(0, end == std::wstring::npos ? m_status.size() : end + 1);
  }
  RaiseEvent(SetStepText, vText);
}

void usrDownload::Yield() {
  const auto now = std::chrono::steady_clock::now();
  if (now - m_told >= kTellingPause) {
    m_told = now;
    txtStatus.SetText(m_status);
  }
  DoEvents();
}

void usrDownload::InitChoice() {
  if (!CurrentUser_HaalOpBoolean(L"", kCleanedUp, L"FALSE") && DelPapFiles(PapFolder())) {
    CurrentUser_BrengWegBoolean(L"", kCleanedUp, true);
  }
  if (!m_visited) {
    const bool check = CurrentUser_HaalOpBoolean(L"", kCheckInet, L"TRUE");
    optCheckDownload[check ? 0 : 1].SetValue(true);
    m_visited = true;
  }
  RaiseEvent(SetStepText, StepText(LanguageText(DownloadTexts::kChoice)));
}

void usrDownload::InitList() {
  RaiseEvent(SetStepText, StepText(LanguageText(DownloadTexts::kList)));
  lvPrc.Clear();
  lvPrc.SetEmptyText(L"");
  m_index.clear();
  if (!FetchIndex()) return;
  m_pairs = ReadPairs(ProductTable);
  SelectOffered();
  FillList();
}

void usrDownload::InitTransfer() {
  m_status.clear();
  txtStatus.SetText(L"");
  RaiseEvent(SetStepText, StepText(LanguageText(DownloadTexts::kTransfer)));
  const std::wstring folder = PapFolder();
  if (!EnsureFolder(folder)) return;
  for (const auto& info : CheckedEntries()) DownloadFile(folder, *info);
  txtStatus.SetText(m_status);
}

// An error page is no index, whatever it says.
bool usrDownload::FetchIndex() {
  Status(LanguageText(DownloadTexts::kConnecting));
  Ask(DownloadFolder::kIndexFile);
  const auto response = Inet1.OpenUrl(kMostIndexBytes, [] { DoEvents(); });
  Status(LanguageText(DownloadTexts::kReceived));
  if (response.body.empty()) return RefuseIndex(DownloadTexts::kNoIndex);
  const std::wstring index = text::AnsiToWide(response.body);
  std::wstring_view lines = index;
  if (!IsIdentification(TakeLine(lines)) || response.status != kStatusOk || !ReadIndex(lines)) {
    return RefuseIndex(DownloadTexts::kWrongIndex);
  }
  if (m_index.empty()) SayNothing(DownloadTexts::kEmptyIndex);
  return true;
}

bool usrDownload::RefuseIndex(std::int32_t vReason) {
  lvPrc.SetEmptyText(LanguageText(vReason));
  ShowMessage(Shared().objLanguage->GetMessageText(vReason), L"");
  return false;
}

// The status line and the list itself say why nothing is offered.
void usrDownload::SayNothing(std::int32_t vReason) {
  Status(LanguageText(vReason));
  lvPrc.SetEmptyText(LanguageText(vReason));
}

bool usrDownload::ReadIndex(std::wstring_view vLines) {
  while (!vLines.empty()) {
    DoEvents();
    const std::wstring line(TakeLine(vLines));
    if (text::Trim(line).empty()) continue;
    if (m_index.size() == kMostEntries) {
      m_index.clear();
      return false;
    }
    auto info = std::make_shared<clsDownloadFileInfo>();
    if (info->AddLine(line)) m_index.push_back(std::move(info));
  }
  return true;
}

// Looks into the folder for the files that the product table can use only, and not for a name that
// leads out of it.
void usrDownload::SelectOffered() {
  const std::wstring folder = AddBackslash(PapFolder());
  bool any = false;
  for (const auto& info : m_index) {
    info->Download = true;
    if (IsOffered(*info)) {
      info->Download =
          !files::IsPlainFileName(info->FileName) || !files::FileExists(folder + info->FileName);
      any = any || info->Download;
    }
    DoEvents();
  }
  if (!any && !m_index.empty()) SayNothing(DownloadTexts::kNothingNew);
}

bool usrDownload::IsOffered(const clsDownloadFileInfo& vInfo) const {
  return vInfo.Download && m_pairs.contains(PairOf(vInfo.SupplierCode, vInfo.AssortmentCode));
}

void usrDownload::FillList() {
  lvPrc.Clear();
  std::size_t position = 0;
  for (const auto& info : m_index) {
    ++position;
    if (!IsOffered(*info)) continue;
    // What the server sent must not break the list's lines.
    lvPrc.AddItem({.key = ListKey(position),
                   .text = text::FormatDate(info->Date),
                   .sub_items = {StripControlChars(info->AssortmentDescription),
                                 StripControlChars(info->SupplierDescription),
                                 StripControlChars(info->FileName), SizeText(info->Size),
                                 StripControlChars(info->Remark)},
                   .checked = info->Chosen});
    DoEvents();
  }
}

std::vector<std::shared_ptr<clsDownloadFileInfo>> usrDownload::CheckedEntries() const {
  std::vector<std::shared_ptr<clsDownloadFileInfo>> checked;
  for (const controls::ListItem& item : lvPrc.Items()) {
    if (item.checked) checked.push_back(m_index.at(PositionOf(item.key)));
  }
  return checked;
}

void usrDownload::lvPrc_ItemCheck(std::size_t vIndex) {
  try {
    const controls::ListItem& item = lvPrc.Item(vIndex);
    m_index.at(PositionOf(item.key))->Chosen = item.checked;
  } catch (...) {
    ShowErrorMessage(L"usrDownload.lvPrc_ItemCheck (Sub)");
  }
}
