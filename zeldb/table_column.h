#pragma once

#include <string>

namespace zeldb {

// A table's column as the catalogue describes it.
struct TableColumn {
  std::string name;
  unsigned int type;  // type code; decimals carry their digits where the catalogue knows them
  int size;           // longest length of texts and binaries, digits of numbers; 0 unknown
  int scale;          // digits behind the point, of decimals
  bool nullable;
  bool key;  // part of the primary key
};

}  // namespace zeldb
