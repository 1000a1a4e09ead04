// The wizard's second page: which product table to update, and whether to back it up.
#pragma once

#include <functional>
#include <string>

#include "platform/controls/buttons.h"
#include "platform/controls/layout.h"
#include "platform/controls/text_box.h"

// Only offers a path; whether it leads to a product table shows when the next step opens it. What
// the user chose last time is loaded at the first visit, so that going back keeps what was typed.
// One thread.
class usrTarget final : public controls::Page {
 public:
  usrTarget();

  controls::Layout Arrangement() override;

  controls::Label lblPTLocation;
  controls::TextBox txt_PTLocation;  // path of the product table
  controls::Button cmdSelPT;         // choose the file
  controls::Button cmdReset;         // back to the host product's product table
  controls::CheckBox chkBackup;      // a backup before each update

  std::function<void(bool vAan)> AanzettenVolgende;  // whether the user may go on
  std::function<void(const std::wstring& vCaption)> SetStepText;

  // Shows the page and lets the user go on. The first time it fills in the stored choices; without
  // any, the host product's product table (updates/modSharedPapFolder) with a backup.
  void Init();

  // Captions and tool tips in the language loaded now.
  void setupLanguage();

  const std::wstring& ptLocation() const { return txt_PTLocation.Text(); }
  bool MakeBackup() const { return chkBackup.Value(); }

 private:
  void LoadChoices();
  void cmdSelPT_Click();
  void cmdReset_Click();

  bool m_visited = false;
};
