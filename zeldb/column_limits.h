#pragma once

#include <map>
#include <string>

#include "zeldb/database_product.h"
#include "zeldb/first_generation_session.h"
#include "zeldb/value_limits.h"

namespace zeldb {

// What the product's columns of any table hold less of than their types' values.
ValueLimits limitsOf(const ProductTraits& product);

// The same for the columns of a table, written as in SQL, by what its database knows of each; by
// their names. Columns that the database tells nothing of are missing.
std::map<std::string, ValueLimits> columnLimits(FirstGenerationSession& session,
                                                const ProductTraits& product,
                                                const std::string& table);

}  // namespace zeldb
