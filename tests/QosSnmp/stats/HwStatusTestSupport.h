// What the hardware-status statistics machines' tests share: builders for
// the hardware side (per-map-type status, policy maps, classes), for the
// QoS status the machines read beside it (control-plane class maps,
// counters), and the trace lines of the control-plane class-map test the
// machines call.
#pragma once

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/ClassMapHwStatus.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/Counter.h"
#include "QosSnmp/core/PolicyMapHwStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "QosSnmp/core/PolicyMapTypeHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/SliceHwStatus.h"
#include "kel/Make.h"
#include "kel/String.h"
#include "kel/Types.h"

namespace QosSnmpTest {

// A map type's hardware status, added to a slice or ACL slice status.
template <typename Slice>
Kel::Ptr<Qos::PolicyMapTypeHwStatus> addPmapTypeHwStatus(const Kel::Ptr<Slice>& slice, Qos::MapType type) {
  auto status = Kel::make<Qos::PolicyMapTypeHwStatus>(type);
  slice->pmapTypeHwStatusIs(type, status);
  return status;
}

// A policy map's hardware status of map kind `pmapKind`, not yet added to a
// map type's.
inline Kel::Ptr<Qos::PolicyMapHwStatus> pmapHwStatusOf(const Qos::PolicyMapHwStatusKey& key,
                                                       Kel::S32 pmapKind = 0) {
  auto status = Kel::make<Qos::PolicyMapHwStatus>(key);
  status->pmapKindIs(pmapKind);
  return status;
}

// A policy map's hardware status, added to a map type's under its key.
inline Kel::Ptr<Qos::PolicyMapHwStatus> addPmapHwStatus(
    const Kel::Ptr<Qos::PolicyMapTypeHwStatus>& typeStatus, const Qos::PolicyMapHwStatusKey& key,
    Kel::S32 pmapKind = 0) {
  auto status = pmapHwStatusOf(key, pmapKind);
  typeStatus->pmapIs(key, status);
  return status;
}

// A class's hardware status, added to its policy map's.
inline Kel::Ptr<Qos::ClassMapHwStatus> addCmapHwStatus(const Kel::Ptr<Qos::PolicyMapHwStatus>& pmapStatus,
                                                       const Kel::String& name) {
  auto status = Kel::make<Qos::ClassMapHwStatus>(name);
  pmapStatus->cmapIs(name, status);
  return status;
}

// A control-plane class map (map type 0) of control-plane kind `cpType`.
inline Kel::Ptr<Qos::ClassMapStatus> addCoppClassMap(TestSwitch& testSwitch, const Kel::String& name,
                                                     Qos::ClassMapCpType cpType) {
  auto cmap = testSwitch.classMap(Qos::mapControlPlane_, name);
  cmap->cpTypeIs(cpType);
  return cmap;
}

// The counters of class `cmapName` of the policy map `pmapName`, published
// under the control-plane policy maps (map type 0), where the statistics
// machines look for them. The counter is named after the class.
inline Kel::Ptr<Qos::Counter> addCounters(TestSwitch& testSwitch, const Kel::String& pmapName,
                                          const Kel::String& cmapName) {
  Kel::Ptr<Qos::PolicyMapStatus> pmap =
      TestSwitch::mutableOf(testSwitch.pmapType(Qos::mapControlPlane_)->pmap(pmapName));
  if (!pmap) {
    pmap = testSwitch.policyMap(Qos::mapControlPlane_, pmapName);
  }
  auto counter = Kel::make<Qos::Counter>(cmapName);
  pmap->cmapCountersIs(cmapName, counter);
  return counter;
}

// The trace lines (level 8) of isStaticCoppClassMap(mapControlPlane_, cmap).
inline std::vector<std::string> staticCoppTestLines(const Kel::Ptr<const Qos::ClassMapStatus>& cmap) {
  std::ostringstream entry;
  entry << "8 isStaticCoppClassMap( type:mapControlPlane, cmapConfig:"
        << static_cast<const void*>(cmap.get());
  if (cmap && cmap->cpType() == Qos::classMapCpStatic_) {
    return {entry.str(), "8 isStaticCoppClassMap( cpType: classMapCpStatic )"};
  }
  return {entry.str(), "8 isStaticCoppClassMap(): It is not a static copp ClassMap"};
}

// The parts' lines, one part after the other.
inline std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> lines;
  for (const std::vector<std::string>& part : parts) {
    lines.insert(lines.end(), part.begin(), part.end());
  }
  return lines;
}

}  // namespace QosSnmpTest
