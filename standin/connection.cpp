#include "host/connection.h"

#include <cstring>
#include <utility>

namespace KORVEX::Zel::DB {

Connection::Connection(const std::string&, const std::string&, const std::string& user,
                       const std::string& password, const std::string&)
    : user_(user), password_(password) {}

Connection::~Connection() {
  explicit_bzero(password_.data(), password_.size());
}

std::string Connection::getDriverProperty(const std::string&) {
  return {};
}

void Connection::getLastErrors(std::string& errors) {
  errors = std::exchange(lastErrors_, {});
}

}  // namespace KORVEX::Zel::DB
