// StateMachine: the base of every reactor state machine.
//
// Life cycle (the derived class's constructor stores its inputs, makes its
// reactors and, as its last act, runs its own handleInitialized()):
// - notification-active from construction; its reactors deliver only while
//   it is (see NotifieeBase), so switching it off silences all of them;
// - close() is the framework's close: it switches the machine off (its
//   reactors become zombies that ignore notifications) and then runs
//   doClose(), which removes the MIB rows the machine added. close() runs
//   doClose() once; a machine may call its own doClose() directly as well;
// - when the last reference goes, a machine not yet closed is closed, then
//   destroyed; its children go with it, each closed in turn.
//
// A machine that is somebody's child also provides arguments(): the tuple
// of values it was built from, so that Child and ChildMap can tell whether a
// later ...SmIs call asks for the same machine (entities compare by
// identity, null equal to null; other values by equality).
//
// Introspection: members() lists the machine's Child, ChildMap and KeySet
// members (see MemberList), for a machine built by Kel::make<T>();
// Kel::StateMachineTree walks them from a root.
#pragma once

#include "kel/MemberList.h"
#include "kel/PtrInterface.h"

namespace Kel {

class StateMachine : public PtrInterface {
 public:
  bool initialized() const { return initialized_; }
  void initializedIs(bool initialized) { initialized_ = initialized; }

  void close();
  bool closed() const { return closed_; }

  const MemberList& members() const { return members_; }

 protected:
  StateMachine() { PtrInterface::hasNotificationActiveIs(true); }

  // Removes the rows this machine added. Machines without rows of their own
  // keep the empty default.
  virtual void doClose() {}

  void onLastReference() noexcept override;

 private:
  // The flags first: they fill PtrInterface's tail padding.
  bool initialized_ = false;
  bool closed_ = false;
  MemberList members_;
};

}  // namespace Kel
