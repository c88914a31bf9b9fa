#pragma once

#include <optional>
#include <string_view>

namespace zeldb {

class FirstGenerationSession;

// Databases that differ in what a load has to know.
enum class Product { kSqlite, kPostgresql, kMariadb, kOther };

struct ProductTraits {
  Product product;
  std::string_view name;
  // What a column of the product keeps of a value; more would be cut, or become NULL, in silence.
  int secondDigits;                // of a time stamp
  std::optional<unsigned> digits;  // of a decimal, where it is stored as a double
  bool infinity;                   // in floats
  bool notANumber;
  bool daysOnly;  // whether dates have no time of day
  // Whether statements of the user and the driver can both use savepoints.
  bool savepoints;
  // Whether the standard's catalogue is there: information_schema.
  bool informationSchema;
};

// Asks the database what it is. Throws Failure when the connection is lost.
const ProductTraits& productOf(FirstGenerationSession& session);

}  // namespace zeldb
