#include "failing_new_posix.h"

#include <cstdlib>
#include <new>

namespace quenlar {
namespace {

std::uint64_t allocations_left = 0;  // until the one that fails; 0: none does
bool fails_now = false, runs_out = false;

void* Allocate(std::size_t size, std::size_t alignment) {
  if (allocations_left != 0 && --allocations_left == 0) {
    fails_now = true;
    if (!runs_out) throw std::bad_alloc();
  }
  if (fails_now && runs_out) throw std::bad_alloc();
  // Sizes for aligned_alloc are whole multiples of the alignment.
  void* const memory = alignment == 0 ? std::malloc(size == 0 ? 1 : size)
                                      : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

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
