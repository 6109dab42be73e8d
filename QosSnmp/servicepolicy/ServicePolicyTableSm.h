// ServicePolicyTableSm: keeps the MIB model's service-policy table in step
// with the service policies the QoS configuration assigns to interfaces and
// the QoS status reports as applied. One row is one policy map applied to one
// interface in one direction, indexed by (ifIndex, direction).
//
// Watches:
// - Qos::Config's servicePolicyConfig (KelQosConfig): a member present gets
//   its KelServicePolicyConfig, a member gone loses it;
// - Qos::Status's servicePolicyStatus (KelQosStatus): the same with
//   KelServicePolicyStatus;
// - each configured policy's intfIds (KelServicePolicyConfig, keyed by the
//   policy's key): doMaybeAddOrRemoveEntry(intf, key), the port-channel rule;
// - each applied policy's intfIds (KelServicePolicyStatus, keyed by the
//   policy's key): handleIntfIds(pair).
// A reactor on an input exists only for a non-null input. Each per-policy
// reactor judges all its interfaces when it is made and again when it is
// dropped (its doClose()).
// Driven from outside: the root calls doAddOrRemoveEntry and
// doMaybeAddOrRemoveEntry when an interface gains or loses its ifIndex.
// Writes: QosMib's service-policy table. servicePolicyTableKey holds the
//   rows it added; doClose() removes exactly those.
// Children: none besides the per-policy reactors.
//
// Deliberate, keep as it stands:
// - doAddOrRemoveEntry deletes the row under the index before adding, so a
//   second policy with the same (ifIndex, direction) replaces the first;
//   removing works on the index too, so it deletes whichever policy's row
//   holds it;
// - rows of a port-channel follow the configuration, and only while the
//   status also holds the policy: without it the level-4 "No spStatus" line
//   is written and the row removed; a configured interface that is not a
//   port-channel writes only the level-4 "Is not a lagIntf" line;
// - every other interface's rows come from the status side only; a status
//   pair whose second interface is a sub-interface is ignored when it is
//   notified, but when the status member goes, every pair, sub-interface
//   pairs included, removes the row of its first interface;
// - map type 0 (control plane) writes the ifIndex trace line but never a
//   row; map type 2 stops before it; an interface without ifIndex gets no
//   row;
// - the status reactor's lines name "ServicePolicyStatusSm" and the config
//   reactor's "ServicePolicyConfigSm".
// Choices where the requirements are silent: the per-policy reactors that go
// because the whole machine closes judge nothing (doClose() has just removed
// every row); a member replaced under its key by another entity is a keyed
// child re-created with other arguments, which the framework refuses with
// its re-instantiation exception.
#pragma once

#include <tuple>

#include "QosSnmp/core/Config.h"
#include "QosSnmp/core/IntfPairKey.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/ServicePolicyConfig.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/core/ServicePolicyStatus.h"
#include "QosSnmp/core/ServicePolicyTableIndex.h"
#include "QosSnmp/core/Status.h"
#include "kel/ChildMap.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "pellix/IntfId.h"

