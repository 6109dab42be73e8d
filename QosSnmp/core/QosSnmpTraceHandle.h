// The agent's framework trace handle, module "QosSnmp".
//
// One handle for the whole agent, made on first use and living until the
// process ends; the input model and the state machines trace through it, so
// `KEL_TRACE='QosSnmp/0-8'` (or Kel::traceLevelsIs) switches all of them.
//
//   if (auto t = QosSnmp::traceHandle().line(8)) {
//     t << "ifIndex: " << index;
//   }
#pragma once

#include "kel/Trace.h"

namespace QosSnmp {

Kel::TraceHandle& traceHandle();

}  // namespace QosSnmp
