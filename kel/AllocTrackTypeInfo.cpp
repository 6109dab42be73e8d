#include "kel/AllocTrackTypeInfo.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <mutex>

namespace Kel {
namespace {

struct Registry {
  std::mutex mutex;
  std::vector<const AllocTrackTypeInfo*> records;
};

Registry& registry() {
  static auto* instance = new Registry;  // never destroyed: records outlive static teardown
  return *instance;
}

std::string demangle(const char* mangled) {
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> plain(abi::__cxa_demangle(mangled, nullptr, nullptr, &status),
                                                    &std::free);
  return status == 0 && plain ? std::string(plain.get()) : std::string(mangled);
}

}  // namespace

AllocTrackTypeInfo::AllocTrackTypeInfo(const std::type_info& type) : name_(demangle(type.name())) {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.records.push_back(this);
}

std::vector<const AllocTrackTypeInfo*> AllocTrackTypeInfo::all() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  return r.records;
}

S64 AllocTrackTypeInfo::liveObjectsOf(const std::string& name) {
  S64 live = 0;
  for (const AllocTrackTypeInfo* info : all()) {
    if (info->name() == name) {
      live += info->live();
    }
  }
  return live;
}

}  // namespace Kel
