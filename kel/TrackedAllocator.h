// TrackedAllocator<T>: std::allocator that counts every node of a framework
// collection against the node type's AllocTrackTypeInfo.
#pragma once

#include <cstddef>
#include <memory>

#include "kel/AllocTrackTypeInfo.h"

namespace Kel {

template <typename T>
class TrackedAllocator {
 public:
  using value_type = T;

  TrackedAllocator() noexcept = default;
  template <typename U>
  TrackedAllocator(const TrackedAllocator<U>& /*other*/) noexcept {}  // NOLINT(google-explicit-constructor)

  T* allocate(std::size_t n) {
    T* memory = std::allocator<T>().allocate(n);
    allocTrackTypeInfo<T>().allocated();
    return memory;
  }
  void deallocate(T* memory, std::size_t n) noexcept {
    allocTrackTypeInfo<T>().released();
    std::allocator<T>().deallocate(memory, n);
  }

  template <typename U>
  bool operator==(const TrackedAllocator<U>& /*other*/) const noexcept {
    return true;
  }
};

}  // namespace Kel