namespace QosSnmp {

class ServicePolicyTableSm : public Kel::StateMachine {
 public:
  class KelQosConfig : public Kel::Notifiee<KelQosConfig, ServicePolicyTableSm, const Qos::Config,
                                            Qos::Config::ServicePolicyConfig> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::Config::ServicePolicyConfig /*attr*/, const Qos::ServicePolicyKey& key);
  };

  class KelQosStatus : public Kel::Notifiee<KelQosStatus, ServicePolicyTableSm, const Qos::Status,
                                            Qos::Status::ServicePolicyStatus> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::Status::ServicePolicyStatus /*attr*/, const Qos::ServicePolicyKey& key);
  };

  // Watches the interfaces one policy is configured on; a member of
  // servicePolicyConfig, keyed by the policy's key. Made, it judges every
  // configured interface.
  class KelServicePolicyConfig
      : public Kel::Notifiee<KelServicePolicyConfig, ServicePolicyTableSm, const Qos::ServicePolicyConfig,
                             Qos::ServicePolicyConfig::IntfIds> {
   public:
    KelServicePolicyConfig(ServicePolicyTableSm* owner,
                           const Kel::Ptr<const Qos::ServicePolicyConfig>& servicePolicyConfig);

    auto arguments() const { return std::make_tuple(&owner(), notifierPtr()); }
    const Qos::ServicePolicyKey& key() const { return key_; }

    void on(Qos::ServicePolicyConfig::IntfIds /*attr*/, const Pellix::IntfId& intf) {
      owner().doMaybeAddOrRemoveEntry(intf, key_);
    }
    void handleIntfIds();

   protected:
    void doClose() override;

   private:
    const Qos::ServicePolicyKey key_;
  };

  // Watches the interfaces one policy is applied to; a member of
  // servicePolicyStatus, keyed by the policy's key. Made, it judges every
  // pair and then the configured port-channels of the policy.
  class KelServicePolicyStatus
      : public Kel::Notifiee<KelServicePolicyStatus, ServicePolicyTableSm, const Qos::ServicePolicyStatus,
                             Qos::ServicePolicyStatus::IntfIds> {
   public:
    KelServicePolicyStatus(ServicePolicyTableSm* owner,
                           const Kel::Ptr<const Qos::ServicePolicyStatus>& servicePolicyStatus);

    auto arguments() const { return std::make_tuple(&owner(), notifierPtr()); }
    const Qos::ServicePolicyKey& key() const { return key_; }

    void on(Qos::ServicePolicyStatus::IntfIds /*attr*/, const Qos::IntfPairKey& pair) { handleIntfIds(pair); }
    void handleIntfIds(const Qos::IntfPairKey& pair);
    void handleIntfIds();

   protected:
    void doClose() override;

   private:
    const Qos::ServicePolicyKey key_;
  };

  // Builds the reactors of the non-null inputs, then one per-policy reactor
  // for every configured and then every applied policy: the whole initial
  // scan.
  ServicePolicyTableSm(const Kel::Ptr<const Qos::Config>& qosConfig,
                       const Kel::Ptr<const Qos::Status>& qosStatus, Kel::Ptr<QosMib> qosMib);

  auto arguments() const { return std::make_tuple(qosConfig_.entity(), qosStatus_.entity(), qosMib_); }

  // Adds (add true) or removes the row of `intf` for the policy `key`. Rows
  // need an ifIndex, and a map type other than 0 and 2.
  void doAddOrRemoveEntry(const Pellix::IntfId& intf, const Qos::ServicePolicyKey& key, bool add);
  // The port-channel rule: a port-channel's row follows its configuration
  // while the status holds the policy; other interfaces are left alone.
  void doMaybeAddOrRemoveEntry(const Pellix::IntfId& intf, const Qos::ServicePolicyKey& key);
  // Re-judges the configured interfaces of `key`, if it is configured.
  void syncIntfIds(const Qos::ServicePolicyKey& key);

  // The per-policy reactors. REQUIRES: the member is not null
  // (MutatorArgNullPointerException); it is kept under its own key.
  KelServicePolicyConfig* servicePolicyConfigIs(
      const Kel::Ptr<const Qos::ServicePolicyConfig>& servicePolicyConfig);
  void servicePolicyConfigDel(const Qos::ServicePolicyKey& key) { servicePolicyConfig_.del(key); }
  void servicePolicyConfigDelAll() { servicePolicyConfig_.delAll(); }
  KelServicePolicyConfig* servicePolicyConfig(const Qos::ServicePolicyKey& key) const {
    return servicePolicyConfig_.find(key);
  }
  const Kel::ChildMap<Qos::ServicePolicyKey, KelServicePolicyConfig>& servicePolicyConfig() const {
    return servicePolicyConfig_;
  }

  KelServicePolicyStatus* servicePolicyStatusIs(
      const Kel::Ptr<const Qos::ServicePolicyStatus>& servicePolicyStatus);
  void servicePolicyStatusDel(const Qos::ServicePolicyKey& key) { servicePolicyStatus_.del(key); }
  void servicePolicyStatusDelAll() { servicePolicyStatus_.delAll(); }
  KelServicePolicyStatus* servicePolicyStatus(const Qos::ServicePolicyKey& key) const {
    return servicePolicyStatus_.find(key);
  }
  const Kel::ChildMap<Qos::ServicePolicyKey, KelServicePolicyStatus>& servicePolicyStatus() const {
    return servicePolicyStatus_;
  }

  // The rows this machine added.
  void servicePolicyTableKeyIs(const ServicePolicyTableIndex& index) { servicePolicyTableKey_.is(index); }
  void servicePolicyTableKeyDel(const ServicePolicyTableIndex& index) { servicePolicyTableKey_.del(index); }
  void servicePolicyTableKeyDelAll() { servicePolicyTableKey_.delAll(); }
  const Kel::KeySet<ServicePolicyTableIndex>& servicePolicyTableKey() const { return servicePolicyTableKey_; }

  const Qos::Config* qosConfig() const { return qosConfig_.get(); }
  const Qos::Status* qosStatus() const { return qosStatus_.get(); }

 protected:
  void doClose() override;

 private:
  Kel::Watch<KelQosConfig> qosConfig_;
  Kel::Watch<KelQosStatus> qosStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::KeySet<ServicePolicyTableIndex> servicePolicyTableKey_;
  // Last, so that the per-policy reactors go first when the machine is
  // destroyed.
  Kel::ChildMap<Qos::ServicePolicyKey, KelServicePolicyConfig> servicePolicyConfig_;
  Kel::ChildMap<Qos::ServicePolicyKey, KelServicePolicyStatus> servicePolicyStatus_;
};

}  // namespace QosSnmp
