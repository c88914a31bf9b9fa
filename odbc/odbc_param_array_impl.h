#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "odbc/odbc_param_impl.h"

namespace KORVEX::Zel::DB::ODBC {

// A parameter with a column of values, one a row of a batch, bound as one column-wise array.
//
// The values of all rows so far stay for the life of the object; a batch starts anew when its
// statement is prepared anew. Numbers and structures lie one behind the other in the cell's buffer.
// Texts and bytes are collected one behind the other and laid out in slots of one width when they
// are bound, since only then the widest is known.
class OdbcParamArrayImpl final : public OdbcParamImpl {
 public:
  using OdbcParamImpl::OdbcParamImpl;

  // Asks the driver for the parameter's size (SQLDescribeParam); its type is not used. A driver
  // that cannot describe parameters cannot do batches.
  e_Status Initialize() override;

  // Only the first call of each that has an effect counts.
  e_Status SetSqlType(short sqlType, unsigned int columnSize, short decimalDigits) override;
  e_Status SetCType(short cType, int lengthBytes) override;
  e_Status SetDirection(short direction) override;

  bool IsDecided() const override { return sqlTypeFixed_ && cTypeFixed_ && directionFixed_; }

  e_Status SetText(std::string_view text, bool isNull) override;

  // Append a row. e_Error, and no row, for a value of another size than the rows before.
  e_Status SetData(bool value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(char value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(short value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(int value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(long value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(unsigned char value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(unsigned short value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(unsigned int value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(unsigned long value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(double value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(const TIMESTAMP_STRUCT& value, bool isNull) override {
    return append(value, isNull);
  }
  e_Status SetData(const TIME_STRUCT& value, bool isNull) override { return append(value, isNull); }
  e_Status SetData(ByteStore* value, bool binary, bool isNull) override;
  e_Status SetData(unsigned int typeCode, const DataTypes::DataValue& value, bool isNull) override;
  // There is no single value: these change nothing.
  e_Status SetData() override { return e_Ok; }
  e_Status GetData(char&) override { return e_Ok; }
  e_Status GetData(bool&) override { return e_Ok; }
  e_Status GetData(short&) override { return e_Ok; }
  e_Status GetData(int&) override { return e_Ok; }
  e_Status GetData(long&) override { return e_Ok; }
  e_Status GetData(unsigned char&) override { return e_Ok; }
  e_Status GetData(unsigned short&) override { return e_Ok; }
  e_Status GetData(unsigned int&) override { return e_Ok; }
  e_Status GetData(unsigned long&) override { return e_Ok; }
  e_Status GetData(double&) override { return e_Ok; }
  e_Status GetData(ByteStore*) override { return e_Ok; }
  e_Status GetData(TIMESTAMP_STRUCT&) override { return e_Ok; }
  e_Status GetData(TIME_STRUCT&) override { return e_Ok; }

  // Lays the rows out and hands them over (SQLBindParameter). What the driver is given stays in
  // place until the next Bind that has something new. e_Error without a call when the rows do not
  // fit into memory.
  e_Status Bind() override;
  // Forgets rows from `rows` on; adds NULL rows up to `rows`.
  void CutRows(int rows) override;
  void PadRows(int rows) override {
    if (rows_ < rows) padFar(rows);
  }

 private:
  // How the rows so far are held; the first value decides. Rows before it can only be padding.
  enum class Layout { kUndecided, kFixed, kCollected };

  // Where a collected value lies in `collected_`.
  struct Record {
    std::uint32_t offset;
    std::uint32_t bytes;
  };

  template <typename Value>
  e_Status append(const Value& value, bool isNull) {
    // Behind the first row there is mostly nothing to decide: appendFixed's work in place.
    const bool usual = !isNull && layout_ == Layout::kFixed && valueBytes_ == sizeof value;
    const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
    if (usual && content_.buffer.Append(bytes, sizeof value) != 0) return appendIndicator(0);
    return appendFixed(&value, sizeof value, isNull);
  }
  e_Status appendFixed(const void* value, std::uint32_t bytes, bool isNull);
  // A text or bytes, of which what the driver described is kept.
  e_Status appendCut(std::span<const unsigned char> value, bool binary, bool isNull);
  e_Status appendCollected(std::span<const unsigned char> value, bool text, std::int32_t indicator);
  // Ends a row: its bytes are in place, this counts it.
  e_Status appendIndicator(std::int32_t indicator);
  bool decideLayout(Layout layout, std::uint32_t valueBytes);
  bool appendNulls(std::size_t rows);
  void padFar(int rows);
  // Whether longer values are cut to the size that the driver described.
  bool cutsToDescribedSize() const;
  std::uint32_t slotBytes() const;
  // Lays the collected values out for the driver, a slot a row, the rest of it zero.
  bool packSlots(std::uint32_t slot);
  // Makes the array of indicators that the driver reads.
  void widenIndicators();

  bool sqlTypeFixed_ = false;
  bool cTypeFixed_ = false;
  bool directionFixed_ = false;
  std::uint32_t describedBytes_ = 0;  // 0: the driver does not know
  bool lengthIsDescribed_ = true;     // the cell's length comes from the description
  Layout layout_ = Layout::kUndecided;
  std::uint32_t valueBytes_ = 0;  // of a row, fixed layout
  std::int32_t rows_ = 0;
  ByteStore indicators_;  // a 32-bit entry a row
  bool variableLength_ = false;
  std::uint32_t width_ = 0;  // of the widest collected value, a text's terminator included
  ByteStore collected_;
  std::vector<Record> records_;
  // What the driver knows by address while the parameter is bound.
  ByteStore packed_;
  std::vector<SQLLEN> boundIndicators_;
};

}  // namespace KORVEX::Zel::DB::ODBC
