// The connection to a product table together with what the database says about itself.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/database/connection.h"

// Created empty; MakenJetConnectie is called once on it. Afterwards either `Connection` is open and
// the identity values are read, or `Connection` is empty.
//
// Others may share `Connection`, but this object rules its life: the destructor closes it, so that
// the file is released whoever still refers to it. One thread.
class clsConnection {
 public:
  clsConnection() = default;
  ~clsConnection();
  clsConnection(const clsConnection&) = delete;
  clsConnection& operator=(const clsConnection&) = delete;

  // Opens the database file; an empty password is for an unprotected one. A failure is reported to
  // the user here and returns false.
  bool MakenJetConnectie(const std::wstring& vPath, const std::wstring& vPassword);

  std::shared_ptr<database::Connection> Connection;

  // The identity row of the database; a value that it lacks stays as it is here.
  std::int32_t VerMajor = 0;
  std::int32_t VerMinor = 0;
  std::int32_t Revision = 0;
  std::wstring AppType;
  std::wstring DBType;

 private:
  void ReadSysDBInfo();
};
