// prefetchLine / prefetchObject: ask the processor for the cache lines
// holding an address or an object ahead of their use, so that a miss
// overlaps other work (the SNMP library's handling of the previous answer,
// for a walk). They read nothing and never fault; any address is allowed.
//
//   prefetchLine(&*order[next]);             // the row the walk reads next
//   prefetchObject(row.action.get());        // the entity its column reads
#pragma once

#include <algorithm>
#include <cstddef>

namespace QosSnmpHost {

inline void prefetchLine(const void* address) noexcept {
  __builtin_prefetch(address);
  // Keeps the prefetch: GCC 12 drops a __builtin_prefetch whose address is
  // loaded under a condition.
  asm volatile("" : : "r"(address));
}

// Every cache line of *object, up to four (an entity's attributes lie past
// its header); nothing for null.
template <typename T>
void prefetchObject(const T* object) noexcept {
  constexpr std::size_t kLine = 64;
  constexpr std::size_t kLines = std::min<std::size_t>((sizeof(T) + kLine - 1) / kLine, 4);
  if (object == nullptr) {
    return;
  }
  const auto* bytes = reinterpret_cast<const unsigned char*>(object);
  for (std::size_t line = 0; line < kLines; ++line) {
    prefetchLine(bytes + line * kLine);
  }
}

}  // namespace QosSnmpHost
