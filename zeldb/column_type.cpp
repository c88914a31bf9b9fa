#include "zeldb/column_type.h"

#include <fmt/format.h>

#include <algorithm>

#include "datatypes/data_types.h"
#include "zeldb/failure.h"

namespace zeldb {
namespace {

// Where the item at the front of the list ends: at a comma outside parentheses.
std::size_t endOfItem(std::string_view list) {
  int depth = 0;
  for (std::size_t at = 0; at < list.size(); ++at) {
    depth += list[at] == '(' ? 1 : list[at] == ')' ? -1 : 0;
    if (list[at] == ',' && depth == 0) {
      return at;
    }
  }
  return list.size();
}

}  // namespace

unsigned int typeFromName(const std::string& name) {
  const unsigned int type = DataTypes::stringToType(name);
  // Reading is lenient with decimals ("decimal(x,99)"); a type that names itself the same is meant.
  if (type == DataTypes::kUnknown ||
      (DataTypes::typeToString(type) != name && DataTypes::typeToLegacyString(type) != name)) {
    throw Failure(ExitCode::kUsage, fmt::format("\"{}\" is no type", name));
  }
  return type;
}

std::map<std::string, unsigned int> typesFromList(std::string_view list) {
  std::map<std::string, unsigned int> types;
  while (!list.empty()) {
    const std::string_view item = list.substr(0, endOfItem(list));
    list.remove_prefix(std::min(item.size() + 1, list.size()));
    const std::size_t colon = item.rfind(':');
    if (colon == 0 || colon == std::string_view::npos) {
      throw Failure(ExitCode::kUsage, fmt::format("types: \"{}\" is not NAME:TYPE", item));
    }
    const std::string name(item.substr(0, colon));
    if (!types.emplace(name, typeFromName(std::string(item.substr(colon + 1)))).second) {
      throw Failure(ExitCode::kUsage, fmt::format("types: \"{}\" is named twice", name));
    }
  }
  return types;
}

bool isUnsizedDecimal(unsigned int type) {
  return DataTypes::typeNumber(type) == DataTypes::kFixedDecimal &&
         DataTypes::precisionOf(type) == 0;
}

bool isNumberType(unsigned int type) {
  switch (DataTypes::typeNumber(type)) {
    case DataTypes::kInt16:
    case DataTypes::kInteger:
    case DataTypes::kLong:
    case DataTypes::kFloat:
    case DataTypes::kMoney:
    case DataTypes::kInterval:
    case DataTypes::kFixedDecimal:
      return true;
    default:
      return DataTypes::typeNumber(type) >= DataTypes::kMoney1 &&
             DataTypes::typeNumber(type) <= DataTypes::kMoney15;
  }
}

}  // namespace zeldb
