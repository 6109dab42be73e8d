// Qos::HwStatus: what the QoS hardware supports, as its driver publishes it.
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

class HwStatus : public Kel::Entity {
 public:
  struct CoppSupported : Kel::ScalarAttribute<1> {};
  struct CoppHwStatsSupported : Kel::ScalarAttribute<2> {};
  struct EcnCountersSupported : Kel::ScalarAttribute<3> {};
  struct EcnQueueCountersSupported : Kel::ScalarAttribute<4> {};
  struct EcnQueueCountersFlag : Kel::ScalarAttribute<5> {};
  struct NumEcnQueues : Kel::ScalarAttribute<6> {};

  // The entity name is for traces only.
  explicit HwStatus(Kel::String name = {});

  // Control-plane policing is supported.
  bool coppSupported() const { return coppSupported_.get(); }
  void coppSupportedIs(bool coppSupported) { coppSupported_.set(*this, coppSupported); }

  // The hardware counts control-plane policing per class.
  bool coppHwStatsSupported() const { return coppHwStatsSupported_.get(); }
  void coppHwStatsSupportedIs(bool coppHwStatsSupported) {
    coppHwStatsSupported_.set(*this, coppHwStatsSupported);
  }

  // The hardware counts ECN-marked traffic.
  bool ecnCountersSupported() const { return ecnCountersSupported_.get(); }
  void ecnCountersSupportedIs(bool ecnCountersSupported) {
    ecnCountersSupported_.set(*this, ecnCountersSupported);
  }

  // The hardware counts ECN-marked traffic per queue.
  bool ecnQueueCountersSupported() const { return ecnQueueCountersSupported_.get(); }
  void ecnQueueCountersSupportedIs(bool ecnQueueCountersSupported) {
    ecnQueueCountersSupported_.set(*this, ecnQueueCountersSupported);
  }

  // Per-queue ECN counting is switched on.
  bool ecnQueueCountersFlag() const { return ecnQueueCountersFlag_.get(); }
  void ecnQueueCountersFlagIs(bool ecnQueueCountersFlag) {
    ecnQueueCountersFlag_.set(*this, ecnQueueCountersFlag);
  }

  // How many queues per interface have ECN counters.
  Kel::U8 numEcnQueues() const { return numEcnQueues_.get(); }
  void numEcnQueuesIs(Kel::U8 numEcnQueues) { numEcnQueues_.set(*this, numEcnQueues); }

 private:
  Kel::Scalar<CoppSupported, bool> coppSupported_;
  Kel::Scalar<CoppHwStatsSupported, bool> coppHwStatsSupported_;
  Kel::Scalar<EcnCountersSupported, bool> ecnCountersSupported_;
  Kel::Scalar<EcnQueueCountersSupported, bool> ecnQueueCountersSupported_;
  Kel::Scalar<EcnQueueCountersFlag, bool> ecnQueueCountersFlag_;
  Kel::Scalar<NumEcnQueues, Kel::U8> numEcnQueues_;
};

}  // namespace Qos
