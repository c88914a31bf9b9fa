#include "host/database_metadata.h"

namespace KORVEX::Zel::DB {

DatabaseMetadata::DatabaseMetadata(Connection& connection) : connection_(connection) {}

DatabaseMetadata::~DatabaseMetadata() = default;

}  // namespace KORVEX::Zel::DB
