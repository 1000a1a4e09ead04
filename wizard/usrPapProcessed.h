// The wizard's third page: the updates that were applied to the product table before.
#pragma once

#include <string>

#include "platform/controls/layout.h"
#include "platform/controls/list_view.h"

// A list to read: the register of the product table (updates/modSharedPapRegister), oldest first.
// One thread.
class usrPapProcessed final : public controls::Page {
 public:
  usrPapProcessed();

  controls::Layout Arrangement() override;

  controls::ListView lvPrc;  // key i & "P", i the position in ProcessedPaps from 1

  // Shows the register of the product table at `vPath`. A product table without one shows an empty
  // list; what else goes wrong has been reported.
  void Init(const std::wstring& vPath);

  // The column headings in the language loaded now.
  void setupLanguage();

 private:
  void FillList();
};
