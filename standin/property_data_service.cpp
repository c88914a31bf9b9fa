#include "standin/property_data_service.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <utility>

namespace KORVEX::Zel {
namespace {

struct BoolText {
  const char* text;
  bool value;
};

constexpr std::array<BoolText, 8> kBoolTexts = {{
    {"true", true},
    {"yes", true},
    {"on", true},
    {"1", true},
    {"false", false},
    {"no", false},
    {"off", false},
    {"0", false},
}};

}  // namespace

PropertyDataService::PropertyDataService(std::string name, Properties properties)
    : name_(std::move(name)), properties_(std::move(properties)) {}

PropertyDataService::~PropertyDataService() = default;

std::string PropertyDataService::getPropertyValueAsString(const std::string& key,
                                                          const std::string& defaultValue) const {
  const auto found = properties_.find(key);
  return found != properties_.end() ? found->second : defaultValue;
}

bool PropertyDataService::getPropertyValueAsBool(const std::string& key, bool defaultValue) const {
  const auto found = properties_.find(key);
  if (found == properties_.end()) {
    return defaultValue;
  }
  const auto* const row =
      std::find_if(kBoolTexts.begin(), kBoolTexts.end(), [&](const BoolText& candidate) {
        return strcasecmp(candidate.text, found->second.c_str()) == 0;
      });
  return row != kBoolTexts.end() ? row->value : defaultValue;
}

const std::string& PropertyDataService::getName() const {
  return name_;
}

}  // namespace KORVEX::Zel
