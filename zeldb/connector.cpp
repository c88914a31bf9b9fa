#include "zeldb/connector.h"

#include "zeldb/second_generation_session.h"
#include "zeldb/services_file.h"

namespace zeldb {

Service Connector::service(const std::string& name) const {
  return ServicesFile(options_.services).find(name);
}

KORVEX::Zel::DB::Driver& Connector::driver() {
  if (!plugIn_) {
    plugIn_.emplace(options_.driver);
  }
  return plugIn_->driver();
}

std::unique_ptr<FirstGenerationSession> Connector::connect(const Service& service) {
  return std::make_unique<FirstGenerationSession>(driver(), service);
}

std::unique_ptr<Session> Connector::connect(const Service& service, int generation) {
  if (generation == 1) {
    return connect(service);
  }
  return std::make_unique<SecondGenerationSession>(driver(), service);
}

}  // namespace zeldb
