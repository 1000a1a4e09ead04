// A new, empty product table, as the host product would make one.
#include "demo/product_table.h"

#include <memory>
#include <vector>

#include "platform/database/connection.h"
#include "platform/database/database_engine.h"
#include "platform/database/recordset.h"
#include "store/ProductTableSchema.h"
#include "store/modProductTable.h"

namespace demo {
namespace {

using database::DataType;
using database::FieldDefinition;
using database::IndexDefinition;
using database::TableDef;

// Characters of a text column.
constexpr int kCodeSize = 20;
constexpr int kDescriptionSize = 80;
constexpr int kArticleNumberSize = 30;

FieldDefinition Column(const wchar_t* name, DataType type) { return {.Name = name, .Type = type}; }

FieldDefinition Text(const wchar_t* name, int size) {
  return {.Name = name, .Type = DataType::kText, .Size = size};
}

FieldDefinition AutoNumber(const wchar_t* name) {
  return {.Name = name, .Type = DataType::kLong, .AutoIncrement = true};
}

// The column of a natural key: never Null, never empty.
FieldDefinition Code(const wchar_t* name) {
  return {.Name = name,
          .Type = DataType::kText,
          .Size = kCodeSize,
          .Required = true,
          .AllowZeroLength = false};
}

// The key of a row in another table that this row cannot be without.
FieldDefinition RequiredKey(const wchar_t* name) {
  return {.Name = name, .Type = DataType::kLong, .Required = true};
}

IndexDefinition PrimaryKey(std::vector<std::wstring> fields) {
  return {.Name = L"PrimaryKey", .Fields = std::move(fields), .Primary = true, .Unique = true};
}

IndexDefinition Unique(const wchar_t* name, std::vector<std::wstring> fields) {
  return {.Name = name, .Fields = std::move(fields), .Unique = true};
}

IndexDefinition Index(const wchar_t* field) { return {.Name = field, .Fields = {field}}; }

TableDef SysDBInfoTable() {
  namespace t = ProductTable::SysDBInfo;
  return {t::kTable,
          {Text(t::kAppType, 20), Text(t::kDBType, 10), Column(t::kVerMajor, DataType::kLong),
           Column(t::kVerMinor, DataType::kLong), Column(t::kRevision, DataType::kLong)},
          {}};
}

TableDef SupplierTable() {
  namespace t = ProductTable::Supplier;
  return {t::kTable,
          {AutoNumber(t::kID), Code(t::kCode), Text(t::kDescription, kDescriptionSize),
           Column(t::kToA, DataType::kDouble), Column(t::kToB, DataType::kDouble),
           Column(t::kRights, DataType::kBoolean)},
          {PrimaryKey({t::kID}), Unique(t::kCode, {t::kCode})}};
}

TableDef AssortmentTable() {
  namespace t = ProductTable::Assortment;
  return {t::kTable,
          {AutoNumber(t::kAssNr), Code(t::kAssCode), Text(t::kDescription, kDescriptionSize),
           Column(t::kFabrCode, DataType::kByte), Column(t::kRemark, DataType::kMemo),
           Column(t::kDimUnit, DataType::kByte), Column(t::kPriceUnit, DataType::kByte),
           Column(t::kBasePriceGroups, DataType::kBoolean),
           Column(t::kDiscountGroups, DataType::kBoolean), Column(t::kRights, DataType::kBoolean)},
          {PrimaryKey({t::kAssNr}), Unique(t::kAssCode, {t::kAssCode})}};
}

TableDef SerieTable() {
  namespace t = ProductTable::Serie;
  return {
      t::kTable,
      {AutoNumber(t::kSerieNr), RequiredKey(t::kAssNr), Code(t::kSerieCode),
       Text(t::kDescription, kDescriptionSize), Column(t::kRemark, DataType::kMemo),
       Column(t::kDensity, DataType::kDouble), Column(t::kUseOverlengthBonus, DataType::kBoolean)},
      {PrimaryKey({t::kSerieNr}), Unique(t::kSerieCode, {t::kSerieCode}), Index(t::kAssNr)}};
}

TableDef AssSupplTable() {
  namespace t = ProductTable::Ass_Suppl;
  return {
      t::kTable,
      {Column(t::kfkAssNr, DataType::kLong), Column(t::kfkSupplierID, DataType::kLong),
       Column(t::kPrcDiscountType, DataType::kLong), Column(t::kPrcDate, DataType::kDate),
       Column(t::kSawPrcDate, DataType::kDate), Column(t::kBlastCoatDate, DataType::kDate),
       Column(t::kBasePriceDate, DataType::kDate), Column(t::kOLBonusDate, DataType::kDate),
       Column(t::kRights, DataType::kBoolean)},
      {PrimaryKey({t::kfkAssNr, t::kfkSupplierID}), Index(t::kfkAssNr), Index(t::kfkSupplierID)}};
}

TableDef ArticleTable() {
  namespace t = ProductTable::Article;
  return {t::kTable,
          {AutoNumber(t::kID), RequiredKey(t::kfkSerie), Code(t::kCode),
           Text(t::kDescription, kDescriptionSize), Text(t::kDescription2, kDescriptionSize),
           Column(t::kRemark, DataType::kMemo)},
          {PrimaryKey({t::kID}), Unique(t::kCode, {t::kCode}), Index(t::kfkSerie)}};
}

// The key of an article's dimensions is the article's own: no autonumber.
TableDef DimensionTable(const wchar_t* name, const wchar_t* id,
                        const std::vector<const wchar_t*>& values) {
  TableDef table{name, {Column(id, DataType::kLong)}, {PrimaryKey({id})}};
  for (const wchar_t* value : values) table.Fields.push_back(Column(value, DataType::kDouble));
  return table;
}

TableDef ArtDimLTable() {
  namespace t = ProductTable::ArtDimL;
  return DimensionTable(t::kTable, t::kID,
                        {t::kHt, t::kWb, t::kWu, t::ktfb, t::ktfu, t::ktw, t::kRi, t::kRo, t::kS,
                         t::kSnet, t::kSlope});
}

TableDef ArtDimPlTable() {
  namespace t = ProductTable::ArtDimPl;
  return DimensionTable(t::kTable, t::kID, {t::kt});
}

TableDef ArtOrvcTable() {
  namespace t = ProductTable::ArtOrvc;
  return DimensionTable(t::kTable, t::kID, {t::kVolDim, t::kArea});
}

TableDef BPGTable() {
  namespace t = ProductTable::BPG;
  return {t::kTable,
          {AutoNumber(t::kID), RequiredKey(t::kfkSupplier), Code(t::kCode),
           Text(t::kDescription, kDescriptionSize), Column(t::kDimUnit, DataType::kByte),
           Column(t::kPriceUnit, DataType::kByte), Column(t::kRights, DataType::kBoolean)},
          {PrimaryKey({t::kID}), Unique(L"SupplierCode", {t::kfkSupplier, t::kCode}),
           Index(t::kfkSupplier)}};
}

TableDef BasePriceTable() {
  namespace t = ProductTable::BasePrice;
  return {t::kTable,
          {RequiredKey(t::kID), Column(t::kBegin, DataType::kDouble),
           Column(t::kEnd, DataType::kDouble), Column(t::kBasePrice, DataType::kDouble)},
          {Index(t::kID)}};
}

TableDef DiscountTable() {
  namespace t = ProductTable::Discount;
  return {t::kTable,
          {AutoNumber(t::kID), RequiredKey(t::kfkSupplier), Code(t::kCode),
           Text(t::kDescription, kDescriptionSize), Column(t::kDiscPercA, DataType::kDouble),
           Column(t::kDiscPercB, DataType::kDouble), Column(t::kDiscPercC, DataType::kDouble)},
          {PrimaryKey({t::kID}), Unique(L"CodeSupplier", {t::kCode, t::kfkSupplier}),
           Index(t::kfkSupplier)}};
}

TableDef OverlengthBonusTable() {
  namespace t = ProductTable::OverlengthBonus;
  return {t::kTable,
          {RequiredKey(t::kfkSupplier), Column(t::kBegin, DataType::kDouble),
           Column(t::kEnd, DataType::kDouble), Column(t::kPrice, DataType::kDouble)},
          {Index(t::kfkSupplier)}};
}

TableDef ArtPriceTable() {
  namespace t = ProductTable::ArtPrice;
  return {t::kTable,
          {Column(t::kfkSupplier, DataType::kLong), Column(t::kfkArticle, DataType::kLong),
           Column(t::kfkBPG, DataType::kLong), Column(t::kfkDiscount, DataType::kLong),
           Column(t::kPriceDim, DataType::kDouble), Column(t::kOverPrice, DataType::kDouble),
           Column(t::kSawPrice, DataType::kDouble), Column(t::kBlastPrice, DataType::kDouble),
           Column(t::kCoatPrice, DataType::kDouble), Text(t::kArtNrSupplier, kArticleNumberSize)},
          {PrimaryKey({t::kfkSupplier, t::kfkArticle}), Index(t::kfkSupplier), Index(t::kfkArticle),
           Index(t::kfkBPG), Index(t::kfkDiscount)}};
}

struct Link {
  const wchar_t* foreign_table;
  const wchar_t* foreign_column;
  const wchar_t* table;
  const wchar_t* column;
};

namespace pt = ProductTable;

constexpr Link kLinks[] = {
    {pt::Serie::kTable, pt::Serie::kAssNr, pt::Assortment::kTable, pt::Assortment::kAssNr},
    {pt::Article::kTable, pt::Article::kfkSerie, pt::Serie::kTable, pt::Serie::kSerieNr},
    {pt::ArtDimL::kTable, pt::ArtDimL::kID, pt::Article::kTable, pt::Article::kID},
    {pt::ArtDimPl::kTable, pt::ArtDimPl::kID, pt::Article::kTable, pt::Article::kID},
    {pt::ArtOrvc::kTable, pt::ArtOrvc::kID, pt::Article::kTable, pt::Article::kID},
    {pt::Ass_Suppl::kTable, pt::Ass_Suppl::kfkAssNr, pt::Assortment::kTable,
     pt::Assortment::kAssNr},
    {pt::Ass_Suppl::kTable, pt::Ass_Suppl::kfkSupplierID, pt::Supplier::kTable, pt::Supplier::kID},
    {pt::BPG::kTable, pt::BPG::kfkSupplier, pt::Supplier::kTable, pt::Supplier::kID},
    {pt::Discount::kTable, pt::Discount::kfkSupplier, pt::Supplier::kTable, pt::Supplier::kID},
    {pt::OverlengthBonus::kTable, pt::OverlengthBonus::kfkSupplier, pt::Supplier::kTable,
     pt::Supplier::kID},
    {pt::BasePrice::kTable, pt::BasePrice::kID, pt::BPG::kTable, pt::BPG::kID},
    {pt::ArtPrice::kTable, pt::ArtPrice::kfkSupplier, pt::Supplier::kTable, pt::Supplier::kID},
    {pt::ArtPrice::kTable, pt::ArtPrice::kfkArticle, pt::Article::kTable, pt::Article::kID},
    {pt::ArtPrice::kTable, pt::ArtPrice::kfkBPG, pt::BPG::kTable, pt::BPG::kID},
    {pt::ArtPrice::kTable, pt::ArtPrice::kfkDiscount, pt::Discount::kTable, pt::Discount::kID},
};

database::Relation RelationOf(const Link& link) {
  database::Relation relation;
  relation.Name = std::wstring(link.foreign_table) + L"_" + link.foreign_column;
  relation.Table = link.table;
  relation.ForeignTable = link.foreign_table;
  relation.Fields = {{link.column, link.foreign_column}};
  return relation;
}

void WriteIdentity(const std::wstring& path) {
  namespace t = ProductTable::SysDBInfo;
  database::Connection connection;
  connection.Provider = L"Microsoft.Jet.OLEDB.4.0";
  connection.Properties[L"Data Source"] = path;
  connection.Properties[L"Jet OLEDB:Database Password"] = kProductTablePassword;
  connection.Open();
  database::Recordset info;
  info.Open(t::kTable, connection, database::CursorType::kDynamic, database::LockType::kOptimistic);
  info.AddNew();
  info(t::kAppType) = kProductTableAppType;
  info(t::kDBType) = kProductTableDBType;
  info(t::kVerMajor) = std::int32_t{kProductTableVerMajor};
  info(t::kVerMinor) = std::int32_t{kProductTableVerMinor};
  info(t::kRevision) = std::int32_t{0};
  info.Update();
}

}  // namespace

void CreateProductTable(const std::wstring& path) {
  const std::unique_ptr<database::Database> created =
      database::DBEngine().CreateDatabase(path, std::wstring(L";pwd=") + kProductTablePassword);
  for (const TableDef& table :
       {SysDBInfoTable(), SupplierTable(), AssortmentTable(), SerieTable(), AssSupplTable(),
        ArticleTable(), ArtDimLTable(), ArtDimPlTable(), ArtOrvcTable(), BPGTable(),
        BasePriceTable(), DiscountTable(), OverlengthBonusTable(), ArtPriceTable()}) {
    created->AppendTable(table);
  }
  for (const Link& link : kLinks) created->AppendRelation(RelationOf(link));
  created->Close();
  WriteIdentity(path);
}

}  // namespace demo
