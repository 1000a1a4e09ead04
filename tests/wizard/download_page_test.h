// A download page, a product table with one supplier, and a download server to play with.
#pragma once

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/scripted_server.h"
#include "tests/support/surface_test.h"
#include "wizard/usrDownload.h"

// The product table has the assortments A and B of supplier S. The server has an index and files;
// how it answers for one of them can be changed before it is asked.
class DownloadPageTest : public test_support::ProductTableTest {
 protected:
  DownloadPageTest();

  // A file on the server, and its line in the index, with its size or another.
  void Offer(const std::string& vName, const std::string& vBody,
             std::optional<std::string> vSize = std::nullopt);

  // Steps of a page, with the list as it is filled; the status lines raised meanwhile.
  std::vector<std::string> Step(std::int32_t vStep, usrDownload& vPage);
  std::vector<std::string> FetchIndex() { return Step(2, page); }
  std::vector<std::string> FetchFiles() { return Step(3, page); }

  std::vector<std::string> Listed() const;  // the file names in the list
  // A file in the update folder; nothing when there is none.
  std::optional<std::string> Fetched(const std::string& vName) const;

  using Answer = test_support::ScriptedServer::Answer;
  std::string index = "OrvPapInfo\r\n";
  std::map<std::string, std::string> files;  // by path; "Info.txt" is made from `index`
  std::map<std::string, Answer> answers;     // in place of files

  test_support::ScriptedServer server;
  usrDownload page;
  usrDownload impatient;            // the same, which gives up silence after a second
  std::vector<std::string> status;  // everything that SetStepText said
};

inline constexpr char kFolderPath[] = "/orv/PAP32SP7/";
