// AllIntfStatusDirSm: mirrors every interface's SNMP ifIndex into the MIB
// model's interface map and tells the root when an interface gains or loses
// its index.
//
// Watches: the interface status collection of Interface::AllIntfStatusDir
//   (per interface added, changed or removed: handleIntfStatus(intf)).
// Writes: QosMib's intfIdToifIndex, keyed by the interface itself; no key
//   set and no doClose(): entries stay when the machine is dropped.
// Calls on the root: add/deleteServicePolicyEntries and
//   add/deleteEcnQueueCounterEntries.
// Deliberate, keep as it stands:
// - a present interface with a non-negative index is re-added on every
//   notification, and the root's add operations see every repetition;
// - an interface whose index turns negative keeps its map entry and rows:
//   only its removal from the directory deletes them;
// - removing an interface that never had an index still calls both root
//   delete operations (the ECN one with ifIndex 0).
#pragma once

#include <tuple>

#include "QosSnmp/core/AllIntfStatusDir.h"
#include "QosSnmp/core/QosMib.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"
#include "pellix/IntfId.h"

namespace QosSnmp {

class RootSm;

class AllIntfStatusDirSm : public Kel::StateMachine {
 public:
  class KelAllIntfStatusDir
      : public Kel::Notifiee<KelAllIntfStatusDir, AllIntfStatusDirSm, const Interface::AllIntfStatusDir,
                             Interface::AllIntfStatusDir::IntfStatus> {
   public:
    using Notifiee::Notifiee;
    void on(Interface::AllIntfStatusDir::IntfStatus /*attr*/, const Pellix::IntfId& intf) {
      owner().handleIntfStatus(intf);
    }
  };

  AllIntfStatusDirSm(const Kel::Ptr<const Interface::AllIntfStatusDir>& allIntfStatusDir,
                     const Kel::Ptr<QosMib>& qosMib, RootSm* rootSm);

  auto arguments() const { return std::make_tuple(allIntfStatusDir_.entity(), qosMib_, rootSm_); }

  void handleInitialized();
  void handleIntfStatus(const Pellix::IntfId& intf);

  const Interface::AllIntfStatusDir* allIntfStatusDir() const { return allIntfStatusDir_.get(); }

 private:
  Kel::Watch<KelAllIntfStatusDir> allIntfStatusDir_;
  Kel::Ptr<QosMib> qosMib_;
  RootSm* rootSm_;  // the owner; not counted
};

}  // namespace QosSnmp
