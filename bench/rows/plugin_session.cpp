#include "rows/plugin_session.h"

#include <stdexcept>

#include "standin/property_data_service.h"

namespace bench {

using namespace KORVEX::Zel;
using namespace KORVEX::Zel::DB;

namespace {

PropertyDataService serviceOf(const DataSource& source, bool safe) {
  return {"bench",
          {{"DSN", source.dsn},
           {"User", source.user},
           {"Password", source.password},
           {"SafeTransfer", safe ? "true" : "false"}}};
}

}  // namespace

FirstGenerationSession::FirstGenerationSession(const DataSource& source)
    : driver_(FactoryDriver("bench")),
      connection_(driver_->createConnection(serviceOf(source, false))) {
  check(connection_->open());
}

FirstGenerationSession::~FirstGenerationSession() {
  driver_->releaseConnection(connection_);
}

void FirstGenerationSession::run(const std::string& sql) {
  int rows = 0;
  check(connection_->executeUpdate(sql, {}, rows));
}

void FirstGenerationSession::fail() {
  std::string errors;
  connection_->getLastErrors(errors);
  throw std::runtime_error("first generation: " + errors);
}

SecondGenerationSession::SecondGenerationSession(const DataSource& source, bool safe)
    : driver_(FactoryDriver("bench")), error_(driver_->createError("")) {
  connection_ = driver_->createConnection2(serviceOf(source, safe), error_);
  check(connection_->connect(error_));
}

SecondGenerationSession::~SecondGenerationSession() {
  driver_->releaseConnection2(connection_, error_);
  driver_->releaseError(error_);
}

void SecondGenerationSession::fail() {
  throw std::runtime_error(error_->getErrorString());
}

}  // namespace bench
