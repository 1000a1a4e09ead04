// The names of the register's table and columns, each spelt once.
#pragma once

namespace PriceUpdatesTable {

inline constexpr wchar_t kTable[] = L"PriceUpdates";
inline constexpr wchar_t kPrimaryKey[] = L"PriceUpdates_PK";

inline constexpr wchar_t kFileName[] = L"FileName";
inline constexpr wchar_t kDate[] = L"Date";
inline constexpr wchar_t kAssortiment[] = L"Assortiment";
inline constexpr wchar_t kSupplier[] = L"Supplier";
inline constexpr wchar_t kDateProcessed[] = L"DateProcessed";

// In the table's order.
inline constexpr const wchar_t* kColumns[] = {kFileName, kDate, kAssortiment, kSupplier,
                                              kDateProcessed};

}  // namespace PriceUpdatesTable
