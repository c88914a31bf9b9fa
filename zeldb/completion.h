#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zeldb {

// What can stand at a place of the command line.
struct Candidate {
  std::string word;
  std::string meaning;  // may be empty

  auto operator<=>(const Candidate&) const = default;
};

// The one candidate that stands for the names of files.
inline constexpr const char* kFilesCandidate = ":files";

// What can stand in place of the last of the words of a command line, "zeldb" being the first:
// verbs, options, choices of an option, services, or files. Only what begins as the last word does.
// Reads the services file that the words or the default name; where it cannot be read there are no
// services.
std::vector<Candidate> completions(const CLI::App& app, const std::vector<std::string>& words,
                                   const std::filesystem::path& defaultServices);

}  // namespace zeldb
