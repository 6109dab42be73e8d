// Ptr<T>: a counted reference to a PtrInterface-derived T.
//
//   Kel::Ptr<Qos::Status> status = Kel::make<Qos::Status>("status");
//   Kel::Ptr<const Qos::Status> view = status;          // adds constness
//   auto slice = Kel::ptrCast<const Qos::SliceHwStatus>(dir->entityPtr(n));
//                                                       // null if another type
//
// Copying adds a reference, destruction releases one, the last release
// destroys the object (see PtrInterface). Equality is identity.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <utility>

#include "kel/PtrInterface.h"

namespace Kel {

template <typename T>
class Ptr {
 public:
  using element_type = T;

  Ptr() noexcept = default;
  Ptr(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor)
  explicit Ptr(T* object) noexcept : object_(object) { acquire(); }
  Ptr(const Ptr& other) noexcept : object_(other.object_) { acquire(); }
  Ptr(Ptr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <typename U>
  requires std::is_convertible_v<U*, T*> Ptr(const Ptr<U>& other)
  noexcept : object_(other.get()) {  // NOLINT(google-explicit-constructor)
    acquire();
  }
  template <typename U>
  requires std::is_convertible_v<U*, T*> Ptr(Ptr<U>&& other)
  noexcept : object_(other.release()) {}  // NOLINT(google-explicit-constructor)
  ~Ptr() { reset(); }

  Ptr& operator=(Ptr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  void reset() noexcept {
    if (T* old = std::exchange(object_, nullptr)) {
      old->delRef();
    }
  }
  // Gives up the reference without releasing it.
  [[nodiscard]] T* release() noexcept { return std::exchange(object_, nullptr); }

 private:
  void acquire() const noexcept {
    if (object_ != nullptr) {
      object_->newRef();
    }
  }

  T* object_ = nullptr;
};

template <typename T, typename U>
bool operator==(const Ptr<T>& a, const Ptr<U>& b) noexcept {
  return a.get() == b.get();
}
template <typename T>
bool operator==(const Ptr<T>& a, std::nullptr_t) noexcept {
  return a.get() == nullptr;
}
template <typename T, typename U>
std::strong_ordering operator<=>(const Ptr<T>& a, const Ptr<U>& b) noexcept {
  return std::compare_three_way{}(a.get(), b.get());
}

// Checked downcast: null when `p` is null or not a T.
template <typename T, typename U>
Ptr<T> ptrCast(const Ptr<U>& p) {
  return Ptr<T>(dynamic_cast<T*>(p.get()));
}

}  // namespace Kel

template <typename T>
struct std::hash<Kel::Ptr<T>> {
  std::size_t operator()(const Kel::Ptr<T>& p) const noexcept { return std::hash<T*>{}(p.get()); }
};
