#include "host/statement.h"

namespace KORVEX::Zel::DB {

Statement::Statement(Connection& connection) : connection_(connection) {}

Statement::Statement(Connection& connection, const std::string& sql)
    : connection_(connection), sql_(sql) {}

Statement::~Statement() = default;

}  // namespace KORVEX::Zel::DB
