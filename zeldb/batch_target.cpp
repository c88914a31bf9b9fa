#include "zeldb/batch_target.h"

#include <utility>

namespace zeldb {

BatchTarget::BatchTarget(Connect connect, std::string sql)
    : connect_(std::move(connect)), sql_(std::move(sql)), session_(connect_()) {}

Session& BatchTarget::session() {
  if (!session_) {
    session_ = connect_();
  }
  return *session_;
}

BatchWriter& BatchTarget::writer() {
  if (!writer_) {
    writer_ = session().insert(sql_);
  }
  return *writer_;
}

// The old writer goes first: a session has room for one.
void BatchTarget::rollback() noexcept {
  writer_.reset();
  if (session_) {
    session_->rollback();
  }
}

void BatchTarget::disconnect() noexcept {
  writer_.reset();
  session_.reset();
}

}  // namespace zeldb
