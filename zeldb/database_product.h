#pragma once

#include <optional>
#include <string_view>

namespace zeldb {

class FirstGenerationSession;

// Databases that differ in what a load has to know.
enum class Product { kSqlite, kPostgresql, kMariadb, kOther };

// What a transaction goes on from after one of its statements has failed.
enum class Resumption {
  kSavepoint,  // one that was set before
  kStatement,  // the failed statement, of which nothing is left
  kNothing,    // the transaction has to be rolled back
};

struct ProductTraits {
  Product product;
  std::string_view name;
  // What a column of the product keeps of a value; more would be cut, or become NULL, in silence.
  int secondDigits;                // of a time stamp
  std::optional<unsigned> digits;  // of a decimal, where it is stored as a double
  bool infinity;                   // in floats
  bool notANumber;
  bool daysOnly;  // whether dates have no time of day
  Resumption resumption;
  // Whether the standard's catalogue is there: information_schema.
  bool informationSchema;
};

// Asks the database what it is. Throws Failure when the connection is lost.
const ProductTraits& productOf(FirstGenerationSession& session);

}  // namespace zeldb
