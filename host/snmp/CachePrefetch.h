// prefetchLine: asks the processor for the cache line holding `address`
// ahead of its use, so that a miss overlaps other work (the SNMP library's
// handling of the previous answer, for a walk). It reads nothing and never
// faults; any address is allowed.
//
//   prefetchLine(&*order[next]);   // the row the walk reads next
#pragma once

namespace QosSnmpHost {

inline void prefetchLine(const void* address) noexcept {
  __builtin_prefetch(address);
  // Keeps the prefetch: GCC 12 drops a __builtin_prefetch whose address is
  // loaded under a condition.
  asm volatile("" : : "r"(address));
}

}  // namespace QosSnmpHost
