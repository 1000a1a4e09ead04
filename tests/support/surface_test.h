// The services of the program for a test of its surface, and a product table to work on.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/modShared.h"
#include "platform/database/connection.h"
#include "platform/registry/registry.h"
#include "platform/text/variant.h"
#include "tests/support/fixed_clock.h"
#include "tests/support/memory_registry.h"
#include "tests/support/numbered_texts.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/scripted_event_pump.h"
#include "tests/support/temporary_folder.h"

namespace test_support {

// Installs shared settings whose services record: message boxes in `prompt`, texts as numbers.
class SurfaceTest : public testing::Test {
 public:
  ~SurfaceTest() override;  // closes ProductConnection

 protected:
  SurfaceTest();

  TemporaryFolder folder;
  // The texts of the message boxes since the last call, in UTF-8.
  std::vector<std::string> Boxes();
  // A setting of the user's, and one of the machine's.
  registry::Value& Stored(const std::wstring& name);
  registry::Value& MachineSetting(const std::wstring& name);

  RecordingPrompt prompt;
  MemoryRegistry registry;
  ScriptedEventPump pump;
  FixedClock clock{45000.5};  // 2023-03-15 12:00
  NumberedTexts texts;
  SharedSettings settings;

 private:
  SharedSettingsScope scope_;
};

using Values = std::map<std::wstring, text::Variant>;  // of a row, by column

// With a new product table, empty but for its identity row.
class ProductTableTest : public SurfaceTest {
 protected:
  ProductTableTest();

  // A connection to the product table, opened at the first call.
  database::Connection& Connection();
  // Closes it, for a test that changes the file by other means.
  void CloseConnection();

  // Adds a row by itself, past all record writers.
  void AddRow(const std::wstring& table, const Values& values);
  // Adds a supplier S and assortments, all of which it delivers.
  void AddSupplierOf(const std::vector<std::wstring>& assortments);
  // Changes what the product table says about itself, by itself too, and closes the connection.
  void SetIdentity(const std::wstring& column, const text::Variant& value);

  // What a statement selects, a text a row: the named columns separated by "|", Null as "Null",
  // numbers with ".", in the order of the rows. In UTF-8, which a failing test can print.
  std::vector<std::string> Rows(const std::wstring& statement,
                                const std::vector<std::wstring>& columns);

  const std::wstring product_table;

 private:
  std::unique_ptr<database::Connection> connection_;
};

// A connection to any database file.
std::unique_ptr<database::Connection> OpenConnection(const std::wstring& path,
                                                     const std::wstring& password);

}  // namespace test_support
