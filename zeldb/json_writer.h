#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zeldb/row_writer.h"
#include "zeldb/value_text.h"

namespace zeldb {

// How JSON objects, one a row, stand together.
enum class JsonLayout : std::uint8_t {
  kArray,  // elements of one array
  kLines,  // a line each, with nothing between
};

// Writes rows as JSON, each as it comes. Numbers have all their digits, whatever a reader's own
// numbers can hold; binary is hexadecimal text. Bytes that are no UTF-8 become U+FFFD.
class JsonWriter : public RowWriter {
 public:
  JsonWriter(std::ostream& out, MomentStyle moments, JsonLayout layout)
      : out_(out), moments_(std::move(moments)), layout_(layout) {}

  void begin(const std::vector<ResultColumn>& columns) override;
  void row(std::span<const DataTypes::DataValue> values) override;
  void end() override;

 private:
  std::ostream& out_;
  MomentStyle moments_;
  JsonLayout layout_;
  std::vector<unsigned int> types_;
  std::vector<std::string> keys_;  // as they stand in an object, colon included
  std::string object_;
  bool empty_ = true;
};

// The text as a JSON string, in quotes.
std::string jsonString(std::string_view text);

}  // namespace zeldb
