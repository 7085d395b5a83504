#include "tests/support/refused_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> granted{-1};  // before the one that is refused
std::atomic<bool> wasRefused{false};

bool isRefused() {
  if (granted < 0 || granted-- != 0) return false;
  return wasRefused = true;
}

}  // namespace

void refuseMemoryAfter(long requests) {
  wasRefused = false;
  granted = requests;
}

bool endMemoryRefusals() {
  granted = -1;
  return wasRefused;
}

// All forms, as sanitizers have their own of each, which do not mix with these.

void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
  return isRefused() ? nullptr : std::malloc(size ? size : 1);
}

void* operator new(std::size_t size) {
  void* const memory = operator new(size, std::nothrow);
  if (!memory) throw std::bad_alloc();
  return memory;
}

void* operator new[](std::size_t size) {
  return operator new(size);
}

void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
  return operator new(size, std::nothrow);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::nothrow_t const&) noexcept {
  std::free(memory);
}

void operator delete[](void* memory) noexcept {
  std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

void operator delete[](void* memory, std::nothrow_t const&) noexcept {
  std::free(memory);
}
