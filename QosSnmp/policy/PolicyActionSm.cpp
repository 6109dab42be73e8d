#include "QosSnmp/policy/PolicyActionSm.h"

#include <cassert>

#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/UniqueId.h"

namespace QosSnmp {

PolicyActionSm::PolicyActionSm(const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                               const Kel::Ptr<const Qos::ClassAction>& classAction,
                               const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                               const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                               const Kel::Ptr<QosMib>& qosMib)
    : policyMapStatus_(policyMapStatus),
      classAction_(this, classAction),
      hwStatus_(hwStatus),
      sliceHwStatus_(sliceHwStatus),
      qosMib_(qosMib) {
  handleInitialized();
}

Kel::String PolicyActionSm::classMapName() const {
  return classAction_ ? classAction_->name() : Kel::String();
}

void PolicyActionSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::PolicyActionSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "PolicyActionSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  if (classAction_) {
    classAction_->policyAction().forEachKey([this](Qos::ActionType type) { handlePolicyAction(type); });
  }
}

void PolicyActionSm::handlePolicyAction(Qos::ActionType type) {
  QOS_HANDLER_RING("void QosSnmp::PolicyActionSm::handlePolicyAction(Qos::ActionType)", "i", type);
  if (auto t = trace(8)) {
    t << "PolicyActionSm::handlePolicyAction( " << type << " )";
  }
  assert(initialized());
  const PolicyMapActionTableIndex index = policyMapActionTableIndex(type);
  const Kel::Ptr<const Qos::Action> action = classAction_ ? classAction_->policyAction(type) : nullptr;
  if (!action) {
    qosMib_->policyMapActionTableDel(index);
    policyMapActionTableKey_.del(index);
    return;
  }
  qosMib_->policyMapActionTableIs(index, classAction_.entity(), action, nullptr, hwStatus_, sliceHwStatus_);
  policyMapActionTableKey_.is(index);
}

void PolicyActionSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::PolicyActionSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "PolicyActionSm::doClose()";
  }
  assert(initialized());
  policyMapActionTableKey_.drain(
      [this](const PolicyMapActionTableIndex& index) { qosMib_->policyMapActionTableDel(index); });
}

PolicyMapActionTableIndex PolicyActionSm::policyMapActionTableIndex(Qos::ActionType type) const {
  const Snmp::String pmapName = policyMapStatus_ ? uniqueId(policyMapStatus_->name()) : Snmp::String();
  const auto pmapType = static_cast<Kel::S32>(policyMapStatus_ ? policyMapStatus_->type() : Qos::MapType{});
  return {pmapName, pmapType, uniqueId(classMapName()), static_cast<Kel::S32>(type)};
}

}  // namespace QosSnmp
