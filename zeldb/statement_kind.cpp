#include "zeldb/statement_kind.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace zeldb {
namespace {

constexpr std::array<std::string_view, 16> kUpdateWords = {
    "alter", "analyze", "comment", "create", "delete", "drop",     "grant",  "insert",
    "merge", "rename",  "replace", "revoke", "set",    "truncate", "update", "vacuum",
};

// Removes white space and comments from the front.
void skipBlanks(std::string_view& sql) {
  for (;;) {
    sql.remove_prefix(std::min(sql.find_first_not_of(" \t\r\n"), sql.size()));
    const bool lineComment = sql.starts_with("--");
    if (!lineComment && !sql.starts_with("/*")) {
      return;
    }
    const std::string_view closing = lineComment ? "\n" : "*/";
    sql.remove_prefix(std::min(sql.find(closing, 2), sql.size() - closing.size()) + closing.size());
  }
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char character) {
    return static_cast<char>(std::tolower(character));
  });
  return lower;
}

// The letters at the front of a text in lower case.
std::string_view firstWord(std::string_view lower) {
  return lower.substr(0, lower.find_first_not_of("abcdefghijklmnopqrstuvwxyz"));
}

}  // namespace

bool isUpdateStatement(std::string_view sql) {
  skipBlanks(sql);
  const std::string lower = lowerCase(sql);
  const std::string_view word = firstWord(lower);
  return std::find(kUpdateWords.begin(), kUpdateWords.end(), word) != kUpdateWords.end() &&
         lower.find("returning") == std::string::npos;
}

bool isStatement(std::string_view text) {
  skipBlanks(text);
  const std::string lower = lowerCase(text);
  const std::size_t length = firstWord(lower).size();
  return length > 0 && length < lower.size() &&
         std::string_view(" \t\r\n(/").find(lower[length]) != std::string_view::npos;
}

}  // namespace zeldb
