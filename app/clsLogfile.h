// The plain-text log of one import run.
#pragma once

#include <optional>
#include <string>

#include "platform/files/text_writer.h"

// Opens, writes lines, closes; what the lines say is the callers'. Each line is in the file when
// WriteLog returns, so that the log of a run that was cut short tells how far it came. The
// destructor runs EndLog. One thread.
class clsLogfile {
 public:
  clsLogfile() = default;
  ~clsLogfile();
  clsLogfile(const clsLogfile&) = delete;
  clsLogfile& operator=(const clsLogfile&) = delete;

  // Starts the log at `vPath` over with a separator line; what the file held is gone. False after
  // the report of an error; nothing is logged then.
  bool StartLog(const std::wstring& vPath);

  // Writes one line, exactly as given. Errors are ignored, and so are lines without an open log.
  void WriteLog(const std::wstring& vText);

  // Writes a separator line and closes the file; does nothing without an open log. Errors are
  // ignored.
  void EndLog();

 private:
  std::optional<files::TextWriter> m_stream;
};
