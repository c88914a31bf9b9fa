#include "zeldb/complete_verb.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "zeldb/completion.h"
#include "zeldb/connector.h"

namespace zeldb {

CLI::App* CompleteVerb::declare(CLI::App& app) {
  app_ = &app;
  CLI::App* const verb = app.add_subcommand("complete", "What can follow on a command line");
  verb->group("");
  verb->add_option("WORDS", words_, "A command line up to the word to complete")->required();
  return verb;
}

void CompleteVerb::run(Connector& connector) {
  for (const Candidate& candidate : completions(*app_, words_, connector.options().services)) {
    std::cout << candidate.word;
    if (!candidate.meaning.empty()) {
      std::cout << '\t' << candidate.meaning;
    }
    std::cout << '\n';
  }
}

}  // namespace zeldb
