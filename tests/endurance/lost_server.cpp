// lost_server GENERATION DSN TABLE RECORD: writes batches until its input ends, while somebody else
// takes the server away. Each batch is a transaction of its own and becomes a line of the record:
//
//   acknowledged N   its commit succeeded
//   doubtful N       its commit was sent and failed
//   failed N         it failed before its commit was sent
//
// Numbers never come twice. Failures with a wrong connection-error flag are lines "flag TEXT".

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>

#include "standin/property_data_service.h"
#include "tests/endurance/session.h"
#include "zeldb/plug_in.h"

namespace {

constexpr int kParts = 20;
constexpr std::chrono::milliseconds kPause{20};  // between attempts to connect

std::string variable(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool inputHasEnded() {
  pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
  return poll(&input, 1, 0) > 0;
}

class Writer {
 public:
  Writer(int generation, const std::string& dsn, std::string table, std::FILE* record)
      : generation_(generation),
        table_(std::move(table)),
        record_(record),
        service_("lost", {{"DSN", dsn},
                          {"User", variable("ZEL_TEST_USER")},
                          {"Password", variable("ZEL_TEST_PASSWORD")},
                          {"SafeTransfer", "true"}}) {}

  void run() {
    while (!inputHasEnded()) {
      const auto session = endurance::makeSession(generation_, plugIn_.driver(), service_);
      if (session->open()) {
        writeUntilFailure(*session);
      } else {
        std::this_thread::sleep_for(kPause);
      }
      if (!session->failure().text.empty()) note(session->failure());
    }
    for (const auto& [state, count] : states_) {
      std::fprintf(record_, "state %s %d\n", state.c_str(), count);
    }
  }

 private:
  void writeUntilFailure(endurance::Session& session) {
    const char* outcome = "acknowledged";
    while (outcome[0] == 'a' && !inputHasEnded()) {
      const int batch = ++batch_;
      if (!session.write(table_, batch, kParts)) {
        outcome = "failed";
      } else if (!session.commit()) {
        outcome = "doubtful";
      }
      std::fprintf(record_, "%s %d\n", outcome, batch);
      std::fflush(record_);
    }
  }

  void note(const endurance::Failure& failure) {
    ++states_[failure.state.empty() ? "-----" : failure.state];
    if (!failure.flagIsRight) std::fprintf(record_, "flag %s\n", failure.text.c_str());
  }

  int generation_;
  std::string table_;
  std::FILE* record_;
  KORVEX::Zel::PropertyDataService service_;
  zeldb::PlugIn plugIn_{zeldb::PlugIn::defaultLibrary()};
  int batch_ = 0;
  std::map<std::string, int> states_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: lost_server GENERATION DSN TABLE RECORD\n");
    return 2;
  }
  std::FILE* const record = std::fopen(argv[4], "w");
  if (record == nullptr) return 2;
  endurance::recordLogs();
  Writer(static_cast<int>(std::strtol(argv[1], nullptr, 10)), argv[2], argv[3], record).run();
  return std::fclose(record);
}
