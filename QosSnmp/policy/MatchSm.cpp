#include "QosSnmp/policy/MatchSm.h"

#include <cassert>
#include <utility>

#include "QosSnmp/copp/CoppClassMaps.h"
#include "QosSnmp/core/HandlerTrace.h"
#include "QosSnmp/core/UniqueId.h"

namespace QosSnmp {

MatchSm::MatchSm(const Kel::Ptr<const Qos::ClassMapStatus>& classMapStatus, ClassMapTableIndex index,
                 Kel::Ptr<QosMib> qosMib)
    : classMapStatus_(this, classMapStatus), index_(std::move(index)), qosMib_(std::move(qosMib)) {
  handleInitialized();
}

Kel::String MatchSm::classMapName() const {
  return classMapStatus_ ? classMapStatus_->name() : Kel::String();
}

Qos::MapType MatchSm::classMapType() const {
  return classMapStatus_ ? classMapStatus_->type() : Qos::MapType{};
}

Qos::ClassMapCpStaticType MatchSm::classMapCpStaticType() const {
  return classMapStatus_ ? classMapStatus_->cpStaticType() : Qos::ClassMapCpStaticType{};
}

void MatchSm::handleInitialized() {
  QOS_HANDLER_RING("void QosSnmp::MatchSm::handleInitialized()", "");
  if (auto t = trace(8)) {
    t << "MatchSm::handleInitialized()";
  }
  assert(!initialized());
  initializedIs(true);
  handleTableEntries();
}

void MatchSm::handleTableEntries() {
  QOS_HANDLER_RING("void QosSnmp::MatchSm::handleTableEntries()", "");
  if (auto t = trace(8)) {
    t << "MatchSm::handleTableEntries()";
  }
  assert(initialized());
  const Kel::Ptr<const Qos::ClassMapStatus> cmap = classMapStatus_.entity();
  if (isStaticCoppClassMap(classMapType(), cmap)) {
    // Filed by static type for CoppStaticSm, which writes the rows of the
    // static classes; this machine's own rows go.
    qosMib_->cmapByStaticTypeIs(classMapCpStaticType(), cmap);
    doClose();
    return;
  }
  qosMib_->cmapByStaticTypeDel(classMapCpStaticType());
  qosMib_->classMapTableIs(index_, cmap);
  handleMatch();
}

void MatchSm::handleMatch() {
  QOS_HANDLER_RING("void QosSnmp::MatchSm::handleMatch()", "");
  if (auto t = trace(8)) {
    t << "MatchSm::handleMatch()";
  }
  if (classMapStatus_) {
    classMapStatus_->match().forEachKey([this](Qos::ClassMapMatchOption option) { handleMatch(option); });
  }
}

void MatchSm::handleMatch(Qos::ClassMapMatchOption option) {
  QOS_HANDLER_RING("void QosSnmp::MatchSm::handleMatch(Qos::ClassMapMatchOption)", "i", option);
  if (auto t = trace(8)) {
    t << "MatchSm::handleMatch( " << option << " )";
  }
  assert(initialized());
  const Snmp::String rowName = uniqueId(classMapName());
  const Kel::Ptr<const Qos::ClassMapMatch> match = classMapStatus_ ? classMapStatus_->match(option) : nullptr;
  if (!match) {
    // An option that never had an index reads as 0.
    const ClassMapMatchTableIndex index(rowName, classMapType(), matchIndex_.get(option));
    qosMib_->classMapMatchTableDel(index);
    classMapMatchTableKey_.del(index);
    matchIndex_.del(option);
    return;
  }
  // Counted, not allocated: see the header.
  const auto matchIndex = static_cast<Kel::U32>(matchIndex_.size() + 1);
  const ClassMapMatchTableIndex index(rowName, classMapType(), matchIndex);
  qosMib_->classMapMatchTableIs(index, classMapStatus_.entity(), match);
  classMapMatchTableKey_.is(index);
  matchIndex_.is(option, matchIndex);
}

void MatchSm::doClose() {
  QOS_HANDLER_RING("void QosSnmp::MatchSm::doClose()", "");
  if (auto t = trace(8)) {
    t << "MatchSm::doClose()";
  }
  assert(initialized());
  qosMib_->classMapTableDel(index_);
  classMapMatchTableKey_.drain(
      [this](const ClassMapMatchTableIndex& index) { qosMib_->classMapMatchTableDel(index); });
}

}  // namespace QosSnmp
