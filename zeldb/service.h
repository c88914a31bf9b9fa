#pragma once

#include <string>

#include "standin/property_data_service.h"

namespace zeldb {

// A data service as the services file describes it.
struct Service {
  std::string name;
  KORVEX::Zel::PropertyDataService::Properties properties;  // what the driver reads
};

}  // namespace zeldb
