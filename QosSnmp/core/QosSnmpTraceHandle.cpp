#include "QosSnmp/core/QosSnmpTraceHandle.h"

namespace QosSnmp {

Kel::TraceHandle& traceHandle() {
  // Made on first use, so it registers after the framework's trace
  // configuration exists, whatever the order of static initialisation.
  static Kel::TraceHandle handle("QosSnmp");
  return handle;
}

}  // namespace QosSnmp
