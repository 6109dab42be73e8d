// NotifieeBase: the untyped part of a reactor (see Notifiee for the typed
// one that agent code derives from).
//
// A reactor is counted, holds a counted pointer to the entity it watches
// (its notifier) and a plain back pointer to its owner. It delivers a
// notification only while
//   - its own notification-active flag is set (switched on right after
//     construction by Kel::makeReactor),
//   - it is not being destroyed (negative count), and
//   - its owner, when the owner is a counted object, is notification-active
//     and not being destroyed: closing a state machine switches the owner
//     off, which turns all its reactors into zombies at once.
// During delivery the reactor and its owner are held, so a handler that
// drops either cannot free them under the running call.
#pragma once

#include <type_traits>

#include "kel/Entity.h"
#include "kel/Ptr.h"
#include "kel/PtrInterface.h"
#include "kel/Types.h"

namespace Kel {

// The object that gates a reactor of `owner`: the owner itself when it is a
// counted object, else none.
template <typename Owner>
PtrInterface* ownerGate(Owner* owner) {
  if constexpr (std::is_base_of_v<PtrInterface, Owner>) {
    return owner;
  } else {
    return nullptr;
  }
}

class NotifieeBase : public PtrInterface {
 public:
  // Called for every change of an attribute of the notifier; `key` points
  // at the changed member's key for a collection attribute, else is null.
  virtual void onAttribute(AttributeId attributeId, const void* key) = 0;

  // Runs when the reactor is closed as a member of an owner's collection
  // (see ChildMap); reactors that keep per-member state override it.
  virtual void doClose() {}
  // Switches the reactor off, then runs doClose() (once).
  void close();

  const Entity* notifierEntity() const { return notifier_.get(); }
  PtrInterface* ownerObject() const { return owner_; }

  bool deliverable() const noexcept {
    return hasNotificationActive() && !beingDestroyed() &&
           (owner_ == nullptr || (owner_->hasNotificationActive() && !owner_->beingDestroyed()));
  }

 protected:
  // `owner` is the object whose switch also gates this reactor (null: none).
  explicit NotifieeBase(PtrInterface* owner) : owner_(owner) {}
  ~NotifieeBase() override;

  // Moves the reactor to another entity's list (null: to none).
  void notifierEntityIs(Ptr<const Entity> notifier);

 private:
  friend class NotifieeList;

  PtrInterface* owner_;
  Ptr<const Entity> notifier_;
  std::size_t slot_ = 0;
  bool closed_ = false;
};

}  // namespace Kel
