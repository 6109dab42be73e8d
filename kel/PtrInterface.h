// PtrInterface: the base of every counted object (entities, state machines,
// reactors).
//
// Reference-count protocol: the initial count is zero; a Ptr<T> taking the
// object adds one, and the release that brings the count back to zero marks
// the object as being destroyed (the count becomes negative and stays so)
// and calls onLastReference(), which by default deletes it. Reactors read a
// negative count as "ignore every notification".
//
// Counts are changed with atomic read-modify-write operations only while
// Kel::threadSafePointers is set; otherwise with plain loads and stores, for
// a process whose counted objects live on one thread.
//
// The notification-active flag is the object's delivery switch: a reactor
// delivers only while its own flag and its owner's flag are set.
#pragma once

#include <atomic>

#include "kel/Types.h"

namespace Kel {

// Process-wide choice between atomic and plain reference counting. Set it
// before the first counted object is shared between threads.
extern bool threadSafePointers;

// Adds `delta` to `value`, atomically only while threadSafePointers is set.
// Returns the new value.
template <typename T>
T countAdd(std::atomic<T>& value, T delta) noexcept {
  if (threadSafePointers) {
    return value.fetch_add(delta, std::memory_order_acq_rel) + delta;
  }
  const T result = value.load(std::memory_order_relaxed) + delta;
  value.store(result, std::memory_order_relaxed);
  return result;
}

class PtrInterface {
 public:
  PtrInterface() = default;
  PtrInterface(const PtrInterface&) = delete;
  PtrInterface& operator=(const PtrInterface&) = delete;

  void newRef() const noexcept { countAdd<S32>(references_, 1); }
  void delRef() const noexcept {
    if (countAdd<S32>(references_, -1) == 0) {
      references_.store(kBeingDestroyed, std::memory_order_relaxed);
      const_cast<PtrInterface*>(this)->onLastReference();
    }
  }

  S32 references() const noexcept { return references_.load(std::memory_order_relaxed); }
  bool beingDestroyed() const noexcept { return references() < 0; }

  bool hasNotificationActive() const noexcept { return notificationActive_; }
  virtual void hasNotificationActiveIs(bool active) { notificationActive_ = active; }

 protected:
  virtual ~PtrInterface() = default;

  // Runs once, when the last reference is released; the count is already
  // negative. The default destroys the object.
  virtual void onLastReference() noexcept { delete this; }

 private:
  // Far enough below zero that references taken and released while the
  // object is being destroyed never bring the count back to zero.
  static constexpr S32 kBeingDestroyed = -(1 << 30);

  mutable std::atomic<S32> references_{0};
  bool notificationActive_ = false;
};

}  // namespace Kel
