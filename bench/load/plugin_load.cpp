// The same rows through the plug-in's first generation.

#include <memory>
#include <stdexcept>
#include <vector>

#include "host/host.h"
#include "load.h"
#include "standin/property_data_service.h"

namespace bench {

using namespace KORVEX::Zel;
using namespace KORVEX::Zel::DB;

namespace {

void check(ResultCode result, const char* call) {
  if (result != kSuccess)
    throw std::runtime_error(std::string("plug-in load: ") + call + " failed");
}

std::vector<Parameter> makeParameters() {
  std::vector<Parameter> params(kColumns);
  params[0].type = DataTypes::kInteger;
  params[1].type = DataTypes::kLong;
  params[2].type = DataTypes::kFloat;
  params[3].type = DataTypes::kString;
  params[4].type = DataTypes::kBigDateTime;
  params[5].type = DataTypes::createFixedDecimal(18, 4);
  params[6].type = DataTypes::kBoolean;
  return params;
}

void setParameters(std::vector<Parameter>& params, const LoadRow& row) {
  params[0].value.int32 = row.number;
  params[1].value.int64 = row.big;
  params[2].value.float64 = row.real;
  params[3].value.string = row.text.data();
  params[4].value.int64 = row.micros;
  params[5].value.decimal = {0, static_cast<std::uint64_t>(row.coefficient), 4, 18};
  params[6].value.boolean = row.flag ? 1 : 0;
}

}  // namespace

void loadThroughPlugin(const std::string& dsn, int rows, int batchRows) {
  const std::unique_ptr<Driver> driver(FactoryDriver("bench"));
  const PropertyDataService service("bench", {{"DSN", dsn}, {"User", "u"}});
  Connection* connection = driver->createConnection(service);
  if (connection->open() != kSuccess) {
    std::string errors;
    connection->getLastErrors(errors);
    throw std::runtime_error("plug-in load: cannot open: " + errors);
  }
  std::vector<Parameter> params = makeParameters();
  std::vector<int> status;
  for (int first = 0; first < rows; first += batchRows) {
    check(connection->createBatch(kInsert), "createBatch");
    for (int row = first; row < first + batchRows && row < rows; ++row) {
      const LoadRow values = makeRow(row);
      setParameters(params, values);
      check(connection->addToBatch(params), "addToBatch");
    }
    check(connection->executeBatch(status), "executeBatch");
    check(connection->commit(), "commit");
  }
  driver->releaseConnection(connection);
}

}  // namespace bench
