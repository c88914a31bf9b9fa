#include "zeldb/secrets.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <mutex>
#include <vector>

namespace zeldb {
namespace {

constexpr std::string_view kMask = "***";
constexpr std::array<std::string_view, 2> kKeys = {"PWD=", "PASSWORD="};
// Of shorter ones only whole words are taken: they are part of too much.
constexpr std::size_t kShortest = 4;

struct Known {
  std::mutex mutex;
  std::vector<std::string> secrets;
};

Known& known() {
  static Known holder;
  return holder;
}

bool isWordPart(std::string_view text, std::size_t at) {
  return at < text.size() && std::isalnum(static_cast<unsigned char>(text[at])) != 0;
}

bool isSecretAt(std::string_view text, std::size_t at, const std::string& secret) {
  return text.substr(at).starts_with(secret) &&
         (secret.size() >= kShortest ||
          ((at == 0 || !isWordPart(text, at - 1)) && !isWordPart(text, at + secret.size())));
}

// Where the value of a key of a connection string ends that starts here.
std::size_t endOfValue(std::string_view text, std::size_t start) {
  const bool braced = text.substr(start).starts_with('{');
  return std::min(text.find_first_of(braced ? "}" : ";\"' ", start), text.size());
}

// How much of the text is to be masked here, behind how much that stays.
struct Found {
  std::size_t kept = 0;
  std::size_t masked = 0;
};

Found secretAt(std::string_view text, std::size_t at, const std::vector<std::string>& secrets) {
  for (const std::string& secret : secrets) {
    if (isSecretAt(text, at, secret)) {
      return {0, secret.size()};
    }
  }
  for (const std::string_view key : kKeys) {
    if (text.size() - at >= key.size() &&
        strncasecmp(text.data() + at, key.data(), key.size()) == 0) {
      return {key.size(), endOfValue(text, at + key.size()) - at - key.size()};
    }
  }
  return {};
}

}  // namespace

void Secrets::add(const std::string& secret) {
  Known& holder = known();
  const std::lock_guard lock(holder.mutex);
  const bool isKnown =
      std::find(holder.secrets.begin(), holder.secrets.end(), secret) != holder.secrets.end();
  if (!secret.empty() && !isKnown) {
    holder.secrets.push_back(secret);
    // One may be the start of another.
    std::sort(holder.secrets.begin(), holder.secrets.end(),
              [](const auto& one, const auto& other) { return one.size() > other.size(); });
  }
}

std::string Secrets::masked(std::string_view text) {
  Known& holder = known();
  const std::lock_guard lock(holder.mutex);
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    const Found found = secretAt(text, at, holder.secrets);
    if (found.masked == 0) {
      out += text[at++];
      continue;
    }
    out.append(text.substr(at, found.kept)).append(kMask);
    at += found.kept + found.masked;
  }
  return out;
}

}  // namespace zeldb
