// The two tests by which the whole agent recognises control-plane class
// maps.
#pragma once

#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Ptr.h"
#include "kel/String.h"

namespace QosSnmp {

// The control-plane policy map, under map type 0.
inline constexpr const char* kCoppPolicyMapName = "copp-system-policy";

// The control-plane drop class, which no table mirrors.
inline constexpr const char* kCoppDropClassMapName = "copp-system-drop";

// True exactly when `type` is the control-plane map type, `cmapConfig` is
// not null and its cpType is the static kind: a class map the hardware
// provides. Traces at level 8 on entry and with its answer; a map type other
// than the control plane's is answered without reading `cmapConfig`.
bool isStaticCoppClassMap(Qos::MapType type, const Kel::Ptr<const Qos::ClassMapStatus>& cmapConfig);

// True exactly when `name` is "copp-system-drop" (whole string, case
// sensitive).
bool isCoppDropClassMap(const Kel::String& name);

}  // namespace QosSnmp
