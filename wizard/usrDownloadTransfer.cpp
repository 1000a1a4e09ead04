// The download page's transfers: from the server into the update folder, one file after the other.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <thread>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/files/binary_writer.h"
#include "platform/files/file_name.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "platform/text/strings.h"
#include "platform/transfer/url.h"
#include "updates/DownloadFolder.h"
#include "wizard/usrDownload.h"

namespace {

namespace DownloadTexts {
constexpr std::int32_t kDone = 22;
constexpr std::int32_t kFailed = 23;
constexpr std::int32_t kNoData = 24;
constexpr std::int32_t kEmptyFile = 25;
constexpr std::int32_t kNoLength = 30;
// "%s" stands for the folder.
constexpr std::int32_t kNoFolder = 1024;
}  // namespace DownloadTexts

// What a transfer comes to when it is not a number of bytes.
constexpr std::int64_t kNothingCame = 0;
constexpr std::int64_t kEmptyFile = -1;
constexpr std::int64_t kOtherLength = -2;

constexpr int kStatusOk = 200;
constexpr int kMostReads = 10;  // of the length
constexpr std::int64_t kChunkSize = 256;

using SteadyClock = std::chrono::steady_clock;

// A text that is no whole number counts as 0.
std::int64_t WholeNumber(const std::wstring& vText) {
  const std::string digits = text::WideToUtf8(text::Trim(vText));
  std::int64_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stopped, error] = std::from_chars(digits.data(), end, number);
  return error == std::errc() && stopped == end ? number : 0;
}

}  // namespace

bool usrDownload::EnsureFolder(const std::wstring& vFolder) {
  std::error_code ignored;  // what counts is whether the folder is there
  if (!files::FolderExists(vFolder)) {
    std::filesystem::create_directories(files::ToPath(vFolder), ignored);
  }
  if (files::FolderExists(vFolder)) return true;
  ShowMessage(text::ReplaceAll(LanguageText(DownloadTexts::kNoFolder), L"%s", vFolder), L"");
  return false;
}

// A name from the index that is not a plain one is not even asked for.
void usrDownload::DownloadFile(const std::wstring& vFolder, const clsDownloadFileInfo& vInfo) {
  const std::wstring shown = StripControlChars(vInfo.FileName);
  Status(L"Downloaden bestand " + shown);
  Yield();
  const bool done = files::IsPlainFileName(vInfo.FileName) &&
                    TransferFile(AddBackslash(vFolder) + vInfo.FileName, vInfo) > 0;
  Status(done ? LanguageText(DownloadTexts::kDone)
              : LanguageText(DownloadTexts::kFailed) + L" - " + shown);
}

std::int64_t usrDownload::TransferFile(const std::wstring& vPath,
                                       const clsDownloadFileInfo& vInfo) {
  std::int64_t result = kNothingCame;
  try {
    result = ReceiveFile(vPath, vInfo);
  } catch (...) {
    ShowErrorMessage(L"usrDownload.TransferFile (Function)");
  }
  Inet1.Cancel();
  if (result == kNothingCame) Status(LanguageText(DownloadTexts::kNoData));
  return result;
}

// An error page is not the file, even if it is as long.
std::int64_t usrDownload::ReceiveFile(const std::wstring& vPath, const clsDownloadFileInfo& vInfo) {
  Ask(vInfo.FileName);
  Inet1.Execute();
  while (Inet1.StillExecuting()) Yield();
  const std::int64_t length = ReadLength();
  if (static_cast<double>(length) != vInfo.Size || Inet1.StatusCode() != kStatusOk) {
    Status(L"Incorrect filesize");
    return kOtherLength;
  }
  if (length < 1) {
    Status(LanguageText(DownloadTexts::kEmptyFile));
    return kEmptyFile;
  }
  return ReceiveBody(vPath, vInfo.FileName, length);
}

std::int64_t usrDownload::ReadLength() {
  for (int reads = 0; reads < kMostReads; ++reads) {
    const std::int64_t length = WholeNumber(Inet1.GetHeader(L"Content-Length"));
    if (length > 0) return length;
    Status(L"Retry...");
    WaitFor(m_retry);
  }
  Status(LanguageText(DownloadTexts::kNoLength));
  return 0;
}

void usrDownload::WaitFor(std::chrono::milliseconds vTime) {
  constexpr std::chrono::milliseconds kSlice{10};
  const auto end = SteadyClock::now() + vTime;
  while (SteadyClock::now() < end) {
    Yield();
    std::this_thread::sleep_for(kSlice);
  }
}

// What came before a failure stays in the file.
std::int64_t usrDownload::ReceiveBody(const std::wstring& vPath, const std::wstring& vFileName,
                                      std::int64_t vLength) {
  lblProgress.SetCaption(L"Bytes (0)");
  files::BinaryWriter file(files::ToPath(vPath));
  SteadyClock::time_point told{};
  std::int64_t received = 0;
  while (received < vLength) {
    const auto wanted = static_cast<std::size_t>(std::min(kChunkSize, vLength - received));
    while (!Inet1.ChunkReady(wanted)) Yield();
    const std::string_view chunk = Inet1.GetChunk(wanted);
    if (chunk.empty()) break;
    file.Write(chunk);
    received += static_cast<std::int64_t>(chunk.size());
    const auto now = SteadyClock::now();
    if (now - told < kTellingPause && received < vLength) continue;
    told = now;
    ShowProgress(vFileName, received, vLength);
    Yield();
  }
  file.Close();
  if (received < vLength) ShowProgress(vFileName, received, vLength);
  return received == vLength ? vLength : kNothingCame;
}

void usrDownload::ShowProgress(const std::wstring& vFileName, std::int64_t vReceived,
                               std::int64_t vLength) {
  const auto percentage = static_cast<std::int32_t>(static_cast<double>(vReceived) * 100 /
                                                    static_cast<double>(vLength));
  lblProgress.SetCaption(vFileName + L": " + std::to_wstring(vLength - vReceived) + L" bytes (" +
                         std::to_wstring(percentage) + L"%)");
  if (percentage > 0) ProgressBar1.SetValue(percentage);
}

void usrDownload::Ask(const std::wstring& vFileName) {
  Inet1.Url = m_baseUrl + transfer::EscapeSegment(vFileName);
  Inet1.UserName = DownloadFolder::kUserName;
  Inet1.Password = DownloadFolder::kPassword;
}
