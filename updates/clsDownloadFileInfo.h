// One line of the download index: a price-update file on the download server.
#pragma once

#include <string>

// The index is explained in docs/downloads.md. Nothing in it is to be trusted: a file name may be
// any text (platform/files/file_name.h tells which ones are safe), a size any number.
class clsDownloadFileInfo {
 public:
  std::wstring FileName;
  std::wstring AssortmentDescription;
  std::wstring SupplierDescription;
  double Date = 0;  // days, platform/text/date.h; 0 where the line has no date of the calendar
  double Size = 0;  // bytes
  std::wstring Remark;

  // From the file name, between its first two underscores and from there to the next point; empty
  // where it is not made so.
  std::wstring AssortmentCode;
  std::wstring SupplierCode;

  bool Download = false;  // still to be fetched: not in the update folder yet
  bool Chosen = true;     // the user has not unchecked it

  // Takes the fields from a line of the index: separated by commas, without quoting, blanks around
  // them dropped. A field that is missing or no number keeps its empty value, further fields are
  // ignored. False, and nothing is set, for an empty line.
  bool AddLine(const std::wstring& vLine);

 private:
  void SetCodes();
};
