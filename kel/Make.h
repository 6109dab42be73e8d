// Kel::make<T>(args...): the framework's allocator for counted objects.
//
// Builds a T (whose constructor may run a whole initial scan) and counts it
// against T's AllocTrackTypeInfo until it is destroyed.
#pragma once

#include <utility>

#include "kel/AllocTrackTypeInfo.h"
#include "kel/Ptr.h"

namespace Kel {
namespace detail {

// The most-derived type of every object made by make<T>(): counts the
// object's life against T's record.
template <typename T>
class Tracked final : public T {
 public:
  template <typename... Args>
  explicit Tracked(Args&&... args) : T(std::forward<Args>(args)...) {
    allocTrackTypeInfo<T>().allocated();
  }
  ~Tracked() override { allocTrackTypeInfo<T>().released(); }
  Tracked(const Tracked&) = delete;
  Tracked& operator=(const Tracked&) = delete;
};

}  // namespace detail

template <typename T, typename... Args>
Ptr<T> make(Args&&... args) {
  return Ptr<T>(new detail::Tracked<T>(std::forward<Args>(args)...));
}

}  // namespace Kel
