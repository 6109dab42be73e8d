#include "QosSnmp/core/QosMib.h"

#include <utility>

namespace QosSnmp {

std::size_t QosMib::rowCount() const {
  return classMapTable_.size() + classMapMatchTable_.size() + policyMapTable_.size() +
         policyMapClassTable_.size() + policyMapActionTable_.size() + qosStatsTable_.size() +
         qosPolicerStatsTable_.size() + servicePolicyTable_.size() + ecnCounterTable_.size() +
         ecnQueueCounterTable_.size();
}

void QosMib::classMapTableIs(const ClassMapTableIndex& index,
                             Kel::Ptr<const Qos::ClassMapStatus> classMapStatus) {
  classMapTable_.set(index, {std::move(classMapStatus)});
}

void QosMib::classMapTableDel(const ClassMapTableIndex& index) { classMapTable_.del(index); }

void QosMib::classMapMatchTableIs(const ClassMapMatchTableIndex& index,
                                  Kel::Ptr<const Qos::ClassMapStatus> classMapStatus,
                                  Kel::Ptr<const Qos::ClassMapMatch> classMapMatch) {
  classMapMatchTable_.set(index, {std::move(classMapStatus), std::move(classMapMatch)});
}

void QosMib::classMapMatchTableDel(const ClassMapMatchTableIndex& index) { classMapMatchTable_.del(index); }

void QosMib::cmapByStaticTypeIs(Qos::ClassMapCpStaticType type,
                                Kel::Ptr<const Qos::ClassMapStatus> classMapStatus) {
  cmapByStaticType_.is(type, std::move(classMapStatus));
}

void QosMib::cmapByStaticTypeDel(Qos::ClassMapCpStaticType type) { cmapByStaticType_.del(type); }

void QosMib::policyMapTableIs(const PolicyMapTableIndex& index,
                              Kel::Ptr<const Qos::PolicyMapStatus> policyMapStatus) {
  policyMapTable_.set(index, {std::move(policyMapStatus)});
}

void QosMib::policyMapTableDel(const PolicyMapTableIndex& index) { policyMapTable_.del(index); }

void QosMib::policyMapClassTableIs(const PolicyMapClassTableIndex& index,
                                   Kel::Ptr<const Qos::PolicyMapStatus> policyMapStatus,
                                   Snmp::String cmapName) {
  policyMapClassTable_.set(index, {std::move(policyMapStatus), std::move(cmapName)});
}

void QosMib::policyMapClassTableDel(const PolicyMapClassTableIndex& index) {
  policyMapClassTable_.del(index);
}

void QosMib::policyMapActionTableIs(const PolicyMapActionTableIndex& index,
                                    Kel::Ptr<const Qos::ClassAction> classAction,
                                    Kel::Ptr<const Qos::Action> action,
                                    Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatus,
                                    Kel::Ptr<const Qos::HwStatus> hwStatus,
                                    Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus) {
  policyMapActionTable_.set(index, {std::move(classAction), std::move(action), std::move(classMapHwStatus),
                                    std::move(hwStatus), std::move(sliceHwStatus)});
}

void QosMib::policyMapActionTableDel(const PolicyMapActionTableIndex& index) {
  policyMapActionTable_.del(index);
}

void QosMib::qosStatsTableIs(const QosStatsTableIndex& index,
                             Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatus,
                             Kel::Ptr<const Qos::Counter> counter) {
  qosStatsTable_.set(index, {std::move(classMapHwStatus), std::move(counter), {}}, counterClock_);
}

void QosMib::qosStatsTableDel(const QosStatsTableIndex& index) { qosStatsTable_.del(index); }

void QosMib::qosPolicerStatsTableIs(const QosPolicerStatsTableIndex& index,
                                    Kel::Ptr<const Qos::PolicerHwStatus> policerHwStatus) {
  qosPolicerStatsTable_.set(index, {std::move(policerHwStatus), {}}, counterClock_);
}

void QosMib::qosPolicerStatsTableDel(const QosPolicerStatsTableIndex& index) {
  qosPolicerStatsTable_.del(index);
}

void QosMib::servicePolicyTableIs(const ServicePolicyTableIndex& index, Snmp::String pmapName,
                                  Qos::ServicePolicyKey servicePolicyKey) {
  servicePolicyTable_.set(index, {std::move(pmapName), std::move(servicePolicyKey)});
}

void QosMib::servicePolicyTableDel(const ServicePolicyTableIndex& index) { servicePolicyTable_.del(index); }

void QosMib::ecnCounterTableIs(const Snmp::String& chipName, Kel::Ptr<const Qos::ChipCounter> chipCounter,
                               Kel::U32 flags) {
  ecnCounterTable_.set(chipName, {std::move(chipCounter), flags, {}}, counterClock_);
}

void QosMib::ecnCounterTableDel(const Snmp::String& chipName) { ecnCounterTable_.del(chipName); }

void QosMib::ecnCounterTableDelAll() { ecnCounterTable_.delAll(); }

void QosMib::ecnQueueCounterTableIs(const EcnQueueCounterTableIndex& index, Pellix::IntfId intfId,
                                    Kel::Ptr<const Qos::SliceHwStatus> sliceHwStatus,
                                    Kel::Ptr<const Qos::EcnCounterTable> ecnCounterTable,
                                    bool ecnQueueCountersFlag) {
  ecnQueueCounterTable_.set(
      index,
      {std::move(intfId), std::move(sliceHwStatus), std::move(ecnCounterTable), ecnQueueCountersFlag, {}},
      counterClock_);
}

void QosMib::ecnQueueCounterTableDel(const EcnQueueCounterTableIndex& index) {
  ecnQueueCounterTable_.del(index);
}

void QosMib::ecnQueueCounterTableDelAll() { ecnQueueCounterTable_.delAll(); }

void QosMib::ecnQueueCountersRestarted(const Qos::EcnCounterTable& ecnCounterTable,
                                       const Pellix::IntfId& intf) {
  if (!hasIntfIdToifIndex(intf)) {
    return;
  }
  const Kel::S32 ifIndex = intfIdToifIndex(intf);
  const CounterStamp now{counterClock_ ? counterClock_() : 0};
  // Queues are 8-bit: every row of the ifIndex lies from queue 0 on.
  for (auto it = ecnQueueCounterTable_.lowerBound(EcnQueueCounterTableIndex(ifIndex, 0));
       it != ecnQueueCounterTable_.end() && it->first.ifIndex() == ifIndex; ++it) {
    if (it->second.intfId == intf && it->second.ecnCounterTable.get() == &ecnCounterTable) {
      ecnQueueCounterTable_.counterStampIs(it->first, now);
    }
  }
}

void QosMib::intfIdToifIndexIs(const Pellix::IntfId& intf, Kel::S32 ifIndex) {
  intfIdToifIndex_.is(intf, ifIndex);
}

void QosMib::intfIdToifIndexDel(const Pellix::IntfId& intf) { intfIdToifIndex_.del(intf); }

}  // namespace QosSnmp
