#include "host/data_service.h"

namespace KORVEX::Zel {

DataService::~DataService() = default;

}  // namespace KORVEX::Zel
