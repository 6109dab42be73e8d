// What the two class-map hardware-status machines (HwStatusCmapSm for the
// slice status, AclHwStatusCmapSm for the ACL slice status) share: the map
// kinds that limit their rows, the control-plane class maps their filters
// read, and the two hardware-backed action rows they keep per class.
//
//   hwActionRowsIs(*qosMib_, policyMapActionTableKey_, key_.pmapName(), policyMapHwStatus(), classMapName,
//                  qosHwStatus_, sliceHwStatus_);
//   ...
//   hwActionRowsDelAll(*qosMib_, policyMapActionTableKey_);  // in doClose()
#pragma once

#include <array>

#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/HwStatus.h"
#include "QosSnmp/core/PolicyMapActionTableIndex.h"
#include "QosSnmp/core/PolicyMapHwStatus.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "QosSnmp/core/Status.h"
#include "kel/KeySet.h"
#include "kel/Ptr.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace QosSnmp {

// Map kinds of Qos::PolicyMapHwStatus::pmapKind() that limit the rows: a
// policy map of kind 1 gets neither statistics nor action rows, one of kind
// 2 gets no statistics rows.
inline constexpr Kel::S32 kPmapKindWithoutRows = 1;
inline constexpr Kel::S32 kPmapKindWithoutStats = 2;

// A policy map's kind; 0 without hardware status.
Kel::S32 pmapKindOf(const Qos::PolicyMapHwStatus* policyMapHwStatus);

// A class's hardware status within its policy map's; null when either is
// missing.
Kel::Ptr<const Qos::ClassMapHwStatus> classMapHwStatusOf(const Qos::PolicyMapHwStatus* policyMapHwStatus,
                                                         const Kel::String& cmapName);

// The class maps the class filters read: always those of the control-plane
// map type, whatever the map type of the machine asking. Null when there is
// no status or it has no control-plane class maps.
Kel::Ptr<const Qos::ClassMapTypeStatus> controlPlaneCmapType(const Kel::Ptr<const Qos::Status>& qosStatus);

// A class's two hardware-backed action rows, under action numbers 0 and 1,
// in that order.
using HwActionRowIndexes = std::array<PolicyMapActionTableIndex, 2>;

HwActionRowIndexes hwActionRowIndexes(const Kel::String& pmapName, Kel::S32 pmapKind,
                                      const Kel::String& cmapName);

// Rebuilds the two action rows of class `cmapName` of the policy map named
// `pmapName` whose hardware status is `policyMapHwStatus` (may be null),
// indexed by its kind. Each row that exists is deleted first, in index
// order. Then, when the class has hardware status, both rows are written
// with null class action and action (the rows carry only the hardware side)
// and recorded in `policyMapActionTableKey`; without hardware status both
// rows and their records are removed.
void hwActionRowsIs(QosMib& qosMib, Kel::KeySet<PolicyMapActionTableIndex>& policyMapActionTableKey,
                    const Kel::String& pmapName, const Qos::PolicyMapHwStatus* policyMapHwStatus,
                    const Kel::String& cmapName, const Kel::Ptr<const Qos::HwStatus>& qosHwStatus,
                    const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus);

// Removes every action row recorded in `policyMapActionTableKey`, in index
// order, and empties it.
void hwActionRowsDelAll(QosMib& qosMib, Kel::KeySet<PolicyMapActionTableIndex>& policyMapActionTableKey);

}  // namespace QosSnmp
