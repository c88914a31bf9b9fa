#include "zeldb/driver_library.h"

#include <dlfcn.h>
#include <elf.h>
#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace zeldb {
namespace {

std::optional<Elf64_Ehdr> elfHeader(const std::filesystem::path& file) {
  Elf64_Ehdr header = {};
  std::ifstream in(file, std::ios::binary);
  if (!in.read(reinterpret_cast<char*>(&header), sizeof header) ||
      std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
    return std::nullopt;
  }
  return header;
}

// The child's part: says through the pipe why loading fails.
[[noreturn]] void loadAndTell(const std::filesystem::path& file, int pipe) {
  if (dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
    const char* const reason = dlerror();
    const ssize_t written = write(pipe, reason, std::strlen(reason));
    _exit(written < 0 ? 2 : 1);
  }
  _exit(0);
}

std::string readAll(int pipe) {
  std::string text;
  std::array<char, 512> part = {};
  for (ssize_t length = 1; length > 0;) {
    length = read(pipe, part.data(), part.size());
    if (length > 0) {
      text.append(part.data(), static_cast<std::size_t>(length));
    } else if (length < 0 && errno == EINTR) {
      length = 1;
    }
  }
  return text;
}

}  // namespace

const OdbcDriver& driverOfFile(std::string_view fileName) {
  return *std::find_if(kOdbcDrivers.begin(), kOdbcDrivers.end(), [&](const OdbcDriver& row) {
    return fileName.find(row.libraryPart) != std::string_view::npos;
  });
}

std::vector<std::filesystem::path> installedDrivers(const std::filesystem::path& fileName) {
  std::vector<std::filesystem::path> found;
  std::error_code error;
  for (const auto& folder : std::filesystem::directory_iterator("/usr/lib", error)) {
    const std::filesystem::path file = folder.path() / "odbc" / fileName;
    if (std::filesystem::exists(file, error)) {
      found.push_back(file);
    }
  }
  return found;
}

std::optional<std::string> whyNoLibrary(const std::filesystem::path& file) {
  const auto header = elfHeader(file);
  // This program is for this machine; a library must be like it.
  const auto own = elfHeader("/proc/self/exe");
  if (!header || header->e_type != ET_DYN) {
    return "it is no shared library";
  }
  if (own && (header->e_ident[EI_CLASS] != own->e_ident[EI_CLASS] ||
              header->e_machine != own->e_machine)) {
    return "it is a library for another machine";
  }
  return std::nullopt;
}

std::optional<std::string> whyNotLoadable(const std::filesystem::path& file) {
  std::array<int, 2> ends = {};
  if (pipe(ends.data()) != 0) {
    return std::strerror(errno);
  }
  const pid_t child = fork();
  if (child == 0) {
    loadAndTell(file, ends[1]);
  }
  close(ends[1]);
  const std::string reason = child > 0 ? readAll(ends[0]) : std::strerror(errno);
  close(ends[0]);
  int status = 0;
  while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (child > 0 && WIFSIGNALED(status)) {
    return fmt::format("loading it ends the process with signal {}", WTERMSIG(status));
  }
  return child > 0 && status == 0 ? std::nullopt : std::optional(reason);
}

}  // namespace zeldb
