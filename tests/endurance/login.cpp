// login GENERATION DSN: connects as the user in ZEL_TEST_USER with the password that is the first
// line of its input, runs a statement that fails, and prints everything the plug-in says. When the
// connection is released, it says "released" and waits for the end of its input, so that somebody
// may look for the password in its memory: its own is wiped.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "host/data_service.h"
#include "tests/endurance/session.h"
#include "zeldb/plug_in.h"

namespace {

class Login : public KORVEX::Zel::DataService {
 public:
  explicit Login(const char* dsn) : dsn_(dsn) {
    if (std::fgets(password_, sizeof password_, stdin) == nullptr) std::exit(2);
    password_[std::strcspn(password_, "\n")] = '\0';
  }
  ~Login() override { explicit_bzero(password_, sizeof password_); }
  Login(const Login&) = delete;
  Login& operator=(const Login&) = delete;

  std::string getPropertyValueAsString(const std::string& key,
                                       const std::string& defaultValue) const override {
    const char* const user = std::getenv("ZEL_TEST_USER");
    if (key == "DSN") return dsn_;
    if (key == "Password") return password_;
    return key == "User" && user != nullptr ? user : defaultValue;
  }
  bool getPropertyValueAsBool(const std::string&, bool defaultValue) const override {
    return defaultValue;
  }
  const std::string& getName() const override { return name_; }

 private:
  const std::string name_ = "login";
  const std::string dsn_;
  char password_[128] = {};
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::setvbuf(stdin, nullptr, _IONBF, 0);
  endurance::recordLogs();
  zeldb::PlugIn plugIn(zeldb::PlugIn::defaultLibrary());
  {
    const Login login(argv[2]);
    const auto session = endurance::makeSession(static_cast<int>(std::strtol(argv[1], nullptr, 10)),
                                                plugIn.driver(), login);
    if (!session->open() || !session->run("select nothing from nowhere")) {
      std::printf("%s\n", session->failure().text.c_str());
    }
  }
  std::printf("released\n");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
}
