// Opens the product table for the whole program and refuses databases that are none.
#pragma once

#include <memory>
#include <string>

#include "store/clsConnection.h"

// What the identity row of an accepted product table says.
inline constexpr wchar_t kProductTableAppType[] = L"ORVANE";
inline constexpr wchar_t kProductTableDBType[] = L"PT";
inline constexpr int kProductTableVerMajor = 3;
inline constexpr int kProductTableVerMinor = 20;

// The database password of all product tables.
inline constexpr wchar_t kProductTablePassword[] = L"quorbelintax";

// The one open product table of the program; empty while none is open. Who is done with it sets it
// to empty, which closes the file.
extern std::unique_ptr<clsConnection> ProductConnection;

// What OpenProductTable opens with: kProductTablePassword unless the program was started with
// another one; empty for an unprotected database.
extern std::wstring ProductTablePassword;

// Opens `vPath` into ProductConnection and checks its identity row. The earlier instance is dropped
// first, so that its file is free. False, after a message box with the reason, for a file that
// cannot be opened, is no product table, or has another version than 3.20; a refused one stays open
// in ProductConnection until the caller drops it.
bool OpenProductTable(const std::wstring& vPath);

// Sets ProductConnection to empty at the end of a block, however that is left. What uses the
// connection must end before it.
class ProductConnectionGuard {
 public:
  ProductConnectionGuard() = default;
  ProductConnectionGuard(const ProductConnectionGuard&) = delete;
  ProductConnectionGuard& operator=(const ProductConnectionGuard&) = delete;
  ~ProductConnectionGuard() { ProductConnection.reset(); }
};
