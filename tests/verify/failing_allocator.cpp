#include "tests/verify/failing_allocator.h"

#include <dlfcn.h>

#include <cstdlib>
#include <new>

namespace {

struct State {
  bool armed = false;
  std::uint64_t count = 0;
  std::uint64_t failAt = 0;
  bool fromThenOn = false;
};
State state;

// How deep the process is in calls of the scripted ODBC; a variable of that library.
const int* odbcDepth() {
  static const int* const depth = static_cast<const int*>(dlsym(RTLD_DEFAULT, "fakeOdbcCallDepth"));
  return depth;
}

bool failsNow() {
  if (!state.armed || *odbcDepth() > 0) return false;
  ++state.count;
  return state.failAt != 0 &&
         (state.count == state.failAt || (state.fromThenOn && state.count > state.failAt));
}

}  // namespace

namespace verify {

void FailingAllocator::arm(std::uint64_t at, bool fromThenOn) {
  if (odbcDepth() == nullptr) std::abort();
  state = {true, 0, at, fromThenOn};
}

std::uint64_t FailingAllocator::disarm() {
  state.armed = false;
  return state.count;
}

}  // namespace verify

// The program's own operator new; that of the C++ library calls malloc where no --wrap reaches.
// NOLINTBEGIN(bugprone-reserved-identifier): the names are the linker's, of --wrap
extern "C" void* __real_malloc(std::size_t bytes);
extern "C" void* __real_realloc(void* block, std::size_t bytes);
extern "C" void* __real_calloc(std::size_t count, std::size_t bytes);
extern "C" char* __real_strdup(const char* text);

extern "C" void* __wrap_malloc(std::size_t bytes) {
  return failsNow() ? nullptr : __real_malloc(bytes);
}

extern "C" void* __wrap_realloc(void* block, std::size_t bytes) {
  return failsNow() ? nullptr : __real_realloc(block, bytes);
}

extern "C" void* __wrap_calloc(std::size_t count, std::size_t bytes) {
  return failsNow() ? nullptr : __real_calloc(count, bytes);
}

extern "C" char* __wrap_strdup(const char* text) {
  return failsNow() ? nullptr : __real_strdup(text);
}
// NOLINTEND(bugprone-reserved-identifier)

void* operator new(std::size_t bytes) {
  void* const block = failsNow() ? nullptr : __real_malloc(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void* operator new[](std::size_t bytes) {
  return operator new(bytes);
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return failsNow() ? nullptr : __real_malloc(bytes);
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}

void operator delete[](void* block) noexcept {
  std::free(block);
}

void operator delete[](void* block, std::size_t) noexcept {
  std::free(block);
}
