// Kel::make<T>(args...): the framework's allocator for counted objects.
//
// Builds a T (whose constructor may run a whole initial scan) and counts it
// against T's AllocTrackTypeInfo until it is destroyed. While T is being
// built, a MemberList::ConstructionFrame covers its memory, so that the
// Child, ChildMap and KeySet members of a state machine enlist with it.
#pragma once

#include <new>
#include <utility>

#include "kel/AllocTrackTypeInfo.h"
#include "kel/MemberList.h"
#include "kel/Ptr.h"

namespace Kel {
namespace detail {

// The most-derived type of every object made by make<T>(): counts the
// object's life against T's record. Mixins are bases built before T (a
// reactor child's MemberList, see ChildMember.h).
template <typename T, typename... Mixins>
class Tracked final : public Mixins..., public T {
 public:
  template <typename... Args>
  explicit Tracked(Args&&... args) : T(std::forward<Args>(args)...) {
    allocTrackTypeInfo<T>().allocated();
  }
  ~Tracked() override { allocTrackTypeInfo<T>().released(); }
  Tracked(const Tracked&) = delete;
  Tracked& operator=(const Tracked&) = delete;
};

// Builds an Object (a Tracked<T, ...>) inside a construction frame over its
// memory. The memory comes from the global operator new, which is what the
// object's deleting destructor gives it back to.
template <typename Object, typename T, typename... Args>
Ptr<T> makeTracked(Args&&... args) {
  static_assert(alignof(Object) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
  void* memory = ::operator new(sizeof(Object));
  try {
    const MemberList::ConstructionFrame frame(memory, sizeof(Object));
    return Ptr<T>(::new (memory) Object(std::forward<Args>(args)...));
  } catch (...) {
    ::operator delete(memory);
    throw;
  }
}

}  // namespace detail

template <typename T, typename... Args>
Ptr<T> make(Args&&... args) {
  return detail::makeTracked<detail::Tracked<T>, T>(std::forward<Args>(args)...);
}

}  // namespace Kel
