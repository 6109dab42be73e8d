#include "QosSnmp/stats/HwStatusClassRows.h"

#include "QosSnmp/core/UniqueId.h"

namespace QosSnmp {

Kel::S32 pmapKindOf(const Qos::PolicyMapHwStatus* policyMapHwStatus) {
  return policyMapHwStatus != nullptr ? policyMapHwStatus->pmapKind() : 0;
}

Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatusOf(const Qos::PolicyMapHwStatus* policyMapHwStatus,
                                                         const Kel::String& cmapName) {
  return policyMapHwStatus != nullptr ? policyMapHwStatus->cmap(cmapName) : nullptr;
}

Kel::Ptr<const Qos::ClassMapTypeStatus> controlPlaneCmapType(const Kel::Ptr<const Qos::Status>& qosStatus) {
  return qosStatus ? qosStatus->cmapType(Qos::mapControlPlane_) : nullptr;
}

HwActionRowIndexes hwActionRowIndexes(const Kel::String& pmapName, Kel::S32 pmapKind,
                                      const Kel::String& cmapName) {
  const Snmp::String pmapId = uniqueId(pmapName);
  const Snmp::String cmapId = uniqueId(cmapName);
  return {PolicyMapActionTableIndex(pmapId, pmapKind, cmapId, Qos::actionSetShape_),
          PolicyMapActionTableIndex(pmapId, pmapKind, cmapId, Qos::actionSetBandwidth_)};
}

void hwActionRowsIs(QosMib& qosMib, Kel::KeySet<PolicyMapActionTableIndex>& policyMapActionTableKey,
                    const Kel::String& pmapName, const Qos::PolicyMapHwStatus* policyMapHwStatus,
                    const Kel::String& cmapName, const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus) {
  const HwActionRowIndexes indexes = hwActionRowIndexes(pmapName, pmapKindOf(policyMapHwStatus), cmapName);
  for (const PolicyMapActionTableIndex& index : indexes) {
    if (qosMib.policyMapActionTable(index) != nullptr) {
      qosMib.policyMapActionTableDel(index);
    }
  }
  const Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatus =
      classMapHwStatusOf(policyMapHwStatus, cmapName);
  if (!classMapHwStatus) {
    for (const PolicyMapActionTableIndex& index : indexes) {
      qosMib.policyMapActionTableDel(index);
    }
    for (const PolicyMapActionTableIndex& index : indexes) {
      policyMapActionTableKey.del(index);
    }
    return;
  }
  for (const PolicyMapActionTableIndex& index : indexes) {
    qosMib.policyMapActionTableIs(index, nullptr, nullptr, classMapHwStatus, qosHwStatus, sliceHwStatus);
  }
  for (const PolicyMapActionTableIndex& index : indexes) {
    policyMapActionTableKey.is(index);
  }
}

void hwActionRowsDelAll(QosMib& qosMib, Kel::KeySet<PolicyMapActionTableIndex>& policyMapActionTableKey) {
  policyMapActionTableKey.drain(
      [&qosMib](const PolicyMapActionTableIndex& index) { qosMib.policyMapActionTableDel(index); });
}

}  // namespace QosSnmp
