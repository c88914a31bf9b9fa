// The same rows through the plug-in, in the types of their columns.

#include <cstdlib>
#include <vector>

#include "rows/kinds.h"
#include "rows/plugin_session.h"
#include "rows/reader.h"

namespace bench {

using namespace KORVEX::Zel::DB;

namespace {

std::vector<unsigned int> typesOf(const Query& query) {
  std::vector<unsigned int> types;
  for (const char kind : query.kinds) types.push_back(kindOf(kind).type);
  return types;
}

class FirstGenerationReader : public Reader {
 public:
  explicit FirstGenerationReader(const DataSource& source) : session_(source) {}

  int read(const Query& query) override {
    ResultSet* rows = nullptr;
    session_.check(session_.connection().executeQuery(query.sql, {}, 0, rows));
    const RowDescriptor descriptor(typesOf(query));
    int count = 0;
    bool more = false;
    for (session_.check(rows->next(more)); more; session_.check(rows->next(more)), ++count) {
      Row* row = nullptr;
      session_.check(rows->getData(descriptor, row));
      delete row;
    }
    return count;
  }

 private:
  FirstGenerationSession session_;
};

class SecondGenerationReader : public Reader {
 public:
  SecondGenerationReader(const DataSource& source, bool safe, Rows rows)
      : session_(source, safe), rows_(rows) {}

  int read(const Query& query) override {
    const std::vector<unsigned int> types = typesOf(query);
    const auto columns = static_cast<int>(types.size());
    PreparedStatement* statement = session_.connection().createPreparedStatement(
        query.sql.c_str(), columns, types.data(), false, session_.error());
    session_.check(statement == nullptr ? -1 : statement->execute(session_.error()));
    bool more = false;
    session_.check(statement->nextResultSet(more, session_.error()));
    cells_.assign(types.size(), {});
    texts_.clear();
    for (std::size_t i = 0; i < types.size(); ++i) {
      if (types[i] == DataTypes::kString) texts_.push_back(i);
    }
    int count = 0;
    for (;; ++count) {
      session_.check(statement->hasMoreData(more, session_.error()));
      if (!more) break;
      takeRow(*statement);
    }
    session_.check(session_.connection().releaseStatement(statement, session_.error()));
    return count;
  }

 private:
  void takeRow(PreparedStatement& statement) {
    if (rows_ == Rows::kPacked) {
      const RowInternal2* row = statement.nextRow(session_.error());
      session_.check(row == nullptr ? -1 : 0);
      std::free(const_cast<RowInternal2*>(row));
      return;
    }
    session_.check(statement.nextRow(cells_, session_.error()));
    for (const std::size_t i : texts_) std::free(const_cast<char*>(cells_[i].string));
  }

  SecondGenerationSession session_;
  Rows rows_;
  std::vector<DataTypes::DataValue> cells_;
  std::vector<std::size_t> texts_;
};

}  // namespace

std::unique_ptr<Reader> makeFirstGenerationReader(const DataSource& source) {
  return std::make_unique<FirstGenerationReader>(source);
}

std::unique_ptr<Reader> makeSecondGenerationReader(const DataSource& source, bool safe, Rows rows) {
  return std::make_unique<SecondGenerationReader>(source, safe, rows);
}

}  // namespace bench
