// Interface::IntfStatus: the status of one interface, as the agent needs it.
//
// Keyed by the interface, given at construction and never changed; the entity's name is the interface name.
//
// The SNMP ifIndex starts as kIfIndexNone: an interface is indexed once its publisher gives it a positive
// index. kIfIndexNever marks an interface that must never be indexed; any other negative value means "no
// index yet".
//
// Every attribute below notifies as Kel::Scalar and Kel::Collection describe: a change of value, or a member
// added, replaced or deleted (with its key); setting the value an attribute has notifies nobody.
#pragma once

#include <iosfwd>
#include <utility>

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace Interface {

// The operational state of an interface. Printed as the enumerator's name without the trailing '_'
// ("intfOperUp"); a value without an enumerator prints as its number.
enum IntfOperStatus : Kel::U32 {
  intfOperUnknown_ = 0,
  intfOperUp_ = 1,
  intfOperDown_ = 2,
  intfOperNotPresent_ = 3,  // the interface's hardware is missing
};

std::ostream& operator<<(std::ostream& out, IntfOperStatus value);

class IntfStatus : public Kel::Entity {
 public:
  struct SnmpIfIndex : Kel::ScalarAttribute<1> {};
  struct OperStatus : Kel::ScalarAttribute<2> {};
  struct Description : Kel::ScalarAttribute<3> {};

  // Interface must never be indexed.
  static constexpr Kel::S32 kIfIndexNever = -2;
  // Interface has no index yet.
  static constexpr Kel::S32 kIfIndexNone = -1;

  explicit IntfStatus(Pellix::IntfId intfId);

  const Pellix::IntfId& intfId() const { return intfId_; }

  // The interface's SNMP ifIndex, or one of the negative values above.
  Kel::S32 snmpIfIndex() const { return snmpIfIndex_.get(); }
  void snmpIfIndexIs(Kel::S32 snmpIfIndex) { snmpIfIndex_.set(*this, snmpIfIndex); }

  // Whether the interface is up.
  IntfOperStatus operStatus() const { return operStatus_.get(); }
  void operStatusIs(IntfOperStatus operStatus) { operStatus_.set(*this, operStatus); }

  // The operator's description of the interface.
  const Kel::String& description() const { return description_.get(); }
  void descriptionIs(Kel::String description) { description_.set(*this, std::move(description)); }

 private:
  const Pellix::IntfId intfId_;
  Kel::Scalar<SnmpIfIndex, Kel::S32> snmpIfIndex_{kIfIndexNone};
  Kel::Scalar<OperStatus, IntfOperStatus> operStatus_;
  Kel::Scalar<Description, Kel::String> description_;
};

}  // namespace Interface
