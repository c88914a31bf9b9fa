#pragma once

#include <cstdlib>
#include <ctime>
#include <string>

namespace DataTypes {

// Sets the process's time zone and puts the former one back.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* zone) {
    const char* former = std::getenv("TZ");
    hadZone_ = former != nullptr;
    if (hadZone_) former_ = former;
    set(zone);
  }
  ~ScopedTimeZone() { set(hadZone_ ? former_.c_str() : nullptr); }
  ScopedTimeZone(const ScopedTimeZone&) = delete;
  ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

 private:
  static void set(const char* zone) {
    if (zone != nullptr)
      ::setenv("TZ", zone, 1);
    else
      ::unsetenv("TZ");
    ::tzset();
  }
  bool hadZone_;
  std::string former_;
};

}  // namespace DataTypes
