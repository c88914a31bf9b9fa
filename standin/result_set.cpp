#include "host/result_set.h"

namespace KORVEX::Zel::DB {

ResultSet::ResultSet(Statement& statement) : statement_(statement) {}

ResultSet::~ResultSet() = default;

}  // namespace KORVEX::Zel::DB
