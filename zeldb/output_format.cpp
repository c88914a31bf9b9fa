#include "zeldb/output_format.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <string_view>

#include "datatypes/time_zones.h"
#include "zeldb/csv_writer.h"
#include "zeldb/json_writer.h"
#include "zeldb/markdown_writer.h"
#include "zeldb/table_writer.h"

namespace zeldb {
namespace {

using MakeWriter = std::unique_ptr<RowWriter> (*)(std::ostream& out, const std::string& zone);

struct Format {
  const char* name;
  MakeWriter make;
};

template <JsonLayout Layout>
std::unique_ptr<RowWriter> makeJson(std::ostream& out, const std::string& zone) {
  return std::make_unique<JsonWriter>(out, isoMoments(zone), Layout);
}

// In the order of the help text.
constexpr std::array<Format, 5> kFormats = {{
    {"table",
     [](std::ostream& out, const std::string& zone) -> std::unique_ptr<RowWriter> {
       return std::make_unique<TableWriter>(out, MomentStyle{.zone = zone});
     }},
    {"csv",
     [](std::ostream& out, const std::string& zone) -> std::unique_ptr<RowWriter> {
       return std::make_unique<CsvWriter>(out, isoMoments(zone));
     }},
    {"json", makeJson<JsonLayout::kArray>},
    {"jsonl", makeJson<JsonLayout::kLines>},
    {"markdown",
     [](std::ostream& out, const std::string& zone) -> std::unique_ptr<RowWriter> {
       return std::make_unique<MarkdownWriter>(out, MomentStyle{.zone = zone});
     }},
}};

std::vector<std::string> formatNames() {
  std::vector<std::string> names;
  std::transform(kFormats.begin(), kFormats.end(), std::back_inserter(names),
                 [](const Format& format) { return format.name; });
  return names;
}

std::string checkZone(const std::string& name) {
  return DataTypes::isValidTimezone(name.c_str()) ? "" : "no time zone \"" + name + "\"";
}

}  // namespace

void addOutputOptions(CLI::App& verb, OutputOptions& options) {
  verb.add_option("--format", options.format, "How rows are written")
      ->check(CLI::IsMember(formatNames()))
      ->capture_default_str();
  verb.add_option("--tz", options.zone, "Time zone to show time stamps in (default: UTC)")
      ->check(CLI::Validator(checkZone, "ZONE"));
}

std::unique_ptr<RowWriter> makeRowWriter(const OutputOptions& options, std::ostream& out) {
  const auto* const row = std::find_if(kFormats.begin(), kFormats.end(), [&](const Format& format) {
    return format.name == options.format;
  });
  return row->make(out, options.zone);
}

}  // namespace zeldb
