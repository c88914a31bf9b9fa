#pragma once

#include <map>
#include <string>

#include "host/data_service.h"

namespace KORVEX::Zel {

// A data service whose properties are a map of texts.
class ZEL_EXPORT PropertyDataService : public DataService {
 public:
  using Properties = std::map<std::string, std::string>;

  PropertyDataService(std::string name, Properties properties);
  ~PropertyDataService() override;

  std::string getPropertyValueAsString(const std::string& key,
                                       const std::string& defaultValue) const override;
  // "true", "yes", "on" and "1" are true, "false", "no", "off" and "0" are false, in any case of
  // letters. Any other text gives the default.
  bool getPropertyValueAsBool(const std::string& key, bool defaultValue) const override;
  const std::string& getName() const override;

 private:
  std::string name_;
  Properties properties_;
};

}  // namespace KORVEX::Zel
