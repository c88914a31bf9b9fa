// The same rows through the plug-in.

#include <cstdio>
#include <cstring>
#include <vector>

#include "rows/kinds.h"
#include "rows/plugin_session.h"
#include "rows/writer.h"

namespace bench {

using namespace KORVEX::Zel::DB;

SampleRow makeRow(int index) {
  SampleRow row{};
  row.number = index;
  row.big = index * 1000000007L;
  row.real = index * 0.25;
  std::snprintf(row.text.data(), row.text.size(), "row number %d", index);
  row.micros = 1700000000000000L + index * 1000003L;
  row.coefficient = index * 12345L;
  row.flag = index % 2 == 0;
  return row;
}

namespace {

std::vector<unsigned int> rowTypes() {
  std::vector<unsigned int> types;
  for (const char kind : kRowKinds) types.push_back(kindOf(kind).type);
  return types;
}

class FirstGenerationBatchWriter : public Writer {
 public:
  FirstGenerationBatchWriter(const DataSource& source, int batchRows)
      : session_(source), batchRows_(batchRows), params_(kColumns) {
    const std::vector<unsigned int> types = rowTypes();
    for (std::size_t i = 0; i < types.size(); ++i) params_[i].type = types[i];
  }

  void write(const std::string& insert, int rows) override {
    Connection& connection = session_.connection();
    for (int first = 0; first < rows; first += batchRows_) {
      session_.check(connection.createBatch(insert));
      for (int row = first; row < first + batchRows_ && row < rows; ++row) {
        const SampleRow values = makeRow(row);
        set(values);
        session_.check(connection.addToBatch(params_));
      }
      std::vector<int> status;
      session_.check(connection.executeBatch(status));
      session_.check(connection.commit());
    }
  }

 private:
  // The text is read where it lies.
  void set(const SampleRow& row) {
    params_[0].value.int32 = row.number;
    params_[1].value.int64 = row.big;
    params_[2].value.float64 = row.real;
    params_[3].value.string = row.text.data();
    params_[4].value.int64 = row.micros;
    params_[5].value.decimal = {0, static_cast<std::uint64_t>(row.coefficient), 4, 18};
    params_[6].value.boolean = row.flag ? 1 : 0;
  }

  FirstGenerationSession session_;
  int batchRows_;
  std::vector<Parameter> params_;
};

// A packed row as the server lays it out: the values back to back behind the offset table.
class PackedSample {
 public:
  const RowInternal2* pack(const SampleRow& row) {
    end_ = RowInternal2::kHeaderBytes + (kColumns + 1) * sizeof(int) + 4;
    column_ = 0;
    add(&row.number, sizeof row.number);
    add(&row.big, sizeof row.big);
    add(&row.real, sizeof row.real);
    add(row.text.data(), std::strlen(row.text.data()) + 1);
    add(&row.micros, sizeof row.micros);
    DataTypes::DataValue amount;
    amount.decimal = {0, static_cast<std::uint64_t>(row.coefficient), 4, 18};
    add(&amount.decimal, sizeof amount.decimal);
    add(&row.flag, sizeof row.flag);
    setOffset();
    return reinterpret_cast<const RowInternal2*>(bytes_);
  }

 private:
  void setOffset() {
    const int offset = static_cast<int>(end_);
    std::memcpy(bytes_ + RowInternal2::kHeaderBytes + column_ * sizeof offset, &offset,
                sizeof offset);
  }
  void add(const void* value, std::size_t bytes) {
    setOffset();
    std::memcpy(bytes_ + end_, value, bytes);
    end_ += bytes;
    ++column_;
  }

  alignas(RowInternal2) unsigned char bytes_[512] = {};
  std::size_t end_ = 0;
  std::size_t column_ = 0;
};

class SecondGenerationRowWriter : public Writer {
 public:
  SecondGenerationRowWriter(const DataSource& source, bool safe) : session_(source, safe) {}

  void write(const std::string& insert, int rows) override {
    PreparedStatement* statement = session_.connection().createPreparedStatement(
        insert.c_str(), 0, nullptr, false, session_.error());
    session_.check(statement == nullptr ? -1 : 0);
    std::vector<int> columns = {0, 1, 2, 3, 4, 5, 6};
    const std::vector<unsigned int> types = rowTypes();
    session_.check(statement->setBindings(columns, types.data(), session_.error()));
    PackedSample packed;
    for (int i = 0; i < rows; ++i) {
      const SampleRow row = makeRow(i);
      session_.check(statement->execute(packed.pack(row), session_.error()));
    }
    session_.check(session_.connection().releaseStatement(statement, session_.error()));
    session_.check(session_.connection().commit(session_.error()));
  }

 private:
  SecondGenerationSession session_;
};

}  // namespace

std::unique_ptr<Writer> makeFirstGenerationBatchWriter(const DataSource& source, int batchRows) {
  return std::make_unique<FirstGenerationBatchWriter>(source, batchRows);
}

std::unique_ptr<Writer> makeSecondGenerationRowWriter(const DataSource& source, bool safe) {
  return std::make_unique<SecondGenerationRowWriter>(source, safe);
}

namespace {

struct TypeNames {
  const char* marks;  // what the data source's name starts with
  const char* columns;
};

constexpr TypeNames kTypeNames[] = {
    {"PostgreSQL",
     "n integer, b bigint, d double precision, s varchar(20), t timestamp(6),"
     " a numeric(18,4), f boolean"},
    {"MariaDB",
     "n integer, b bigint, d double, s varchar(20), t datetime(6), a decimal(18,4), f bit(1)"},
    {"", "n integer, b bigint, d double, s varchar(20), t timestamp, a decimal(18,4), f bit"},
};

}  // namespace

bool isPostgresql(const DataSource& source) {
  return source.dsn.starts_with(kTypeNames[0].marks);
}

void createTable(const DataSource& source, const std::string& table) {
  const TypeNames* names = kTypeNames;
  while (!source.dsn.starts_with(names->marks)) ++names;
  FirstGenerationSession session(source);
  session.run("drop table if exists " + table);
  session.run("create table " + table + " (" + names->columns + ")");
  session.check(session.connection().commit());
}

}  // namespace bench
