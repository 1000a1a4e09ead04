// A price update: what its file says, and how it is brought into the product table.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/PrcFileFormat.h"
#include "platform/database/connection.h"
#include "platform/text/date.h"
#include "store/clsNewArticle.h"
#include "store/clsNewAssSuppl.h"
#include "store/clsNewAssortment.h"
#include "store/clsNewDiscount.h"
#include "store/clsNewSerie.h"
#include "store/clsNewSupplier.h"
#include "store/clsUpdateBasePrice.h"
#include "store/clsUpdateOverlengthB.h"
#include "store/clsUpdatePriceData.h"

// One price-update file. The header values are filled by the header reader (updates/modSharedPap),
// the record collections by GetPrcData; UpdatePT applies them, SavePrcFile writes them out again.
//
// The events are called on the caller's thread in the middle of the work and must stay callable
// until it returns. Everything here runs on one thread. A procedure that fails has told the user
// and returns false; what it had written into the product table by then stays there, row by row
// complete.
class clsOrvPap {
 public:
  // The records of one section in file order; may be absent, which counts as a section without any.
  template <class Record>
  using Collection = std::optional<std::deque<Record>>;

  clsOrvPap() = default;
  clsOrvPap(const clsOrvPap&) = delete;
  clsOrvPap& operator=(const clsOrvPap&) = delete;

  // The header. Dates are days since 1899-12-30 (platform/text/date.h).
  std::wstring FilePath;
  std::uint64_t FileSize = 0;  // bytes
  std::wstring Version;
  double PapDate = text::kUnsetDate;
  std::wstring AssortmentCode;
  std::wstring AssortmentDescription;
  std::wstring SupplierCode;
  std::wstring SupplierDescription;
  double PrcDate = text::kUnsetDate;
  double SawPrcDate = text::kUnsetDate;
  double BlastCoatDate = text::kUnsetDate;
  double BasePriceDate = text::kUnsetDate;
  double OlBonusDate = text::kUnsetDate;
  std::wstring Remark;  // its lines are joined by CR LF
  double DateProcessed = text::kUnsetDate;

  // The records.
  Collection<clsNewSupplier> NewSuppliers;
  Collection<clsNewAssortment> NewAssortments;
  Collection<clsNewAssSuppl> NewAssSuppls;
  Collection<clsNewSerie> NewSeries;
  Collection<clsNewArticle> NewArticles;
  Collection<clsNewDiscount> NewDiscounts;
  Collection<clsUpdateBasePrice> BasePrices;
  Collection<clsUpdateOverlengthB> OverlengthBonuses;
  Collection<clsUpdatePriceData> PriceData;

  // A message of UpdatePT. All of them belong in the log; one with vShowInList or vError also in
  // the list of results, with vError marked as an error.
  std::function<void(const std::wstring& vMessage, const std::wstring& vMessageSub,
                     bool vShowInList, bool vError)>
      ShowListMessage;
  // A step begins that has this many records; it is at this record (from 1).
  std::function<void(std::int32_t vMax)> ProgressInit;
  std::function<void(std::int32_t vCurrent)> ProgressCurrent;

  // Reads the data sections of FilePath into new collections. After a read error, which is
  // reported, the records read so far stay. Lines that fit no section are passed over in silence. A
  // line whose first quoted field is never closed is split without end (PSplit,
  // app/modGeneralFunctions).
  bool GetPrcData();

  // Reads the file and applies it to the product table, which it opens through OpenProductTable and
  // leaves open in ProductConnection. True when every step succeeded.
  bool UpdatePT(const std::wstring& vProductTablePath);

  // Writes header and records into the folder as a file of the same name as FilePath, after asking
  // when there is one already. False when the user declined or an error was reported; after an
  // error the file may be incomplete.
  bool SavePrcFile(const std::wstring& vTargetFolder) const;

 private:
  void ReadRecord(PrcFileFormat::Section vSection, std::wstring vLine);

  // The steps of an import, in the order of their work.
  bool SaveNewSuppliers();
  bool SaveNewAssortments();
  bool SaveNewAssSuppls();
  bool FindAssortmentAndSupplier();
  bool SaveNewSeries();
  bool SaveNewArticles();
  bool SaveNewDiscounts();
  bool SaveBasePrices();
  bool SaveOverlengthBonuses();
  bool SavePriceData();
  bool SaveAssSupplDates() const;

  void ClearArticlePrices(database::Recordset& vArtPrice) const;

  // What the record steps share; defined in engine/RecordStep.h. BeginStep says whether there is
  // anything to do.
  template <class Record>
  bool BeginStep(std::int32_t vText, const Collection<Record>& vRecords) const;
  template <class Record, class Save, class Detail>
  bool SaveRecords(Collection<Record>& vRecords, const Save& vSave, const Detail& vDetail);

  // Shows the error in hand in the list of results, marked; for a catch (...) that has reported it,
  // so that no failure passes for a success.
  void RaiseErrorInHand() const;
  void RaiseShowListMessage(const std::wstring& vMessage, const std::wstring& vMessageSub,
                            bool vShowInList, bool vError) const;
  void RaiseProgressInit(std::int32_t vMax) const;
  void RaiseProgressCurrent(std::int32_t vCurrent) const;

  std::shared_ptr<database::Connection> m_connection;
  // Found in the product table by their codes before the first step that needs them.
  std::int32_t m_assNr = 0;
  std::uint8_t m_dimUnit = 0;  // the dimension kind of the assortment's articles
  std::int32_t m_supplierID = 0;
};
