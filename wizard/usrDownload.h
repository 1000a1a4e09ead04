// The wizard's page that fetches new price updates from the download server.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/controls/buttons.h"
#include "platform/controls/layout.h"
#include "platform/controls/list_view.h"
#include "platform/controls/progress_bar.h"
#include "platform/controls/text_box.h"
#include "platform/transfer/transfer.h"
#include "updates/clsDownloadFileInfo.h"

// How long the download page waits.
struct DownloadPatience {
  transfer::TimeLimits Server;
  std::chrono::milliseconds Retry{1000};  // before a missing length is looked for again
};

// Works in three steps, each with a frame of its own: whether to ask the server, which of its files
// to take, fetching them. Offered are the files that are not in the update folder yet and belong to
// a supplier and assortment of the product table. What can go wrong on the way, and what is then on
// the disk, is told in docs/downloads.md.
//
// One thread; while the page waits for the server it calls DoEvents.
class usrDownload final : public controls::Page {
 public:
  // `vServer` is the address of the download server, such as "https://download.example"; the
  // folder, its user and password are the page's own (updates/DownloadFolder.h).
  explicit usrDownload(const std::wstring& vServer, const DownloadPatience& vPatience = {});

  controls::Layout Arrangement() override;

  controls::Frame frStep1;
  controls::Frame frStep2;
  controls::Frame frStep3;

 private:
  controls::OptionGroup m_checkDownload;

 public:
  // In the first step: ask the server, or not.
  controls::OptionButton optCheckDownload[2];
  // In the second: what is offered; key i & "P", i the position in the index from 1.
  controls::ListView lvPrc;
  // In the third: how far the file in hand is, and the status lines of the step, the last ones
  // where there are very many.
  controls::Label lblProgress;
  controls::ProgressBar ProgressBar1;
  controls::TextBox txtStatus;

  transfer::Transfer Inet1;

  std::function<void(const std::wstring& vCaption)> SetStepText;

  std::wstring ProductTable;  // path; whose suppliers and assortments decide what is offered

  // Shows step 1, 2 or 3 and does its work: clears the update folder, once for all; fetches the
  // index and fills the list; fetches the checked files. A failure ends in a status line, a message
  // or both; the files that were fetched stay.
  void Init(std::int32_t vStep);

  // Captions and column headings in the language loaded now.
  void setupLanguage();

  bool CheckInet() const { return optCheckDownload[0].Value(); }

  // Fills the list anew and returns the checked entries, in its order. What the user has unchecked
  // since the index was fetched stays so.
  std::vector<std::shared_ptr<clsDownloadFileInfo>> SelectedDownloadFiles();

 private:
  void ShowFrame(std::int32_t vStep);
  void Status(const std::wstring& vText);
  void Yield();  // DoEvents, with the status lines shown
  void InitChoice();
  void InitList();
  void InitTransfer();

  // The index: true when it came and is one; all of its entries, false when they are too many.
  bool FetchIndex();
  bool RefuseIndex(std::int32_t vReason);  // false, after the message of this number
  void SayNothing(std::int32_t vReason);   // why nothing is offered
  bool ReadIndex(std::wstring_view vLines);
  void SelectOffered();
  bool IsOffered(const clsDownloadFileInfo& vInfo) const;
  void FillList();
  std::vector<std::shared_ptr<clsDownloadFileInfo>> CheckedEntries() const;
  void lvPrc_ItemCheck(std::size_t vIndex);

  // The files; what TransferFile returns is its length in bytes when it came as a whole.
  bool EnsureFolder(const std::wstring& vFolder);
  void DownloadFile(const std::wstring& vFolder, const clsDownloadFileInfo& vInfo);
  std::int64_t TransferFile(const std::wstring& vPath, const clsDownloadFileInfo& vInfo);
  std::int64_t ReceiveFile(const std::wstring& vPath, const clsDownloadFileInfo& vInfo);
  std::int64_t ReadLength();
  void WaitFor(std::chrono::milliseconds vTime);
  std::int64_t ReceiveBody(const std::wstring& vPath, const std::wstring& vFileName,
                           std::int64_t vLength);
  void ShowProgress(const std::wstring& vFileName, std::int64_t vReceived, std::int64_t vLength);
  void Ask(const std::wstring& vFileName);

  // A window that is told more often only gets slower.
  static constexpr std::chrono::milliseconds kTellingPause{20};

  const std::wstring m_baseUrl;
  const std::chrono::milliseconds m_retry;
  bool m_visited = false;                        // step 1 has been shown
  std::wstring m_status;                         // lines of the step
  std::chrono::steady_clock::time_point m_told;  // when txtStatus got them
  std::vector<std::shared_ptr<clsDownloadFileInfo>> m_index;
  std::unordered_set<std::wstring> m_pairs;  // of the product table, as PairOf makes them
};
