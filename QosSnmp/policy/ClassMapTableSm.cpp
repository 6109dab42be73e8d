#include "QosSnmp/policy/ClassMapTableSm.h"

#include <cassert>
#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/MutatorException.h"

namespace QosSnmp {

ClassMapTableSm::ClassMapTableSm(const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                                 Kel::Ptr<QosMib> qosMib)
    : classMapTypeStatus_(this, classMapTypeStatus), qosMib_(std::move(qosMib)) {
  handleInitialized();
}

Qos::MapType ClassMapTableSm::type() const {
  return classMapTypeStatus_ ? classMapTypeStatus_->type() : Qos::MapType{};
}

void ClassMapTableSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::ClassMapTableSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "ClassMapTableSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (classMapTypeStatus_) {
    classMapTypeStatus_->cmap().forEachKey([this](const Kel::String& name) { handleCmap(name); });
  }
}

void ClassMapTableSm::handleCmap(const Kel::String& name) {
  QOS_HANDLER_RING("void QosSnmp::ClassMapTableSm::handleCmap(Kel::String)", "p", name);
  if (auto t = trace(8)) {
    t << "ClassMapTableSm::handleCmap( " << name << " )";
  }
  assert(initialized());
  if (isCoppDropClassMap(name)) {
    return;
  }
  const ClassMapTableIndex index(uniqueId(name), type());
  if (const auto cmap = classMapTypeStatus_ ? classMapTypeStatus_->cmap(name) : nullptr) {
    matchSmIs(cmap, index, qosMib_);
  } else {
    matchSmDel(name);
  }
}

void ClassMapTableSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::ClassMapTableSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "ClassMapTableSm::doClose()";
  }
  assert(initialized());
  matchSmDelAll();
}

MatchSm* ClassMapTableSm::matchSmIs(const Kel::Ptr<const Qos::ClassMapStatus>& cmap,
                                    const ClassMapTableIndex& index, const Kel::Ptr<QosMib>& qosMib) {
  Kel::requireArgument(cmap, "cmap");
  Kel::requireArgument(qosMib, "qosMib");
  // The class map carries the key, so an existing child is compared on the
  // other arguments only.
  if (MatchSm* existing = matchSm_.find(cmap->name());
      existing != nullptr && existing->index() == index && existing->qosMib() == qosMib) {
    return existing;
  }
  return matchSm_.is(cmap->name(), cmap, index, qosMib);
}

}  // namespace QosSnmp
