// The options that say which product table a command works on, and opening it to look inside.
#pragma once

#include <memory>
#include <string>

#include "platform/jet/database.h"

namespace CLI {
class App;
}

namespace paptool {

struct ProductTableOptions {
  std::string table;     // as given, UTF-8
  std::string password;  // that of all product tables unless another one is given; may be empty
  ProductTableOptions();

  std::wstring AbsolutePath() const;
};

// Adds --table (required) and --password; `options` must outlive the parsing.
void AddProductTableOptions(CLI::App& command, ProductTableOptions& options);

// Opens the file for reading only. Throws text::RuntimeError with the database's number and text.
std::unique_ptr<jet::Database> OpenToRead(const ProductTableOptions& options);

// For opening the file in other ways than OpenToRead.
jet::OpenOptions ReadOptions(const ProductTableOptions& options);

}  // namespace paptool
