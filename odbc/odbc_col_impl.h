#pragma once

#include <cstring>
#include <string>

#include "odbc/column_rules.h"
#include "odbc/odbc_cell.h"
#include "odbc/odbc_col.h"

namespace KORVEX::Zel::DB::ODBC {

// A result column: describes itself when it is made, and pulls its value after every fetch. What
// to call and how large the buffer is is settled once, not once a row.
class OdbcColImpl final : public OdbcCell<OdbcCol> {
 public:
  using OdbcCell<OdbcCol>::GetData;
  using OdbcCell<OdbcCol>::OdbcCell;

  // Asks the driver for name, type, sizes and sign (SQLDescribeCol, SQLColAttribute) and chooses
  // the C type.
  e_Status Initialize() override;

  e_Status SetCType(short cType, int lengthBytes) override;
  e_Status GetName(std::string& name) override;
  e_Status GetData(ByteStore* value) override;
  e_Status GetBytes(std::span<const unsigned char>& bytes) override {
    return OdbcDataImpl::GetBytes(bytes);
  }

  // Reads the value of the current row (SQLGetData). When that fails the cell is NULL.
  e_Status GetData() {  // NOLINT(bugprone-virtual-near-miss)
    const e_Status status = plan_.read == CellRead::kFixed ? readFixed() : readVarying();
    if (status != e_Ok) content_.indicator = SQL_NULL_DATA;  // never the value of an earlier row
    return status;
  }

 private:
  // SQLDescribeCol into name, type, size, digits and nullability.
  e_Status describe();
  // A numeric SQLColAttribute.
  e_Status attribute(SQLUSMALLINT field, SQLLEN& value);
  // SQLGetData with the indicator zeroed first; some drivers leave it alone.
  SQLRETURN getData(SQLSMALLINT cType, unsigned char* data, SQLLEN bytes) {
    content_.indicator = 0;
    return SQLGetData(stmtHandle_, static_cast<SQLUSMALLINT>(number_), cType, data, bytes,
                      &content_.indicator);
  }
  // Inlined by force: it is all that most columns need.
  [[gnu::always_inline]] e_Status readFixed() {
    ByteStore& buffer = content_.buffer;
    const std::uint32_t bytes = plan_.bytes;
    if (buffer.Length() != bytes) {
      buffer.Truncate(0, 0);
      if (buffer.Extend(bytes, 0) != bytes) return e_Error;
    }
    unsigned char* const data = buffer.Data();
    std::memset(data, 0, kLargestFixedBytes);  // the block has room for it
    return statusFromOwner(getData(content_.cType, data, bytes));
  }
  [[gnu::always_inline]] e_Status readVarying() {
    if (plan_.read == CellRead::kLong) return readLongData();
    return plan_.read == CellRead::kBigInt ? readBigInt() : e_Ok;
  }
  // Reads and keeps a 64-bit integer that comes as text.
  e_Status readBigInt();
  bool keepUsualBigInt(SQLRETURN rc);
  e_Status keepBigInt(SQLRETURN rc);
  e_Status readLongData();
  e_Status failWithoutRecord();
  e_Status readPieces(SQLRETURN rc, std::int64_t request);

  static constexpr std::size_t kLargestFixedBytes = 16;

  ByteStore name_;
  std::int16_t nameLength_ = 0;
  ByteStore text_;  // a 64-bit integer as the driver spells it
  std::uint32_t displaySize_ = 0;
  // How the value is fetched; follows the C type.
  CellReadRule plan_ = kNoCellRead;
};

}  // namespace KORVEX::Zel::DB::ODBC
