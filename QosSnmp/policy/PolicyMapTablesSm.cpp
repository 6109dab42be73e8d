#include "QosSnmp/policy/PolicyMapTablesSm.h"

#include <cassert>

#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/MutatorException.h"

namespace QosSnmp {

PolicyMapTablesSm::PolicyMapTablesSm(const Kel::Ptr<const Qos::PolicyMapTypeStatus>& policyMapTypeStatus,
                                     const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                                     const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                                     const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                     const Kel::Ptr<QosMib>& qosMib)
    : policyMapTypeStatus_(this, policyMapTypeStatus),
      classMapTypeStatus_(classMapTypeStatus),
      hwStatus_(hwStatus),
      sliceHwStatus_(sliceHwStatus),
      qosMib_(qosMib) {
  handleInitialized();
}

Qos::MapType PolicyMapTablesSm::type() const {
  return policyMapTypeStatus_ ? policyMapTypeStatus_->type() : Qos::MapType{};
}

void PolicyMapTablesSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::PolicyMapTablesSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "PolicyMapTablesSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (policyMapTypeStatus_) {
    policyMapTypeStatus_->pmap().forEachKey([this](const Kel::String& name) { handlePmap(name); });
  }
}

void PolicyMapTablesSm::handlePmap(const Kel::String& name) {
  QOS_HANDLER_RING("void QosSnmp::PolicyMapTablesSm::handlePmap(Kel::String)", "p", name);
  if (auto t = trace(8)) {
    t << "PolicyMapTablesSm::handlePmap( " << name << " )";
  }
  assert(initialized());
  const PolicyMapTableIndex index(uniqueId(name), type());
  const Kel::Ptr<const Qos::PolicyMapStatus> pmap =
      policyMapTypeStatus_ ? policyMapTypeStatus_->pmap(name) : nullptr;
  if (pmap) {
    // The child's construction writes the class and action rows; the
    // policy-map row follows them.
    classActionSmIs(pmap, classMapTypeStatus_, hwStatus_, sliceHwStatus_, qosMib_);
    qosMib_->policyMapTableIs(index, pmap);
    policyMapTableKey_.is(index);
  } else {
    // The child's close removes the class and action rows first.
    classActionSmDel(name);
    qosMib_->policyMapTableDel(index);
    policyMapTableKey_.del(index);
  }
}

void PolicyMapTablesSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::PolicyMapTablesSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "PolicyMapTablesSm::doClose()";
  }
  assert(initialized());
  classActionSmDelAll();
  policyMapTableKey_.drain([this](const PolicyMapTableIndex& index) { qosMib_->policyMapTableDel(index); });
}

ClassActionSm* PolicyMapTablesSm::classActionSmIs(
    const Kel::Ptr<const Qos::PolicyMapStatus>& pmap,
    const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
    const Kel::Ptr<const Qos::HwStatus>& hwStatus, const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
    const Kel::Ptr<QosMib>& qosMib) {
  Kel::requireArgument(pmap, "pmap");
  Kel::requireArgument(qosMib, "qosMib");
  return classActionSm_.is(pmap->name(), pmap, classMapTypeStatus, hwStatus, sliceHwStatus, qosMib);
}

}  // namespace QosSnmp
