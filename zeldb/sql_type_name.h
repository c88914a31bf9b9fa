#pragma once

#include <string>

#include "zeldb/database_product.h"

namespace zeldb {

// The SQL name of a column that holds all values of the type, on the product. A column of a key may
// get a type that holds less, where the product asks for that.
std::string sqlTypeName(unsigned int type, const ProductTraits& product, bool key);

}  // namespace zeldb
