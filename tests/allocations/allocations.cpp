#include "allocations/allocations.h"

#include <cstdlib>
#include <new>

namespace talm_flow::test {
namespace {

// A replaced operator has no other place to keep what it knows.
thread_local std::size_t allocations_to_go = 0;
thread_local bool lasting = false;
thread_local Refusal refusal = Refusal::kNone;
thread_local long live_blocks = 0;

bool Refused() {
  if (lasting && refusal != Refusal::kNone) return true;
  return allocations_to_go != 0 && --allocations_to_go == 0;
}

void* Allocate(std::size_t size, std::size_t alignment) noexcept {
  if (Refused()) {
    if (refusal == Refusal::kNone) refusal = Refusal::kNull;
    return nullptr;
  }
  // The standard asks for a block of its own even where nothing is to be kept, and for whole multiples.
  const std::size_t rounded = (size / alignment + 1) * alignment;
  void* const block = alignment > alignof(std::max_align_t) ? std::aligned_alloc(alignment, rounded)
                                                            : std::malloc(size == 0 ? 1 : size);
  if (block != nullptr) ++live_blocks;
  return block;
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
  void* const block = Allocate(size, alignment);
  if (block == nullptr) {
    refusal = Refusal::kRaised;
    throw std::bad_alloc();
  }
  return block;
}

void Free(void* block) noexcept {
  if (block != nullptr) --live_blocks;
  std::free(block);
}

}  // namespace

void FailAllocation(std::size_t failing, Shortage shortage) {
  allocations_to_go = failing;
  lasting = shortage == Shortage::kLasting;
  refusal = Refusal::kNone;
}

Refusal EndShortage() {
  const Refusal ended = refusal;
  FailAllocation(0, Shortage::kPassing);
  return ended;
}

long LiveBlocks() { return live_blocks; }

}  // namespace talm_flow::test

// All of them, so that none falls back on one of a runtime's own, as a sanitizer's has them.
using talm_flow::test::Allocate;
using talm_flow::test::AllocateOrThrow;
using talm_flow::test::Free;

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, alignof(std::max_align_t));
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return Allocate(size, static_cast<std::size_t>(alignment));
}

void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }
void operator delete(void* block, std::align_val_t) noexcept { Free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { Free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { Free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { Free(block); }
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept { Free(block); }
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept { Free(block); }
