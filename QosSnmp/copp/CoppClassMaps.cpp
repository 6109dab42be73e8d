#include "QosSnmp/copp/CoppClassMaps.h"

#include "QosSnmp/core/HandlerTrace.h"

namespace QosSnmp {

bool isStaticCoppClassMap(Qos::MapType type, const Kel::Ptr<const Qos::ClassMapStatus>& cmapConfig) {
  if (auto t = trace(8)) {
    t << "isStaticCoppClassMap( type:" << type
      << ", cmapConfig:" << static_cast<const void*>(cmapConfig.get());
  }
  if (type == Qos::mapControlPlane_ && cmapConfig && cmapConfig->cpType() == Qos::classMapCpStatic_) {
    if (auto t = trace(8)) {
      t << "isStaticCoppClassMap( cpType: " << cmapConfig->cpType() << " )";
    }
    return true;
  }
  if (auto t = trace(8)) {
    t << "isStaticCoppClassMap(): It is not a static copp ClassMap";
  }
  return false;
}

bool isCoppDropClassMap(const Kel::String& name) { return name.view() == kCoppDropClassMapName; }

}  // namespace QosSnmp
