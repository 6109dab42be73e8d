// AllocTrackTypeInfo: live allocation counts of one type.
//
// Every object made with Kel::make<T>() counts against T's record from the
// end of its construction to the start of its destruction, and every node of
// a framework collection counts against the collection's node type. Records
// register themselves on first use, so a test can check that tearing the
// agent down leaves nothing alive:
//
//   EXPECT_EQ(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::MatchSm"), 0);
#pragma once

#include <atomic>
#include <string>
#include <typeinfo>
#include <vector>

#include "kel/PtrInterface.h"
#include "kel/Types.h"

namespace Kel {

class AllocTrackTypeInfo {
 public:
  explicit AllocTrackTypeInfo(const std::type_info& type);
  AllocTrackTypeInfo(const AllocTrackTypeInfo&) = delete;
  AllocTrackTypeInfo& operator=(const AllocTrackTypeInfo&) = delete;

  // The demangled type name, for example "QosSnmp::MatchSm".
  const std::string& name() const { return name_; }
  S64 live() const { return allocations() - releases(); }
  S64 allocations() const { return allocations_.load(std::memory_order_relaxed); }
  S64 releases() const { return releases_.load(std::memory_order_relaxed); }

  void allocated() noexcept { countAdd<S64>(allocations_, 1); }
  void released() noexcept { countAdd<S64>(releases_, 1); }

  // Every record created so far in the process, in creation order.
  static std::vector<const AllocTrackTypeInfo*> all();
  // Live objects of the types with this name (a type seen from several
  // loaded modules may have several records).
  static S64 liveObjectsOf(const std::string& name);

 private:
  std::string name_;
  std::atomic<S64> allocations_{0};
  std::atomic<S64> releases_{0};
};

template <typename T>
AllocTrackTypeInfo& allocTrackTypeInfo() {
  static AllocTrackTypeInfo info(typeid(T));
  return info;
}

}  // namespace Kel
