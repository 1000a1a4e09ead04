// A connection to a database file, in the shape of the classic data-access objects.
#pragma once

#include <memory>
#include <string>

#include "platform/text/runtime_error.h"

namespace database {

class Session;  // the open file; shared by all connections of the process to it
struct ConnectionState;

// The named settings of a provider. Names compare without case.
class Properties {
 public:
  // The value to be read or set; an unknown name is the RuntimeError 3265 ("Item cannot be found in
  // the collection corresponding to the requested name or ordinal.").
  std::wstring& operator[](const std::wstring& name);

 private:
  friend class Connection;
  std::wstring data_source_;
  std::wstring password_;
};

// Set Provider, then Properties(), then Open. Every failure is a text::RuntimeError with the number
// and text that users of such databases know (docs/database-errors.md).
//
// Recordsets opened on a connection keep working only while it is open: afterwards their operations
// fail with 3704 ("Operation is not allowed when the object is closed."). One thread only.
class Connection {
 public:
  Connection();
  ~Connection();  // closes
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // "Microsoft.Jet.OLEDB.4.0" is the only provider there is; Open refuses others (3706).
  std::wstring Provider;
  // "Data Source" (path) and "Jet OLEDB:Database Password".
  database::Properties Properties;

  // `connection_string`, `user` and `password` must be empty: everything is set through the
  // properties. `options` -1 is "unspecified". The file is opened exclusively for this process;
  // a second connection of this process to the same file shares it.
  void Open(const std::wstring& connection_string = L"", const std::wstring& user = L"",
            const std::wstring& password = L"", int options = -1);
  void Close();  // releases the file when this was its last connection; no effect when closed
  bool IsOpen() const;

  // The file that is open. Whoever keeps it keeps the file open. 3704 when closed.
  std::shared_ptr<Session> session() const;

 private:
  friend class Recordset;
  std::shared_ptr<ConnectionState> state_;  // shared with the recordsets opened on it
};

}  // namespace database
