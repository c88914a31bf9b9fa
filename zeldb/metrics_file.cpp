#include "zeldb/metrics_file.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "zeldb/output_file.h"

namespace zeldb {
namespace {

constexpr auto kInterval = std::chrono::seconds(2);

struct Metric {
  const char* name;
  const char* help;
  LoadCounts::Count LoadCounts::* count;
};

constexpr std::array<Metric, 8> kMetrics = {{
    {"zeldb_rows_read_total", "Rows read from the source.", &LoadCounts::rowsRead},
    {"zeldb_rows_committed_total", "Rows committed.", &LoadCounts::rowsCommitted},
    {"zeldb_rows_rejected_total", "Rows named in the rejects file.", &LoadCounts::rowsRejected},
    {"zeldb_batches_total", "Transactions committed.", &LoadCounts::batches},
    {"zeldb_retries_total", "Batches sent again, first connections tried again.",
     &LoadCounts::retries},
    {"zeldb_reconnects_total", "Connections made anew.", &LoadCounts::reconnects},
    {"zeldb_in_doubt_total", "Commits whose answer was lost.", &LoadCounts::inDoubt},
    {"zeldb_read_bytes_total", "Bytes read from the source.", &LoadCounts::bytesRead},
}};

std::string escaped(const std::string& text) {
  std::string out;
  for (const char character : text) {
    out += character == '\n' ? "\\n" : std::string(character == '"' || character == '\\', '\\');
    out.append(character == '\n' ? 0 : 1, character);
  }
  return out;
}

void append(std::string& text, const char* name, const char* help, const char* kind,
            const std::string& labels, const std::string& value) {
  text += fmt::format("# HELP {0} {1}\n# TYPE {0} {2}\n{0}{{{3}}} {4}\n", name, help, kind, labels,
                      value);
}

}  // namespace

MetricsFile::MetricsFile(std::string path, const std::string& verb, const std::string& service,
                         const std::string& table, const LoadCounts& counts)
    : path_(std::move(path)),
      labels_(fmt::format("verb=\"{}\",service=\"{}\",table=\"{}\"", verb, escaped(service),
                          escaped(table))),
      counts_(counts) {
  write(std::nullopt);
}

void MetricsFile::write(std::optional<ExitCode> ended) const {
  if (path_.empty()) {
    return;
  }
  std::string text;
  for (const Metric& metric : kMetrics) {
    append(text, metric.name, metric.help, "counter", labels_,
           std::to_string((counts_.*metric.count).load()));
  }
  const std::chrono::duration<double> taken = Clock::now() - started_;
  append(text, "zeldb_duration_seconds", "Time since the start.", "gauge", labels_,
         fmt::format("{:.3f}", taken.count()));
  append(text, "zeldb_running", "1 while the load runs.", "gauge", labels_, ended ? "0" : "1");
  if (ended) {
    append(text, "zeldb_exit_code", "What the load ended with.", "gauge", labels_,
           std::to_string(static_cast<int>(*ended)));
  }
  OutputFile file(path_);
  try {
    file.stream() << text;
  } catch (const std::ios_base::failure&) {
    file.fail();
  }
  file.complete();
}

void MetricsFile::refresh() {
  if (!path_.empty() && Clock::now() - written_ >= kInterval) {
    written_ = Clock::now();
    write(std::nullopt);
  }
}

}  // namespace zeldb
