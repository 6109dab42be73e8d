// HwStatusCmapSm: the statistics rows and the hardware-backed action rows of
// the classes of one applied policy map, from the policy map's hardware
// status on the slice.
//
// Watches:
// - Qos::PolicyMapHwStatus: cmap (per class added, changed or removed:
//   handleCmap(name));
// - QosMibConfig: counterPollPeriod (handleUpdateInterval()).
// A reactor exists only for a non-null input; without a configuration the
// poll period reads as 0 (statistics enabled).
// Writes, keyed by the policy map's key (key()):
// - qosStatsTable: one row per class that has hardware status, while the
//   poll period is finite, under (uniqueId(pmap), map kind, uniqueId(cmap),
//   the key's direction); recorded in qosStatsTableKey;
// - policyMapActionTable: two rows per qualifying class (action numbers 0
//   and 1) with only the hardware side filled in; recorded in
//   policyMapActionTableKey.
// doClose() removes the statistics rows, then the action rows it recorded.
// Children: none.
//
// Deliberate, keep as it stands:
// - "copp-system-drop" gets no row of either table, and rows it had are not
//   removed by handleCmap();
// - a policy map of kind 1 gets no rows at all, one of kind 2 no statistics
//   rows; "copp-system-policy" gets no statistics rows while the hardware
//   counts control-plane policing itself (coppHwStatsSupported);
// - the class filters always read the control-plane class maps (map type 0),
//   whatever the policy map's own type: action rows are kept only for the
//   static control-plane classes and for "copp-system-default";
// - the action rows are deleted and rebuilt on every notification of their
//   class;
// - handleUpdateInterval() acts only on the edges: a finite period with no
//   statistics row (re-)adds them all, tracing "enabled", infinity with
//   statistics rows removes them all, tracing "disabled"; anything else
//   changes nothing. It never touches the action rows;
// - handleInitialized() does not run handleUpdateInterval(): each statistics
//   decision reads the period itself.
// REQUIRES (asserted): the QoS status publishes a class's counters under the
// control-plane policy maps before its hardware status appears.
#pragma once

#include <tuple>

#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapActionTableIndex.h"
#include "QosSnmp/core/PolicyMapHwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/QosMibConfig.h"
#include "QosSnmp/core/QosStatsTableIndex.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace QosSnmp {

class HwStatusCmapSm : public Kel::StateMachine {
 public:
  class KelPolicyMapHwStatus
      : public Kel::Notifiee<KelPolicyMapHwStatus, HwStatusCmapSm, const Qos::PolicyMapHwStatus,
                             Qos::PolicyMapHwStatus::Cmap> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::PolicyMapHwStatus::Cmap /*attr*/, const Kel::String& name) { owner().handleCmap(name); }
  };

  class KelQosMibConfig : public Kel::Notifiee<KelQosMibConfig, HwStatusCmapSm, const QosMibConfig,
                                               QosMibConfig::CounterPollPeriod> {
   public:
    using Notifiee::Notifiee;
    void on(QosMibConfig::CounterPollPeriod /*attr*/) { owner().handleUpdateInterval(); }
  };

  HwStatusCmapSm(Qos::PolicyMapHwStatusKey key,
                 const Kel::Ptr<const Qos::PolicyMapHwStatus>& policyMapHwStatus,
                 const Kel::Ptr<const QosMibConfig>& qosMibConfig,
                 const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                 const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                 const Kel::Ptr<const Qos::Status>& qosStatus, const Kel::Ptr<QosMib>& qosMib);

  auto arguments() const {
    return std::make_tuple(key_, policyMapHwStatus_.entity(), qosMibConfig_.entity(), qosHwStatus_,
                           sliceHwStatus_, qosStatus_, qosMib_);
  }

  void handleInitialized();
  void handleCmap(const Kel::String& classMapName);
  void handleUpdateInterval();
  void doMaybeAddOrRemoveStatsEntry(const Kel::String& classMapName);
  void doClose() override;

  const Qos::PolicyMapHwStatusKey& key() const { return key_; }
  const Qos::PolicyMapHwStatus* policyMapHwStatus() const { return policyMapHwStatus_.get(); }
  const QosMibConfig* qosMibConfig() const { return qosMibConfig_.get(); }
  // The counter poll period in seconds; 0 without a configuration. Positive
  // infinity: statistics disabled.
  double interval() const;
  const Kel::KeySet<QosStatsTableIndex>& qosStatsTableKey() const { return qosStatsTableKey_; }
  const Kel::KeySet<PolicyMapActionTableIndex>& policyMapActionTableKey() const {
    return policyMapActionTableKey_;
  }

 private:
  bool statisticsEnabled() const;
  // The watched policy map's kind; 0 without hardware status.
  Kel::S32 pmapKind() const;

  Qos::PolicyMapHwStatusKey key_;
  Kel::Watch<KelPolicyMapHwStatus> policyMapHwStatus_;
  Kel::Watch<KelQosMibConfig> qosMibConfig_;
  Kel::Ptr<const Qos::HwStatus> qosHwStatus_;
  Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus_;
  Kel::Ptr<const Qos::Status> qosStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::KeySet<QosStatsTableIndex> qosStatsTableKey_;
  Kel::KeySet<PolicyMapActionTableIndex> policyMapActionTableKey_;
};

}  // namespace QosSnmp
