#include "zeldb/nearest_name.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

namespace zeldb {
namespace {

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::size_t editDistance(std::string_view left, std::string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < right.size(); ++j) {
      const std::size_t changed = diagonal + (lower(left[i]) == lower(right[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::optional<std::string> nearestName(std::string_view name,
                                       const std::vector<std::string>& candidates) {
  std::optional<std::string> nearest;
  std::size_t best = std::max<std::size_t>(2, name.size() / 3) + 1;
  for (const std::string& candidate : candidates) {
    const std::size_t distance = editDistance(name, candidate);
    if (distance < best && distance < std::max(name.size(), candidate.size())) {
      best = distance;
      nearest = candidate;
    }
  }
  return nearest;
}

std::string quotedList(std::vector<std::string> names) {
  std::sort(names.begin(), names.end());
  return names.empty() ? "none" : fmt::format("\"{}\"", fmt::join(names, "\", \""));
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

}  // namespace zeldb
