#include "zeldb/query_parameters.h"

#include <fmt/format.h>

#include "zeldb/column_type.h"
#include "zeldb/failure.h"

namespace zeldb {

QueryParameters::QueryParameters(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    try {
      add(text);
    } catch (const Failure& failure) {
      throw Failure(failure.exitCode(),
                    fmt::format("parameter {}: {}", values_.size() + 1, failure.what()));
    }
  }
}

void QueryParameters::add(const std::string& text) {
  const std::size_t colon = text.find(':');
  ValueParser& parser = parsers_.emplace_back(typeFromName(text.substr(0, colon)));
  KORVEX::Zel::DB::Parameter parameter{parser.valueType(), {}};
  if (colon == std::string::npos) {
    parameter.value.setNull();
  } else if (!parser.parse(texts_.emplace_back(text.substr(colon + 1)), parameter.value)) {
    throw Failure(ExitCode::kUsage, fmt::format("{}: \"{}\"", parser.reason(), texts_.back()));
  }
  values_.push_back(parameter);
}

}  // namespace zeldb
