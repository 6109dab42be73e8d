// ClassMapTableSm: follows the class maps of one map type and keeps one
// MatchSm per class map, which writes that class map's rows. Made by the
// root, one per mirrored map type, keyed by type().
//
// Watches Qos::ClassMapTypeStatus: cmap (per class map added, changed or
//   removed: handleCmap(name)). A reactor exists only for a non-null input.
// Writes no row of its own. Children: matchSm, one MatchSm per class map,
//   keyed by the full class-map name and built with the class-map table
//   index (uniqueId(name), type()); dropping a child closes it, which
//   removes its rows. doClose() drops every child.
// Deliberate, keep as it stands:
// - "copp-system-drop" is never mirrored: no child, neither added nor
//   removed;
// - children are keyed by the full name while their index carries the
//   shortened one: two names that shorten alike get two children whose rows
//   collide in the MIB model, unchecked;
// - an existing child is kept when asked for again with the same index and
//   MIB model, even for another class-map entity under the same name: the
//   class map's contents are the child's to follow.
#pragma once

#include <tuple>

#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassMapTableIndex.h"
#include "QosSnmp/core/ClassMapTypeStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "QosSnmp/policy/MatchSm.h"
#include "kel/ChildMap.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"

namespace QosSnmp {

class ClassMapTableSm : public Kel::StateMachine {
 public:
  class KelClassMapTypeStatus
      : public Kel::Notifiee<KelClassMapTypeStatus, ClassMapTableSm, const Qos::ClassMapTypeStatus,
                             Qos::ClassMapTypeStatus::Cmap> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::ClassMapTypeStatus::Cmap /*attr*/, const Kel::String& name) { owner().handleCmap(name); }
  };

  ClassMapTableSm(const Kel::Ptr<const Qos::ClassMapTypeStatus>& classMapTypeStatus, Kel::Ptr<QosMib> qosMib);

  // The two inputs, in constructor order (the watched entity first).
  auto arguments() const { return std::make_tuple(classMapTypeStatus_.entity(), qosMib_); }

  // The map type of the class maps followed; the zero map type without a
  // class-map type status.
  Qos::MapType type() const;

  void handleInitialized();
  void handleCmap(const Kel::String& name);
  // Drops every child, which removes their rows.
  void doClose() override;

  // REQUIRES: cmap and qosMib are not null (MutatorArgNullPointerException).
  // Throws MutatorReinstantiatingException when a child of that name exists
  // with another index or MIB model.
  MatchSm* matchSmIs(const Kel::Ptr<const Qos::ClassMapStatus>& cmap, const ClassMapTableIndex& index,
                     const Kel::Ptr<QosMib>& qosMib);
  void matchSmDel(const Kel::String& name) { matchSm_.del(name); }
  void matchSmDelAll() { matchSm_.delAll(); }
  MatchSm* matchSm(const Kel::String& name) const { return matchSm_.find(name); }
  const Kel::ChildMap<Kel::String, MatchSm>& matchSm() const { return matchSm_; }

  Kel::Ptr<const Qos::ClassMapTypeStatus> classMapTypeStatus() const { return classMapTypeStatus_.entity(); }
  const Kel::Ptr<QosMib>& qosMib() const { return qosMib_; }

 private:
  Kel::Watch<KelClassMapTypeStatus> classMapTypeStatus_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::ChildMap<Kel::String, MatchSm> matchSm_;
};

}  // namespace QosSnmp
