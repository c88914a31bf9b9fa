#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "odbc/odbc_impl.h"
#include "tests/odbc/odbc_fixture.h"

namespace {

using KORVEX::Zel::DB::handleOdbcError;
using KORVEX::Zel::DB::ODBC::OdbcImpl;
using odbc_test::getOdbcError;
using odbc_test::Log;
using odbc_test::Odbc;
using odbc_test::OdbcTest;
using odbc_test::recordText;

// A node of a handle tree without ODBC; all are made at the one address that `slot` says, if any.
class Node : public OdbcImpl {
 public:
  explicit Node(OdbcImpl* parent, int* deletions = nullptr)
      : OdbcImpl(parent), deletions_(deletions) {}
  ~Node() override {
    DeleteChildren();
    deleted.push_back(this);
    if (deletions_ != nullptr) ++*deletions_;
  }
  e_Status Initialize() override { return e_Ok; }
  e_Status Finalize() override { return e_Ok; }
  SQLHANDLE GetHandle(e_Handle) override { return handle; }
  SQLHANDLE GetHandle() override { return handle; }
  e_Handle GetHandleType() override { return e_Env; }

  static void* operator new(std::size_t size) { return slot ? slot : std::malloc(size); }
  static void operator delete(void* node) {
    if (node != slot) std::free(node);
  }

  static inline void* slot = nullptr;
  static inline std::vector<OdbcImpl*> deleted;
  SQLHANDLE handle = nullptr;

 private:
  int* deletions_;
};

TEST(HandleTree, DeletesEveryChildOnce) {
  int deletions = 0;
  Node root(nullptr);
  Node* first = new Node(&root, &deletions);
  OdbcImpl* const inner = new Node(first, &deletions);
  for (int i = 0; i < 60; ++i) new Node(&root, &deletions);  // farewells must not upset the walk
  Node* gone = new Node(&root, &deletions);
  delete gone;
  EXPECT_EQ(deletions, 1);
  root.Notify(OdbcImpl::e_Created, nullptr);
  Node::deleted.clear();
  root.DeleteChildren();
  EXPECT_EQ(deletions, 63);
  std::erase_if(Node::deleted, [inner](OdbcImpl* node) { return node == inner; });
  EXPECT_TRUE(std::is_sorted(Node::deleted.begin(), Node::deleted.end()));
  root.DeleteChildren();
  EXPECT_EQ(deletions, 63);
}

TEST(HandleTree, AChildAtTheAddressOfADeletedOneLives) {
  const std::unique_ptr<void, decltype(&std::free)> place(std::malloc(sizeof(Node)), std::free);
  int deletions = 0;
  Node root(nullptr);
  Node::slot = place.get();
  new Node(&root, &deletions);
  root.DeleteChildren();  // NOLINT(clang-analyzer-unix.Malloc): deletes it
  new Node(&root, &deletions);
  root.DeleteChildren();  // NOLINT(clang-analyzer-unix.Malloc)
  EXPECT_EQ(deletions, 2);
  delete new Node(&root, &deletions);  // a farewell on its own is not followed by a second
  root.DeleteChildren();
  EXPECT_EQ(deletions, 3);
  Node::slot = nullptr;
}

class Diagnostics : public OdbcTest {
 protected:
  void SetUp() override {
    OdbcTest::SetUp();
    env_.reset(Odbc::CreateEnv());
    impl_ = dynamic_cast<OdbcImpl*>(env_.get());
    node_ = new Node(impl_);
    node_->handle = impl_->GetHandle();
    fake_.reset();
  }

  // Leaves records on the environment's handle, as a call on it would.
  void leave(const std::vector<fake::Diagnostic>& records) {
    fake_.answer("SQLEndTran", {SQL_ERROR, records});
    SQLEndTran(SQL_HANDLE_ENV, impl_->GetHandle(), SQL_COMMIT);
  }

