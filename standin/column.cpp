#include "host/column.h"

namespace KORVEX::Zel::DB {

Column::Column() = default;

Column::Column(const std::string& name, int position, const unsigned int& type, int size, int scale,
               bool nullable, bool primaryKey)
    : name_(name),
      position_(position),
      type_(type),
      size_(size),
      scale_(scale),
      nullable_(nullable),
      primaryKey_(primaryKey) {}

Column::Column(const Column&) = default;

Column& Column::operator=(const Column&) = default;

Column::~Column() = default;

}  // namespace KORVEX::Zel::DB
