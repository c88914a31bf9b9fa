#include "zeldb/connector.h"

#include "zeldb/first_generation_session.h"
#include "zeldb/services_file.h"

namespace zeldb {

Service Connector::service(const std::string& name) const {
  return ServicesFile(options_.services).find(name);
}

std::unique_ptr<Session> Connector::connect(const Service& service) {
  if (!plugIn_) {
    plugIn_.emplace(options_.driver);
  }
  return std::make_unique<FirstGenerationSession>(plugIn_->driver(), service);
}

}  // namespace zeldb
