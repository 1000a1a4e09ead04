// The wizard's last page: runs the import and shows what became of it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/clsLogfile.h"
#include "engine/clsOrvPap.h"
#include "platform/controls/buttons.h"
#include "platform/controls/layout.h"
#include "platform/controls/list_view.h"
#include "platform/controls/progress_bar.h"

// Applies the chosen updates one after the other: backup, update, register. The order of its work
// and of its messages is told in docs/import.md. One thread; while StartImport runs, every message
// and every beginning of a step calls DoEvents.
class usrImport final : public controls::Page {
 public:
  usrImport();

  controls::Layout Arrangement() override;

  controls::ListView lvResults;            // the messages with their details; a refusal is red
  controls::Label lblProgress;             // which update is in hand, and which of its records
  controls::ProgressBar ProgressBarTotal;  // the updates
  controls::ProgressBar pBar;              // the records of a step of the update in hand
  controls::Button cmdCopyToClipboard;     // copies lvResults as text

  std::function<void(bool vAan)> AanzettenVolgende;  // whether the user may go on,
  std::function<void(bool vAan)> AanzettenVorige;    // or back
  std::function<void(const std::wstring& vCaption)> SetStepText;

  // Applies the updates, in this order, to the product table at `vPtFile`; with `vMakeBackup` each
  // is preceded by a copy of the product table beside it, named from the update's codes and date.
  // True when no message was an error. A refused record, a failed copy and an update that fails as
  // a whole do not keep the others from being applied. Every update is recorded in the register of
  // the product table when it succeeded and withdrawn from it when it did not.
  //
  // The import log (strLogFile, app/modShared) holds all messages of this run, also those that are
  // not shown. False at once, with one red line and neither event, when there are no updates or
  // the product table cannot be opened or is none of ours. False with a report and nothing touched
  // when the log would be one of these files. The product table is released in the end.
  bool StartImport(const std::wstring& vPtFile,
                   const std::vector<std::shared_ptr<clsOrvPap>>& vColOrvPap, bool vMakeBackup);

  // Whether the last run also did everything that its result says nothing of: every backup was
  // made, every update recorded in the register or withdrawn from it, the log begun; and no update
  // failed without a message that is an error, because the product table was taken by somebody else
  // meanwhile, or because there is no link of assortment and supplier to take the dates. A message
  // box has told what was not.
  bool Complete() const;

 private:
  class UpdateInHand;

  void setupLanguage();
  bool CheckProductTable(const std::wstring& vPtFile);
  void ApplyUpdate(const std::wstring& vPtFile, bool vMakeBackup);

  void ShowProgress();
  void ShowFirstError();
  void TellShortcomings() const;

  void tmpOrvPap_ProgressInit(std::int32_t vMax);
  void tmpOrvPap_ProgressCurrent(std::int32_t vCurrent);
  void tmpOrvPap_ShowListMessage(const std::wstring& vMessage, const std::wstring& vMessageSub,
                                 bool vShowInList, bool vError);
  void cmdCopyToClipboard_Click() const;

  std::chrono::steady_clock::time_point m_told{};  // when the label was shown last
  std::size_t m_errors = 0;                        // messages of this run that were errors
  std::vector<std::wstring> m_silentFailures;      // updates that the list says nothing bad of
  std::vector<std::wstring> m_failedBackups;
  bool m_logged = false;
  std::unique_ptr<clsLogfile> m_log;     // while updates are applied
  std::shared_ptr<clsOrvPap> tmpOrvPap;  // the update in hand; its events come to this page
};
