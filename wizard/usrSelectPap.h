// The wizard's page on which the user chooses the updates to apply.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine/clsOrvPap.h"
#include "platform/controls/layout.h"
#include "platform/controls/list_view.h"

// Lists the updates of the update folder whose supplier delivers their assortment according to the
// product table. Those in its register stand in grey and unchecked, but can be checked and are then
// applied again. The list keeps the updates that it shows, whatever becomes of the folder. One
// thread.
class usrSelectPap final : public controls::Page {
 public:
  usrSelectPap();

  controls::Layout Arrangement() override;

  controls::ListView lvPrc;  // key i & "P", i the position in the folder's collection from 1

  std::function<void(bool vAan)> AanzettenVolgende;  // whether an update is checked
  std::function<void(const std::wstring& vCaption)> SetStepText;

  // Reads the register of the product table at `vPath`, the update folder, and the product table's
  // pairs of supplier and assortment, and fills the list. A folder without updates, or none, gives
  // an empty list. A file that cannot be read is reported and ends it with an empty list. The
  // product table is released in every case.
  void Init(const std::wstring& vPath);

  // The column headings in the language loaded now.
  void setupLanguage();

  // The updates that are checked, in the order of the list. Empty where none is.
  std::vector<std::shared_ptr<clsOrvPap>> SelectedPAP() const;

 private:
  void ReadUpdates();
  void FillList();
  void AddUpdate(const clsOrvPap& vPap, std::size_t vPosition);
  bool AnyChecked() const;
  void lvPrc_ItemCheck(std::size_t vIndex);
  bool lvPrc_KeyPress(wchar_t vKey);  // whether that was all to do

  std::vector<std::shared_ptr<clsOrvPap>> m_paps;  // what the positions in the keys count
  std::unordered_set<std::wstring> m_pairs;        // of the product table, as PairOf makes them
};
