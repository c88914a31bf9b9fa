// soak SECONDS DSN...: 24 connections of both generations, spread over the data sources, write,
// read back and begin anew for so long. Tables named soak1 to soak24 must be there; the source
// "SQLite" takes its tables from a file for each connection, so that writers do not wait for each
// other. Prints a line; ends with 1 when a value read was not the one written, when nothing went on
// in the last quarter, or when memory, file descriptors or ODBC handles grew.

#include <dlfcn.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "standin/property_data_service.h"
#include "tests/endurance/process_size.h"
#include "tests/endurance/session.h"
#include "zeldb/plug_in.h"

namespace {

constexpr int kConnections = 24;
constexpr int kParts = 10;
constexpr int kBatchesASession = 20;
#ifdef __SANITIZE_THREAD__
constexpr long kGrowthKilobytes = 1L << 20;  // the sanitizer remembers what it has seen
#else
constexpr long kGrowthKilobytes = 4096;
#endif
constexpr std::chrono::milliseconds kPause{20};

std::atomic<long> liveHandles{0};

}  // namespace

// What the plug-in allocates and frees is counted on its way to the driver manager.
extern "C" __attribute__((visibility("default"))) SQLRETURN SQLAllocHandle(SQLSMALLINT type,
                                                                           SQLHANDLE parent,
                                                                           SQLHANDLE* handle) {
  static const auto next =
      reinterpret_cast<decltype(&SQLAllocHandle)>(dlsym(RTLD_NEXT, "SQLAllocHandle"));
  const SQLRETURN rc = next(type, parent, handle);
  if (SQL_SUCCEEDED(rc)) ++liveHandles;
  return rc;
}

extern "C" __attribute__((visibility("default"))) SQLRETURN SQLFreeHandle(SQLSMALLINT type,
                                                                          SQLHANDLE handle) {
  static const auto next =
      reinterpret_cast<decltype(&SQLFreeHandle)>(dlsym(RTLD_NEXT, "SQLFreeHandle"));
  const SQLRETURN rc = next(type, handle);
  // After a lost connection the driver manager has freed its statements by itself.
  if (SQL_SUCCEEDED(rc) || rc == SQL_INVALID_HANDLE) --liveHandles;
  return rc;
}

namespace {

std::string variable(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

// What must stay flat.
struct Sample {
  long kilobytes;
  long files;
  long handles;
  long batches;

  static Sample take(long batches) {
    return {endurance::residentKilobytes(), endurance::openFiles(), liveHandles, batches};
  }
};

class Soak {
 public:
  Soak(int seconds, std::vector<std::string> dsns)
      : seconds_(seconds), dsns_(std::move(dsns)), plugIn_(zeldb::PlugIn::defaultLibrary()) {}

  bool run() {
    std::vector<std::thread> threads;
    for (int number = 1; number <= kConnections; ++number) {
      threads.emplace_back([this, number] { work(number); });
    }
    std::vector<Sample> samples;
    for (int second = 0; second < seconds_; ++second) {
      std::this_thread::sleep_for(std::chrono::seconds(1));
      samples.push_back(Sample::take(batches_));
    }
    stop_ = true;
    for (std::thread& thread : threads) thread.join();
    return report(samples);
  }

 private:
  KORVEX::Zel::PropertyDataService service(int number) const {
    const std::string& dsn = dsns_[static_cast<std::size_t>(number / 2) % dsns_.size()];
    return {"soak",
            {{"DSN", dsn == "SQLite" ? dsn + std::to_string(number) : dsn},
             {"User", variable("ZEL_TEST_USER")},
             {"Password", variable("ZEL_TEST_PASSWORD")},
             {"SafeTransfer", "true"}}};
  }

  void work(int number) {
    const auto source = service(number);
    const std::string table = "soak" + std::to_string(number);
    int batch = 0;
    while (!stop_) {
      const auto session = endurance::makeSession(1 + number % 2, plugIn_.driver(), source);
      const bool well = session->open() && useSession(*session, table, batch);
      if (well) continue;
      note(number, session->failure());
      std::this_thread::sleep_for(kPause);
    }
  }

  bool useSession(endurance::Session& session, const std::string& table, int& batch) {
    for (int i = 0; i < kBatchesASession && !stop_; ++i) {
      ++batch;
      if (!session.write(table, batch, kParts) || !session.commit()) return false;
      const int right = session.read(table, batch);
      if (right < 0) return false;
      if (right != kParts) {
        std::printf("  %s: %d of %d parts of batch %d\n", table.c_str(), right, kParts, batch);
        ++wrong_;
      }
      ++batches_;
    }
    // A failing statement now and then, as users write them.
    return session.run("delete from " + table) && session.commit() &&
           !session.run("delete from a table that is not there");
  }

  void note(int number, const endurance::Failure& failure) {
    const std::lock_guard lock(mutex_);
    ++failures_[failure.state.empty() ? "-----" : failure.state];
    if (failure.flagIsRight) return;
    std::printf("  soak%d: wrong connection-error flag: %s\n", number, failure.text.c_str());
    ++wrong_;
  }

  // The greatest of a quarter, counted from 0.
  static Sample most(const std::vector<Sample>& samples, std::size_t quarter) {
    Sample all{};
    for (std::size_t i = samples.size() * quarter / 4; i < samples.size() * (quarter + 1) / 4;
         ++i) {
      all.kilobytes = std::max(all.kilobytes, samples[i].kilobytes);
      all.files = std::max(all.files, samples[i].files);
      all.handles = std::max(all.handles, samples[i].handles);
      all.batches = std::max(all.batches, samples[i].batches);
    }
    return all;
  }

  bool report(const std::vector<Sample>& samples) const {
    const Sample early = most(samples, 1);
    const Sample before = most(samples, 2);
    const Sample late = most(samples, 3);
    long found = wrong_;
    const auto limit = [&](const char* what, long from, long to, long growth) {
      std::printf("  %s: %ld after a warm-up, %ld at the end\n", what, from, to);
      if (to > from + growth) ++found;
    };
    limit("resident kB", early.kilobytes, late.kilobytes,
          std::max(kGrowthKilobytes, early.kilobytes / 20));
    // A connection opens several, and how many are between two is chance.
    limit("open files", early.files, late.files, kConnections / 2);
    limit("ODBC handles", early.handles, late.handles, kConnections / 2);
    if (late.batches == before.batches) ++found;
    for (const auto& [state, count] : failures_) {
      std::printf("  failures with SQLSTATE %s: %ld\n", state.c_str(), count);
    }
    // The environment of the second generation belongs to the driver, which lives on.
    if (liveHandles != 1) {
      std::printf("  %ld handles are left\n", liveHandles.load());
      ++found;
    }
    std::printf("%-24s %12ld tried %8ld findings\n", "soak", batches_.load(), found);
    return found == 0;
  }

  const int seconds_;
  const std::vector<std::string> dsns_;
  zeldb::PlugIn plugIn_;
  std::atomic<bool> stop_{false};
  std::atomic<long> batches_{0};
  std::atomic<long> wrong_{0};
  mutable std::mutex mutex_;
  std::map<std::string, long> failures_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: soak SECONDS DSN...\n");
    return 2;
  }
  endurance::recordLogs();
  const bool well =
      Soak(static_cast<int>(std::strtol(argv[1], nullptr, 10)), {argv + 2, argv + argc}).run();
  std::fflush(stdout);
  return well ? EXIT_SUCCESS : EXIT_FAILURE;
}
