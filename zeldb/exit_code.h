#pragma once

namespace zeldb {

// What the tool's process ends with.
enum class ExitCode : int {
  kOk = 0,
  kRowsRejected = 1,
  kUsage = 2,
  kConnect = 3,
  kSql = 4,
  kTimeout = 5,
  kFile = 6,
  kInDoubt = 7,
  kInterrupted = 130,
};

// The help text's table of them.
inline constexpr const char* kExitCodeHelp =
    "Exit codes:\n"
    "  0    done\n"
    "  1    rows rejected: a row of the input does not fit\n"
    "  2    command line or services file\n"
    "  3    the connection could not be made, or was lost\n"
    "  4    the database refused a statement\n"
    "  5    timeout\n"
    "  6    a file could not be read or is malformed\n"
    "  7    in doubt: the answer to a commit was lost\n"
    "  130  interrupted\n";

}  // namespace zeldb
