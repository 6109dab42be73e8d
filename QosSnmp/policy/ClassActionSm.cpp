#include "QosSnmp/policy/ClassActionSm.h"

#include <cassert>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/QosSnmpAgent.h"
#include "QosSnmp/core/UniqueId.h"
#include "kel/MutatorException.h"

namespace QosSnmp {

ClassActionSm::ClassActionSm(const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                             const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus,
                             const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                             const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                             const Kel::Ptr<QosMib>& qosMib)
    : policyMapStatus_(this, policyMapStatus),
      classMapTypeStatus_(this, classMapTypeStatus),
      hwStatus_(hwStatus),
      sliceHwStatus_(sliceHwStatus),
      qosMib_(qosMib) {
  handleInitialized();
}

Kel::String ClassActionSm::pmapName() const {
  return policyMapStatus_ ? policyMapStatus_->name() : Kel::String();
}

Qos::MapType ClassActionSm::pmapType() const {
  return policyMapStatus_ ? policyMapStatus_->type() : Qos::MapType{};
}

void ClassActionSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::ClassActionSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "ClassActionSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  handleDefaultClassAction();
  handleDefaultClassPriority();
  if (policyMapStatus_) {
    policyMapStatus_->classAction().forEachKey([this](const Kel::String& name) { handleClassAction(name); });
    policyMapStatus_->classPrio().forEachKey([this](Kel::U32 prio) { handleClassPrio(prio); });
  }
}

void ClassActionSm::handleClassAction(const Kel::String& name) {
  QOS_HANDLER_RING("void QosSnmp::ClassActionSm::handleClassAction(Kel::String)", "p", name);
  if (auto t = trace(8)) {
    t << "ClassActionSm::handleClassAction( " << name << " )";
  }
  assert(initialized());
  if (isCoppDropClassMap(name)) {
    return;
  }
  if (pmapType() == Qos::mapControlPlane_) {
    return;
  }
  const Kel::Ptr<const Qos::ClassAction> classAction =
      policyMapStatus_ ? policyMapStatus_->classAction(name) : nullptr;
  const bool classMapExists = classAction && classMapTypeStatus_ && classMapTypeStatus_->cmap(name);
  if (classMapExists) {
    policyActionSmIs(policyMapStatus_.entity(), classAction, hwStatus_, sliceHwStatus_, qosMib_);
  } else {
    policyActionSmDel(name);
  }
}

void ClassActionSm::handleCmap(const Kel::String& name) {
  QOS_HANDLER_RING("void QosSnmp::ClassActionSm::handleCmap(Kel::String)", "p", name);
  if (auto t = trace(8)) {
    t << "ClassActionSm::handleCmap( " << name << " )";
  }
  if (policyMapStatus_ && policyMapStatus_->classAction(name)) {
    handleClassAction(name);
  }
  const Kel::U32 prio = cmapNameToPrio(name);
  if (auto t = trace(8)) {
    t << "cmapNameToPrio is: " << prio;
  }
  if (prio == 0) {
    return;
  }
  if (ClassPrioSm* classPrio = classPrioSm(prio)) {
    classPrio->handleCmapName();
  }
}

void ClassActionSm::handleClassPrio(Kel::U32 prio) {
  QOS_HANDLER_RING("void QosSnmp::ClassActionSm::handleClassPrio(U32)", "i", prio);
  if (auto t = trace(8)) {
    t << "ClassActionSm::handleClassPrio( " << prio << " )";
  }
  assert(initialized());
  const Kel::Ptr<const Qos::ClassPriority> classPrio =
      policyMapStatus_ ? policyMapStatus_->classPrio(prio) : nullptr;
  if (classPrio) {
    classPrioSmIs(classPrio, policyMapClassTableIndex(prio), policyMapStatus_.entity(), qosMib_);
  } else {
    classPrioSmDel(prio);
  }
}

void ClassActionSm::handleDefaultClassAction() {
  QOS_HANDLER_RING("void QosSnmp::ClassActionSm::handleDefaultClassAction()", "");
  if (auto t = trace(8)) {
    t << "ClassActionSm::handleDefaultClassAction()";
  }
  assert(initialized());
  // Without a policy map the type reads as the control plane's: no work.
  if (pmapType() == Qos::mapControlPlane_) {
    return;
  }
  // A default class action that disappears keeps its child until close.
  if (const Kel::Ptr<const Qos::ClassAction> defaultClassAction = policyMapStatus_->defaultClassAction()) {
    policyActionSmIs(policyMapStatus_.entity(), defaultClassAction, hwStatus_, sliceHwStatus_, qosMib_);
  }
}

void ClassActionSm::handleDefaultClassPriority() {
  QOS_HANDLER_RING("void QosSnmp::ClassActionSm::handleDefaultClassPriority()", "");
  if (auto t = trace(8)) {
    t << "ClassActionSm::handleDefaultClassPriority()";
  }
  assert(initialized());
  if (pmapType() == Qos::mapControlPlane_) {
    return;
  }
  const Kel::Ptr<const Qos::ClassMapStatus> classDefault = policyMapStatus_->classDefault();
  if (!classDefault) {
    if (auto t = trace(9)) {
      t << "ClassActionSm::handleDefaultClassPriority() No cmapConfig exists";
    }
    return;
  }
  const PolicyMapClassTableIndex index = policyMapClassTableIndex(kDefaultClassPriority);
  qosMib_->policyMapClassTableDel(index);
  qosMib_->policyMapClassTableIs(index, policyMapStatus_.entity(), uniqueId(classDefault->name()));
  policyMapClassTableKey_.is(index);
  handleDefaultClassAction();
}

void ClassActionSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::ClassActionSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "ClassActionSm::doClose()";
  }
  assert(initialized());
  policyMapClassTableKey_.drain(
      [this](const PolicyMapClassTableIndex& index) { qosMib_->policyMapClassTableDel(index); });
  policyActionSmDelAll();
  classPrioSmDelAll();
}

PolicyActionSm* ClassActionSm::policyActionSmIs(const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                                                const Kel::Ptr<const Qos::ClassAction>& classAction,
                                                const Kel::Ptr<const Qos::HwStatus>& hwStatus,
                                                const Kel::Ptr<const Qos::SliceHwStatus>& sliceHwStatus,
                                                const Kel::Ptr<QosMib>& qosMib) {
  Kel::requireArgument(classAction, "classAction");
  Kel::requireArgument(qosMib, "qosMib");
  return policyActionSm_.is(classAction->name(), policyMapStatus, classAction, hwStatus, sliceHwStatus,
                            qosMib);
}

ClassPrioSm* ClassActionSm::classPrioSmIs(const Kel::Ptr<const Qos::ClassPriority>& classPrio,
                                          const PolicyMapClassTableIndex& index,
                                          const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                                          const Kel::Ptr<QosMib>& qosMib) {
  Kel::requireArgument(classPrio, "classPrio");
  Kel::requireArgument(qosMib, "qosMib");
  // `this` goes in as a named value: the child map ties the arguments to
  // compare them with an existing child's.
  ClassActionSm* const parent = this;
  return classPrioSm_.is(classPrio->prio(), classPrio, index, policyMapStatus, qosMib, parent);
}

PolicyMapClassTableIndex ClassActionSm::policyMapClassTableIndex(Kel::U32 prio) const {
  return {uniqueId(pmapName()), pmapType(), prio};
}

}  // namespace QosSnmp
