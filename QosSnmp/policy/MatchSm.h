// MatchSm: mirrors one class map into the MIB model: its class-map row, one
// class-map match row per match option, and, for a static control-plane
// class map, its entry in the map of class maps by static type (which
// CoppStaticSm reads). One per class map, made by ClassMapTableSm, which
// hands it the class-map table index.
//
// Watches Qos::ClassMapStatus: type (handleTableEntries(): normal or static
//   control-plane class map) and match (per option added, changed or
//   removed: handleMatch(option)). Nothing else: a change of cpType or of
//   the static type alone is not followed.
// Writes:
// - classMapTable: one row under the index it was built with;
// - classMapMatchTable: rows under (uniqueId(class-map name), class-map
//   type, match index), kept in classMapMatchTableKey;
// - cmapByStaticType: the entry of its static type while it is a static
//   control-plane class map, removed (whatever it holds) when it is not.
// doClose() removes the class-map row and every match row in the key set;
// the cmapByStaticType entry and the match-index records stay. No children.
// Deliberate, keep as it stands:
// - match indexes are counted, not allocated: an option that is present
//   gets (number of options holding an index) + 1. A re-notified option
//   thus gets a fresh index and its old row stays until doClose(); a later
//   addition can get the index of a row still present and overwrite it;
// - an option removed that never had an index deletes the row with match
//   index 0;
// - a static control-plane class map closes itself from
//   handleTableEntries() (doClose() can therefore run twice; the second run
//   deletes the class-map row again) but keeps its match reactor, so later
//   match changes still add match rows;
// - leaving the static kind removes the by-static-type entry under the
//   class map's current static type, whatever class map that entry holds;
// - the class-map row keeps the index the machine was built with, while
//   match rows take the class map's current type.
#pragma once

#include <tuple>

#include "QosSnmp/core/ClassMapMatchTableIndex.h"
#include "QosSnmp/core/ClassMapStatus.h"
#include "QosSnmp/core/ClassMapTableIndex.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/QosMib.h"
#include "kel/KeySet.h"
#include "kel/Notifiee.h"
#include "kel/Ptr.h"
#include "kel/StateMachine.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "kel/ValueMap.h"

namespace QosSnmp {

class MatchSm : public Kel::StateMachine {
 public:
  class KelClassMapStatus : public Kel::Notifiee<KelClassMapStatus, MatchSm, const Qos::ClassMapStatus,
                                                 Qos::ClassMapStatus::Type, Qos::ClassMapStatus::Match> {
   public:
    using Notifiee::Notifiee;
    void on(Qos::ClassMapStatus::Type /*attr*/) { owner().handleTableEntries(); }
    void on(Qos::ClassMapStatus::Match /*attr*/, const Qos::ClassMapMatchOption& option) {
      owner().handleMatch(option);
    }
  };

  MatchSm(const Kel::Ptr<const Qos::ClassMapStatus>& classMapStatus, ClassMapTableIndex index,
          Kel::Ptr<QosMib> qosMib);

  // The three inputs, in constructor order.
  auto arguments() const { return std::make_tuple(classMapStatus_.entity(), index_, qosMib_); }

  void handleInitialized();
  void handleTableEntries();
  // Every option of the class map.
  void handleMatch();
  void handleMatch(Qos::ClassMapMatchOption option);
  // Removes the class-map row and every match row this machine added.
  void doClose() override;

  Kel::Ptr<const Qos::ClassMapStatus> classMapStatus() const { return classMapStatus_.entity(); }
  // The class map's name; empty without a class map.
  Kel::String classMapName() const;
  const ClassMapTableIndex& index() const { return index_; }
  const Kel::Ptr<QosMib>& qosMib() const { return qosMib_; }

  const Kel::KeySet<ClassMapMatchTableIndex>& classMapMatchTableKey() const { return classMapMatchTableKey_; }
  const Kel::ValueMap<Qos::ClassMapMatchOption, Kel::U32>& matchIndex() const { return matchIndex_; }

 private:
  // The class map's attributes; zero values without a class map.
  Qos::MapType classMapType() const;
  Qos::ClassMapCpStaticType classMapCpStaticType() const;

  Kel::Watch<KelClassMapStatus> classMapStatus_;
  ClassMapTableIndex index_;
  Kel::Ptr<QosMib> qosMib_;
  Kel::KeySet<ClassMapMatchTableIndex> classMapMatchTableKey_;
  Kel::ValueMap<Qos::ClassMapMatchOption, Kel::U32> matchIndex_;
};

}  // namespace QosSnmp
