#include "tests/objects/allocation_counter.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t allocations = 0;

void* Allocate(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) {
    return memory;
  }
  throw std::bad_alloc();
}

}  // namespace

// The array forms call these.
void* operator new(std::size_t size) {
  return Allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace nimbrel::engine {

std::size_t AllocationCount() {
  return allocations;
}

}  // namespace nimbrel::engine
