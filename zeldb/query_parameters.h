#pragma once

#include <deque>
#include <string>
#include <vector>

#include "zeldb/session.h"
#include "zeldb/value_parser.h"

namespace zeldb {

// The parameters of a statement as the command line gives them: "TYPE:VALUE" each, or "TYPE" alone
// for NULL. Holds the texts and bytes that the values point at.
class QueryParameters {
 public:
  // Throws Failure that names the parameter's number when a type or value is wrong.
  explicit QueryParameters(const std::vector<std::string>& texts);
  QueryParameters(const QueryParameters&) = delete;
  QueryParameters& operator=(const QueryParameters&) = delete;

  const Parameters& values() const { return values_; }

 private:
  void add(const std::string& text);

  std::deque<std::string> texts_;
  std::deque<ValueParser> parsers_;
  Parameters values_;
};

}  // namespace zeldb
