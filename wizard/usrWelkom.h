// The wizard's first page: a welcome text.
#pragma once

#include <functional>
#include <string>

#include "platform/controls/layout.h"
#include "platform/controls/text_box.h"

// Shows the text file that the setting PAPUPDATERWELCOME names (strWelcomeText, app/modShared); a
// relative path starts from the program's folder. Its first line is a heading for the status line,
// the others are the text. One thread.
class usrWelkom final : public controls::Page {
 public:
  usrWelkom();

  controls::Layout Arrangement() override;

  controls::TextBox Text1;  // the text, for reading only

  std::function<void(bool vAan)> AanzettenVolgende;  // whether the user may go on
  std::function<void(const std::wstring& vCaption)> SetStepText;

  // Shows the text and lets the user go on, whatever became of the text. A file that is missing, or
  // whose heading is blank, is no error: a text of the program's own then stands there. A file
  // without a second line, one of more than a megabyte and one that cannot be read are reported,
  // and the page stays as it was.
  void Init();

 private:
  void LadenWelkomText();
};
