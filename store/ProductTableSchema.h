// The names of the product table's tables and columns, each spelt once for everybody who reads or
// writes fields. The tables belong to the host product; statements spell them out where they stand.
#pragma once

namespace ProductTable {

namespace SysDBInfo {
inline constexpr wchar_t kTable[] = L"SysDBInfo";
inline constexpr wchar_t kAppType[] = L"AppType";
inline constexpr wchar_t kDBType[] = L"DBType";
inline constexpr wchar_t kVerMajor[] = L"VerMajor";
inline constexpr wchar_t kVerMinor[] = L"VerMinor";
inline constexpr wchar_t kRevision[] = L"Revision";
}  // namespace SysDBInfo

namespace Supplier {
inline constexpr wchar_t kTable[] = L"Supplier";
inline constexpr wchar_t kID[] = L"ID";
inline constexpr wchar_t kCode[] = L"Code";
inline constexpr wchar_t kDescription[] = L"Description";
inline constexpr wchar_t kToA[] = L"ToA";
inline constexpr wchar_t kToB[] = L"ToB";
inline constexpr wchar_t kRights[] = L"Rights";
}  // namespace Supplier

namespace Assortment {
inline constexpr wchar_t kTable[] = L"Assortment";
inline constexpr wchar_t kAssNr[] = L"AssNr";
inline constexpr wchar_t kAssCode[] = L"AssCode";
inline constexpr wchar_t kDescription[] = L"Description";
inline constexpr wchar_t kFabrCode[] = L"FabrCode";
inline constexpr wchar_t kRemark[] = L"Remark";
inline constexpr wchar_t kDimUnit[] = L"DimUnit";
inline constexpr wchar_t kPriceUnit[] = L"PriceUnit";
inline constexpr wchar_t kBasePriceGroups[] = L"BasePriceGroups";
inline constexpr wchar_t kDiscountGroups[] = L"DiscountGroups";
inline constexpr wchar_t kRights[] = L"Rights";
}  // namespace Assortment

namespace Serie {
inline constexpr wchar_t kTable[] = L"Serie";
inline constexpr wchar_t kSerieNr[] = L"SerieNr";
inline constexpr wchar_t kAssNr[] = L"AssNr";
inline constexpr wchar_t kSerieCode[] = L"SerieCode";
inline constexpr wchar_t kDescription[] = L"Description";
inline constexpr wchar_t kRemark[] = L"Remark";
inline constexpr wchar_t kDensity[] = L"Density";
inline constexpr wchar_t kUseOverlengthBonus[] = L"UseOverlengthBonus";
}  // namespace Serie

// Which supplier delivers which assortment; the pair of keys identifies a row.
namespace Ass_Suppl {
inline constexpr wchar_t kTable[] = L"Ass_Suppl";
inline constexpr wchar_t kfkAssNr[] = L"fkAssNr";
inline constexpr wchar_t kfkSupplierID[] = L"fkSupplierID";
inline constexpr wchar_t kPrcDiscountType[] = L"PrcDiscountType";
inline constexpr wchar_t kRights[] = L"Rights";
inline constexpr wchar_t kPrcDate[] = L"PrcDate";
inline constexpr wchar_t kSawPrcDate[] = L"SawPrcDate";
inline constexpr wchar_t kBlastCoatDate[] = L"BlastCoatDate";
inline constexpr wchar_t kBasePriceDate[] = L"BasePriceDate";
inline constexpr wchar_t kOLBonusDate[] = L"OLBonusDate";
}  // namespace Ass_Suppl

namespace Article {
inline constexpr wchar_t kTable[] = L"Article";
inline constexpr wchar_t kID[] = L"ID";
inline constexpr wchar_t kfkSerie[] = L"fkSerie";
inline constexpr wchar_t kCode[] = L"Code";
inline constexpr wchar_t kDescription[] = L"Description";
inline constexpr wchar_t kDescription2[] = L"Description2";
inline constexpr wchar_t kRemark[] = L"Remark";
}  // namespace Article

// An article has its dimensions in one of the next three tables, under its own key; which one is
// decided by its assortment's dimension kind.
inline constexpr unsigned char kDimensionKindProfile = 1;  // ArtDimL
inline constexpr unsigned char kDimensionKindPlate = 2;    // ArtDimPl; any other kind: ArtOrvc

namespace ArtDimL {
inline constexpr wchar_t kTable[] = L"ArtDimL";
inline constexpr wchar_t kID[] = L"ID";
inline constexpr wchar_t kHt[] = L"Ht";
inline constexpr wchar_t kWb[] = L"Wb";
inline constexpr wchar_t kWu[] = L"Wu";
inline constexpr wchar_t ktfb[] = L"tfb";
inline constexpr wchar_t ktfu[] = L"tfu";
inline constexpr wchar_t ktw[] = L"tw";
inline constexpr wchar_t kRi[] = L"Ri";
inline constexpr wchar_t kRo[] = L"Ro";
inline constexpr wchar_t kS[] = L"S";
inline constexpr wchar_t kSnet[] = L"Snet";
inline constexpr wchar_t kSlope[] = L"Slope";
}  // namespace ArtDimL

namespace ArtDimPl {
inline constexpr wchar_t kTable[] = L"ArtDimPl";
inline constexpr wchar_t kID[] = L"ID";
inline constexpr wchar_t kt[] = L"t";
}  // namespace ArtDimPl

namespace ArtOrvc {
inline constexpr wchar_t kTable[] = L"ArtOrvc";
inline constexpr wchar_t kID[] = L"ID";
inline constexpr wchar_t kVolDim[] = L"VolDim";
inline constexpr wchar_t kArea[] = L"Area";
}  // namespace ArtOrvc

// Base-price groups.
namespace BPG {
inline constexpr wchar_t kTable[] = L"BPG";
inline constexpr wchar_t kID[] = L"ID";
inline constexpr wchar_t kfkSupplier[] = L"fkSupplier";
inline constexpr wchar_t kCode[] = L"Code";
inline constexpr wchar_t kDescription[] = L"Description";
inline constexpr wchar_t kRights[] = L"Rights";
inline constexpr wchar_t kDimUnit[] = L"DimUnit";
inline constexpr wchar_t kPriceUnit[] = L"PriceUnit";
inline constexpr const wchar_t* kColumns[] = {kID,     kfkSupplier, kCode,     kDescription,
                                              kRights, kDimUnit,    kPriceUnit};
}  // namespace BPG

// The price steps of a base-price group: one row a step, under the key of the group.
namespace BasePrice {
inline constexpr wchar_t kTable[] = L"BasePrice";
inline constexpr wchar_t kID[] = L"ID";
inline constexpr wchar_t kBegin[] = L"Begin";
inline constexpr wchar_t kEnd[] = L"End";
inline constexpr wchar_t kBasePrice[] = L"BasePrice";
inline constexpr const wchar_t* kColumns[] = {kID, kBegin, kEnd, kBasePrice};
}  // namespace BasePrice

namespace Discount {
inline constexpr wchar_t kTable[] = L"Discount";
inline constexpr wchar_t kID[] = L"ID";
inline constexpr wchar_t kfkSupplier[] = L"fkSupplier";
inline constexpr wchar_t kCode[] = L"Code";
inline constexpr wchar_t kDescription[] = L"Description";
inline constexpr wchar_t kDiscPercA[] = L"DiscPercA";
inline constexpr wchar_t kDiscPercB[] = L"DiscPercB";
inline constexpr wchar_t kDiscPercC[] = L"DiscPercC";
}  // namespace Discount

namespace OverlengthBonus {
inline constexpr wchar_t kTable[] = L"OverlengthBonus";
inline constexpr wchar_t kfkSupplier[] = L"fkSupplier";
inline constexpr wchar_t kBegin[] = L"Begin";
inline constexpr wchar_t kEnd[] = L"End";
inline constexpr wchar_t kPrice[] = L"Price";
inline constexpr const wchar_t* kColumns[] = {kfkSupplier, kBegin, kEnd, kPrice};
}  // namespace OverlengthBonus

// The price of an article at a supplier.
namespace ArtPrice {
inline constexpr wchar_t kTable[] = L"ArtPrice";
inline constexpr wchar_t kfkSupplier[] = L"fkSupplier";
inline constexpr wchar_t kfkArticle[] = L"fkArticle";
inline constexpr wchar_t kfkBPG[] = L"fkBPG";
inline constexpr wchar_t kfkDiscount[] = L"fkDiscount";
inline constexpr wchar_t kPriceDim[] = L"PriceDim";
inline constexpr wchar_t kOverPrice[] = L"OverPrice";
inline constexpr wchar_t kSawPrice[] = L"SawPrice";
inline constexpr wchar_t kBlastPrice[] = L"BlastPrice";
inline constexpr wchar_t kCoatPrice[] = L"CoatPrice";
inline constexpr wchar_t kArtNrSupplier[] = L"ArtNrSupplier";
inline constexpr const wchar_t* kColumns[] = {kfkSupplier, kfkArticle,    kfkBPG,    kfkDiscount,
                                              kPriceDim,   kOverPrice,    kSawPrice, kBlastPrice,
                                              kCoatPrice,  kArtNrSupplier};
}  // namespace ArtPrice

}  // namespace ProductTable
