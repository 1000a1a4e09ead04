// Opens the product table for the whole program and refuses databases that are none.
#include "store/modProductTable.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/text/strings.h"

namespace {

// "%s" stands for the path.
namespace RefusalTexts {
constexpr std::int32_t kNoProductTable = 53;
constexpr std::int32_t kOtherVersion = 54;
constexpr std::int32_t kCannotBeOpened = 56;
}  // namespace RefusalTexts

bool Refuse(std::int32_t vText, const std::wstring& vPath) {
  ShowMessage(text::ReplaceAll(LanguageText(vText), L"%s", vPath), L"");
  return false;
}

}  // namespace

std::unique_ptr<clsConnection> ProductConnection;
std::wstring ProductTablePassword = kProductTablePassword;

bool OpenProductTable(const std::wstring& vPath) {
  try {
    ProductConnection.reset();
    ProductConnection = std::make_unique<clsConnection>();
    const clsConnection& opened = *ProductConnection;
    if (!ProductConnection->MakenJetConnectie(vPath, ProductTablePassword)) {
      return Refuse(RefusalTexts::kCannotBeOpened, vPath);
    }
    if (opened.AppType != kProductTableAppType || opened.DBType != kProductTableDBType) {
      return Refuse(RefusalTexts::kNoProductTable, vPath);
    }
    if (opened.VerMajor != kProductTableVerMajor || opened.VerMinor != kProductTableVerMinor) {
      return Refuse(RefusalTexts::kOtherVersion, vPath);
    }
    return true;
  } catch (...) {
    ShowErrorMessage(L"modProductTable.OpenProductTable (Function)");
    return false;
  }
}
