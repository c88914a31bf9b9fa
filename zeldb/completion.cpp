#include "zeldb/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "zeldb/failure.h"
#include "zeldb/option_choices.h"
#include "zeldb/services_file.h"

namespace zeldb {
namespace {

// Walks the words before the one to complete as the command line's parser would.
class Completion {
 public:
  Completion(const CLI::App& app, std::filesystem::path services)
      : app_(&app), root_(&app), services_(std::move(services)) {}

  void pass(const std::string& word) {
    if (valueOf_ != nullptr) {
      if (valueOf_->check_lname("services")) {
        services_ = word;
      }
      valueOf_ = nullptr;
    } else if (word.starts_with("-")) {
      const CLI::Option* const option = find(word);
      valueOf_ = option != nullptr && option->get_items_expected_max() > 0 ? option : nullptr;
    } else if (app_ == root_) {
      const auto verbs = root_->get_subcommands(
          [&](const CLI::App* candidate) { return candidate->get_name() == word; });
      app_ = verbs.empty() ? app_ : verbs.front();
    } else {
      ++positionals_;
    }
  }

  std::vector<Candidate> next(const std::string& word) const {
    if (valueOf_ != nullptr) {
      return values(*valueOf_);
    }
    if (word.starts_with("-")) {
      return options();
    }
    return app_ == root_ ? verbs() : positional();
  }

 private:
  const CLI::Option* find(const std::string& name) const {
    const CLI::Option* const own = app_->get_option_no_throw(name);
    return own != nullptr ? own : root_->get_option_no_throw(name);
  }

  std::vector<Candidate> verbs() const {
    std::vector<Candidate> found;
    for (const CLI::App* const verb : root_->get_subcommands({})) {
      if (!verb->get_group().empty()) {
        found.push_back({verb->get_name(), verb->get_description()});
      }
    }
    return found;
  }

  std::vector<Candidate> options() const {
    std::vector<Candidate> found;
    for (const CLI::App* const app : {app_, root_}) {
      for (const CLI::Option* const option : app->get_options()) {
        // A verb's own option goes before the tool's of the same name, "--help".
        if (!option->get_positional() && find(option->get_name()) == option) {
          found.push_back({option->get_name(), option->get_description()});
        }
      }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
  }

  std::vector<Candidate> positional() const {
    std::size_t at = 0;
    for (const CLI::Option* const option : app_->get_options()) {
      if (option->get_positional() && at++ == positionals_) {
        return values(*option);
      }
    }
    return {};
  }

  std::vector<Candidate> values(const CLI::Option& option) const {
    std::vector<Candidate> found;
    for (const std::string& word : choicesOf(option)) {
      found.push_back({word, {}});
    }
    if (!found.empty()) {
      return found;
    }
    const std::string type = option.get_type_name();
    if (type == "FILE") {
      return {{kFilesCandidate, {}}};
    }
    return type == "SERVICE" || type == "SERVICE.TABLE" ? services(type.substr(7, 1))
                                                        : std::vector<Candidate>();
  }

  std::vector<Candidate> services(const std::string& suffix) const {
    try {
      std::vector<Candidate> found;
      for (const auto& entry : ServicesFile(services_).entries()) {
        found.push_back({entry.name + suffix, {}});
      }
      return found;
    } catch (const Failure&) {
      return {};  // who completes a word is not to be told of a missing file
    }
  }

  const CLI::App* app_;
  const CLI::App* root_;
  std::filesystem::path services_;
  const CLI::Option* valueOf_ = nullptr;  // the option whose value comes next
  std::size_t positionals_ = 0;           // that have gone by
};

}  // namespace

std::vector<Candidate> completions(const CLI::App& app, const std::vector<std::string>& words,
                                   const std::filesystem::path& defaultServices) {
  if (words.size() < 2) {
    return {};
  }
  Completion completion(app, defaultServices);
  std::for_each(words.begin() + 1, words.end() - 1,
                [&](const std::string& word) { completion.pass(word); });
  std::vector<Candidate> found = completion.next(words.back());
  std::erase_if(found, [&](const Candidate& candidate) {
    return candidate.word != kFilesCandidate && !candidate.word.starts_with(words.back());
  });
  return found;
}

}  // namespace zeldb
