// Notifiee<Self, Owner, Notifier, Attrs...>: a typed reactor.
//
// A reactor class names the attributes it watches and handles each in an
// overload of on(), which receives a collection member's key in its real
// type:
//
//   class KelQosStatus
//       : public Kel::Notifiee<KelQosStatus, RootSm, const Qos::Status,
//                              Qos::Status::PmapType, Qos::Status::CmapType> {
//    public:
//     using Notifiee::Notifiee;
//     void on(Qos::Status::PmapType, const Qos::MapType& t) { owner().handlePmapType(t); }
//     void on(Qos::Status::CmapType, const Qos::MapType& t) { owner().handleCmapType(t); }
//   };
//
// Dispatch ignores attributes not listed, and a null key for a collection
// attribute. The reactor is made with Kel::makeReactor (or held by a
// Kel::Watch), which switches it on.
#pragma once

#include <type_traits>
#include <utility>

#include "kel/Entity.h"
#include "kel/Make.h"
#include "kel/NotifieeBase.h"
#include "kel/Ptr.h"

namespace Kel {

template <typename Self, typename Owner, typename Notifier, typename... Attrs>
class Notifiee : public NotifieeBase {
 public:
  using NotifierType = Notifier;
  using OwnerType = Owner;

  Notifiee(Owner* owner, Ptr<Notifier> notifier) : NotifieeBase(ownerGate(owner)), owner_(owner) {
    notifierIs(notifier);
  }

  Owner& owner() const { return *owner_; }
  // The base holds the one counted reference; the notifier was set as a
  // Notifier, so the cast back is exact.
  Notifier* notifier() const { return const_cast<Notifier*>(static_cast<const Notifier*>(notifierEntity())); }
  Ptr<Notifier> notifierPtr() const { return Ptr<Notifier>(notifier()); }

  // Re-targets the reactor to another entity (null: watches nothing).
  void notifierIs(const Ptr<Notifier>& notifier) { notifierEntityIs(Ptr<const Entity>(notifier)); }

  void onAttribute(AttributeId attributeId, const void* key) final {
    (void)(dispatch<Attrs>(attributeId, key) || ...);
  }

 private:
  template <typename Attr>
  bool dispatch(AttributeId attributeId, const void* key) {
    if (attributeId != Attr::id) {
      return false;
    }
    if constexpr (Attr::kKeyed) {
      if (key != nullptr) {
        static_cast<Self*>(this)->on(Attr{}, *static_cast<const typename Attr::Key*>(key));
      }
    } else {
      static_cast<Self*>(this)->on(Attr{});
    }
    return true;
  }

  Owner* owner_;
};

// Makes reactor R on `notifier` for `owner`, switched on; null (no reactor)
// when `notifier` is null. Extra arguments go to R's constructor after the
// owner and notifier.
template <typename R, typename Owner, typename N, typename... Extra>
Ptr<R> makeReactor(Owner* owner, const Ptr<N>& notifier, Extra&&... extra) {
  if (!notifier) {
    return nullptr;
  }
  Ptr<R> reactor = make<R>(owner, Ptr<typename R::NotifierType>(notifier), std::forward<Extra>(extra)...);
  reactor->hasNotificationActiveIs(true);
  return reactor;
}

// Watch<R>: an input held through reactor R, as a state machine's attribute.
// Empty (no reactor) when built with a null entity; entity() then reads as
// null, so the owner never tests the reactor itself.
template <typename R>
class Watch {
 public:
  using Notifier = typename R::NotifierType;

  Watch() = default;
  template <typename Owner, typename N>
  Watch(Owner* owner, const Ptr<N>& notifier) : reactor_(makeReactor<R>(owner, notifier)) {}

  Notifier* get() const { return reactor_ ? reactor_->notifier() : nullptr; }
  Ptr<Notifier> entity() const { return reactor_ ? reactor_->notifierPtr() : nullptr; }
  Notifier* operator->() const { return get(); }
  explicit operator bool() const { return get() != nullptr; }
  R* reactor() const { return reactor_.get(); }

  // Drops the input and its reactor.
  void reset() { reactor_.reset(); }

 private:
  Ptr<R> reactor_;
};

}  // namespace Kel
