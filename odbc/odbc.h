#pragma once

#include <sstream>
#include <string>

// The ODBC handle layer: environment, connections, statements, columns and parameters as a tree of
// objects. A caller holds interface pointers only. Deleting an object deletes what was made under
// it; whoever holds the root may therefore delete the root alone.
//
// No operation throws a failure: it returns a status, and the text of the last failure stays in the
// one diagnostics record that the whole tree shares. The next ODBC call of any object of the tree
// replaces that record, so it is read at once. A tree is used by one thread at a time.
namespace KORVEX::Zel::DB::ODBC {

class OdbcEnv;

// What every object of the layer offers: the diagnostics record of its tree.
class Odbc {
 public:
  // What every operation that talks to ODBC returns.
  enum e_Status : unsigned int {
    e_Ok = 0,        // done, perhaps with a warning in the diagnostics record
    e_Error = 1,     // refused by the driver (see the record), or an impossible request
    e_Other = 2,     // an ODBC answer that none of the others covers
    e_NoData = 3,    // no (more) rows, no (more) results
    e_Null = 4,      // the value read is NULL; only the typed getters answer this
    e_NeedData = 5,  // the driver waits for parameter values
  };

  // In slot order.
  virtual ~Odbc() = default;
  // Whether the last ODBC call of the tree left a record: a failure or a warning.
  virtual bool HasInfo() = 0;
  // Copies the record out: SQLSTATE, the driver's own error number, the message. Without a record
  // the texts are those of the last one, or empty.
  virtual void GetInfo(std::string& state, long& nativeError, std::string& message) = 0;
  // Prints the record on standard output in three lines, each starting with `prefix` (null: none).
  // Prints nothing without a record.
  virtual void DumpInfo(const char* prefix) = 0;
  // Writes "[state][native error][message]" if there is a record, and always one NUL behind it.
  virtual void DumpInfo(std::ostringstream& out) = 0;

  // A new environment, the root of a tree of its own; the caller deletes it. Null when ODBC refuses
  // (the reason is printed on standard output).
  static OdbcEnv* CreateEnv();

 protected:
  Odbc() = default;
  Odbc(const Odbc&) = delete;
  Odbc& operator=(const Odbc&) = delete;
};

}  // namespace KORVEX::Zel::DB::ODBC
