// Applies update files written as texts to a product table, and records what the import tells.
#include "tests/engine/update_test.h"

#include "platform/files/paths.h"
#include "platform/text/code_page.h"

clsOrvPap& UpdateTest::NextUpdate(const std::string& lines) {
  CloseConnection();
  shown.clear();
  logged.clear();
  maxima.clear();
  progress.clear();
  update_ = std::make_unique<clsOrvPap>();
  update_->FilePath = files::ToText(folder.Write("update.PRC", lines));
  update_->AssortmentCode = L"BEAMS";
  update_->AssortmentDescription = L"Beams";
  update_->SupplierCode = L"S1";
  update_->SupplierDescription = L"First";
  update_->ShowListMessage = [this](const std::wstring& message, const std::wstring& detail,
                                    bool show, bool error) {
    const std::string line = text::WideToUtf8(message + L"|" + detail);
    logged.push_back(line);
    if (show || error) shown.push_back((error ? "! " : "") + line);
  };
  update_->ProgressInit = [this](std::int32_t maximum) { maxima.push_back(maximum); };
  update_->ProgressCurrent = [this](std::int32_t current) { progress.push_back(current); };
  return *update_;
}

bool UpdateTest::Apply() { return update_->UpdatePT(product_table); }

bool UpdateTest::Apply(const std::string& lines) {
  NextUpdate(lines);
  return Apply();
}

void UpdateTest::ApplyOpeningUpdates() {
  const std::string common =
      "[NEW SUPPLIER]\nS1,First,1,2\nS2,Second,3,4\n\n"
      "[NEW ASSORTMENT]\nBEAMS,Beams,1,1,True,True,0,\nPLATES,Plates,2,1,True,True,0,\n\n"
      "[NEW ASSSUPPL]\nBEAMS,S1,1\nBEAMS,S2,1\nPLATES,S1,1\nPLATES,S2,1\n\n";
  ASSERT_TRUE(
      Apply(common +
            "[NEW SERIE]\nHEA,HEA beams,7.85,True,\n\n"
            "[NEW ARTICLE]\n"
            "HEA,HEA100,,,96,100,100,8,8,5,12,0,2124,2124,0,0,0,0,\n"
            "HEA,HEA120,,,114,120,120,8,8,5,12,0,2534,2534,0,0,0,0,\n\n"
            "[NEW DISCOUNT]\nD1,Discount,1,2,3\n\n"
            "[UPDATE BASEPRICE]\nG1,Group,1,1,0,10,1.1\nG2,Group,1,1,0,10,1.2\n\n"
            "[UPDATE OVERLENGTHBONUS]\n12,15,0.5\n15,18,0.6\n\n"
            "[UPDATE PRICEDATA]\nHEA100,10,1,2,3,4,G1,D1,N-1\nHEA120,20,1,2,3,4,G2,D1,N-2\n"));
  NextUpdate(
      "[NEW SERIE]\nHOT,Plates,7.85,False,\n\n"
      "[NEW ARTICLE]\nHOT,HOT10,,,0,0,0,0,0,0,0,0,0,0,0,10,0,0,\n\n"
      "[UPDATE PRICEDATA]\nHOT10,30,1,2,3,4,G1,D1,N-3\n")
      .AssortmentCode = L"PLATES";
  ASSERT_TRUE(Apply());
  NextUpdate(
      "[UPDATE BASEPRICE]\nG1,Other,1,1,0,10,1.3\n\n"
      "[UPDATE OVERLENGTHBONUS]\n12,15,0.7\n\n"
      "[UPDATE PRICEDATA]\nHEA100,11,1,2,3,4,G1,,M-1\n")
      .SupplierCode = L"S2";
  ASSERT_TRUE(Apply());
}
