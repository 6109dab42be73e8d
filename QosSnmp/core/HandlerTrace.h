// The agent's entry trace, written by every handler as its first statement:
//
//   void RootSm::handleCmapType(Qos::MapType type) {
//     QOS_HANDLER_RING("void QosSnmp::RootSm::handleCmapType(Qos::MapType)", "i", type);
//     if (auto t = trace(8)) {
//       t << "RootSm::handleCmapType( " << type << " )";
//     }
//     ...
//
// QOS_HANDLER_RING declares the site's ring-buffer message (registered with
// the ring file on first use) and a block timer that writes the entry now
// and records the handler's duration when it returns. trace(level) opens one
// framework trace line on the agent's trace handle; the level is tested
// before anything is streamed.
#pragma once

#include <source_location>

#include "QosSnmp/core/QosSnmpTraceHandle.h"
#include "kel/RingTrace.h"
#include "kel/Trace.h"

#define QOS_HANDLER_RING(signature, format, ...)                             \
  static constinit ::RingTrace::Site qosHandlerSite_((signature), (format)); \
  const ::RingTrace::BlockTimer qosHandlerTimer_(qosHandlerSite_ __VA_OPT__(, ) __VA_ARGS__)

namespace QosSnmp {

inline Kel::TraceHelper trace(int level, std::source_location where = std::source_location::current()) {
  return traceHandle().line(level, where);
}

}  // namespace QosSnmp
