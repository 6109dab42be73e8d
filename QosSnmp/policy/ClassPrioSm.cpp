#include "QosSnmp/policy/ClassPrioSm.h"

#include <cassert>
#include <utility>

#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/UniqueId.h"
#include "QosSnmp/policy/ClassActionSm.h"

namespace QosSnmp {

ClassPrioSm::ClassPrioSm(const Kel::Ptr<const Qos::ClassPriority>& classPrio, PolicyMapClassTableIndex index,
                         const Kel::Ptr<const Qos::PolicyMapStatus>& policyMapStatus,
                         const Kel::Ptr<QosMib>& qosMib, ClassActionSm* parent)
    : classPrio_(this, classPrio),
      index_(std::move(index)),
      policyMapStatus_(policyMapStatus),
      qosMib_(qosMib),
      parent_(parent) {
  handleInitialized();
}

Kel::String ClassPrioSm::cmapName() const { return classPrio_ ? classPrio_->cmapName() : Kel::String(); }

void ClassPrioSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::ClassPrioSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "ClassPrioSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  handleCmapName();
}

void ClassPrioSm::handleCmapName() {
  QOS_HANDLER_RING("void QosSnmp::ClassPrioSm::handleCmapName()", "");
  if (auto t = trace(8)) {
    t << "ClassPrioSm::handleCmapName()";
  }
  assert(initialized());
  const Kel::String name = cmapName();
  if (name.empty()) {
    return;
  }
  // Unlink the name this priority showed before, so that the old class
  // map's changes stop reaching this machine.
  const Kel::String formerName = parent_->prioToCmapNameDel(prio());
  parent_->cmapNameToPrioDel(formerName);
  parent_->prioToCmapNameIs(prio(), name);
  parent_->cmapNameToPrioIs(name, prio());

  qosMib_->policyMapClassTableDel(index_);
  const Qos::ClassMapTypeStatus* classMapTypeStatus = parent_->classMapTypeStatus();
  if (classMapTypeStatus == nullptr || !classMapTypeStatus->cmap(name)) {
    // The row comes back when the class map is added: the parent's
    // handleCmap runs this handler again.
    return;
  }
  const Snmp::String rowName = uniqueId(name);
  if (auto t = trace(8)) {
    t << "Adding entry for " << rowName;
  }
  qosMib_->policyMapClassTableIs(index_, policyMapStatus_, rowName);
}

void ClassPrioSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::ClassPrioSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "ClassPrioSm::doClose()";
  }
  assert(initialized());
  const Kel::String name = cmapName();
  if (auto t = trace(8)) {
    t << "Deleting entry in cmapNameToPrio: " << name;
  }
  parent_->prioToCmapNameDel(prio());
  parent_->cmapNameToPrioDel(name);
  qosMib_->policyMapClassTableDel(index_);
}

}  // namespace QosSnmp
