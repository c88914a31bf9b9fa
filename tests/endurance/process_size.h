#pragma once

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>

namespace endurance {

// The memory of this process that is in use, in KiB; 0 when the system does not tell.
inline long residentKilobytes() {
  long total = 0;
  long resident = 0;
  if (std::FILE* const file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
    std::fclose(file);
  }
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// How many files this process has open, the folder that is read for it among them.
inline long openFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

}  // namespace endurance