  OdbcImpl* impl_ = nullptr;
  Node* node_ = nullptr;
};

TEST_F(Diagnostics, StatusOfEveryReturnCode) {
  struct Case {
    SQLRETURN rc;
    Odbc::e_Status status;
    bool record;
  };
  const Case cases[] = {
      {SQL_SUCCESS, Odbc::e_Ok, false},
      {SQL_SUCCESS_WITH_INFO, Odbc::e_Ok, true},
      {SQL_ERROR, Odbc::e_Error, true},
      {SQL_INVALID_HANDLE, Odbc::e_Error, false},
      {SQL_NO_DATA, Odbc::e_NoData, false},
      {SQL_NEED_DATA, Odbc::e_NeedData, false},
      {SQL_STILL_EXECUTING, Odbc::e_Other, false},
      {77, Odbc::e_Other, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.rc);
    for (OdbcImpl* asked : {impl_, static_cast<OdbcImpl*>(node_)}) {
      leave({{"08001", -1, "M"}, {"HY000", 2, "second"}});
      impl_->HasInfo(true);  // of an earlier call
      EXPECT_EQ(asked->GetStatus(node_, c.rc), c.status);
      EXPECT_EQ(impl_->HasInfo(), c.record);
      EXPECT_EQ(getOdbcError(asked), c.record ? recordText("[08001][-1][M]") : "");
      EXPECT_EQ(asked->GetStatus(c.rc), c.status);  // without a source nothing is read
      EXPECT_FALSE(node_->HasInfo());
    }
  }
}

TEST_F(Diagnostics, ReadsMessagesWhole) {
  for (const std::size_t length : {0U, 511U, 512U, 513U, 5000U, 32000U, 600U}) {
    SCOPED_TRACE(length);
    const std::string message(length, 'm');
    leave({{"HY000", 0x7FFFFFFF, message}});
    const int before = fake_.calls("SQLGetDiagRec");
    EXPECT_EQ(impl_->GetStatus(impl_, SQL_ERROR), Odbc::e_Error);
    EXPECT_EQ(fake_.calls("SQLGetDiagRec") - before, length > 512 ? 2 : 1);
    EXPECT_EQ(getOdbcError(impl_), recordText("[HY000][2147483647][" + message + "]"));
  }
}

TEST_F(Diagnostics, WithoutARecordAndWithoutAnAnswer) {
  leave({{"HY000", 5, "earlier"}});
  impl_->GetStatus(impl_, SQL_ERROR);
  leave({});
  EXPECT_EQ(impl_->GetStatus(impl_, SQL_ERROR), Odbc::e_Error);
  EXPECT_EQ(getOdbcError(impl_), recordText("[ZEL][0][No error message returned by driver]"));

  leave({{"HY000", 5, "unread"}});
  fake_.answer("SQLGetDiagRec", fake::failureWithoutRecord());
  EXPECT_EQ(impl_->GetStatus(impl_, SQL_ERROR), Odbc::e_Error);
  EXPECT_FALSE(impl_->HasInfo());
  leave({{"HY000", 5, std::string(600, 'm')}});
  fake_.fail("SQLGetDiagRec", 2, fake::failureWithoutRecord());
  impl_->GetStatus(impl_, SQL_ERROR);
  EXPECT_EQ(getOdbcError(impl_), "");
}

TEST_F(Diagnostics, PrintsTheRecord) {
  std::ostringstream out;
  node_->DumpInfo(out);
  EXPECT_EQ(out.str(), std::string(1, '\0'));
  testing::internal::CaptureStdout();
  node_->DumpInfo("prefix");
  EXPECT_EQ(handleOdbcError(node_), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

  leave({{"08001", -1, "M"}});
  impl_->GetStatus(impl_, SQL_ERROR);
  testing::internal::CaptureStdout();
  node_->DumpInfo("here");
  node_->DumpInfo(static_cast<const char*>(nullptr));
  EXPECT_EQ(handleOdbcError(node_), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "here:  state: 08001\nhere:  error: -1\nhere:  message: M\n"
            ":  state: 08001\n:  error: -1\n:  message: M\n"
            "State: 08001\nError code: -1\nMessage: M\n");
}

}  // namespace
