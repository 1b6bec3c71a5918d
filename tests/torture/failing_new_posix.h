// Memory that can be made to fail: this test program's own operator new, and what SQLite takes.
#pragma once

#include <cstdint>

namespace quenlar {

enum class Memory {
  kFailsOnce,  // one allocation fails, the ones after it do not
  kRunsOut     // that one and all after it
};

// For as long as it lives, the n-th allocation from its making on (1 is the next one) throws std::bad_alloc. One at a
// time; for programs of one thread.
class FailingMemory {
 public:
  FailingMemory(std::uint64_t n, Memory kind);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  // Whether there was an n-th allocation.
  [[nodiscard]] bool reached() const;
  // How many allocations there have been, up to the n-th.
  [[nodiscard]] std::uint64_t counted() const;

 private:
  std::uint64_t n_;
};

// From now on SQLite's allocations count and fail like all others. No database may be open.
void ShareMemoryWithSqlite();

}  // namespace quenlar
