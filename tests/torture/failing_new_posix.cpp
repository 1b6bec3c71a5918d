#include "failing_new_posix.h"

#include <cstdlib>
#include <new>

#include <sqlite3.h>

namespace quenlar {
namespace {

std::uint64_t allocations_left = 0;  // until the one that fails; 0: none does
bool fails_now = false, runs_out = false;

// Whether this allocation fails.
bool Fails() {
  if (allocations_left != 0 && --allocations_left == 0) {
    fails_now = true;
    return true;
  }
  return fails_now && runs_out;
}

void* Allocate(std::size_t size, std::size_t alignment) {
  if (Fails()) throw std::bad_alloc();
  // Sizes for aligned_alloc are whole multiples of the alignment.
  void* const memory = alignment == 0 ? std::malloc(size == 0 ? 1 : size)
                                      : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

// SQLite's memory. The size of a piece stands in front of it.
constexpr int kFront = 16;

int SizeOf(void* memory) {
  return memory == nullptr ? 0 : *reinterpret_cast<int*>(static_cast<char*>(memory) - kFront);
}

void* Resize(void* memory, int size) {
  if (Fails()) return nullptr;
  void* const old = memory == nullptr ? nullptr : static_cast<char*>(memory) - kFront;
  char* const whole = static_cast<char*>(std::realloc(old, static_cast<std::size_t>(size) + kFront));
  if (whole == nullptr) return nullptr;
  *reinterpret_cast<int*>(whole) = size;
  return whole + kFront;
}

void* MakePiece(int size) { return Resize(nullptr, size); }

void FreePiece(void* memory) {
  if (memory != nullptr) std::free(static_cast<char*>(memory) - kFront);
}

}  // namespace

void ShareMemoryWithSqlite() {
  static sqlite3_mem_methods methods = {MakePiece,
                                        FreePiece,
                                        Resize,
                                        SizeOf,
                                        [](int size) { return (size + 7) / 8 * 8; },
                                        [](void*) { return SQLITE_OK; },
                                        [](void*) {},
                                        nullptr};
  sqlite3_shutdown();
  sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
  sqlite3_initialize();
}

FailingMemory::FailingMemory(std::uint64_t n, Memory kind) : n_(n) {
  fails_now = false;
  runs_out = kind == Memory::kRunsOut;
  allocations_left = n;
}

FailingMemory::~FailingMemory() {
  allocations_left = 0;
  fails_now = runs_out = false;
}

bool FailingMemory::reached() const { return fails_now; }

std::uint64_t FailingMemory::counted() const { return n_ - allocations_left; }

}  // namespace quenlar

// All forms, since those of a sanitizer do not call each other.
void* operator new(std::size_t size) { return quenlar::Allocate(size, 0); }
void* operator new[](std::size_t size) { return quenlar::Allocate(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return quenlar::Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return quenlar::Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return quenlar::Allocate(size, 0);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new[](std::size_t size, const std::nothrow_t& nothrow) noexcept { return operator new(size, nothrow); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
