// The wizard's page on which the user chooses the updates to apply.
#include "wizard/usrSelectPap.h"

#include <algorithm>
#include <cstdint>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "app/modSharedRegistryFuncties.h"
#include "platform/text/date.h"
#include "updates/modSharedPapFolder.h"
#include "updates/modSharedPapRegister.h"
#include "wizard/PageSupport.h"

namespace {

namespace SelectTexts {
constexpr std::int32_t kProcessed = 39;
constexpr std::int32_t kNotProcessed = 40;
constexpr std::int32_t kTitle = 41;
constexpr std::int32_t kDateColumn = 1000;
constexpr std::int32_t kAssortmentColumn = 1001;
constexpr std::int32_t kSupplierColumn = 1002;
constexpr std::int32_t kProcessedColumn = 1003;
constexpr std::int32_t kRemarkColumn = 1004;
constexpr std::int32_t kNothing = 1061;
}  // namespace SelectTexts

constexpr wchar_t kShownOnce[] = L"ProcessedFilesSP1";

}  // namespace

usrSelectPap::usrSelectPap() {
  Contain({&lvPrc});
  lvPrc.SetCheckBoxes(true);
  lvPrc.ItemCheck = [this](std::size_t index) { lvPrc_ItemCheck(index); };
  lvPrc.KeyPress = [this](wchar_t key) { return lvPrc_KeyPress(key); };
}

controls::Layout usrSelectPap::Arrangement() {
  return controls::Column({controls::Stretched(controls::Show(&lvPrc))});
}

void usrSelectPap::Init(const std::wstring& vPath) {
  try {
    setupLanguage();
    lvPrc.Clear();
    lvPrc.SetEmptyText(L"");  // until it is known to stay so
    m_paps.clear();
    GetProcessedCollection(vPath);
    ReadUpdates();
    m_pairs = ReadPairs(vPath);
    FillList();
  } catch (...) {
    ShowErrorMessage(L"usrSelectPap.Init (Sub)");
    // The page is shown all the same; the last one's status line would be wrong over it.
    RaiseEvent(SetStepText, StepText(LanguageText(SelectTexts::kTitle)));
    RaiseEvent(AanzettenVolgende, AnyChecked());
  }
}

void usrSelectPap::setupLanguage() {
  try {
    lvPrc.SetColumns(
        {LanguageText(SelectTexts::kDateColumn), LanguageText(SelectTexts::kAssortmentColumn),
         LanguageText(SelectTexts::kSupplierColumn), LanguageText(SelectTexts::kProcessedColumn),
         LanguageText(SelectTexts::kRemarkColumn)});
  } catch (...) {
    ShowErrorMessage(L"usrSelectPap.setupLanguage (Sub)");
  }
}

std::vector<std::shared_ptr<clsOrvPap>> usrSelectPap::SelectedPAP() const {
  std::vector<std::shared_ptr<clsOrvPap>> selected;
  try {
    for (const controls::ListItem& item : lvPrc.Items()) {
      if (!item.checked) continue;
      selected.push_back(m_paps.at(PositionOf(item.key)));
    }
  } catch (...) {
    ShowErrorMessage(L"usrSelectPap.SelectedPAP (Function)");
  }
  return selected;
}

// What an earlier visit found is not offered again: the files may be gone.
void usrSelectPap::ReadUpdates() {
  std::wstring folder = PapFolder();
  if (GetPapCollection(folder)) m_paps = *AvailablePaps;
}

void usrSelectPap::FillList() {
  const bool shown_once = CurrentUser_HaalOpBoolean(L"", kShownOnce, L"FALSE");
  const std::wstring step_text = StepText(LanguageText(SelectTexts::kTitle));
  RaiseEvent(SetStepText, step_text);
  std::size_t position = 0;
  for (const auto& pap : m_paps) {
    ++position;
    if (m_pairs.contains(PairOf(pap->SupplierCode, pap->AssortmentCode))) AddUpdate(*pap, position);
    DoEvents();
  }
  lvPrc.SetEmptyText(LanguageText(SelectTexts::kNothing));
  if (!shown_once) CurrentUser_BrengWegBoolean(L"", kShownOnce, true);
  RaiseEvent(SetStepText, step_text);
  RaiseEvent(AanzettenVolgende, AnyChecked());
}

void usrSelectPap::AddUpdate(const clsOrvPap& vPap, std::size_t vPosition) {
  const bool processed = IsPapProcessed(GetFileName(vPap.FilePath));
  const std::size_t index = lvPrc.AddItem(
      {.key = ListKey(vPosition),
       .text = text::FormatDate(vPap.PapDate),
       .sub_items = {vPap.AssortmentDescription, vPap.SupplierDescription,
                     LanguageText(processed ? SelectTexts::kProcessed : SelectTexts::kNotProcessed),
                     vPap.Remark},
       .colour = processed ? controls::kGrayText : controls::kWindowText});
  if (processed) return;
  lvPrc.SetChecked(index, true);
  lvPrc_ItemCheck(index);
}

bool usrSelectPap::AnyChecked() const {
  const std::vector<controls::ListItem>& items = lvPrc.Items();
  return std::any_of(items.begin(), items.end(),
                     [](const controls::ListItem& item) { return item.checked; });
}

// Looks at the item in hand first, so that filling a long list costs no search an item.
void usrSelectPap::lvPrc_ItemCheck(std::size_t vIndex) {
  try {
    RaiseEvent(AanzettenVolgende, lvPrc.Item(vIndex).checked || AnyChecked());
  } catch (...) {
    ShowErrorMessage(L"usrSelectPap.lvPrc_ItemCheck (Sub)");
  }
}

// The list itself would toggle the item in focus once more, so a space is always dealt with.
bool usrSelectPap::lvPrc_KeyPress(wchar_t vKey) {
  if (vKey != L' ') return false;
  try {
    for (std::size_t index = 0; index < lvPrc.Items().size(); ++index) {
      const controls::ListItem& item = lvPrc.Item(index);
      if (item.selected) lvPrc.SetChecked(index, !item.checked);
    }
    RaiseEvent(AanzettenVolgende, AnyChecked());
  } catch (...) {
    ShowErrorMessage(L"usrSelectPap.lvPrc_KeyPress (Function)");
  }
  return true;
}
