#include "host/connection.h"

#include <utility>

namespace KORVEX::Zel::DB {

Connection::Connection(const std::string&, const std::string&, const std::string& user,
                       const std::string& password, const std::string&)
    : user_(user), password_(password) {}

Connection::~Connection() = default;

std::string Connection::getDriverProperty(const std::string&) {
  return {};
}

void Connection::getLastErrors(std::string& errors) {
  errors = std::exchange(lastErrors_, {});
}

}  // namespace KORVEX::Zel::DB
