#pragma once

#include <string>

#include "host/export.h"

namespace KORVEX::Zel {

// One configured data service: a name and properties that say how to connect.
class ZEL_EXPORT DataService {
 public:
  virtual ~DataService();

  // The property's text, or the default when the service does not have it.
  virtual std::string getPropertyValueAsString(const std::string& key,
                                               const std::string& defaultValue) const = 0;
  // The property as a bool, or the default when the service does not have it.
  virtual bool getPropertyValueAsBool(const std::string& key, bool defaultValue) const = 0;
  virtual const std::string& getName() const = 0;
};

}  // namespace KORVEX::Zel
