#pragma once

#include <string>
#include <string_view>

namespace zeldb {

// What nobody may read in messages, logs and files: passwords, also where a driver repeats them.
class Secrets {
 public:
  // Every text is to be masked from now on where it holds the secret.
  static void add(const std::string& secret);

  // The text with "***" for every secret, and for whatever stands behind "PWD=" or "Password=".
  static std::string masked(std::string_view text);
};

}  // namespace zeldb
