#include "host/driver.h"

namespace KORVEX::Zel::DB {

const std::string Driver::PROPERTY_KEY_DATABASE_TYPE = "DatabaseType";

Driver::Driver(const std::string& name) : name_(name) {}

Driver::~Driver() = default;

}  // namespace KORVEX::Zel::DB
